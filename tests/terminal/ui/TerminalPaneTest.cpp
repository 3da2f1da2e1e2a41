#include "terminal/ui/TerminalPane.h"

#include "terminal/ui/RunningTerminal.h"

#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/StatusPill.h"

#include <QAccessible>
#include <QAction>
#include <QClipboard>
#include <QMenu>
#include <QSignalSpy>

namespace orvo {
namespace {

using test::waitFor;

struct Pane {
    explicit Pane(const char* command)
        : session(QStringLiteral("shell"), QStringLiteral("Terminal session"), QString::fromUtf8(command),
                  FilePath("/")),
          pane(session, theme) {
        pane.resize(400, 200);
        pane.show();
    }

    QAction* item(const QString& text) {
        for (QAction* action : pane.findChild<QMenu*>()->actions()) {
            if (action->text() == text && action->isVisible()) return action;
        }
        return nullptr;
    }
    QString state() { return pane.findChild<StatusPill*>()->title(); }

    Theme theme{nullptr};
    TerminalSession session;
    TerminalPane pane;
};

TEST(TerminalPane, ThePillTellsTheSessionsState) {
    Pane failing("exit 3");
    failing.session.start();
    EXPECT_EQ(failing.state(), QStringLiteral("Running"));
    EXPECT_TRUE(waitFor([&] { return failing.state() == QStringLiteral("Exit 3"); }));
}

TEST(TerminalPane, ItMayGoWhileItHasTheFocus) {
    Theme theme(nullptr);
    TerminalSession session(QStringLiteral("shell"), QString(), QStringLiteral("true"), FilePath("/"));
    auto pane = std::make_unique<TerminalPane>(session, theme);
    pane->show();
    pane->activateWindow();
    pane->setFocus();
    TerminalView& view = pane->view();
    ASSERT_TRUE(waitFor([&] { return view.hasFocus(); }));
    int told = 0;
    QObject::connect(&view, &TerminalView::focusChanged, &theme, [&] {
        ++told;
        EXPECT_NE(qobject_cast<TerminalPane*>(view.parent()), nullptr) << "told by half a pane";
    });
    pane.reset();
    EXPECT_EQ(told, 1);
}

TEST(TerminalPane, StopIsOfferedOnlyWhileTheSessionRuns) {
    Pane pane("sleep 60");
    EXPECT_EQ(pane.item(QStringLiteral("Stop session")), nullptr);
    pane.session.start();
    ASSERT_NE(pane.item(QStringLiteral("Stop session")), nullptr);
    pane.item(QStringLiteral("Stop session"))->trigger();
    EXPECT_TRUE(waitFor([&] { return !pane.session.running(); }));
    EXPECT_EQ(pane.item(QStringLiteral("Stop session")), nullptr);
}

TEST(TerminalPane, TheMenuAsksForExportAndCloseAndCopiesByItself) {
    Pane pane("true");
    QAccessibleInterface* button = QAccessible::queryAccessibleInterface(pane.pane.findChild<OrvoButton*>());
    EXPECT_EQ(button->text(QAccessible::Name), QStringLiteral("Session menu"));
    QSignalSpy exporting(&pane.pane, &TerminalPane::exportRequested);
    QSignalSpy closing(&pane.pane, &TerminalPane::closeRequested);
    pane.item(QStringLiteral("Export output"))->trigger();
    pane.item(QStringLiteral("Close pane"))->trigger();
    EXPECT_EQ(exporting.count(), 1);
    EXPECT_EQ(closing.count(), 1);
    pane.session.screen().feed("what was printed");
    pane.item(QStringLiteral("Copy output"))->trigger();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("what was printed"));
}

TEST(TerminalPane, FocusInTheTerminalActivatesThePane) {
    Pane pane("true");
    QSignalSpy activated(&pane.pane, &TerminalPane::activated);
    pane.pane.activateWindow();
    pane.pane.setFocus();
    ASSERT_TRUE(waitFor([&] { return pane.pane.view().hasFocus(); }));
    EXPECT_GE(activated.count(), 1);
}

TEST(TerminalPane, ThePaneSurvivesItsSession) {
    Theme theme(nullptr);
    auto session = std::make_unique<TerminalSession>(
        QStringLiteral("shell"), QStringLiteral("Terminal session"), QStringLiteral("true"), FilePath("/"));
    TerminalPane pane(*session, theme);
    pane.resize(400, 200);
    pane.show();
    session.reset();
    EXPECT_FALSE(pane.grab().isNull());
    EXPECT_EQ(pane.session(), nullptr);
}

}  // namespace
}  // namespace orvo
