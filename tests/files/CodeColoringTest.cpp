#include "files/codePatterns.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

#include <random>

namespace orvo {
namespace {

using namespace test;

Picture byColoring(const CodeColoring& coloring, const QString& text) {
    Picture picture = plain(text);
    for (qsizetype start = 0; start <= text.size();) {
        qsizetype end = text.indexOf(u'\n', start);
        if (end < 0) end = text.size();
        for (const CodeSpan& span : coloring.spansOf(start, end - start))
            paint(picture, start + span.start, span.length, letterOf(span.token));
        start = end + 1;
    }
    return picture;
}

Picture byColoring(const QString& text) {
    CodeColoring coloring;
    coloring.setText(text);
    return byColoring(coloring, text);
}

/// The pattern engine refuses texts in which a character is cut in two.
qsizetype wholeCharacter(const QString& text, qsizetype at) {
    return at < text.size() && text[at].isLowSurrogate() ? at + 1 : at;
}

TEST(CodeColoringTest, laterRulesWinOverEarlierOnes) {
    const std::pair<const char*, const char*> cases[] = {
        {"return 3.14", "kkkkkk.nnnn"},
        {"x = 'a#b' # for", "....ssccccccccc"},
        {"\"if 1\" if", "ssssss.kk"},
        {"for_ _for for1 For", ".................."},
        {"1.2.3 4. .5 6.7a 8b 0x9", "nnn.n.n...n.n.........."},
        {"'a' 'b", "sss..."},
        {"say \"one\\\" two\" 1", "....sssssssssss.n"},
        {"'it''s'", "sssssss"},
        {"a / b // c / d", "......cccccccc"},
        {"\"open\nfor 'in' 1\nclose\" 2", "sssss\nssssssssss\nssssss.n"},
        {"\"open # closed\n\" in", "sssssscccccccc\ns.kk"},
        {"\"ends in \\\nfor \"1\"", "......kk..\nkkk.sss"},
        {"\\\"a\"", ".sss"},
        {"\" ' \" '", "sssss.."},
        {"#\n\n//", "c\n\ncc"},
        {"", ""},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(byColoring(QString::fromUtf8(text)), expected) << text;
        EXPECT_EQ(byPatterns(QString::fromUtf8(text)), expected) << text;
    }
}

TEST(CodeColoringTest, wordsAreThoseOfEveryScript) {
    // Letters of the planes beyond the first are two units.
    for (const char* text : {"\u00e9for for\u00e9 for", "\u0661in in\u0661 2\u0661", "\U0001d41aif if",
                             "if\U0001d7d9 1\U0001d7d9", "\U0001f600if 1\U0001f600"}) {
        const QString code = QString::fromUtf8(text);
        EXPECT_EQ(byColoring(code), byPatterns(code)) << text;
    }
}

TEST(CodeColoringTest, afterAnyEditsTheColoursAreThoseOfTheWholeText) {
    // And one of two units.
    const QStringList pieces = codePieces() << QString::fromUtf8("\U0001d41a");
    std::mt19937 random(20261123);
    const auto below = [&](qsizetype limit) {
        return std::uniform_int_distribution<qsizetype>(0, limit - 1)(random);
    };
    CodeColoring coloring;
    QString text;
    for (int edit = 0; edit < 6000; ++edit) {
        const qsizetype at = wholeCharacter(text, below(text.size() + 1));
        if (text.size() > 400 || below(3) == 0) {
            const qsizetype end = at + below(text.size() > 400 ? 200 : 6);
            text.remove(at, wholeCharacter(text, std::min(end, text.size())) - at);
        } else {
            text.insert(at, pieces[below(pieces.size())]);
        }
        coloring.setText(text);
        ASSERT_EQ(byColoring(coloring, text), byPatterns(text)) << "edit " << edit << ":\n"
                                                                << qPrintable(text);
    }
}

TEST(CodeColoringTest, textsFromTheLimitOnStayPlain) {
    const QString code = QStringLiteral("return 1 'a' # b\n");
    QString text = code.repeated(CodeColoring::longestText / code.size() + 1);
    text.truncate(CodeColoring::longestText - 1);
    EXPECT_EQ(byColoring(text), byPatterns(text));
    text += u' ';
    EXPECT_EQ(byColoring(text), plain(text));
}

TEST(CodeColoringTest, longStringsAndManyOpenQuotesAreNoTrap) {
    const QString longString = u'"' + QString(150'000, u'x') + u'"';
    EXPECT_EQ(byColoring(longString), Picture(longString.size(), 's'));
    // Each escaped quote could begin a string that only the end of the text refutes.
    QElapsedTimer timer;
    timer.start();
    const QString hopeless = u'"' + QStringLiteral("\\\"").repeated(90'000);
    EXPECT_EQ(byColoring(hopeless), plain(hopeless));
    // Quadratic time would be minutes.
    EXPECT_LT(timer.elapsed(), 2000);
}

}  // namespace
}  // namespace orvo
