#include "orvoctl/OrvoctlTestCase.h"

namespace orvo {
namespace {

class Screen : public test::OrvoctlTestCase {
protected:
    QJsonObject screen(const QByteArray& input, const QStringList& options = {}) const {
        const Outcome outcome = orvoctl(words("screen --json") + options, input);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.error, "");
        return outcome.json().object();
    }
    static QStringList size(int rows, int columns) {
        return {QStringLiteral("--rows"), QString::number(rows), QStringLiteral("--columns"),
                QString::number(columns)};
    }
};

TEST_F(Screen, PrintsTheTextThatAPersonWouldSee) {
    const Outcome outcome = orvoctl(words("screen"), "\033[31mred\033[0m\r\nover\rOV\r\n");
    EXPECT_EQ(outcome.output, "red\nOVer\n");
}

TEST_F(Screen, ReportsEveryPartOfTheState) {
    const QJsonObject report = screen("ab\033[6n", size(3, 10));
    EXPECT_EQ(
        report.keys().join(u' '),
        QStringLiteral("alternateScreen applicationCursor bracketedPaste column columns cursorVisible lines "
                       "pendingWrap plainText responses row rows scrollBottom scrollTop scrollback "
                       "scrollbackCount"));
    EXPECT_EQ(report[u"rows"], 3);
    EXPECT_EQ(report[u"columns"], 10);
    EXPECT_EQ(report[u"column"], 2);
    EXPECT_EQ(report[u"cursorVisible"], true);
    EXPECT_EQ(report[u"scrollBottom"], 2);
    EXPECT_EQ(report[u"responses"].toArray(), QJsonArray{QStringLiteral("\033[1;3R")});
    EXPECT_EQ(report[u"plainText"], QStringLiteral("ab"));
}

TEST_F(Screen, CellsOfOneLookAreOneRun) {
    const QByteArray input = "a\033[1;38;2;1;2;255mb\xE6\xBC\xA2\033[0;7;48;5;196mc";
    const QJsonArray lines = screen(input, size(3, 10))[u"lines"].toArray();
    ASSERT_EQ(lines.size(), 3);
    const QByteArray expected = R"([
        {"text":"a","cells":1,"fg":null,"bg":null,"bold":false,"inverse":false,"attributes":[]},
        {"text":"b漢","cells":3,"fg":"0102FF","bg":null,"bold":true,"inverse":false,"attributes":[]},
        {"text":"c","cells":1,"fg":null,"bg":"FF0000","bold":false,"inverse":true,"attributes":[]},
        {"text":"     ","cells":5,"fg":null,"bg":null,"bold":false,"inverse":false,"attributes":[]}])";
    EXPECT_EQ(lines[0].toArray(), QJsonDocument::fromJson(expected).array())
        << QJsonDocument(lines[0].toArray()).toJson().constData();
}

TEST_F(Screen, ScrollbackHoldsTheLinesThatLeftTheTop) {
    const QJsonObject report = screen("one  \r\ntwo\r\nthree\r\nfour\r\nfive", size(3, 10));
    EXPECT_EQ(report[u"scrollbackCount"], 2);
    EXPECT_EQ(report[u"scrollback"].toArray(), (QJsonArray{QStringLiteral("one"), QStringLiteral("two")}));
}

TEST_F(Screen, AnyChunkSizeGivesTheSameScreen) {
    const QByteArray input = "\033[2J\033[3;4Hx\xF0\x9F\x9B\xB0\033]0;title\007y\033[38;5;208mz\r\n\xE2\x82";
    const QJsonObject whole = screen(input);
    for (const char* const chunk : {"1", "2", "3", "7"}) {
        EXPECT_EQ(screen(input, {QStringLiteral("--chunk"), QString::fromUtf8(chunk)}), whole) << chunk;
    }
}

TEST_F(Screen, ResizesHappenAtTheirPlaceAndInTheirOrder) {
    // Twelve characters: at width 10 they wrap, at width 20 they do not.
    const auto text = [&](const QStringList& resizes) {
        QStringList options = size(5, 10);
        for (const QString& resize : resizes)
            options += {QStringLiteral("--resize"), resize};
        const QJsonObject report = screen("abcdefghijkl", options);
        return QStringLiteral("%1x%2 %3")
            .arg(report[u"rows"].toInt())
            .arg(report[u"columns"].toInt())
            .arg(report[u"plainText"].toString().replace(u'\n', u'|'));
    };
    const QString wrapped = QStringLiteral("abcdefghij|kl");
    const QString whole = QStringLiteral("abcdefghijkl");
    EXPECT_EQ(text({}), QStringLiteral("5x10 ") + wrapped);
    EXPECT_EQ(text(words("6x20@0")), QStringLiteral("6x20 ") + whole);
    EXPECT_EQ(text(words("6x20@5")), QStringLiteral("6x20 ") + whole);
    EXPECT_EQ(text(words("6x20@11")), QStringLiteral("6x20 ") + wrapped);
    EXPECT_EQ(text(words("6x20")), QStringLiteral("6x20 ") + wrapped);
    EXPECT_EQ(text(words("6x20@99")), QStringLiteral("6x20 ") + wrapped);
    // One that stands behind another waits for it, and then happens at once.
    EXPECT_EQ(text(words("6x20@11 7x30@1")), QStringLiteral("7x30 ") + wrapped);
    EXPECT_EQ(text(words("6x20@5 7x10@6")), QStringLiteral("7x10 ") + wrapped);
    EXPECT_EQ(text(words("2x4")).section(u' ', 0, 0), QStringLiteral("3x10"));
}

}  // namespace
}  // namespace orvo
