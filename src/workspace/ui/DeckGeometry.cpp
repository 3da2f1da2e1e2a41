#include "workspace/ui/DeckGeometry.h"

#include <algorithm>
#include <cmath>

namespace orvo {
namespace {

struct Span {
    int start;
    int length;
};

/// Part `index` of `parts` equal ones of `total`; the pixels that do not divide are spread, not left at the
/// end.
Span part(int index, int parts, int total) {
    const auto edge = [&](int i) {
        return i * (total + DeckGeometry::gap) / parts;
    };
    return {edge(index), edge(index + 1) - DeckGeometry::gap - edge(index)};
}

}  // namespace

DeckGeometry DeckGeometry::grid(int count, QSize area) {
    if (count <= 0) return {};
    const int square = static_cast<int>(std::ceil(std::sqrt(count)));
    const int fitting = (area.width() + gap) / (minimumPaneWidth + gap);
    const int columns = std::max(1, std::min(square, fitting));
    const int rows = (count + columns - 1) / columns;

    DeckGeometry geometry;
    geometry.height = std::max(area.height(), rows * (minimumPaneHeight + gap) - gap);
    for (int index = 0; index < count; ++index) {
        const int row = index / columns;
        const int inRow = std::min(columns, count - row * columns);
        const Span x = part(index % columns, inRow, area.width());
        const Span y = part(row, rows, geometry.height);
        geometry.panes.append(QRect(x.start, y.start, x.length, y.length));
    }
    return geometry;
}

}  // namespace orvo
