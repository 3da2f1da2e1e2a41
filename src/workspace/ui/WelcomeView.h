#pragma once

#include <QWidget>

namespace orvo {

class Launcher;
class Workspace;

/// What the Workspace page shows while there is no session: greeting, three ideas, the connected tools.
class WelcomeView : public QWidget {
    Q_OBJECT

public:
    WelcomeView(Workspace& workspace, Launcher& launcher, QWidget* parent = nullptr);

private:
    QWidget* makeIdeas();
    QWidget* makeTools();

    Workspace& m_workspace;
    Launcher& m_launcher;
};

}  // namespace orvo
