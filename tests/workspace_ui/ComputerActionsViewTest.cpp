#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/TaskEditor.h"
#include "files/ui/CodeEditor.h"
#include "support/WaitFor.h"
#include "workspace_ui/ScreenFixture.h"

#include <QLabel>

namespace orvo::test {
namespace {

class ComputerActionsViewTest : public ScreenFixture {
protected:
    void openPage() {
        macActions();
        m_desktop.installed.insert(text("com.example.notes"), {text("notes.desktop"), text("Notes")});
        workspace().setDestination(Destination::Mac);
        screen();
    }
    void requestPlan() {
        find<TaskEditor>(screen(), text("Mac task to plan"))->setPlainText(text("Write a note"));
        press(text("Make a plan"));
    }
    bool isEnabled(const char* button) { return find<OrvoButton>(screen(), text(button))->isEnabled(); }
};

const QByteArray twoSteps =
    R"({"explanation":"Opens Notes & types.","steps":[
        {"id":1,"title":"Open <b>Notes</b>","action":"open_app","app":"com.example.notes","value":""},
        {"id":2,"title":"Type","action":"type_text","app":"com.example.notes","value":"low\u200btide"}]})";

TEST_F(ComputerActionsViewTest, RunsAPlanStepByStep) {
    installPlanner(twoSteps);
    openPage();
    EXPECT_FALSE(isEnabled("Make a plan"));
    EXPECT_FALSE(isEnabled("Run next step"));
    EXPECT_FALSE(isEnabled("Planner output"));
    requestPlan();
    EXPECT_FALSE(isEnabled("Making plan…"));
    ASSERT_TRUE(waitFor([&] {
        return shows(screen(), text("Review the steps below. Run next step performs one action only."));
    })) << qPrintable(macActions().planner().message());
    // A layout shows new rows in the turn of the event loop after the one that made them.
    EXPECT_TRUE(waitFor([&] { return shows(screen(), text("Opens Notes & types.")); }));
    EXPECT_TRUE(shows(screen(), text("1. Open <b>Notes</b>")));
    EXPECT_TRUE(shows(screen(), text("com.example.notes · open_app")));
    // What cannot be seen is written out.
    EXPECT_TRUE(shows(screen(), text("low⟨U+200B⟩tide")));
    for (const QLabel* const label : screen().findChildren<QLabel*>())
        EXPECT_EQ(label->textFormat(), Qt::PlainText) << qPrintable(label->text());

    m_dialogs.answer(text("Cancel"));
    press(text("Run next step"));
    EXPECT_EQ(macActions().planner().completed(), 0);
    m_dialogs.answer(m_dialogs.alerts().last().buttons.first());
    press(text("Run next step"));
    EXPECT_FALSE(isEnabled("Sending step…"));
    m_desktop.opened(std::optional(RunningApplication{7, {text("notes.desktop"), text("Notes")}}));
    m_clock.advance(std::chrono::milliseconds(600));
    ASSERT_EQ(macActions().planner().completed(), 1);
    EXPECT_TRUE(shows(screen(), text("Carried out")));
    EXPECT_TRUE(shows(screen(), text("Not carried out yet")));

    press(text("Planner output"));
    EXPECT_EQ(workspace().destination(), Destination::Workspace);
    EXPECT_TRUE(workspace().focusMode());
    ASSERT_TRUE(workspace().activeSession());
    EXPECT_EQ(workspace().activeSession()->title(), text("Plan Mac actions"));
    workspace().closeSession(workspace().activeSession());
    workspace().setDestination(Destination::Mac);
    EXPECT_TRUE(waitFor([&] { return !isEnabled("Planner output"); }));
}

TEST_F(ComputerActionsViewTest, StopsTypingMidLine) {
    installPlanner(R"({"explanation":"Types.","steps":[
        {"id":1,"title":"Type","action":"type_text","app":"com.example.notes","value":"low tide"}]})");
    openPage();
    requestPlan();
    ASSERT_TRUE(waitFor([&] { return macActions().planner().plan().has_value(); }));
    m_dialogs.answer(text("Cancel"));
    press(text("Run next step"));
    m_dialogs.answer(m_dialogs.alerts().last().buttons.first());
    press(text("Run next step"));
    m_desktop.opened(std::optional(RunningApplication{7, {text("notes.desktop"), text("Notes")}}));
    m_clock.advance(std::chrono::milliseconds(600));
    EXPECT_FALSE(shows(screen(), text("Stop typing")));
    m_desktop.progress(3);
    EXPECT_TRUE(shows(screen(), text("3 of 8 characters")));
    press(text("Stop typing"));
    EXPECT_EQ(m_desktop.log.last(), text("cancel typing"));
}

TEST_F(ComputerActionsViewTest, RunsScriptsInTheProjectFolderOnly) {
    openPage();
    EXPECT_FALSE(shows(screen(), text("Run script")));
    press(text("Manual Mac tools"));
    m_dialogs.chooseFolder(std::nullopt);
    press(text("Run script"));
    EXPECT_TRUE(workspace().sessions().empty());

    workspace().openFolderForThisRun(makeProject(text("notes")));
    find<CodeEditor>(screen(), text("AppleScript"))->setText(text("say 'it''s high tide' \\ $(ls)"));
    press(text("Run script"));
    ASSERT_EQ(workspace().sessions().size(), 1u);
    const TerminalSession& session = *workspace().sessions().front();
    EXPECT_EQ(session.title(), text("Mac action · AppleScript"));
    EXPECT_EQ(session.command(),
              text("/usr/bin/osascript -e ") + shellQuote(text("say 'it''s high tide' \\ $(ls)")));
}

TEST_F(ComputerActionsViewTest, OpensChosenApplicationsAndNothingElse) {
    openPage();
    press(text("Manual Mac tools"));
    m_desktop.installed.insert(text("sails.desktop"), {text("sails.desktop"), text("Sails")});
    for (const char* file : {"/usr/share/applications/notes.txt", "/bin/sh"}) {
        m_dialogs.openFile(FilePath(file));
        m_desktop.log.clear();
        press(text("Open an application"));
        EXPECT_TRUE(m_desktop.log.isEmpty()) << qPrintable(m_desktop.log.join(u'\n'));
    }
    m_dialogs.openFile(FilePath("/usr/share/applications/sails.desktop"));
    press(text("Open an application"));
    EXPECT_EQ(m_desktop.log.last(), text("open sails.desktop"));
    m_dialogs.openFile(FilePath("/opt/unknown.desktop"));
    press(text("Open an application"));
    EXPECT_EQ(workspace().toast(), text("“unknown.desktop” is not an application that can be opened here."));
}

TEST_F(ComputerActionsViewTest, ShowsWhetherTypingIsAllowedWhenAsked) {
    m_desktop.trusted = false;
    openPage();
    press(text("Manual Mac tools"));
    EXPECT_TRUE(shows(screen(), text("Not granted")));
    m_desktop.trusted = true;
    press(text("Refresh permissions"));
    EXPECT_TRUE(shows(screen(), text("Allowed")));
    press(text("Screen recording settings"));
    EXPECT_EQ(m_desktop.log.last(), text("settings recording"));
}

}  // namespace
}  // namespace orvo::test
