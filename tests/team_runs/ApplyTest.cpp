#include "team_runs/Apply.h"
#include "team_runs/Changes.h"
#include "team_runs/Tree.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <sys/file.h>
#include <sys/xattr.h>

#include <fcntl.h>
#include <unistd.h>

namespace orvo {
namespace {

using test::Tree;

const QString linkSentence =
    QStringLiteral("A file or parent folder is a symbolic link. Review it outside Orvo.");

QString projectSentence(const char* path) {
    return QString::fromUtf8(path) + QStringLiteral(
                                         " changed in your project since this run began. Nothing was "
                                         "applied; review the conflict first.");
}

QString resultSentence(const char* path) {
    return QStringLiteral(
               "The assistant changed %1 after this review opened. Refresh changes before applying.")
        .arg(QString::fromUtf8(path));
}

/// A project with its baseline and one assistant's copy, as a run has them.
class ApplyTest : public testing::Test {
protected:
    /// The same file in the project and in the baseline.
    void original(const QByteArray& path, const QByteArray& content, int mode = 0644) const {
        tree.write("project/" + path, content, mode);
        tree.write("run/baseline/" + path, content, mode);
        tree.write("run/copy/" + path, content, mode);
    }
    void result(const QByteArray& path, const QByteArray& content, int mode = 0644) const {
        tree.write("run/copy/" + path, content, mode);
    }
    QList<FileChange> review() const {
        tree.makeFolder("run/baseline");
        tree.makeFolder("run/copy");
        tree.makeFolder("project");
        const auto changes = RunFiles::changes(tree.path("run/baseline"), tree.path("run/copy"));
        EXPECT_TRUE(changes) << qPrintable(changes.error().message);
        return changes ? *changes : QList<FileChange>{};
    }
    /// The sentence of the refusal, or nothing.
    QString apply(const QList<FileChange>& changes) const {
        const auto applied =
            RunFiles::apply(changes, tree.path("project"), tree.path("run/copy"), tree.path("run/backup-1"));
        return applied ? QString() : applied.error().message;
    }
    void expectRefusal(const QList<FileChange>& changes, const QString& sentence) const {
        const auto before = tree.drawing("project");
        EXPECT_EQ(apply(changes), sentence);
        EXPECT_EQ(tree.drawing("project"), before);
        EXPECT_FALSE(tree.exists("run/backup-1.journal"));
    }

