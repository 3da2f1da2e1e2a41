#include "team_runs/ContentHash.h"
#include "team_runs/Snapshot.h"
#include "team_runs/Tree.h"

#include <gtest/gtest.h>

#include <QCryptographicHash>

#include <algorithm>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>

namespace orvo {
namespace {

using test::noise;
using test::Tree;

TEST(Snapshot, EveryDestinationHoldsTheFilesWithTheirPermissionsAndTimes) {
    const Tree tree;
    tree.write("project/main.txt", "main", 0640);
    tree.write("project/tools/run.sh", "#!/bin/sh\n", 0755);
    tree.write("project/secret", "s", 0400);
    tree.write("project/empty", {});
    tree.write("project/caf\xe9/line\nfeed", "x");
    tree.write("project/" + QByteArray(255, 'n'), "long");
    tree.write("project/middle", noise(300'000, 1));
    tree.write("project/large", noise(9'000'001, 2));
    tree.write("project/.env", "KEY=1");
    tree.write("project/.env.example", "KEY=");
    tree.write("project/node_modules/package.txt", "x");
    tree.makeFolder("project/empty folder");
    tree.link("project/link", "main.txt");
    const timespec times[] = {{1'000'000'000, 123}, {1'100'000'000, 456}};
    ASSERT_EQ(utimensat(AT_FDCWD, tree.path("project/main.txt").bytes().constData(), times, 0), 0);

    auto expected = tree.drawing("project");
    for (const char* name : {".env", "node_modules", "node_modules/package.txt", "empty folder", "link"}) {
        ASSERT_EQ(expected.remove(name), 1) << name;
    }
    const QList<FilePath> destinations = {tree.path("run/baseline"), tree.path("run/A"), tree.path("run/B")};
    for (const int count : {1, 3}) {
        const auto copied = RunFiles::snapshot(tree.path("project"), destinations.first(count));
        ASSERT_TRUE(copied) << qPrintable(copied.error().message);
        EXPECT_EQ(copied->files, 9);
        EXPECT_EQ(copied->bytes, 9'300'001 + 4 + 10 + 1 + 1 + 4 + 4);
        for (const FilePath& destination : destinations.first(count)) {
            const QByteArray name = "run/" + destination.nameBytes();
            EXPECT_EQ(tree.drawing(name), expected) << name.constData();
            EXPECT_EQ(tree.mode(name), 0700);
            struct stat status{};
            ASSERT_EQ(stat(tree.path(name + "/main.txt").bytes().constData(), &status), 0);
            EXPECT_EQ(status.st_mtim.tv_sec, 1'100'000'000);
            EXPECT_EQ(status.st_mtim.tv_nsec, 456);
        }
        tree.remove("run");
    }
}

TEST(Snapshot, CopiesOfABaselineEqualItInFreshFolders) {
    const Tree tree;
    tree.write("baseline/a", "1", 0755);
    tree.write("baseline/b/c", "2");
    const auto folders = RunFiles::copies(tree.path("baseline"), 3, tree.path("run"));
    ASSERT_TRUE(folders);
    ASSERT_EQ(folders->size(), 3);
    for (const FilePath& folder : *folders) {
        EXPECT_EQ(folder.nameBytes().size(), 36);
        EXPECT_EQ(folder.nameBytes(), folder.nameBytes().toUpper());
        EXPECT_EQ(tree.drawing("run/" + folder.nameBytes()), tree.drawing("baseline"));
    }
}

TEST(Snapshot, AMissingProjectCreatesNothing) {
    const Tree tree;
    const auto copied = RunFiles::snapshot(tree.path("gone"), {tree.path("run/baseline")});
    ASSERT_FALSE(copied);
    EXPECT_EQ(copied.error().message, QStringLiteral("This project folder no longer exists."));
    EXPECT_FALSE(tree.exists("run"));
}

TEST(Snapshot, NothingThatIsThereAlreadyIsOverwritten) {
    const Tree tree;
    tree.write("project/a", "new");
    tree.write("run/baseline/a", "old");
    EXPECT_FALSE(RunFiles::snapshot(tree.path("project"), {tree.path("run/baseline")}));
    EXPECT_EQ(tree.read("run/baseline/a"), "old");
}

TEST(Snapshot, AFileThatGrowsMeanwhileIsHeldToTheLimit) {
    const Tree tree;
    tree.sparse("project/big", 149'000'000);
    // Grows as soon as the copy has begun, long before it can have been read.
    std::atomic<bool> grown{false};
    const std::jthread grower([&](const std::stop_token& stop) {
        while (!tree.exists("run/baseline/big") && !stop.stop_requested())
            std::this_thread::yield();
        grown = truncate(tree.path("project/big").bytes().constData(), 400'000'000) == 0;
    });
    const auto copied =
        RunFiles::snapshot(tree.path("project"), {tree.path("run/baseline"), tree.path("run/A")});
    ASSERT_FALSE(copied);
    EXPECT_TRUE(
        copied.error().message.startsWith(QStringLiteral("Separate copies currently support up to 5,000")));
    EXPECT_TRUE(grown);
}

TEST(Snapshot, ReportsProgressThatOnlyGrowsAndEndsAtTheWhole) {
    const Tree tree;
    for (int i = 0; i < 400; ++i)
        tree.write("project/f" + QByteArray::number(i), noise(1'000, 7));
    QList<RunFiles::CopyProgress> reports;
    RunFiles::CopyOptions options;
    options.progress = [&reports](const RunFiles::CopyProgress& progress) {
        reports.append(progress);
    };
    ASSERT_TRUE(
        RunFiles::snapshot(tree.path("project"), {tree.path("run/baseline"), tree.path("run/A")}, options));
    ASSERT_FALSE(reports.isEmpty());
    EXPECT_TRUE(std::ranges::is_sorted(reports, {}, &RunFiles::CopyProgress::files));
    EXPECT_EQ(reports.back(), (RunFiles::CopyProgress{400, 400, 400'000, 400'000}));
}

TEST(Snapshot, StopsSoonWhenToldTo) {
    const Tree tree;
    for (int i = 0; i < 400; ++i)
        tree.write("project/f" + QByteArray::number(i), "x");
    std::stop_source source;
    RunFiles::CopyOptions options;
    options.stop = source.get_token();
    options.progress = [&source](const RunFiles::CopyProgress&) {
        source.request_stop();
    };
    const auto copied = RunFiles::snapshot(tree.path("project"), {tree.path("run/baseline")}, options);
    ASSERT_FALSE(copied);
    EXPECT_LT(tree.drawing("run/baseline").size(), 400);
}

TEST(Snapshot, AnUnreadableEntryFailsTheWholeSnapshot) {
    if (geteuid() == 0) GTEST_SKIP() << "root may read everything";
    const Tree tree;
    tree.write("project/a", "1");
    tree.write("project/locked", "2", 0000);
    const auto copied = RunFiles::snapshot(tree.path("project"), {tree.path("run/baseline")});
    ASSERT_FALSE(copied);
    EXPECT_TRUE(copied.error().message.startsWith(QStringLiteral("locked: ")));
}

TEST(ContentHash, IsSHA256OfTheContentAndModeTheFilesPermissions) {
    const Tree tree;
    for (const int size : {0, 1, 63, 64, 131'071, 131'072, 131'073, 1'000'000}) {
        const QByteArray content = noise(size, static_cast<quint32>(size));
        tree.write("f", content, 0755);
        const auto hash = RunFiles::hash(tree.path("f"));
        ASSERT_TRUE(hash);
        EXPECT_EQ(*hash, QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex()) << size;
    }
    EXPECT_EQ(RunFiles::mode(tree.path("f")), 0755);
    tree.link("link", "f");
    tree.pipe("pipe");
    for (const char* name : {"missing", "link", "pipe"})
        EXPECT_FALSE(RunFiles::hash(tree.path(name))) << name;
    EXPECT_FALSE(RunFiles::mode(tree.path("missing")));
}

}  // namespace
}  // namespace orvo
