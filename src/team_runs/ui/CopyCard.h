#pragma once

#include "appearance/controls/Card.h"
#include "team_runs/TeamRun.h"

namespace orvo {

class CopyReview;
class ElidedLabel;
class Launcher;
class OrvoButton;
class Spinner;
class Symbol;
class TeamRuns;
class Workspace;

/// One assistant's copy in a run: who, how it stands, and what can be looked at.
class CopyCard final : public Card {
    Q_OBJECT

public:
    static constexpr int cardWidth = 336;

    CopyCard(const RunCopy& copy, const TeamRuns& teamRuns, Workspace& workspace, Launcher& launcher,
             QWidget* parent = nullptr);

    const RunCopy& copy() const { return m_copy; }
    /// The record or the session may have another state now.
    void refresh(const RunCopy& copy);

Q_SIGNALS:
    void reviewRequested();
    void outputRequested();

private:
    QWidget* makeActions();
    void openFolder();

    RunCopy m_copy;
    const TeamRuns& m_teamRuns;
    Workspace& m_workspace;
    Launcher& m_launcher;
    ElidedLabel* m_state;
    Spinner* m_working;
    Symbol* m_finished;
    Symbol* m_failed;
};

}  // namespace orvo
