#include "team_runs/Preview.h"
#include "team_runs/Tree.h"
#include "team_runs/changePath.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

using test::Tree;

const QString placeholder = QStringLiteral("File absent, binary, or too large for the text preview.");

TEST(Preview, ShowsUTF8BelowTheLimitAndASentenceOtherwise) {
    const Tree tree;
    tree.write("root/text",
               "Gr\xc3\xbc\xc3\x9f"
               "e\n");
    tree.write("root/caf\xe9/mark", "\xef\xbb\xbfx");
    tree.write("root/latin", "caf\xe9");
    tree.write("root/cut", "\xe2\x82");
    tree.write("root/empty", {});
    tree.write("root/below", QByteArray(1'999'999, 'x'));
    tree.write("root/at", QByteArray(2'000'000, 'x'));
    tree.pipe("root/pipe");
    tree.link("root/link", "text");
    tree.makeFolder("root/real");
    tree.write("root/real/file", "x");
    tree.link("root/folder link", "real");
    tree.write("outside", "secret");

    const auto shown = [&tree](const QByteArray& path) {
        return RunFiles::preview(tree.path("root"), path);
    };
    EXPECT_EQ(shown("text"), QStringLiteral("Gr\u00fc\u00dfe\n"));
    EXPECT_EQ(shown("caf\xe9/mark"), QStringLiteral("\ufeffx"));
    EXPECT_EQ(shown("empty"), QString());
    EXPECT_EQ(shown("below").size(), 1'999'999);
    for (const char* path : {"at", "latin", "cut", "pipe", "link", "folder link/file", "real", "missing",
                             "missing/x", "", "/etc/hostname", "../outside", "real/../../outside"}) {
        EXPECT_EQ(shown(path), placeholder) << path;
    }
}

TEST(ChangePath, OnlyPathsThatStayBelowAreAccepted) {
    EXPECT_EQ(RunFiles::checkedPath("a/b"), QByteArray("a/b"));
    EXPECT_EQ(RunFiles::checkedPath("a//./b/"), QByteArray("a/b"));
    EXPECT_EQ(RunFiles::checkedPath("..a/b..\n"), QByteArray("..a/b..\n"));
    for (const QByteArray& path : {QByteArray(), QByteArray("/a"), QByteArray(".."), QByteArray("a/.."),
                                   QByteArray("../outside.txt"), QByteArray("."), QByteArray("a\0b", 3)}) {
        const auto checked = RunFiles::checkedPath(path);
        ASSERT_FALSE(checked) << path.constData();
        EXPECT_EQ(checked.error(),
                  (Error{QStringLiteral("OrvoRuns"), 1, QStringLiteral("Invalid change path.")}));
    }
}

}  // namespace
}  // namespace orvo
