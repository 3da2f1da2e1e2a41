#include "workspace/ui/DeckGrid.h"

#include "workspace/ui/DeckGeometry.h"

namespace orvo {

DeckGrid::DeckGrid(QWidget* parent) : QScrollArea(parent), m_content(new QWidget) {
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);
    m_content->setAutoFillBackground(false);
    setWidget(m_content);
}

void DeckGrid::setPanes(const QList<QWidget*>& panes) {
    for (QObject* const child : m_content->children()) {
        QWidget* const pane = qobject_cast<QWidget*>(child);
        if (pane && !panes.contains(pane)) pane->hide();
    }
    m_panes = panes;
    for (QWidget* const pane : panes) {
        if (pane->parentWidget() != m_content) pane->setParent(m_content);
    }
    // Placed before they are shown, so that no session is resized for a size that it never has on screen.
    arrange();
    QWidget* before = nullptr;
    for (QWidget* const pane : panes) {
        pane->show();
        if (before) QWidget::setTabOrder(before, pane);
        before = pane;
    }
}

void DeckGrid::reveal(QWidget* pane) {
    m_revealed = pane;
    if (m_panes.contains(pane)) ensureWidgetVisible(pane, 0, 0);
}

void DeckGrid::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    arrange();
    reveal(m_revealed);
}

void DeckGrid::arrange() {
    const DeckGeometry geometry = DeckGeometry::grid(static_cast<int>(m_panes.size()), viewport()->size());
    m_content->resize(viewport()->width(), std::max(geometry.height, viewport()->height()));
    for (qsizetype i = 0; i < m_panes.size(); ++i)
        m_panes[i]->setGeometry(geometry.panes[i]);
}

}  // namespace orvo
