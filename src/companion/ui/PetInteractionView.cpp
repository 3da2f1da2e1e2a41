#include "companion/ui/PetInteractionView.h"

#include "appearance/controls/OrvoStyle.h"

#include <QContextMenuEvent>
#include <QMouseEvent>

namespace orvo {
namespace {

/// A pointer that strays no further than this, in dip, has clicked.
constexpr int clickReach = 3;

}  // namespace

PetInteractionView::PetInteractionView(Actions actions, QWidget* parent)
    : QAbstractButton(parent), m_actions(std::move(actions)) {
    setAccessibleName(tr("Orvo desktop companion. Click for quick draft, drag to move."));
    setToolTip(plainToolTip(tr("Click for a quick draft · Drag to move · Right-click for options")));
    setFocusPolicy(Qt::NoFocus);
    // Only what is no pointer's comes this way: a press by assistive technology.
    connect(this, &QAbstractButton::clicked, this, [this] { m_actions.click(); });
}

void PetInteractionView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    m_startMouse = event->globalPosition().toPoint();
    m_held = true;
    m_moved = false;
    m_actions.hold();
}

void PetInteractionView::mouseMoveEvent(QMouseEvent* event) {
    if (!m_held) return;
    const QPoint way = event->globalPosition().toPoint() - m_startMouse;
    if (way.manhattanLength() > clickReach) m_moved = true;
    m_actions.drag(way);
}

void PetInteractionView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !m_held) return;
    m_held = false;
    if (m_moved) {
        m_actions.drop();
    } else {
        m_actions.click();
    }
}

void PetInteractionView::contextMenuEvent(QContextMenuEvent* event) {
    m_actions.menu(event->globalPos());
}

}  // namespace orvo
