#include "mac_actions/ComputerPlan.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>

namespace orvo {
namespace {

constexpr std::array<ComputerKey, 10> keyTable = {{
    {"return", 36, 0},
    {"tab", 48, 0},
    {"escape", 53, 0},
    {"space", 49, 0},
    {"command+a", 0, ComputerKey::command},
    {"command+c", 8, ComputerKey::command},
    {"command+v", 9, ComputerKey::command},
    {"command+s", 1, ComputerKey::command},
    {"command+n", 45, ComputerKey::command},
    {"command+f", 3, ComputerKey::command},
}};

}  // namespace

const QByteArray& ComputerPlan::schema() {
    static const QByteArray text =
        R"({"type":"object","additionalProperties":false,"required":["explanation","steps"],)"
        R"("properties":{"explanation":{"type":"string"},"steps":{"type":"array","items":)"
        R"({"type":"object","additionalProperties":false,"required":["id","title","action","app","value"],)"
        R"("properties":{"id":{"type":"integer"},"title":{"type":"string"},"action":{"type":"string",)"
        R"("enum":["open_app","open_url","type_text","key"]},"app":{"type":"string"},)"
        R"("value":{"type":"string"}}}}}})";
    return text;
}

std::span<const ComputerKey> ComputerPlan::keys() {
    return keyTable;
}

const ComputerKey* ComputerPlan::key(const QString& name) {
    const auto found = std::ranges::find_if(
        keyTable, [&](const ComputerKey& key) { return name == QLatin1String(key.name); });
    return found == keyTable.end() ? nullptr : &*found;
}

QByteArray ComputerPlan::toJson() const {
    QJsonArray list;
    for (const ComputerStep& step : steps) {
        list.append(QJsonObject{{QStringLiteral("id"), step.id},
                                {QStringLiteral("title"), step.title},
                                {QStringLiteral("action"), step.action},
                                {QStringLiteral("app"), step.app},
                                {QStringLiteral("value"), step.value}});
    }
    return QJsonDocument(
               QJsonObject{{QStringLiteral("explanation"), explanation}, {QStringLiteral("steps"), list}})
        .toJson(QJsonDocument::Compact);
}

}  // namespace orvo
