#include "workspace/RecordingTeamRuns.h"
#include "workspace/WorkspaceTestCase.h"

#include <QDir>

namespace orvo {
namespace {

class Dispatch : public test::WorkspaceTestCase {
protected:
    Dispatch() {
        install("claude");
        install("codex");
        makeWorkspace();
        workspace->openFolderForThisRun(project);
    }
    void select(std::initializer_list<const char*> ids) {
        QSet<QString> selection;
        for (const char* const id : ids)
            selection.insert(QString::fromUtf8(id));
        workspace->setSelectedProviders(selection);
    }
    void send(const QString& task) {
        workspace->setPrompt(task);
        workspace->dispatchPrompt();
    }
    void setTemplate(const char* id, const char* launchCommand) {
        Provider provider = workspace->assistants().provider(QString::fromUtf8(id));
        provider.template_ = QString::fromUtf8(launchCommand);
        workspace->assistants().saveProvider(provider);
    }
};

TEST_F(Dispatch, EachSelectedAssistantWorksOnTheTaskInTheProject) {
    const QString task = QStringLiteral("say \"it's\"\n$(touch hacked) {prompt}");
    send(QStringLiteral(" \n\t") + task + QStringLiteral("\n "));
    EXPECT_EQ(toast(), QStringLiteral("Task sent to 2 assistants."));
    EXPECT_EQ(workspace->prompt(), QString());
    ASSERT_EQ(workspace->sessions().size(), 2u);
    EXPECT_EQ(workspace->activeSession(), workspace->sessions().back());
    EXPECT_TRUE(everySessionEnds());

    const TerminalSession& claude = *workspace->sessions()[0];
    const TerminalSession& codex = *workspace->sessions()[1];
    EXPECT_EQ(claude.providerID(), QStringLiteral("claude"));
    EXPECT_EQ(codex.providerID(), QStringLiteral("codex"));
    for (const TerminalSession* const session : {&claude, &codex}) {
        EXPECT_EQ(session->exitCode(), 0);
        EXPECT_EQ(session->directory(), project);
        EXPECT_EQ(session->title(), task);
        EXPECT_TRUE(textOf(*session).contains(task)) << qPrintable(textOf(*session));
        EXPECT_TRUE(textOf(*session).contains(QStringLiteral("The answer was y.")))
            << qPrintable(textOf(*session));
    }
    EXPECT_TRUE(QDir(project.display()).isEmpty());
}

TEST_F(Dispatch, ABlankTaskDoesNothing) {
    for (const char* const blank : {"", " \n\t\r\n "}) {
        send(QString::fromUtf8(blank));
        EXPECT_FALSE(workspace->toast());
        EXPECT_TRUE(workspace->sessions().empty());
    }
}

TEST_F(Dispatch, WithoutAProjectThePersonIsAskedForOne) {
    makeWorkspace();
    dialogs.chooseFolder(std::nullopt);
    send(QStringLiteral("task"));
    EXPECT_TRUE(workspace->sessions().empty());
    EXPECT_EQ(workspace->prompt(), QStringLiteral("task"));

    dialogs.chooseFolder(project);
    send(QStringLiteral("task"));
    EXPECT_EQ(workspace->sessions().size(), 2u);
    EXPECT_TRUE(everySessionEnds());
}

TEST_F(Dispatch, AssistantsThatAreNotReadyAndTheShellAreNoTargets) {
    select({"claude", "zai", "kimi", "shell"});
    send(QStringLiteral("task"));
    EXPECT_EQ(toast(), QStringLiteral("Task sent to 1 assistant."));
    EXPECT_EQ(runningCommands(), QStringList(QStringLiteral("claude 'task'")));

    select({"shell", "zai"});
    send(QStringLiteral("task"));
    EXPECT_EQ(toast(), QStringLiteral("Select at least one installed assistant."));
    EXPECT_EQ(workspace->prompt(), QStringLiteral("task"));
    EXPECT_EQ(workspace->sessions().size(), 1u);
    EXPECT_TRUE(everySessionEnds());
}

TEST_F(Dispatch, OneTargetThatCannotTakeTheTaskHoldsBackAll) {
    const struct {
        const char* launchCommand;
        const char* notice;
    } cases[] = {
        {"codex", "Add {prompt} to Codex’s launch command to receive tasks."},
        {"codex '{prompt}'",
         "Place {prompt} outside quotes and without a backslash. Orvo supplies the quotes."},
        {"codex \"", "Close the quotation mark in this command."},
    };
    for (const auto& c : cases) {
        setTemplate("codex", c.launchCommand);
        send(QStringLiteral("task"));
        EXPECT_EQ(toast(), QString::fromUtf8(c.notice));
        EXPECT_EQ(workspace->prompt(), QStringLiteral("task"));
        EXPECT_TRUE(workspace->sessions().empty());
    }
}

TEST_F(Dispatch, ATaskTooLongForOneArgumentStartsNothing) {
    select({"claude"});
    // Four bytes for each apostrophe: below the limit as typed, above it as quoted.
    send(QString(40'000, u'\''));
    EXPECT_TRUE(toast().contains(QStringLiteral("too long"))) << qPrintable(toast());
    EXPECT_TRUE(workspace->sessions().empty());
    EXPECT_EQ(workspace->prompt().size(), 40'000);

    send(QStringLiteral("a") + QChar(u'\0') + QStringLiteral("b"));
    EXPECT_TRUE(workspace->sessions().empty());

    send(QString(120'000, u'x'));
    EXPECT_EQ(workspace->sessions().size(), 1u);
    EXPECT_TRUE(everySessionEnds());
    EXPECT_EQ(workspace->sessions().front()->exitCode(), 0);
}

TEST_F(Dispatch, ATitleIsTheFirstFiftyTwoCharacters) {
    const QString family = QString::fromUtf8("👩‍👩‍👧");
    workspace->launch(workspace->assistants().provider(QStringLiteral("claude")), family.repeated(100));
    EXPECT_EQ(workspace->sessions().back()->title(), family.repeated(52));
    workspace->launch(workspace->assistants().provider(QStringLiteral("claude")), QString());
    EXPECT_EQ(workspace->sessions().back()->title(), QStringLiteral("Claude Code session"));
    EXPECT_TRUE(everySessionEnds());
}

TEST_F(Dispatch, SeparateCopiesWithNobodyBehindThemKeepTheTask) {
    workspace->setSeparateCopies(true);
    send(QStringLiteral("task"));
    EXPECT_EQ(toast(), QStringLiteral(
                           "Separate copies are not available yet. Choose Shared folder to run this task."));
    EXPECT_EQ(workspace->prompt(), QStringLiteral("task"));
    EXPECT_TRUE(workspace->sessions().empty());
}

TEST_F(Dispatch, SeparateCopiesHandTheTrimmedTaskOver) {
    test::RecordingTeamRuns teamRuns;
    workspace->setTeamRuns(&teamRuns);
    workspace->setSeparateCopies(true);
    send(QStringLiteral("  task\n"));
    EXPECT_EQ(teamRuns.tasks, QStringList(QStringLiteral("task")));
    EXPECT_EQ(teamRuns.ids.join(u' '), QStringLiteral("claude codex"));
    EXPECT_EQ(teamRuns.projects, QList<FilePath>{project});
    EXPECT_EQ(workspace->prompt(), QStringLiteral("  task\n"));
    EXPECT_TRUE(workspace->preparingRun());
    workspace->cancelPreparation();
    EXPECT_FALSE(workspace->preparingRun());
    EXPECT_TRUE(workspace->sessions().empty());
    workspace->setTeamRuns(nullptr);
}

TEST_F(Dispatch, LaunchingWhatIsNotReadyOpensItsEditor) {
    const Provider zai = workspace->assistants().provider(QStringLiteral("zai"));
    workspace->launch(zai, QString());
    EXPECT_TRUE(workspace->presentConnector());
    EXPECT_EQ(workspace->editingProvider(), zai);
    workspace->dismissConnector();
    EXPECT_FALSE(workspace->presentConnector());
    EXPECT_TRUE(workspace->sessions().empty());
}

TEST_F(Dispatch, SigningInAndResumingRunTheInstalledProgram) {
    install("exit-with", "kimi");
    install("exit-with", "agy");
    const QString bin = u'\'' + home.display() + QStringLiteral("/.local/bin/");
    const auto provider = [&](const char* id) {
        return workspace->assistants().provider(QString::fromUtf8(id));
    };

    for (const char* const id : {"claude", "codex", "kimi", "antigravity"})
        workspace->signIn(provider(id));
    for (const char* const id : {"claude", "codex", "kimi", "antigravity", "shell"})
        workspace->resume(provider(id));
    EXPECT_EQ(
        runningCommands(),
        (QStringList{bin + QStringLiteral("claude' auth login"), bin + QStringLiteral("codex' login"),
                     bin + QStringLiteral("kimi' login"), QStringLiteral("agy"),
                     bin + QStringLiteral("claude' --continue"),
                     bin + QStringLiteral("codex' resume --last --sandbox workspace-write"),
                     bin + QStringLiteral("kimi' --continue"), bin + QStringLiteral("agy' --continue")}));
    EXPECT_EQ(workspace->sessions().front()->title(), QStringLiteral("Sign in · Claude Code"));
    EXPECT_EQ(workspace->sessions().back()->title(), QStringLiteral("Resume · Antigravity"));
    EXPECT_TRUE(everySessionEnds());
}

TEST_F(Dispatch, SigningInWorksWithoutAProjectAndOpensTheEditorWhenNotInstalled) {
    makeWorkspace();
    workspace->signIn(workspace->assistants().provider(QStringLiteral("codex")));
    ASSERT_EQ(workspace->sessions().size(), 1u);
    EXPECT_EQ(workspace->sessions().front()->directory(), home);
    workspace->signIn(workspace->assistants().provider(QStringLiteral("kimi")));
    EXPECT_EQ(workspace->editingProvider()->id, QStringLiteral("kimi"));
    EXPECT_TRUE(everySessionEnds());
}

TEST_F(Dispatch, AProgramThatVanishedSinceDiscoverySaysSoOnItsScreen) {
    // A name that no machine has in its own folders.
    const QString name = QStringLiteral("orvo-lighthouse");
    install("claude", "orvo-lighthouse");
    Provider provider = workspace->assistants().provider(QStringLiteral("claude"));
    provider.executable = name;
    provider.template_ = name + QStringLiteral(" {prompt}");
    workspace->assistants().saveProvider(provider);
    QFile::remove(home.display() + QStringLiteral("/.local/bin/") + name);
    select({"claude"});
    send(QStringLiteral("task"));
    ASSERT_EQ(workspace->sessions().size(), 1u);
    EXPECT_TRUE(everySessionEnds());
    EXPECT_EQ(workspace->sessions().front()->exitCode(), 127);
    EXPECT_TRUE(
        textOf(*workspace->sessions().front()).contains(QStringLiteral("command not found: ") + name));
}

}  // namespace
}  // namespace orvo
