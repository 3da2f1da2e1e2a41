#include "history/keptOutput.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace orvo {
namespace {

/// Where the longest end of `text` begins that has at most `limit` bytes in UTF-8. Never between surrogates.
qsizetype startOfLastBytes(QStringView text, qsizetype limit) {
    // A UTF-16 unit takes at most three bytes.
    if (text.size() <= limit / 3) return 0;
    qsizetype start = text.size();
    for (qsizetype bytes = 0; start > 0;) {
        const char16_t unit = text[start - 1].unicode();
        const bool pair =
            QChar::isLowSurrogate(unit) && start > 1 && QChar::isHighSurrogate(text[start - 2].unicode());
        bytes += pair ? 4 : unit < 0x80 ? 1 : unit < 0x800 ? 2 : 3;
        if (bytes > limit) break;
        start -= pair ? 2 : 1;
    }
    return start;
}

/// A place at or before `wanted`, and not before `floor`, where a character surely begins: behind a line
/// feed. Without one, `floor`.
qsizetype lineStart(QStringView text, qsizetype wanted, qsizetype floor) {
    if (wanted <= floor) return floor;
    const qsizetype feed = text.lastIndexOf(u'\n', wanted - 1);
    return std::max(feed + 1, floor);
}

}  // namespace

QString keptOutput(const QString& text) {
    const qsizetype floor = startOfLastBytes(text, maximumKeptBytes);
    if (floor == 0 && text.size() <= maximumKeptCharacters) return text;

    // Looking for boundaries costs time and memory for each unit looked at, so only a tail is, which grows
    // until it holds enough characters. Twice the count is enough for ordinary text.
    for (qsizetype length = 2 * qsizetype{maximumKeptCharacters};; length *= 4) {
        const qsizetype start = lineStart(text, text.size() - length, floor);
        const QStringView tail = QStringView(text).sliced(start);
        QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, tail.data(), tail.size());
        finder.toEnd();
        qsizetype kept = tail.size();
        for (int count = 0; count < maximumKeptCharacters && kept > 0; ++count) {
            kept = std::max(finder.toPreviousBoundary(), qsizetype{0});
        }
        if (kept > 0) return text.sliced(start + kept);
        if (start > floor) continue;
        if (floor == 0) return text;
        // The byte limit may have fallen into a character, and what is left of it is none.
        finder.toStart();
        const qsizetype next = finder.toNextBoundary();
        return text.sliced(next > 0 && next < tail.size() ? start + next : start);
    }
}

}  // namespace orvo
