#include "terminal/ui/LinePainter.h"

#include "terminal/ui/BoxDrawing.h"

#include <QGlyphRun>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <optional>

namespace orvo {
namespace {

// A faint text keeps this share of its own colour over what lies below it.
constexpr double dimShare = 0.6;

QRgb opaque(CellColor color, QRgb byDefault) {
    const std::optional<Rgb> own = color.color();
    return own ? qRgb(own->red, own->green, own->blue) : byDefault;
}

QRgb mixed(QRgb over, QRgb under, double share) {
    const auto channel = [share](int a, int b) {
        return static_cast<int>(std::lround(a * share + b * (1 - share)));
    };
    return qRgb(channel(qRed(over), qRed(under)), channel(qGreen(over), qGreen(under)),
                channel(qBlue(over), qBlue(under)));
}

bool isBlank(const TerminalCell& cell) {
    return (cell.attributes & (TerminalCell::Cluster | TerminalCell::Continuation)) == 0 &&
           cell.content == U' ';
}

/// Some assistants begin every entry with the record sign, which only the colour font has here; a coloured
/// button would stand where a plain dot is meant.
char32_t shownFor(char32_t character) {
    return character == 0x23FA ? 0x25CF : character;
}

}  // namespace

LinePainter::LinePainter(QPainter& painter, GlyphCache& glyphs, const CellDefaults& defaults,
                         const CellExtras& extras, int columns)
    : m_painter(painter),
      m_glyphs(glyphs),
      m_geometry(glyphs.geometry()),
      m_extras(extras),
      m_defaultText(defaults.text.rgb()),
      m_defaultBackground(defaults.background.rgb()),
      m_columns(columns),
      m_origin(painter.deviceTransform().map(QPointF(0, 0))),
      m_scale(painter.deviceTransform().m11()) {
    m_edges.reserve(static_cast<std::size_t>(columns) + 1);
    for (int column = 0; column <= columns; ++column)
        m_edges.push_back(snapX(m_geometry.columnX(column)));
}

double LinePainter::snapX(double x) const {
    return (std::round(m_origin.x() + x * m_scale) - m_origin.x()) / m_scale;
}

double LinePainter::snapY(double y) const {
    return (std::round(m_origin.y() + y * m_scale) - m_origin.y()) / m_scale;
}

QRectF LinePainter::snappedCell(int row, int column, int span) const {
    const auto edge = [this](int at) {
        return m_edges[static_cast<std::size_t>(std::clamp(at, 0, m_columns))];
    };
    const double top = snapY(m_geometry.lineY(row));
    const double bottom = snapY(m_geometry.lineY(row + 1));
    return {QPointF(edge(column), top), QPointF(edge(column + span), bottom)};
}

LinePainter::Look LinePainter::lookOf(const TerminalCell& cell) const {
    Look look;
    const QRgb own = opaque(cell.foreground, m_defaultText);
    if (cell.inverse()) {
        look.text = opaque(cell.background, m_defaultBackground);
        look.fill = own;
    } else {
        look.text = own;
        look.fill = opaque(cell.background, 0);
    }
    if ((cell.attributes & TerminalCell::Dim) != 0) {
        look.text = mixed(look.text, look.fill != 0 ? look.fill : m_defaultBackground, dimShare);
    }
    const bool italic = (cell.attributes & TerminalCell::Italic) != 0;
    look.style = cell.bold() ? (italic ? GlyphStyle::BoldItalic : GlyphStyle::Bold)
                             : (italic ? GlyphStyle::Italic : GlyphStyle::Regular);
    return look;
}

void LinePainter::prepareLooks(std::span<const TerminalCell> cells, std::span<const Highlight> highlights) {
    m_looks.clear();
    for (const TerminalCell& cell : cells)
        m_looks.push_back(lookOf(cell));
    for (const Highlight& mark : highlights) {
        if (mark.underlined) continue;
        const auto end = std::min(static_cast<std::size_t>(std::max(mark.end, 0)), m_looks.size());
        for (auto column = static_cast<std::size_t>(std::max(mark.first, 0)); column < end; ++column) {
            m_looks[column].fill = mark.fill;
            // What an inverse cell writes in the background's colour would vanish in the mark.
            if (cells[column].inverse())
                m_looks[column].text = opaque(cells[column].foreground, m_defaultText);
        }
    }
}

void LinePainter::paint(const TerminalRow& line, int row, std::span<const Highlight> highlights) {
    const std::span<const TerminalCell> all = line.cells();
    const auto cells = all.first(std::min(all.size(), static_cast<std::size_t>(m_columns)));
    if (cells.empty()) return;
    // Tall glyphs stay in their line: otherwise what they leave in the next one would depend on which was
    // drawn last.
    m_painter.setClipRect(snappedCell(row, 0, m_columns));
    prepareLooks(cells, highlights);
    paintBackgrounds(row);
    paintTexts(line, cells, row);
    paintDecorations(cells, row);
    for (const Highlight& mark : highlights) {
        if (!mark.underlined) continue;
        const QRectF area = snappedCell(row, mark.first, mark.end - mark.first);
        const double top = snapY(m_geometry.lineY(row) + m_glyphs.baseline() + m_glyphs.underlineOffset());
        paintUnderline(TerminalCell::Underline::Single, area, top, QColor::fromRgb(mark.fill));
    }
}

void LinePainter::paintBackgrounds(int row) {
    const int count = static_cast<int>(m_looks.size());
    for (int begin = 0, end = 0; begin < count; begin = end) {
        const QRgb fill = m_looks[static_cast<std::size_t>(begin)].fill;
        for (end = begin + 1; end < count; ++end) {
            if (m_looks[static_cast<std::size_t>(end)].fill != fill) break;
        }
        if (fill != 0) m_painter.fillRect(snappedCell(row, begin, end - begin), QColor::fromRgb(fill));
    }
}

void LinePainter::paintTexts(const TerminalRow& line, std::span<const TerminalCell> cells, int row) {
    const double baseline = snapY(m_geometry.lineY(row) + m_glyphs.baseline());
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const TerminalCell& cell = cells[i];
        if (isBlank(cell) || cell.continuation() || (cell.attributes & TerminalCell::Conceal) != 0) continue;
        const int column = static_cast<int>(i);
        const int span = i + 1 < cells.size() && cells[i + 1].continuation() ? 2 : 1;
        const Look& look = m_looks[i];
        const bool cluster = (cell.attributes & TerminalCell::Cluster) != 0;
        if (!cluster && isBoxCharacter(cell.content)) {
            paintBoxCharacter(m_painter, cell.content, snappedCell(row, column, span),
                              QColor::fromRgb(look.text), m_glyphs.fontSize() / 12, m_scale);
            continue;
        }
        const quint32 glyph = cluster ? 0 : m_glyphs.glyph(shownFor(cell.content), look.style);
        if (glyph == 0) {
            paintPicture(QString::fromStdString(line.text(column)), look, snappedCell(row, column, span));
            continue;
        }
        if (look.text != m_runLook.text || look.style != m_runLook.style) flushGlyphs();
        m_runLook = look;
        m_runGlyphs.append(glyph);
        m_runPositions.append(QPointF(m_geometry.columnX(column), baseline));
    }
    flushGlyphs();
}

