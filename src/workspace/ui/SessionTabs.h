#pragma once

#include <QHash>
#include <QScrollArea>
#include <QUuid>

class QHBoxLayout;

namespace orvo {

class SessionTab;
class Workspace;

/// A tab for each session, in their order. The tabs shrink to fit; when they cannot any more, the row scrolls
/// sideways, with an ordinary wheel too. The workspace outlives it.
class SessionTabs : public QScrollArea {
    Q_OBJECT

public:
    explicit SessionTabs(Workspace& workspace, QWidget* parent = nullptr);

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    /// The person chose this session.
    void chosen(const QUuid& id);

protected:
    void wheelEvent(QWheelEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void rebuild();
    void refreshTabs();
    void fitTabs();
    void refreshActive();
    void refreshMark(SessionTab& tab, const QUuid& id) const;

    Workspace& m_workspace;
    QHBoxLayout* m_row;
    QHash<QUuid, SessionTab*> m_tabs;
};

}  // namespace orvo
