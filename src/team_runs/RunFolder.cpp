#include "team_runs/RunFolder.h"

#include "platform/AppFolders.h"
#include "platform/listFolder.h"
#include "platform/systemError.h"
#include "team_runs/Snapshot.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace orvo {

Result<RunFolder> RunFolder::create(const FilePath& storage) {
    if (const Result<void> made = createPrivateFolder(storage); !made)
        return tl::unexpected<Error>(made.error());
    const FilePath path = storage.child(RunFiles::freshFolderName());
    if (mkdir(path.bytes().constData(), 0700) != 0) return systemFailure(errno, storage);
    FileDescriptor lock(open(path.child(marker).bytes().constData(),
                             O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!lock.isOpen()) {
        const int code = errno;
        rmdir(path.bytes().constData());
        return systemFailure(code, storage);
    }
    // A file system without locks does without; then nobody takes the folder for abandoned either.
    [[maybe_unused]] const int locked = flock(lock.number(), LOCK_EX | LOCK_NB);
    return RunFolder(path, std::move(lock));
}

void RunFolder::keep() {
    unlink(m_path.child(marker).bytes().constData());
    m_lock = FileDescriptor();
}

QList<FilePath> RunFolder::abandonedIn(const FilePath& storage) {
    QList<FilePath> abandoned;
    const Result<QList<QByteArray>> names = listFolder(storage);
    if (!names) return abandoned;
    for (const QByteArray& name : *names) {
        const FilePath folder = storage.child(name);
        const FileDescriptor lock(
            open(folder.child(marker).bytes().constData(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        if (lock.isOpen() && flock(lock.number(), LOCK_EX | LOCK_NB) == 0) abandoned.append(folder);
    }
    return abandoned;
}

}  // namespace orvo
