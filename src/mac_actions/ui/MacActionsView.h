#pragma once

#include <QWidget>

namespace orvo {

class CodeEditor;
class TextLabel;
class Theme;
class Workspace;
class WorkspaceMacActions;

/// Tools for working by hand: applications, the project folder, a terminal, permissions, an AppleScript
/// console. The references outlive it.
class MacActionsView final : public QWidget {
    Q_OBJECT

public:
    MacActionsView(WorkspaceMacActions& actions, Workspace& workspace, const Theme& theme,
                   QWidget* parent = nullptr);

private:
    QWidget* makeTools();
    QWidget* makePermissions();
    QWidget* makeConsole();
    void refreshPermission();

    WorkspaceMacActions& m_actions;
    Workspace& m_workspace;
    const Theme& m_theme;
    TextLabel* m_permission = nullptr;
    CodeEditor* m_script = nullptr;
};

}  // namespace orvo
