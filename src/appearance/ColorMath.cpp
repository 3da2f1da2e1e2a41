#include "appearance/ColorMath.h"

#include <algorithm>
#include <cmath>

namespace orvo {
namespace {

std::uint8_t mixPart(std::uint8_t base, std::uint8_t other, double amount) {
    return static_cast<std::uint8_t>(std::lround(base + (other - base) * std::clamp(amount, 0.0, 1.0)));
}

double luminance(Rgb color) {
    const auto linear = [](std::uint8_t part) {
        const double value = part / 255.0;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

}  // namespace

Rgb mix(Rgb base, Rgb other, double amount) {
    return {mixPart(base.red, other.red, amount), mixPart(base.green, other.green, amount),
            mixPart(base.blue, other.blue, amount)};
}

Rgb over(Rgba paint, Rgb base) {
    return mix(base, paint.rgb, paint.alpha);
}

double contrastRatio(Rgb first, Rgb second) {
    const double a = luminance(first);
    const double b = luminance(second);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

Rgb readableOn(Rgb fill) {
    constexpr Rgb black{0, 0, 0};
    constexpr Rgb white{255, 255, 255};
    return contrastRatio(fill, black) >= contrastRatio(fill, white) ? black : white;
}

}  // namespace orvo
