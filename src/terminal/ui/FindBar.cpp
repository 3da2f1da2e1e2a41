#include "terminal/ui/FindBar.h"

#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/TextField.h"
#include "appearance/controls/TextLabel.h"
#include "appearance/controls/layouts.h"
#include "appearance/controls/painting.h"
#include "terminal/TerminalSession.h"
#include "terminal/ui/TerminalView.h"

#include <QKeyEvent>
#include <QPainter>

#include <algorithm>
#include <utility>

namespace orvo {
namespace {

constexpr int barWidth = 340;
constexpr int barHeight = 44;
/// A flood of output is searched again this often.
constexpr int searchAgainMilliseconds = 250;

}  // namespace

FindBar::FindBar(TerminalView& view, QWidget* host)
    : QWidget(host),
      m_view(view),
      m_field(new TextField(tr("Find in terminal"))),
      m_count(new TextLabel(QString(), TypeRole::Caption, Ink::Muted)) {
    setFixedSize(barWidth, barHeight);
    auto* const row = rowIn(this, 4, QMargins(6, 6, 6, 6));
    m_field->setAccessibleName(tr("Find in terminal"));
    m_field->installEventFilter(this);
    row->addWidget(m_field, 1);
    row->addWidget(m_count);
    const auto add = [row](const QString& title, const QString& icon) {
        auto* const button = new OrvoButton(title, icon, OrvoButton::Kind::Icon, OrvoButton::Size::Small);
        row->addWidget(button);
        return button;
    };
    connect(add(tr("Previous match"), QStringLiteral("arrow.up")), &OrvoButton::clicked, this,
            [this] { go(Go::Older); });
    connect(add(tr("Next match"), QStringLiteral("chevron.down")), &OrvoButton::clicked, this,
            [this] { go(Go::Newer); });
    connect(add(tr("Close find"), QStringLiteral("xmark")), &OrvoButton::clicked, this, [this] { close(); });
    connect(m_field, &QLineEdit::textChanged, this, [this] { search(); });

    m_searchAgain.setSingleShot(true);
    m_searchAgain.setInterval(searchAgainMilliseconds);
    connect(&m_searchAgain, &QTimer::timeout, this, [this] { searchAgain(); });
    if (TerminalSession* const session = m_view.session()) {
        connect(session, &TerminalSession::revisionChanged, this, [this] {
            if (isVisible() && !m_searchAgain.isActive()) m_searchAgain.start();
        });
    }
    hide();
}

void FindBar::open() {
    if (TerminalSession* const session = m_view.session()) {
        const QString selected = m_view.selection().text(session->screen());
        if (!selected.isEmpty() && !selected.contains(u'\n')) m_field->setText(selected);
    }
    QWidget::show();
    raise();
    m_field->setFocus(Qt::OtherFocusReason);
    m_field->selectAll();
    search();
}

void FindBar::close() {
    hide();
    m_searchAgain.stop();
    m_matches.clear();
    m_view.showMatches({}, -1);
    m_view.setFocus(Qt::OtherFocusReason);
    Q_EMIT closed();
}

void FindBar::search() {
    TerminalSession* const session = m_view.session();
    m_matches = session != nullptr ? findText(session->screen(), m_field->text()) : std::vector<TextMatch>();
    // The newest first: what the person looks for has mostly just gone by.
    show(static_cast<int>(m_matches.size()) - 1);
}

void FindBar::searchAgain() {
    TerminalSession* const session = m_view.session();
    if (!isVisible() || session == nullptr) return;
    const bool hadOne = m_current >= 0;
    const LogicalLine::Place place =
        hadOne ? m_matches[static_cast<std::size_t>(m_current)].begin : LogicalLine::Place{};
    m_matches = findText(session->screen(), m_field->text());
    const auto same = std::ranges::find_if(m_matches, [place](const TextMatch& match) {
        return match.begin.line == place.line && match.begin.column == place.column;
    });
    // Where it was has gone, or there was none: nothing is brought into view while the program writes.
    m_current = hadOne && same != m_matches.end() ? static_cast<int>(same - m_matches.begin()) : -1;
    m_view.markMatches(m_matches, m_current);
    refreshCount();
}

void FindBar::go(Go direction) {
    if (m_matches.empty()) return;
    const auto count = static_cast<int>(m_matches.size());
    if (m_current < 0) return show(direction == Go::Older ? count - 1 : 0);
    show((m_current + (direction == Go::Older ? count - 1 : 1)) % count);
}

void FindBar::show(int match) {
    m_current = match;
    m_view.showMatches(m_matches, m_current);
    refreshCount();
}

void FindBar::refreshCount() {
    QString text;
    if (!m_field->text().isEmpty()) {
        text = m_matches.empty() ? tr("No matches")
                                 : tr("%1 of %2").arg(m_current + 1).arg(static_cast<int>(m_matches.size()));
    }
    m_count->setText(text);
}

bool FindBar::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const auto* const key = static_cast<QKeyEvent*>(event);
        switch (key->key()) {
            case Qt::Key_Return:
            case Qt::Key_Enter:
                go(key->modifiers().testFlag(Qt::ShiftModifier) ? Go::Newer : Go::Older);
                return true;
            case Qt::Key_Up:
                go(Go::Older);
                return true;
            case Qt::Key_Down:
                go(Go::Newer);
                return true;
            case Qt::Key_Escape:
                close();
                return true;
            default:
                break;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void FindBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Roles& roles = rolesOf(this);
    fillRounded(painter, rect(), 8, toQColor(roles.surface));
    strokeRounded(painter, rect(), 8, toQColor(roles.border), 1);
}

}  // namespace orvo
