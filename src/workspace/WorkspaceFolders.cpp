// The project folder, the folders opened before, and what is written out of the workspace.

#include "workspace/Workspace.h"

#include "platform/Preferences.h"
#include "platform/observe.h"
#include "platform/saveAtomically.h"
#include "workspace/ReportingPreferences.h"

#include <sys/stat.h>

namespace orvo {
namespace {

constexpr qsizetype maximumRecentFolders = 8;
// Linux takes file names of at most this many bytes.
constexpr qsizetype maximumNameBytes = 255;

bool isFolder(const FilePath& path) {
    struct stat status{};
    return stat(path.bytes().constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// A session's title can hold line breaks and slashes, a file's name cannot.
QString exportName(const QString& title) {
    const QString suffix = QStringLiteral("-session.txt");
    QString name = QStringLiteral("Orvo-") + title;
    for (QChar& c : name) {
        if (c == u'/' || c.category() == QChar::Other_Control) c = u'-';
    }
    while ((name + suffix).toUtf8().size() > maximumNameBytes || name.back().isHighSurrogate())
        name.chop(1);
    return name + suffix;
}

}  // namespace

void Workspace::restore() {
    setKeepAwake(m_preferences->value(preference::keepAwake).value_or(false));
    for (const QString& path : m_preferences->value(preference::recentFolders).value_or(QStringList())) {
        if (path.startsWith(u'/') && m_recentFolders.size() < maximumRecentFolders) {
            m_recentFolders.append(FilePath::fromString(path));
        }
    }
    const auto path = m_preferences->value(preference::workspace);
    if (path && path->startsWith(u'/') && isFolder(FilePath::fromString(*path))) {
        m_folder = FilePath::fromString(*path);
        m_files.setProject(m_folder);
    }
}

QString Workspace::folderName() const {
    return m_folder ? m_folder->displayName() : tr("Choose a project");
}

void Workspace::setFolder(const FilePath& folder) {
    if (!isFolder(folder)) {
        notify(tr("This project folder is no longer available. Choose another folder."));
        return;
    }
    const bool folderIsNew = assign(m_folder, folder);
    QList<FilePath> recent = m_recentFolders;
    recent.removeAll(folder);
    recent.prepend(folder);
    recent.resize(std::min(recent.size(), maximumRecentFolders));
    const bool recentIsNew = assign(m_recentFolders, std::move(recent));
    rememberFolder(folder);
    m_files.setProject(folder);
    if (folderIsNew) Q_EMIT folderChanged();
    if (recentIsNew) Q_EMIT recentFoldersChanged();
    m_files.refreshFiles();
    notify(tr("Workspace opened: %1").arg(folder.displayName()));
}

void Workspace::rememberFolder(const FilePath& folder) {
    if (!m_preferences) return;
    QStringList recent;
    for (const FilePath& opened : std::as_const(m_recentFolders))
        recent.append(opened.display());
    (void)m_preferences->setValue(preference::workspace, folder.display());
    (void)m_preferences->setValue(preference::recentFolders, recent);
}

void Workspace::openFolderForThisRun(const FilePath& folder) {
    const bool folderIsNew = assign(m_folder, folder);
    m_files.setProject(folder);
    if (folderIsNew) Q_EMIT folderChanged();
    m_files.refreshFiles();
}

void Workspace::chooseFolder() {
    if (!m_files.confirmDiscard()) return;
    const auto folder = m_services.dialogs.openFolder(tr("Choose the folder your assistants will work in."));
    if (folder) setFolder(*folder);
}

void Workspace::revealFolder() {
    if (!m_folder) return;
    const Result<void> opened = m_services.launcher.openFolder(*m_folder);
    if (!opened) notify(opened.error().message);
}

void Workspace::exportSession(const TerminalSession& session) {
    exportText(QString::fromStdString(session.screen().plainText()), exportName(session.title()));
}

void Workspace::exportText(const QString& text, const QString& name) {
    const auto file = m_services.dialogs.saveFile(name, std::nullopt);
    if (!file) return;
    const Result<void> saved =
        saveAtomically(*file, text.toUtf8(), {.newFile = SaveOptions::NewFile::AsUserWants});
    notify(saved ? tr("Exported %1.").arg(file->displayName()) : saved.error().message);
}

}  // namespace orvo
