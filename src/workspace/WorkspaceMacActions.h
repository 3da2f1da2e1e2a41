#pragma once

#include "mac_actions/ComputerPlanner.h"
#include "mac_actions/MacActionsHost.h"

#include <QObject>

namespace orvo {

class Launcher;
class Workspace;

/// Joins Mac actions to the workspace: what the planner needs of the program around it comes from the
/// workspace, and the tools for working by hand act through both.
class WorkspaceMacActions final : public QObject, private MacActionsHost {
    Q_OBJECT

public:
    /// All references outlive this object. Planning runs are kept in `plans`.
    WorkspaceMacActions(Workspace& workspace, DesktopControl& desktop, Clock& clock, const FilePath& plans,
                        QObject* parent = nullptr);

    ComputerPlanner& planner() { return m_planner; }

    /// Asks for an installed application and starts it. Anything else that is chosen is left alone.
    void openApplication();
    void openTerminal();
    /// Runs an AppleScript as a session in the project folder, for which it asks when there is none.
    void runScript(const QString& script);

private:
    std::optional<FilePath> executable(const QString& providerID) const override;
    std::shared_ptr<TerminalSession> startSession(const QString& provider, const QString& title,
                                                  const QString& command, const FilePath& directory,
                                                  std::function<void(TerminalSession&)> onFinish) override;
    void showMacActions() override;
    void focusSession(const QUuid& id) override;
    void notify(const QString& message) override;

    Workspace& m_workspace;
    DesktopControl& m_desktop;
    ComputerPlanner m_planner;
};

}  // namespace orvo
