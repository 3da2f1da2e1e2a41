// Texts that nobody planned for, on every page: shown as they stand, cut where there is no room, and never
// the reason why the window or a page grows.

#include "appearance/controls/Notice.h"
#include "appearance/controls/OrvoStyle.h"
#include "files/ui/FileList.h"
#include "history/sampleEntry.h"
#include "support/WaitFor.h"
#include "team_runs/RunStore.h"
#include "workspace_ui/ScreenFixture.h"
#include "workspace_ui/roughTexts.h"

#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QPlainTextEdit>
#include <QScrollArea>

#include <sys/stat.h>

namespace orvo::test {
namespace {

// The smallest window without its menu bar.
constexpr QSize smallest(1180, 712);

class RoughInputTest : public ScreenFixture {
protected:
    void show(Destination page) {
        workspace().setDestination(page);
        screen(smallest);
        for (int turn = 0; turn < 5; ++turn)
            QCoreApplication::processEvents();
        // What crashes or stalls while it is painted does so here.
        EXPECT_FALSE(screen().grab().isNull());
        expectInShape(page);
    }

    void expectInShape(Destination page) {
        SCOPED_TRACE(qPrintable(textOf(page)));
        EXPECT_EQ(screen().size(), smallest);
        EXPECT_LE(screen().minimumSizeHint().width(), smallest.width());
        for (const auto* const area : screen().findChildren<QScrollArea*>()) {
            if (!area->isVisible() || area->horizontalScrollBarPolicy() != Qt::ScrollBarAlwaysOff) continue;
            EXPECT_LE(area->widget()->width(), area->viewport()->width())
                << "cut at the right, in " << area->parentWidget()->metaObject()->className();
        }
        const auto* const notice = screen().findChild<Notice*>();
        EXPECT_TRUE(!notice->isVisible() || screen().rect().contains(notice->geometry())) << "the notice";
        for (const auto* const label : screen().findChildren<QLabel*>()) {
            if (!label->isVisible()) continue;
            EXPECT_EQ(label->textFormat(), Qt::PlainText) << qPrintable(label->text().left(80));
        }
    }

