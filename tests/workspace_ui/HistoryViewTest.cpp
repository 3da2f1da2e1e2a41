#include "appearance/controls/TextField.h"
#include "history/ui/HistoryRow.h"
#include "support/WaitFor.h"
#include "workspace_ui/ScreenFixture.h"

#include <QFile>
#include <QPlainTextEdit>

namespace orvo::test {
namespace {

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

class HistoryViewTest : public ScreenFixture {
protected:
    void record(const char* provider, const QString& title, const QString& output, int exitCode = 0) {
        HistoryEntry entry;
        entry.id = QUuid::createUuid();
        entry.provider = text(provider);
        entry.title = title;
        entry.directory = makeProject(text("old-project"));
        entry.started = QDateTime(QDate(2026, 11, 22), QTime(12, 0));
        entry.exitCode = exitCode;
        entry.output = output;
        workspace().history().record(entry);
    }
    void openPage() {
        workspace().setDestination(Destination::History);
        screen();
    }
    QStringList titles() {
        QStringList found;
        for (const auto* row : screen().findChildren<HistoryRow*>())
            found.append(row->title());
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
    // The layout shows new rows with the next turn of the event loop.
    ASSERT_TRUE(waitFor([&] { return shows(screen(), text("Add search")); }));
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

TEST_F(HistoryViewTest, ClearsOnlyAfterTheQuestion) {
    record("codex", text("kept"), text("x"));
    openPage();
    m_dialogs.answer(text("Cancel"));
    press(text("Clear history"));
    EXPECT_EQ(m_dialogs.alerts().last().message, text("Clear Orvo’s saved history?"));
    EXPECT_EQ(titles().size(), 1);
    m_dialogs.answer(text("Clear"));
    press(text("Clear history"));
    EXPECT_TRUE(shows(screen(), text("Completed sessions will appear here.")));
    EXPECT_EQ(workspace().toast(), text("Orvo history cleared."));
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
