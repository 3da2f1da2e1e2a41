#include "appearance/ui/PaletteTile.h"

#include "appearance/controls/Card.h"
#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/lineText.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"
#include "appearance/controls/typography.h"

#include <QPainter>
#include <QPainterPath>

namespace orvo {
namespace {

constexpr int padding = 12;
constexpr int swatchHeight = 96;
constexpr int textTop = padding + swatchHeight + 12;
constexpr int titleHeight = 20;
constexpr int subtitleHeight = 16;
constexpr int markSize = 16;
constexpr double tilt = -26;

Roles rolesOfPreset(const ThemePreset& preset) {
    Theme theme(nullptr);
    theme.apply(preset);
    return Roles::of(theme);
}

QColor faded(Rgb color, double alpha) {
    return toQColor(Rgba{color, alpha});
}

}  // namespace

PaletteTile::PaletteTile(const ThemePreset& preset, QWidget* parent)
    : Pressable(preset.title, parent), m_preset(preset), m_colors(rolesOfPreset(preset)) {
    setCheckable(true);
    setAutoExclusive(true);
    setAccessibleDescription(preset.subtitle);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

// The planet of the brand, seen from closer.
void PaletteTile::paintSwatch(QPainter& painter, const QRectF& box) const {
    painter.save();
    QPainterPath shape;
    shape.addRoundedRect(box, 8, 8);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(shape, toQColor(m_colors.bg));
    painter.setClipPath(shape);
    painter.translate(box.center());
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(toQColor(m_colors.text), 5));
    painter.drawEllipse(QPointF(), 12.5, 12.5);
    painter.rotate(tilt);
    painter.setPen(QPen(faded(m_colors.accent, 0.6), 1));
    painter.drawEllipse(QPointF(), 63, 24);
    painter.setPen(QPen(faded(m_colors.accent, 0.35), 1));
    painter.drawEllipse(QPointF(), 98, 42);
    painter.setPen(Qt::NoPen);
    painter.setBrush(toQColor(m_colors.accent));
    painter.drawEllipse(QPointF(63, 0), 7.5, 7.5);
    painter.restore();
    strokeRounded(painter, box, 8, toQColor(rolesOf(this).border));
}

void PaletteTile::paintEvent(QPaintEvent*) {
    const Roles& roles = rolesOf(this);
    QPainter painter(this);
    painter.setOpacity(controlOpacity());
    fillRounded(painter, rect(), Card::radius,
                isDown() ? toQColor(roles.cardPressed)
                         : blended(toQColor(roles.surface), toQColor(roles.cardHover), hover()));
    paintSwatch(painter, QRectF(padding, padding, width() - 2 * padding, swatchHeight));

    const int textWidth = width() - 2 * padding;
    // The mark stands beside the title, which is short; the line below needs all the room there is.
    const int titleWidth = textWidth - (isChecked() ? markSize + 8 : 0);
    painter.setFont(fontOf(TypeRole::Name));
    painter.setPen(toQColor(roles.text));
    paintText(painter, QRect(padding, textTop, titleWidth, titleHeight), Qt::AlignVCenter, title());
    painter.setFont(fontOf(TypeRole::Caption));
    painter.setPen(toQColor(roles.muted));
    paintText(painter, QRect(padding, textTop + titleHeight, textWidth, subtitleHeight), Qt::AlignVCenter,
              m_preset.subtitle);
    if (isChecked()) {
        paintSymbol(painter,
                    QRectF(width() - padding - markSize, textTop + (titleHeight - markSize) / 2.0, markSize,
                           markSize),
                    QStringLiteral("checkmark.circle.fill"), toQColor(roles.accent), markSize);
    }
    if (isFocusVisible() || isChecked()) {
        strokeRing(painter, rect(), Card::radius,
                   toQColor(isFocusVisible() && isChecked() ? roles.text : roles.accent));
    } else {
        strokeRounded(painter, rect(), Card::radius,
                      blended(toQColor(roles.border), toQColor(roles.borderStrong), hover()));
    }
}

}  // namespace orvo
