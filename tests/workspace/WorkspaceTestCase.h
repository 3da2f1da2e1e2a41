#pragma once

#include "platform/fake/FakeClock.h"
#include "platform/fake/FakeDialogs.h"
#include "platform/fake/FakeLauncher.h"
#include "platform/fake/FakePreferences.h"
#include "platform/fake/FakeSleepInhibitor.h"
#include "support/WaitFor.h"
#include "workspace/Workspace.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace orvo::test {

/// A workspace over recorded system services, in a home folder of its own, with real sessions.
class WorkspaceTestCase : public testing::Test {
protected:
    WorkspaceTestCase();
    ~WorkspaceTestCase() override;

    enum class Persist { No, Yes };
    Workspace& makeWorkspace(Persist persist = Persist::Yes);

    /// Installs a fake assistant of tests/data/bin under its own or another name.
    void install(const char* script, const char* name = nullptr);
    FilePath makeFolder(const char* name);
    QStringList runningCommands() const;
    /// Text of the screen of a session.
    static QString textOf(const TerminalSession& session);
    /// Answers every session that waits for "y", until all have ended.
    [[nodiscard]] bool everySessionEnds();
    QString toast() const { return workspace->toast().value_or(QString()); }
    std::shared_ptr<TerminalSession> run(const char* command);

    QTemporaryDir root;
    FilePath home;
    FilePath project;
    FakePreferences preferences;
    FakeClock clock;
    FakeDialogs dialogs;
    FakeLauncher launcher;
    FakeSleepInhibitor sleepInhibitor;
    const HistoryInbox* historyInbox = nullptr;
    std::unique_ptr<Workspace> workspace;
};

}  // namespace orvo::test
