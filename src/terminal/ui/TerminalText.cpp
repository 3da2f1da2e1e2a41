#include "terminal/ui/TerminalText.h"

#include "terminal/core/TerminalScreen.h"
#include "terminal/ui/ScreenLines.h"

#include <algorithm>

namespace orvo {
namespace {

/// Length of the text left of the cursor, in UTF-16 units.
int offsetInLine(const TerminalRow& line, int column) {
    qsizetype length = 0;
    const int cells = std::min(column, static_cast<int>(line.cells().size()));
    for (int i = 0; i < cells; ++i)
        length += QString::fromStdString(line.text(i)).size();
    return static_cast<int>(length);
}

}  // namespace

TerminalText TerminalText::of(const TerminalScreen& screen) {
    TerminalText result;
    const int history = screen.scrollbackCount();
    const int cursorLine = history + screen.row();
    int cursor = 0;
    for (int index = 0; index < history + screen.rows(); ++index) {
        QString line = QString::fromStdString(lineAt(screen, orvo::firstLine(screen) + index)->plainText());
        qsizetype indent = 0;
        if (result.lineStarts.isEmpty()) {
            if (line.isEmpty()) continue;
            result.firstLine = index;
            while (line[indent].isSpace())
                ++indent;
            line.remove(0, indent);
        } else {
            result.text += u'\n';
        }
        const auto start = static_cast<int>(result.text.size());
        result.lineStarts.append(start);
        if (index == cursorLine) {
            const int inLine =
                offsetInLine(screen.line(screen.row()), screen.column()) - static_cast<int>(indent);
            cursor = start + std::clamp(inLine, 0, static_cast<int>(line.size()));
        }
        result.text += line;
    }
    while (!result.text.isEmpty() && result.text.back().isSpace())
        result.text.chop(1);
    while (!result.lineStarts.isEmpty() && result.lineStarts.last() > result.text.size()) {
        result.lineStarts.removeLast();
    }
    result.cursor = std::min(cursor, static_cast<int>(result.text.size()));
    return result;
}

TerminalText::Place TerminalText::placeOf(int offset) const {
    const auto after = std::upper_bound(lineStarts.begin(), lineStarts.end(), offset);
    const auto index = std::max<qsizetype>(0, after - lineStarts.begin() - 1);
    return {firstLine + static_cast<int>(index), lineStarts.isEmpty() ? 0 : offset - lineStarts[index]};
}

TextChange TextChange::between(const QString& before, const QString& now) {
    const qsizetype shorter = std::min(before.size(), now.size());
    const qsizetype same =
        std::mismatch(before.begin(), before.begin() + shorter, now.begin()).first - before.begin();
    qsizetype tail = 0;
    while (tail < shorter - same && before[before.size() - 1 - tail] == now[now.size() - 1 - tail])
        ++tail;
    return {static_cast<int>(same), before.mid(same, before.size() - same - tail),
            now.mid(same, now.size() - same - tail)};
}

}  // namespace orvo
