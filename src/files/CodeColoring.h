#pragma once

#include <QList>
#include <QString>

namespace orvo {

/// What a run of characters is, when it is not plain.
enum class CodeToken : quint8 { Keyword, Number, String, Comment };

/// A run of one kind within a line.
struct CodeSpan {
    qsizetype start;
    qsizetype length;
    CodeToken token;

    bool operator==(const CodeSpan&) const = default;
};

/// The colours of code in any language, told from four rules alone; where they overlap, the later one counts:
/// keywords and numbers as whole words, strings in double or single quotes (with backslash escapes, over any
/// number of lines), and comments from the first "//" or "#" of a line to its end.
///
/// Only strings depend on more than their line, and only they are found anew in the whole text after a
/// change, in one pass; a line's colours are worked out when it is asked for.
class CodeColoring {
public:
    /// From this many UTF-16 units on a text has no colours.
    static constexpr qsizetype longestText = 200'000;

    /// Another text, or the same after a change. Lines end with a line feed.
    void setText(const QString& text);
    bool isTooLong() const { return m_text.size() >= longestText; }

    /// The coloured runs of the line that begins at `start` and has `length` units, in order.
    QList<CodeSpan> spansOf(qsizetype start, qsizetype length) const;

private:
    struct Range {
        qsizetype start;
        qsizetype end;
    };

    QString m_text;
    /// In order, without overlap.
    QList<Range> m_strings;
};

}  // namespace orvo
