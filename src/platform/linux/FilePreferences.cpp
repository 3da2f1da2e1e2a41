#include "platform/linux/FilePreferences.h"

#include "platform/AppFolders.h"
#include "platform/readFile.h"
#include "platform/saveAtomically.h"
#include "platform/systemError.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>

#include <unistd.h>

namespace orvo {
namespace {

// Far beyond what we write; a file beyond it is not ours and would only fill the memory.
constexpr qsizetype maximumSmallFile = qsizetype{16} << 20;
constexpr qsizetype maximumDataFile = qsizetype{512} << 20;

tl::unexpected<Error> refusal(const char* sentence) {
    return failure(QStringLiteral("OrvoPreferences"),
                   QCoreApplication::translate("FilePreferences", sentence));
}

std::optional<PreferenceValue> fromJson(const QJsonValue& value) {
    if (value.isBool()) return value.toBool();
    if (value.isDouble()) return value.toDouble();
    if (value.isString()) return value.toString();
    if (!value.isArray()) return std::nullopt;
    QStringList texts;
    for (const QJsonValue item : value.toArray()) {
        if (!item.isString()) return std::nullopt;
        texts.append(item.toString());
    }
    return texts;
}

struct ToJson {
    QJsonValue operator()(bool value) const { return value; }
    QJsonValue operator()(double value) const { return value; }
    QJsonValue operator()(const QString& value) const { return value; }
    QJsonValue operator()(const QStringList& value) const { return QJsonArray::fromStringList(value); }
    QJsonValue operator()(const QByteArray&) const { return QJsonValue::Undefined; }
};

}  // namespace

FilePreferences::FilePreferences(FilePath folder, Access access)
    : m_folder(std::move(folder)), m_access(access) {
    if (m_access == Access::ReadWrite) removeStaleTemporaries(m_folder);
    const Result<QByteArray> content = readFile(smallFile(), maximumSmallFile);
    if (!content) {
        if (content.error().code != ENOENT) m_damaged.insert(smallFile().bytes());
        return;
    }
    const QJsonDocument document = QJsonDocument::fromJson(*content);
    if (!document.isObject()) {
        m_damaged.insert(smallFile().bytes());
        return;
    }
    m_small = document.object();
}

FilePreferences::~FilePreferences() {
    finishWriting();
}

FilePath FilePreferences::smallFile() const {
    return m_folder.child("preferences.json");
}

FilePath FilePreferences::dataFile(const QByteArray& name) const {
    return m_folder.child(name + ".data");
}

std::optional<PreferenceValue> FilePreferences::read(const char* name) const {
    const QJsonValue small = m_small.value(QLatin1String(name));
    if (!small.isUndefined()) return fromJson(small);
    std::optional<QByteArray> data = readData(name);
    if (!data) return std::nullopt;
    return std::move(*data);
}

std::optional<QByteArray> FilePreferences::readData(const QByteArray& name) const {
    if (const auto unsaved = m_unsavedData.constFind(name); unsaved != m_unsavedData.constEnd())
        return *unsaved;
    Result<QByteArray> content = readFile(dataFile(name), maximumDataFile);
    if (content) return std::move(*content);
    if (content.error().code != ENOENT) m_damaged.insert(dataFile(name).bytes());
    return std::nullopt;
}

Result<void> FilePreferences::write(const char* name, std::optional<PreferenceValue> value) {
    if (m_access == Access::ReadOnly) {
        return refusal(QT_TRANSLATE_NOOP("FilePreferences", "Preferences can only be read here."));
    }
    // JSON has no word for these, and no setting can mean them.
    if (value && std::holds_alternative<double>(*value) && !std::isfinite(std::get<double>(*value))) {
        return refusal(QT_TRANSLATE_NOOP("FilePreferences", "This number cannot be stored."));
    }
    const QJsonValue small = value ? std::visit(ToJson(), *value) : QJsonValue(QJsonValue::Undefined);
    std::optional<QByteArray> data;
    if (value && std::holds_alternative<QByteArray>(*value)) data = std::get<QByteArray>(std::move(*value));
    // The name belongs to one of the two, so what the other holds of it goes.
    const Result<void> smallWritten = writeSmall(name, small);
    const Result<void> dataWritten = writeData(name, data);
    return smallWritten ? dataWritten : smallWritten;
}

void FilePreferences::keepAside(const char* name) {
    m_damaged.insert(dataFile(name).bytes());
}

Result<void> FilePreferences::writeSmall(const QByteArray& name, const QJsonValue& value) {
    const QString key = QString::fromLatin1(name);
    if (m_small.value(key) == value && (m_smallOnDisk == OnDisk::Current || value.isUndefined())) return {};
    // An undefined value removes the key.
    m_small.insert(key, value);
    m_smallOnDisk = OnDisk::Outdated;
    return m_holding ? Result<void>() : saveSmall();
}

// What cannot be stored now is tried again with the next change, which says so if it fails.
void FilePreferences::storeHeld() {
    m_holding = false;
    if (m_smallOnDisk == OnDisk::Outdated) (void)saveSmall();
}

Result<void> FilePreferences::saveSmall() {
    if (Result<void> created = createPrivateFolder(m_folder); !created) return created;
    if (Result<void> kept = putAside(smallFile()); !kept) return kept;
    Result<void> saved = saveAtomically(smallFile(), QJsonDocument(m_small).toJson());
    if (saved) m_smallOnDisk = OnDisk::Current;
    return saved;
}

Result<void> FilePreferences::writeData(const QByteArray& name, const std::optional<QByteArray>& data) {
    const FilePath file = dataFile(name);
    finishWriting();
    // What the writer has still to report is about an older value.
    if (const auto turn = m_turns.constFind(name); turn != m_turns.constEnd()) ++**turn;
    if (!data) {
        if (unlink(file.bytes().constData()) == 0 || errno == ENOENT || errno == ENOTDIR) {
            m_unsavedData.remove(name);
            return {};
        }
        const int code = errno;
        m_unsavedData.insert(name, std::nullopt);
        return systemFailure(code, file);
    }
    m_unsavedData.insert(name, data);
    if (Result<void> ready = prepare(file); !ready) return ready;
    Result<void> saved = saveAtomically(file, *data);
    if (saved) m_unsavedData.remove(name);
    return saved;
}

Result<void> FilePreferences::prepare(const FilePath& file) {
    return createPrivateFolder(m_folder).and_then([&] { return putAside(file); });
}

void FilePreferences::writeSoon(const char* name, PreferenceValue value, Stored stored) {
    const auto* const data = std::get_if<QByteArray>(&value);
    if (!m_writer && data) m_writer = SerialQueue::create("orvo.preferences");
    if (!data || !m_writer || m_access == Access::ReadOnly || m_small.contains(QLatin1String(name)))
        return Preferences::writeSoon(name, std::move(value), std::move(stored));
    postData(name, *data, std::move(stored));
}

void FilePreferences::postData(const QByteArray& name, const QByteArray& data, Stored stored) {
    const FilePath file = dataFile(name);
    m_unsavedData.insert(name, data);
    if (const Result<void> ready = prepare(file); !ready) {
        if (stored) stored(ready);
        return;
    }
    Turn& turn = m_turns[name];
    if (!turn) turn = std::make_shared<std::atomic<int>>(0);
    const int mine = ++*turn;
    if (!m_reports) m_reports = std::make_unique<QObject>();
    m_writer->async(
        [this, file, name, data, turn, mine, stored = std::move(stored), reports = m_reports.get()] {
            // A newer value waits already.
            if (*turn != mine) return;
            const Result<void> saved = saveAtomically(file, data);
            // The writer ends before the object that it reports to.
            QMetaObject::invokeMethod(
                reports,
                [this, name, turn, mine, saved, stored] {
                    if (saved && *turn == mine) m_unsavedData.remove(name);
                    if (stored) stored(saved);
                },
                Qt::QueuedConnection);
        });
}

void FilePreferences::finishWriting() {
    if (m_writer) m_writer->sync([] {});
}

Result<void> FilePreferences::putAside(const FilePath& file) {
    if (!m_damaged.contains(file.bytes())) return {};
    if (rename(file.bytes().constData(), (file.bytes() + ".damaged").constData()) != 0 && errno != ENOENT) {
        return systemFailure(errno, file);
    }
    m_damaged.remove(file.bytes());
    return {};
}

}  // namespace orvo
