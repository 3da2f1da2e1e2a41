#include "appearance/controls/ActionCard.h"

#include "appearance/controls/Card.h"
#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/lineText.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"
#include "appearance/controls/typography.h"

#include <QPainter>

namespace orvo {
namespace {

constexpr int cardHeight = 56;
constexpr int describedCardHeight = 68;
constexpr int padding = 16;
constexpr int tile = 28;
constexpr int glyph = 16;
constexpr int gap = 12;

}  // namespace

ActionCard::ActionCard(const QString& icon, const QString& title, const QString& description, QWidget* parent)
    : Pressable(title, parent), m_icon(icon), m_description(description) {
    setAccessibleDescription(description);
    setFont(fontOf(TypeRole::Name));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    prepareSymbol(icon, glyph);
}

QSize ActionCard::sizeHint() const {
    const int width =
        std::max(measureText(font(), title()), measureText(fontOf(TypeRole::Caption), m_description));
    return {2 * padding + tile + gap + width, m_description.isEmpty() ? cardHeight : describedCardHeight};
}

QSize ActionCard::minimumSizeHint() const {
    return {2 * padding + tile + gap + 24, sizeHint().height()};
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
    const int tileTop = (height() - tile) / 2;
    const QRectF tileRect(padding, tileTop, tile, tile);
    fillRounded(painter, tileRect, 8, toQColor(roles.tile));
    paintSymbol(painter, tileRect, m_icon, toQColor(roles.accent), glyph);
    QRect line = rect().adjusted(padding + tile + gap, 0, -padding, 0);
    const auto write = [&](const QRect& place, const QString& text, Rgb color) {
        painter.setPen(toQColor(color));
        paintText(painter, place, Qt::AlignVCenter, text);
    };
    if (m_description.isEmpty()) {
        write(line, title(), roles.text);
        return;
    }
    const int titleHeight = linePitch(TypeRole::Name);
    const int descriptionHeight = linePitch(TypeRole::Caption);
    line.setTop((height() - titleHeight - descriptionHeight) / 2);
    line.setHeight(titleHeight);
    write(line, title(), roles.text);
    line.translate(0, titleHeight);
    line.setHeight(descriptionHeight);
    painter.setFont(fontOf(TypeRole::Caption));
    write(line, m_description, roles.muted);
}

}  // namespace orvo