    Tree tree{Tree::Place::Memory};
};

TEST_F(ApplyTest, ReviewedFilesApplyAndOriginalsAreBackedUp) {
    original("edit", "old", 0640);
    original("drop/me", "gone", 0600);
    original("keep", "kept");
    original("caf\xe9/" + QByteArray(255, 'n'), "old bytes");
    original("run.sh", "#!", 0644);
    result("edit", "new");
    tree.remove("run/copy/drop/me");
    result("caf\xe9/" + QByteArray(255, 'n'), "new bytes");
    result("run.sh", "#!", 0755);
    result("fresh/deep/file", "added", 0600);
    auto changes = review();
    ASSERT_EQ(changes.size(), 5);
    ASSERT_EQ(apply(changes), QString());

    const QByteArray longPath = "caf\xe9/" + QByteArray(255, 'n');
    EXPECT_EQ(tree.drawing("project"), (QMap<QByteArray, QByteArray>{
                                           {"edit", "644 new"},
                                           {"drop", "folder"},
                                           {"keep", "644 kept"},
                                           {"caf\xe9", "folder"},
                                           {longPath, "644 new bytes"},
                                           {"run.sh", "755 #!"},
                                           {"fresh", "folder"},
                                           {"fresh/deep", "folder"},
                                           {"fresh/deep/file", "600 added"},
                                       }));
    EXPECT_EQ(tree.drawing("run/backup-1"), (QMap<QByteArray, QByteArray>{
                                                {"edit", "640 old"},
                                                {"drop", "folder"},
                                                {"drop/me", "600 gone"},
                                                {"caf\xe9", "folder"},
                                                {longPath, "644 old bytes"},
                                                {"run.sh", "644 #!"},
                                            }));
    EXPECT_EQ(tree.mode("run/backup-1"), 0700);
    EXPECT_FALSE(tree.exists("run/backup-1.journal"));
}

TEST_F(ApplyTest, OnlyTheChosenFilesChange) {
    original("a", "1");
    original(".env.example", "KEY=");
    result("a", "2");
    result(".env.example", "KEY=secret");
    auto changes = review();
    changes.removeIf([](const FileChange& change) { return change.path != "a"; });
    ASSERT_EQ(apply(changes), QString());
    EXPECT_EQ(tree.read("project/a"), "2");
    EXPECT_EQ(tree.read("project/.env.example"), "KEY=");
}

TEST_F(ApplyTest, AttributesOfAReplacedFileStay) {
    original("f", "old");
    const QByteArray file = tree.path("project/f").bytes();
    if (setxattr(file.constData(), "trusted.orvo", "kept", 4, 0) != 0 &&
        setxattr(file.constData(), "user.orvo", "kept", 4, 0) != 0) {
        GTEST_SKIP() << "this file system keeps no extended attributes";
    }
    if (geteuid() == 0) {
        ASSERT_EQ(chown(file.constData(), 1234, 2345), 0);
    }
    result("f", "new");
    ASSERT_EQ(apply(review()), QString());
    char value[4] = {};
    EXPECT_TRUE(getxattr(file.constData(), "trusted.orvo", value, 4) == 4 ||
                getxattr(file.constData(), "user.orvo", value, 4) == 4);
    struct stat status{};
    ASSERT_EQ(stat(file.constData(), &status), 0);
    EXPECT_EQ(status.st_uid, geteuid() == 0 ? 1234 : geteuid());
    EXPECT_EQ(tree.read("project/f"), "new");
}

TEST_F(ApplyTest, AFolderCanTakeAFilesPlace) {
    original("thing", "file");
    tree.remove("run/copy/thing");
    result("thing/inner", "1");
    const auto changes = review();
    ASSERT_EQ(changes.size(), 2);
    // Alone, the addition has no place to go to.
    expectRefusal({changes[1]}, projectSentence("thing/inner"));
    ASSERT_EQ(apply(changes), QString());
    EXPECT_EQ(tree.read("project/thing/inner"), "1");
    EXPECT_EQ(tree.read("run/backup-1/thing"), "file");
}

TEST_F(ApplyTest, AConflictInOneFileBlocksTheWholeSelection) {
    original("a", "1");
    original("b", "1");
    result("a", "2");
    result("b", "2");
    const auto changes = review();
    tree.write("project/b", "mine");
    expectRefusal(changes, projectSentence("b"));
    tree.write("project/b", "1", 0600);
    expectRefusal(changes, projectSentence("b"));
    tree.remove("project/b");
    expectRefusal(changes, projectSentence("b"));
    tree.makeFolder("project/b");
    expectRefusal(changes, projectSentence("b"));
    tree.remove("project/b");
    tree.pipe("project/b");
    expectRefusal(changes, projectSentence("b"));
}

TEST_F(ApplyTest, SomethingAtThePlaceOfAnAdditionIsAConflict) {
    result("new", "1");
    result("folder/new", "1");
    const auto changes = review();
    tree.write("project/new", "1");
    expectRefusal(changes, projectSentence("new"));
    tree.remove("project/new");
    tree.makeFolder("project/new");
    expectRefusal(changes, projectSentence("new"));
    tree.remove("project/new");
    tree.write("project/folder", "a file where a folder should be");
    expectRefusal(changes, projectSentence("folder/new"));
}

TEST_F(ApplyTest, ACopyThatChangedAfterTheReviewIsRefused) {
    original("a", "1");
    original("dropped", "1");
    result("a", "2");
    tree.remove("run/copy/dropped");
    const auto changes = review();
    result("a", "3");
    expectRefusal(changes, resultSentence("a"));
    result("a", "2", 0755);
    expectRefusal(changes, resultSentence("a"));
    tree.remove("run/copy/a");
    expectRefusal(changes, resultSentence("a"));
    result("a", "2");
    result("dropped", "1");
    expectRefusal(changes, resultSentence("dropped"));
    tree.remove("run/copy");
    expectRefusal(changes, resultSentence("a"));
}

TEST_F(ApplyTest, PathsAndLinksThatLeadElsewhereAreRefused) {
    original("sub/a", "1");
    result("sub/a", "2");
    tree.write("outside/a", "1");
    auto changes = review();
    for (const char* path : {"../outside/a", "/etc/hostname", "", "sub/../../outside/a"}) {
        auto odd = changes;
        odd[0].path = path;
        expectRefusal(odd, QStringLiteral("Invalid change path."));
    }
    tree.remove("project/sub");
    tree.link("project/sub", "../outside");
    expectRefusal(changes, linkSentence);
    tree.remove("project/sub");
    tree.link("project/real", "x");
    tree.makeFolder("project/sub");
    tree.link("project/sub/a", "../../outside/a");
    expectRefusal(changes, linkSentence);
    tree.remove("project/sub/a");
    tree.write("project/sub/a", "1");
    tree.remove("run/copy/sub/a");
    tree.link("run/copy/sub/a", "../../../outside/a");
    expectRefusal(changes, linkSentence);
    EXPECT_EQ(tree.drawing("outside"), (QMap<QByteArray, QByteArray>{{"a", "644 1"}}));
}

TEST_F(ApplyTest, TheSamePathTwiceIsRefused) {
    original("a", "1");
    result("a", "2");
    auto changes = review();
    changes.append(changes[0]);
    changes[1].path = "./a";
    expectRefusal(changes, projectSentence("a"));
}

TEST_F(ApplyTest, OnlyOneApplyAtATimeWorksOnAProject) {
    original("a", "1");
    result("a", "2");
    const auto changes = review();
    const int lock = open(tree.path("project").bytes().constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(flock(lock, LOCK_EX), 0);
    expectRefusal(changes,
                  QStringLiteral("Other files are being applied to this project right now. Try again in "
                                 "a moment."));
    close(lock);
    EXPECT_EQ(apply(changes), QString());
}

TEST_F(ApplyTest, AMissingProjectIsNamed) {
    original("a", "1");
    result("a", "2");
    const auto changes = review();
    tree.remove("project");
    EXPECT_EQ(apply(changes), QStringLiteral("This project folder no longer exists."));
    EXPECT_FALSE(tree.exists("run/backup-1"));
}

TEST_F(ApplyTest, MoreFoldersThanFilesMayBeOpenAtOnce) {
    for (int i = 0; i < 1'100; ++i)
        original("d" + QByteArray::number(i) + "/f", "1");
    for (int i = 0; i < 1'100; ++i)
        result("d" + QByteArray::number(i) + "/f", "2");
    ASSERT_EQ(apply(review()), QString());
    for (int i = 0; i < 1'100; ++i)
        ASSERT_EQ(tree.read("project/d" + QByteArray::number(i) + "/f"), "2") << i;
}

}  // namespace
}  // namespace orvo
