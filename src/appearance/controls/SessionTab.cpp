#include "appearance/controls/SessionTab.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/lineText.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"
#include "appearance/controls/typography.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace orvo {
namespace {

constexpr int padding = 10;
constexpr int glyph = 16;
constexpr int gap = 8;
constexpr int widest = 220;
constexpr int narrowest = 96;
constexpr int tabHeight = 32;
constexpr double markRadius = 3.5;

}  // namespace

SessionTab::SessionTab(const QString& icon, Rgb color, const QString& title, QWidget* parent)
    : Pressable(title, parent), m_icon(icon), m_color(color) {
    setFont(fontOf(TypeRole::SmallControl));
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setMaximumWidth(widest);
}

void SessionTab::setCurrent(bool current) {
    if (current == m_current) return;
    m_current = current;
    update();
}

void SessionTab::setMark(Mark mark, const QString& meaning) {
    setAccessibleDescription(meaning);
    if (mark == m_mark) return;
    m_mark = mark;
    update();
}

void SessionTab::paintMark(QPainter& painter) const {
    if (m_mark == Mark::None) return;
    const Roles& roles = rolesOf(this);
    const QColor color = toQColor(m_mark == Mark::Over ? roles.text : roles.accent);
    const QPointF centre(padding + glyph, height() / 2.0 - glyph / 2.0 + 2);
    painter.setRenderHint(QPainter::Antialiasing);
    // Cut out of the symbol, so that both can be told apart.
    painter.setPen(Qt::NoPen);
    painter.setBrush(toQColor(roles.bg));
    painter.drawEllipse(centre, markRadius + 1.5, markRadius + 1.5);
    painter.setPen(m_mark == Mark::Busy ? QPen(color, 1.5) : QPen(Qt::NoPen));
    painter.setBrush(m_mark == Mark::Busy ? QBrush(Qt::NoBrush) : QBrush(color));
    const double radius = m_mark == Mark::Busy ? markRadius - 0.75 : markRadius;
    painter.drawEllipse(centre, radius, radius);
}

QSize SessionTab::sizeHint() const {
    const int natural = 2 * padding + glyph + gap + measureText(font(), title()) + 1;
    return {std::min(natural, widest), tabHeight};
}

QSize SessionTab::minimumSizeHint() const {
    return {std::min(sizeHint().width(), narrowest), tabHeight};
}

QRect SessionTab::textRect() const {
    return rect().adjusted(padding + glyph + gap, 0, -padding, 0);
}

bool SessionTab::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
        if (measureText(font(), title()) > textRect().width()) {
            QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), plainToolTip(title()), this);
        }
        return true;
    }
    return Pressable::event(event);
}

void SessionTab::paintEvent(QPaintEvent*) {
    const Roles& roles = rolesOf(this);
    QPainter painter(this);
    painter.setOpacity(controlOpacity());
    if (m_current) {
        fillRounded(painter, rect(), 8, toQColor(roles.selected));
    } else {
        fillRounded(
            painter, rect(), 8,
            isDown() ? toQColor(roles.pressed) : blended(Qt::transparent, toQColor(roles.hover), hover()));
    }
    if (isFocusVisible()) strokeRing(painter, rect(), 8, toQColor(roles.accent));
    paintSymbol(painter, QRectF(padding, 0, glyph, height()), m_icon, toQColor(symbolColor(m_color, roles)),
                glyph);
    paintMark(painter);
    painter.setPen(m_current ? toQColor(roles.text)
                             : blended(toQColor(roles.muted), toQColor(roles.text), hover()));
    const QRect text = textRect();
    paintText(painter, text, Qt::AlignVCenter, title());
}

}  // namespace orvo
