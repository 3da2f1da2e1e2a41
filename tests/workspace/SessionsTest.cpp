#include "workspace/RecordingTeamRuns.h"
#include "workspace/WorkspaceTestCase.h"

namespace orvo {
namespace {

class Sessions : public test::WorkspaceTestCase {
protected:
    Sessions() { makeWorkspace(); }

    bool waitForText(const std::shared_ptr<TerminalSession>& session, const char* text) {
        return test::waitFor([&] { return textOf(*session).contains(QString::fromUtf8(text)); });
    }
};

TEST_F(Sessions, StartPutsTheSessionInFrontBeforeAnyProcessExists) {
    workspace->setDestination(Destination::Files);
    bool asked = false;
    const auto session =
        workspace->startSession(QStringLiteral("x"), QStringLiteral("title"), QStringLiteral("exit 7"),
                                project, [&](TerminalSession& s) {
                                    asked = true;
                                    EXPECT_EQ(s.pid(), -1);
                                    EXPECT_EQ(workspace->activeSessionID(), s.id());
                                    EXPECT_EQ(workspace->sessions().size(), 1u);
                                    EXPECT_EQ(workspace->destination(), Destination::Workspace);
                                });
    EXPECT_TRUE(asked);
    EXPECT_TRUE(session->running());
    EXPECT_TRUE(everySessionEnds());
    EXPECT_EQ(session->exitCode(), 7);
    EXPECT_EQ(workspace->sessions().size(), 1u);
}

TEST_F(Sessions, TheFinishStepRunsInItsOrder) {
    // What the workspace has already done when the team-run engine and the caller hear of an end.
    QStringList log;
    test::RecordingTeamRuns teamRuns;
    teamRuns.onSessionFinished = [&](TerminalSession& session) {
        log.append(QStringLiteral("runs, history %1, listed %2, running %3")
                       .arg(workspace->history().entries().size())
                       .arg(workspace->files().files().size())
                       .arg(session.running()));
    };
    workspace->setTeamRuns(&teamRuns);
    workspace->openFolderForThisRun(project);
    workspace->setKeepAwake(true);
    const auto session = workspace->startSession(
        QStringLiteral("x"), QStringLiteral("title"), QStringLiteral("touch made; echo text"), project, {},
        [&](TerminalSession&) { log.append(QStringLiteral("caller, awake %1").arg(sleepInhibitor.held())); });
    QObject::connect(workspace.get(), &Workspace::sessionStatesChanged, workspace.get(),
                     [&] { log.append(QStringLiteral("announced")); });
    EXPECT_TRUE(everySessionEnds());
    EXPECT_EQ(log, (QStringList{QStringLiteral("runs, history 1, listed 1, running 0"),
                                QStringLiteral("announced"), QStringLiteral("caller, awake 0")}));

    const HistoryEntry entry = workspace->history().entries().first();
    EXPECT_EQ(entry.provider, QStringLiteral("x"));
    EXPECT_EQ(entry.title, QStringLiteral("title"));
    EXPECT_EQ(entry.directory, project);
    EXPECT_EQ(entry.exitCode, 0);
    EXPECT_EQ(entry.output, QStringLiteral("text"));
    EXPECT_EQ(entry.started, session->started());
    EXPECT_TRUE(preferences.value(preference::history));
    workspace->setTeamRuns(nullptr);
}

TEST_F(Sessions, ClosingARunningSessionAsksAndRecordsItsEnd) {
    const auto session = run("echo ready; sleep 1000");
    ASSERT_TRUE(waitForText(session, "ready"));
    dialogs.answer(QStringLiteral("Cancel"));
    workspace->closeSession(session);
    EXPECT_EQ(workspace->sessions().size(), 1u);
    EXPECT_TRUE(session->running());
    EXPECT_EQ(dialogs.alerts().last().message, QStringLiteral("Stop this session?"));
    EXPECT_EQ(dialogs.alerts().last().informativeText,
              QStringLiteral("The assistant and processes launched in this terminal will stop."));

    dialogs.answer(QStringLiteral("Stop session"));
    workspace->closeSession(session);
    EXPECT_TRUE(workspace->sessions().empty());
    EXPECT_FALSE(workspace->activeSessionID());
    ASSERT_TRUE(test::waitFor([&] { return !workspace->history().entries().isEmpty(); }));
    EXPECT_EQ(workspace->history().entries().first().exitCode, 143);
    EXPECT_TRUE(test::waitFor([&] { return session.use_count() == 1; }));
}

TEST_F(Sessions, ASessionThatEndsWhileTheQuestionStandsIsJustRemoved) {
    const auto session = run("echo ready; read -r x");
    ASSERT_TRUE(waitForText(session, "ready"));
    dialogs.answer(QStringLiteral("Stop session"), [&] {
        session->send(QStringLiteral("\r"));
        EXPECT_TRUE(test::waitFor([&] { return !session->running(); }));
    });
    workspace->closeSession(session);
    EXPECT_TRUE(workspace->sessions().empty());
    EXPECT_EQ(session->exitCode(), 0);
    EXPECT_TRUE(test::waitFor([&] { return session.use_count() == 1; }));
}

TEST_F(Sessions, ClosingTheActiveSessionActivatesTheLast) {
    const auto first = run("exit 0");
    const auto second = run("exit 0");
    const auto third = run("exit 0");
    EXPECT_TRUE(everySessionEnds());
    workspace->setActiveSessionID(second->id());
    workspace->closeSession(third);
    EXPECT_EQ(workspace->activeSession(), second);
    workspace->closeSession(workspace->sessions()[1]);
    EXPECT_EQ(workspace->activeSession(), first);
    workspace->setActiveSessionID(second->id());
    EXPECT_EQ(workspace->activeSession(), first);
    workspace->closeSession(first);
    EXPECT_FALSE(workspace->activeSessionID());
    EXPECT_TRUE(dialogs.alerts().isEmpty());
}

TEST_F(Sessions, ACallerMayCloseTheSessionInItsFinishStep) {
    std::weak_ptr<TerminalSession> watched =
        workspace->startSession(QStringLiteral("x"), QStringLiteral("t"), QStringLiteral("exit 0"), project,
                                {}, [&](TerminalSession& s) {
                                    workspace->closeSession(workspace->session(s.id()));
                                    EXPECT_EQ(s.exitCode(), 0);
                                });
    EXPECT_TRUE(test::waitFor([&] { return watched.expired(); }));
    EXPECT_TRUE(workspace->sessions().empty());
}

TEST_F(Sessions, TheMachineStaysAwakeExactlyWhileSomethingRuns) {
    const auto session = run("echo ready; read -r x");
    EXPECT_EQ(sleepInhibitor.held(), 0);
    workspace->setKeepAwake(true);
    EXPECT_EQ(sleepInhibitor.held(), 1);
    EXPECT_EQ(sleepInhibitor.reasons(), QStringList(QStringLiteral("Orvo is running a task")));
    workspace->setKeepAwake(false);
    EXPECT_EQ(sleepInhibitor.held(), 0);
    workspace->setKeepAwake(true);
    const auto other = run("exit 0");
    EXPECT_TRUE(test::waitFor([&] { return !other->running(); }));
    EXPECT_EQ(sleepInhibitor.held(), 1);
    session->send(QStringLiteral("\r"));
    EXPECT_TRUE(everySessionEnds());
    EXPECT_EQ(sleepInhibitor.held(), 0);
}

TEST_F(Sessions, ARefusedAssertionIsAskedForAgainAtTheNextStart) {
    sleepInhibitor.setAnswer(FakeSleepInhibitor::Answer::Refuse);
    workspace->setKeepAwake(true);
    run("sleep 1000");
    EXPECT_EQ(sleepInhibitor.held(), 0);
    sleepInhibitor.setAnswer(FakeSleepInhibitor::Answer::Hold);
    run("sleep 1000");
    EXPECT_EQ(sleepInhibitor.held(), 1);
    workspace->stopAll();
    EXPECT_TRUE(everySessionEnds());
    EXPECT_EQ(sleepInhibitor.held(), 0);
}

TEST_F(Sessions, AWorkspaceMayGoWhileSessionsRun) {
    const auto session = run("sleep 1000");
    workspace.reset();
    session->stop();
    EXPECT_TRUE(test::waitFor([&] { return !session->running(); }));
}

TEST_F(Sessions, ExportWritesTheTextUnderAProposedName) {
    const auto session = workspace->startSession(QStringLiteral("codex"), QStringLiteral("Codex"),
                                                 QStringLiteral("echo 'grüße 🛰'"), project);
    EXPECT_TRUE(everySessionEnds());
    dialogs.chooseFile(std::nullopt);
    workspace->exportSession(*session);
    EXPECT_FALSE(workspace->toast());

    const FilePath file = project.child("saved.txt");
    dialogs.chooseFile(file);
    workspace->exportSession(*session);
    EXPECT_EQ(dialogs.savePanels().last().proposedName, QStringLiteral("Orvo-Codex-session.txt"));
    EXPECT_EQ(toast(), QStringLiteral("Exported saved.txt."));
    QFile saved(file.display());
    ASSERT_TRUE(saved.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(saved.readAll()), QStringLiteral("grüße 🛰"));

    dialogs.chooseFile(project.child("no such folder").child("x.txt"));
    workspace->exportSession(*session);
    EXPECT_TRUE(toast().contains(QStringLiteral("No such file or directory"))) << qPrintable(toast());
}

TEST_F(Sessions, AnExportNameIsOneFileName) {
    const QString title = QStringLiteral("a/b\nc") + QString::fromUtf8("🛰").repeated(100);
    const auto session =
        workspace->startSession(QStringLiteral("codex"), title, QStringLiteral("exit 0"), project);
    EXPECT_TRUE(everySessionEnds());
    dialogs.chooseFile(std::nullopt);
    workspace->exportSession(*session);
    const QString name = dialogs.savePanels().last().proposedName;
    EXPECT_TRUE(name.startsWith(QStringLiteral("Orvo-a-b-c🛰"))) << qPrintable(name);
    EXPECT_TRUE(name.endsWith(QStringLiteral("🛰-session.txt"))) << qPrintable(name);
    EXPECT_LE(name.toUtf8().size(), 255);
}

}  // namespace
}  // namespace orvo
