#include "app/Options.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

const FilePath here{QByteArray("/home/ada")};

struct Accepted {
    const char* name;
    QList<QByteArray> arguments;
    Options options;
};

class AcceptedOptions : public testing::TestWithParam<Accepted> {};

TEST_P(AcceptedOptions, areRead) {
    const auto parsed = parseOptions(GetParam().arguments, here);
    ASSERT_TRUE(parsed) << qPrintable(parsed.error().message);
    EXPECT_EQ(*parsed, GetParam().options);
}

INSTANTIATE_TEST_SUITE_P(
    CommandLines, AcceptedOptions,
    testing::Values(
        Accepted{"nothing", {}, {}},
        Accepted{"workspace", {"--workspace", "/srv/notes/"}, {.workspace = FilePath("/srv/notes")}},
        Accepted{"plainFolder", {"/srv/notes"}, {.workspace = FilePath("/srv/notes")}},
        Accepted{"relativeFolder", {"notes"}, {.workspace = FilePath("/home/ada/notes")}},
        Accepted{"aValueMayLookLikeAnOption",
                 {"--workspace", "--capture"},
                 {.workspace = FilePath("/home/ada/--capture")}},
        Accepted{"dashFolderAfterDashes", {"--", "-notes"}, {.workspace = FilePath("/home/ada/-notes")}},
        Accepted{"nameThatIsNotUtf8", {"/srv/\xff"}, {.workspace = FilePath("/srv/\xff")}},
        Accepted{"anyOrder",
                 {"--capture", "out", "--workspace", "/srv/notes"},
                 {.workspace = FilePath("/srv/notes"), .capture = FilePath("/home/ada/out")}},
        Accepted{"selfTest",
                 {"--self-test", "--test-output", "report"},
                 {.request = Options::Request::SelfTest, .testOutput = FilePath("/home/ada/report")}},
        Accepted{"errands", {"--new-terminal"}, {.errand = Options::Errand::NewTerminal}},
        Accepted{"help", {"--help"}, {.request = Options::Request::Help}},
        Accepted{"version", {"--version"}, {.request = Options::Request::Version}}),
    [](const auto& named) { return named.param.name; });

struct Refused {
    const char* name;
    QList<QByteArray> arguments;
    const char* message;
};

class RefusedOptions : public testing::TestWithParam<Refused> {};

TEST_P(RefusedOptions, areRefusedWithASentence) {
    const auto parsed = parseOptions(GetParam().arguments, here);
    ASSERT_FALSE(parsed);
    EXPECT_EQ(parsed.error().message.toStdString(), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    CommandLines, RefusedOptions,
    testing::Values(
        Refused{"unknown", {"--frobnicate"}, "There is no option --frobnicate."},
        Refused{"missingFolder", {"--workspace"}, "Name a folder after --workspace."},
        Refused{"emptyFolder", {"--capture", ""}, "Name a folder after --capture."},
        Refused{"twoFolders", {"notes", "--workspace", "tides", "more"}, "Name only one project folder."},
        Refused{"folderTwice", {"--capture", "a", "--capture", "b"}, "Give --capture only once."},
        Refused{"emptyArgument", {""}, "The name of a project folder is empty."}),
    [](const auto& named) { return named.param.name; });

}  // namespace
}  // namespace orvo
