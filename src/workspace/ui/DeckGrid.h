#pragma once

#include <QList>
#include <QPointer>
#include <QScrollArea>

namespace orvo {

/// Lays the session panes out as DeckGeometry says, and scrolls when they need more height than there is.
/// Does not own the panes, but becomes the parent of those it shows.
class DeckGrid : public QScrollArea {
    Q_OBJECT

public:
    explicit DeckGrid(QWidget* parent = nullptr);

    /// Shows these panes in this order and hides every other one; each keeps its own state.
    void setPanes(const QList<QWidget*>& panes);
    /// Scrolls so that a shown pane is in view, and keeps it there when the deck gets another size.
    void reveal(QWidget* pane);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void arrange();

    QWidget* m_content;
    QList<QWidget*> m_panes;
    QPointer<QWidget> m_revealed;
};

}  // namespace orvo
