#pragma once

#include "platform/FilePath.h"

#include <QString>
#include <QUuid>

#include <functional>
#include <memory>
#include <optional>

namespace orvo {

class TerminalSession;

/// What Mac actions need of the program around them. Main thread only.
class MacActionsHost {
public:
    virtual ~MacActionsHost() = default;

    /// The program of an installed connector.
    virtual std::optional<FilePath> executable(const QString& providerID) const = 0;
    /// Starts any command as a listed session; `onFinish` is called once, when it has ended.
    virtual std::shared_ptr<TerminalSession> startSession(const QString& provider, const QString& title,
                                                          const QString& command, const FilePath& directory,
                                                          std::function<void(TerminalSession&)> onFinish) = 0;
    virtual void showMacActions() = 0;
    /// Shows one session alone.
    virtual void focusSession(const QUuid& id) = 0;
    virtual void notify(const QString& message) = 0;
};

}  // namespace orvo
