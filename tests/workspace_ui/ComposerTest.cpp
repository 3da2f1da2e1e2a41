#include "appearance/controls/CheckRow.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/TaskEditor.h"
#include "support/WaitFor.h"
#include "workspace/RecordingTeamRuns.h"
#include "workspace_ui/ScreenFixture.h"

namespace orvo {
namespace {

class ComposerTest : public test::ScreenFixture {
protected:
    TaskEditor& task() {
        auto* const editor = test::find<TaskEditor>(screen(), QStringLiteral("Task for selected assistants"));
        if (!editor) abort();
        return *editor;
    }
    QAbstractButton* segment(const char* name) {
        return test::find<QAbstractButton>(screen(), QString::fromLatin1(name));
    }
    CheckRow* row(const char* name) { return test::find<CheckRow>(screen(), QString::fromLatin1(name)); }

    ~ComposerTest() override { workspace().setTeamRuns(nullptr); }

    test::RecordingTeamRuns m_runs;
};

TEST_F(ComposerTest, whatIsWrittenIsTheModelsAndBack) {
    task().setPlainText(QStringLiteral("Add a search."));
    EXPECT_EQ(workspace().prompt(), QStringLiteral("Add a search."));
    workspace().setPrompt(QStringLiteral("Another task"));
    EXPECT_EQ(task().toPlainText(), QStringLiteral("Another task"));
    EXPECT_EQ(task().accessibleDescription(), QStringLiteral("What would you like to build?"));
}

TEST_F(ComposerTest, editingInTheMiddleKeepsTheCaret) {
    workspace().setPrompt(QStringLiteral("one three"));
    QTextCursor caret = task().textCursor();
    caret.setPosition(4);
    task().setTextCursor(caret);
    task().insertPlainText(QStringLiteral("two "));
    EXPECT_EQ(workspace().prompt(), QStringLiteral("one two three"));
    EXPECT_EQ(task().textCursor().position(), 8);
}

TEST_F(ComposerTest, runTaskSendsToTheSelectedAssistants) {
    install(QStringLiteral("claude"));
    install(QStringLiteral("codex"));
    workspace().openFolderForThisRun(makeProject(QStringLiteral("notes")));
    workspace().setSeparateCopies(false);
    EXPECT_TRUE(test::shows(screen(), QStringLiteral("2 selected")));
    task().setPlainText(QStringLiteral("Add a search."));
    press(QStringLiteral("Run task"));
    EXPECT_EQ(workspace().sessions().size(), 2u);
    EXPECT_EQ(task().toPlainText(), QString());
    EXPECT_EQ(workspace().toast(), QStringLiteral("Task sent to 2 assistants."));
}

TEST_F(ComposerTest, withoutAProjectItSaysSo) {
    EXPECT_TRUE(test::shows(screen(), QStringLiteral("Select a project first")));
    EXPECT_TRUE(test::shows(screen(), QStringLiteral("Choose folder  ↗")));
    EXPECT_TRUE(
        test::shows(screen(), QStringLiteral("Open a folder to give your assistants a place to work.")));
    workspace().openFolderForThisRun(makeProject(QStringLiteral("notes")));
    EXPECT_FALSE(test::shows(screen(), QStringLiteral("Select a project first")));
    EXPECT_TRUE(test::shows(screen(), QStringLiteral("Change folder  ↗")));
    EXPECT_FALSE(
        test::shows(screen(), QStringLiteral("Open a folder to give your assistants a place to work.")));
}

TEST_F(ComposerTest, separateCopiesWaitForTeamRuns) {
    workspace().setSeparateCopies(false);
    EXPECT_FALSE(segment("Separate copies")->isEnabled());
    EXPECT_TRUE(segment("Shared folder")->isChecked());
    EXPECT_TRUE(
        test::shows(screen(), QStringLiteral("Assistants edit this same folder. Give them different tasks to "
                                             "avoid overlapping edits.")));

    workspace().setTeamRuns(&m_runs);
    ASSERT_TRUE(segment("Separate copies")->isEnabled());
    segment("Separate copies")->click();
    EXPECT_TRUE(workspace().separateCopies());
    EXPECT_FALSE(
        test::shows(screen(), QStringLiteral("Assistants edit this same folder. Give them different tasks to "
                                             "avoid overlapping edits.")));
}

TEST_F(ComposerTest, whileARunIsPreparedOnlyCancelIsOffered) {
    workspace().setTeamRuns(&m_runs);
    EXPECT_FALSE(test::shows(screen(), QStringLiteral("Cancel")));
    m_runs.preparing = true;
    workspace().refreshPreparingRun();
    EXPECT_FALSE(test::find<OrvoButton>(screen(), QStringLiteral("Preparing…"))->isEnabled());
    EXPECT_FALSE(segment("Shared folder")->isEnabled());
    EXPECT_FALSE(segment("Separate copies")->isEnabled());
    press(QStringLiteral("Cancel"));
    EXPECT_EQ(m_runs.cancelled, 1);

    m_runs.preparing = false;
    workspace().refreshPreparingRun();
    EXPECT_TRUE(test::find<OrvoButton>(screen(), QStringLiteral("Run task"))->isEnabled());
    EXPECT_TRUE(segment("Shared folder")->isEnabled());
    EXPECT_FALSE(test::shows(screen(), QStringLiteral("Cancel")));
}

TEST_F(ComposerTest, aReadyAssistantIsChosenByItsCheckBox) {
    install(QStringLiteral("claude"));
    ASSERT_TRUE(row("Claude Code")->isChecked());
    row("Claude Code")->click();
    EXPECT_EQ(workspace().selectedProviders(), QSet<QString>{QStringLiteral("codex")});
    // As assistive technology does it: the state itself, without a click.
    row("Claude Code")->setChecked(true);
    EXPECT_TRUE(workspace().selectedProviders().contains(QStringLiteral("claude")));
    workspace().setSelectedProviders({});
    EXPECT_FALSE(row("Claude Code")->isChecked());
}

TEST_F(ComposerTest, anUnreadyAssistantIsNeverCheckedAndItsRowSetsItUp) {
    ASSERT_TRUE(workspace().selectedProviders().contains(QStringLiteral("codex")));
    EXPECT_FALSE(row("Codex")->isChecked());
    row("Codex")->click();
    EXPECT_FALSE(row("Codex")->isChecked());
    EXPECT_EQ(workspace().editingProvider()->id, QStringLiteral("codex"));
    EXPECT_EQ(workspace().selectedProviders().size(), 2);
    workspace().dismissConnector();

    install(QStringLiteral("codex"));
    workspace().refreshWorkspace();
    EXPECT_TRUE(row("Codex")->isChecked());
}

TEST_F(ComposerTest, theTerminalTakesNoTasks) {
    QStringList names;
    for (const CheckRow* const check : screen().findChildren<CheckRow*>())
        names.append(test::nameOf(*check));
    EXPECT_EQ(names.join(u'|').toStdString(), "Claude Code|Codex|Kimi Code|Antigravity|Z.ai");
}

TEST_F(ComposerTest, aConnectorThatIsAddedGetsItsRow) {
    screen();
    Provider own = Provider::defaults().first();
    own.id = QStringLiteral("own");
    own.name = QStringLiteral("Local model");
    workspace().assistants().addTemporary(own);
    EXPECT_TRUE(test::waitFor([&] { return test::shows(screen(), QStringLiteral("Local model")); }));
}

}  // namespace
}  // namespace orvo
