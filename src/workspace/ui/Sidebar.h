#pragma once

#include <QHash>
#include <QWidget>

class QVBoxLayout;

namespace orvo {

class NavRow;
class Workspace;
enum class Destination;

/// Brand, navigation, recent projects and the button that opens another. The workspace outlives it.
class Sidebar : public QWidget {
    Q_OBJECT

public:
    explicit Sidebar(Workspace& workspace, QWidget* parent = nullptr);

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* makeBrand();
    QWidget* makeNavigation();
    QWidget* makeRecentProjects();
    QWidget* makeFooter();
    void refreshNavigation();
    void refreshWanted();
    void refreshRecentProjects();

    Workspace& m_workspace;
    QHash<Destination, NavRow*> m_rows;
    QVBoxLayout* m_recentRows = nullptr;
};

}  // namespace orvo
