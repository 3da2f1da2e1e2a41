#include "appearance/controls/NavRow.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/SessionTab.h"
#include "appearance/controls/TaskEditor.h"
#include "support/WaitFor.h"
#include "terminal/ui/TerminalPane.h"
#include "terminal/ui/TerminalView.h"
#include "workspace_ui/ScreenFixture.h"

#include <QApplication>
#include <QHelpEvent>
#include <QMenu>

namespace orvo {
namespace {

class SessionDeckTest : public test::ScreenFixture {
protected:
    void start(int count) {
        screen();
        for (int i = 0; i < count; ++i)
            startTerminal();
        // The focus of a new terminal is given once all have heard of it.
        QCoreApplication::processEvents();
    }

    QUuid id(std::size_t index) { return workspace().sessions().at(index)->id(); }

    TerminalPane* pane(std::size_t index) {
        for (TerminalPane* const pane : screen().findChildren<TerminalPane*>()) {
            if (pane->session() == workspace().sessions().at(index).get()) return pane;
        }
        return nullptr;
    }

    QList<TerminalPane*> visiblePanes() {
        QList<TerminalPane*> panes = screen().findChildren<TerminalPane*>();
        panes.removeIf([](const TerminalPane* pane) { return !pane->isVisible(); });
        return panes;
    }

