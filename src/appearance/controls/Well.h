#pragma once

#include <QWidget>

namespace orvo {

/// The ground on which texts are read or written inside a card.
class Well final : public QWidget {
    Q_OBJECT

public:
    /// `Boxed` has a border and round corners of its own; `Bare` fills what it is given.
    enum class Edge { Boxed, Bare };

    explicit Well(Edge edge = Edge::Boxed, QWidget* parent = nullptr) : QWidget(parent), m_edge(edge) {}

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Edge m_edge;
};

}  // namespace orvo
