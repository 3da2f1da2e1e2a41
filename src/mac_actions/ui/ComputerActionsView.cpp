#include "mac_actions/ui/ComputerActionsView.h"

#include "appearance/controls/Card.h"
#include "appearance/controls/Disclosure.h"
#include "appearance/controls/InfoCard.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/PageTitle.h"
#include "appearance/controls/Paragraph.h"
#include "appearance/controls/ScrollPage.h"
#include "appearance/controls/TaskEditor.h"
#include "appearance/controls/TextLabel.h"
#include "appearance/controls/layouts.h"
#include "mac_actions/ui/MacActionsView.h"
#include "mac_actions/ui/PlanCard.h"
#include "platform/observe.h"
#include "workspace/Workspace.h"
#include "workspace/WorkspaceMacActions.h"

namespace orvo {
namespace {

constexpr int gap = 12;
constexpr int sectionGap = 20;
constexpr int editorHeight = 52;
constexpr int highestEditor = 160;

}  // namespace

ComputerActionsView::ComputerActionsView(WorkspaceMacActions& actions, Workspace& workspace,
                                         const Theme& theme, VoiceDraft voiceDraft, QWidget* parent)
    : QWidget(parent), m_actions(actions), m_workspace(workspace), m_voiceDraft(std::move(voiceDraft)) {
    auto* const page = new ScrollPage;
    columnIn(this)->addWidget(page);
    QVBoxLayout& column = page->column();
    column.addWidget(new PageTitle(tr("Mac assistant"), tr("Say what you want to do."),
                                   tr("Codex drafts a short plan. Review it, then run each step when you’re "
                                      "ready. Orvo can open apps and links, type text, and use supported "
                                      "keyboard shortcuts.")));
    column.addSpacing(sectionGap);
    column.addWidget(makeRequest());
    column.addSpacing(gap);
    column.addWidget(makeRequestButtons());
    column.addSpacing(sectionGap);
    column.addWidget(new PlanCard(m_actions.planner()));
    column.addSpacing(gap);
    column.addWidget(makePlanButtons());
    m_message = new Paragraph(QString(), TypeRole::Body, Ink::Accent);
    column.addSpacing(gap);
    column.addWidget(m_message);
    column.addSpacing(sectionGap);
    column.addWidget(new InfoCard(
        QString(), tr("You stay in control"),
        tr("This assistant does not see your screen or check whether a step succeeded. Review each target, "
           "text and shortcut. Replan if the screen differs from the plan. Typing needs macOS Accessibility "
           "permission.")));
    column.addSpacing(gap);
    column.addWidget(makeUtilities(theme));
    column.addStretch(1);

    const ComputerPlanner& planner = m_actions.planner();
    observe(planner, {&ComputerPlanner::taskChanged}, this, [this] { refreshTask(); });
    observe(planner,
            {&ComputerPlanner::planningChanged, &ComputerPlanner::executingChanged,
             &ComputerPlanner::taskChanged},
            this, [this] { refreshPlanning(); });
    observe(planner,
            {&ComputerPlanner::executingChanged, &ComputerPlanner::planningChanged,
             &ComputerPlanner::planChanged, &ComputerPlanner::completedChanged,
             &ComputerPlanner::typedChanged, &ComputerPlanner::sessionChanged},
            this, [this] { refreshExecution(); });
    // A planning session that is closed has no output to show any more.
    observe(m_workspace, {&Workspace::sessionsChanged}, this, [this] { refreshExecution(); });
    observe(planner, {&ComputerPlanner::messageChanged}, this, [this] { refreshMessage(); });
}

QWidget* ComputerActionsView::makeRequest() {
    auto* const card = new Card;
    m_task = new TaskEditor(tr("Mac task to plan"), QString());
    m_task->setGrowth(editorHeight, highestEditor);
    connect(m_task, &TaskEditor::textChanged, this,
            [this] { m_actions.planner().setTask(m_task->toPlainText()); });
    connect(m_task, &TaskEditor::focusChanged, card,
            [card](bool focused) { card->setFrame(focused ? CardFrame::Active : CardFrame::Plain); });
    columnIn(card, 0, QMargins(14, gap, 14, gap))->addWidget(m_task);
    return card;
}

QWidget* ComputerActionsView::makeRequestButtons() {
    auto* const host = new QWidget;
    auto* const row = rowIn(host, 8);
    auto* const voice = new OrvoButton(tr("Use voice draft"), QStringLiteral("mic"));
    connect(voice, &OrvoButton::clicked, this, [this] { useVoiceDraft(); });
    m_stopPlanning = new OrvoButton(tr("Stop planning"), QStringLiteral("stop"));
    connect(m_stopPlanning, &OrvoButton::clicked, &m_actions.planner(), &ComputerPlanner::stopPlanning);
    m_makePlan = new OrvoButton(QString(), QStringLiteral("sparkles"), OrvoButton::Kind::Primary);
    connect(m_makePlan, &OrvoButton::clicked, &m_actions.planner(), &ComputerPlanner::prepare);
    row->addWidget(voice);
    row->addWidget(m_stopPlanning);
    row->addWidget(m_makePlan);
    row->addStretch();
    return host;
}

QWidget* ComputerActionsView::makePlanButtons() {
    auto* const host = new QWidget;
    auto* const row = rowIn(host, 8);
    ComputerPlanner& planner = m_actions.planner();
    m_runNext = new OrvoButton(QString(), QStringLiteral("play.fill"), OrvoButton::Kind::Primary);
    connect(m_runNext, &OrvoButton::clicked, &planner, &ComputerPlanner::runNext);
    m_stopTyping = new OrvoButton(tr("Stop typing"), QStringLiteral("stop"));
    connect(m_stopTyping, &OrvoButton::clicked, &planner, &ComputerPlanner::stopTyping);
    auto* const settings = new OrvoButton(tr("Accessibility settings"), QStringLiteral("hand.point.up.left"));
    connect(settings, &OrvoButton::clicked, &planner, &ComputerPlanner::openAccessibility);
    m_output = new OrvoButton(tr("Planner output"), QStringLiteral("terminal"));
    connect(m_output, &OrvoButton::clicked, &planner, &ComputerPlanner::showPlannerOutput);
    m_typed = new TextLabel(QString(), TypeRole::Caption, Ink::Muted);
    for (QWidget* const widget : QList<QWidget*>{m_runNext, m_stopTyping, settings, m_output, m_typed})
        row->addWidget(widget);
    row->addStretch();
    return host;
}

QWidget* ComputerActionsView::makeUtilities(const Theme& theme) {
    auto* const host = new QWidget;
    auto* const column = columnIn(host);
    auto* const disclosure = new Disclosure(tr("Manual Mac tools"));
    column->addWidget(disclosure);
    auto* const utilities = new MacActionsView(m_actions, m_workspace, theme);
    utilities->setContentsMargins(0, sectionGap, 0, 0);
    utilities->hide();
    column->addWidget(utilities);
    connect(disclosure, &Disclosure::toggled, utilities, &QWidget::setVisible);
    return host;
}

void ComputerActionsView::refreshTask() {
    m_task->setText(m_actions.planner().task());
}

void ComputerActionsView::refreshPlanning() {
    const ComputerPlanner& planner = m_actions.planner();
    m_stopPlanning->setVisible(planner.planning());
    m_makePlan->setBusy(planner.planning());
    m_makePlan->setTitle(planner.planning() ? tr("Making plan…") : tr("Make a plan"));
    m_makePlan->setEnabled(!planner.planning() && !planner.executing() &&
                           !planner.task().trimmed().isEmpty());
}

void ComputerActionsView::refreshExecution() {
    const ComputerPlanner& planner = m_actions.planner();
    const bool executing = planner.executing();
    const auto& plan = planner.plan();
    const bool hasNext = plan && planner.completed() < plan->steps.size();
    m_runNext->setBusy(executing);
    m_runNext->setTitle(executing ? tr("Sending step…") : tr("Run next step"));
    m_runNext->setEnabled(hasNext && !executing && !planner.planning());
    const auto session = planner.session();
    m_output->setEnabled(session && m_workspace.session(session->id()));
    const bool typing = executing && hasNext && planner.typed() > 0;
    m_stopTyping->setVisible(typing);
    m_typed->setVisible(typing);
    if (typing && plan) {
        m_typed->setText(tr("%1 of %2 characters")
                             .arg(planner.typed())
                             .arg(plan->steps[planner.completed()].value.size()));
    }
}

void ComputerActionsView::refreshMessage() {
    m_message->setText(m_actions.planner().message());
    m_message->setVisible(!m_actions.planner().message().isEmpty());
}

void ComputerActionsView::useVoiceDraft() {
    const QString draft = m_voiceDraft ? m_voiceDraft() : QString();
    m_actions.planner().setTask(draft);
    if (!draft.isEmpty()) return;
    m_workspace.setDestination(Destination::Companion);
    m_workspace.notify(tr("Use the companion microphone to make a draft first."));
}

}  // namespace orvo
