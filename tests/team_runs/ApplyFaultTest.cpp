#include "support/longer.h"
#include "team_runs/Apply.h"
#include "team_runs/ApplyJournal.h"
#include "team_runs/Changes.h"
#include "team_runs/Tree.h"
#include "team_runs/faults.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <mutex>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orvo {
namespace {

using test::lengthOf;
using test::Tree;
namespace faults = test::faults;
using Drawing = QMap<QByteArray, QByteArray>;

constexpr int refusedStatus = 1;
constexpr int unreachedStatus = 2;

enum class RenameFlags { Supported, Missing };

/// An edit, a mode, a removal, an addition in a new folder, and a folder that takes a file's place.
class Scene {
public:
    Scene() {
        for (const char* root : {"Runs/R/baseline/", "project/"}) {
            tree.write(root + QByteArray("edit"), "old");
            tree.write(root + QByteArray("sub/mode"), "same", 0644);
            tree.write(root + QByteArray("sub/drop"), "gone", 0600);
            tree.write(root + QByteArray("thing"), "file");
        }
        tree.write("Runs/R/copy/edit", "new");
        tree.write("Runs/R/copy/sub/mode", "same", 0755);
        tree.write("Runs/R/copy/thing/inner", "inner");
        tree.write("Runs/R/copy/fresh/file", "added", 0600);
        const auto found = RunFiles::changes(tree.path("Runs/R/baseline"), tree.path("Runs/R/copy"));
        if (found) changes = *found;
    }

    Result<void> apply() const {
        return RunFiles::apply(changes, tree.path("project"), tree.path("Runs/R/copy"),
                               tree.path("Runs/R/backup-B"));
    }

    /// The exit status of a child that applies with one call made to fail.
    int applyInChild(int call, faults::Effect effect, int code, RenameFlags flags) const {
        const pid_t child = fork();
        if (child == 0) {
            if (flags == RenameFlags::Missing) faults::withoutRenameFlags();
            faults::arm(call, effect, code);
            const bool applied = apply().has_value();
            const bool fired = faults::fired();
            faults::disarm();
            _exit(fired ? (applied ? 0 : refusedStatus) : unreachedStatus);
        }
        int status = 0;
        while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
        return status;
    }

    /// For comparing in a way whose failures can be read.
    static QByteArray text(const Drawing& drawing) {
        QByteArray lines;
        for (auto entry = drawing.begin(); entry != drawing.end(); ++entry)
            lines += entry.key() + ": " + entry.value() + '\n';
        return lines;
    }

    Drawing files(const QByteArray& root) const {
        Drawing drawing = tree.drawing(root);
        drawing.removeIf([](const auto& entry) { return entry.value() == "folder"; });
        return drawing;
    }

