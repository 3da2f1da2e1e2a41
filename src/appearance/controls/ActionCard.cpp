#include "appearance/controls/ActionCard.h"

#include "appearance/controls/Card.h"
#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"
#include "appearance/controls/typography.h"

#include <QPainter>

namespace orvo {
namespace {

constexpr int cardHeight = 56;
constexpr int padding = 16;
constexpr int tile = 28;
constexpr int gap = 12;

}  // namespace

ActionCard::ActionCard(const QString& icon, const QString& title, QWidget* parent)
    : Pressable(title, parent), m_icon(icon) {
    setFont(fontOf(TypeRole::Name));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize ActionCard::sizeHint() const {
    return {2 * padding + tile + gap + fontMetrics().horizontalAdvance(title()), cardHeight};
}

QSize ActionCard::minimumSizeHint() const {
    return {2 * padding + tile + gap + 24, cardHeight};
}

void ActionCard::paintEvent(QPaintEvent*) {
    const Roles& roles = rolesOf(this);
    QPainter painter(this);
    painter.setOpacity(controlOpacity());
    const QColor fill = isDown() ? toQColor(roles.cardPressed)
                                 : blended(toQColor(roles.surface), toQColor(roles.cardHover), hover());
    fillRounded(painter, rect(), Card::radius, fill);
    if (isFocusVisible()) {
        strokeRing(painter, rect(), Card::radius, toQColor(roles.accent));
    } else {
        strokeRounded(painter, rect(), Card::radius,
                      blended(toQColor(roles.border), toQColor(roles.borderStrong), hover()));
    }
    const QRectF tileRect(padding, (height() - tile) / 2, tile, tile);
    fillRounded(painter, tileRect, 8, toQColor(roles.tile));
    paintSymbol(painter, tileRect, m_icon, toQColor(roles.accent), 16);
    painter.setPen(toQColor(roles.text));
    const QRect text = rect().adjusted(padding + tile + gap, 0, -padding, 0);
    painter.drawText(text, Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(title(), Qt::ElideRight, text.width()));
}

}  // namespace orvo
