#pragma once

#include "assistants/Provider.h"
#include "platform/FilePath.h"

namespace orvo {

class TerminalSession;

/// What the hub calls when a task goes to separate copies. Implemented by the team-run engine.
class TeamRunHandover {
public:
    virtual ~TeamRunHandover() = default;

    virtual void startTeamRun(const QString& task, const QList<Provider>& providers,
                              const FilePath& project) = 0;
    virtual void cancelPreparation() = 0;
    virtual bool preparingRun() const = 0;
    /// How far the copies have come, for the person; empty while there is nothing to say.
    virtual QString preparationStatus() const { return {}; }
    /// Why this session must stay for now; empty when it may be closed.
    virtual QString reasonToKeep(const TerminalSession&) const { return {}; }
    virtual void runSessionFinished(TerminalSession& session) = 0;
};

}  // namespace orvo