void LinePainter::flushGlyphs() {
    if (m_runGlyphs.isEmpty()) return;
    QGlyphRun run;
    run.setRawFont(m_glyphs.rawFont(m_runLook.style));
    run.setRawData(m_runGlyphs.constData(), m_runPositions.constData(), static_cast<int>(m_runGlyphs.size()));
    m_painter.setPen(QColor::fromRgb(m_runLook.text));
    m_painter.drawGlyphRun(QPointF(0, 0), run);
    m_runGlyphs.resize(0);
    m_runPositions.resize(0);
}

void LinePainter::paintPicture(const QString& text, const Look& look, const QRectF& cell) {
    const QSize size(static_cast<int>(std::lround(cell.width() * m_scale)),
                     static_cast<int>(std::lround(cell.height() * m_scale)));
    if (size.isEmpty()) return;
    m_painter.drawPixmap(cell.topLeft(), m_glyphs.picture(text, look.style, look.text, size, m_scale));
}

double LinePainter::lineThickness() const {
    return std::max(1.0, std::round(m_glyphs.lineThickness() * m_scale)) / m_scale;
}

void LinePainter::paintDecorations(std::span<const TerminalCell> cells, int row) {
    constexpr unsigned decorated =
        TerminalCell::Strike | TerminalCell::Overline | TerminalCell::underlineMask;
    const double baseline = m_geometry.lineY(row) + m_glyphs.baseline();
    const double thick = lineThickness();
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const TerminalCell& cell = cells[i];
        if ((cell.attributes & decorated) == 0) continue;
        const QRectF area = snappedCell(row, static_cast<int>(i));
        const QRgb text = m_looks[i].text;
        const auto rule = [&](double y) {
            const double top = std::min(snapY(y), area.bottom() - thick);
            m_painter.fillRect(QRectF(area.x(), top, area.width(), thick), QColor::fromRgb(text));
        };
        if (const auto style = cell.underline(); style != TerminalCell::Underline::None) {
            const QRgb color = opaque(m_extras.at(cell.extra).underlineColor, text);
            paintUnderline(style, area, snapY(baseline + m_glyphs.underlineOffset()), QColor::fromRgb(color));
        }
        if ((cell.attributes & TerminalCell::Strike) != 0) rule(baseline + m_glyphs.strikeOffset());
        if ((cell.attributes & TerminalCell::Overline) != 0) rule(area.top());
    }
}

