#pragma once

#include "appearance/controls/Card.h"

#include <QList>

class QVBoxLayout;

namespace orvo {

class ComputerPlanner;
class Symbol;

/// A drafted plan as the person reviews it: what it does, and its steps with a mark on those that have been
/// carried out. Hidden while there is no plan. The planner outlives it.
class PlanCard final : public Card {
    Q_OBJECT

public:
    explicit PlanCard(const ComputerPlanner& planner, QWidget* parent = nullptr);

private:
    void refreshPlan();
    void refreshMarks();

    const ComputerPlanner& m_planner;
    QVBoxLayout* m_rows;
    QList<Symbol*> m_marks;
};

}  // namespace orvo
