#pragma once

#include "assistants/Provider.h"
#include "platform/FilePath.h"

#include <QString>
#include <QUuid>

#include <functional>
#include <memory>
#include <optional>

namespace orvo {

class TerminalSession;

/// What the team-run engine needs of the program around it. Main thread only.
class TeamRunHost {
public:
    virtual ~TeamRunHost() = default;

    /// Starts any command as a listed session; `beforeStart` sees the session before its process exists.
    virtual std::shared_ptr<TerminalSession> startSession(
        const QString& provider, const QString& title, const QString& command, const FilePath& directory,
        std::function<void(TerminalSession&)> beforeStart = {}) = 0;
    /// The listed session with this id, or null.
    virtual std::shared_ptr<TerminalSession> session(const QUuid& id) const = 0;

    /// The connector with this id; the plain terminal when there is none.
    virtual Provider provider(const QString& id) const = 0;
    virtual bool isReady(const Provider& provider) const = 0;

    /// True when nothing unsaved stands in the editor, or the person agrees to lose it.
    virtual bool confirmDiscard() = 0;
    /// The saved text of the newest finished session that ran in this folder.
    virtual std::optional<QString> historyOutput(const FilePath& directory) const = 0;
    /// Empties the composer if it still holds this task; a newer draft stays.
    virtual void clearPromptIfStill(const QString& task) = 0;
    virtual void notify(const QString& message) = 0;
};

}  // namespace orvo
