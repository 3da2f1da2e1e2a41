#include "files/ui/LineRuler.h"

#include "appearance/codeColors.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/typography.h"
#include "files/ui/CodeEditor.h"

#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

namespace orvo {
namespace {

constexpr int usualWidth = 45;
constexpr int rightPadding = 10;
constexpr int leftPadding = 4;
constexpr double numberPixels = 10;
constexpr double darkening = 0.08;

}  // namespace

LineRuler::LineRuler(CodeEditor& editor) : QWidget(&editor), m_editor(editor) {}

int LineRuler::widthFor(int lines) {
    const int digits = QFontMetrics(codeFont(numberPixels)).horizontalAdvance(QString::number(lines));
    return std::max(usualWidth, leftPadding + digits + rightPadding);
}

void LineRuler::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    m_editor.fillGround(painter, rect(), Qt::BottomLeftCorner,
                        blended(m_editor.background(), Qt::black, darkening));
    painter.setFont(codeFont(numberPixels));
    painter.setPen(toQColor(CodeColors().lineNumber));
    for (const CodeEditor::NumberedLine& line : m_editor.visibleLines()) {
        const QRectF room(0, line.top, width() - rightPadding, line.height);
        if (!room.intersects(event->rect())) continue;
        painter.drawText(room, Qt::AlignRight | Qt::AlignVCenter, QString::number(line.number));
    }
}

}  // namespace orvo
