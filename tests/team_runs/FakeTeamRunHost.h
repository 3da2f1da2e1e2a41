#pragma once

#include "team_runs/TeamRunHost.h"
#include "team_runs/TeamRuns.h"
#include "terminal/TerminalSession.h"

#include <QMap>
#include <QStringList>

#include <vector>

namespace orvo::test {

/// A connector whose command is a shell line; the task is its first argument.
inline Provider connector(const char* id, const char* line) {
    Provider provider;
    provider.id = QString::fromUtf8(id);
    provider.name = provider.id.toUpper();
    provider.executable = QStringLiteral("/bin/sh");
    provider.template_ =
        QStringLiteral("/bin/sh -c ") + shellQuote(QString::fromUtf8(line)) + QStringLiteral(" sh {prompt}");
    return provider;
}

/// The program around the engine: real sessions, everything else recorded. As a program does, it tells the
/// engine of every session that has ended.
class FakeTeamRunHost final : public TeamRunHost {
public:
    enum class Launch { Real, Never };

    explicit FakeTeamRunHost(Launch launch = Launch::Real) : m_launch(launch) {}

    std::shared_ptr<TerminalSession> startSession(
        const QString& provider, const QString& title, const QString& command, const FilePath& directory,
        std::function<void(TerminalSession&)> beforeStart) override {
        const auto session = std::make_shared<TerminalSession>(provider, title, command, directory);
        session->onFinish = [this](TerminalSession& ended) {
            ++finished;
            if (engine) engine->runSessionFinished(ended);
        };
        sessions.push_back(session);
        if (beforeStart) beforeStart(*session);
        if (m_launch == Launch::Real) session->start();
        return session;
    }
    std::shared_ptr<TerminalSession> session(const QUuid& id) const override {
        for (const auto& session : sessions) {
            if (session->id() == id) return session;
        }
        return nullptr;
    }
    Provider provider(const QString& id) const override {
        for (const Provider& provider : providers) {
            if (provider.id == id) return provider;
        }
        return Provider::defaults().back();
    }
    bool isReady(const Provider& provider) const override { return ready.contains(provider.id); }
    bool confirmDiscard() override {
        ++questions;
        return agrees;
    }
    std::optional<QString> historyOutput(const FilePath& directory) const override {
        const auto found = history.find(directory.bytes());
        if (found == history.end()) return std::nullopt;
        return *found;
    }
    void clearPromptIfStill(const QString& task) override {
        if (prompt.trimmed() == task) prompt.clear();
    }
    void notify(const QString& message) override { notices.append(message); }

    TeamRuns* engine = nullptr;
    std::vector<std::shared_ptr<TerminalSession>> sessions;
    QList<Provider> providers;
    QStringList ready;
    QMap<QByteArray, QString> history;
    QString prompt;
    QStringList notices;
    bool agrees = true;
    int questions = 0;
    int finished = 0;

private:
    Launch m_launch;
};

}  // namespace orvo::test
