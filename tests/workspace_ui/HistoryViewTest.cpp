#include "appearance/controls/TextField.h"
#include "history/sampleEntry.h"
#include "history/ui/HistoryRow.h"
#include "support/WaitFor.h"
#include "workspace_ui/ScreenFixture.h"

#include <QAccessible>
#include <QFile>
#include <QLayout>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>

namespace orvo::test {
namespace {

class HistoryViewTest : public ScreenFixture {
protected:
    void record(const char* provider, const QString& title, const QString& output, int exitCode = 0) {
        HistoryEntry entry = sampleEntry(title, output);
        entry.provider = text(provider);
        entry.directory = makeProject(text("old-project"));
        entry.started = QDateTime(QDate(2026, 11, 22), QTime(12, 0));
        entry.exitCode = exitCode;
        workspace().history().record(entry);
    }
    void openPage() {
        workspace().setDestination(Destination::History);
        screen();
    }
    QStringList titles() {
        QStringList found;
        for (const auto* row : rows())
            found.append(row->title());
        return found;
    }
    QList<HistoryRow*> rows() {
        QList<HistoryRow*> found;
        // Those that have gone are deleted later.
        for (auto* row : screen().findChildren<HistoryRow*>()) {
            if (!row->isHidden()) found.append(row);
        }
        if (!found.isEmpty()) found.first()->parentWidget()->layout()->activate();
        std::ranges::sort(found, {}, [](const HistoryRow* row) { return row->y(); });
        return found;
    }
    /// As a screen reader goes through them.
    QStringList readTitles() {
        const auto* const list =
            QAccessible::queryAccessibleInterface(find<QWidget>(screen(), text("Completed sessions")));
        QStringList found;
        for (int i = 0; i < list->childCount(); ++i) {
            if (!list->child(i)->state().invisible) found.append(list->child(i)->text(QAccessible::Name));
        }
        return found;
    }
    QString output() { return find<QPlainTextEdit>(screen(), text("Saved output"))->toPlainText(); }
};

TEST_F(HistoryViewTest, TellsOfAnEmptyHistory) {
    openPage();
    EXPECT_TRUE(shows(screen(), text("Pick up the thread.")));
    EXPECT_TRUE(shows(screen(), text("Your next session starts the story.")));
    EXPECT_FALSE(find<QAbstractButton>(screen(), text("Clear history"))->isEnabled());
}

TEST_F(HistoryViewTest, ListsSessionsAndSearchesTitlesAndConnectors) {
    record("codex", text("Add search"), text("codex wrote this"));
    record("claude", text("Review <b>all</b> & more"), text("nothing about codeX"), 2);
    record("gone", text("CODEX by title"), QString());
    openPage();
    EXPECT_EQ(titles(),
              QStringList({text("CODEX by title"), text("Review <b>all</b> & more"), text("Add search")}));
    EXPECT_EQ(output(), text("No terminal output was captured."));

    find<TextField>(screen(), text("Search completed sessions…"))->setText(text("cOdEx"));
    EXPECT_EQ(titles(), QStringList({text("CODEX by title"), text("Add search")}));
    press(text("Add search"));
    EXPECT_EQ(output(), text("codex wrote this"));
    EXPECT_TRUE(shows(
        screen(),
        text("Codex  ·  %1  ·  22 Nov 2026  ·  Exit 0").arg(makeProject(text("old-project")).display())));
}

TEST_F(HistoryViewTest, ReadsTheNewestWhenTheChosenOneIsGone) {
    record("codex", text("first"), text("first output"));
    record("codex", text("second"), text("second output"));
    openPage();
    press(text("first"));
    EXPECT_EQ(output(), text("first output"));
    for (int i = 0; i < 50; ++i)
        record("codex", text("later %1").arg(i), text("later output"));
    EXPECT_EQ(output(), text("later output"));
}

TEST_F(HistoryViewTest, KeepsItsRowsTheFocusAndThePlaceWhenSessionsComeAndGo) {
    for (int i = 0; i < 50; ++i)
        record("codex", text("session %1").arg(i), QString());
    openPage();
    auto* const list = find<QWidget>(screen(), text("Completed sessions"));
    auto* const area = qobject_cast<QScrollArea*>(list->parentWidget()->parentWidget());
    ASSERT_NE(area, nullptr);
    HistoryRow* const reading = rows()[20];
    EXPECT_EQ(reading->title(), text("session 29"));
    reading->setFocus();
    area->ensureWidgetVisible(reading);
    const auto place = [&] {
        return reading->mapTo(area, QPoint());
    };
    const QPoint before = place();
    // One comes in front and the oldest goes.
    record("codex", text("the newest"), QString());
    EXPECT_EQ(rows()[21], reading);
    EXPECT_EQ(screen().focusWidget(), reading);
    EXPECT_EQ(place(), before);
    EXPECT_EQ(rows().size(), 50);
    EXPECT_EQ(rows().first()->title(), text("the newest"));
    EXPECT_EQ(rows().last()->title(), text("session 1"));
    EXPECT_EQ(readTitles(), titles());

    // At the top, what comes is seen.
    area->verticalScrollBar()->setValue(0);
    record("codex", text("one more"), QString());
    QCoreApplication::processEvents();
    EXPECT_EQ(area->verticalScrollBar()->value(), 0);

    // A focused row that goes hands the focus to the one in its place, not to another part of the page.
    rows().last()->setFocus();
    record("codex", text("and more"), QString());
    EXPECT_EQ(screen().focusWidget(), rows().last());
    find<TextField>(screen(), text("Search completed sessions…"))->setText(text("more"));
    EXPECT_EQ(titles(), QStringList({text("and more"), text("one more")}));
    EXPECT_EQ(screen().focusWidget(), rows().last());
    find<TextField>(screen(), text("Search completed sessions…"))->setText(QString());
    EXPECT_EQ(titles().mid(0, 4),
              QStringList({text("and more"), text("one more"), text("the newest"), text("session 49")}));
    EXPECT_EQ(readTitles(), titles());
}

TEST_F(HistoryViewTest, TellsScreenReadersWhichSessionIsRead) {
    record("codex", text("first"), text("first output"));
    record("codex", text("second"), text("second output"));
    openPage();
    const auto selected = [](HistoryRow* row) {
        const auto* const interface = QAccessible::queryAccessibleInterface(row);
        EXPECT_EQ(interface->role(), QAccessible::ListItem);
        EXPECT_EQ(interface->parent()->role(), QAccessible::List);
        EXPECT_TRUE(interface->state().selectable);
        return bool(interface->state().selected);
    };
    EXPECT_TRUE(selected(rows()[0]));
    EXPECT_FALSE(selected(rows()[1]));
    press(text("first"));
    EXPECT_FALSE(selected(rows()[0]));
    EXPECT_TRUE(selected(rows()[1]));
}

TEST_F(HistoryViewTest, GivesWhatHasNoNameOne) {
    Provider provider;
    provider.id = text("nameless");
    provider.executable = text("~/tools/helper");
    workspace().assistants().addTemporary(provider);
    record("nameless", text("  "), text("x"));
    openPage();
    EXPECT_EQ(titles(), QStringList{text("Untitled session")});
    EXPECT_TRUE(rows().first()->accessibleDescription().startsWith(text("helper, ")));
}

TEST_F(HistoryViewTest, ExportsTheTextAndOpensTheFolder) {
    record("codex", text("done"), text("the whole text"));
    openPage();
    const FilePath file = FilePath::fromString(m_folder.filePath(text("out.txt")));
    m_dialogs.chooseFile(file);
    press(text("Export"));
    EXPECT_EQ(m_dialogs.savePanels().last().proposedName, text("Orvo-session.txt"));
    QFile written(file.display());
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(written.readAll(), "the whole text");

    // Unsaved text keeps the page where it is until the person agrees.
    workspace().files().setEditorText(text("unsaved"));
    m_dialogs.answer(text("Cancel"));
    press(text("Open folder"));
    EXPECT_EQ(workspace().destination(), Destination::History);
    m_dialogs.answer(text("Discard"));
    press(text("Open folder"));
    EXPECT_EQ(workspace().destination(), Destination::Workspace);
    EXPECT_EQ(workspace().folder(), makeProject(text("old-project")));
}

TEST_F(HistoryViewTest, ShowsLongTextsWithoutStretchingOrStalling) {
    record("codex", QString(10'000, u'W'), (QString(79, u'x') + u'\n').repeated(750));
    record("codex", text("one line"), QString(60'000, u'y'));
    openPage();
    EXPECT_EQ(screen().width(), 1440);
    EXPECT_TRUE(waitFor([&] { return output().startsWith(text("yyy")); }));
    press(QString(10'000, u'W'));
    EXPECT_TRUE(waitFor([&] { return output().size() == 60'000; }));
    EXPECT_EQ(screen().width(), 1440);
}

}  // namespace
}  // namespace orvo::test
