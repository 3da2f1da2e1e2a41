#include "platform/AppFolders.h"

#include "platform/systemError.h"

#include <cerrno>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvo {
namespace {

FilePath homeFolder() {
    const QByteArray home = qgetenv("HOME");
    if (home.startsWith('/')) return FilePath(home);
    // Started by a service manager without HOME: the account's own entry.
    const passwd* const account = getpwuid(getuid());
    return FilePath(account != nullptr ? QByteArray(account->pw_dir) : QByteArray("/"));
}

FilePath baseFolder(const char* variable, const char* belowHome) {
    const QByteArray value = qgetenv(variable);
    return value.startsWith('/') ? FilePath(value) : homeFolder().child(belowHome);
}

bool isFolder(const FilePath& path) {
    struct stat status{};
    return stat(path.bytes().constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

}  // namespace

AppFolders AppFolders::fromProcess() {
    return {baseFolder("XDG_CONFIG_HOME", ".config").child("orvo-ai"),
            baseFolder("XDG_DATA_HOME", ".local/share").child("Orvo AI")};
}

Result<void> createPrivateFolder(const FilePath& folder) {
    if (isFolder(folder)) return {};
    if (folder.bytes() != "/") {
        if (Result<void> above = createPrivateFolder(folder.parent()); !above) return above;
    }
    if (mkdir(folder.bytes().constData(), 0700) == 0) return {};
    const int code = errno;
    // Another process may have been faster.
    if (code == EEXIST && isFolder(folder)) return {};
    return systemFailure(code, folder);
}

}  // namespace orvo
