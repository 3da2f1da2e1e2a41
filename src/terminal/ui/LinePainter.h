#pragma once

#include "terminal/core/CellExtras.h"
#include "terminal/core/TerminalRow.h"
#include "terminal/ui/GlyphCache.h"

#include <QColor>
#include <QList>

#include <span>
#include <vector>

class QPainter;

namespace orvo {

/// What cells without colours of their own are drawn in.
struct CellDefaults {
    QColor text;
    QColor background;

    bool operator==(const CellDefaults&) const = default;
};

/// Some columns of a line that are marked: up to, not including, `end`.
struct Highlight {
    int first = 0;
    int end = 0;
    QRgb fill = 0;
    /// An underline below linked text instead of a fill.
    bool underlined = false;

    bool operator==(const Highlight&) const = default;
};

/// Draws lines of cells during one paint event.
class LinePainter {
public:
    /// All references outlive the painter. `columns` is the width of the grid; what lies beyond is not drawn.
    LinePainter(QPainter& painter, GlyphCache& glyphs, const CellDefaults& defaults, const CellExtras& extras,
                int columns);

    /// Draws a line at the grid's row, within that row's rectangle. The background must be filled already.
    /// Of highlights that overlap, the last is seen.
    void paint(const TerminalRow& line, int row, std::span<const Highlight> highlights = {});

    /// A cell rectangle with its edges on whole device pixels: neighbours meet without gap or overlap.
    QRectF snappedCell(int row, int column, int span = 1) const;

private:
    struct Look {
        QRgb text = 0;
        /// Transparent when the cell shows the view's background.
        QRgb fill = 0;
        GlyphStyle style = GlyphStyle::Regular;

        bool operator==(const Look&) const = default;
    };

    Look lookOf(const TerminalCell& cell) const;
    void prepareLooks(std::span<const TerminalCell> cells, std::span<const Highlight> highlights);
    double snapX(double x) const;
    double snapY(double y) const;
    void paintBackgrounds(int row);
    void paintTexts(const TerminalRow& line, std::span<const TerminalCell> cells, int row);
    void paintDecorations(std::span<const TerminalCell> cells, int row);
    void paintUnderline(TerminalCell::Underline style, const QRectF& area, double top, const QColor& color);
    void paintCurl(const QRectF& area, double top, const QColor& color);
    double lineThickness() const;
    void paintPicture(const QString& text, const Look& look, const QRectF& cell);
    void flushGlyphs();

    QPainter& m_painter;
    GlyphCache& m_glyphs;
    const CellGeometry& m_geometry;
    const CellExtras& m_extras;
    QRgb m_defaultText;
    QRgb m_defaultBackground;
    int m_columns;
    QPointF m_origin;
    double m_scale;
    std::vector<double> m_edges;
    /// Those of the line that is being painted, by column.
    std::vector<Look> m_looks;

    // The run of glyphs of one look that is being collected.
    Look m_runLook;
    QList<quint32> m_runGlyphs;
    QList<QPointF> m_runPositions;
};

}  // namespace orvo
