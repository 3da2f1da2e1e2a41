#include "assistants/Provider.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <array>

namespace orvo {
namespace {

struct Field {
    QLatin1String key;
    QString Provider::* member;
};

// The record's JSON form, key by key. All are texts and all are required.
const std::array<Field, 8> fields = {{
    {QLatin1String("id"), &Provider::id},
    {QLatin1String("name"), &Provider::name},
    {QLatin1String("subtitle"), &Provider::subtitle},
    {QLatin1String("icon"), &Provider::icon},
    {QLatin1String("colorHex"), &Provider::colorHex},
    {QLatin1String("executable"), &Provider::executable},
    {QLatin1String("template"), &Provider::template_},
    {QLatin1String("documentation"), &Provider::documentation},
}};

std::optional<Provider> decodeProvider(const QJsonValue& value) {
    if (!value.isObject()) return std::nullopt;
    const QJsonObject object = value.toObject();
    Provider provider;
    for (const Field& field : fields) {
        const QJsonValue text = object.value(field.key);
        if (!text.isString()) return std::nullopt;
        provider.*field.member = text.toString();
    }
    return provider;
}

QList<Provider> makeDefaults() {
    return {
        {.id = QStringLiteral("claude"),
         .name = QStringLiteral("Claude Code"),
         .subtitle = QStringLiteral("Anthropic · coding agent"),
         .icon = QStringLiteral("asterisk"),
         .colorHex = QStringLiteral("E3AF94"),
         .executable = QStringLiteral("claude"),
         .template_ = QStringLiteral("claude {prompt}"),
         .documentation = QStringLiteral("https://code.claude.com/docs/en/overview")},
        {.id = QStringLiteral("codex"),
         .name = QStringLiteral("Codex"),
         .subtitle = QStringLiteral("OpenAI · coding agent"),
         .icon = QStringLiteral("chevron.left.forwardslash.chevron.right"),
         .colorHex = QStringLiteral("A6C9F8"),
         .executable = QStringLiteral("codex"),
         .template_ = QStringLiteral("codex --sandbox workspace-write {prompt}"),
         .documentation = QStringLiteral("https://developers.openai.com/codex/cli")},
        {.id = QStringLiteral("kimi"),
         .name = QStringLiteral("Kimi Code"),
         .subtitle = QStringLiteral("Moonshot · K3 via your CLI settings"),
         .icon = QStringLiteral("k.square"),
         .colorHex = QStringLiteral("C0AAF9"),
         .executable = QStringLiteral("kimi"),
         .template_ = QStringLiteral("kimi"),
         .documentation = QStringLiteral("https://www.kimi.com/code/docs/en/")},
        {.id = QStringLiteral("antigravity"),
         .name = QStringLiteral("Antigravity"),
         .subtitle = QStringLiteral("Google · coding agent"),
         .icon = QStringLiteral("sparkle"),
         .colorHex = QStringLiteral("99D8BA"),
         .executable = QStringLiteral("agy"),
         .template_ = QStringLiteral("agy"),
         .documentation = QStringLiteral("https://antigravity.google/docs")},
        {.id = QStringLiteral("zai"),
         .name = QStringLiteral("Z.ai"),
         .subtitle = QStringLiteral("GLM · configure a separate CLI profile"),
         .icon = QStringLiteral("z.square"),
         .colorHex = QStringLiteral("7EE6E3"),
         .executable = QStringLiteral("claude"),
         .template_ = QString(),
         .documentation = QStringLiteral("https://docs.z.ai/devpack/tool/claude")},
        {.id = QStringLiteral("shell"),
         .name = QStringLiteral("Terminal"),
         .subtitle = QStringLiteral("Your Mac · Zsh shell"),
         .icon = QStringLiteral("terminal"),
         .colorHex = QStringLiteral("90A4BE"),
         .executable = QStringLiteral("/bin/zsh"),
         .template_ = QStringLiteral("/bin/zsh -l"),
         .documentation = QString()},
    };
}

}  // namespace

const QList<Provider>& Provider::defaults() {
    static const QList<Provider> catalog = makeDefaults();
    return catalog;
}

QString Provider::shownName() const {
    if (!name.trimmed().isEmpty()) return name;
    const QString program = executable.section(u'/', -1, -1, QString::SectionSkipEmpty).trimmed();
    return program.isEmpty() ? QCoreApplication::translate("Provider", "Unnamed assistant") : program;
}

std::optional<QUrl> Provider::documentationURL() const {
    QUrl url(documentation, QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty()) return std::nullopt;
    // QUrl keeps schemes in lower case.
    if (url.scheme() != QLatin1String("https") && url.scheme() != QLatin1String("http")) return std::nullopt;
    return url;
}

QByteArray encodeProviders(const QList<Provider>& providers) {
    QJsonArray array;
    for (const Provider& provider : providers) {
        QJsonObject object;
        for (const Field& field : fields)
            object.insert(field.key, provider.*field.member);
        array.append(object);
    }
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

std::optional<QList<Provider>> decodeProviders(const QByteArray& json) {
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray()) return std::nullopt;
    QList<Provider> providers;
    QSet<QString> seen;
    for (const QJsonValue value : document.array()) {
        std::optional<Provider> provider = decodeProvider(value);
        if (!provider) return std::nullopt;
        if (seen.contains(provider->id)) continue;
        seen.insert(provider->id);
        providers.append(*std::move(provider));
    }
    return providers;
}

}  // namespace orvo
