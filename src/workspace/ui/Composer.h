#pragma once

#include "appearance/controls/Card.h"

namespace orvo {

class OrvoButton;
class SegmentedControl;
class TaskEditor;
class TextLabel;
class Workspace;

/// Where a task is written and sent.
class Composer : public Card {
    Q_OBJECT

public:
    explicit Composer(Workspace& workspace, QWidget* parent = nullptr);

    /// Puts the keyboard into the task field.
    void focusTask();

private:
    QWidget* makeModeRow();
    QWidget* makeActionRow();
    void refreshMode();
    void refreshPrompt();
    void refreshStatus();
    void refreshSending();

    Workspace& m_workspace;
    SegmentedControl* m_mode = nullptr;
    TaskEditor* m_task = nullptr;
    QWidget* m_noFolder = nullptr;
    TextLabel* m_selected = nullptr;
    OrvoButton* m_cancel = nullptr;
    OrvoButton* m_send = nullptr;
};

}  // namespace orvo
