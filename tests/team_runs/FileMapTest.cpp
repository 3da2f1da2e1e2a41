#include "team_runs/FileMap.h"
#include "team_runs/Tree.h"
#include "team_runs/folderAccess.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace orvo {
namespace {

using test::Tree;

const QString limitSentence = QStringLiteral(
    "Separate copies currently support up to 5,000 files and 150 MB. Choose a smaller project folder or use "
    "the "
    "shared-folder mode.");

QList<QByteArray> pathsOf(const FilePath& root) {
    QList<QByteArray> paths;
    const auto map = RunFiles::files(root);
    if (!map) {
        ADD_FAILURE() << qPrintable(map.error().message);
        return {};
    }
    for (const auto& file : *map)
        paths.append(file.path);
    return paths;
}

TEST(FileMap, LeavesOutSecretsDependenciesBuildResultsAndBundles) {
    const struct {
        const char* name;
        bool excluded;
    } cases[] = {
        {".git", true},          {".svn", true},          {".hg", true},           {"node_modules", true},
        {".venv", true},         {"venv", true},          {".build", true},        {"build", true},
        {"dist", true},          {".next", true},         {".cache", true},        {".ssh", true},
        {".aws", true},          {".gnupg", true},        {".DS_Store", true},     {".env", true},
        {".env.local", true},    {".env.", true},         {".env.example", false}, {".env.sample", false},
        {".env.example2", true}, {".environment", false}, {"MyTool.app", true},    {"Kit.framework", true},
        {"a.b.app", true},       {".app", false},         {"app", false},          {"x.App", false},
        {"Build", false},        {"builds", false},       {".gitignore", false},   {"x.app.txt", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(RunFiles::isExcluded(c.name), c.excluded) << c.name;

    const Tree tree;
    for (const auto& c : cases)
        tree.write(QByteArray("sub/") + c.name + "/inside", "x");
    for (const auto& c : cases)
        tree.write(QByteArray("flat/") + c.name, "x");
    const QList<QByteArray> paths = pathsOf(tree.path());
    for (const auto& c : cases) {
        EXPECT_NE(paths.contains(QByteArray("sub/") + c.name + "/inside"), c.excluded) << c.name;
        EXPECT_NE(paths.contains(QByteArray("flat/") + c.name), c.excluded) << c.name;
    }
}

TEST(FileMap, NamesAreBytesInByteOrderOfTheWholePath) {
    const Tree tree;
    const QByteArray longName(255, 'n');
    for (const QByteArray& path : {QByteArray("a/z"), QByteArray("a-b"), QByteArray("a.txt"),
                                   QByteArray("-rf"), QByteArray("line\nfeed"), QByteArray("quo\"te'"),
                                   QByteArray("bad\xff\xfe"), QByteArray("caf\xe9/x"), longName}) {
        tree.write(path, "x");
    }
    EXPECT_EQ(pathsOf(tree.path()), (QList<QByteArray>{"-rf", "a-b", "a.txt", "a/z", "bad\xff\xfe",
                                                       "caf\xe9/x", "line\nfeed", longName, "quo\"te'"}));
}

TEST(FileMap, OnlyRegularFilesAppearAndNothingElseIsOpened) {
    const Tree tree;
    const Tree elsewhere;
    elsewhere.write("outside.txt", "x");
    tree.write("main.txt", "x");
    tree.makeFolder("empty/deeper");
    tree.link("file link", "main.txt");
    tree.link("folder link", elsewhere.path().bytes());
    tree.link("loop", "loop");
    tree.link("up", "..");
    tree.link("dangling", "nowhere");
    tree.pipe("pipe");
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray name = tree.path("socket").bytes();
    ASSERT_LT(static_cast<size_t>(name.size()), sizeof address.sun_path);
    memcpy(address.sun_path, name.constData(), static_cast<size_t>(name.size()));
    ASSERT_EQ(bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(pathsOf(tree.path()), QList<QByteArray>{"main.txt"});
    close(socket);
}

TEST(FileMap, AMissingFolderOrAPlainFileIsRefused) {
    const Tree tree;
    tree.write("plain", "x");
    for (const char* name : {"missing", "plain", "plain/below", "missing/below"}) {
        const auto map = RunFiles::files(tree.path(name));
        ASSERT_FALSE(map) << name;
        EXPECT_EQ(map.error(), (Error{QStringLiteral("OrvoRuns"), 1,
                                      QStringLiteral("This project folder no longer exists.")}));
    }
}

TEST(FileMap, TheLimitsHoldExactly) {
    const Tree tree;
    tree.sparse("big", 149'999'999);
    tree.write("one", "x");
    EXPECT_TRUE(RunFiles::files(tree.path()));
    tree.write("two", "x");
    ASSERT_FALSE(RunFiles::files(tree.path()));
    EXPECT_EQ(RunFiles::files(tree.path()).error().message, limitSentence);
    tree.sparse("big", qint64(1) << 43);
    EXPECT_EQ(RunFiles::files(tree.path()).error().message, limitSentence);

    const Tree many;
    for (int i = 0; i < 5'000; ++i)
        many.write("f/" + QByteArray::number(i), {});
    many.write("node_modules/package.txt", "x");
    ASSERT_TRUE(RunFiles::files(many.path()));
    EXPECT_EQ(RunFiles::files(many.path())->size(), 5'000U);
    many.write("last", {});
    EXPECT_EQ(RunFiles::files(many.path()).error().message, limitSentence);
}

TEST(FileMap, FoldersDeeperThanAPathMayBeLongAreReached) {
    const Tree tree;
    const QByteArray name(200, 'd');
    auto folder = openRoot(tree.path());
    ASSERT_TRUE(folder);
    for (int i = 0; i < 60; ++i) {
        ASSERT_EQ(mkdirat(folder->number(), name.constData(), 0755), 0);
        *folder =
            FileDescriptor(openat(folder->number(), name.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        ASSERT_TRUE(folder->isOpen());
    }
    const FileDescriptor file(openat(folder->number(), "leaf", O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    ASSERT_TRUE(file.isOpen());
    const QList<QByteArray> paths = pathsOf(tree.path());
    ASSERT_EQ(paths.size(), 1);
    EXPECT_EQ(paths[0].size(), 60 * 201 + 4);
}

// Each level has two folders more, so that the walk comes back to all of them after the deepest one.
TEST(FileMap, TheFoldersBesideADeepPathAreReachedWithFewDescriptors) {
    const Tree tree;
    QList<QByteArray> expected;
    QByteArray folder;
    for (int level = 0; level < 50; ++level) {
        for (const char* name : {"a", "c"}) {
            expected.append(folder + name + "/file");
            tree.write(expected.last(), "x");
        }
        folder += "b/";
    }
    std::ranges::sort(expected);
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    const FileDescriptor next(open("/", O_RDONLY | O_CLOEXEC));
    const rlimit few{static_cast<rlim_t>(next.number()) + 24, limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    const QList<QByteArray> paths = pathsOf(tree.path());
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_EQ(paths, expected);
}

TEST(FolderAccess, NoLinkIsFollowedOnTheWay) {
    const Tree tree;
    tree.write("real/sub/file", "x");
    tree.link("link", "real");
    tree.link("real/back", "sub");
    const auto root = openRoot(tree.path());
    ASSERT_TRUE(root);
    EXPECT_TRUE(openFolderBeneath(root->number(), "real/sub"));
    for (const char* path : {"link", "link/sub", "real/back"}) {
        const auto folder = openFolderBeneath(root->number(), path);
        ASSERT_FALSE(folder) << path;
        EXPECT_EQ(folder.error(), ELOOP) << path;
        EXPECT_EQ(makeFolderBeneath(root->number(), QByteArray(path) + "/new").error(), ELOOP) << path;
    }
    EXPECT_EQ(openFolderBeneath(root->number(), "real/sub/file").error(), ENOTDIR);
    for (const char* const path : {"..", "real/../.."})
        EXPECT_EQ(openFolderBeneath(root->number(), path).error(), EXDEV) << path;
    EXPECT_EQ(openFolderBeneath(root->number(), "real/none").error(), ENOENT);
    EXPECT_TRUE(makeFolderBeneath(root->number(), "real/new/deep/er"));
    EXPECT_TRUE(tree.exists("real/new/deep/er"));
    EXPECT_FALSE(tree.exists("real/sub/new"));
}

TEST(FolderAccess, FoldersAreMadeBesideBelowAndAboveTheOneUsedLast) {
    const Tree tree;
    const auto root = openRoot(tree.path());
    ASSERT_TRUE(root);
    FolderCursor cursor(root->number(), FolderCursor::Missing::Create);
    const auto putFile = [&](const QByteArray& path) {
        const auto folder = cursor.folderOf(path);
        ASSERT_TRUE(folder) << path.constData();
        ASSERT_EQ(mknodat(*folder, fileNameIn(path), S_IFREG | 0600, 0), 0) << path.constData();
        EXPECT_TRUE(tree.exists(path)) << path.constData();
    };
    for (const char* path :
         {"a/b/c/1", "a/b/c2/2", "a/b/c/d/e/3", "a/b/4", "ab/5", "ab/b/c/6", "7", "a/b/c/8"})
        ASSERT_NO_FATAL_FAILURE(putFile(path));

    // What was there a moment ago may be gone, or a link.
    tree.write("gone/x/1", "1");
    ASSERT_TRUE(cursor.folderOf("gone/x/2"));
    tree.remove("gone");
    ASSERT_NO_FATAL_FAILURE(putFile("gone/y/3"));
    tree.makeFolder("elsewhere");
    ASSERT_TRUE(cursor.folderOf("link/x/1"));
    tree.remove("link");
    tree.link("link", "elsewhere");
    EXPECT_EQ(cursor.folderOf("link/y/2").error(), ELOOP);
    EXPECT_FALSE(tree.exists("elsewhere/y"));
}

}  // namespace
}  // namespace orvo
