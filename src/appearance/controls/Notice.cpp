#include "appearance/controls/Notice.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"
#include "appearance/controls/typography.h"
#include "platform/textEnds.h"

#include <QAccessible>
#include <QEvent>
#include <QPainter>

#include <algorithm>

namespace orvo {
namespace {

constexpr int underTop = 12;
constexpr int widest = 480;
constexpr int padding = 14;
constexpr int glyph = 16;
constexpr int gap = 8;
constexpr int oneLineHeight = 36;
constexpr int rise = 8;
/// A notice is read in four seconds; the whole text is told to assistive technology.
constexpr qsizetype longest = 400;

}  // namespace

Notice::Notice(QWidget* column) : QWidget(column->window()), m_column(column), m_presence(this, 160) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFont(fontOf(TypeRole::Control));
    setFocusPolicy(Qt::NoFocus);
    hide();
    column->installEventFilter(this);
    if (column->window() != column) column->window()->installEventFilter(this);
}

void Notice::showText(const QString& text) {
    const bool isNew = isHidden() || text != m_text;
    m_text = text;
    m_shown = firstCharacters(text, longest);
    if (m_shown.size() < text.size()) m_shown += u'…';
    setAccessibleName(text);
    place();
    show();
    raise();
    update();
    m_presence.to(1);
    if (isNew) {
        QAccessibleEvent announcement(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&announcement);
    }
}

void Notice::dismiss() {
    if (isHidden()) return;
    m_presence.to(0, [this] { hide(); });
}

bool Notice::eventFilter(QObject* watched, QEvent* event) {
    const bool moved = event->type() == QEvent::Resize || event->type() == QEvent::Move;
    // Also while the window is about to be shown: its parts find their places just before.
    if (moved && !isHidden()) place();
    return QWidget::eventFilter(watched, event);
}

void Notice::place() {
    const int fixed = 2 * padding + glyph + gap;
    const QRect room(0, 0, std::max(24, std::min(widest, m_column->width() - 48) - fixed), 10000);
    m_wrap = Qt::TextWordWrap;
    QRect text = fontMetrics().boundingRect(room, m_wrap, m_shown);
    if (text.width() > room.width()) {
        // A word that is wider than the bubble.
        m_wrap = Qt::TextWrapAnywhere;
        text = fontMetrics().boundingRect(room, m_wrap, m_shown);
    }
    const QSize bubble(fixed + text.width() + 1, std::max(oneLineHeight, text.height() + 20));
    const QPoint top = m_column->mapTo(window(), QPoint((m_column->width() - bubble.width()) / 2, underTop));
    // The widget is larger than the bubble by the reach of its shadow.
    setGeometry(QRect(top, bubble).adjusted(-shadowReach, -shadowReach, shadowReach, shadowReach));
}

void Notice::paintEvent(QPaintEvent*) {
    const Roles& roles = rolesOf(this);
    QPainter painter(this);
    painter.setOpacity(m_presence.value());
    painter.translate(0, -rise * (1 - m_presence.value()));
    const QRect bubble = rect().adjusted(shadowReach, shadowReach, -shadowReach, -shadowReach);
    const double radius = oneLineHeight / 2.0;
    paintShadow(painter, bubble, radius, Elevation::Panel);
    fillRounded(painter, bubble, radius, toQColor(roles.surface));
    strokeRounded(painter, bubble, radius, toQColor(roles.borderStrong));
    paintSymbol(painter, QRectF(bubble.left() + padding, bubble.top(), glyph, bubble.height()),
                QStringLiteral("checkmark.circle.fill"), toQColor(roles.accent), glyph);
    painter.setPen(toQColor(roles.text));
    painter.drawText(bubble.adjusted(padding + glyph + gap, 0, -padding + 1, 0), Qt::AlignVCenter | m_wrap,
                     m_shown);
}

}  // namespace orvo
