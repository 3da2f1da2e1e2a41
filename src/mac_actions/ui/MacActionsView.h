#pragma once

#include <QWidget>

class QPlainTextEdit;

namespace orvo {

class OrvoButton;
class TextLabel;
class Workspace;
class WorkspaceMacActions;

/// Tools for working by hand: applications, the project folder, a terminal, permissions, an AppleScript
/// console. The references outlive it.
class MacActionsView final : public QWidget {
    Q_OBJECT

public:
    MacActionsView(WorkspaceMacActions& actions, Workspace& workspace, QWidget* parent = nullptr);

private:
    QWidget* makeTools();
    QWidget* makePermissions();
    QWidget* makeConsole();
    void refreshPermission();

    WorkspaceMacActions& m_actions;
    Workspace& m_workspace;
    TextLabel* m_permission = nullptr;
    QPlainTextEdit* m_script = nullptr;
};

}  // namespace orvo
