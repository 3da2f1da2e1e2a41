#include "platform/TemporaryFolder.h"
#include "workspace/WorkspaceTestCase.h"

#include <unistd.h>

namespace orvo {
namespace {

class Runner : public test::WorkspaceTestCase {
protected:
    Runner() {
        makeWorkspace();
        workspace->openFolderForThisRun(project);
    }

    void open(const QByteArray& name, const QByteArray& content) {
        test::writeFile(project.child(name), content);
        workspace->files().openFile({project.child(name), false});
        ASSERT_EQ(workspace->files().selectedFile(), project.child(name));
    }
    std::shared_ptr<TerminalSession> last() const {
        return workspace->sessions().empty() ? nullptr : workspace->sessions().back();
    }
};

TEST_F(Runner, TheOpenFileRunsInTheProjectWhateverItsName) {
    const QByteArray names[] = {"it's $(here) \"now\".SH", "odd \xFF\xFE.sh", "- dash.sh"};
    for (const QByteArray& name : names) {
        open(name, "echo \"ran in $PWD\"\nexit 3\n");
        workspace->setDestination(Destination::Files);
        workspace->runFile();
        ASSERT_TRUE(everySessionEnds());
        const auto session = last();
        ASSERT_TRUE(session) << name.constData();
        EXPECT_EQ(session->providerID(), QStringLiteral("shell"));
        EXPECT_EQ(session->title(), QStringLiteral("Run · ") + project.child(name).displayName());
        EXPECT_EQ(session->exitCode(), 3) << qPrintable(textOf(*session));
        EXPECT_TRUE(textOf(*session).remove(u'\n').contains(QStringLiteral("ran in ") + project.display()))
            << qPrintable(textOf(*session));
        EXPECT_EQ(workspace->activeSessionID(), session->id());
        EXPECT_EQ(workspace->destination(), Destination::Workspace);
        // Qt could not remove a name that is no text.
        unlink(project.child(name).bytes().constData());
    }
    EXPECT_EQ(workspace->history().entries().size(), std::size(names)) << "each has the usual finish";
}

TEST_F(Runner, UnsavedTextIsSavedFirstAndARefusalStartsNothing) {
    open("a.sh", "echo old");
    workspace->files().setEditorText(QStringLiteral("echo new"));
    test::writeFile(project.child("a.sh"), "echo theirs");
    dialogs.answer(QStringLiteral("Cancel"));
    workspace->runFile();
    EXPECT_FALSE(last());

    // Another file comes up while the question stands: what the person wanted to run is run.
    dialogs.answer(QStringLiteral("Replace"),
                   [&] { workspace->files().restoreUnsaved(project.child("b.txt"), {}, {}); });
    workspace->runFile();
    ASSERT_TRUE(everySessionEnds());
    ASSERT_TRUE(last());
    EXPECT_EQ(last()->title(), QStringLiteral("Run · a.sh"));
    EXPECT_TRUE(textOf(*last()).contains(QStringLiteral("new")));
}

TEST_F(Runner, OtherTypesAreRefused) {
    workspace->runFile();
    EXPECT_FALSE(last()) << "no file is open";
    open("notes.txt", "words");
    workspace->files().setEditorText(QStringLiteral("more words"));
    workspace->runFile();
    EXPECT_EQ(toast(), QStringLiteral("Use a custom command for this file type."));
    EXPECT_FALSE(last());
    EXPECT_EQ(test::readFile(project.child("notes.txt")), "more words");
}

TEST_F(Runner, ACommandIsTrimmedAndTitledByItsBeginning) {
    workspace->setRunnerCommand(QStringLiteral(" \t \n"));
    workspace->runCommand();
    EXPECT_FALSE(last());
    const QString echo = QStringLiteral("echo ") + QString(75, u'\u00e9');
    workspace->setRunnerCommand(QStringLiteral("  ") + echo + QStringLiteral("\n "));
    workspace->runCommand();
    ASSERT_TRUE(everySessionEnds());
    ASSERT_TRUE(last());
    EXPECT_EQ(last()->command(), echo);
    EXPECT_EQ(last()->title(), echo.left(50));
    EXPECT_EQ(last()->providerID(), QStringLiteral("shell"));
    EXPECT_EQ(last()->directory(), project);
}

TEST(RunnerWithoutProject, ACommandAsksForAFolder) {
    FakeClock clock;
    FakeDialogs dialogs;
    FakeLauncher launcher;
    FakeSleepInhibitor inhibitor;
    Workspace workspace(
        {.clock = clock, .dialogs = dialogs, .launcher = launcher, .sleepInhibitor = inhibitor, .tools = {}});
    workspace.setRunnerCommand(QStringLiteral("ls"));
    dialogs.chooseFolder(std::nullopt);
    workspace.runCommand();
    EXPECT_EQ(dialogs.folderPanels().size(), 1);
    EXPECT_TRUE(workspace.sessions().empty());
}

}  // namespace
}  // namespace orvo
