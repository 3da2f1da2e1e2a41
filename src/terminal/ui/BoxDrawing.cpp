#include "terminal/ui/BoxDrawing.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <array>
#include <cmath>

namespace orvo {
namespace {

enum Weight : unsigned { None, Light, Heavy, Double };
enum Axis { Level, Upright };
enum Direction { Backward, Forward };

struct Arm {
    unsigned weight;
    Axis axis;
    Direction direction;
};

// For U+2500 to U+257F the weights of the arms, two bits each: up, right, down, left from the lowest bits on.
// 0 stands for dashes, arcs and diagonals, which are drawn by rules of their own.
constexpr std::array<unsigned char, 128> arms = {
    0x44, 0x88, 0x11, 0x22, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x14, 0x18, 0x24, 0x28,
    0x50, 0x90, 0x60, 0xA0, 0x05, 0x09, 0x06, 0x0A, 0x41, 0x81, 0x42, 0x82, 0x15, 0x19, 0x16, 0x25,
    0x26, 0x1A, 0x29, 0x2A, 0x51, 0x91, 0x52, 0x61, 0x62, 0x92, 0xA1, 0xA2, 0x54, 0x94, 0x58, 0x98,
    0x64, 0xA4, 0x68, 0xA8, 0x45, 0x85, 0x49, 0x89, 0x46, 0x86, 0x4A, 0x8A, 0x55, 0x95, 0x59, 0x99,
    0x56, 0x65, 0x66, 0x96, 0x5A, 0xA5, 0x69, 0x9A, 0xA9, 0xA6, 0x6A, 0xAA, 0x00, 0x00, 0x00, 0x00,
    0xCC, 0x33, 0x1C, 0x34, 0x3C, 0xD0, 0x70, 0xF0, 0x0D, 0x07, 0x0F, 0xC1, 0x43, 0xC3, 0x1D, 0x37,
    0x3F, 0xD1, 0x73, 0xF3, 0xDC, 0x74, 0xFC, 0xCD, 0x47, 0xCF, 0xDD, 0x77, 0xFF, 0x00, 0x00, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x40, 0x01, 0x04, 0x10, 0x80, 0x02, 0x08, 0x20, 0x48, 0x21, 0x84, 0x12,
};

/// Paints in whole device pixels, counted from the cell's top left corner.
class BoxPainter {
public:
    BoxPainter(QPainter& painter, const QRectF& cell, const QColor& color, double lineWidth, double scale)
        : m_painter(painter),
          m_cell(cell),
          m_color(color),
          m_scale(scale),
          m_width(static_cast<int>(std::lround(cell.width() * scale))),
          m_height(static_cast<int>(std::lround(cell.height() * scale))),
          m_light(std::max(1, static_cast<int>(std::lround(lineWidth * scale)))) {}

    void paint(char32_t character) {
        if (character < 0x2500) return scanLine(character);
        if (character >= 0x2800) return braille(character - 0x2800);
        if (character >= 0x2580) return block(character);
        if (const unsigned weights = arms[character - 0x2500]; weights != 0) return lines(weights);
        if (character >= 0x2571 && character <= 0x2573) return diagonals(character);
        if (character >= 0x256D && character <= 0x2570) return arc(character);
        dashes(character);
    }

private:
    void fill(int x, int y, int width, int height) { fill(x, y, width, height, m_color); }
    void fill(int x, int y, int width, int height, const QColor& color) {
        m_painter.fillRect(
            QRectF(m_cell.x() + x / m_scale, m_cell.y() + y / m_scale, width / m_scale, height / m_scale),
            color);
    }

    int thickness(unsigned weight) const { return weight == Heavy ? 2 * m_light + m_light % 2 : m_light; }
    /// Where a line of some thickness begins so that lines of all weights have one axis.
    int centred(int extent, int thick) const { return (extent - thick) / 2; }

    /// The first, third, seventh or ninth of nine that fill a cell; the fifth is the light horizontal line.
    void scanLine(char32_t character) {
        constexpr std::array<int, 4> quarters = {0, 1, 3, 4};
        fill(0, (m_height - m_light) * quarters[character - 0x23BA] / 4, m_width, m_light);
    }

