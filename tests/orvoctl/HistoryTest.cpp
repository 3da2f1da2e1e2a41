#include "orvoctl/OrvoctlTestCase.h"

namespace orvo {
namespace {

class History : public test::OrvoctlTestCase {
protected:
    void runTask(const char* task) const {
        const QStringList line = words(R"(run --shared --connector "say=/bin/echo said {prompt}")");
        ASSERT_EQ(orvoctl(line + QStringList(QString::fromUtf8(task))).status, 0);
    }
};

TEST_F(History, IsEmptyAtFirst) {
    EXPECT_EQ(orvoctl(words("history")).output, "");
    EXPECT_EQ(orvoctl(words("history --json")).json().array(), QJsonArray());
}

TEST_F(History, ListsNewestFirstAndPrintsTheTextOfOne) {
    runTask("first");
    runTask("second\033[31m\nline");
    const QJsonArray entries = orvoctl(words("history --json")).json().array();
    ASSERT_EQ(entries.size(), 2);
    EXPECT_EQ(entries[1][u"output"], QStringLiteral("said first"));
    EXPECT_EQ(entries[0].toObject().keys().join(u' '),
              QStringLiteral("directory exitCode id output provider started title"));

    const QByteArray list = orvoctl(words("history")).output;
    EXPECT_EQ(list.count('\n'), 2);
    EXPECT_FALSE(list.contains('\033'));

    const QString id = entries[1][u"id"].toString();
    EXPECT_EQ(orvoctl({QStringLiteral("history"), id}).output, "said first\n");
    EXPECT_EQ(orvoctl({QStringLiteral("history"), id.left(13).toLower()}).output, "said first\n");
    EXPECT_EQ(orvoctl({QStringLiteral("history"), id, QStringLiteral("--json")}).json().object(),
              entries[1].toObject());
}

TEST_F(History, AnUnknownIdIsAFailure) {
    const Outcome outcome = orvoctl(words("history nothing --json"));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.json()[u"ok"], false);
}

}  // namespace
}  // namespace orvo
