#include "files/ui/RunnerCard.h"

#include "appearance/controls/ElidedLabel.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/TextField.h"
#include "appearance/controls/layouts.h"
#include "platform/observe.h"
#include "workspace/Workspace.h"

namespace orvo {
namespace {

constexpr double commandPixels = 12;

}  // namespace

RunnerCard::RunnerCard(Workspace& workspace, QWidget* parent) : Card(parent), m_workspace(workspace) {
    auto* const column = columnIn(this, 10, QMargins(16, 12, 16, 16));
    auto* const heading = rowIn(nullptr, 10);
    heading->addWidget(new TextLabel(tr("Run a command in this project"), TypeRole::Name));
    heading->addWidget(wide(new ElidedLabel(tr("Supports installed runtimes. Python, Swift, shell, "
                                               "JavaScript, Ruby, and AppleScript files can run directly."),
                                            TypeRole::Caption, Ink::Muted)),
                       1);
    column->addLayout(heading);

    auto* const line = rowIn(nullptr, 8);
    m_command = new TextField(tr("python3 script.py, swift main.swift, npm test…"));
    m_command->setAccessibleName(tr("Run a command in this project"));
    m_command->setAccessibleDescription(m_command->placeholderText());
    m_command->setIcon(QStringLiteral("terminal"));
    m_command->setFont(codeFont(commandPixels));
    connect(m_command, &TextField::textChanged, &workspace, &Workspace::setRunnerCommand);
    connect(m_command, &TextField::returnPressed, &workspace, &Workspace::runCommand);
    line->addWidget(m_command, 1);
    auto* const execute = new OrvoButton(tr("Execute"), QStringLiteral("play.fill"));
    connect(execute, &OrvoButton::clicked, &workspace, &Workspace::runCommand);
    line->addWidget(execute);
    column->addLayout(line);

    observe(m_workspace, {&Workspace::runnerCommandChanged}, this, [this] {
        if (m_command->text() != m_workspace.runnerCommand()) m_command->setText(m_workspace.runnerCommand());
    });
}

}  // namespace orvo
