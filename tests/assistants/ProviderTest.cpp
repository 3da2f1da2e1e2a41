#include "assistants/Provider.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace orvo {
namespace {

QByteArray record(const QByteArray& id, const QByteArray& name) {
    return R"({"id":")" + id + R"(","name":")" + name +
           R"(","subtitle":"","icon":"","colorHex":"","executable":"","template":"","documentation":""})";
}

TEST(Provider, CatalogEndsWithTheTerminalAndEveryLinkIsAWebLink) {
    QStringList ids;
    for (const Provider& provider : Provider::defaults()) {
        ids.append(provider.id);
        EXPECT_EQ(provider.documentation.isEmpty(), !provider.documentationURL()) << qPrintable(provider.id);
        EXPECT_FALSE(provider.templateError()) << qPrintable(provider.id);
    }
    EXPECT_EQ(ids.join(u' '), QStringLiteral("claude codex kimi antigravity zai shell"));
}

TEST(Provider, DocumentationIsALinkOnlyWithAWebSchemeAndAHost) {
    const struct {
        const char* text;
        const char* link;
    } cases[] = {
        {"https://example.com/docs", "https://example.com/docs"},
        {"HTTPS://example.com/docs", "https://example.com/docs"},
        {"http://localhost:8080/", "http://localhost:8080/"},
        {"https://[invalid", nullptr},
        {"file:///private/tmp/test", nullptr},
        {"javascript:alert(1)", nullptr},
        {"https://", nullptr},
        {"https:///docs", nullptr},
        {"https://user@/docs", nullptr},
        {"https://example.com/a b", nullptr},
        {"https://example.com/%zz", nullptr},
        {"https://example.com:99999/", nullptr},
        {" https://example.com/", nullptr},
        {"https://example.com/\n", nullptr},
        {"example.com", nullptr},
        {"", nullptr},
    };
    for (const auto& c : cases) {
        Provider provider;
        provider.documentation = QString::fromUtf8(c.text);
        const auto url = provider.documentationURL();
        ASSERT_EQ(url.has_value(), c.link != nullptr) << c.text;
        EXPECT_EQ(url.value_or(QUrl()).toEncoded(), QByteArray(c.link)) << c.text;
    }
}

TEST(Provider, WithoutANameItIsCalledByItsProgram) {
    const auto shown = [](const char* name, const char* executable) {
        Provider provider;
        provider.name = QString::fromUtf8(name);
        provider.executable = QString::fromUtf8(executable);
        return provider.shownName();
    };
    EXPECT_EQ(shown(" My tool ", "/usr/bin/tool"), QStringLiteral(" My tool ")) << "as it was given";
    EXPECT_EQ(shown("", "/usr/bin/tool"), QStringLiteral("tool"));
    EXPECT_EQ(shown(" \t", "~/bin/my tool/"), QStringLiteral("my tool"));
    EXPECT_EQ(shown("", "opencode"), QStringLiteral("opencode"));
    EXPECT_EQ(shown("", " / "), QStringLiteral("Unnamed assistant"));
    EXPECT_EQ(shown("", ""), QStringLiteral("Unnamed assistant"));
}

TEST(Provider, ListSurvivesItsJSONForm) {
    QList<Provider> providers = Provider::defaults();
    providers[0].name = QStringLiteral("quote \" back\\slash \n é 🛰");
    EXPECT_EQ(decodeProviders(encodeProviders(providers)), providers);
    EXPECT_EQ(encodeProviders({}), "[]");
    EXPECT_EQ(decodeProviders("[]"), QList<Provider>());
}

TEST(Provider, RecordHasExactlyTheEightKeys) {
    const QJsonDocument one = QJsonDocument::fromJson(encodeProviders({Provider::defaults().first()}));
    EXPECT_EQ(one[0].toObject().keys().join(u' '),
              QStringLiteral("colorHex documentation executable icon id name subtitle template"));
}

TEST(Provider, DataThatIsNotAListOfRecordsIsNothing) {
    const QByteArray good = record("a", "A");
    QByteArray withoutName = good;
    withoutName.replace(R"("name":"A",)", "");
    QByteArray numberAsIcon = good;
    numberAsIcon.replace(R"("icon":"")", R"("icon":7)");
    QByteArray nullSubtitle = good;
    nullSubtitle.replace(R"("subtitle":"")", R"("subtitle":null)");
    ASSERT_TRUE(decodeProviders('[' + good + ']'));
    for (const QByteArray& json :
         {QByteArray(), QByteArray("{}"), QByteArray("null"), QByteArray("[1]"), QByteArray("[[]]"), good,
          QByteArray('[' + good), QByteArray('[' + good + ',' + withoutName + ']'),
          QByteArray('[' + numberAsIcon + ']'), QByteArray('[' + nullSubtitle + ']')}) {
        EXPECT_FALSE(decodeProviders(json)) << json.constData();
    }
}

TEST(Provider, FirstOfRepeatedIdsCounts) {
    const auto providers = decodeProviders('[' + record("a", "first") + ',' + record("b", "other") + ',' +
                                           record("a", "second") + ']');
    ASSERT_TRUE(providers);
    ASSERT_EQ(providers->size(), 2);
    EXPECT_EQ(providers->at(0).name, QStringLiteral("first"));
    EXPECT_EQ(providers->at(1).name, QStringLiteral("other"));
}

}  // namespace
}  // namespace orvo
