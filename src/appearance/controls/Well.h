#pragma once

#include <QWidget>

namespace orvo {

/// The ground on which texts are read or written inside a card.
class Well final : public QWidget {
    Q_OBJECT

public:
    /// `Boxed` has a border and round corners of its own; `Bare` fills what it is given,
    /// `CardCorner` too, but for the lower right corner of the card that it stands in.
    enum class Edge { Boxed, Bare, CardCorner };

    explicit Well(Edge edge = Edge::Boxed, QWidget* parent = nullptr) : QWidget(parent), m_edge(edge) {}

    /// Something in it has the keyboard, and shows it by the well's edge.
    void setFocused(bool focused);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Edge m_edge;
    bool m_focused = false;
};

}  // namespace orvo