    void lines(unsigned weights) {
        const unsigned up = weights & 3, right = weights >> 2 & 3, down = weights >> 4 & 3,
                       left = weights >> 6 & 3;
        arm({up, Upright, Backward}, down, left, right);
        arm({down, Upright, Forward}, up, left, right);
        arm({left, Level, Backward}, right, up, down);
        arm({right, Level, Forward}, left, up, down);
    }

    /// One arm from the middle to an edge. `before` and `after` are the arms across it, upper or left one
    /// first.
    void arm(Arm self, unsigned opposite, unsigned before, unsigned after) {
        if (self.weight == None) return;
        const int breadth = self.axis == Upright ? m_width : m_height;
        if (self.weight != Double) {
            const int thick = thickness(self.weight);
            return stroke(self, centred(breadth, thick), thick, singleJoint(opposite, before, after));
        }
        const int first = centred(breadth, 3 * m_light);
        stroke(self, first, m_light, doubleJoint(before, after));
        stroke(self, first + 2 * m_light, m_light, doubleJoint(after, before));
    }

    // A joint is how much of the middle, centred, an arm covers; -m_light ends it at the near one of two
    // lines.

    int singleJoint(unsigned opposite, unsigned before, unsigned after) const {
        if (before == Double && after == Double && opposite == None) return -m_light;
        if (before == Double || after == Double) return 3 * m_light;
        return thickness(std::max({before, after, unsigned{Light}}));
    }
    /// Of one line of a double arm: `near` is the arm across on its own side.
    int doubleJoint(unsigned near, unsigned far) const {
        if (near == Double) return -m_light;
        if (far == Double) return 3 * m_light;
        return thickness(std::max({near, far, unsigned{Light}}));
    }

    void stroke(Arm self, int across, int thick, int joint) {
        const int length = self.axis == Upright ? m_height : m_width;
        const int begin = self.direction == Forward ? centred(length, joint) : 0;
        const int end = self.direction == Forward ? length : centred(length, joint) + joint;
        along(self.axis, begin, end - begin, across, thick);
    }

    void along(Axis axis, int begin, int length, int across, int thick) {
        if (axis == Upright) {
            fill(across, begin, thick, length);
        } else {
            fill(begin, across, length, thick);
        }
    }

    void dashes(char32_t character) {
        const int count = character >= 0x254C ? 2 : character >= 0x2508 ? 4 : 3;
        const Axis axis = (character & 2) != 0 ? Upright : Level;
        const int thick = thickness((character & 1) != 0 ? Heavy : Light);
        const int extent = axis == Upright ? m_height : m_width;
        const int across = centred(axis == Upright ? m_width : m_height, thick);
        for (int i = 0; i < count; ++i) {
            const int begin = extent * i / count;
            const int gap = std::max(1, extent / (count * 3));
            along(axis, begin, std::max(1, extent * (i + 1) / count - begin - gap), across, thick);
        }
    }

    /// The middle of a light line, in dip from the cell's corner.
    QPointF axis() const {
        return {(centred(m_width, m_light) + m_light / 2.0) / m_scale,
                (centred(m_height, m_light) + m_light / 2.0) / m_scale};
    }

    void stroke(const QPainterPath& path) {
        m_painter.save();
        m_painter.setRenderHint(QPainter::Antialiasing);
        m_painter.setClipRect(m_cell, Qt::IntersectClip);
        m_painter.translate(m_cell.topLeft());
        m_painter.setBrush(Qt::NoBrush);
        m_painter.setPen(QPen(m_color, m_light / m_scale, Qt::SolidLine, Qt::FlatCap));
        m_painter.drawPath(path);
        m_painter.restore();
    }

