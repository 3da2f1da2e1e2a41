#pragma once

#include <QWidget>

class QStackedWidget;

namespace orvo {

class Launcher;
class Theme;
class Workspace;

/// The Workspace page: the welcome page, or the deck once there are sessions; the inspector beside it and the
/// composer below it. All models outlive it.
class WorkspaceView : public QWidget {
    Q_OBJECT

public:
    WorkspaceView(Workspace& workspace, Theme& theme, Launcher& launcher, QWidget* parent = nullptr);

private:
    void refreshCentre();

    Workspace& m_workspace;
    QStackedWidget* m_centre;
    QWidget* m_welcome = nullptr;
    QWidget* m_deck = nullptr;
};

}  // namespace orvo
