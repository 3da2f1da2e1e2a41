#include "files/ui/CodeHighlighter.h"

#include "appearance/codeColors.h"
#include "appearance/controls/painting.h"

#include <QTextBlock>

namespace orvo {
namespace {

QColor colorOf(CodeToken token) {
    static const CodeColors colors;
    switch (token) {
        case CodeToken::Keyword:
            return toQColor(colors.keyword);
        case CodeToken::Number:
            return toQColor(colors.number);
        case CodeToken::String:
            return toQColor(colors.string);
        case CodeToken::Comment:
            return toQColor(colors.comment);
    }
    Q_UNREACHABLE();
}

}  // namespace

void CodeHighlighter::setText(const QString& lines, bool isColored) {
    m_coloring.setText(isColored ? lines : QString());
    ++m_revision;
}

bool CodeHighlighter::color(const QTextBlock& block) {
    if (block.userState() == m_revision) return false;
    QTextBlock(block).setUserState(m_revision);
    QList<QTextLayout::FormatRange> formats;
    for (const CodeSpan& span : m_coloring.spansOf(block.position(), block.length() - 1)) {
        QTextCharFormat format;
        format.setForeground(colorOf(span.token));
        formats.append({static_cast<int>(span.start), static_cast<int>(span.length), format});
    }
    if (block.layout()->formats() == formats) return false;
    block.layout()->setFormats(formats);
    return true;
}

}  // namespace orvo
