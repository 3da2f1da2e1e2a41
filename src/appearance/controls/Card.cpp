#include "appearance/controls/Card.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/painting.h"

#include <QPainter>

namespace orvo {

void Card::setFrame(CardFrame frame) {
    if (frame == m_frame) return;
    m_frame = frame;
    update();
}

void Card::paintEvent(QPaintEvent*) {
    const Roles& roles = rolesOf(this);
    QPainter painter(this);
    fillRounded(painter, rect(), radius, toQColor(roles.surface));
    switch (m_frame) {
        case CardFrame::Plain:
            strokeRounded(painter, rect(), radius, toQColor(roles.border));
            break;
        case CardFrame::Active:
            strokeRounded(painter, rect(), radius, toQColor(roles.accent));
            break;
        case CardFrame::Selected:
            strokeRing(painter, rect(), radius, toQColor(roles.accent));
            break;
    }
}

}  // namespace orvo
