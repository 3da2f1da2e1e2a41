#include "team_runs/TeamRuns.h"

#include "platform/fake/FakeClock.h"
#include "platform/listFolder.h"
#include "support/WaitFor.h"
#include "support/longer.h"
#include "team_runs/Changes.h"
#include "team_runs/FakeTeamRunHost.h"
#include "team_runs/RunFolder.h"
#include "team_runs/RunStore.h"
#include "team_runs/Tree.h"

#include <gtest/gtest.h>

#include <QRandomGenerator>
#include <QThreadPool>

namespace orvo {
namespace {

using namespace std::chrono_literals;
using test::connector;
using test::FakeTeamRunHost;
using test::lengthOf;
using test::Tree;
using test::waitFor;

const QString prefix = QStringLiteral(
    "You are working in an independent copy of the project. Complete the task within this copy. Preserve "
    "provider "
    "approval policies. Explain your changes and how to verify them. Task: ");
const QString cancelled = QStringLiteral("Run preparation cancelled. No assistants were started.");
const QString started =
    QStringLiteral("Assistants are working in separate copies. Review their results in Team runs.");

struct Workbench {
    explicit Workbench(FakeTeamRunHost::Launch launch = FakeTeamRunHost::Launch::Real) : host(launch) {
        host.engine = &engine;
        tree.write("project/main.txt", "one\n");
        tree.write("project/sub/run.sh", "#!/bin/sh\n", 0755);
        tree.write("project/.git/HEAD", "ref");
        tree.write("project/caf\xe9", "bytes");
    }
    ~Workbench() { host.engine = nullptr; }

    void start(const QString& task, const QList<Provider>& providers) {
        engine.startTeamRun(task, providers, tree.path("project"));
    }
    /// One assistant, which runs this line of shell.
    void startOne(const char* line = "true") { start(QStringLiteral("task"), {connector("a", line)}); }
    bool settled() {
        return waitFor([this] { return !engine.preparingRun(); });
    }
    bool sessionsEnd() {
        return waitFor([this] { return host.finished == static_cast<int>(host.sessions.size()); });
    }
    /// Folders may go while this looks.
    QList<QByteArray> runFolders() const {
        return listFolder(tree.path("Runs")).value_or(QList<QByteArray>());
    }

