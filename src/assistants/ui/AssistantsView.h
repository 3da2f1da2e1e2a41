#pragma once

#include <QWidget>

namespace orvo {

class Launcher;
class OrvoButton;
class Workspace;

/// The Assistants page: every connector with its state and what can be done with it. Both references outlive
/// the page.
class AssistantsView final : public QWidget {
    Q_OBJECT

public:
    AssistantsView(Workspace& workspace, Launcher& launcher, QWidget* parent = nullptr);

private:
    QWidget* makeActions();
    void refreshCheck();

    Workspace& m_workspace;
    OrvoButton* m_check = nullptr;
};

}  // namespace orvo
