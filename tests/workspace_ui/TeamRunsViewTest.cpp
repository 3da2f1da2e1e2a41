#include "support/WaitFor.h"
#include "team_runs/RunStore.h"
#include "team_runs/ui/ChangeList.h"
#include "team_runs/ui/ReviewPanel.h"
#include "workspace_ui/ScreenFixture.h"

#include <QAccessible>
#include <QComboBox>
#include <QDir>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QProgressBar>

#include <sys/stat.h>

namespace orvo::test {
namespace {

class TeamRunsViewTest : public ScreenFixture {
protected:
    void write(const QString& path, const QByteArray& content) {
        QDir(m_folder.path()).mkpath(QFileInfo(path).path());
        QFile file(m_folder.filePath(path));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    QByteArray read(const QString& path) {
        QFile file(m_folder.filePath(path));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
    }
    // A project of three files, and a run in which each assistant carries out its shell commands.
    void run(const QList<QByteArray>& scripts, const QString& task = text("Mend the notes")) {
        write(text("notes/a.txt"), "one\n");
        write(text("notes/b.txt"), "two\n");
        write(text("notes/c.txt"), "three\n");
        teamRuns();
        QSet<QString> ids;
        for (qsizetype i = 0; i < scripts.size(); ++i) {
            const QString script = QStringLiteral("home/script%1").arg(i);
            write(script, scripts[i]);
            Provider provider;
            provider.id = QStringLiteral("helper%1").arg(i + 1);
            provider.name = QStringLiteral("Helper %1").arg(i + 1);
            provider.executable = text("/bin/sh");
            provider.template_ = QStringLiteral("sh %1 {prompt}").arg(m_folder.filePath(script));
            workspace().assistants().addTemporary(provider);
            ids.insert(provider.id);
        }
        workspace().openFolderForThisRun(FilePath::fromString(m_folder.filePath(text("notes"))));
        workspace().setSelectedProviders(ids);
        workspace().setPrompt(task);
        workspace().dispatchPrompt();
        ASSERT_TRUE(waitFor([&] { return !workspace().preparingRun(); }));
        ASSERT_FALSE(teamRuns().teamRuns().isEmpty());
    }
    void finish() {
        ASSERT_TRUE(waitFor([&] { return !workspace().anySessionRunning(); }));
        workspace().setDestination(Destination::Runs);
        screen();
    }
    void reviewFirst() {
        press(text("Review files"));
        ASSERT_TRUE(waitFor([&] { return !shows(screen(), text("Reading changes…")); }));
    }
    ChangeList& list() {
        auto* const found = screen().findChild<ChangeList*>();
        EXPECT_NE(found, nullptr);
        return *found;
    }
    static void pressKey(QWidget& widget, Qt::Key key) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(&widget, &event);
    }
    QString textOf(const char* pane) { return find<QPlainTextEdit>(screen(), text(pane))->toPlainText(); }
};

TEST_F(TeamRunsViewTest, ShowsOnlyHowToBeginWhileThereIsNoRun) {
    teamRuns();
    workspace().setDestination(Destination::Runs);
    EXPECT_TRUE(shows(screen(), text("Your team’s work, in one place.")));
    EXPECT_TRUE(shows(screen(), text("Start your first team run")));
    EXPECT_FALSE(shows(screen(), text("Compare with AI")));
}

TEST_F(TeamRunsViewTest, FollowsEachCopyFromWorkToItsEnd) {
    run({"exit 0", "exit 2", "read -r line < /dev/tty"});
    workspace().setDestination(Destination::Runs);
    ASSERT_TRUE(waitFor([&] { return shows(screen(), text("Needs attention · exit 2")); }));
    ASSERT_TRUE(waitFor([&] { return shows(screen(), text("Finished")); }));
    EXPECT_TRUE(shows(screen(), text("Working…")));
    EXPECT_TRUE(shows(screen(), text("Helper 3")));
    EXPECT_EQ(workspace().prompt(), QString());
    workspace().stopAll();
    EXPECT_TRUE(waitFor([&] { return !shows(screen(), text("Working…")); }));
}

TEST_F(TeamRunsViewTest, ComparesAndAppliesTheFilesThatAreTicked) {
    run({"echo more >> a.txt; echo new > d.txt; rm c.txt; echo done"});
    finish();
    reviewFirst();
    const auto* const bar = screen().findChild<QProgressBar*>();
    ASSERT_NE(bar, nullptr);
    EXPECT_GT(bar->maximum(), 1);
    EXPECT_EQ(bar->value(), bar->maximum()) << "of the files that were read";
    EXPECT_TRUE(shows(screen(), text("3 changed files")));
    EXPECT_TRUE(shows(screen(), text("Apply selected (0)")));
    ASSERT_TRUE(waitFor([&] { return textOf("After") == text("one\nmore\n"); }));
    EXPECT_EQ(textOf("Before"), text("one\n"));

    // The columns fill the card but for its border.
    const auto* const panel = screen().findChild<ReviewPanel*>();
    for (const char* const pane : {"Before", "After"}) {
        const auto* const viewer = find<QPlainTextEdit>(screen(), text(pane));
        const int below = panel->height() - viewer->mapTo(panel, QPoint(0, viewer->height())).y();
        EXPECT_EQ(below, 1) << pane;
    }

    list().toggleRow(0);
    list().toggleRow(1);
    EXPECT_TRUE(shows(screen(), text("Apply selected (2)")));
    m_dialogs.answer(text("Cancel"));
    press(text("Apply selected (2)"));
    EXPECT_EQ(read(text("notes/a.txt")), "one\n");
    EXPECT_EQ(m_dialogs.alerts().last().message, text("Apply 2 reviewed files?"));
    EXPECT_EQ(m_dialogs.alerts().last().informativeText,
              text("Project: ") + m_folder.filePath(text("notes")) +
                  text("\nChanged: a.txt\nRemoved: c.txt\n\nOriginal files are backed up inside this run. "
                       "Conflicting changes are blocked."));

    // The open file is shown as it is afterwards.
    workspace().files().openFile({FilePath::fromString(m_folder.filePath(text("notes/a.txt"))), false});
    m_dialogs.answer(text("Apply changes"));
    press(text("Apply selected (2)"));
    ASSERT_TRUE(waitFor([&] {
        return shows(screen(), text("Applied 2 files. Originals are saved in the run’s backup folder."));
    }));
    EXPECT_EQ(read(text("notes/a.txt")), "one\nmore\n");
    EXPECT_EQ(read(text("notes/c.txt")), "(missing)");
    EXPECT_EQ(read(text("notes/d.txt")), "(missing)");
    EXPECT_EQ(workspace().files().editorText(), text("one\nmore\n"));
    EXPECT_FALSE(workspace().files().fileIsDirty());

    // What the project has by now differs from what was reviewed.
    m_dialogs.answer(text("Apply changes"));
    press(text("Apply selected (2)"));
    EXPECT_TRUE(waitFor([&] {
        return !shows(screen(), text("Applied 2 files. Originals are saved in the run’s backup folder."));
    }));
}

TEST_F(TeamRunsViewTest, AppliesNothingWhileTheAssistantWorks) {
    run({"echo more >> a.txt; echo $$ > ready; read -r line < /dev/tty"});
    ASSERT_TRUE(waitFor([&] {
        return QFile::exists(
            QFile::decodeName(teamRuns().teamRuns().front().copies[0].directory.child("ready").bytes()));
    }));
    workspace().setDestination(Destination::Runs);
    screen();
    reviewFirst();
    press(text("Select all"));
    press(text("Apply selected (2)"));
    EXPECT_TRUE(m_dialogs.alerts().isEmpty());
    EXPECT_EQ(read(text("notes/a.txt")), "one\n");
    workspace().stopAll();
    ASSERT_TRUE(waitFor([&] { return !workspace().anySessionRunning(); }));
}

TEST_F(TeamRunsViewTest, SaysWhenNothingChangedOrTheCopyIsGone) {
    run({"true"});
    finish();
    reviewFirst();
    EXPECT_TRUE(
        shows(screen(), text("No file changes. Check the output for findings or setup instructions.")));
    EXPECT_TRUE(shows(screen(), text("Choose a file to compare its contents.")));
    QDir(teamRuns().teamRuns().front().root.display()).removeRecursively();
    reviewFirst();
    EXPECT_FALSE(
        shows(screen(), text("No file changes. Check the output for findings or setup instructions.")));
    EXPECT_TRUE(shows(screen(), text("0 changed files")));
}

TEST_F(TeamRunsViewTest, ShowsTheLiveTerminalOrElseTheRecordedOutput) {
    run({"echo a result to read"});
    finish();
    press(text("Output"));
    EXPECT_EQ(workspace().destination(), Destination::Workspace);
    EXPECT_TRUE(workspace().focusMode());
    workspace().closeSession(workspace().sessions().front());
    workspace().setDestination(Destination::Runs);
    press(text("Output"));
    EXPECT_TRUE(textOf("Assistant output").contains(text("a result to read")));
    press(text("Done"));
    EXPECT_TRUE(waitFor([&] { return !shows(screen(), text("Done")); }));
}

TEST_F(TeamRunsViewTest, ListsRunsByTheBeginningOfTheirTasks) {
    run({"true"}, QString(text("<b>x</b> & ")) + QString(100, u'y'));
    finish();
    auto* const picker = screen().findChild<QComboBox*>();
    EXPECT_EQ(picker->accessibleName(), text("Run"));
    EXPECT_EQ(picker->itemText(0), text("<b>x</b> & ") + QString(70 - 11, u'y'));
    reviewFirst();
    run({"true"}, text("second"));
    finish();
    EXPECT_EQ(picker->count(), 2);
    EXPECT_EQ(picker->currentText(), text("second"));
    // The review belonged to the other run.
    EXPECT_FALSE(shows(screen(), text("Select all")));
    Q_EMIT picker->activated(1);
    EXPECT_EQ(teamRuns().selectedRunID(), teamRuns().teamRuns()[1].id);
}

TEST_F(TeamRunsViewTest, RowsAreCheckBoxesToAssistiveTechnology) {
    run({"echo more >> a.txt; echo more >> b.txt"});
    finish();
    reviewFirst();
    QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(&list());
    ASSERT_EQ(interface->childCount(), 2);
    QAccessibleInterface* const row = interface->child(1);
    EXPECT_EQ(row->role(), QAccessible::CheckBox);
    EXPECT_EQ(row->text(QAccessible::Name), text("b.txt"));
    EXPECT_EQ(row->text(QAccessible::Description), text("Changed"));
    EXPECT_TRUE(row->state().checkable);
    EXPECT_FALSE(row->state().checked);
    row->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(row->state().checked);
    EXPECT_TRUE(shows(screen(), text("Apply selected (1)")));
    row->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(waitFor([&] { return textOf("Before") == text("two\n"); }));

    // The keyboard does the same.
    list().setFocus();
    pressKey(list(), Qt::Key_Up);
    pressKey(list(), Qt::Key_Space);
    EXPECT_TRUE(interface->child(0)->state().checked);
    EXPECT_TRUE(waitFor([&] { return textOf("Before") == text("one\n"); }));
}

TEST_F(TeamRunsViewTest, NamesOddFilesPlainlyAndOpensNoPipe) {
    run(
        {"mkdir '<b>x'; echo y > '<b>x/&amp; z'; printf x > \"$(printf 'line\\nfeed')\"; rm a.txt; "
         "mkfifo a.txt"});
    finish();
    reviewFirst();
    EXPECT_TRUE(shows(screen(), text("3 changed files")));
    QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(&list());
    EXPECT_EQ(interface->child(0)->text(QAccessible::Name), text("<b>x/&amp; z"));
    EXPECT_EQ(interface->child(2)->text(QAccessible::Name), text("line␊feed"));
    list().setCurrentIndex(list().model()->index(1, 0));
    EXPECT_TRUE(waitFor([&] { return textOf("Before") == text("one\n"); }));
}

TEST_F(TeamRunsViewTest, FiveThousandChangesStayWithinAFewFrames) {
    run({"i=0; while [ $i -lt 4900 ]; do : > file$i; i=$((i+1)); done"});
    finish();
    reviewFirst();
    EXPECT_TRUE(shows(screen(), text("4900 changed files")));
    timespec before{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &before);
    press(text("Select all"));
    list().scrollToBottom();
    QCoreApplication::processEvents();
    timespec after{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &after);
    const double seconds = static_cast<double>(after.tv_sec - before.tv_sec) +
                           static_cast<double>(after.tv_nsec - before.tv_nsec) / 1e9;
    // A frame is 0.016; unoptimised builds and busy machines get ten.
    EXPECT_LT(seconds, 0.16);
}

}  // namespace
}  // namespace orvo::test
