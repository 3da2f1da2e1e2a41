#include "orvoctl/OrvoctlTestCase.h"

namespace orvo {
namespace {

class Providers : public test::OrvoctlTestCase {
protected:
    QHash<QString, QJsonObject> providers(const QStringList& options = {}) const {
        QHash<QString, QJsonObject> byId;
        const Outcome outcome =
            orvoctl(QStringList{QStringLiteral("providers"), QStringLiteral("--json")} + options);
        EXPECT_EQ(outcome.status, 0);
        for (const QJsonValue value : outcome.json().array()) {
            byId[value[QStringLiteral("id")].toString()] = value.toObject();
        }
        return byId;
    }
};

TEST_F(Providers, ListsTheCatalogWithWhatIsInstalled) {
    install("claude");
    const auto byId = providers();
    EXPECT_EQ(byId.size(), 6);
    EXPECT_EQ(byId[QStringLiteral("claude")][QStringLiteral("path")], path("home/.local/bin/claude"));
    EXPECT_EQ(byId[QStringLiteral("claude")][QStringLiteral("ready")], true);
    EXPECT_EQ(byId[QStringLiteral("claude")][QStringLiteral("status")],
              QStringLiteral("Installed · login unchecked"));
    EXPECT_EQ(byId[QStringLiteral("codex")][QStringLiteral("path")], QJsonValue(QJsonValue::Null));
    EXPECT_EQ(byId[QStringLiteral("codex")][QStringLiteral("status")], QStringLiteral("Not installed"));
    EXPECT_EQ(byId[QStringLiteral("zai")][QStringLiteral("status")], QStringLiteral("Profile needed"));
    EXPECT_EQ(byId[QStringLiteral("shell")][QStringLiteral("status")], QStringLiteral("Ready"));
}

TEST_F(Providers, ChecksSignInWhenAsked) {
    install("claude");
    install("codex");
    environment.insert(QStringLiteral("FAKE_CODEX_STATUS_EXIT"), QStringLiteral("1"));
    const auto byId = providers({QStringLiteral("--check")});
    EXPECT_EQ(byId[QStringLiteral("claude")][QStringLiteral("status")], QStringLiteral("Signed in"));
    EXPECT_EQ(byId[QStringLiteral("codex")][QStringLiteral("status")], QStringLiteral("Sign in needed"));
}

TEST_F(Providers, TheTableHasOneLineAConnector) {
    const Outcome outcome = orvoctl({QStringLiteral("providers")});
    EXPECT_EQ(outcome.output.count('\n'), 6);
    EXPECT_TRUE(outcome.output.startsWith("claude       Claude Code  Not installed"))
        << outcome.output.constData();
    EXPECT_FALSE(outcome.output.contains('\033'));
}

}  // namespace
}  // namespace orvo
