#include "files/ui/CodeLayout.h"

#include <QTextBlock>
#include <QTextLayout>

namespace orvo {

// Everything that places or paints a block asks for its rectangle first, so its lines are moved here.
QRectF CodeLayout::blockBoundingRect(const QTextBlock& block) const {
    QRectF rect = QPlainTextDocumentLayout::blockBoundingRect(block);
    if (!block.isValid() || !block.isVisible() || m_pitch == 0) return rect;
    QTextLayout& layout = *block.layout();
    for (int index = 0; index < layout.lineCount(); ++index) {
        QTextLine line = layout.lineAt(index);
        line.setPosition({line.x(), index * m_pitch + (m_pitch - line.height()) / 2});
    }
    const double below = block.next().isValid() ? 0 : document()->documentMargin();
    rect.setHeight(layout.lineCount() * m_pitch + below);
    return rect;
}

}  // namespace orvo
