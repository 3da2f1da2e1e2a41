#include "team_runs/ui/TeamRunsView.h"

#include "appearance/controls/ElidedLabel.h"
#include "appearance/controls/InfoCard.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/PageTitle.h"
#include "appearance/controls/ScrollPage.h"
#include "appearance/controls/layouts.h"
#include "platform/observe.h"
#include "platform/textEnds.h"
#include "team_runs/TeamRuns.h"
#include "team_runs/ui/CopyCard.h"
#include "team_runs/ui/CopyReview.h"
#include "team_runs/ui/OutputSheet.h"
#include "team_runs/ui/ReviewPanel.h"
#include "workspace/Workspace.h"

#include <QComboBox>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QWheelEvent>

#include <algorithm>

namespace orvo {
namespace {

constexpr int widestPicker = 560;
constexpr qsizetype titleCharacters = 70;
constexpr int cardHeight = 106;
/// Below the cards, for the bar that scrolls them.
constexpr int barRoom = 10;
constexpr int cardGap = 12;
constexpr int gap = 16;
constexpr int messageHeight = 24;

}  // namespace

TeamRunsView::TeamRunsView(TeamRuns& teamRuns, Workspace& workspace, Launcher& launcher, QWidget* parent)
    : QWidget(parent),
      m_teamRuns(teamRuns),
      m_workspace(workspace),
      m_launcher(launcher),
      m_review(new CopyReview(teamRuns, workspace, this)) {
    constexpr int margin = ScrollPage::margin;
    auto* const column = columnIn(this, 0, QMargins(margin, margin, margin, 0));
    column->addWidget(
        new PageTitle(tr("Build. Compare. Choose."), tr("Your team’s work, in one place."),
                      tr("Each assistant works in its own copy. Review the output and files, then "
                         "choose what goes into your project.")));
    column->addSpacing(20);
    m_unfinished = columnIn(nullptr, 12);
    column->addLayout(m_unfinished);
    m_empty =
        new InfoCard(QStringLiteral("square.stack.3d.up"), tr("Start your first team run"),
                     tr("In Workspace, choose Separate copies, select your assistants and send a task. The "
                        "results will appear here."));
    column->addWidget(m_empty, 0, Qt::AlignTop);
    m_content = new QWidget;
    auto* const content = columnIn(m_content);
    content->addWidget(makeRunRow());
    content->addSpacing(gap);
    content->addWidget(makeCards());
    content->addSpacing(gap - barRoom);
    m_panel = new ReviewPanel(*m_review);
    m_message = new ElidedLabel(QString(), TypeRole::Caption);
    m_message->setLineHeight(messageHeight);
    auto* const area = columnIn(nullptr, 0);
    area->addWidget(m_panel, 1);
    area->addWidget(m_message);
    // While nothing is reviewed; the cards stay below the picker.
    area->addStretch(0);
    content->addLayout(area, 1);
    // Without a review the row of runs stays at the top.
    content->addStretch(0);
    column->addWidget(m_content, 1);
    column->addStretch(0);

    observe(m_teamRuns, {&TeamRuns::unfinishedAppliesChanged}, this, [this] { refreshUnfinished(); });
    observe(m_teamRuns, {&TeamRuns::teamRunsChanged, &TeamRuns::selectedRunIDChanged}, this,
            [this] { refreshRuns(); });
    observe(m_workspace, {&Workspace::sessionStatesChanged, &Workspace::sessionsChanged}, this,
            [this] { refreshCardStates(); });
    observe(*m_review, {&CopyReview::copyChanged, &CopyReview::messageChanged}, this,
            [this] { refreshReviewed(); });
}

TeamRunsView::~TeamRunsView() {
    delete m_outputSheet;
}

QWidget* TeamRunsView::makeRunRow() {
    auto* const host = new QWidget;
    auto* const row = rowIn(host, 8);
    m_picker = new QComboBox;
    m_picker->setAccessibleName(tr("Run"));
    m_picker->setMaximumWidth(widestPicker);
    m_picker->setMaxVisibleItems(10);
    m_picker->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_picker->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    connect(m_picker, &QComboBox::activated, this,
            [this](int index) { m_teamRuns.setSelectedRunID(m_picker->itemData(index).toUuid()); });
    m_compare = new OrvoButton(tr("Compare with AI"), QStringLiteral("sparkles"));
    connect(m_compare, &OrvoButton::clicked, this, &TeamRunsView::compare);
    row->addWidget(m_picker, 1);
    row->addWidget(m_compare);
    row->addStretch(0);
    return host;
}

QWidget* TeamRunsView::makeCards() {
    auto* const host = new QWidget;
    m_cardRow = rowIn(host, cardGap);
    m_cardRow->addStretch();
    m_cardArea = scrolling(host);
    m_cardRow->setContentsMargins(0, 0, 0, barRoom);
    m_cardArea->setFixedHeight(cardHeight + barRoom);
    m_cardArea->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_cardArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_cardArea->viewport()->installEventFilter(this);
    return m_cardArea;
}

// The row of cards scrolls sideways with an ordinary wheel too.
bool TeamRunsView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Wheel) {
        auto* const wheel = static_cast<QWheelEvent*>(event);
        const QPoint angle = wheel->angleDelta();
        const int step = std::abs(angle.x()) > std::abs(angle.y()) ? angle.x() : angle.y();
        QScrollBar* const bar = m_cardArea->horizontalScrollBar();
        bar->setValue(bar->value() - step);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

std::optional<TeamRun> TeamRunsView::shownRun() const {
    const auto& runs = m_teamRuns.teamRuns();
    if (runs.isEmpty()) return std::nullopt;
    const auto& selected = m_teamRuns.selectedRunID();
    const auto run = selected ? m_teamRuns.run(*selected) : std::nullopt;
    return run ? run : runs.front();
}

void TeamRunsView::refreshUnfinished() {
    emptyLayout(*m_unfinished);
    for (const RunFiles::UnfinishedApply& apply : m_teamRuns.unfinishedApplies()) {
        m_unfinished->addWidget(new InfoCard(QStringLiteral("exclamationmark.triangle"),
                                             tr("Applying files was interrupted"), apply.message()),
                                0, Qt::AlignTop);
    }
    if (m_unfinished->count() > 0) m_unfinished->addSpacing(4);
}

void TeamRunsView::refreshRuns() {
    const auto run = shownRun();
    m_empty->setVisible(!run);
    m_content->setVisible(run.has_value());
    const std::optional<TeamRun>& reviewed = m_review->run();
    if (reviewed && (!run || reviewed->id != run->id)) m_review->clear();
    refreshPicker();
    refreshCards();
}

void TeamRunsView::refreshPicker() {
    const QSignalBlocker quiet(m_picker);
    m_picker->clear();
    for (const TeamRun& run : m_teamRuns.teamRuns())
        m_picker->addItem(firstCharacters(run.prompt, titleCharacters).simplified(), run.id);
    const auto run = shownRun();
    m_picker->setCurrentIndex(run ? m_picker->findData(run->id) : -1);
}

// Cards are made anew only when there are others; a state that changed is shown on the card there is.
void TeamRunsView::refreshCards() {
    const auto run = shownRun();
    const QList<RunCopy> copies = run ? run->copies : QList<RunCopy>();
    const bool same = std::ranges::equal(m_cards, copies, [](const CopyCard* card, const RunCopy& copy) {
        return card->copy().id == copy.id && card->copy().directory == copy.directory;
    });
    if (same) {
        for (qsizetype i = 0; i < copies.size(); ++i)
            m_cards[i]->refresh(copies[i]);
        return;
    }
    emptyLayout(*m_cardRow);
    m_cards.clear();
    for (const RunCopy& copy : copies) {
        auto* const card = new CopyCard(copy, m_teamRuns, m_workspace, m_launcher);
        connect(card, &CopyCard::reviewRequested, this, [this, card] {
            if (const auto shown = shownRun()) m_review->review(*shown, card->copy());
        });
        connect(card, &CopyCard::outputRequested, this, [this, card] { showOutput(card->copy()); });
        m_cards.append(card);
        m_cardRow->addWidget(card);
    }
    m_cardRow->addStretch();
    refreshReviewed();
}

void TeamRunsView::refreshCardStates() {
    for (CopyCard* const card : std::as_const(m_cards))
        card->refresh(card->copy());
}

void TeamRunsView::refreshReviewed() {
    const auto& reviewed = m_review->copy();
    m_panel->setVisible(reviewed.has_value());
    m_message->setText(m_review->message());
    for (CopyCard* const card : std::as_const(m_cards)) {
        const bool isReviewed = reviewed && card->copy().id == reviewed->id;
        card->setFrame(isReviewed ? CardFrame::Selected : CardFrame::Plain);
        if (isReviewed) m_cardArea->ensureWidgetVisible(card, cardGap, 0);
    }
}

void TeamRunsView::compare() {
    if (const auto run = shownRun()) m_teamRuns.summarizeRun(*run);
}

void TeamRunsView::showOutput(const RunCopy& copy) {
    if (copy.session && m_workspace.session(*copy.session)) {
        m_workspace.focusSession(*copy.session);
        return;
    }
    const auto run = shownRun();
    if (!run || m_outputSheet) return;
    m_outputSheet = new OutputSheet(m_teamRuns.runOutput(copy, *run), this);
    connect(m_outputSheet, &Sheet::dismissed, m_outputSheet, &QObject::deleteLater);
    m_outputSheet->present();
}

}  // namespace orvo
