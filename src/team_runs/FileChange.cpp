#include "team_runs/FileChange.h"

#include "team_runs/jsonFields.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace orvo {
namespace {

QJsonValue valueOf(const std::optional<QByteArray>& hash) {
    return hash ? QJsonValue(QString::fromLatin1(*hash)) : QJsonValue();
}

QJsonValue valueOf(const std::optional<int>& mode) {
    return mode ? QJsonValue(*mode) : QJsonValue();
}

bool isAbsent(const QJsonObject& object, const char* key) {
    const QJsonValue value = object.value(QLatin1String(key));
    return value.isUndefined() || value.isNull();
}

bool readHash(const QJsonObject& object, const char* key, std::optional<QByteArray>& hash) {
    if (isAbsent(object, key)) return true;
    const auto text = textField(object, key);
    if (!text) return false;
    hash = text->toLatin1();
    return true;
}

bool readMode(const QJsonObject& object, const char* key, std::optional<int>& mode) {
    if (isAbsent(object, key)) return true;
    mode = integerField(object, key);
    return mode.has_value();
}

}  // namespace

FileChange::Kind FileChange::kind() const {
    if (!before) return Kind::Added;
    return after ? Kind::Changed : Kind::Removed;
}

QString textOf(FileChange::Kind kind) {
    switch (kind) {
        case FileChange::Kind::Added:
            return QCoreApplication::translate("FileChange", "Added");
        case FileChange::Kind::Changed:
            return QCoreApplication::translate("FileChange", "Changed");
        case FileChange::Kind::Removed:
            return QCoreApplication::translate("FileChange", "Removed");
    }
    return {};
}

QJsonObject jsonOf(const FileChange& change) {
    QJsonObject object{{QStringLiteral("kind"), textOf(change.kind())},
                       {QStringLiteral("before"), valueOf(change.before)},
                       {QStringLiteral("after"), valueOf(change.after)},
                       {QStringLiteral("beforeMode"), valueOf(change.beforeMode)},
                       {QStringLiteral("afterMode"), valueOf(change.afterMode)}};
    insertBytes(object, "path", change.path);
    return object;
}

std::optional<FileChange> changeFrom(const QJsonObject& object) {
    const auto path = bytesField(object, "path");
    if (!path) return std::nullopt;
    FileChange change{*path, {}, {}, {}, {}};
    const bool readable =
        readHash(object, "before", change.before) && readHash(object, "after", change.after) &&
        readMode(object, "beforeMode", change.beforeMode) && readMode(object, "afterMode", change.afterMode);
    if (!readable) return std::nullopt;
    return change;
}

std::optional<QList<FileChange>> decodeChanges(const QByteArray& json) {
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray()) return std::nullopt;
    QList<FileChange> changes;
    for (const QJsonValue value : document.array()) {
        const auto change = changeFrom(value.toObject());
        if (!change) return std::nullopt;
        changes.append(*change);
    }
    return changes;
}

}  // namespace orvo
