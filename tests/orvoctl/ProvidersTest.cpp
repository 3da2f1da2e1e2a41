#include "orvoctl/OrvoctlTestCase.h"

namespace orvo {
namespace {

class Providers : public test::OrvoctlTestCase {
protected:
    QHash<QString, QJsonObject> providers(const QStringList& options = {}) const {
        QHash<QString, QJsonObject> byId;
        const Outcome outcome = orvoctl(words("providers --json") + options);
        EXPECT_EQ(outcome.status, 0);
        for (const QJsonValue value : outcome.json().array()) {
            byId[value[u"id"].toString()] = value.toObject();
        }
        return byId;
    }
};

TEST_F(Providers, ListsTheCatalogWithWhatIsInstalled) {
    install("claude");
    const auto byId = providers();
    EXPECT_EQ(byId.size(), 6);
    EXPECT_EQ(byId[QStringLiteral("claude")][u"path"], path("home/.local/bin/claude"));
    EXPECT_EQ(byId[QStringLiteral("claude")][u"ready"], true);
    EXPECT_EQ(byId[QStringLiteral("claude")][u"status"], QStringLiteral("Installed · login unchecked"));
    EXPECT_EQ(byId[QStringLiteral("codex")][u"path"], QJsonValue(QJsonValue::Null));
    EXPECT_EQ(byId[QStringLiteral("codex")][u"status"], QStringLiteral("Not installed"));
    EXPECT_EQ(byId[QStringLiteral("zai")][u"status"], QStringLiteral("Profile needed"));
    EXPECT_EQ(byId[QStringLiteral("shell")][u"status"], QStringLiteral("Ready"));
}

TEST_F(Providers, ChecksSignInWhenAsked) {
    install("claude");
    install("codex");
    environment.insert(QStringLiteral("FAKE_CODEX_STATUS_EXIT"), QStringLiteral("1"));
    const auto byId = providers(words("--check"));
    EXPECT_EQ(byId[QStringLiteral("claude")][u"status"], QStringLiteral("Signed in"));
    EXPECT_EQ(byId[QStringLiteral("codex")][u"status"], QStringLiteral("Sign in needed"));
}

TEST_F(Providers, TheTableHasOneLineAConnector) {
    const Outcome outcome = orvoctl(words("providers"));
    EXPECT_EQ(outcome.output.count('\n'), 6);
    EXPECT_TRUE(outcome.output.startsWith("claude       Claude Code  Not installed"))
        << outcome.output.constData();
    EXPECT_FALSE(outcome.output.contains('\033'));
}

}  // namespace
}  // namespace orvo
