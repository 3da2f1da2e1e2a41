#include "history/HistoryEntry.h"

#include "history/sampleEntry.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>

namespace orvo {
namespace {

using test::sampleEntry;

constexpr char storedEntry[] =
    R"([{"directory":"/home/a/project","exitCode":7,"id":"0123ABCD-4567-89AB-CDEF-0123456789AB",)"
    R"("output":"a\nb\"","provider":"codex","started":694314367.089,"title":"Codex"}])";

HistoryEntry expectedEntry() {
    HistoryEntry entry = sampleEntry(QStringLiteral("Codex"), QStringLiteral("a\nb\""));
    entry.id = QUuid(QStringLiteral("0123abcd-4567-89ab-cdef-0123456789ab"));
    entry.started = QDateTime(QDate(2023, 1, 2), QTime(1, 6, 7, 89), Qt::UTC);
    entry.exitCode = 7;
    return entry;
}

TEST(HistoryEntry, hasExactlyTheStoredFormAndComesBackFromIt) {
    EXPECT_EQ(encodeHistory({encodeEntry(expectedEntry())}), QByteArray(storedEntry));
    EXPECT_EQ(decodeHistory(storedEntry), QList<HistoryEntry>{expectedEntry()});
    EXPECT_EQ(encodeHistory({}), "[]");
    EXPECT_EQ(decodeHistory("[]"), QList<HistoryEntry>());
}

TEST(HistoryEntry, anyTextAndPathSurvives) {
    for (const QString& text :
         {QString(), QStringLiteral("\0\x1b[1m\u2028\u00e4\U0001F469\u200D\U0001F4BB\r\n")}) {
        for (const QByteArray& path :
             {QByteArray("/"), QByteArray("/\xC3\xA4 b"), QByteArray("/x\xFF\xFE/\xC3")}) {
            HistoryEntry entry = sampleEntry(text, text);
            entry.directory = FilePath(path);
            entry.exitCode = -1;
            EXPECT_EQ(decodeHistory(encodeHistory({encodeEntry(entry), encodeEntry(entry)})),
                      (QList<HistoryEntry>{entry, entry}));
            const bool isUtf8 = path != "/x\xFF\xFE/\xC3";
            EXPECT_NE(toJson(entry).contains(QStringLiteral("directoryBytes")), isUtf8);
        }
    }
}

TEST(HistoryEntry, aListWithOneWrongEntryIsNoList) {
    struct Case {
        const char* found;
        const char* replaced;
    };
    const Case cases[] = {
        {R"("exitCode":7,)", ""},
        {R"("output")", R"("text")"},
        {R"("exitCode":7)", R"("exitCode":1.5)"},
        {R"("exitCode":7)", R"("exitCode":2147483648)"},
        {R"("exitCode":7)", R"("exitCode":9223372036854775808)"},
        {R"("exitCode":7)", R"("exitCode":"7")"},
        {R"("exitCode":7)", R"("exitCode":null)"},
        {"694314367.089", R"("2023-01-02")"},
        {"694314367.089", "1e300"},
        {"0123ABCD-", "0123ABCD"},
        {"0123ABCD-4567-89AB-CDEF-0123456789AB", "{0123ABCD-4567-89AB-CDEF-0123456789AB}"},
        {R"("title":"Codex")", R"("title":["Codex"])"},
        {R"("title":"Codex")", R"("title":"Codex","directoryBytes":"%%%")"},
        {R"("title":"Codex")", R"("title":"Codex","directoryBytes":4)"},
        {"[{", "[7,{"},
        {"}]", "}"},
    };
    for (const Case& each : cases) {
        const QByteArray json = QByteArray(storedEntry).replace(each.found, each.replaced);
        ASSERT_NE(json, storedEntry) << each.found;
        EXPECT_FALSE(decodeHistory(json)) << json.constData();
    }
    EXPECT_FALSE(decodeHistory("{}"));
    EXPECT_FALSE(decodeHistory(""));
}

TEST(HistoryEntry, membersOfALaterVersionAreIgnored) {
    const QByteArray json =
        QByteArray(storedEntry).replace("\"exitCode\":7", "\"exitCode\":7.0,\"later\":{}");
    EXPECT_EQ(decodeHistory(json), QList<HistoryEntry>{expectedEntry()});
}

}  // namespace
}  // namespace orvo
