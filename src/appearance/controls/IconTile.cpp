#include "appearance/controls/IconTile.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"

#include <QPainter>

namespace orvo {
namespace {

int glyphOf(int side) {
    return side >= 36 ? 20 : side >= 32 ? 18 : 16;
}

}  // namespace

IconTile::IconTile(const QString& icon, int side, std::optional<Rgb> color, QWidget* parent)
    : QWidget(parent), m_icon(icon), m_color(color) {
    setFixedSize(side, side);
    prepareSymbol(icon, glyphOf(side));
}

void IconTile::setIcon(const QString& icon, std::optional<Rgb> color) {
    m_icon = icon;
    m_color = color;
    update();
}

void IconTile::paintEvent(QPaintEvent*) {
    const Roles& roles = rolesOf(this);
    QPainter painter(this);
    if (!isEnabled()) painter.setOpacity(0.4);
    const Rgb color = m_color ? symbolColor(*m_color, roles) : roles.accent;
    fillRounded(painter, rect(), 8, toQColor(m_color ? Roles::tileOf(color) : roles.tile));
    paintSymbol(painter, rect(), m_icon, toQColor(color), glyphOf(width()));
}

}  // namespace orvo
