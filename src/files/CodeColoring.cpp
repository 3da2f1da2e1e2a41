#include "files/CodeColoring.h"

#include <QChar>

#include <algorithm>

namespace orvo {
namespace {

constexpr QLatin1String keywords[] = {
    QLatin1String("func"),   QLatin1String("let"),      QLatin1String("var"),     QLatin1String("class"),
    QLatin1String("struct"), QLatin1String("import"),   QLatin1String("return"),  QLatin1String("if"),
    QLatin1String("else"),   QLatin1String("for"),      QLatin1String("while"),   QLatin1String("def"),
    QLatin1String("from"),   QLatin1String("as"),       QLatin1String("async"),   QLatin1String("await"),
    QLatin1String("const"),  QLatin1String("function"), QLatin1String("try"),     QLatin1String("catch"),
    QLatin1String("throw"),  QLatin1String("public"),   QLatin1String("private"), QLatin1String("guard"),
    QLatin1String("in"),     QLatin1String("true"),     QLatin1String("false"),   QLatin1String("nil"),
    QLatin1String("None"),   QLatin1String("True"),     QLatin1String("False")};

bool isKeyword(QStringView word) {
    return std::ranges::any_of(keywords, [word](QLatin1String keyword) { return word == keyword; });
}

bool isDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

/// The units of the letter, digit or underscore at `at`; 0 when there is something else.
qsizetype wordUnitsAt(QStringView text, qsizetype at) {
    const QChar c = text[at];
    if (c.unicode() < 0x80) return c.isLetterOrNumber() || c == u'_' ? 1 : 0;
    if (!c.isHighSurrogate() || at + 1 == text.size()) return c.isLetterOrNumber() ? 1 : 0;
    return QChar::isLetterOrNumber(QChar::surrogateToUcs4(c, text[at + 1])) ? 2 : 0;
}

qsizetype endOfWord(QStringView text, qsizetype at) {
    while (at < text.size()) {
        const qsizetype units = wordUnitsAt(text, at);
        if (units == 0) break;
        at += units;
    }
    return at;
}

bool isNumber(QStringView word) {
    return !word.isEmpty() && std::ranges::all_of(word, isDigit);
}

/// Keywords and numbers of `line` from `start` to `end`, where no word is cut.
void appendWords(QStringView line, qsizetype start, qsizetype end, QList<CodeSpan>& spans) {
    const QStringView text = line.first(end);
    for (qsizetype at = start; at < end;) {
        const qsizetype wordEnd = endOfWord(text, at);
        if (wordEnd == at) {
            ++at;
            continue;
        }
        const QStringView word = text.sliced(at, wordEnd - at);
        qsizetype next = wordEnd;
        if (isNumber(word)) {
            if (wordEnd + 1 < end && text[wordEnd] == u'.') {
                const qsizetype fractionEnd = endOfWord(text, wordEnd + 1);
                if (isNumber(text.sliced(wordEnd + 1, fractionEnd - wordEnd - 1))) next = fractionEnd;
            }
            spans.append({at, next - at, CodeToken::Number});
        } else if (isKeyword(word)) {
            spans.append({at, next - at, CodeToken::Keyword});
        }
        at = next;
    }
}

qsizetype startOfComment(QStringView line) {
    for (qsizetype at = 0; at < line.size(); ++at) {
        if (line[at] == u'#') return at;
        if (line[at] == u'/' && at + 1 < line.size() && line[at + 1] == u'/') return at;
    }
    return line.size();
}

struct QuoteEnd {
    bool isClosed;
    /// Behind the closing quote, or where it was seen that there is none.
    qsizetype position;
};

/// A backslash takes the character after it along, but never a line feed: before one, or at the end of the
/// text, it leaves the string without an end.
QuoteEnd endOfQuote(const char16_t* text, qsizetype size, qsizetype start) {
    const char16_t quote = text[start];
    for (qsizetype at = start + 1; at < size; ++at) {
        const char16_t c = text[at];
        if (c == quote) return {true, at + 1};
        if (c != u'\\') continue;
        ++at;
        if (at == size || text[at] == u'\n') return {false, at};
    }
    return {false, size};
}

}  // namespace

void CodeColoring::setText(const QString& text) {
    m_text = text;
    m_strings.clear();
    if (isTooLong()) return;
    const auto* const units = reinterpret_cast<const char16_t*>(text.utf16());
    const qsizetype size = text.size();
    // Quotes of the same kind before these have no closing quote either: on the way to where an earlier one
    // failed, they were met as escaped, and from there on read the same characters. Without this knowledge
    // many unclosed quotes would take quadratic time.
    qsizetype hopelessDouble = 0;
    qsizetype hopelessSingle = 0;
    for (qsizetype at = 0; at < size;) {
        const char16_t c = units[at];
        if (c != u'"' && c != u'\'') {
            ++at;
            continue;
        }
        qsizetype& hopeless = c == u'"' ? hopelessDouble : hopelessSingle;
        if (at < hopeless) {
            ++at;
            continue;
        }
        const QuoteEnd end = endOfQuote(units, size, at);
        if (end.isClosed) {
            m_strings.append({at, end.position});
            at = end.position;
        } else {
            hopeless = end.position;
            ++at;
        }
    }
}

QList<CodeSpan> CodeColoring::spansOf(qsizetype start, qsizetype length) const {
    QList<CodeSpan> spans;
    if (isTooLong() || m_text.isEmpty()) return spans;
    const QStringView line = QStringView(m_text).sliced(start, length);
    const qsizetype comment = startOfComment(line);
    qsizetype done = 0;
    auto string = std::ranges::upper_bound(m_strings, start, {}, &Range::end);
    for (; string != m_strings.end() && string->start < start + comment; ++string) {
        const qsizetype from = std::max(string->start - start, qsizetype{0});
        const qsizetype to = std::min(string->end - start, comment);
        appendWords(line, done, from, spans);
        if (to > from) spans.append({from, to - from, CodeToken::String});
        done = to;
    }
    appendWords(line, done, comment, spans);
    if (comment < length) spans.append({comment, length - comment, CodeToken::Comment});
    return spans;
}

}  // namespace orvo
