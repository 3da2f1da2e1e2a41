#include "app/exampleProject.h"

#include "platform/AppFolders.h"
#include "platform/listFolder.h"
#include "platform/systemError.h"

#include <QUuid>

#include <filesystem>

namespace orvo::ExampleProject {
namespace {

namespace fs = std::filesystem;

fs::path nativePath(const FilePath& path) {
    return {path.bytes().constData()};
}

Result<void> copyEntry(const FilePath& source, const FilePath& destination) {
    std::error_code error;
    if (fs::exists(fs::symlink_status(nativePath(destination), error))) return {};
    // Copied aside and renamed, so that an interrupted copy is not taken for the person's own at the next
    // start.
    const FilePath aside =
        destination.parent().child(".orvo-" + QUuid::createUuid().toByteArray(QUuid::WithoutBraces));
    fs::copy(nativePath(source), nativePath(aside),
             fs::copy_options::recursive | fs::copy_options::copy_symlinks, error);
    if (!error) fs::rename(nativePath(aside), nativePath(destination), error);
    if (!error) return {};
    const int code = error.value();
    fs::remove_all(nativePath(aside), error);
    return systemFailure(code, destination);
}

}  // namespace

Result<FilePath> prepare(const FilePath& source, const FilePath& destination) {
    const Result<QList<QByteArray>> names = listFolder(source);
    if (!names) return tl::unexpected(names.error());
    if (const Result<void> created = createPrivateFolder(destination); !created) {
        return tl::unexpected(created.error());
    }
    for (const QByteArray& name : *names) {
        if (const Result<void> copied = copyEntry(source.child(name), destination.child(name)); !copied) {
            return tl::unexpected(copied.error());
        }
    }
    return destination;
}

FilePath installedSource(const FilePath& programFolder) {
    return programFolder.parent().child("share").child("orvo-ai").child("Example Project");
}

}  // namespace orvo::ExampleProject
