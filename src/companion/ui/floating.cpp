#include "companion/ui/floating.h"

#include <cmath>

namespace orvo::floating {
namespace {

/// Radians a second: one cycle takes 3.93 s.
constexpr double pace = 1.6;

}  // namespace

int offsetAt(std::chrono::milliseconds moment) {
    const double seconds = std::chrono::duration<double>(moment).count();
    return static_cast<int>(std::lround(std::sin(seconds * pace) * reach));
}

std::chrono::milliseconds stepFrom(std::chrono::milliseconds moment) {
    std::chrono::milliseconds later = shortestStep;
    // It turns within a second at the latest: the longest rest is at the top and at the bottom.
    while (offsetAt(moment + later) == offsetAt(moment))
        later += shortestStep;
    return later;
}

}  // namespace orvo::floating
