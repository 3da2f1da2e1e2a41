#include "team_runs/SmallDisk.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace orvo::test {
namespace {

bool writeText(const char* path, const std::string& text) {
    const int file = open(path, O_WRONLY | O_CLOEXEC);
    if (file < 0) return false;
    const bool written = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    close(file);
    return written;
}

/// As root of a user namespace of its own, anybody may mount.
bool becomeRootOfANamespace() {
    const std::string user = std::to_string(geteuid());
    const std::string group = std::to_string(getegid());
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    // The leak checker looks into the process as into another one.
    prctl(PR_SET_DUMPABLE, 1);
    return writeText("/proc/self/setgroups", "deny") && writeText("/proc/self/uid_map", "0 " + user + " 1") &&
           writeText("/proc/self/gid_map", "0 " + group + " 1");
}

}  // namespace

QString SmallDisk::prepare() {
    const bool separate = unshare(CLONE_NEWNS) == 0 || becomeRootOfANamespace();
    // Nothing mounted here may show elsewhere.
    if (separate && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0) return {};
    return QStringLiteral("This system lets no process mount a small file system of its own (%1).")
        .arg(QString::fromLocal8Bit(std::strerror(errno)));
}

SmallDisk::SmallDisk(const FilePath& at, int inodes) : m_root(at) {
    const std::string options =
        "mode=0700,size=" + std::to_string(size) + ",nr_inodes=" + std::to_string(inodes);
    EXPECT_EQ(mount("orvo-test", at.bytes().constData(), "tmpfs", MS_NOSUID | MS_NODEV, options.c_str()), 0)
        << std::strerror(errno);
}

SmallDisk::~SmallDisk() {
    EXPECT_EQ(umount2(m_root.bytes().constData(), MNT_DETACH), 0) << std::strerror(errno);
}

void SmallDisk::fill(int pagesLeft) const {
    const QByteArray path = m_root.child("ballast").bytes();
    const int file = open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    ASSERT_GE(file, 0) << std::strerror(errno);
    constexpr std::array<char, pageSize> page{};
    qint64 pages = 0;
    while (write(file, page.data(), page.size()) == static_cast<ssize_t>(page.size()))
        ++pages;
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_EQ(ftruncate(file, (pages - pagesLeft) * pageSize), 0) << std::strerror(errno);
    close(file);
}

void SmallDisk::clear() const {
    EXPECT_EQ(unlink(m_root.child("ballast").bytes().constData()), 0) << std::strerror(errno);
}

}  // namespace orvo::test
