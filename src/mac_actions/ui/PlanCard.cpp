#include "mac_actions/ui/PlanCard.h"

#include "appearance/controls/Divider.h"
#include "appearance/controls/ElidedLabel.h"
#include "appearance/controls/SelectableText.h"
#include "appearance/controls/Symbol.h"
#include "appearance/controls/layouts.h"
#include "mac_actions/ComputerPlanner.h"
#include "mac_actions/visibleText.h"
#include "platform/observe.h"

namespace orvo {
namespace {

constexpr int padding = 16;
constexpr int rowPadding = 12;
constexpr int markSize = 18;
constexpr int gap = 12;
constexpr int smallLine = 10;

/// Like everything that will be sent, shown with what is invisible in it.
QWidget* makeStep(int number, const ComputerStep& step, Symbol* mark) {
    auto* const host = new QWidget;
    auto* const row = rowIn(host, gap, QMargins(padding, rowPadding, padding, rowPadding));
    row->addWidget(mark, 0, Qt::AlignTop);
    auto* const lines = columnIn(nullptr, 2);
    auto* const title =
        new SelectableText(QStringLiteral("%1. %2").arg(number).arg(visibleText(step.title)), TypeRole::Name);
    lines->addWidget(title);
    auto* const target = new ElidedLabel(visibleText(step.app) + QStringLiteral(" · ") + step.action,
                                         TypeRole::Caption, Ink::Muted);
    QFont small = target->font();
    small.setPixelSize(smallLine);
    target->setFont(small);
    lines->addWidget(target);
    if (!step.value.isEmpty()) {
        auto* const value = new SelectableText(visibleText(step.value), TypeRole::SmallControl);
        QFont regular = value->font();
        regular.setWeight(QFont::Normal);
        value->setFont(regular);
        lines->addWidget(value);
    }
    row->addLayout(lines, 1);
    return host;
}

}  // namespace

PlanCard::PlanCard(const ComputerPlanner& planner, QWidget* parent)
    : Card(parent), m_planner(planner), m_rows(columnIn(this)) {
    observe(m_planner, {&ComputerPlanner::planChanged}, this, [this] { refreshPlan(); });
    observe(m_planner, {&ComputerPlanner::completedChanged}, this, [this] { refreshMarks(); });
}

void PlanCard::refreshPlan() {
    m_marks.clear();
    emptyLayout(*m_rows);
    const auto& plan = m_planner.plan();
    setVisible(plan.has_value());
    if (!plan) return;
    auto* const heading = new QWidget;
    rowIn(heading, 0, QMargins(padding, rowPadding, padding, rowPadding))
        ->addWidget(new SelectableText(visibleText(plan->explanation), TypeRole::Body, Ink::Muted));
    m_rows->addWidget(heading);
    int number = 0;
    for (const ComputerStep& step : plan->steps) {
        m_rows->addWidget(new Divider);
        m_marks.append(new Symbol(QStringLiteral("circle"), markSize, Ink::Muted));
        m_rows->addWidget(makeStep(++number, step, m_marks.last()));
    }
    refreshMarks();
}

void PlanCard::refreshMarks() {
    int index = 0;
    for (Symbol* const mark : std::as_const(m_marks)) {
        const bool done = index++ < m_planner.completed();
        mark->setSymbol(done ? QStringLiteral("checkmark.circle.fill") : QStringLiteral("circle"),
                        done ? Ink::Accent : Ink::Muted);
        mark->setAccessibleName(done ? tr("Carried out") : tr("Not carried out yet"));
    }
}

}  // namespace orvo
