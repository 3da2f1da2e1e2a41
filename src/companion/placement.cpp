#include "companion/placement.h"

#include <algorithm>

namespace orvo {
namespace {

// The pet's first place: this far from the right and from the lower edge.
constexpr double defaultRight = 28;
constexpr double defaultBottom = 30;
// Between the pet and the quick draft, and how far above the pet's lower edge that begins.
constexpr double controlsGap = 8;
constexpr double controlsRise = 15;

double overlap(const DeskRect& one, const DeskRect& other) {
    const double width = std::min(one.maxX(), other.maxX()) - std::max(one.x, other.x);
    const double height = std::min(one.maxY(), other.maxY()) - std::max(one.y, other.y);
    return width > 0 && height > 0 ? width * height : 0;
}

}  // namespace

QPointF boundedOrigin(QPointF origin, QSizeF size, const DeskRect& frame) {
    const double rightmost = std::max(frame.x, frame.maxX() - size.width());
    const double highest = std::max(frame.y, frame.maxY() - size.height());
    return {std::min(std::max(origin.x(), frame.x), rightmost),
            std::min(std::max(origin.y(), frame.y), highest)};
}

std::optional<QPointF> constrainedOrigin(const DeskRect& pet, const QList<DeskScreen>& screens) {
    if (screens.isEmpty()) return std::nullopt;
    const auto touched =
        std::ranges::find_if(screens, [&](const DeskScreen& screen) { return screen.frame.intersects(pet); });
    const DeskScreen& screen = touched == screens.end() ? screens.first() : *touched;
    return boundedOrigin({pet.x, pet.y}, {pet.width, pet.height}, screen.visibleFrame);
}

std::optional<QPointF> defaultOrigin(QSizeF pet, const QList<DeskScreen>& screens) {
    if (screens.isEmpty()) return std::nullopt;
    const DeskRect& frame = screens.first().visibleFrame;
    return QPointF(frame.maxX() - pet.width() - defaultRight, frame.y + defaultBottom);
}

std::optional<QPointF> controlsOrigin(const DeskRect& pet, QSizeF controls,
                                      const QList<DeskScreen>& screens) {
    if (screens.isEmpty()) return std::nullopt;
    // The screen a window is on is the one that shows most of it.
    const auto most = std::ranges::max_element(
        screens, {}, [&](const DeskScreen& screen) { return overlap(screen.frame, pet); });
    const DeskRect& frame = most->visibleFrame;
    double x = pet.maxX() + controlsGap;
    if (x + controls.width() > frame.maxX()) x = pet.x - controls.width() - controlsGap;
    return boundedOrigin({x, pet.y + controlsRise}, controls, frame);
}

DeskRect deskRect(const QRectF& rect, double mainHeight) {
    return {rect.x(), mainHeight - rect.y() - rect.height(), rect.width(), rect.height()};
}

QRectF toolkitRect(const DeskRect& rect, double mainHeight) {
    return {rect.x, mainHeight - rect.y - rect.height, rect.width, rect.height};
}

}  // namespace orvo