    void arc(char32_t character) {
        const bool right = character == 0x256D || character == 0x2570;
        const bool down = character == 0x256D || character == 0x256E;
        const QPointF middle = axis();
        const QPointF sideEnd(right ? m_cell.width() : 0, middle.y());
        const QPointF uprightEnd(middle.x(), down ? m_cell.height() : 0);
        const double radius =
            std::min(std::abs(sideEnd.x() - middle.x()), std::abs(uprightEnd.y() - middle.y()));
        const QPointF towardSide(right ? radius : -radius, 0);
        const QPointF towardUpright(0, down ? radius : -radius);
        // A cubic whose handles are 0.5523 of the radius is a quarter circle to the eye.
        constexpr double handle = 0.5523;
        QPainterPath path(uprightEnd);
        path.lineTo(middle + towardUpright);
        path.cubicTo(middle + towardUpright * (1 - handle), middle + towardSide * (1 - handle),
                     middle + towardSide);
        path.lineTo(sideEnd);
        stroke(path);
    }

    void diagonals(char32_t character) {
        QPainterPath path;
        if (character != 0x2572) {
            path.moveTo(m_cell.width(), 0);
            path.lineTo(0, m_cell.height());
        }
        if (character != 0x2571) {
            path.moveTo(0, 0);
            path.lineTo(m_cell.width(), m_cell.height());
        }
        stroke(path);
    }

    static int part(int extent, int eighths) { return (extent * eighths + 4) / 8; }

    void block(char32_t character) {
        if (character == 0x2580) return fill(0, 0, m_width, part(m_height, 4));
        if (character <= 0x2588) {
            const int height = part(m_height, static_cast<int>(character - 0x2580));
            return fill(0, m_height - height, m_width, height);
        }
        if (character <= 0x258F)
            return fill(0, 0, part(m_width, static_cast<int>(0x2590 - character)), m_height);
        if (character == 0x2590) return fill(part(m_width, 4), 0, m_width - part(m_width, 4), m_height);
        if (character <= 0x2593) {
            QColor shade = m_color;
            shade.setAlphaF(m_color.alphaF() * 0.25f * static_cast<float>(character - 0x2590));
            return fill(0, 0, m_width, m_height, shade);
        }
        if (character == 0x2594) return fill(0, 0, m_width, part(m_height, 1));
        if (character == 0x2595) return fill(m_width - part(m_width, 1), 0, part(m_width, 1), m_height);
        quadrants(character);
    }

    /// Dots at the middles of two by four equal parts, so that they lie as evenly across cells as within one.
    void braille(char32_t dots) {
        // Bits 0 to 2 go down the left side, 3 to 5 down the right, 6 and 7 are the lowest ones.
        constexpr std::array<int, 8> columns = {0, 0, 0, 1, 1, 1, 0, 1};
        constexpr std::array<int, 8> rows = {0, 1, 2, 0, 1, 2, 3, 3};
        const int size =
            std::max(1, static_cast<int>(std::lround(0.55 * std::min(m_width / 2.0, m_height / 4.0))));
        for (std::size_t dot = 0; dot < columns.size(); ++dot) {
            if ((dots >> dot & 1) == 0) continue;
            fill((m_width * (2 * columns[dot] + 1) - 2 * size) / 4,
                 (m_height * (2 * rows[dot] + 1) - 4 * size) / 8, size, size);
        }
    }

    void quadrants(char32_t character) {
        // Bits: upper left, upper right, lower left, lower right.
        constexpr std::array<unsigned char, 10> filled = {4, 8, 1, 13, 9, 7, 11, 2, 6, 14};
        const unsigned bits = filled[character - 0x2596];
        const int halfWidth = part(m_width, 4), halfHeight = part(m_height, 4);
        if ((bits & 1) != 0) fill(0, 0, halfWidth, halfHeight);
        if ((bits & 2) != 0) fill(halfWidth, 0, m_width - halfWidth, halfHeight);
        if ((bits & 4) != 0) fill(0, halfHeight, halfWidth, m_height - halfHeight);
        if ((bits & 8) != 0) fill(halfWidth, halfHeight, m_width - halfWidth, m_height - halfHeight);
    }

    QPainter& m_painter;
    QRectF m_cell;
    QColor m_color;
    double m_scale;
    int m_width;
    int m_height;
    int m_light;
};

}  // namespace

void paintBoxCharacter(QPainter& painter, char32_t character, const QRectF& cell, const QColor& color,
                       double lineWidth, double devicePixelRatio) {
    BoxPainter(painter, cell, color, lineWidth, devicePixelRatio).paint(character);
}

}  // namespace orvo
