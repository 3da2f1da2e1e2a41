#pragma once

#include "mac_actions/ComputerPlan.h"
#include "platform/FilePath.h"

#include <QObject>

#include <memory>
#include <optional>

namespace orvo {

class Clock;
class DesktopControl;
class Dialogs;
class MacActionsHost;
class TerminalSession;
struct InstalledApplication;
struct RunningApplication;

/// What a planner is built from. All of it outlives the planner.
struct ComputerPlannerServices {
    MacActionsHost& host;
    DesktopControl& desktop;
    Dialogs& dialogs;
    Clock& clock;
    /// Each planning run gets a folder of its own in here.
    FilePath plans;
};

/// Lets an assistant draft an action plan in a visible, read-only session, and carries the reviewed plan out,
/// one confirmed step at a time. Input reaches another application in one way only: the plan is validated
/// again, the person has confirmed the very step, keyboard input is permitted, and the target is in front.
/// Main thread only.
class ComputerPlanner : public QObject {
    Q_OBJECT

public:
    explicit ComputerPlanner(const ComputerPlannerServices& services, QObject* parent = nullptr);
    ~ComputerPlanner() override;

    /// The person's request as typed.
    const QString& task() const { return m_task; }
    const std::optional<ComputerPlan>& plan() const { return m_plan; }
    bool planning() const { return m_planning; }
    /// A step is being carried out.
    bool executing() const { return m_executing; }
    /// Steps of the plan carried out so far; the index of the next one.
    int completed() const { return m_completed; }
    /// The status line below the plan.
    const QString& message() const { return m_message; }
    /// Of the line that is being typed, the UTF-16 units sent so far; 0 otherwise.
    qsizetype typed() const { return m_typed; }
    /// The latest planning session while it is listed; null otherwise.
    std::shared_ptr<TerminalSession> session() const { return m_session.lock(); }
    /// Whether keyboard input to other applications was possible when that was last asked.
    bool accessibility() const;
    /// What to do when it is not; may be empty.
    QString accessibilityHint() const;

    void setTask(const QString& task);
    /// Has a plan drafted for the task, unless that or a step is under way.
    void prepare();
    void stopPlanning();
    void showPlannerOutput();
    /// Carries out the next step, after the person has confirmed it.
    void runNext();
    /// Ends a long line of typing where it is. The step stays the next one.
    void stopTyping();

    void refreshPermissions();
    void openAccessibility();
    void openScreenPermission();

Q_SIGNALS:
    void taskChanged();
    void planChanged();
    void planningChanged();
    void executingChanged();
    void completedChanged();
    void messageChanged();
    void typedChanged();
    void sessionChanged();
    void accessibilityChanged();

private:
    Result<FilePath> makePlanFolder() const;
    QString planCommand(const FilePath& codex, const FilePath& folder) const;
    void planningFinished(const TerminalSession& session, const FilePath& file);

    bool confirm(const ComputerStep& step);
    void openTarget(const ComputerStep& step, const InstalledApplication& application);
    void act(const ComputerStep& step, const RunningApplication& application);
    void send(const ComputerStep& step, const RunningApplication& application);
    /// Ends a step: carried out, or why not.
    void finish(const Result<void>& outcome);

    void setPlan(std::optional<ComputerPlan> plan);
    void setPlanning(bool planning);
    void setExecuting(bool executing);
    void setCompleted(int completed);
    void setMessage(const QString& message);
    void setTyped(qsizetype typed);

    const ComputerPlannerServices m_services;
    QString m_task;
    std::optional<ComputerPlan> m_plan;
    bool m_planning = false;
    bool m_executing = false;
    int m_completed = 0;
    QString m_message;
    qsizetype m_typed = 0;
    std::weak_ptr<TerminalSession> m_session;
    /// Nothing until somebody asks.
    mutable std::optional<bool> m_accessibility;
};

}  // namespace orvo