    QList<SessionTab*> tabs() {
        QList<SessionTab*> tabs = screen().findChildren<SessionTab*>();
        tabs.removeIf([](const SessionTab* tab) { return !tab->isVisible(); });
        return tabs;
    }
};

TEST_F(SessionDeckTest, eachSessionHasATabAndAPane) {
    start(3);
    EXPECT_EQ(tabs().size(), 3);
    EXPECT_EQ(visiblePanes().size(), 3);
    EXPECT_TRUE(test::shows(screen(), QStringLiteral("Live sessions")));
    EXPECT_TRUE(test::shows(screen(), QStringLiteral("3")));
    EXPECT_TRUE(tabs().at(2)->isCurrent());
    EXPECT_TRUE(pane(2)->isActive());
    EXPECT_FALSE(pane(0)->isActive());
}

TEST_F(SessionDeckTest, choosingATabMakesItsSessionActiveAndTakesTheKeys) {
    start(2);
    tabs().at(0)->click();
    EXPECT_EQ(workspace().activeSessionID(), id(0));
    EXPECT_TRUE(tabs().at(0)->isCurrent());
    EXPECT_FALSE(tabs().at(1)->isCurrent());
    EXPECT_EQ(QApplication::focusWidget(), &pane(0)->view());
}

TEST_F(SessionDeckTest, focusingAPaneMakesItsSessionActive) {
    start(2);
    pane(0)->view().setFocus();
    EXPECT_EQ(workspace().activeSessionID(), id(0));
}

TEST_F(SessionDeckTest, aTerminalBehindAnotherPageCatchesNoKeysUntilItIsShown) {
    start(1);
    workspace().setDestination(Destination::Settings);
    workspace().startSession(QStringLiteral("shell"), QStringLiteral("Behind"),
                             QStringLiteral("exec sleep 60"), *workspace().folder());
    // As the page does that has action plans drafted.
    workspace().setDestination(Destination::Settings);
    QCoreApplication::processEvents();
    ASSERT_TRUE(screen().window()->focusWidget());
    EXPECT_FALSE(screen().window()->focusWidget()->inherits("orvo::TerminalView"));
    workspace().setDestination(Destination::Workspace);
    QCoreApplication::processEvents();
    EXPECT_EQ(QApplication::focusWidget(), &pane(1)->view());
}

TEST_F(SessionDeckTest, focusShowsTheActivePaneAloneAndGridTheSamePanesAgain) {
    start(3);
    const QList<TerminalPane*> before = visiblePanes();
    const int rows = workspace().sessions().front()->screen().rows();
    press(QStringLiteral("Focus"));
    EXPECT_TRUE(workspace().focusMode());
    EXPECT_EQ(visiblePanes(), QList<TerminalPane*>{pane(2)});
    EXPECT_EQ(tabs().size(), 3);
    tabs().at(1)->click();
    EXPECT_EQ(visiblePanes(), QList<TerminalPane*>{pane(1)});
    press(QStringLiteral("Grid"));
    EXPECT_EQ(visiblePanes(), before);
    EXPECT_EQ(workspace().sessions().front()->screen().rows(), rows)
        << "a hidden pane does not resize its session";
}

TEST_F(SessionDeckTest, closingASessionRemovesItsTabAndPane) {
    start(2);
    m_dialogs.answer(QStringLiteral("Stop session"));
    Q_EMIT pane(0)->closeRequested();
    EXPECT_EQ(visiblePanes().size(), 1);
    EXPECT_EQ(tabs().size(), 1);
    m_dialogs.answer(QStringLiteral("Stop session"));
    Q_EMIT pane(0)->closeRequested();
    EXPECT_TRUE(test::shows(screen(), QStringLiteral("Connected tools"))) << "the welcome page is back";
}

TEST_F(SessionDeckTest, thePlusMenuListsReadyConnectors) {
    install(QStringLiteral("codex"));
    start(1);
    auto* const plus = test::find<OrvoButton>(screen(), QStringLiteral("New session"));
    ASSERT_TRUE(plus);
    QMenu* const menu = screen().findChild<QMenu*>();
    ASSERT_TRUE(menu);
    Q_EMIT menu->aboutToShow();
    ASSERT_EQ(menu->actions().size(), 2);
    EXPECT_EQ(menu->actions().at(0)->text(), QStringLiteral("Codex"));
    EXPECT_EQ(menu->actions().at(1)->text(), QStringLiteral("Terminal"));
    menu->actions().at(0)->trigger();
    EXPECT_EQ(workspace().sessions().back()->providerID(), QStringLiteral("codex"));
}

TEST_F(SessionDeckTest, aNewTerminalTakesTheKeysUnlessATaskIsBeingWritten) {
    start(1);
    EXPECT_EQ(QApplication::focusWidget(), &pane(0)->view());

    auto* const task = test::find<TaskEditor>(screen(), QStringLiteral("Task for selected assistants"));
    task->setFocus();
    task->setPlainText(QStringLiteral("half a sent"));
    start(1);
    EXPECT_EQ(QApplication::focusWidget(), task);

    task->clear();
    start(1);
    EXPECT_EQ(QApplication::focusWidget(), &pane(2)->view());
}

TEST_F(SessionDeckTest, aTabShowsThatItsSessionWantsThePerson) {
    start(2);
    const auto session = workspace().sessions().at(0);
    ASSERT_TRUE(test::waitFor([&] { return pane(1)->isActive(); }));
    session->send(QStringLiteral("printf '\\a'\r"));
    ASSERT_TRUE(test::waitFor([&] { return tabs().at(0)->mark() == SessionTab::Mark::Wanted; }));
    EXPECT_TRUE(tabs().at(0)->accessibleDescription().startsWith(QStringLiteral("Wants you: bell ")));
    EXPECT_NE(tabs().at(1)->mark(), SessionTab::Mark::Wanted);

    const auto* const entry = test::find<NavRow>(screen(), QStringLiteral("Workspace"));
    ASSERT_TRUE(entry);
    EXPECT_TRUE(entry->isWanted());
    EXPECT_TRUE(entry->toolTip().contains(session->title() + QStringLiteral(": bell ")));
    // The evidence is as old as it is when somebody looks.
    SessionTab* const tab = tabs().at(0);
    const QString before = tab->toolTip();
    EXPECT_TRUE(before.contains(QStringLiteral("bell ")));
    ASSERT_TRUE(test::waitFor([&] {
        QHelpEvent hover(QEvent::ToolTip, {}, tab->mapToGlobal(QPoint()));
        QApplication::sendEvent(tab, &hover);
        return tab->toolTip() != before;
    }));
    EXPECT_TRUE(tab->toolTip().contains(QStringLiteral("bell ")));

    session->setInFront(true);
    EXPECT_FALSE(entry->isWanted());
    EXPECT_TRUE(entry->toolTip().isEmpty());
}

TEST_F(SessionDeckTest, longTitlesGiveWayBeforeShortOnesDo) {
    screen(QSize(1180, 712));
    start(1);
    for (const char* const word : {"Long", "Longer", "Longest"}) {
        workspace().startSession(QStringLiteral("shell"), QString::fromLatin1(word).repeated(12),
                                 QStringLiteral("sleep 60"), *workspace().folder());
    }
    ASSERT_TRUE(test::waitFor([&] { return tabs().size() == 4; }));
    EXPECT_EQ(tabs().at(0)->width(), tabs().at(0)->sizeHint().width());
    for (const int tab : {1, 2, 3})
        EXPECT_LT(tabs().at(tab)->width(), tabs().at(tab)->sizeHint().width());
    EXPECT_EQ(tabs().at(1)->width(), tabs().at(3)->width());
    EXPECT_TRUE(tabs().at(0)->visibleRegion().boundingRect() == tabs().at(0)->rect()) << "nothing scrolls";

    // With room, every one is as wide as its title.
    while (workspace().sessions().size() > 2) {
        m_dialogs.answer(QStringLiteral("Stop session"));
        workspace().closeSession(workspace().sessions().back());
    }
    ASSERT_TRUE(test::waitFor([&] { return tabs().size() == 2; }));
    EXPECT_EQ(tabs().at(1)->width(), tabs().at(1)->sizeHint().width());
}

TEST_F(SessionDeckTest, twelveSessionsInTheSmallestWindowScroll) {
    screen(QSize(1180, 712));
    start(12);
    const auto* const last = pane(11);
    EXPECT_GE(last->height(), 168);
    EXPECT_FALSE(last->visibleRegion().isEmpty()) << "the newest session is in view";
    EXPECT_TRUE(pane(0)->visibleRegion().isEmpty());
    EXPECT_EQ(tabs().last()->visibleRegion().boundingRect(), tabs().last()->rect()) << "and its tab";
    workspace().setActiveSessionID(id(0));
    EXPECT_EQ(pane(0)->visibleRegion().boundingRect(), pane(0)->rect());

    EXPECT_TRUE(test::waitFor([&] { return tabs().last()->visibleRegion().isEmpty(); }));
    EXPECT_GE(tabs().last()->width(), 96);
    workspace().setActiveSessionID(id(11));
    EXPECT_FALSE(tabs().last()->visibleRegion().isEmpty());
}

}  // namespace
}  // namespace orvo
