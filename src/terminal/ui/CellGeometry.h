#pragma once

#include <QRect>
#include <QRectF>
#include <QSize>

#include <cmath>

namespace orvo {

/// Where the cells of a terminal lie in its view. Units are dip; a cell's width is a real number, so
/// positions are always worked out from the column and never added up.
struct CellGeometry {
    static constexpr int marginX = 10;
    static constexpr int marginY = 8;

    double cellWidth = 0;
    int lineHeight = 0;

    /// Whole cells that fit into a width, whole lines into a height; not yet raised to any minimum.
    /// The hair added keeps what fits exactly from being lost to binary fractions.
    int columnsIn(int width) const { return static_cast<int>((width - 2 * marginX) / cellWidth + 1e-9); }
    int rowsIn(int height) const { return (height - 2 * marginY) / lineHeight; }

    double columnX(int column) const { return marginX + column * cellWidth; }
    int lineY(int row) const { return marginY + row * lineHeight; }
    QRectF cell(int row, int column, int span = 1) const {
        return {columnX(column), static_cast<double>(lineY(row)), span * cellWidth,
                static_cast<double>(lineHeight)};
    }
    /// A line over the whole width of a view.
    QRect line(int row, int viewWidth) const { return {0, lineY(row), viewWidth, lineHeight}; }
    /// The smallest rectangle of whole dip around some cells.
    QRect around(int row, int column, int span = 1) const { return cell(row, column, span).toAlignedRect(); }

    bool operator==(const CellGeometry&) const = default;
};

}  // namespace orvo
