#pragma once

#include <QWidget>

namespace orvo {

/// How the edge of a card is drawn: as ever, 1 in accent (it is being written in), 2 in accent (it is
/// chosen).
enum class CardFrame { Plain, Active, Selected };

/// A raised area: surface fill, a border, round corners. Fields within it are wells. Holds whatever layout it
/// is given.
class Card : public QWidget {
    Q_OBJECT

public:
    explicit Card(QWidget* parent = nullptr) : QWidget(parent) {}

    void setFrame(CardFrame frame);
    static constexpr double radius = 12;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    CardFrame m_frame = CardFrame::Plain;
};

}  // namespace orvo
