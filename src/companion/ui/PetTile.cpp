#include "companion/ui/PetTile.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/lineText.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"
#include "appearance/controls/typography.h"

#include <QPainter>

namespace orvo {
namespace {

constexpr double radius = 8;
constexpr int imageSide = 62;
constexpr int imageTop = 10;
constexpr int symbolSide = 32;
constexpr int nameHeight = 20;
constexpr int bottom = 8;

}  // namespace

PetTile::PetTile(const QString& title, QWidget* parent) : Pressable(title, parent) {
    setCheckable(true);
    setAutoExclusive(true);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void PetTile::setImage(const QImage& image) {
    m_image = image;
    update();
}

void PetTile::paintEvent(QPaintEvent*) {
    const Roles& roles = rolesOf(this);
    QPainter painter(this);
    painter.setOpacity(controlOpacity());
    fillRounded(painter, rect(), radius, toQColor(roles.well));
    fillRounded(
        painter, rect(), radius,
        isDown() ? toQColor(roles.pressed) : blended(Qt::transparent, toQColor(roles.hover), hover()));
    const QRect place((width() - imageSide) / 2, imageTop, imageSide, imageSide);
    if (m_image.isNull()) {
        paintSymbol(painter, place, QStringLiteral("photo.badge.plus"), toQColor(roles.muted), symbolSide);
    } else {
        QRectF fitted(QPointF(), QSizeF(m_image.size()).scaled(place.size(), Qt::KeepAspectRatio));
        fitted.moveCenter(QRectF(place).center());
        painter.drawImage(snapped(painter, fitted), m_image);
    }
    painter.setFont(fontOf(TypeRole::SmallControl));
    painter.setPen(toQColor(roles.text));
    paintText(painter, QRect(0, height() - bottom - nameHeight, width(), nameHeight), Qt::AlignCenter,
              title());
    if (isChecked() || isFocusVisible()) {
        strokeRing(painter, rect(), radius,
                   toQColor(isFocusVisible() && isChecked() ? roles.text : roles.accent));
    } else {
        strokeRounded(painter, rect(), radius,
                      blended(toQColor(roles.border), toQColor(roles.borderStrong), hover()));
    }
}

}  // namespace orvo
