#include "appearance/Roles.h"

#include "appearance/Theme.h"

namespace orvo {

Roles Roles::of(const Theme& theme) {
    constexpr Rgb black{0, 0, 0};
    constexpr Rgb white{255, 255, 255};
    const Rgb bg = theme.bg();
    const Rgb surface = theme.surface();
    const Rgb muted = theme.muted();
    const Rgb text = theme.text();
    const Rgb accent = theme.accent();
    const Rgb danger = colorFromHex("F4808A");

    Roles roles;
    roles.bg = bg;
    roles.surface = surface;
    roles.sidebar = theme.sidebar();
    roles.border = theme.border();
    roles.muted = muted;
    roles.text = text;
    roles.accent = accent;

    roles.hover = {text, 0.06};
    roles.pressed = {text, 0.10};
    roles.selected = {accent, 0.10};
    roles.segmentOn = {text, 0.12};
    roles.menuHighlight = {text, 0.10};
    roles.countBadge = {text, 0.09};
    roles.borderStrong = {text, 0.28};
    roles.controlOutline = {muted, 0.70};
    roles.cardHover = mix(surface, text, 0.03);
    roles.cardPressed = mix(surface, text, 0.06);
    roles.accentHover = mix(accent, white, 0.16);
    roles.accentPressed = mix(accent, black, 0.14);
    roles.onAccent = readableOn(accent);
    roles.onDanger = readableOn(danger);
    roles.danger = danger;
    roles.dangerBorder = {danger, 0.45};
    roles.dangerHover = {danger, 0.10};
    roles.dangerPressed = {danger, 0.18};
    roles.dangerFillHover = mix(danger, white, 0.16);
    roles.dangerFillPressed = mix(danger, black, 0.14);
    roles.activePane = mix(over(roles.border, bg), accent, 0.55);
    roles.mutedOnSelected = mix(muted, text, 0.35);
    roles.well = bg;
    roles.dim = {black, 0.55};
    roles.scrollThumb = {text, 0.22};
    roles.scrollThumbHover = {text, 0.34};
    roles.scrollThumbDrag = {text, 0.46};
    roles.tile = {text, 0.06};
    return roles;
}

}  // namespace orvo
