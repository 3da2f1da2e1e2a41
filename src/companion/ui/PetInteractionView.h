#pragma once

#include <QAbstractButton>
#include <QPoint>

#include <functional>

namespace orvo {

/// The clear layer over the pet that takes the pointer: a click, a drag of the window, the context menu. To
/// assistive technology it is a button.
class PetInteractionView final : public QAbstractButton {
    Q_OBJECT

public:
    /// What the pointer does to the pet. Each is called on the main thread.
    struct Actions {
        std::function<void()> click;
        /// The pointer is held down on the pet; a drag may follow.
        std::function<void()> hold;
        /// The pet belongs this far from where it was held, in dip, y downward.
        std::function<void(QPoint)> drag;
        /// A drag has ended.
        std::function<void()> drop;
        /// At a point of the screen.
        std::function<void(QPoint)> menu;
    };

    explicit PetInteractionView(Actions actions, QWidget* parent = nullptr);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    /// The layer is clear.
    void paintEvent(QPaintEvent*) override {}

private:
    const Actions m_actions;
    QPoint m_startMouse;
    bool m_held = false;
    bool m_moved = false;
};

}  // namespace orvo
