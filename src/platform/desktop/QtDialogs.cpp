#include "platform/desktop/QtDialogs.h"

#include <QApplication>
#include <QFileDialog>

#include <sys/stat.h>

namespace orvo {
namespace {

std::optional<FilePath> chosen(QFileDialog& panel) {
    if (panel.exec() != QDialog::Accepted || panel.selectedFiles().isEmpty()) return std::nullopt;
    return FilePath::fromString(panel.selectedFiles().constFirst());
}

}  // namespace

std::optional<FilePath> QtDialogs::openFolder(const QString& message) {
    QFileDialog panel(QApplication::activeWindow(), message);
    panel.setFileMode(QFileDialog::Directory);
    panel.setOption(QFileDialog::ShowDirsOnly);
    return chosen(panel);
}

std::optional<FilePath> QtDialogs::openFile(const OpenPanel& wanted) {
    QFileDialog panel(QApplication::activeWindow(), wanted.message);
    panel.setFileMode(QFileDialog::ExistingFile);
    if (wanted.folder) panel.setDirectory(wanted.folder->display());
    if (!wanted.patterns.isEmpty()) panel.setNameFilter(wanted.patterns.join(u' '));
    return chosen(panel);
}

std::optional<FilePath> QtDialogs::saveFile(const QString& proposedName,
                                            const std::optional<FilePath>& folder) {
    QFileDialog panel(QApplication::activeWindow(), tr("Save"));
    panel.setFileMode(QFileDialog::AnyFile);
    panel.setAcceptMode(QFileDialog::AcceptSave);
    // Qt's own question would show markup in a file name as markup.
    panel.setOption(QFileDialog::DontConfirmOverwrite);
    if (folder) panel.setDirectory(folder->display());
    // A slash in the name, as a session's title may have, would name a folder.
    panel.selectFile(QString(proposedName).replace(u'/', u'-'));
    while (true) {
        std::optional<FilePath> file = chosen(panel);
        if (!file || mayReplace(*file)) return file;
    }
}

bool QtDialogs::mayReplace(const FilePath& file) {
    struct stat status{};
    if (lstat(file.bytes().constData(), &status) != 0) return true;
    return alert({.message = tr("“%1” already exists. Do you want to replace it?").arg(file.displayName()),
                  .informativeText = tr("Replacing it overwrites its current contents."),
                  .buttons = {tr("Replace"), tr("Cancel")}}) == 0;
}

}  // namespace orvo
