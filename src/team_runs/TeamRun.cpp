#include "team_runs/TeamRun.h"

#include "team_runs/jsonFields.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>

namespace orvo {
namespace {

const QDateTime& referenceDate() {
    static const QDateTime date(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    return date;
}

QJsonObject objectOf(const RunCopy& copy) {
    QJsonObject object{{QStringLiteral("id"), uuidText(copy.id)},
                       {QStringLiteral("provider"), copy.provider}};
    insertBytes(object, "directory", copy.directory.bytes());
    if (copy.session) object.insert(QStringLiteral("session"), uuidText(*copy.session));
    if (copy.exitCode) object.insert(QStringLiteral("exitCode"), *copy.exitCode);
    return object;
}

std::optional<QUuid> uuidField(const QJsonObject& object, const char* key) {
    const QJsonValue value = object.value(QLatin1String(key));
    return value.isString() ? uuidFromText(value.toString()) : std::nullopt;
}

/// Absent and null are the same; a value of another type makes the record undecodable.
template <class T, class Read>
bool readOptional(const QJsonObject& object, const char* key, std::optional<T>& field, Read read) {
    const QJsonValue value = object.value(QLatin1String(key));
    if (value.isUndefined() || value.isNull()) return true;
    field = read(object, key);
    return field.has_value();
}

std::optional<RunCopy> copyFrom(const QJsonValue& value) {
    const QJsonObject object = value.toObject();
    const auto id = uuidField(object, "id");
    const auto provider = textField(object, "provider");
    const auto directory = bytesField(object, "directory");
    if (!id || !provider || !directory) return std::nullopt;
    RunCopy copy{*id, *provider, FilePath(*directory), {}, {}};
    if (!readOptional(object, "session", copy.session, uuidField)) return std::nullopt;
    if (!readOptional(object, "exitCode", copy.exitCode, integerField)) return std::nullopt;
    return copy;
}

}  // namespace

QDateTime TeamRun::createdTime() const {
    constexpr double farthest = 1e12;
    return referenceDate().addMSecs(static_cast<qint64>(std::clamp(created, -farthest, farthest) * 1000));
}

double TeamRun::secondsOf(const QDateTime& time) {
    return static_cast<double>(referenceDate().msecsTo(time)) / 1000;
}

FilePath TeamRun::outputFile(const RunCopy& copy) const {
    return root.child("output-" + uuidText(copy.id).toLatin1() + ".txt");
}

FilePath TeamRun::newBackupFolder() const {
    return root.child("backup-" + uuidText(QUuid::createUuid()).toLatin1());
}

QByteArray encodeTeamRun(const TeamRun& run) {
    QJsonArray copies;
    for (const RunCopy& copy : run.copies)
        copies.append(objectOf(copy));
    QJsonObject object{{QStringLiteral("id"), uuidText(run.id)},
                       {QStringLiteral("prompt"), run.prompt},
                       {QStringLiteral("created"), run.created},
                       {QStringLiteral("copies"), copies}};
    insertBytes(object, "project", run.project.bytes());
    insertBytes(object, "root", run.root.bytes());
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

std::optional<TeamRun> decodeTeamRun(const QByteArray& json) {
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isObject()) return std::nullopt;
    const QJsonObject object = document.object();
    const auto id = uuidField(object, "id");
    const auto prompt = textField(object, "prompt");
    const auto project = bytesField(object, "project");
    const auto root = bytesField(object, "root");
    const QJsonValue created = object.value(QLatin1String("created"));
    const QJsonValue copies = object.value(QLatin1String("copies"));
    if (!id || !prompt || !project || !root || !created.isDouble() || !copies.isArray()) return std::nullopt;

    TeamRun run{*id, *prompt, FilePath(*project), FilePath(*root), created.toDouble(), {}};
    for (const QJsonValue value : copies.toArray()) {
        const auto copy = copyFrom(value);
        if (!copy) return std::nullopt;
        run.copies.append(*copy);
    }
    return run;
}

QString uuidText(const QUuid& id) {
    return id.toString(QUuid::WithoutBraces).toUpper();
}

std::optional<QUuid> uuidFromText(const QString& text) {
    static const QRegularExpression canonical(
        QStringLiteral("\\A[0-9A-Fa-f]{8}(-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}\\z"));
    if (!canonical.match(text).hasMatch()) return std::nullopt;
    return QUuid::fromString(text);
}

}  // namespace orvo
