#include "appearance/controls/NavRow.h"
#include "appearance/controls/Notice.h"
#include "appearance/controls/Sheet.h"
#include "support/WaitFor.h"
#include "workspace_ui/ScreenFixture.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QKeyEvent>

namespace orvo {
namespace {

class OrvoRootTest : public test::ScreenFixture {
protected:
    void keepRecent(int count) {
        QStringList paths;
        for (int i = 1; i <= count; ++i)
            paths.append(makeProject(QStringLiteral("project%1").arg(i)).display());
        m_preferences.preset(preference::recentFolders.name, paths);
    }
};

TEST_F(OrvoRootTest, theSidebarNamesThePagesInOrderAndShowsOneAtATime) {
    QStringList names;
    for (const NavRow* const row : screen().findChildren<NavRow*>())
        names.append(test::nameOf(*row));
    EXPECT_EQ(
        names.join(u'|').toStdString(),
        "Workspace|Team runs|Assistants|Files & runner|History|Mac actions|Companion|Appearance|Settings");

    const QHash<QString, QString> titles = {
        {QStringLiteral("Workspace"), QStringLiteral("A new orbit\nfor your ideas.")},
        {QStringLiteral("Team runs"), QStringLiteral("Your team’s work, in one place.")},
        {QStringLiteral("Assistants"), QStringLiteral("Your best minds, together.")},
        {QStringLiteral("History"), QStringLiteral("Pick up the thread.")},
        {QStringLiteral("Mac actions"), QStringLiteral("Say what you want to do.")},
        {QStringLiteral("Companion"), QStringLiteral("A familiar face, always close.")},
        {QStringLiteral("Appearance"), QStringLiteral("A workspace in your colors.")},
        {QStringLiteral("Settings"), QStringLiteral("Simple on the surface.")},
    };
    for (NavRow* const row : screen().findChildren<NavRow*>()) {
        row->click();
        EXPECT_EQ(textOf(workspace().destination()), test::nameOf(*row));
        EXPECT_TRUE(row->isCurrent());
        for (auto it = titles.cbegin(); it != titles.cend(); ++it) {
            EXPECT_EQ(test::shows(screen(), it.value()), it.key() == test::nameOf(*row))
                << qPrintable(it.key());
        }
    }
}

TEST_F(OrvoRootTest, theWorkspaceEntryTellsTheNumberOfSessionsBesideItsName) {
    startTerminal();
    startTerminal();
    const auto* const entry = test::find<NavRow>(screen(), QStringLiteral("Workspace"));
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->accessibleDescription(), QStringLiteral("2"));
}

TEST_F(OrvoRootTest, ofEightRecentProjectsTheFourNewestAreListed) {
    keepRecent(8);
    for (int i = 1; i <= 8; ++i) {
        EXPECT_EQ(test::shows(screen(), QStringLiteral("project%1").arg(i)), i <= 4) << i;
    }
    EXPECT_FALSE(test::shows(screen(), QStringLiteral("Your projects will appear here.")));
}

TEST_F(OrvoRootTest, choosingARecentProjectAsksAboutUnsavedChangesFirst) {
    keepRecent(2);
    workspace().files().setEditorText(QStringLiteral("not saved"));
    const auto before = workspace().folder();
    m_dialogs.answer(QStringLiteral("Cancel"));
    press(QStringLiteral("project2"));
    ASSERT_TRUE(test::waitFor([&] { return m_dialogs.everyAnswerUsed(); }));
    EXPECT_EQ(workspace().folder(), before);

    m_dialogs.answer(QStringLiteral("Discard"));
    press(QStringLiteral("project2"));
    ASSERT_TRUE(test::waitFor([&] { return workspace().folder().has_value(); }));
    EXPECT_EQ(workspace().folderName(), QStringLiteral("project2"));
    EXPECT_TRUE(test::shows(screen(), QStringLiteral("project1")));
}

TEST_F(OrvoRootTest, theRefreshButtonLooksAgainForTools) {
    EXPECT_TRUE(test::shows(screen(), QStringLiteral("0 assistants detected")));
    install(QStringLiteral("claude"));
    press(QStringLiteral("Refresh installed tools and files"));
    EXPECT_TRUE(test::shows(screen(), QStringLiteral("1 assistants detected")));
    EXPECT_EQ(workspace().toast(), QStringLiteral("Workspace refreshed."));
}

void askBeyondTheChildren(QAccessibleInterface* node, int depth = 0) {
    // Tables of Qt refuse with a warning.
    if (!node || node->tableInterface() || depth > 40) return;
    EXPECT_EQ(node->child(node->childCount()), nullptr) << qPrintable(node->text(QAccessible::Name));
    for (int i = 0; i < node->childCount(); ++i)
        askBeyondTheChildren(node->child(i), depth + 1);
}

// A screen reader asks for a child that went meanwhile: a scroll bar, the last session of a list.
TEST_F(OrvoRootTest, assistiveTechnologyMayAskForWhatIsGone) {
    teamRuns();
    macActions();
    companion();
    startTerminal();
    for (const Destination page : allDestinations) {
        workspace().setDestination(page);
        askBeyondTheChildren(QAccessible::queryAccessibleInterface(&screen()));
    }
}

TEST_F(OrvoRootTest, theNoticeFollowsTheModel) {
    const auto* const notice = screen().window()->findChild<Notice*>();
    ASSERT_TRUE(notice);
    EXPECT_FALSE(notice->isVisible());
    workspace().notify(QStringLiteral("Done."));
    EXPECT_TRUE(notice->isVisible());
    EXPECT_EQ(test::nameOf(*notice), QStringLiteral("Done."));
    m_clock.advance(std::chrono::seconds(4));
    EXPECT_TRUE(test::waitFor([&] { return !notice->isVisible(); }));
}

TEST_F(OrvoRootTest, theConnectorViewFollowsTheModelAndEscapeDismissesIt) {
    screen();
    workspace().editConnector(workspace().assistants().provider(QStringLiteral("codex")));
    EXPECT_TRUE(test::shows(screen(), QStringLiteral("Configure Codex")));
    const QPointer<Sheet> sheet = screen().findChild<Sheet*>();
    ASSERT_TRUE(sheet);
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(sheet, &escape);
    EXPECT_TRUE(test::waitFor([&] { return !workspace().presentConnector() && !sheet; }));

    workspace().editConnector(std::nullopt);
    EXPECT_TRUE(test::shows(screen(), QStringLiteral("Add an assistant")));
    workspace().dismissConnector();
    EXPECT_TRUE(test::waitFor([&] { return !screen().findChild<Sheet*>(); }));
}

}  // namespace
}  // namespace orvo
