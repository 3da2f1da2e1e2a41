#pragma once

#include "assistants/Provider.h"
#include "platform/FilePath.h"
#include "workspace/TeamRunHandover.h"

#include <functional>

namespace orvo::test {

/// A team-run engine that keeps what it is given.
class RecordingTeamRuns final : public TeamRunHandover {
public:
    void startTeamRun(const QString& task, const QList<Provider>& providers,
                      const FilePath& project) override {
        tasks.append(task);
        for (const Provider& provider : providers)
            ids.append(provider.id);
        projects.append(project);
        preparing = true;
    }
    void cancelPreparation() override {
        ++cancelled;
        preparing = false;
    }
    bool preparingRun() const override { return preparing; }
    void runSessionFinished(TerminalSession& session) override {
        if (onSessionFinished) onSessionFinished(session);
    }

    QStringList tasks;
    QStringList ids;
    QList<FilePath> projects;
    int cancelled = 0;
    bool preparing = false;
    std::function<void(TerminalSession&)> onSessionFinished;
};

}  // namespace orvo::test