    Tree tree;
    FakeClock clock;
    FakeTeamRunHost host;
    TeamRuns engine{host, clock, tree.path("Runs")};
};

TEST(TeamRuns, EachAssistantWorksInACopyAndTheProjectStaysAsItWas) {
    Workbench bench;
    const auto before = bench.tree.drawing("project");
    const QString task =
        QStringLiteral("It's a task of some length, longer than fifty-two characters in any case");
    bench.host.prompt = QStringLiteral("  ") + task + u'\n';
    bench.start(task, {connector("one", "echo two > main.txt; rm sub/run.sh; echo \"$1\""),
                       connector("two", "chmod 600 main.txt; echo new > new; exit 3")});
    EXPECT_TRUE(bench.engine.preparingRun());
    ASSERT_TRUE(bench.settled());
    ASSERT_EQ(bench.engine.teamRuns().size(), 1);
    EXPECT_EQ(bench.host.notices, QStringList{started});
    EXPECT_EQ(bench.host.prompt, QString());
    ASSERT_TRUE(bench.sessionsEnd());

    const TeamRun run = bench.engine.teamRuns()[0];
    EXPECT_EQ(bench.engine.selectedRunID(), run.id);
    EXPECT_EQ(run.prompt, task);
    EXPECT_EQ(run.project, bench.tree.path("project"));
    EXPECT_EQ(run.createdTime(), bench.clock.now());
    EXPECT_EQ(RunStore::loadRun(run.root), run);
    ASSERT_EQ(run.copies.size(), 2);
    EXPECT_EQ(run.copies[0].exitCode, 0);
    EXPECT_EQ(run.copies[1].exitCode, 3);
    EXPECT_EQ(bench.engine.copyState(run.copies[0]), CopyState::Finished);
    EXPECT_EQ(bench.engine.copyState(run.copies[1]), CopyState::Failed);
    for (int i = 0; i < 2; ++i) {
        const TerminalSession& session = *bench.host.sessions[static_cast<size_t>(i)];
        EXPECT_EQ(run.copies[i].session, session.id());
        EXPECT_EQ(session.directory(), run.copies[i].directory);
        EXPECT_EQ(session.title(), task.left(52));
        EXPECT_EQ(run.copies[i].directory.parent(), run.root);
        EXPECT_NE(run.copies[i].directory.nameBytes(), uuidText(run.copies[i].id).toLatin1());
    }
    EXPECT_TRUE(bench.host.sessions[0]->command().endsWith(shellQuote(prefix + task)));
    const auto output = RunStore::output(run, run.copies[0]);
    ASSERT_TRUE(output);
    // The screen wraps, and ends its lines without blanks.
    EXPECT_EQ(QString(*output).remove(u'\n').remove(u' '), QString(prefix + task).remove(u' '));

    const auto changes = RunFiles::changes(run.baseline(), run.copies[0].directory);
    ASSERT_TRUE(changes);
    ASSERT_EQ(changes->size(), 2);
    EXPECT_EQ((*changes)[0].path, "main.txt");
    EXPECT_EQ((*changes)[1].kind(), FileChange::Kind::Removed);
    EXPECT_EQ(bench.tree.drawing("project"), before);
    EXPECT_FALSE(bench.tree.exists("Runs/" + run.root.nameBytes() + "/preparing"));
    EXPECT_EQ(bench.engine.preparationProgress(), RunFiles::CopyProgress());

    // The time-out of a preparation that is over means nothing.
    bench.clock.advance(60s);
    EXPECT_EQ(bench.host.notices, QStringList{started});
}

TEST(TeamRuns, TheirOrderStaysWhenTheClockIsSet) {
    Workbench bench(FakeTeamRunHost::Launch::Never);
    const QDateTime begin = bench.clock.now();
    const auto runAt = [&bench](const QDateTime& now) {
        bench.clock.set(now);
        bench.startOne();
        EXPECT_TRUE(bench.settled());
        return *bench.engine.selectedRunID();
    };
    const auto order = [](const QList<TeamRun>& runs) {
        QList<QUuid> ids;
        for (const TeamRun& run : runs)
            ids.append(run.id);
        return ids;
    };
    const QUuid first = runAt(begin);
    const QUuid anHourBack = runAt(begin.addSecs(-3600));
    const QUuid atTheSameMoment = runAt(begin.addSecs(-3600));
    EXPECT_EQ(order(bench.engine.teamRuns()), (QList<QUuid>{atTheSameMoment, anHourBack, first}));
    // So wrong a clock is not followed for ten years.
    const QUuid farAhead = runAt(begin.addYears(10));
    const QUuid rightAgain = runAt(begin.addSecs(60));
    EXPECT_EQ(bench.engine.run(rightAgain)->createdTime(), begin.addSecs(60));
    const QList<QUuid> all = {farAhead, rightAgain, atTheSameMoment, anHourBack, first};
    EXPECT_EQ(order(bench.engine.teamRuns()), all);
    EXPECT_EQ(order(*RunStore::load(bench.tree.path("Runs"))), all) << "as the next start lists them";
}

TEST(TeamRuns, ADraftTypedMeanwhileStays) {
    Workbench bench(FakeTeamRunHost::Launch::Never);
    bench.startOne();
    bench.host.prompt = QStringLiteral("another thought");
    ASSERT_TRUE(bench.settled());
    EXPECT_EQ(bench.host.prompt, QStringLiteral("another thought"));
}

TEST(TeamRuns, ACancelledPreparationLeavesNothing) {
    Workbench bench;
    bench.startOne();
    bench.engine.cancelPreparation();
    EXPECT_FALSE(bench.engine.preparingRun());
    EXPECT_EQ(bench.host.notices, QStringList{cancelled});
    QThreadPool::globalInstance()->waitForDone();
    EXPECT_TRUE(bench.tree.exists("Runs"));
    EXPECT_TRUE(waitFor([&bench] { return bench.runFolders().isEmpty(); }));
    EXPECT_TRUE(bench.engine.teamRuns().isEmpty());
    EXPECT_TRUE(bench.host.sessions.empty());
    bench.engine.cancelPreparation();
    bench.clock.advance(60s);
    EXPECT_EQ(bench.host.notices, QStringList{cancelled});
}

TEST(TeamRuns, APreparationThatTakesAMinuteIsGivenUp) {
    Workbench bench;
    bench.startOne();
    bench.clock.advance(59'999ms);
    EXPECT_TRUE(bench.engine.preparingRun());
    bench.clock.advance(1ms);
    EXPECT_FALSE(bench.engine.preparingRun());
    EXPECT_EQ(bench.host.notices,
              (QStringList{cancelled,
                           QStringLiteral("Copying timed out. Make sure your project is downloaded locally, "
                                          "then try again.")}));
    QThreadPool::globalInstance()->waitForDone();
    EXPECT_TRUE(bench.tree.exists("Runs"));
    EXPECT_TRUE(waitFor([&bench] { return bench.runFolders().isEmpty(); }));
    EXPECT_TRUE(bench.host.sessions.empty());
}

TEST(TeamRuns, APreparationThatFailsSaysWhyAndLeavesNothing) {
    Workbench bench;
    bench.tree.remove("project");
    bench.startOne();
    ASSERT_TRUE(bench.settled());
    EXPECT_EQ(bench.host.notices, QStringList{QStringLiteral("This project folder no longer exists.")});
    EXPECT_TRUE(waitFor([&bench] { return bench.runFolders().isEmpty(); }));

    bench.tree.remove("Runs");
    bench.tree.write("Runs", "a file where the folder should be");
    bench.host.notices.clear();
    bench.startOne();
    ASSERT_TRUE(bench.settled());
    EXPECT_EQ(bench.host.notices.size(), 1);
    EXPECT_TRUE(bench.engine.teamRuns().isEmpty());
}

TEST(TeamRuns, StartIsRefusedInWords) {
    Workbench bench(FakeTeamRunHost::Launch::Never);
    const Provider a = connector("a", "true");
    bench.start(QStringLiteral("task"), {});
    bench.start(QStringLiteral("task"), QList<Provider>(9, a));
    const QString count = QStringLiteral("Choose 1 to 8 assistants per run.");
    EXPECT_EQ(bench.host.notices, (QStringList{count, count}));
    EXPECT_EQ(bench.host.questions, 0);

    // An apostrophe takes four bytes.
    bench.start(QString(40'000, u'\''), {a});
    EXPECT_EQ(
        bench.host.notices.back(),
        QStringLiteral("This task is too long to be passed to A. Shorten it, or put it into a file of the "
                       "project."));
    bench.host.notices.clear();
    bench.host.agrees = false;
    bench.start(QStringLiteral("task"), {a});
    EXPECT_FALSE(bench.engine.preparingRun());
    bench.host.agrees = true;
    bench.start(QStringLiteral("task"), {a});
    bench.start(QStringLiteral("another"), {a});
    ASSERT_TRUE(bench.settled());
    EXPECT_EQ(bench.host.notices, QStringList{started});
    EXPECT_EQ(bench.engine.teamRuns().size(), 1);
}

TEST(TeamRuns, RandomSequencesOfStartCancelAndTimeOutLeaveNothingOver) {
    Workbench bench(FakeTeamRunHost::Launch::Never);
    QRandomGenerator random(4'11);
    const QList<Provider> two = {connector("a", "true"), connector("b", "true")};
    const int starts = lengthOf(500, 5'000);
    for (int i = 0; i < starts; ++i) {
        bench.start(QStringLiteral("task"), two);
        switch (random.bounded(4)) {
            case 0:
                bench.engine.cancelPreparation();
                break;
            case 1:
                bench.clock.advance(60s);
                break;
            case 2:
                ASSERT_TRUE(bench.settled());
                break;
            default:
                QCoreApplication::processEvents();
                break;
        }
    }
    ASSERT_TRUE(bench.settled());
    EXPECT_TRUE(waitFor([&bench] { return bench.runFolders().size() == bench.engine.teamRuns().size(); }));
    EXPECT_GT(bench.engine.teamRuns().size(), starts / 10);
    EXPECT_LT(bench.engine.teamRuns().size(), starts / 10 * 9);
    EXPECT_EQ(bench.host.sessions.size(), static_cast<size_t>(2 * bench.engine.teamRuns().size()));
    for (const TeamRun& run : bench.engine.teamRuns()) {
        ASSERT_EQ(RunStore::loadRun(run.root), run);
        ASSERT_FALSE(bench.tree.exists("Runs/" + run.root.nameBytes() + "/preparing"));
    }
}

TEST(TeamRuns, OutputComesFromTheScreenThenTheFileThenTheHistory) {
    Workbench bench;
    bench.startOne("echo printed; read -r line");
    ASSERT_TRUE(bench.settled());
    const TeamRun run = bench.engine.teamRuns()[0];
    const RunCopy copy = run.copies[0];
    ASSERT_TRUE(waitFor([&] { return bench.engine.runOutput(copy, run) == u"printed"; }));
    EXPECT_TRUE(bench.engine.copyRunning(copy));
    EXPECT_EQ(bench.engine.copyState(copy), CopyState::Working);
    bench.host.sessions[0]->send(QStringLiteral("\n"));
    ASSERT_TRUE(bench.sessionsEnd());
    bench.host.sessions.clear();
    EXPECT_EQ(bench.engine.runOutput(copy, run), QStringLiteral("printed"));
    bench.tree.remove("Runs/" + run.root.nameBytes() + '/' + run.outputFile(copy).nameBytes());
    EXPECT_EQ(bench.engine.runOutput(copy, run), QStringLiteral("No captured output."));
    bench.host.history.insert(copy.directory.bytes(), QStringLiteral("remembered"));
    EXPECT_EQ(bench.engine.runOutput(copy, run), QStringLiteral("remembered"));
    EXPECT_EQ(bench.engine.copyState(copy), CopyState::Interrupted) << "the record given has no exit code";
}

TEST(TeamRuns, ARecordThatCannotBeSavedIsNamedAndTheRunGoesOn) {
    Workbench bench;
    bench.startOne("echo ready; read -r line; exit 5");
    ASSERT_TRUE(bench.settled());
    // It stands in its folder before that goes.
    ASSERT_TRUE(waitFor([&bench] {
        return bench.host.sessions[0]->screen().plainText().find("ready") != std::string::npos;
    }));
    bench.host.notices.clear();
    bench.tree.remove("Runs/" + bench.engine.teamRuns()[0].root.nameBytes());
    bench.host.sessions[0]->send(QStringLiteral("\n"));
    ASSERT_TRUE(bench.sessionsEnd());
    ASSERT_EQ(bench.host.notices.size(), 1);
    EXPECT_TRUE(bench.host.notices[0].startsWith(QStringLiteral("Could not save the run record: ")));
    EXPECT_EQ(bench.engine.teamRuns()[0].copies[0].exitCode, 5);
}

TEST(TeamRuns, TheComparisonWaitsForCodexAndForTheAssistants) {
    Workbench bench;
    bench.startOne("read -r line; exit 2");
    ASSERT_TRUE(bench.settled());
    const QString connect = QStringLiteral("Connect Codex to compare the results with AI.");
    EXPECT_EQ(bench.engine.summarizeRun(bench.engine.teamRuns()[0]), nullptr);
    EXPECT_EQ(bench.host.notices.back(), connect);
    Provider codex = Provider::defaults()[1];
    ASSERT_EQ(codex.id, QStringLiteral("codex"));
    bench.host.providers = {codex, connector("a", "x")};
    EXPECT_EQ(bench.engine.summarizeRun(bench.engine.teamRuns()[0]), nullptr);
    EXPECT_EQ(bench.host.notices.back(), connect);
    bench.host.ready = {codex.id};
    EXPECT_EQ(bench.engine.summarizeRun(bench.engine.teamRuns()[0]), nullptr);
    EXPECT_EQ(bench.host.notices.back(),
              QStringLiteral("Wait for the assistants to finish before comparing."));
    bench.host.sessions[0]->send(QStringLiteral("\n"));
    ASSERT_TRUE(bench.sessionsEnd());

    const auto session = bench.engine.summarizeRun(bench.engine.teamRuns()[0]);
    ASSERT_NE(session, nullptr);
    EXPECT_EQ(session->providerID(), codex.id);
    EXPECT_EQ(session->title(), QStringLiteral("Compare team results"));
    EXPECT_EQ(session->directory(), bench.engine.teamRuns()[0].root);
    EXPECT_TRUE(session->command().startsWith(
        QStringLiteral("codex exec --skip-git-repo-check --sandbox read-only ")));
    EXPECT_TRUE(session->command().contains(QStringLiteral("ASSISTANT: A\nEXIT: 2\nOUTPUT:\n")));
    ASSERT_TRUE(bench.sessionsEnd());
}

TEST(TeamRuns, FoldersOfProcessesThatDiedAreRemovedAtTheNextStart) {
    Workbench bench;
    const auto create = [&bench] {
        return RunFolder::create(bench.tree.path("Runs"));
    };
    const auto alive = create();
    QByteArray dead;
    {
        const auto folder = create();
        ASSERT_TRUE(folder);
        dead = folder->path().nameBytes();
        bench.tree.write("Runs/" + dead + "/baseline/caf\xe9/file", "x");
    }
    auto kept = create();
    ASSERT_TRUE(alive && kept);
    kept->keep();
    bench.engine.loadTeamRuns();
    EXPECT_TRUE(waitFor([&] { return !bench.tree.exists("Runs/" + dead); }));
    EXPECT_TRUE(bench.tree.exists("Runs/" + alive->path().nameBytes()));
    EXPECT_TRUE(bench.tree.exists("Runs/" + kept->path().nameBytes()));
}

TEST(TeamRuns, AnUnfinishedApplyIsNamedAtTheNextStart) {
    Workbench bench;
    bench.tree.write("Runs/R/copy/a", "new");
    const FilePath backup = bench.tree.path("Runs/R/backup-1");
    RunFiles::ApplyPlan::Step step;
    step.change.path = "a";
    step.change.after = "00";
    step.temporary = ".orvo-1.tmp";
    const RunFiles::ApplyPlan plan{
        bench.tree.path("project"), bench.tree.path("Runs/R/copy"), backup, {step}};
    ASSERT_TRUE(RunFiles::ApplyJournal::create(plan));
    bench.engine.loadTeamRuns();
    ASSERT_TRUE(waitFor([&bench] { return !bench.host.notices.isEmpty(); }));
    EXPECT_EQ(bench.engine.unfinishedApplies().size(), 1);
    EXPECT_TRUE(bench.host.notices[0].contains(backup.display()));
}

TEST(TeamRuns, RunsOfOtherProcessesAppearAndTheirChangesToo) {
    Workbench bench;
    bench.tree.makeFolder("Runs");
    bench.engine.loadTeamRuns();
    bench.tree.makeFolder("Runs/other");
    TeamRun run{QUuid::createUuid(),
                QStringLiteral("elsewhere"),
                bench.tree.path("project"),
                bench.tree.path("Runs/other"),
                900'000'000,
                {}};
    run.copies.append({QUuid::createUuid(), QStringLiteral("codex"), run.root.child("c"), {}, {}});
    ASSERT_TRUE(RunStore::save(run));
    const auto shows = [&bench](const TeamRun& expected) {
        return waitFor([&] {
            bench.clock.advance(200ms);
            return bench.engine.teamRuns() == QList<TeamRun>{expected};
        });
    };
    EXPECT_TRUE(shows(run));
    run.copies[0].exitCode = 0;
    ASSERT_TRUE(RunStore::save(run));
    EXPECT_TRUE(shows(run));
}

}  // namespace
}  // namespace orvo