    const Drawing oldFiles = {
        {"edit", "644 old"}, {"sub/mode", "644 same"}, {"sub/drop", "600 gone"}, {"thing", "644 file"}};
    const Drawing newFiles = {{"edit", "644 new"},
                              {"sub/mode", "755 same"},
                              {"thing/inner", "644 inner"},
                              {"fresh/file", "600 added"}};
    Tree tree{Tree::Place::Memory};
    QList<FileChange> changes;
};

/// Every file of the scene is the old or the new one, whole, and the originals of those that are not the old
/// one any more are backed up.
void expectOldOrNew(const Scene& scene, const Drawing& found) {
    for (auto entry = found.begin(); entry != found.end(); ++entry) {
        EXPECT_TRUE(scene.oldFiles.value(entry.key()) == entry.value() ||
                    scene.newFiles.value(entry.key()) == entry.value())
            << entry.key().constData() << ": " << entry.value().constData();
    }
    const Drawing backups = scene.tree.exists("Runs/R/backup-B") ? scene.files("Runs/R/backup-B") : Drawing();
    for (auto entry = scene.oldFiles.begin(); entry != scene.oldFiles.end(); ++entry) {
        if (found.value(entry.key()) != entry.value()) {
            EXPECT_EQ(backups.value(entry.key()), entry.value()) << entry.key().constData();
        }
    }
}

void sweepErrors(int code, RenameFlags flags) {
    int refusals = 0;
    for (int call = 1;; ++call) {
        SCOPED_TRACE(testing::Message() << "error " << code << " at call " << call);
        ASSERT_LT(call, 2'000);
        const Scene scene;
        ASSERT_EQ(scene.changes.size(), 6);
        const int status = scene.applyInChild(call, faults::Effect::Fail, code, flags);
        ASSERT_TRUE(WIFEXITED(status));
        const bool refused = WEXITSTATUS(status) == refusedStatus;
        refusals += refused ? 1 : 0;
        EXPECT_STREQ(Scene::text(scene.files("project")),
                     Scene::text(refused ? scene.oldFiles : scene.newFiles));
        if (refused) {
            EXPECT_FALSE(scene.tree.exists("project/fresh"));
        } else {
            expectOldOrNew(scene, scene.files("project"));
        }
        if (testing::Test::HasFailure()) return;
        if (WEXITSTATUS(status) == unreachedStatus) break;
    }
    EXPECT_GT(refusals, 100);
}

TEST(ApplyFault, AnErrorAtAnyCallLeavesEveryFileOldAndNoTemporary) {
    for (const int code : {ENOSPC, EIO, EACCES})
        sweepErrors(code, RenameFlags::Supported);
}

TEST(ApplyFault, TheSameWhereTheFileSystemCannotExchangeFiles) {
    sweepErrors(EIO, RenameFlags::Missing);
}

void sweepKills(RenameFlags flags) {
    int told = 0;
    for (int call = 1;; ++call) {
        SCOPED_TRACE(testing::Message() << "killed at call " << call);
        ASSERT_LT(call, 2'000);
        const Scene scene;
        const int status = scene.applyInChild(call, faults::Effect::Kill, 0, flags);
        if (WIFEXITED(status)) {
            EXPECT_STREQ(Scene::text(scene.files("project")), Scene::text(scene.newFiles));
            break;
        }
        Drawing found = scene.files("project");
        found.removeIf([](const auto& entry) { return entry.key().contains(".orvo-"); });
        expectOldOrNew(scene, found);

        const auto unfinished = RunFiles::takeUnfinishedApplies(scene.tree.path("Runs"));
        EXPECT_STREQ(Scene::text(scene.files("project")), Scene::text(found)) << "only temporaries go";
        EXPECT_TRUE(RunFiles::takeUnfinishedApplies(scene.tree.path("Runs")).isEmpty()) << "told once";
        // Whoever changed something is told about; whoever finished needs not be.
        if (found != scene.oldFiles && found != scene.newFiles) {
            ASSERT_EQ(unfinished.size(), 1);
        }
        if (!unfinished.isEmpty()) {
            ++told;
            EXPECT_EQ(
                unfinished[0].message(),
                QStringLiteral("Applying files to %1 was interrupted. The originals are saved in %2.")
                    .arg(scene.tree.path("project").display(), scene.tree.path("Runs/R/backup-B").display()));
        }
        if (testing::Test::HasFailure()) return;
    }
    EXPECT_GT(told, 20);
}

TEST(ApplyFault, KilledAtAnyCallEveryFileIsOldOrNewAndTheNextStartTidies) {
    sweepKills(RenameFlags::Supported);
}

TEST(ApplyFault, KilledWhereTheFileSystemCannotExchangeFiles) {
    sweepKills(RenameFlags::Missing);
}

TEST(ApplyFault, AnApplyUnderWayElsewhereIsNoUnfinishedOne) {
    const Scene scene;
    const RunFiles::ApplyPlan plan{scene.tree.path("project"),
                                   scene.tree.path("Runs/R/copy"),
                                   scene.tree.path("Runs/R/backup-B"),
                                   {{scene.changes[0], ".orvo-x.tmp"}}};
    scene.tree.write("project/.orvo-x.tmp", "half");
    {
        const auto journal = RunFiles::ApplyJournal::create(plan);
        ASSERT_TRUE(journal);
        EXPECT_TRUE(RunFiles::takeUnfinishedApplies(scene.tree.path("Runs")).isEmpty());
        EXPECT_TRUE(scene.tree.exists("project/.orvo-x.tmp"));
    }
    EXPECT_EQ(RunFiles::takeUnfinishedApplies(scene.tree.path("Runs")).size(), 1);
    EXPECT_FALSE(scene.tree.exists("project/.orvo-x.tmp"));
}

TEST(ApplyFault, SomebodysWorkUnderATemporaryNameIsNotTidiedAway) {
    const Scene scene;
    const auto edit = std::ranges::find(scene.changes, QByteArray("edit"), &FileChange::path);
    ASSERT_NE(edit, scene.changes.end());
    const RunFiles::ApplyPlan plan{scene.tree.path("project"),
                                   scene.tree.path("Runs/R/copy"),
                                   scene.tree.path("Runs/R/backup-B"),
                                   {{*edit, ".orvo-x.tmp"}}};
    ASSERT_TRUE(RunFiles::ApplyJournal::create(plan));
    // Killed between the exchange and the look at what was there.
    scene.tree.write("project/edit", "new");
    scene.tree.write("project/.orvo-x.tmp", "written a moment before");
    RunFiles::takeUnfinishedApplies(scene.tree.path("Runs"));
    EXPECT_EQ(scene.tree.read("project/.orvo-x.tmp"), "written a moment before");
}

TEST(ApplyFault, LinksSwappedAtRandomLeadNowhere) {
    const Tree tree(Tree::Place::Memory);
    tree.write("outside/f", "old");
    tree.write("outside/keep", "keep");
    tree.link("project-link", "outside");
    const auto outside = tree.drawing("outside");
    const auto draw = [&tree] {
        for (const char* root : {"project/sub", "Runs/R/baseline/sub"}) {
            tree.write(root + QByteArray("/f"), "old");
            tree.write(root + QByteArray("/gone"), "old");
            tree.remove(root + QByteArray("/fresh"));
        }
        tree.remove("Runs/R/backup-B");
    };
    draw();
    tree.write("Runs/R/copy/sub/f", "new");
    tree.write("Runs/R/copy/sub/fresh/x", "new");
    const auto changes = RunFiles::changes(tree.path("Runs/R/baseline"), tree.path("Runs/R/copy"));
    ASSERT_TRUE(changes);
    ASSERT_EQ(changes->size(), 3);
    tree.link("project/sub.other", "../outside");

    const QByteArray sub = tree.path("project/sub").bytes();
    const QByteArray other = tree.path("project/sub.other").bytes();
    std::atomic<bool> swapping{false};
    std::mutex call;
    std::jthread swapper([&](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            const std::scoped_lock lock(call);
            if (swapping) renameat2(AT_FDCWD, sub.constData(), AT_FDCWD, other.constData(), RENAME_EXCHANGE);
        }
    });
    int applied = 0;
    int refused = 0;
    QElapsedTimer clock;
    clock.start();
    const int seconds = lengthOf(20, 600);
    while (clock.elapsed() < qint64{1'000} * seconds) {
        swapping = true;
        const auto done = RunFiles::apply(*changes, tree.path("project"), tree.path("Runs/R/copy"),
                                          tree.path("Runs/R/backup-B"));
        swapping = false;
        const std::scoped_lock lock(call);
        (done ? applied : refused) += 1;
        ASSERT_EQ(tree.drawing("outside"), outside);
        struct stat status{};
        ASSERT_EQ(lstat(sub.constData(), &status), 0);
        if (S_ISLNK(status.st_mode)) {
            ASSERT_EQ(renameat2(AT_FDCWD, sub.constData(), AT_FDCWD, other.constData(), RENAME_EXCHANGE), 0);
        }
        const auto project = tree.drawing("project");
        for (auto entry = project.begin(); entry != project.end(); ++entry) {
            ASSERT_FALSE(entry.key().contains(".orvo-")) << entry.key().constData();
        }
        if (!done) {
            ASSERT_EQ(tree.read("project/sub/f"), "old");
        }
        draw();
    }
    swapper.request_stop();
    EXPECT_GT(refused, 0);
    RecordProperty("applied", applied);
    RecordProperty("refused", refused);
}

}  // namespace
}  // namespace orvo
