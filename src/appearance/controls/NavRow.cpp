#include "appearance/controls/NavRow.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/lineText.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"
#include "appearance/controls/typography.h"

#include <QPainter>

#include <algorithm>

namespace orvo {
namespace {

constexpr int padding = 8;
constexpr int glyph = 18;
constexpr int gap = 10;
constexpr int badgeHeight = 20;
constexpr int dot = 8;

}  // namespace

NavRow::NavRow(const QString& icon, const QString& text, QWidget* parent)
    : Pressable(text, parent), m_icon(icon) {
    setFont(fontOf(TypeRole::Control));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    prepareSymbol(icon, glyph);
}

void NavRow::setCurrent(bool current) {
    if (current == m_current) return;
    m_current = current;
    update();
}

void NavRow::setCount(int count) {
    if (count == m_count) return;
    m_count = count;
    describe();
    update();
}

void NavRow::setWanted(bool wanted) {
    if (wanted == m_wanted) return;
    m_wanted = wanted;
    describe();
    update();
}

void NavRow::describe() {
    const QString count = m_count > 0 ? QString::number(m_count) : QString();
    setAccessibleDescription(m_wanted ? tr("%1, wants you").arg(count) : count);
}

void NavRow::paintEvent(QPaintEvent*) {
    const Roles& roles = rolesOf(this);
    QPainter painter(this);
    painter.setOpacity(controlOpacity());
    if (m_current) fillRounded(painter, rect(), 8, toQColor(roles.selected));
    const QColor lit =
        isDown() ? toQColor(roles.pressed) : blended(Qt::transparent, toQColor(roles.hover), hover());
    if (!m_current || isDown()) fillRounded(painter, rect(), 8, lit);
    if (isFocusVisible()) strokeRing(painter, rect(), 8, toQColor(roles.accent));

    const QColor ink =
        m_current ? toQColor(roles.text) : blended(toQColor(roles.muted), toQColor(roles.text), hover());
    const QColor iconInk = m_current ? toQColor(roles.accent) : ink;
    paintSymbol(painter, QRectF(padding, 0, glyph, height()), m_icon, iconInk, glyph);

    QRect text = rect().adjusted(padding + glyph + gap, 0, -padding, 0);
    if (m_count > 0) {
        const QString number = QString::number(m_count);
        const QFont badgeFont = fontOf(TypeRole::Badge);
        const int width = std::max(badgeHeight, measureText(badgeFont, number) + 12);
        const QRect badge(rect().right() + 1 - padding + 2 - width, (height() - badgeHeight) / 2, width,
                          badgeHeight);
        fillRounded(painter, badge, badgeHeight / 2.0, toQColor(roles.countBadge));
        painter.setFont(badgeFont);
        painter.setPen(toQColor(roles.text));
        paintText(painter, badge, Qt::AlignCenter, number);
        painter.setFont(font());
        text.setRight(badge.left() - 8);
        if (m_wanted) {
            const double left = badge.left() - 2 - dot;
            fillRounded(painter, QRectF(left, (height() - dot) / 2.0, dot, dot), dot / 2.0,
                        toQColor(roles.accent));
            text.setRight(static_cast<int>(left) - 8);
        }
    }
    painter.setPen(ink);
    paintText(painter, text, Qt::AlignVCenter, title());
}

}  // namespace orvo
