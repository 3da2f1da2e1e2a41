#include "mac_actions/ui/MacActionsView.h"

#include "appearance/Theme.h"
#include "appearance/controls/ActionCard.h"
#include "appearance/controls/Card.h"
#include "appearance/controls/Eyebrow.h"
#include "appearance/controls/InfoCard.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/PageTitle.h"
#include "appearance/controls/Paragraph.h"
#include "appearance/controls/StatusPill.h"
#include "appearance/controls/TextLabel.h"
#include "appearance/controls/Well.h"
#include "appearance/controls/layouts.h"
#include "files/ui/CodeEditor.h"
#include "platform/observe.h"
#include "workspace/Workspace.h"
#include "workspace/WorkspaceMacActions.h"

namespace orvo {
namespace {

constexpr int gap = 12;
constexpr int padding = 16;
constexpr int scriptHeight = 140;

}  // namespace

MacActionsView::MacActionsView(WorkspaceMacActions& actions, Workspace& workspace, const Theme& theme,
                               QWidget* parent)
    : QWidget(parent), m_actions(actions), m_workspace(workspace), m_theme(theme) {
    auto* const column = columnIn(this);
    column->addWidget(
        new PageTitle(tr("Beyond the editor"), tr("Your Mac, within reach."),
                      tr("Launch apps, work with Finder, and execute AppleScript. macOS asks for "
                         "permission when an action needs access.")));
    column->addSpacing(20);
    column->addWidget(new InfoCard(
        QStringLiteral("hand.raised"), tr("Computer access is managed by macOS"),
        tr("Orvo can execute the commands and scripts you submit. App interaction may need Automation or "
           "Accessibility permission. A continuous AI screen-control loop is not included in this first "
           "build.")));
    column->addSpacing(gap);
    column->addWidget(makeTools());
    column->addSpacing(gap);
    column->addWidget(makePermissions());
    column->addSpacing(gap);
    column->addWidget(makeConsole());
}

QWidget* MacActionsView::makeTools() {
    auto* const host = new QWidget;
    auto* const row = rowIn(host, gap);
    const auto add = [&](const char* icon, const QString& title, const QString& description, auto action) {
        auto* const card = new ActionCard(QString::fromLatin1(icon), title, description);
        connect(card, &ActionCard::clicked, this, action);
        row->addWidget(card, 1);
    };
    add("app.badge", tr("Open an application"), tr("Choose an installed app and launch it."),
        [this] { m_actions.openApplication(); });
    add("folder", tr("Show your project"), tr("Open the working folder in Finder."),
        [this] { m_workspace.revealFolder(); });
    add("terminal", tr("Open a Mac terminal"), tr("Run commands inside Orvo’s native terminal."),
        [this] { m_actions.openTerminal(); });
    return host;
}

QWidget* MacActionsView::makePermissions() {
    auto* const card = new Card;
    auto* const column = columnIn(card, 0, QMargins(padding, padding, padding, padding));
    column->addWidget(new Eyebrow(tr("Permissions")));
    column->addSpacing(6);
    column->addWidget(
        new Paragraph(tr("Grant only the access your workflow needs. Providers may request their "
                         "own permissions separately.")));
    column->addSpacing(gap);
    auto* const buttonHost = new QWidget;
    auto* const buttons = rowIn(buttonHost, 8);
    const auto add = [&](const char* icon, const QString& title, void (ComputerPlanner::*work)()) {
        auto* const button = new OrvoButton(title, QString::fromLatin1(icon));
        connect(button, &OrvoButton::clicked, &m_actions.planner(), work);
        buttons->addWidget(button);
    };
    add("hand.point.up.left", tr("Accessibility settings"), &ComputerPlanner::openAccessibility);
    add("rectangle.dashed", tr("Screen recording settings"), &ComputerPlanner::openScreenPermission);
    add("arrow.clockwise", tr("Refresh permissions"), &ComputerPlanner::refreshPermissions);
    buttons->addStretch();
    column->addWidget(buttonHost);
    column->addSpacing(gap);
    auto* const status = rowIn(nullptr, 8);
    status->addWidget(new TextLabel(tr("Accessibility")));
    status->addStretch();
    m_permission = new TextLabel(QString(), TypeRole::Name);
    status->addWidget(m_permission);
    column->addLayout(status);
    observe(m_actions.planner(), {&ComputerPlanner::accessibilityChanged}, this,
            [this] { refreshPermission(); });
    return card;
}

QWidget* MacActionsView::makeConsole() {
    auto* const card = new Card;
    auto* const column = columnIn(card, 0, QMargins(padding, padding, padding, padding));
    auto* const heading = rowIn(nullptr, 8);
    heading->addWidget(new Eyebrow(tr("AppleScript console")));
    heading->addStretch();
    heading->addWidget(new StatusPill(tr("Runs locally"), Ink::Muted));
    column->addLayout(heading);
    column->addSpacing(gap);
    auto* const well = new Well;
    m_script = new CodeEditor(tr("AppleScript"));
    m_script->setFixedHeight(scriptHeight);
    m_script->open(QStringLiteral("tell application \"Finder\" to activate"));
    // The ground is the theme's own, as in the editor of files.
    observe(m_theme, {&Theme::backgroundHexChanged}, m_script,
            [this] { m_script->setBackground(toQColor(m_theme.bg())); });
    columnIn(well, 0, QMargins(1, 1, 1, 1))->addWidget(m_script);
    column->addWidget(well);
    column->addSpacing(gap);
    auto* const actions = rowIn(nullptr, 8);
    actions->addWidget(
        new TextLabel(tr("Review the script before running it."), TypeRole::Caption, Ink::Muted));
    actions->addStretch();
    auto* const run =
        new OrvoButton(tr("Run script"), QStringLiteral("play.fill"), OrvoButton::Kind::Primary);
    connect(run, &OrvoButton::clicked, this, [this] { m_actions.runScript(m_script->text()); });
    actions->addWidget(run);
    column->addLayout(actions);
    return card;
}

void MacActionsView::refreshPermission() {
    const bool allowed = m_actions.planner().accessibility();
    m_permission->setText(allowed ? tr("Allowed") : tr("Not granted"));
    m_permission->setInk(allowed ? Ink::Accent : Ink::Muted);
    m_permission->setToolTip(allowed ? QString() : m_actions.planner().accessibilityHint());
}

}  // namespace orvo
