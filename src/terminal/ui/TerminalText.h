#pragma once

#include <QList>
#include <QString>

namespace orvo {

class TerminalScreen;

/// A screen's plain text, history included, with the places of its lines; what assistive technology reads.
/// Offsets are UTF-16, as everywhere in Qt.
struct TerminalText {
    struct Place {
        /// Counted from the oldest line of the history.
        int line = 0;
        /// UTF-16 offset within the line, not a column of cells.
        int offset = 0;
    };

    QString text;
    /// Where each line begins in `text`.
    QList<int> lineStarts;
    /// The history's and screen's line that `text` begins with.
    int firstLine = 0;
    /// At most the end of the text, whose trailing white space is cut off.
    int cursor = 0;

    static TerminalText of(const TerminalScreen& screen);
    Place placeOf(int offset) const;
};

/// How one text became another, without the beginning and end that both share.
struct TextChange {
    int position = 0;
    QString removed;
    QString inserted;

    static TextChange between(const QString& before, const QString& now);
};

}  // namespace orvo
