#include "workspace/ui/Composer.h"

#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/SegmentedControl.h"
#include "appearance/controls/Symbol.h"
#include "appearance/controls/TaskEditor.h"
#include "appearance/controls/TextLabel.h"
#include "appearance/controls/layouts.h"
#include "platform/observe.h"
#include "workspace/Workspace.h"

namespace orvo {
namespace {

enum Mode { SharedFolder, SeparateCopies };

constexpr int padding = 12;
/// Air between the mode row and the first line.
constexpr int aboveText = 7;
/// Heights of the text; with the air above it the usual one makes 60.
constexpr int leastText = 53;
constexpr int mostText = 153;
/// What stands above and below the text begins where the text does.
constexpr QMargins besideText(TaskEditor::textInset, 0, TaskEditor::textInset, 0);

}  // namespace

Composer::Composer(Workspace& workspace, QWidget* parent) : Card(parent), m_workspace(workspace) {
    constexpr int side = padding + 1 - TaskEditor::textInset;
    auto* const column = columnIn(this, 0, QMargins(side, padding + 1, side, padding + 1));
    column->addWidget(makeModeRow());
    m_task = new TaskEditor(tr("Task for selected assistants"), tr("What would you like to build?"));
    connect(m_task, &TaskEditor::textChanged, this, [this] { m_workspace.setPrompt(m_task->toPlainText()); });
    connect(m_task, &TaskEditor::focusChanged, this,
            [this](bool focused) { setFrame(focused ? CardFrame::Active : CardFrame::Plain); });
    m_task->setGrowth(leastText, mostText);
    column->addSpacing(aboveText);
    column->addWidget(m_task);
    column->addWidget(makeActionRow());

    observe(
        m_workspace,
        {&Workspace::separateCopiesChanged, &Workspace::preparingRunChanged, &Workspace::teamRunsAttached},
        this, [this] { refreshMode(); });
    observe(m_workspace, {&Workspace::promptChanged}, this, [this] { refreshPrompt(); });
    observe(m_workspace,
            {&Workspace::folderChanged, &Workspace::selectedProvidersChanged, &Workspace::preparingRunChanged,
             &Workspace::preparationStatusChanged},
            this, [this] { refreshStatus(); });
    observe(m_workspace, {&Workspace::preparingRunChanged}, this, [this] { refreshSending(); });
}

void Composer::focusTask() {
    m_task->setFocus();
}

QWidget* Composer::makeModeRow() {
    auto* const host = new QWidget;
    auto* const row = rowIn(host, 8, besideText);
    row->addWidget(new TextLabel(tr("Working mode"), TypeRole::Caption, Ink::Muted));
    m_mode = new SegmentedControl({tr("Shared folder"), tr("Separate copies")});
    m_mode->setAccessibleName(tr("Working mode"));
    connect(m_mode, &SegmentedControl::chosen, this,
            [this](int index) { m_workspace.setSeparateCopies(index == SeparateCopies); });
    row->addWidget(m_mode);
    row->addStretch();
    return host;
}

QWidget* Composer::makeActionRow() {
    auto* const host = new QWidget;
    auto* const row = rowIn(host, 8, besideText);
    m_noFolder = new QWidget;
    auto* const noFolder = rowIn(m_noFolder, 6, QMargins(0, 0, 8, 0));
    noFolder->addWidget(new Symbol(QStringLiteral("folder"), 14, Ink::Muted));
    noFolder->addWidget(new TextLabel(tr("Select a project first"), TypeRole::Caption, Ink::Muted));
    m_selected = new TextLabel(QString(), TypeRole::Caption, Ink::Muted);
    m_cancel = new OrvoButton(tr("Cancel"));
    connect(m_cancel, &OrvoButton::clicked, this, [this] { m_workspace.cancelPreparation(); });
    m_send = new OrvoButton(QString(), QStringLiteral("arrow.up"), OrvoButton::Kind::Primary);
    connect(m_send, &OrvoButton::clicked, this, [this] { m_workspace.dispatchPrompt(); });
    row->addWidget(m_noFolder);
    row->addWidget(m_selected);
    row->addStretch();
    row->addWidget(m_cancel);
    row->addWidget(m_send);
    return host;
}

void Composer::refreshMode() {
    m_mode->setCurrentIndex(m_workspace.separateCopies() ? SeparateCopies : SharedFolder);
    m_mode->setOptionEnabled(SeparateCopies, m_workspace.hasTeamRuns(),
                             tr("This run keeps nothing, so there is no place for copies."));
    m_mode->setEnabled(!m_workspace.preparingRun());
}

void Composer::refreshPrompt() {
    m_task->setText(m_workspace.prompt());
}

void Composer::refreshStatus() {
    m_noFolder->setVisible(!m_workspace.folder());
    const QString status = m_workspace.preparationStatus();
    m_selected->setText(m_workspace.preparingRun() && !status.isEmpty()
                            ? status
                            : tr("%1 selected").arg(m_workspace.selectedProviders().size()));
}

void Composer::refreshSending() {
    const bool preparing = m_workspace.preparingRun();
    m_send->setBusy(preparing);
    m_send->setTitle(preparing ? tr("Preparing…") : tr("Run task"));
    m_send->setEnabled(!preparing);
    m_cancel->setVisible(preparing);
}

}  // namespace orvo
