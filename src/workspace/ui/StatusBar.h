#pragma once

#include <QWidget>

namespace orvo {

class TextLabel;
class Workspace;

/// The line at the foot of the main column.
class StatusBar : public QWidget {
    Q_OBJECT

public:
    explicit StatusBar(Workspace& workspace, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void refreshReadyCount();

    Workspace& m_workspace;
    TextLabel* m_readyCount;
};

}  // namespace orvo
