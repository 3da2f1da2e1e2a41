#include "history/sampleEntry.h"
#include "workspace_ui/ScreenFixture.h"

#include <QApplication>
#include <QTest>

namespace orvo::test {
namespace {

constexpr int rowHeight = 40;

class TabOrderTest : public ScreenFixture, public testing::WithParamInterface<Destination> {
protected:
    /// Something to stop at on every page.
    void fill() {
        const FilePath project = makeProject(text("notes"));
        QFile file(project.child("a.txt").display());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        for (const char* title : {"first", "second"}) {
            HistoryEntry entry = sampleEntry(text(title));
            entry.directory = project;
            workspace().history().record(entry);
        }
        m_preferences.preset(preference::recentFolders.name, QStringList{project.display()});
        teamRuns();
        macActions();
        companion();
        workspace().openFolderForThisRun(project);
        workspace().setPrompt(text("a task"));
    }

    QRect placeOf(const QWidget& widget) { return {widget.mapTo(&screen(), QPoint(0, 0)), widget.size()}; }

    /// The page looks different without the focus; some controls show it on the card around them.
    void expectSeen(QWidget& control) {
        EXPECT_EQ(control.visibleRegion().boundingRect().size(), control.size())
            << qPrintable(nameOf(control)) << " is not scrolled into view";
        const QImage with = screen().grab().toImage();
        control.clearFocus();
        EXPECT_NE(with, screen().grab().toImage()) << qPrintable(nameOf(control)) << " shows no focus";
        control.setFocus(Qt::TabFocusReason);
    }
};

TEST_P(TabOrderTest, followsTheReadingAndIsSeen) {
    fill();
    workspace().setDestination(GetParam());
    QWidget& window = *screen(QSize(1180, 712)).window();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    QCoreApplication::processEvents();
    for (const auto& [key, forward] : {std::pair(Qt::Key_Backtab, false), std::pair(Qt::Key_Tab, true)}) {
        QWidget* const first = findNamed(screen(), text("Workspace"));
        first->setFocus(Qt::TabFocusReason);
        QWidget* before = first;
        int steps = 0;
        for (;;) {
            QTest::keyClick(before, key);
            QWidget* const now = window.focusWidget();
            ASSERT_NE(now, before) << "Tab stays at " << qPrintable(nameOf(*before));
            ASSERT_LT(++steps, 200) << "Tab never comes back to the first entry";
            if (now == first) break;
            expectSeen(*now);
            const QRect from = placeOf(forward ? *before : *now);
            const QRect to = placeOf(forward ? *now : *before);
            const bool newColumn = to.left() >= from.right();
            // Backwards, the first step is from the beginning to the end.
            if (forward || before != first) {
                EXPECT_TRUE(newColumn || to.bottom() > from.top() - rowHeight)
                    << "from " << qPrintable(nameOf(*before)) << " to " << qPrintable(nameOf(*now));
            }
            before = now;
        }
        EXPECT_GT(steps, 10) << "the sidebar at least";
    }
}

INSTANTIATE_TEST_SUITE_P(Pages, TabOrderTest, testing::ValuesIn(allDestinations));

}  // namespace
}  // namespace orvo::test
