#pragma once

#include "mac_actions/ComputerPlanner.h"
#include "mac_actions/MacActionsHost.h"
#include "platform/fake/FakeClock.h"
#include "platform/fake/FakeDesktopControl.h"
#include "platform/fake/FakeDialogs.h"
#include "support/WaitFor.h"
#include "terminal/TerminalSession.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <vector>

namespace orvo::test {

/// The program around the planner: real sessions, everything else recorded.
class RecordingMacActionsHost final : public MacActionsHost {
public:
    std::optional<FilePath> executable(const QString& providerID) const override {
        return providerID == u"codex" ? codex : std::nullopt;
    }
    std::shared_ptr<TerminalSession> startSession(const QString& provider, const QString& title,
                                                  const QString& command, const FilePath& directory,
                                                  std::function<void(TerminalSession&)> onFinish) override {
        const auto session = std::make_shared<TerminalSession>(provider, title, command, directory);
        session->onFinish = std::move(onFinish);
        sessions.push_back(session);
        session->start();
        return session;
    }
    void showMacActions() override { ++shown; }
    void focusSession(const QUuid& id) override { focused = id; }
    void notify(const QString& message) override { notices.append(message); }

    std::optional<FilePath> codex;
    std::vector<std::shared_ptr<TerminalSession>> sessions;
    int shown = 0;
    QUuid focused;
    QStringList notices;
};

/// A planner whose assistant is a script: "codex" in a folder of its own.
class PlannerTest : public testing::Test {
protected:
    /// The assistant becomes a shell script that finds its arguments in "$@"; its answer goes to "$answer".
    void installCodex(const QByteArray& body) {
        const QString path = folder.filePath(QStringLiteral("co dex"));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(
            "#!/bin/sh\nprevious=\nfor argument in \"$@\"; do\n"
            "  [ \"$previous\" = --output-last-message ] && answer=$argument\n"
            "  previous=$argument\ndone\n" +
            body);
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        host.codex = FilePath::fromString(path);
    }
    /// The assistant answers with this text and ends well.
    void installAnswer(const QByteArray& answer) {
        QFile file(folder.filePath(QStringLiteral("answer")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(answer);
        installCodex("cp '" + file.fileName().toUtf8() + "' \"$answer\"\n");
    }
    /// Has a plan of these steps drafted.
    void plan(const QList<ComputerStep>& steps) {
        installAnswer(ComputerPlan{QStringLiteral("What I will do"), steps}.toJson());
        planner.setTask(QStringLiteral("Do it"));
        planner.prepare();
        ASSERT_TRUE(waitFor([&] { return !planner.planning(); }));
        ASSERT_TRUE(planner.plan()) << planner.message().toStdString();
        desktop.log.clear();
    }

    QTemporaryDir folder;
    FilePath plans = FilePath::fromString(folder.filePath(QStringLiteral("Orvo AI/Computer plans")));
    RecordingMacActionsHost host;
    FakeDesktopControl desktop;
    FakeDialogs dialogs;
    FakeClock clock;
    ComputerPlanner planner{{host, desktop, dialogs, clock, plans}};
};

}  // namespace orvo::test
