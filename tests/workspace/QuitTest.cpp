#include "workspace/WorkspaceTestCase.h"

namespace orvo {
namespace {

class Quit : public test::WorkspaceTestCase {};

TEST_F(Quit, AsksNothingWhenNothingRunsAndTheEditorIsClean) {
    makeWorkspace();
    EXPECT_TRUE(workspace->confirmQuit());
    EXPECT_TRUE(dialogs.alerts().isEmpty());
}

TEST_F(Quit, RunningSessionsAreNamedAndStayUntilStopped) {
    makeWorkspace();
    const auto session = run("sleep 1000");
    dialogs.answer(QStringLiteral("Cancel"));
    EXPECT_FALSE(workspace->confirmQuit());
    dialogs.answer(QStringLiteral("Quit & stop"));
    EXPECT_TRUE(workspace->confirmQuit());
    EXPECT_TRUE(session->running());
    const Alert& alert = dialogs.alerts().last();
    EXPECT_EQ(alert.message, QStringLiteral("Quit and stop running sessions?"));
    EXPECT_EQ(alert.informativeText,
              QStringLiteral("Running assistants and terminal processes will be stopped."));
    EXPECT_EQ(alert.buttons, (QStringList{QStringLiteral("Quit & stop"), QStringLiteral("Cancel")}));
    EXPECT_EQ(alert.defaultButton, Alert::Default::FirstButton);
}

TEST_F(Quit, UnsavedChangesAreAskedAboutFirst) {
    makeWorkspace();
    run("sleep 1000");
    workspace->files().setEditorText(QStringLiteral("unsaved"));
    dialogs.answer(QStringLiteral("Cancel"));
    EXPECT_FALSE(workspace->confirmQuit());
    EXPECT_EQ(dialogs.alerts().size(), 1);
}

TEST_F(Quit, AWorkspaceThatKeepsNothingQuitsAtOnce) {
    makeWorkspace(Persist::No);
    run("sleep 1000");
    EXPECT_TRUE(workspace->confirmQuit());
    EXPECT_TRUE(dialogs.alerts().isEmpty());
}

}  // namespace
}  // namespace orvo
