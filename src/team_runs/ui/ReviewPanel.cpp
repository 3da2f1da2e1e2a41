#include "team_runs/ui/ReviewPanel.h"

#include "appearance/controls/Divider.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/Paragraph.h"
#include "appearance/controls/Spinner.h"
#include "appearance/controls/TextLabel.h"
#include "appearance/controls/TextViewer.h"
#include "appearance/controls/layouts.h"
#include "platform/observe.h"
#include "team_runs/ui/ChangeList.h"
#include "team_runs/ui/CopyReview.h"

#include <QProgressBar>
#include <QStackedWidget>

#include <algorithm>

namespace orvo {
namespace {

constexpr int headerHeight = 52;
constexpr int listWidth = 280;
constexpr int paneHeaderHeight = 28;
constexpr int progressWidth = 240;
constexpr int progressHeight = 4;

}  // namespace

ReviewPanel::ReviewPanel(CopyReview& review, QWidget* parent) : Card(parent), m_review(review) {
    auto* const column = columnIn(this, 0, QMargins(1, 1, 1, 1));
    column->addWidget(makeHeader());
    column->addWidget(new Divider);
    column->addWidget(makeBody(), 1);

    observe(review, {&CopyReview::changesChanged, &CopyReview::selectionChanged, &CopyReview::busyChanged},
            this, [this] { refreshHeader(); });
    observe(review, {&CopyReview::busyChanged}, this, [this] { refreshBody(); });
    observe(review, {&CopyReview::filesReadChanged, &CopyReview::busyChanged}, this,
            [this] { refreshProgress(); });
    observe(review, {&CopyReview::previewPathChanged, &CopyReview::comparisonChanged}, this,
            [this] { refreshComparison(); });
}

QWidget* ReviewPanel::makeHeader() {
    auto* const header = new QWidget;
    header->setFixedHeight(headerHeight);
    auto* const row = rowIn(header, 8, QMargins(16, 0, 12, 0));
    m_count = new TextLabel(QString(), TypeRole::Name);
    m_selectAll = new OrvoButton(tr("Select all"));
    connect(m_selectAll, &OrvoButton::clicked, this, [this] { m_review.selectAll(); });
    m_apply = new OrvoButton(QString(), QStringLiteral("checkmark"), OrvoButton::Kind::Primary);
    connect(m_apply, &OrvoButton::clicked, this, [this] { m_review.apply(); });
    row->addWidget(m_count);
    row->addStretch();
    row->addWidget(m_selectAll);
    row->addWidget(m_apply);
    return header;
}

QWidget* ReviewPanel::makeBody() {
    m_body = new QStackedWidget;
    m_reading = new QWidget;
    auto* const reading = columnIn(m_reading, 12);
    auto* const line = rowIn(nullptr, 10);
    line->addStretch();
    line->addWidget(new Spinner);
    line->addWidget(new TextLabel(tr("Reading changes…"), TypeRole::Body, Ink::Muted));
    line->addStretch();
    m_progress = new QProgressBar;
    m_progress->setAccessibleName(tr("Files read"));
    m_progress->setTextVisible(false);
    m_progress->setFixedSize(progressWidth, progressHeight);
    reading->addStretch();
    reading->addLayout(line);
    reading->addWidget(m_progress, 0, Qt::AlignHCenter);
    reading->addStretch();
    m_body->addWidget(m_reading);

    m_lists = new QWidget;
    auto* const row = rowIn(m_lists);
    auto* const list = new ChangeList(m_review);
    list->setFixedWidth(listWidth);
    row->addWidget(list);
    row->addWidget(new Divider(Qt::Vertical));
    m_compare = new QStackedWidget;
    m_hint = new QWidget;
    auto* const hint = columnIn(m_hint);
    hint->addStretch();
    hint->addWidget(new TextLabel(tr("Choose a file to compare its contents."), TypeRole::Body, Ink::Muted),
                    0, Qt::AlignHCenter);
    hint->addStretch();
    m_compare->addWidget(m_hint);
    m_panes = new QWidget;
    auto* const panes = rowIn(m_panes);
    panes->addWidget(makePane(tr("Before"), m_before, Well::Edge::Bare), 1);
    panes->addWidget(new Divider(Qt::Vertical));
    panes->addWidget(makePane(tr("After"), m_after, Well::Edge::CardCorner), 1);
    m_compare->addWidget(m_panes);
    row->addWidget(m_compare, 1);
    m_body->addWidget(m_lists);
    return m_body;
}

QWidget* ReviewPanel::makePane(const QString& title, TextViewer*& viewer, Well::Edge edge) {
    auto* const pane = new QWidget;
    auto* const column = columnIn(pane);
    auto* const label = new TextLabel(title, TypeRole::SmallControl, Ink::Muted);
    label->setContentsMargins(10, 0, 10, 0);
    label->setLineHeight(paneHeaderHeight);
    column->addWidget(label);
    column->addWidget(new Divider);
    auto* const well = new Well(edge);
    viewer = new TextViewer(title, TextViewer::Lines::Scroll);
    columnIn(well)->addWidget(viewer);
    column->addWidget(well, 1);
    return pane;
}

void ReviewPanel::refreshHeader() {
    const bool ready = !m_review.inspecting();
    const bool busy = m_review.inspecting() || m_review.applying();
    m_count->setText(ready ? tr("%1 changed files").arg(m_review.changes().size()) : QString());
    m_selectAll->setVisible(ready);
    m_apply->setVisible(ready);
    m_selectAll->setEnabled(!busy && !m_review.changes().isEmpty());
    m_apply->setTitle(tr("Apply selected (%1)").arg(m_review.selectedCount()));
    m_apply->setEnabled(!busy && m_review.selectedCount() > 0);
}

void ReviewPanel::refreshBody() {
    m_body->setCurrentWidget(m_review.inspecting() ? m_reading : m_lists);
    m_lists->setEnabled(!m_review.applying());
}

void ReviewPanel::refreshProgress() {
    m_progress->setRange(0, std::max(1, m_review.filesToRead()));
    m_progress->setValue(m_review.filesRead());
}

void ReviewPanel::refreshComparison() {
    m_compare->setCurrentWidget(m_review.previewPath() ? m_panes : m_hint);
    const auto& comparison = m_review.comparison();
    m_before->setText(comparison ? comparison->before : QString());
    m_after->setText(comparison ? comparison->after : QString());
}

}  // namespace orvo
