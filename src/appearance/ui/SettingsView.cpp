#include "appearance/ui/SettingsView.h"

#include "appearance/controls/Card.h"
#include "appearance/controls/FlowGrid.h"
#include "appearance/controls/InfoCard.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/PageTitle.h"
#include "appearance/controls/Paragraph.h"
#include "appearance/controls/ScrollPage.h"
#include "appearance/controls/Switch.h"
#include "appearance/controls/TextLabel.h"
#include "appearance/controls/layouts.h"
#include "platform/AppFolders.h"
#include "platform/Launcher.h"
#include "platform/observe.h"
#include "workspace/Workspace.h"

#include <array>

namespace orvo {
namespace {

constexpr int gap = 12;
constexpr int cardWidth = 400;

struct Explanation {
    const char* icon;
    const char* title;
    const char* text;
};

constexpr Explanation accounts = {
    "person.crop.circle.badge.checkmark", QT_TRANSLATE_NOOP("orvo::SettingsView", "Provider accounts"),
    QT_TRANSLATE_NOOP(
        "orvo::SettingsView",
        "Open a provider’s terminal and use its login command: codex login, claude auth login, or kimi "
        "login. Orvo does not store API keys or replace those subscriptions. Kimi’s model selection comes "
        "from its own settings.")};
constexpr Explanation storage = {
    "externaldrive", QT_TRANSLATE_NOOP("orvo::SettingsView", "Local session storage"),
    QT_TRANSLATE_NOOP(
        "orvo::SettingsView",
        "Your theme, connector commands, recent folders, and the latest 50 terminal snapshots are saved in "
        "Orvo’s macOS preferences. Prompts and project data sent to an assistant follow that provider’s "
        "policies. Use History to export or clear Orvo snapshots.")};
constexpr Explanation approvals = {
    "shield.lefthalf.filled", QT_TRANSLATE_NOOP("orvo::SettingsView", "Execution & approvals"),
    QT_TRANSLATE_NOOP(
        "orvo::SettingsView",
        "Orvo runs under your Mac account. Terminals and scripts execute real commands. Provider approval "
        "prompts remain enabled; Orvo’s folder selection is a working directory, not a security sandbox. "
        "Codex starts with its workspace-write setting.")};
constexpr Explanation teamRuns = {
    "square.stack.3d.up", QT_TRANSLATE_NOOP("orvo::SettingsView", "Team runs"),
    QT_TRANSLATE_NOOP(
        "orvo::SettingsView",
        "Separate copies keep assistant edits apart. Review changed files and apply selected results with "
        "backups and conflict checks. Use Compare with AI for a Codex summary. Copies and backups stay in "
        "Application Support / Orvo AI / Runs until you remove them.")};
constexpr Explanation next = {
    "arrow.triangle.branch", QT_TRANSLATE_NOOP("orvo::SettingsView", "Next stages"),
    QT_TRANSLATE_NOOP(
        "orvo::SettingsView",
        "Mac actions now supports reviewed AI plans. Continuous screen-aware control, unattended task "
        "scheduling and recovery, Windows, the website, automatic updates and public release signing still "
        "need further work.")};

InfoCard* makeCard(const Explanation& explanation) {
    return new InfoCard(QString::fromLatin1(explanation.icon), SettingsView::tr(explanation.title),
                        SettingsView::tr(explanation.text));
}

}  // namespace

SettingsView::SettingsView(Workspace& workspace, Launcher& launcher, Facts facts, QWidget* parent)
    : QWidget(parent), m_workspace(workspace), m_launcher(launcher), m_facts(std::move(facts)) {
    auto* const page = new ScrollPage;
    columnIn(this)->addWidget(page);
    QVBoxLayout& column = page->column();
    column.addWidget(
        new PageTitle(tr("Workspace preferences"), tr("Simple on the surface."),
                      tr("Native on the inside. Orvo coordinates the tools you already trust.")));
    column.addSpacing(20);
    column.addWidget(makePageButton(tr("Desktop companion & voice"), QStringLiteral("pawprint"),
                                    Destination::Companion, true),
                     0, Qt::AlignLeft);
    column.addSpacing(20);
    column.addWidget(makeCards());
    column.addSpacing(20);
    column.addWidget(makeActions());
    column.addSpacing(20);
    column.addWidget(makeKeepAwake());
    column.addSpacing(20);
    column.addWidget(
        new TextLabel(tr("Orvo AI %1 · Qt Widgets · No web server required").arg(m_facts.version),
                      TypeRole::Caption, Ink::Muted));
    column.addStretch(1);
}

QWidget* SettingsView::makePageButton(const QString& title, const QString& icon, Destination page,
                                      bool primary) {
    auto* const button =
        new OrvoButton(title, icon, primary ? OrvoButton::Kind::Primary : OrvoButton::Kind::Outlined);
    connect(button, &OrvoButton::clicked, this, [this, page] { m_workspace.setDestination(page); });
    return button;
}

QWidget* SettingsView::makeCards() {
    auto* const host = new QWidget;
    auto* const grid = new FlowGrid(cardWidth, gap, host);
    grid->addWidget(makeCard(accounts));
    grid->addWidget(makeCard(storage));
    grid->addWidget(makeCard(approvals));
    InfoCard* const runs = makeCard(teamRuns);
    auto* const open = new OrvoButton(tr("Open saved runs"), QStringLiteral("folder"));
    open->setEnabled(m_facts.runsFolder.has_value());
    connect(open, &OrvoButton::clicked, this, [this] { openRuns(); });
    runs->addBelow(open);
    grid->addWidget(runs);
    grid->addWidget(makeCard(next));
    return host;
}

QWidget* SettingsView::makeActions() {
    auto* const host = new QWidget;
    auto* const row = rowIn(host, 8);
    auto* const refresh = new OrvoButton(tr("Refresh tools"), QStringLiteral("arrow.clockwise"));
    connect(refresh, &OrvoButton::clicked, this, [this] {
        m_workspace.assistants().refreshProviders();
        m_workspace.notify(tr("Installed tool list refreshed."));
    });
    row->addWidget(refresh);
    row->addWidget(
        makePageButton(tr("Customize appearance"), QStringLiteral("paintpalette"), Destination::Appearance));
    row->addWidget(makePageButton(tr("Manage assistants"), QStringLiteral("sparkles"), Destination::Agents));
    row->addStretch();
    return host;
}

QWidget* SettingsView::makeKeepAwake() {
    auto* const card = new Card;
    auto* const column = columnIn(card, 4, QMargins(16, 12, 16, 16));
    auto* const keepAwake = new Switch(tr("Keep Mac awake while Orvo tasks run"));
    connect(keepAwake, &Switch::toggled, this, [this](bool on) { m_workspace.setKeepAwake(on); });
    observe(m_workspace, {&Workspace::keepAwakeChanged}, keepAwake,
            [this, keepAwake] { keepAwake->setChecked(m_workspace.keepAwake()); });
    column->addWidget(keepAwake);
    column->addWidget(new Paragraph(
        tr("Off by default. Prevents idle sleep only while a terminal session is running; your display can "
           "still sleep. Closing the lid, manual sleep, shutdown, loss of internet or provider limits can "
           "interrupt work. This is not an unattended 24/7 service."),
        TypeRole::Caption));
    return card;
}

void SettingsView::openRuns() {
    if (!m_facts.runsFolder) return;
    // Before the first run there is no folder; it opens empty rather than not at all.
    Result<void> opened = createPrivateFolder(*m_facts.runsFolder);
    if (opened) opened = m_launcher.openFolder(*m_facts.runsFolder);
    if (!opened) m_workspace.notify(opened.error().message);
}

}  // namespace orvo
