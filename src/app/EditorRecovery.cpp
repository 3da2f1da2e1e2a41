#include "app/EditorRecovery.h"

#include "files/ProjectFiles.h"
#include "platform/AppFolders.h"
#include "platform/Dialogs.h"
#include "platform/listFolder.h"
#include "platform/readFile.h"
#include "platform/saveAtomically.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <chrono>
#include <functional>
#include <utility>

#include <unistd.h>

namespace orvo {
namespace {

constexpr char suffix[] = ".unsaved.json";
// A buffer is opened from at most two million bytes; what was typed since then may have multiplied it.
constexpr qsizetype maximumFile = qsizetype{64} * 1024 * 1024;

struct UnsavedText {
    std::optional<FilePath> file;
    QString savedText;
    QString text;
};

QByteArray encoded(const UnsavedText& unsaved) {
    QJsonObject object{{QStringLiteral("savedText"), unsaved.savedText},
                       {QStringLiteral("text"), unsaved.text}};
    if (unsaved.file) {
        object.insert(QStringLiteral("file"), QString::fromLatin1(unsaved.file->bytes().toBase64()));
    }
    return QJsonDocument(object).toJson();
}

std::optional<UnsavedText> decoded(const QByteArray& json) {
    const QJsonObject object = QJsonDocument::fromJson(json).object();
    const QJsonValue savedText = object.value(QLatin1String("savedText"));
    const QJsonValue text = object.value(QLatin1String("text"));
    if (!savedText.isString() || !text.isString()) return std::nullopt;
    UnsavedText unsaved{.file = {}, .savedText = savedText.toString(), .text = text.toString()};
    const QByteArray file = QByteArray::fromBase64(object.value(QLatin1String("file")).toString().toLatin1());
    if (file.startsWith('/')) unsaved.file = FilePath(file);
    return unsaved;
}

void removeFile(const FilePath& file) {
    unlink(file.bytes().constData());
}

/// Names sort by the time of writing: microseconds since 1970, of 16 digits until the year 2286. A clock that
/// was set back does not put the new text among the older ones, nor in the place of one.
QByteArray freshName(const FilePath& folder) {
    using namespace std::chrono;
    constexpr qint64 sixteenNines = 9'999'999'999'999'999;
    qint64 number = duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
    for (const QByteArray& name : listFolder(folder).value_or(QList<QByteArray>())) {
        const qint64 there = name.endsWith(suffix) ? name.left(name.indexOf('.')).toLongLong() : 0;
        if (there < sixteenNines) number = std::max(number, there + 1);
    }
    return QByteArray::number(number).rightJustified(16, '0') + suffix;
}

}  // namespace

EditorRecovery::EditorRecovery(ProjectFiles& files, FilePath folder)
    : m_files(files), m_folder(std::move(folder)), m_queue(SerialQueue::create("orvo.recovery")) {}

const FilePath& EditorRecovery::place() {
    if (!m_kept) m_kept = m_folder.child(freshName(m_folder));
    return *m_kept;
}

std::function<Result<void>()> EditorRecovery::writer() {
    const UnsavedText unsaved{
        .file = m_files.selectedFile(), .savedText = m_files.savedText(), .text = m_files.editorText()};
    return [unsaved, folder = m_folder, file = place()]() -> Result<void> {
        if (Result<void> created = createPrivateFolder(folder); !created) return created;
        return saveAtomically(file, encoded(unsaved));
    };
}

Result<void> EditorRecovery::keep() {
    if (!m_files.fileIsDirty()) {
        forget();
        return {};
    }
    const auto write = writer();
    if (!m_queue) return write();
    Result<void> written;
    m_queue->sync([&] { written = write(); });
    return written;
}

void EditorRecovery::keepSoon() {
    if (!m_files.fileIsDirty())
        forget();
    else if (m_queue)
        m_queue->async([write = writer()] { (void)write(); });
}

void EditorRecovery::forget() {
    const auto kept = std::exchange(m_kept, std::nullopt);
    if (!kept) return;
    if (m_queue)
        m_queue->sync([&kept] { removeFile(*kept); });
    else
        removeFile(*kept);
}

bool EditorRecovery::offer(Dialogs& dialogs) {
    enum Answer { Restore, Discard, Later };
    QList<QByteArray> names = listFolder(m_folder).value_or(QList<QByteArray>());
    std::ranges::sort(names, std::greater());
    for (const QByteArray& name : std::as_const(names)) {
        const FilePath file = m_folder.child(name);
        if (!name.endsWith(suffix) || m_kept == file) continue;
        const std::optional<UnsavedText> unsaved =
            decoded(readFile(file, maximumFile).value_or(QByteArray()));
        // A damaged file stays where it is: a person may still read some of it.
        if (!unsaved) continue;
        const int answer = dialogs.alert(
            {.message = tr("Restore your unsaved changes?"),
             .informativeText = unsaved->file
                                    ? tr("Orvo AI was ended while you had unsaved changes in %1.")
                                          .arg(unsaved->file->displayName())
                                    : tr("Orvo AI was ended while you had unsaved changes in the editor."),
             .buttons = {tr("Restore"), tr("Discard"), tr("Later")},
             .defaultButton = Alert::Default::FirstButton});
        if (answer == Later) continue;
        if (answer == Restore) {
            // Somebody may have begun to type while the question stood.
            if (!m_files.confirmDiscard()) return false;
            m_files.restoreUnsaved(unsaved->file, unsaved->savedText, unsaved->text);
            // At no moment is the text in memory alone.
            if (!keep()) return true;
        }
        removeFile(file);
        if (answer == Restore) return true;
    }
    return false;
}

}  // namespace orvo
