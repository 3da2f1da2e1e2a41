#include "history/keptOutput.h"

#include <gtest/gtest.h>

#include <ctime>

namespace orvo {
namespace {

TEST(KeptOutput, isTheLastSixtyThousandCharacters) {
    QString digits;
    for (int i = 0; i < 10'000; ++i)
        digits += QStringLiteral("0123456789");
    EXPECT_EQ(keptOutput(digits), digits.right(60'000));
    EXPECT_EQ(keptOutput(digits.left(60'000)), digits.left(60'000));
    EXPECT_EQ(keptOutput(digits.left(60'001)), digits.mid(1, 60'000));
    EXPECT_EQ(keptOutput(QString()), QString());
}

TEST(KeptOutput, countsWhatAPersonSeesAsOneCharacter) {
    const QString clusters[] = {
        QStringLiteral("e\u0301"),                     // a letter and its accent
        QStringLiteral("\U0001F600"),                  // beyond the basic plane
        QStringLiteral("\U0001F469\u200D\U0001F4BB"),  // joined
        QStringLiteral("\u2764\uFE0F"),                // with a variation selector
        QStringLiteral("\U0001F1E9\U0001F1EA"),        // a flag
        QStringLiteral("\r\n"),
    };
    for (const QString& cluster : clusters) {
        // A line before, so that the tail that is looked at begins in the middle of things.
        const QString text = QStringLiteral("first\n") + cluster.repeated(70'000);
        const QString kept = keptOutput(text);
        EXPECT_EQ(kept.size(), 60'000 * cluster.size()) << qPrintable(cluster);
        EXPECT_TRUE(kept == cluster.repeated(60'000)) << qPrintable(cluster);
    }
}

TEST(KeptOutput, isAtMostAMebibyteAndBeginsWithAWholeCharacter) {
    // 30 marks on each letter: 60,000 characters would be 3.6 MB.
    const QString piled = QStringLiteral("a") + QString(30, QChar(0x0301));
    const QString kept = keptOutput(piled.repeated(80'000));
    EXPECT_LE(kept.toUtf8().size(), maximumKeptBytes);
    EXPECT_GT(kept.toUtf8().size(), maximumKeptBytes - 200);
    EXPECT_TRUE(kept.startsWith(u'a'));
    EXPECT_EQ(kept.size() % piled.size(), 0);

    // Nothing but marks: one character without end, which has to be cut somewhere.
    const QString marks = keptOutput(QString(2'000'000, QChar(0x0301)));
    EXPECT_EQ(marks.size(), maximumKeptBytes / 2);
    const QString emoji = keptOutput(QStringLiteral("\U0001F600\u200D").repeated(400'000));
    EXPECT_LE(emoji.toUtf8().size(), maximumKeptBytes);
    EXPECT_FALSE(emoji.at(0).isLowSurrogate());
}

TEST(KeptOutput, ofAHugeTextLooksAtItsEndOnly) {
    const QString lines =
        QStringLiteral("a line of ordinary terminal text \u00e4\u6f22\n").repeated(1'000'000);
    const std::clock_t start = std::clock();
    const QString kept = keptOutput(lines);
    // Looking at all 35 million characters takes seconds, at the end some milliseconds.
    EXPECT_LT(std::clock() - start, CLOCKS_PER_SEC / 2);
    EXPECT_EQ(kept, lines.right(60'000));
}

}  // namespace
}  // namespace orvo