void LinePainter::paintUnderline(TerminalCell::Underline style, const QRectF& area, double top,
                                 const QColor& color) {
    using Underline = TerminalCell::Underline;
    const double thick = lineThickness();
    top = std::min(top, area.bottom() - thick);
    if (style == Underline::Curly) return paintCurl(area, top, color);
    if (style == Underline::Dotted || style == Underline::Dashed) {
        // Counted from the left edge of the view, so that the pattern goes on from cell to cell.
        const double length = style == Underline::Dotted ? thick : 3 * thick;
        const double step = style == Underline::Dotted ? 2 * thick : 5 * thick;
        const int end = static_cast<int>(std::ceil(area.right() / step));
        for (int number = static_cast<int>(std::floor(area.left() / step)); number < end; ++number) {
            const double left = std::max(number * step, area.left());
            const double right = std::min(number * step + length, area.right());
            if (right > left) m_painter.fillRect(QRectF(left, top, right - left, thick), color);
        }
        return;
    }
    m_painter.fillRect(QRectF(area.x(), top, area.width(), thick), color);
    if (style == Underline::Double) {
        const double second = std::min(top + 2 * thick, area.bottom() - thick);
        m_painter.fillRect(QRectF(area.x(), second, area.width(), thick), color);
    }
}

/// One wave a cell, which meets that of the next cell at the same height and slope.
void LinePainter::paintCurl(const QRectF& area, double top, const QColor& color) {
    const double thick = lineThickness();
    // As much room as there is below the text, at most a calm wave.
    const double height = std::clamp(area.bottom() - thick / 2 - top, thick, 3 * thick);
    const double middle = std::min(top + height / 2, area.bottom() - thick / 2 - height / 2);
    QPainterPath wave(QPointF(area.left(), middle));
    const double half = area.width() / 2;
    wave.quadTo(area.left() + half / 2, middle - height, area.left() + half, middle);
    wave.quadTo(area.right() - half / 2, middle + height, area.right(), middle);
    m_painter.save();
    m_painter.setRenderHint(QPainter::Antialiasing);
    m_painter.setPen(QPen(color, thick, Qt::SolidLine, Qt::FlatCap));
    m_painter.setBrush(Qt::NoBrush);
    m_painter.drawPath(wave);
    m_painter.restore();
}

}  // namespace orvo
