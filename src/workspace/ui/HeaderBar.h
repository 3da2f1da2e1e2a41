#pragma once

#include <QWidget>

namespace orvo {

class ElidedLabel;
class TextLabel;
class Workspace;

/// Where one is: the page's title and the project's name; at the right the refresh button.
class HeaderBar : public QWidget {
    Q_OBJECT

public:
    explicit HeaderBar(Workspace& workspace, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void refreshTitle();
    void refreshFolder();

    Workspace& m_workspace;
    TextLabel* m_title;
    ElidedLabel* m_folder;
};

}  // namespace orvo
