#include "files/ProjectFiles.h"

#include "files/listEntries.h"
#include "platform/Dialogs.h"
#include "platform/observe.h"
#include "platform/readFile.h"
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

}  // namespace

ProjectFiles::ProjectFiles(Dialogs& dialogs, std::function<void(const QString&)> notify, QObject* parent)
    : QObject(parent), m_dialogs(dialogs), m_notify(std::move(notify)) {}

void ProjectFiles::setEditorText(const QString& text) {
    if (assign(m_editorText, text)) Q_EMIT editorTextChanged();
}

void ProjectFiles::setSearch(const QString& search) {
    if (assign(m_search, search)) Q_EMIT searchChanged();
}

void ProjectFiles::setBrowsingFolder(const std::optional<FilePath>& folder) {
    if (assign(m_browsingFolder, folder)) Q_EMIT browsingFolderChanged();
}

void ProjectFiles::edit(const std::optional<FilePath>& file, const QString& text) {
    const bool anotherFile = assign(m_selectedFile, file);
    const bool anotherSavedText = assign(m_savedText, text);
    const bool anotherText = assign(m_editorText, text);
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
    Result<QList<FileEntry>> entries = listEntries(*target);
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
    const Result<QByteArray> content = readFile(file, maximumReadBack);
    const std::optional<QString> onDisk = content ? decodedText(*content) : std::nullopt;
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
    const Result<QByteArray> content = readFile(*m_selectedFile, maximumReadBack);
    const std::optional<QString> text = content ? decodedText(*content) : std::nullopt;
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
    if (m_selectedFile == file && assign(m_savedText, text)) Q_EMIT savedTextChanged();
    m_notify(tr("Saved %1.").arg(file.displayName()));
    return true;
}

}  // namespace orvo
