#include "workspace/ui/SessionTabs.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/SessionTab.h"
#include "appearance/controls/layouts.h"
#include "platform/observe.h"
#include "workspace/Workspace.h"

#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

namespace orvo {
namespace {

constexpr int rowHeight = 32;
constexpr int gap = 4;

SessionTab::Mark markOf(Attention::Mark mark) {
    switch (mark) {
        case Attention::Mark::Working:
            return SessionTab::Mark::Busy;
        case Attention::Mark::WantsYou:
            return SessionTab::Mark::Wanted;
        case Attention::Mark::DoneUnseen:
            return SessionTab::Mark::Over;
        case Attention::Mark::Quiet:
        case Attention::Mark::Seen:
            break;
    }
    return SessionTab::Mark::None;
}

}  // namespace

SessionTabs::SessionTabs(Workspace& workspace, QWidget* parent)
    : QScrollArea(parent), m_workspace(workspace) {
    setFixedHeight(rowHeight);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    setWidgetResizable(true);
    auto* const content = new QWidget;
    m_row = rowIn(content, gap);
    m_row->addStretch();
    setWidget(content);
    content->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);

    observe(m_workspace.assistants(), {&Assistants::providersChanged}, this, [this] { rebuild(); });
    connect(&m_workspace, &Workspace::sessionsChanged, this, [this] { refreshTabs(); });
    connect(&m_workspace, &Workspace::activeSessionIDChanged, this, [this] { refreshActive(); });
}

void SessionTabs::rebuild() {
    // Icons and colours come from the connectors, which have changed.
    for (SessionTab* const tab : std::as_const(m_tabs))
        delete tab;
    m_tabs.clear();
    refreshTabs();
}

void SessionTabs::refreshTabs() {
    for (auto it = m_tabs.begin(); it != m_tabs.end();) {
        if (m_workspace.session(it.key())) {
            ++it;
            continue;
        }
        // Later, because a tab may be what is being pressed.
        it.value()->hide();
        it.value()->deleteLater();
        it = m_tabs.erase(it);
    }
    for (const auto& session : m_workspace.sessions()) {
        if (m_tabs.contains(session->id())) continue;
        const Provider provider = m_workspace.assistants().provider(session->providerID());
        auto* const tab =
            new SessionTab(provider.icon, colorFromHex(provider.colorHex.toStdString()), session->title());
        connect(tab, &SessionTab::clicked, this, [this, id = session->id()] { Q_EMIT chosen(id); });
        observe(*session, {&TerminalSession::markChanged, &TerminalSession::programTitleChanged}, tab,
                [this, tab, id = session->id()] { refreshMark(*tab, id); });
        tab->installEventFilter(this);
        m_row->insertWidget(m_row->count() - 1, tab);
        m_tabs.insert(session->id(), tab);
        tab->show();
    }
    fitTabs();
    refreshActive();
}

// Where room is short the longest titles give way first, so that short ones stay whole.
void SessionTabs::fitTabs() {
    QList<int> wanted;
    for (const SessionTab* const tab : std::as_const(m_tabs))
        wanted.append(tab->sizeHint().width());
    std::ranges::sort(wanted);
    int room = viewport()->width() - gap * static_cast<int>(wanted.size() - 1);
    int widest = 0;
    for (qsizetype i = 0; i < wanted.size(); ++i) {
        const int share = room / static_cast<int>(wanted.size() - i);
        widest = std::min(wanted[i], share);
        if (wanted[i] > share) break;
        room -= wanted[i];
    }
    for (SessionTab* const tab : std::as_const(m_tabs)) {
        const int width = std::min(tab->sizeHint().width(), widest);
        tab->setFixedWidth(std::max(width, tab->minimumSizeHint().width()));
    }
    // At once, so that a tab that is new can be scrolled to.
    m_row->activate();
    widget()->resize(std::max(viewport()->width(), m_row->sizeHint().width()), widget()->height());
}

void SessionTabs::refreshMark(SessionTab& tab, const QUuid& id) const {
    const auto session = m_workspace.session(id);
    if (!session) return;
    QString meaning;
    switch (session->mark()) {
        case Attention::Mark::Working:
            meaning = tr("Working");
            break;
        case Attention::Mark::Quiet:
            meaning = tr("Quiet");
            break;
        case Attention::Mark::WantsYou:
            meaning = tr("Wants you: %1").arg(session->evidence());
            break;
        case Attention::Mark::DoneUnseen:
            meaning = tr("Done, not seen yet");
            break;
        case Attention::Mark::Seen:
            meaning = tr("Done");
            break;
    }
    tab.setMark(markOf(session->mark()), meaning);
    const QString& program = session->programTitle();
    QStringList lines{session->title()};
    if (!program.isEmpty()) lines.append(program);
    if (const QString evidence = session->evidence(); !evidence.isEmpty()) lines.append(evidence);
    tab.setToolTip(lines.size() == 1 ? QString() : plainToolTip(lines.join(u'\n')));
}

bool SessionTabs::eventFilter(QObject* watched, QEvent* event) {
    // The evidence has an age.
    if (event->type() == QEvent::ToolTip) {
        if (auto* const tab = qobject_cast<SessionTab*>(watched)) refreshMark(*tab, m_tabs.key(tab));
    }
    return QScrollArea::eventFilter(watched, event);
}

void SessionTabs::refreshActive() {
    for (auto it = m_tabs.cbegin(); it != m_tabs.cend(); ++it) {
        const bool current = it.key() == m_workspace.activeSessionID();
        it.value()->setCurrent(current);
        if (current) ensureWidgetVisible(it.value(), 0, 0);
    }
}

void SessionTabs::wheelEvent(QWheelEvent* event) {
    const QPoint delta = event->angleDelta();
    const int along = delta.x() != 0 ? delta.x() : delta.y();
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() - along);
    event->accept();
}

void SessionTabs::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    fitTabs();
    refreshActive();
}

}  // namespace orvo
