#pragma once

#include "platform/FilePath.h"

#include <QList>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>

namespace orvo {

class Dialogs;

/// One listed item of a folder.
struct FileEntry {
    FilePath url;
    bool isDirectory = false;

    bool operator==(const FileEntry&) const = default;
};

/// The project's file list and the editor's buffer. Main thread only.
class ProjectFiles : public QObject {
    Q_OBJECT

public:
    /// `dialogs` outlives this object. `notify` shows a sentence to the person.
    ProjectFiles(Dialogs& dialogs, std::function<void(const QString&)> notify, QObject* parent = nullptr);

    const QList<FileEntry>& files() const;
    const std::optional<FilePath>& browsingFolder() const;
    const std::optional<FilePath>& selectedFile() const;
    const QString& editorText() const;
    const QString& savedText() const;
    /// File filter of the Files page.
    const QString& search() const;
    void setEditorText(const QString& text);
    void setSearch(const QString& search);

    /// Another project: the editor is emptied and its folder browsed. The list is not read yet.
    void setProject(const std::optional<FilePath>& folder);
    /// Lists `folder`, else the folder browsed, else the project.
    void refreshFiles(const std::optional<FilePath>& folder = std::nullopt);
    bool fileIsDirty() const;
    /// Asks about unsaved changes; true when the caller may go on.
    bool confirmDiscard();
    /// Writes the buffer to its file with all guards; true when written.
    bool saveFile();

Q_SIGNALS:
    void filesChanged();
    void browsingFolderChanged();
    void selectedFileChanged();
    void editorTextChanged();
    void savedTextChanged();
    void searchChanged();
};

}  // namespace orvo
