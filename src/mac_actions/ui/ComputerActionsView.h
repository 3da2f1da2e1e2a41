#pragma once

#include <QWidget>

#include <functional>

namespace orvo {

class OrvoButton;
class Paragraph;
class TaskEditor;
class TextLabel;
class Theme;
class Workspace;
class WorkspaceMacActions;

/// The Mac actions page: a request, the plan that an assistant drafts for it, and its steps, run one at a
/// time; below them the tools for working by hand. The references outlive the page.
class ComputerActionsView final : public QWidget {
    Q_OBJECT

public:
    /// What the desktop companion has taken down last; empty when there is nothing.
    using VoiceDraft = std::function<QString()>;

    ComputerActionsView(WorkspaceMacActions& actions, Workspace& workspace, const Theme& theme,
                        VoiceDraft voiceDraft, QWidget* parent = nullptr);

private:
    QWidget* makeRequest();
    QWidget* makeRequestButtons();
    QWidget* makePlanButtons();
    QWidget* makeUtilities(const Theme& theme);
    void refreshTask();
    void refreshPlanning();
    void refreshExecution();
    void refreshMessage();
    void useVoiceDraft();

    WorkspaceMacActions& m_actions;
    Workspace& m_workspace;
    const VoiceDraft m_voiceDraft;
    TaskEditor* m_task = nullptr;
    OrvoButton* m_stopPlanning = nullptr;
    OrvoButton* m_makePlan = nullptr;
    OrvoButton* m_runNext = nullptr;
    OrvoButton* m_stopTyping = nullptr;
    OrvoButton* m_output = nullptr;
    TextLabel* m_typed = nullptr;
    Paragraph* m_message = nullptr;
};

}  // namespace orvo
