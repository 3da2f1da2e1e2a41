#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"

#include <QList>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>

namespace orvo {

class Dialogs;
class DiskWatch;

/// One listed item of a folder.
struct FileEntry {
    FilePath url;
    /// A link counts as what it points to.
    bool isDirectory = false;

    bool operator==(const FileEntry&) const = default;
};

/// The project's file list and the editor's buffer. Both follow the disk: the list by itself, the buffer by
/// telling when its file has changed. Main thread only.
class ProjectFiles : public QObject {
    Q_OBJECT

public:
    /// Files of this many bytes are not opened.
    static constexpr qint64 tooLargeToOpen = 2'000'000;
    /// How the open file compares with what was last read from it or written to it.
    enum class OnDisk {
        Same,
        Changed,
        /// Removed, replaced by something that is no text, or not to be read.
        Unreadable,
    };

    /// `dialogs` outlives this object. `notify` shows a sentence to the person.
    ProjectFiles(Dialogs& dialogs, std::function<void(const QString&)> notify, QObject* parent = nullptr);

    const QList<FileEntry>& files() const;
    const std::optional<FilePath>& browsingFolder() const { return m_browsingFolder; }
    const std::optional<FilePath>& selectedFile() const { return m_selectedFile; }
    const QString& editorText() const { return m_editorText; }
    const QString& savedText() const { return m_savedText; }
    /// As of a moment ago; saving looks again.
    OnDisk onDisk() const { return m_onDisk; }
    /// File filter of the Files page.
    const QString& search() const { return m_search; }
    void setEditorText(const QString& text);
    void setSearch(const QString& search);

    /// Another project: the editor is emptied and its folder browsed. The list is not read yet.
    void setProject(const std::optional<FilePath>& folder);
    /// Lists `folder`, else the folder browsed, else the project. Folders first, then as a person would sort
    /// ("file2" before "file10"); hidden files are left out. A folder that cannot be listed leaves the list.
    /// While it is browsed the list follows what changes in it.
    void refreshFiles(const std::optional<FilePath>& folder = std::nullopt);
    /// Goes into a folder, or puts a text file into the editor after asking about unsaved changes.
    void openFile(const FileEntry& entry);
    /// Asks for a place and puts a new empty file there into the editor.
    void newFile();
    bool fileIsDirty() const { return m_editorText != m_savedText; }
    /// Puts a text that was never saved back into the editor, over what its file held then, so that saving
    /// asks when the file has changed since.
    void restoreUnsaved(const std::optional<FilePath>& file, const QString& savedText, const QString& text);
    /// Asks about unsaved changes; true when the caller may go on.
    bool confirmDiscard();
    /// Shows the open file as it is on the disk now, dropping changes of the buffer; closes it when it is
    /// gone or no text any more. For changes that the person has agreed to.
    void reloadFile();
    /// Writes the buffer to its file, unless the file is gone, or changed and the person wants those changes;
    /// true when written. A link stays a link, and the file keeps its permissions.
    bool saveFile();

Q_SIGNALS:
    void filesChanged();
    void browsingFolderChanged();
    void selectedFileChanged();
    void editorTextChanged();
    void savedTextChanged();
    void onDiskChanged();
    void searchChanged();

private:
    void edit(const std::optional<FilePath>& file, const QString& text);
    void setBrowsingFolder(const std::optional<FilePath>& folder);
    void setOnDisk(OnDisk onDisk);
    void watchDisk();
    void lookAtDisk();
    bool mayOverwrite(const FilePath& file);

    Dialogs& m_dialogs;
    std::function<void(const QString&)> m_notify;
    std::optional<FilePath> m_project;
    /// Sorted from the first look at them on: most starts never show them.
    mutable QList<FileEntry> m_files;
    mutable bool m_isSorting = false;
    std::optional<FilePath> m_browsingFolder;
    std::optional<FilePath> m_selectedFile;
    QString m_editorText;
    QString m_savedText;
    QString m_search;
    OnDisk m_onDisk = OnDisk::Same;
    DiskWatch* m_watch;
    // A look at the disk is under way in the background; it was asked for again meanwhile.
    bool m_looking = false;
    bool m_lookAgain = false;
};

}  // namespace orvo
