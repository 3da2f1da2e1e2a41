#pragma once

#include <QPointer>
#include <QWidget>

class QBoxLayout;
class QComboBox;
class QScrollArea;

namespace orvo {

class CopyCard;
class CopyReview;
class ElidedLabel;
class Launcher;
class OrvoButton;
class OutputSheet;
class ReviewPanel;
class TeamRuns;
class Workspace;
struct RunCopy;
struct TeamRun;

/// The recorded runs: one card per assistant's copy, and the review of one of them.
class TeamRunsView final : public QWidget {
    Q_OBJECT

public:
    /// The references outlive the page.
    TeamRunsView(TeamRuns& teamRuns, Workspace& workspace, Launcher& launcher, QWidget* parent = nullptr);
    ~TeamRunsView() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* makeRunRow();
    QWidget* makeCards();
    /// The run on the page: the selected one, else the newest.
    std::optional<TeamRun> shownRun() const;
    void refreshUnfinished();
    void refreshRuns();
    void refreshPicker();
    void refreshCards();
    void refreshCardStates();
    void refreshReviewed();
    void compare();
    void showOutput(const RunCopy& copy);

    TeamRuns& m_teamRuns;
    Workspace& m_workspace;
    Launcher& m_launcher;
    CopyReview* m_review;
    QBoxLayout* m_unfinished = nullptr;
    QWidget* m_empty = nullptr;
    QWidget* m_content = nullptr;
    QComboBox* m_picker = nullptr;
    OrvoButton* m_compare = nullptr;
    QScrollArea* m_cardArea = nullptr;
    QBoxLayout* m_cardRow = nullptr;
    QList<CopyCard*> m_cards;
    ReviewPanel* m_panel = nullptr;
    ElidedLabel* m_message = nullptr;
    QPointer<OutputSheet> m_outputSheet;
};

}  // namespace orvo
