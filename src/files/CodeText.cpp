#include "files/CodeText.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace orvo {
namespace {

constexpr QChar mark(0xFEFF);

/// Ends of lines, told apart by their places here. The rarer ones are those at which Qt's documents begin a
/// new line whatever we want.
constexpr std::array<std::u16string_view, 7> endTexts = {u"\n",     u"\r\n",   u"\r", u"\u2029",
                                                         u"\xFDD0", u"\xFDD1", u""};
constexpr char lineFeed = 0;
constexpr char parted = 6;
// What undoing can come back to; beyond it, ends of mixed texts are guessed from their neighbours.
constexpr qsizetype mostSeen = 20'000;

QStringView textOf(char end) {
    return endTexts.at(static_cast<std::size_t>(end));
}

/// Where the line that begins at `start` ends, and how; `parted` at the end of the text.
std::pair<qsizetype, char> endOfLine(QStringView text, qsizetype start) {
    for (qsizetype at = start; at < text.size(); ++at) {
        const char16_t c = text[at].unicode();
        if (c > u'\r' && c < u'\u2029') continue;
        const QStringView rest = text.sliced(at);
        // The two-unit end comes before its first unit alone.
        for (char end = lineFeed; end != parted; ++end) {
            if (rest.startsWith(textOf(end))) return {at, end};
        }
    }
    return {text.size(), parted};
}

}  // namespace

CodeText::CodeText(const QString& text) {
    QStringView rest(text);
    m_hasMark = rest.startsWith(mark);
    if (m_hasMark) rest = rest.sliced(1);
    m_lines.reserve(rest.size());
    QByteArray ends;
    for (qsizetype start = 0;;) {
        const auto [lineEnd, end] = endOfLine(rest, start);
        QStringView line = rest.sliced(start, lineEnd - start);
        if (line.size() > longestLine) {
            m_hasLongLine = true;
            while (line.size() > pieceLength) {
                const qsizetype piece = pieceLength - (line[pieceLength - 1].isHighSurrogate() ? 1 : 0);
                m_lines.append(line.first(piece)).append(u'\n');
                ends.append(parted);
                line = line.sliced(piece);
            }
        }
        m_lines.append(line);
        if (end == parted) break;
        m_lines.append(u'\n');
        ends.append(end);
        start = lineEnd + textOf(end).size();
    }
    adoptEnds(std::move(ends), lineFeed);
}

QString CodeText::text() const {
    QString text;
    if (m_hasMark) text.append(mark);
    if (m_uniformEnd == lineFeed) return text.isEmpty() ? m_lines : text + m_lines;
    text.reserve(m_lines.size() * 2);
    qsizetype line = 0;
    for (qsizetype start = 0;;) {
        const qsizetype end = m_lines.indexOf(u'\n', start);
        if (end < 0) return text.append(QStringView(m_lines).sliced(start));
        text.append(QStringView(m_lines).sliced(start, end - start));
        text.append(textOf(m_uniformEnd ? *m_uniformEnd : m_ends[line++]));
        start = end + 1;
    }
}

void CodeText::setLines(const QString& lines) {
    if (lines == m_lines) return;
    if (!m_uniformEnd) remember();
    const qsizetype count = lines.count(u'\n');
    const char usual = usualEnd();
    if (const auto seen = m_seen.constFind(qHash(lines)); seen != m_seen.cend() && seen->size() == count) {
        m_lines = lines;
        adoptEnds(*seen, usual);
    } else if (m_uniformEnd) {
        m_lines = lines;
    } else {
        // What both have at their beginnings and ends is as it was; the ends between keep their order.
        const auto start = std::ranges::mismatch(m_lines, lines).in1 - m_lines.begin();
        const auto room = std::min(m_lines.size(), lines.size()) - start;
        const auto tail =
            std::mismatch(m_lines.rbegin(), m_lines.rbegin() + room, lines.rbegin()).first - m_lines.rbegin();
        const qsizetype before = QStringView(m_lines).first(start).count(u'\n');
        const qsizetype after = QStringView(m_lines).last(tail).count(u'\n');
        QByteArray between = m_ends.sliced(before, m_ends.size() - before - after);
        between.resize(count - before - after, usual);
        const QByteArray ends = m_ends.first(before) + between + m_ends.last(after);
        m_lines = lines;
        adoptEnds(ends, usual);
    }
    noteLongLines();
}

void CodeText::replaceBy(const CodeText& next) {
    remember();
    const QHash<size_t, QByteArray> seen = std::move(m_seen);
    *this = next;
    m_seen = seen;
}

void CodeText::insertParted(const QString& lines, const CodeText& inserted, qsizetype first) {
    remember();
    setLines(lines);
    const QByteArray insertedEnds = inserted.allEnds();
    QByteArray ends = allEnds();
    const char usual = usualEnd();
    for (qsizetype line = 0; line < insertedEnds.size() && first + line < ends.size(); ++line) {
        if (insertedEnds[line] == parted) ends[first + line] = parted;
    }
    adoptEnds(std::move(ends), usual);
    noteLongLines();
}

void CodeText::remember() {
    if (m_seen.size() >= mostSeen) m_seen.clear();
    m_seen.insert(qHash(m_lines), allEnds());
}

// A text of one line has no ends to go by, but may get some later.
void CodeText::adoptEnds(QByteArray ends, char usual) {
    const char first = ends.isEmpty() ? usual : ends[0];
    const bool isUniform = std::ranges::all_of(ends, [&](char end) { return end == first; });
    if (isUniform && first != parted) {
        m_uniformEnd = first;
        m_ends.clear();
    } else {
        m_uniformEnd.reset();
        m_ends = std::move(ends);
    }
}

char CodeText::usualEnd() const {
    if (m_uniformEnd) return *m_uniformEnd;
    std::array<qsizetype, endTexts.size()> counts{};
    for (const char end : m_ends)
        ++counts.at(static_cast<std::size_t>(end));
    counts.at(parted) = 0;
    return static_cast<char>(std::ranges::max_element(counts) - counts.begin());
}

QByteArray CodeText::allEnds() const {
    return m_uniformEnd ? QByteArray(m_lines.count(u'\n'), *m_uniformEnd) : m_ends;
}

void CodeText::noteLongLines() {
    m_hasLongLine = false;
    qsizetype length = 0;
    qsizetype line = 0;
    for (qsizetype start = 0; !m_hasLongLine;) {
        const qsizetype end = m_lines.indexOf(u'\n', start);
        length += (end < 0 ? m_lines.size() : end) - start;
        m_hasLongLine = length > longestLine;
        if (end < 0) return;
        if (!isContinuation(++line)) length = 0;
        start = end + 1;
    }
}

bool CodeText::isContinuation(qsizetype index) const {
    return !m_uniformEnd && index > 0 && index <= m_ends.size() && m_ends[index - 1] == parted;
}

qsizetype CodeText::numberOf(qsizetype index) const {
    if (m_uniformEnd) return index + 1;
    return index + 1 - m_ends.first(std::min(index, m_ends.size())).count(parted);
}

qsizetype CodeText::indexOf(qsizetype number) const {
    const qsizetype last = m_lines.count(u'\n');
    if (m_uniformEnd) return std::clamp(number - 1, qsizetype{0}, last);
    qsizetype index = 0;
    for (qsizetype at = 1; at <= last && number > 1; ++at) {
        if (isContinuation(at)) continue;
        index = at;
        --number;
    }
    return index;
}

}  // namespace orvo
