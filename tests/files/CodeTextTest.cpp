#include "files/CodeText.h"

#include <gtest/gtest.h>

#include <random>

namespace orvo {
namespace {

QString edited(QString text, const QString& before, const QString& after) {
    EXPECT_TRUE(text.contains(before)) << qPrintable(text);
    return text.replace(text.indexOf(before), before.size(), after);
}

TEST(CodeTextTest, everyTextComesBackUnitForUnit) {
    QString everyUnit;
    for (char16_t unit = 0; unit < 0xFFFF; ++unit) {
        if (!QChar::isSurrogate(unit)) everyUnit += QChar(unit);
    }
    const QString texts[] = {
        QString(),
        QStringLiteral("a\nb"),
        QStringLiteral("a\r\nb\r\n"),
        QStringLiteral("\r\r\n\n\r"),
        QStringLiteral("\uFEFFwith a mark\n"),
        QStringLiteral("\uFEFF"),
        QStringLiteral("a\u2029b\u2028c\u00a0d"),
        QString(1'900'000, u'x'),
        QString::fromUtf8("\U0001d41a").repeated(25'000) + QStringLiteral("\r\n"),
        everyUnit,
    };
    for (const QString& text : texts) {
        const CodeText code(text);
        EXPECT_EQ(code.text(), text) << qPrintable(text.left(20));
        EXPECT_FALSE(code.lines().contains(u'\r'));
        EXPECT_FALSE(code.lines().contains(QChar::ParagraphSeparator));
    }
}

TEST(CodeTextTest, linesKeepTheirEndsAndNewOnesAreAsMost) {
    CodeText code(QStringLiteral("one\r\ntwo\nthree\r\nfour\r\nfive"));
    code.setLines(edited(code.lines(), QStringLiteral("two"), QStringLiteral("2")));
    EXPECT_EQ(code.text(), QStringLiteral("one\r\n2\nthree\r\nfour\r\nfive"));
    code.setLines(edited(code.lines(), QStringLiteral("2\n"), QStringLiteral("2\nnew\n")));
    EXPECT_EQ(code.text(), QStringLiteral("one\r\n2\nnew\r\nthree\r\nfour\r\nfive"));
    code.setLines(edited(code.lines(), QStringLiteral("one\n2\nnew"), QStringLiteral("  one\n  2\n  new")));
    EXPECT_EQ(code.text(), QStringLiteral("  one\r\n  2\n  new\r\nthree\r\nfour\r\nfive"));
    code.setLines(edited(code.lines(), QStringLiteral("three\nfour\n"), QString()));
    EXPECT_EQ(code.text(), QStringLiteral("  one\r\n  2\n  new\r\nfive"));

    CodeText windows(QStringLiteral("\uFEFFa\r\nb\r\n"));
    windows.setLines(QString());
    EXPECT_EQ(windows.text(), QStringLiteral("\uFEFF"));
    windows.setLines(QStringLiteral("c\nd"));
    EXPECT_EQ(windows.text(), QStringLiteral("\uFEFFc\r\nd"));
}

TEST(CodeTextTest, undoingGivesEveryLineTheEndItHad) {
    std::mt19937 random(7);
    const auto below = [&](qsizetype limit) {
        return std::uniform_int_distribution<qsizetype>(0, limit - 1)(random);
    };
    const QStringList ends = {QStringLiteral("\n"), QStringLiteral("\r\n"), QStringLiteral("\r")};
    QString text;
    for (int line = 0; line < 60; ++line)
        text += QString::number(line) + ends[below(3)];
    CodeText code(text);
    QList<std::pair<QString, QString>> states;
    for (int edit = 0; edit < 300; ++edit) {
        states.append({code.lines(), code.text()});
        QString lines = code.lines();
        const qsizetype at = below(lines.size() + 1);
        if (below(2) == 0)
            lines.remove(at, below(12));
        else
            lines.insert(at, QStringLiteral("x%1\ny").arg(edit));
        code.setLines(lines);
        ASSERT_EQ(CodeText(code.text()).lines(), lines) << "whatever the ends, the lines are those shown";
    }
    while (!states.isEmpty()) {
        const auto [lines, before] = states.takeLast();
        code.setLines(lines);
        ASSERT_EQ(code.text(), before) << states.size();
    }
    EXPECT_EQ(code.text(), text);
}

TEST(CodeTextTest, overlongLinesArePartedOnlyForTheEditor) {
    const QString longLine(CodeText::longestLine + 1, u'x');
    EXPECT_FALSE(CodeText(longLine.chopped(1) + u'\n' + longLine.chopped(1)).hasLongLine());
    CodeText code(QStringLiteral("first\n") + longLine + QStringLiteral("\nlast"));
    EXPECT_TRUE(code.hasLongLine());
    // The long line takes the editor's lines 1 to 6.
    const qsizetype pieces = CodeText::longestLine / CodeText::pieceLength + 1;
    EXPECT_EQ(code.lines().count(u'\n'), pieces + 1);
    EXPECT_FALSE(code.isContinuation(1));
    EXPECT_TRUE(code.isContinuation(2));
    EXPECT_EQ(code.numberOf(pieces), 2);
    EXPECT_EQ(code.numberOf(pieces + 1), 3);
    EXPECT_EQ(code.indexOf(2), 1);
    EXPECT_EQ(code.indexOf(3), pieces + 1);
    EXPECT_EQ(code.indexOf(99), pieces + 1);

    code.setLines(edited(code.lines(), QStringLiteral("first"), QStringLiteral("1\n1")));
    EXPECT_EQ(code.text(), QStringLiteral("1\n1\n") + longLine + QStringLiteral("\nlast"));
    code.setLines(edited(code.lines(), QString(4'000, u'x'), QStringLiteral("y")));
    EXPECT_FALSE(code.hasLongLine()) << "short enough now, though still parted";
    EXPECT_EQ(code.text(), QStringLiteral("1\n1\ny") + longLine.sliced(4'000) + QStringLiteral("\nlast"));

    CodeText pasted(QStringLiteral("ab"));
    const CodeText inserted(longLine);
    pasted.insertParted(QStringLiteral("a") + inserted.lines() + QStringLiteral("b"), inserted, 0);
    EXPECT_EQ(pasted.text(), QStringLiteral("a") + longLine + QStringLiteral("b"));
    EXPECT_TRUE(pasted.hasLongLine());
    pasted.setLines(QStringLiteral("ab"));
    EXPECT_EQ(pasted.text(), QStringLiteral("ab"));
}

TEST(CodeTextTest, anotherTextInPlaceOfThisOneCanBeUndone) {
    CodeText code(QStringLiteral("a\r\nb\nc"));
    const QString before = code.lines();
    code.replaceBy(CodeText(QStringLiteral("a\nb\nd")));
    EXPECT_EQ(code.text(), QStringLiteral("a\nb\nd"));
    code.setLines(before);
    EXPECT_EQ(code.text(), QStringLiteral("a\r\nb\nc"));
}

}  // namespace
}  // namespace orvo
