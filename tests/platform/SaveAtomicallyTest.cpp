#include "platform/saveAtomically.h"

#include "platform/FileDescriptor.h"
#include "platform/TemporaryFolder.h"
#include "support/FileSizeLimit.h"
#include "support/WaitFor.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace orvo {
namespace {

using test::modeOf;
using test::readFile;
using test::TemporaryFolder;
using test::writeFile;
using Names = std::set<std::string>;

constexpr SaveOptions following{.link = SaveOptions::Link::Follow, .newFile = SaveOptions::NewFile::Private};

TEST(SaveAtomically, createsPrivateFilesAndLeavesNothingBeside) {
    const TemporaryFolder folder;
    const mode_t before = umask(022);
    EXPECT_TRUE(saveAtomically(folder.child("ours"), "a\0b"));
    EXPECT_TRUE(saveAtomically(folder.child("theirs"), "", {.newFile = SaveOptions::NewFile::AsUserWants}));
    umask(before);
    EXPECT_EQ(modeOf(folder.child("ours")), 0600U);
    EXPECT_EQ(modeOf(folder.child("theirs")), 0644U);
    EXPECT_EQ(folder.names(), (Names{"ours", "theirs"}));
}

TEST(SaveAtomically, keepsModeOwnerAndAttributesOfTheFileItReplaces) {
    const TemporaryFolder folder;
    const FilePath file = folder.child("script");
    writeFile(file, "old");
    ASSERT_EQ(chmod(file.bytes().constData(), 0751), 0);
    const bool chowned = geteuid() == 0 && chown(file.bytes().constData(), 65534, 65534) == 0;
    const bool marked = setxattr(file.bytes().constData(), "user.orvo", "kept", 4, 0) == 0;

    ASSERT_TRUE(saveAtomically(file, "new"));
    EXPECT_EQ(readFile(file), "new");
    EXPECT_EQ(modeOf(file), 0751U);
    struct stat status{};
    ASSERT_EQ(stat(file.bytes().constData(), &status), 0);
    EXPECT_EQ(status.st_uid, chowned ? 65534U : geteuid());
    if (marked) {
        char value[8] = {};
        EXPECT_EQ(getxattr(file.bytes().constData(), "user.orvo", value, sizeof value), 4);
        EXPECT_STREQ(value, "kept");
    }
}

TEST(SaveAtomically, takesAnyNameTheSystemTakes) {
    const TemporaryFolder folder;
    for (const QByteArray& name :
         {QByteArray(255, 'n'), QByteArray("not utf-8 \xFF\xFE"), QByteArray(" \n")}) {
        ASSERT_TRUE(saveAtomically(folder.child(name), "1"));
        ASSERT_TRUE(saveAtomically(folder.child(name), "2"));
        EXPECT_EQ(readFile(folder.child(name)), "2");
    }
    EXPECT_EQ(folder.names().size(), 3U);
    const Result<void> tooLong = saveAtomically(folder.child(QByteArray(256, 'n')), "");
    ASSERT_FALSE(tooLong);
    EXPECT_EQ(tooLong.error().code, ENAMETOOLONG);
}

TEST(SaveAtomically, followsALinkOnlyWhenTold) {
    const TemporaryFolder folder;
    const FilePath real = folder.child("real");
    const FilePath link = folder.child("link");
    const FilePath dangling = folder.child("dangling");
    writeFile(real, "old");
    ASSERT_EQ(symlink("real", link.bytes().constData()), 0);
    ASSERT_EQ(symlink("nowhere", dangling.bytes().constData()), 0);

    ASSERT_TRUE(saveAtomically(link, "through", following));
    EXPECT_EQ(readFile(real), "through");
    struct stat status{};
    ASSERT_EQ(lstat(link.bytes().constData(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
    const Result<void> nowhere = saveAtomically(dangling, "x", following);
    ASSERT_FALSE(nowhere);
    EXPECT_EQ(nowhere.error().code, ENOENT);

    ASSERT_TRUE(saveAtomically(link, "instead"));
    EXPECT_EQ(readFile(real), "through");
    ASSERT_EQ(lstat(link.bytes().constData(), &status), 0);
    EXPECT_TRUE(S_ISREG(status.st_mode));
}

TEST(SaveAtomically, refusesWhatIsNoFileAndSaysWhy) {
    const TemporaryFolder folder;
    ASSERT_EQ(mkdir(folder.child("folder").bytes().constData(), 0700), 0);
    ASSERT_EQ(mkfifo(folder.child("pipe").bytes().constData(), 0600), 0);
    writeFile(folder.child("file"), "");
    struct Case {
        FilePath file;
        int code;
    };
    const Case cases[] = {
        {folder.child("folder"), EISDIR},
        {folder.child("pipe"), EPERM},
        {FilePath("/dev/null"), EPERM},
        {folder.child("missing").child("x"), ENOENT},
        {folder.child("file").child("x"), ENOTDIR},
        {FilePath("/proc/orvo"), ENOENT},
    };
    for (const Case& each : cases) {
        const Result<void> saved = saveAtomically(each.file, "x");
        ASSERT_FALSE(saved) << each.file.bytes().constData();
        EXPECT_EQ(saved.error().code, each.code) << each.file.bytes().constData();
        EXPECT_TRUE(saved.error().message.startsWith(each.file.displayName() + QStringLiteral(": ")));
    }
    EXPECT_EQ(folder.names(), (Names{"folder", "pipe", "file"}));
}

TEST(SaveAtomically, aFileThatMayNotBeWrittenIsNotReplaced) {
    if (geteuid() == 0) GTEST_SKIP() << "root may write everything";
    const TemporaryFolder folder;
    writeFile(folder.child("f"), "old");
    ASSERT_EQ(chmod(folder.child("f").bytes().constData(), 0400), 0);
    EXPECT_EQ(saveAtomically(folder.child("f"), "new").error().code, EACCES);
    EXPECT_EQ(readFile(folder.child("f")), "old");
}

TEST(SaveAtomically, aFileThatCannotGrowLeavesTheOldOneAndNoTemporary) {
    const TemporaryFolder folder;
    writeFile(folder.child("f"), "old");
    const auto saved = [&] {
        const test::FileSizeLimit limit(1000);
        return saveAtomically(folder.child("f"), QByteArray(100'000, 'x'));
    }();
    ASSERT_FALSE(saved);
    EXPECT_EQ(saved.error().code, EFBIG);
    EXPECT_EQ(readFile(folder.child("f")), "old");
    EXPECT_EQ(folder.names(), (Names{"f"}));
}

/// One letter throughout and of the full size: a state that was saved, not a mixture.
bool isWhole(const QByteArray& content, qsizetype size) {
    return content.size() == size && content.count(content.at(0)) == size;
}

QString helper() {
    return QCoreApplication::applicationDirPath() + QStringLiteral("/save_repeatedly");
}

TEST(SaveAtomically, survivesAKillAtAnyMoment) {
    const TemporaryFolder folder;
    const FilePath file = folder.child("f");
    constexpr qsizetype size = 200'000;
    ASSERT_TRUE(saveAtomically(file, QByteArray(size, 'z')));
    for (int round = 0; round < 120; ++round) {
        QProcess child;
        child.start(helper(),
                    {QString::fromUtf8(file.bytes()), QString::number(size), QStringLiteral("1000000")});
        ASSERT_TRUE(child.waitForReadyRead());
        // Up to several saves long, in steps finer than one.
        usleep(QRandomGenerator::global()->bounded(8000U));
        child.kill();
        ASSERT_TRUE(child.waitForFinished());
        ASSERT_EQ(child.exitStatus(), QProcess::CrashExit) << "killed too late to tell anything";
        ASSERT_TRUE(isWhole(readFile(file), size)) << "round " << round;
    }
}

/// Runs one save with the `call`-th system call of its kind answered by `action`; false when strace cannot
/// work.
bool saveWith(const QString& call, int number, const QString& action, const FilePath& file, QProcess& child) {
    child.start(QStringLiteral("strace"),
                {QStringLiteral("-o"), QStringLiteral("/dev/null"), QStringLiteral("-e"),
                 QStringLiteral("inject=%1:%2:when=%3").arg(call, action).arg(number), helper(),
                 QString::fromUtf8(file.bytes()), QStringLiteral("5000"), QStringLiteral("1")});
    return child.waitForFinished();
}

TEST(SaveAtomically, eachSystemCallMayFailOrBeTheLast) {
    const TemporaryFolder probe;
    QProcess plain;
    if (!saveWith(QStringLiteral("fsync"), 9, QStringLiteral("error=EIO"), probe.child("p"), plain) ||
        plain.exitCode() != 0) {
        GTEST_SKIP() << "strace is not there or not allowed";
    }
    struct Case {
        const char* call;
        int times;
    };
    // The numbers cover start-up and the save itself; a number beyond the last call is a plain save.
    const Case cases[] = {{"fsync", 2},      {"write", 3},  {"renameat", 1}, {"rename", 1},    {"fchmod", 1},
                          {"flistxattr", 1}, {"fchown", 1}, {"openat", 16},  {"faccessat2", 1}};
    for (const Case& each : cases) {
        for (int number = 1; number <= each.times; ++number) {
            for (const char* action : {"error=ENOSPC", "error=EIO", "signal=KILL"}) {
                const TemporaryFolder folder;
                const FilePath file = folder.child("f");
                writeFile(file, "old");
                QProcess child;
                ASSERT_TRUE(saveWith(QLatin1String(each.call), number, QLatin1String(action), file, child));
                const std::string what = std::string(each.call) + " " + std::to_string(number) + " " + action;
                const QByteArray content = readFile(file);
                ASSERT_TRUE(content == "old" || isWhole(content, 5000)) << what;
                if (std::string_view(action) == "signal=KILL") continue;
                EXPECT_EQ(folder.names(), (Names{"f"})) << what;
                const bool saved = child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0;
                // Only the folder's own synchronisation fails with the new file in place.
                const bool folderSync = std::string_view(each.call) == "fsync" && number == 2;
                EXPECT_EQ(content == "old", !saved && !folderSync) << what;
                if (std::string_view(each.call) == "fsync") {
                    EXPECT_FALSE(saved) << what;
                }
            }
        }
    }
}

TEST(SaveAtomically, onlyOldTemporariesAreCleanedUp) {
    const TemporaryFolder folder;
    for (const char* name : {".orvo-1.tmp", ".orvo-2.tmp", ".orvo-3.tmp", ".orvo-4.tmp", ".orvo-notes", "f"})
        writeFile(folder.child(name), "");
    const timespec longAgo[2] = {{1'000'000, 0}, {1'000'000, 0}};
    for (const char* name : {".orvo-1.tmp", ".orvo-3.tmp", ".orvo-notes", "f"}) {
        ASSERT_EQ(utimensat(AT_FDCWD, folder.child(name).bytes().constData(), longAgo, 0), 0);
    }
    const timespec fromTheFuture[2] = {{4'000'000'000, 0}, {4'000'000'000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, folder.child(".orvo-4.tmp").bytes().constData(), fromTheFuture, 0), 0);
    // Somebody writes it still, and the clock has jumped.
    const FileDescriptor writer(open(folder.child(".orvo-3.tmp").bytes().constData(), O_WRONLY | O_CLOEXEC));
    ASSERT_EQ(flock(writer.number(), LOCK_EX), 0);
    removeStaleTemporaries(folder.path());
    EXPECT_EQ(folder.names(), (Names{".orvo-2.tmp", ".orvo-3.tmp", ".orvo-notes", "f"}));
}

}  // namespace
}  // namespace orvo
