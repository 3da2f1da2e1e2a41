#include "workspace/ui/SessionDeck.h"

#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/ScrollPage.h"
#include "appearance/controls/SegmentedControl.h"
#include "appearance/controls/layouts.h"
#include "assistants/Provider.h"
#include "platform/Launcher.h"
#include "platform/observe.h"
#include "terminal/ui/TerminalPane.h"
#include "workspace/Workspace.h"
#include "workspace/ui/CountBadge.h"
#include "workspace/ui/DeckGrid.h"
#include "workspace/ui/SessionTabs.h"

#include <QApplication>
#include <QMenu>
#include <QPlainTextEdit>

namespace orvo {
namespace {

enum Layout { Grid, Focus };

constexpr int gap = 10;

}  // namespace

SessionDeck::SessionDeck(Workspace& workspace, Theme& theme, Launcher& launcher, QWidget* parent)
    : QWidget(parent), m_workspace(workspace), m_theme(theme), m_launcher(launcher) {
    auto* const column = columnIn(this, gap, QMargins(ScrollPage::margin, 12, ScrollPage::margin, 4));
    column->addWidget(makeHeader());
    m_tabs = new SessionTabs(workspace);
    connect(m_tabs, &SessionTabs::chosen, this, [this](const QUuid& id) {
        m_workspace.setActiveSessionID(id);
        focusTerminal(id);
    });
    column->addWidget(m_tabs);
    m_grid = new DeckGrid;
    column->addWidget(m_grid, 1);

    observe(m_workspace, {&Workspace::sessionsChanged}, this, [this] { refreshPanes(); });
    observe(m_workspace, {&Workspace::focusModeChanged}, this, [this] { refreshLayout(); });
    observe(m_workspace, {&Workspace::activeSessionIDChanged}, this, [this] { refreshActive(); });
    observe(m_workspace.assistants(), {&Assistants::providersChanged}, this, [this] { refreshNames(); });
}

QWidget* SessionDeck::makeHeader() {
    auto* const header = new QWidget;
    header->setFixedHeight(32);
    auto* const row = rowIn(header, 8);
    row->addWidget(new TextLabel(tr("Live sessions"), TypeRole::Section));
    m_count = new CountBadge;
    row->addWidget(m_count);
    row->addStretch();
    row->addWidget(new TextLabel(tr("Layout"), TypeRole::Caption, Ink::Muted));
    m_layout = new SegmentedControl({tr("Grid"), tr("Focus")});
    m_layout->setAccessibleName(tr("Layout"));
    connect(m_layout, &SegmentedControl::chosen, this,
            [this](int index) { m_workspace.setFocusMode(index == Focus); });
    row->addWidget(m_layout);

    m_newSession = new QMenu(this);
    connect(m_newSession, &QMenu::aboutToShow, this, [this] { fillNewSessionMenu(); });
    auto* const plus = new OrvoButton(tr("New session"), QStringLiteral("plus"),
                                      OrvoButton::Kind::IconOutlined, OrvoButton::Size::Small);
    plus->setMenu(m_newSession);
    row->addWidget(plus);
    return header;
}

void SessionDeck::fillNewSessionMenu() {
    m_newSession->clear();
    for (const Provider& provider : m_workspace.assistants().providers()) {
        if (!m_workspace.assistants().isReady(provider)) continue;
        QString name = provider.shownName();
        QAction* const action = m_newSession->addAction(name.replace(u'&', QStringLiteral("&&")));
        connect(action, &QAction::triggered, this,
                [this, provider] { m_workspace.launch(provider, QString()); });
    }
}

TerminalPane* SessionDeck::makePane(TerminalSession& session) {
    auto* const pane = new TerminalPane(session, m_theme, m_grid);
    const QUuid id = session.id();
    connect(pane, &TerminalPane::activated, this, [this, id] { m_workspace.setActiveSessionID(id); });
    connect(pane, &TerminalPane::exportRequested, this, [this, id] {
        if (const auto listed = m_workspace.session(id)) m_workspace.exportSession(*listed);
    });
    connect(pane, &TerminalPane::closeRequested, this, [this, id] {
        if (const auto listed = m_workspace.session(id)) m_workspace.closeSession(listed);
    });
    connect(pane, &TerminalPane::linkOpened, this, [this](const QUrl& address) {
        if (const auto opened = m_launcher.openAddress(address); !opened)
            m_workspace.notify(opened.error().message);
    });
    connect(pane, &TerminalPane::filesDropped, this, [this, id](const QStringList& paths) {
        const auto listed = m_workspace.session(id);
        for (const QString& path : paths) {
            if (listed) listed->send(shellQuote(path) + u' ');
        }
    });
    return pane;
}

void SessionDeck::refreshPanes() {
    for (auto it = m_panes.begin(); it != m_panes.end();) {
        if (m_workspace.session(it.key())) {
            ++it;
            continue;
        }
        // Later, because the pane's own menu may be what closed it.
        it.value()->hide();
        it.value()->deleteLater();
        it = m_panes.erase(it);
    }
    bool added = false;
    for (const auto& session : m_workspace.sessions()) {
        if (m_panes.contains(session->id())) continue;
        m_panes.insert(session->id(), makePane(*session));
        added = true;
    }
    m_count->setCount(static_cast<qsizetype>(m_workspace.sessions().size()));
    refreshNames();
    refreshActive();
    // After everybody has heard of the session, so that its page is in front by then.
    const std::optional<QUuid> active = m_workspace.activeSessionID();
    if (!added || !active) return;
    QMetaObject::invokeMethod(this, [this, id = *active] { focusNewTerminal(id); }, Qt::QueuedConnection);
}

void SessionDeck::refreshNames() {
    for (const auto& session : m_workspace.sessions()) {
        m_panes[session->id()]->setConnectorName(
            m_workspace.assistants().provider(session->providerID()).shownName());
    }
}

void SessionDeck::refreshLayout() {
    const bool alone = m_workspace.focusMode() && m_workspace.activeSessionID();
    m_layout->setCurrentIndex(m_workspace.focusMode() ? Focus : Grid);
    QList<QWidget*> shown;
    for (const auto& session : m_workspace.sessions()) {
        if (alone && session->id() != m_workspace.activeSessionID()) continue;
        shown.append(m_panes[session->id()]);
    }
    m_grid->setPanes(shown);
}

void SessionDeck::refreshActive() {
    const std::optional<QUuid> active = m_workspace.activeSessionID();
    for (auto it = m_panes.cbegin(); it != m_panes.cend(); ++it) {
        it.value()->setActive(it.key() == active);
    }
    refreshLayout();
    if (active) m_grid->reveal(m_panes.value(*active));
}

void SessionDeck::focusTerminal(const QUuid& id) {
    if (TerminalPane* const pane = m_panes.value(id)) pane->setFocus();
}

void SessionDeck::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!m_waiting) return;
    // Once the stack of pages has put the focus where it stood when this page was left.
    const QUuid id = *m_waiting;
    m_waiting.reset();
    QMetaObject::invokeMethod(this, [this, id] { focusNewTerminal(id); }, Qt::QueuedConnection);
}

void SessionDeck::focusNewTerminal(const QUuid& id) {
    // Behind another page it would catch keys that are meant for that page; it gets them when it is shown.
    if (m_workspace.destination() != Destination::Workspace) {
        m_waiting = id;
        return;
    }
    // Somebody who is writing goes on writing: a session that starts meanwhile must not catch the keys.
    const auto* const editor = qobject_cast<QPlainTextEdit*>(QApplication::focusWidget());
    if (editor && !editor->document()->isEmpty()) return;
    focusTerminal(id);
}

}  // namespace orvo
