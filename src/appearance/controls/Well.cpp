#include "appearance/controls/Well.h"

#include "appearance/controls/Card.h"
#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/painting.h"

#include <QPainter>

namespace orvo {

void Well::setFocused(bool focused) {
    m_focused = focused;
    update();
}

void Well::paintEvent(QPaintEvent*) {
    constexpr double radius = 8;
    const Roles& roles = rolesOf(this);
    QPainter painter(this);
    if (m_edge == Edge::Bare) {
        painter.fillRect(rect(), toQColor(roles.well));
        return;
    }
    if (m_edge == Edge::CardCorner) {
        // The other corners lie beyond the well. One less than the card's, whose border stays free.
        constexpr int corner = static_cast<int>(Card::radius) - 1;
        painter.setClipRect(rect());
        fillRounded(painter, rect().adjusted(-corner, -corner, 0, 0), corner, toQColor(roles.well));
        return;
    }
    fillRounded(painter, rect(), radius, toQColor(roles.well));
    if (m_focused) {
        strokeRing(painter, rect(), radius, toQColor(roles.accent));
    } else {
        strokeRounded(painter, rect(), radius, toQColor(roles.border));
    }
}

}  // namespace orvo