    void addRoughProviders() {
        int number = 0;
        for (const QString& name : roughTexts() + QStringList{QString()}) {
            Provider provider;
            provider.id = QStringLiteral("rough%1").arg(number++);
            provider.name = name;
            provider.subtitle = name;
            provider.colorHex = text("no colour");
            provider.executable = name;
            provider.template_ = text("sh");
            workspace().assistants().addTemporary(provider);
        }
    }
};

TEST_F(RoughInputTest, providersFoldersAndNoticesKeepEveryPageInShape) {
    QStringList recent;
    for (const QString& name : roughTexts())
        recent.append(m_folder.filePath(name.left(60).remove(u'/')));
    for (const QString& folder : std::as_const(recent))
        QDir().mkpath(folder);
    m_preferences.preset(preference::recentFolders.name, recent);
    teamRuns();
    macActions();
    companion();
    addRoughProviders();
    workspace().openFolderForThisRun(FilePath::fromString(recent[1]));
    workspace().setPrompt(roughTexts().join(u'\n'));
    for (const Destination page : allDestinations) {
        workspace().notify(roughTexts()[static_cast<int>(page) % roughTexts().size()]);
        show(page);
        m_clock.advance(std::chrono::seconds(5));
    }
    show(Destination::Agents);
    for (const QString& name : roughTexts())
        EXPECT_TRUE(shows(screen(), name)) << qPrintable(name.left(80));
    EXPECT_TRUE(shows(screen(), text("Unnamed assistant")));
    // The sheet of the one that has nothing to show.
    workspace().editConnector(workspace().assistants().provider(text("rough%1").arg(roughTexts().size())));
    expectInShape(Destination::Agents);
    workspace().dismissConnector();
}

TEST_F(RoughInputTest, sessionsShowTheirTitlesInTabsAndPanes) {
    addRoughProviders();
    workspace().openFolderForThisRun(makeProject(text("notes")));
    int number = 0;
    for (const QString& title : roughTexts())
        workspace().startSession(text("rough%1").arg(number++), title, text("sleep 60"),
                                 *workspace().folder());
    for (const bool focused : {false, true}) {
        workspace().setFocusMode(focused);
        show(Destination::Workspace);
    }
    for (const QString& title : roughTexts())
        EXPECT_TRUE(shows(screen(), title)) << qPrintable(title.left(80));
}

TEST_F(RoughInputTest, twoHundredRunsAreOfferedAndOneWhoseFolderIsGoneSaysSo) {
    QDir(m_folder.path()).mkpath(text("Runs"));
    addRoughProviders();
    const QStringList texts = roughTexts();
    FilePath newest;
    for (int i = 0; i < 200; ++i) {
        TeamRun run;
        run.id = QUuid::createUuid();
        run.prompt = texts[i % texts.size()];
        run.project = makeProject(text("notes"));
        run.root = FilePath::fromString(m_folder.filePath(text("Runs/run-%1").arg(i)));
        run.created = i;
        for (int copy = 0; copy <= texts.size(); ++copy) {
            run.copies.append({.id = QUuid::createUuid(),
                               .provider = text("rough%1").arg(copy),
                               .directory = run.root.child("copy" + QByteArray::number(copy)),
                               .session = {},
                               .exitCode = 1'000'000});
        }
        QDir().mkpath(run.root.display());
        ASSERT_TRUE(RunStore::save(run));
        newest = run.root;
    }
    teamRuns().loadTeamRuns();
    show(Destination::Runs);
    const auto* const picker = screen().findChild<QComboBox*>();
    ASSERT_EQ(picker->count(), 200);
    EXPECT_LT(picker->mapTo(&screen(), QPoint()).y(), 200) << "without a review, the room is below the cards";
    EXPECT_TRUE(shows(screen(), text("Needs attention · exit 1000000")));

    ASSERT_TRUE(QDir(newest.display()).removeRecursively());
    press(text("Review files"));
    EXPECT_TRUE(waitFor([&] { return shows(screen(), text("0 changed files")); }));
    press(text("Output"));
    EXPECT_TRUE(waitFor([&] { return screen().findChild<QPlainTextEdit*>(); }));
    expectInShape(Destination::Runs);
}

TEST_F(RoughInputTest, historyElidesItsRowsAndShowsTheWholeOutput) {
    for (const QString& title : roughTexts()) {
        const QString line = title.left(200) + u'\n';
        HistoryEntry entry = sampleEntry(title, line.repeated(60'000 / line.size()));
        entry.provider = title;
        entry.directory = FilePath::fromString(m_folder.filePath(title.left(60)));
        entry.started = QDateTime(QDate(1, 1, 1), QTime(12, 0));
        workspace().history().record(entry);
    }
    show(Destination::History);
    for (const QString& title : roughTexts()) {
        press(title);
        const auto* const output = find<QPlainTextEdit>(screen(), text("Saved output"));
        // A line at a time is laid out between turns of the event loop.
        ASSERT_TRUE(waitFor([&] { return output->toPlainText().size() >= 50'000; }))
            << qPrintable(title.left(80));
        EXPECT_TRUE(output->toPlainText().startsWith(title.left(200)));
        show(Destination::History);
    }
    const auto row = findNamed(screen(), roughTexts()[1]);
    EXPECT_EQ(row->toolTip(), plainToolTip(roughTexts()[1]));
    // A folder that is gone is a project without files.
    press(text("Open folder"));
    EXPECT_EQ(workspace().destination(), Destination::Workspace);
    show(Destination::Files);
}

TEST_F(RoughInputTest, filesAreNamedPlainlyAndAPipeIsNotOpened) {
    const FilePath project = makeProject(text("notes"));
    QStringList names = {QString(255, u'W'), text("<b>x & y"), text("line\nfeed")};
    for (const QString& name : roughTexts().sliced(2))
        names.append(name.left(60).remove(u'/'));
    for (const QString& name : std::as_const(names)) {
        QFile file(QDir(project.display()).filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(name);
        file.write(name.toUtf8().repeated(100));
    }
    ASSERT_EQ(::mkfifo(project.child("pipe").bytes().constData(), 0600), 0);
    workspace().openFolderForThisRun(project);
    show(Destination::Files);
    EXPECT_EQ(find<FileList>(screen(), text("Files"))->model()->rowCount(), names.size() + 1);
    for (const QString& name : std::as_const(names)) {
        workspace().files().openFile({project.child(name.toUtf8()), false});
        EXPECT_EQ(workspace().files().editorText(), name.repeated(100));
        show(Destination::Files);
    }
    const QString before = workspace().files().editorText();
    workspace().files().openFile({project.child("pipe"), false});
    EXPECT_EQ(workspace().files().editorText(), before);
    show(Destination::Files);
}

TEST_F(RoughInputTest, aPlanShowsWhatWasAnsweredToTheLetter) {
    const QString word = roughTexts()[1] + text("שלום ") + QString(250, u'W');
    const QString plan =
        text(
            R"({"explanation":"%1","steps":[{"id":1,"title":"%1","action":"type_text","app":"a.b","value":"%2"}]})")
            .arg(word, QString(2'000, u'M'));
    installPlanner(plan.toUtf8());
    macActions();
    workspace().openFolderForThisRun(makeProject(text("notes")));
    show(Destination::Mac);
    find<QPlainTextEdit>(screen(), text("Mac task to plan"))->setPlainText(QString(10'000, u'W'));
    press(text("Make a plan"));
    ASSERT_TRUE(waitFor([&] {
        workspace().setDestination(Destination::Mac);
        return shows(screen(), text("1. ") + word);
    }));
    show(Destination::Mac);
}

}  // namespace
}  // namespace orvo::test
