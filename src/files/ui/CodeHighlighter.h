#pragma once

#include "files/CodeColoring.h"

#include <QTextLayout>

class QTextBlock;

namespace orvo {

/// Puts the colours of code on the lines of a document, each when it comes into view.
class CodeHighlighter {
public:
    /// The document's text has changed to `lines`; `isColored` is false for texts that stay plain.
    void setText(const QString& lines, bool isColored);
    /// Gives the block its colours; true when it had others, so that it must be laid out anew.
    bool color(const QTextBlock& block);

private:
    CodeColoring m_coloring;
    /// Blocks bear the number of the text that they were coloured for as their user state.
    int m_revision = 0;
};

}  // namespace orvo
