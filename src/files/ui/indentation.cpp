#include "files/ui/indentation.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>

namespace orvo {
namespace {

constexpr qsizetype usualLevel = 4;
// Where the level is looked for: enough lines to meet an indented one.
constexpr int searchedLines = 500;

bool isBlank(QChar c) {
    return c == u' ' || c == u'\t';
}

QString indentationOf(const QString& line) {
    const auto* const end = std::ranges::find_if_not(line, isBlank);
    return line.left(end - line.begin());
}

/// One level as the text itself indents: that of its first indented line.
QString levelOf(const QTextDocument& document) {
    QTextBlock block = document.begin();
    for (int line = 0; line < searchedLines && block.isValid(); ++line, block = block.next()) {
        QString blanks = indentationOf(block.text());
        if (blanks.startsWith(u'\t')) return QStringLiteral("\t");
        const bool isLevel = blanks.size() >= 2 && blanks.size() <= 8 && blanks.size() < block.length() - 1;
        if (isLevel) return blanks;
    }
    return QString(usualLevel, u' ');
}

struct Blocks {
    QTextBlock first;
    QTextBlock last;
};

/// The lines of the selection; one whose very beginning ends it is not among them.
Blocks selectedBlocks(const QTextCursor& cursor) {
    const QTextDocument& document = *cursor.document();
    const QTextBlock first = document.findBlock(cursor.selectionStart());
    QTextBlock last = document.findBlock(cursor.selectionEnd());
    if (last != first && last.position() == cursor.selectionEnd()) last = last.previous();
    return {first, last};
}

template <class Change>
QTextCursor changeLines(QTextCursor cursor, Change change) {
    const auto [first, last] = selectedBlocks(cursor);
    const int lastNumber = last.blockNumber();
    const int start = first.position();
    const bool isWhole = cursor.hasSelection() && cursor.selectionStart() == start;
    cursor.beginEditBlock();
    for (QTextBlock block = first; block.isValid() && block.blockNumber() <= lastNumber;
         block = block.next()) {
        QTextCursor at(block);
        change(at, block.text());
    }
    cursor.endEditBlock();
    // A selection from the beginning of a line keeps it, with what was put in there.
    if (isWhole) {
        const int end = cursor.selectionEnd();
        cursor.setPosition(start);
        cursor.setPosition(end, QTextCursor::KeepAnchor);
    }
    return cursor;
}

}  // namespace

QTextCursor insertIndentedLine(QTextCursor cursor) {
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    const QString before = cursor.block().text().left(cursor.positionInBlock());
    cursor.insertText(u'\n' + indentationOf(before));
    cursor.endEditBlock();
    return cursor;
}

QTextCursor indent(QTextCursor cursor) {
    const QString level = levelOf(*cursor.document());
    const auto [first, last] = selectedBlocks(cursor);
    if (!cursor.hasSelection() || first == last) {
        const qsizetype into = cursor.document()->findBlock(cursor.selectionStart()).position();
        const qsizetype column = cursor.selectionStart() - into;
        cursor.insertText(level == u'\t' ? level : QString(level.size() - column % level.size(), u' '));
        return cursor;
    }
    return changeLines(cursor, [&](QTextCursor& at, const QString& line) {
        if (!line.isEmpty()) at.insertText(level);
    });
}

QTextCursor outdent(const QTextCursor& cursor) {
    const qsizetype level = levelOf(*cursor.document()).size();
    return changeLines(cursor, [&](QTextCursor& at, const QString& line) {
        const QString blanks = indentationOf(line);
        const qsizetype spaces = std::ranges::find(blanks, u'\t') - blanks.begin();
        const qsizetype removed =
            blanks.startsWith(u'\t') ? 1 : std::min(spaces, level == 1 ? usualLevel : level);
        for (qsizetype each = 0; each < removed; ++each)
            at.deleteChar();
    });
}

}  // namespace orvo
