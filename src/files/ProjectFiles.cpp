#include "files/ProjectFiles.h"

#include "files/DiskWatch.h"
#include "files/listEntries.h"
#include "platform/Dialogs.h"
#include "platform/observe.h"
#include "platform/readFile.h"
#include "platform/runInBackground.h"
#include "platform/saveAtomically.h"

#include <QStringDecoder>

#include <cerrno>

namespace orvo {
namespace {

// What an editor's file may have grown to on the disk and still be compared with the buffer.
constexpr qsizetype maximumReadBack = 64 * 1024 * 1024;

/// Nothing when the bytes are not UTF-8. A byte order mark stays a character, so that saving keeps it.
std::optional<QString> decodedText(const QByteArray& bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    QString text = decoder(bytes);
    if (decoder.hasError()) return std::nullopt;
    return text;
}

/// The file's text now; nothing when there is none that can be read.
std::optional<QString> textOnDisk(const FilePath& file) {
    const Result<QByteArray> content = readFile(file, maximumReadBack);
    return content ? decodedText(*content) : std::nullopt;
}

ProjectFiles::OnDisk compared(const std::optional<QString>& onDisk, const QString& savedText) {
    if (!onDisk) return ProjectFiles::OnDisk::Unreadable;
    return *onDisk == savedText ? ProjectFiles::OnDisk::Same : ProjectFiles::OnDisk::Changed;
}

}  // namespace

ProjectFiles::ProjectFiles(Dialogs& dialogs, std::function<void(const QString&)> notify, QObject* parent)
    : QObject(parent), m_dialogs(dialogs), m_notify(std::move(notify)), m_watch(new DiskWatch(this)) {
    connect(m_watch, &DiskWatch::changed, this, &ProjectFiles::lookAtDisk);
}

const QList<FileEntry>& ProjectFiles::files() const {
    if (!std::exchange(m_isSorting, true)) sortEntries(m_files);
    return m_files;
}

void ProjectFiles::setEditorText(const QString& text) {
    if (assign(m_editorText, text)) Q_EMIT editorTextChanged();
}

void ProjectFiles::setSearch(const QString& search) {
    if (assign(m_search, search)) Q_EMIT searchChanged();
}

void ProjectFiles::setBrowsingFolder(const std::optional<FilePath>& folder) {
    if (!assign(m_browsingFolder, folder)) return;
    watchDisk();
    Q_EMIT browsingFolderChanged();
}

void ProjectFiles::setOnDisk(OnDisk onDisk) {
    if (assign(m_onDisk, onDisk)) Q_EMIT onDiskChanged();
}

void ProjectFiles::watchDisk() {
    QList<FilePath> paths;
    if (m_browsingFolder) paths.append(*m_browsingFolder);
    // Its folder, too: most programs replace a file, and a file that was removed may come back.
    if (m_selectedFile) paths += {*m_selectedFile, m_selectedFile->parent()};
    m_watch->watch(paths);
}

// In the background, because folders and files may be large and this happens unasked.
void ProjectFiles::lookAtDisk() {
    if (m_looking) {
        m_lookAgain = true;
        return;
    }
    struct Seen {
        std::optional<QList<FileEntry>> entries;
        OnDisk onDisk = OnDisk::Same;
    };
    const auto look = [folder = m_browsingFolder, file = m_selectedFile, saved = m_savedText,
                       list = m_isSorting ? listEntries : readEntries] {
        Seen seen;
        if (folder) {
            if (Result<QList<FileEntry>> entries = list(*folder)) seen.entries = std::move(*entries);
        }
        if (file) seen.onDisk = compared(textOnDisk(*file), saved);
        return seen;
    };
    m_looking = true;
    runInBackground(this, look,
                    [this, folder = m_browsingFolder, file = m_selectedFile, saved = m_savedText,
                     wasSorting = m_isSorting](Seen seen) {
                        m_looking = false;
                        const bool isSameFolder = folder == m_browsingFolder;
                        if (seen.entries && m_isSorting && !wasSorting) sortEntries(*seen.entries);
                        const bool isSameFile = file == m_selectedFile && saved == m_savedText;
                        if (isSameFile) setOnDisk(seen.onDisk);
                        if (isSameFolder && seen.entries && assign(m_files, std::move(*seen.entries)))
                            Q_EMIT filesChanged();
                        watchDisk();
                        if (std::exchange(m_lookAgain, false) || !isSameFolder || !isSameFile) lookAtDisk();
                    });
}

void ProjectFiles::edit(const std::optional<FilePath>& file, const QString& text) {
    const bool anotherFile = assign(m_selectedFile, file);
    const bool anotherSavedText = assign(m_savedText, text);
    const bool anotherText = assign(m_editorText, text);
    watchDisk();
    setOnDisk(OnDisk::Same);
    if (anotherFile) Q_EMIT selectedFileChanged();
    if (anotherSavedText) Q_EMIT savedTextChanged();
    if (anotherText) Q_EMIT editorTextChanged();
}

void ProjectFiles::setProject(const std::optional<FilePath>& folder) {
    m_project = folder;
    edit(std::nullopt, QString());
    setBrowsingFolder(folder);
}

void ProjectFiles::refreshFiles(const std::optional<FilePath>& folder) {
    const std::optional<FilePath> target = folder ? folder : m_browsingFolder ? m_browsingFolder : m_project;
    if (!target) {
        if (assign(m_files, QList<FileEntry>())) Q_EMIT filesChanged();
        return;
    }
    setBrowsingFolder(target);
    Result<QList<FileEntry>> entries = m_isSorting ? listEntries(*target) : readEntries(*target);
    if (!entries) {
        m_notify(entries.error().message);
        return;
    }
    if (assign(m_files, std::move(*entries))) Q_EMIT filesChanged();
}

void ProjectFiles::openFile(const FileEntry& entry) {
    // A copy, because the argument may be an element of the list that is read anew below.
    const FilePath file = entry.url;
    if (entry.isDirectory) {
        refreshFiles(file);
        return;
    }
    if (!confirmDiscard()) return;
    const Result<QByteArray> content = readFile(file, tooLargeToOpen - 1);
    if (!content && content.error().code == EFBIG) {
        m_notify(tr("This file is too large for the built-in editor. Open it in your preferred editor."));
        return;
    }
    const std::optional<QString> text = content ? decodedText(*content) : std::nullopt;
    if (!text) {
        m_notify(tr("This file cannot be opened as UTF-8 text."));
        return;
    }
    edit(file, *text);
}

void ProjectFiles::newFile() {
    if (!m_project || !confirmDiscard()) return;
    const std::optional<FilePath> file =
        m_dialogs.saveFile(QStringLiteral("untitled.py"), m_browsingFolder ? m_browsingFolder : m_project);
    if (!file) return;
    if (const auto saved = saveAtomically(*file, {}, {.newFile = SaveOptions::NewFile::AsUserWants});
        !saved) {
        m_notify(saved.error().message);
        return;
    }
    edit(*file, QString());
    refreshFiles();
}

void ProjectFiles::restoreUnsaved(const std::optional<FilePath>& file, const QString& savedText,
                                  const QString& text) {
    edit(file, savedText);
    setEditorText(text);
}

bool ProjectFiles::confirmDiscard() {
    if (!fileIsDirty()) return true;
    const int answer =
        m_dialogs.alert({.message = tr("Save your changes?"),
                         .informativeText = m_selectedFile ? m_selectedFile->displayName()
                                                           : tr("Your file has unsaved changes."),
                         .buttons = {tr("Save"), tr("Discard"), tr("Cancel")},
                         .defaultButton = Alert::Default::FirstButton});
    if (answer == 0) return saveFile();
    return answer == 1;
}

bool ProjectFiles::mayOverwrite(const FilePath& file) {
    const std::optional<QString> onDisk = textOnDisk(file);
    setOnDisk(compared(onDisk, m_savedText));
    if (!onDisk) {
        m_notify(
            tr("This file was removed or can no longer be read as text. Your editor changes are still here; "
               "restore or reopen the file before saving."));
        return false;
    }
    if (*onDisk == m_savedText) return true;
    return m_dialogs.alert(
               {.message = tr("This file changed on disk"),
                .informativeText = tr("An assistant or another app edited this file. Replace those "
                                      "changes with your editor version?"),
                .buttons = {tr("Replace"), tr("Cancel")}}) == 0;
}

void ProjectFiles::reloadFile() {
    if (!m_selectedFile) return;
    const std::optional<QString> text = textOnDisk(*m_selectedFile);
    if (text)
        edit(m_selectedFile, *text);
    else
        edit(std::nullopt, QString());
}

bool ProjectFiles::saveFile() {
    if (!m_selectedFile) return false;
    // Copies, because the event loop runs while a question stands: what was shown then is what is written.
    const FilePath file = *m_selectedFile;
    const QString text = m_editorText;
    if (!mayOverwrite(file)) return false;
    if (const auto saved = saveAtomically(file, text.toUtf8(), {.link = SaveOptions::Link::Follow}); !saved) {
        m_notify(saved.error().message);
        return false;
    }
    if (m_selectedFile == file) {
        const bool savedIsNew = assign(m_savedText, text);
        setOnDisk(OnDisk::Same);
        if (savedIsNew) Q_EMIT savedTextChanged();
    }
    m_notify(tr("Saved %1.").arg(file.displayName()));
    return true;
}

}  // namespace orvo
