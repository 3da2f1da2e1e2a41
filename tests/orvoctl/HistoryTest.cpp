#include "orvoctl/OrvoctlTestCase.h"

namespace orvo {
namespace {

class History : public test::OrvoctlTestCase {
protected:
    void runTask(const char* task) const {
        ASSERT_EQ(orvoctl({QStringLiteral("run"), QStringLiteral("--shared"), QStringLiteral("--connector"),
                           QStringLiteral("say=/bin/echo said {prompt}"), QString::fromUtf8(task)})
                      .status,
                  0);
    }
};

TEST_F(History, IsEmptyAtFirst) {
    EXPECT_EQ(orvoctl({QStringLiteral("history")}).output, "");
    EXPECT_EQ(orvoctl({QStringLiteral("history"), QStringLiteral("--json")}).json().array(), QJsonArray());
}

TEST_F(History, ListsNewestFirstAndPrintsTheTextOfOne) {
    runTask("first");
    runTask("second\033[31m\nline");
    const QJsonArray entries = orvoctl({QStringLiteral("history"), QStringLiteral("--json")}).json().array();
    ASSERT_EQ(entries.size(), 2);
    EXPECT_EQ(entries[1][QStringLiteral("output")], QStringLiteral("said first"));
    EXPECT_EQ(entries[0].toObject().keys().join(u' '),
              QStringLiteral("directory exitCode id output provider started title"));

    const QByteArray list = orvoctl({QStringLiteral("history")}).output;
    EXPECT_EQ(list.count('\n'), 2);
    EXPECT_FALSE(list.contains('\033'));

    const QString id = entries[1][QStringLiteral("id")].toString();
    EXPECT_EQ(orvoctl({QStringLiteral("history"), id}).output, "said first\n");
    EXPECT_EQ(orvoctl({QStringLiteral("history"), id.left(13).toLower()}).output, "said first\n");
    EXPECT_EQ(orvoctl({QStringLiteral("history"), id, QStringLiteral("--json")}).json().object(),
              entries[1].toObject());
}

TEST_F(History, AnUnknownIdIsAFailure) {
    const Outcome outcome =
        orvoctl({QStringLiteral("history"), QStringLiteral("nothing"), QStringLiteral("--json")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.json()[QStringLiteral("ok")], false);
}

}  // namespace
}  // namespace orvo
