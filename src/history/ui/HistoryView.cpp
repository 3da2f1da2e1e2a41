#include "history/ui/HistoryView.h"

#include "appearance/controls/ElidedLabel.h"
#include "appearance/controls/EmptyState.h"
#include "appearance/controls/Eyebrow.h"
#include "appearance/controls/IconTile.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/PageTitle.h"
#include "appearance/controls/ScrollPage.h"
#include "appearance/controls/TextField.h"
#include "appearance/controls/TextViewer.h"
#include "appearance/controls/Well.h"
#include "appearance/controls/layouts.h"
#include "history/ui/HistoryRow.h"
#include "platform/Dialogs.h"
#include "platform/observe.h"
#include "workspace/Workspace.h"

#include <QLocale>
#include <QResizeEvent>
#include <QScrollArea>
#include <QScrollBar>

#include <algorithm>

namespace orvo {
namespace {

constexpr int listWidth = 320;
constexpr int wideListWidth = 380;
constexpr int wideWindow = 1800;
constexpr int gap = 12;
constexpr double outputPixels = 12;

QString dateOf(const HistoryEntry& entry) {
    return QLocale().toString(entry.started.toLocalTime().date(), QStringLiteral("d MMM yyyy"));
}

QString exitOf(const HistoryEntry& entry) {
    return HistoryView::tr("Exit %1").arg(entry.exitCode);
}

QString titleOf(const HistoryEntry& entry) {
    const bool blank = entry.title.left(400).trimmed().isEmpty();
    return blank ? HistoryView::tr("Untitled session") : entry.title;
}

}  // namespace

HistoryView::HistoryView(Workspace& workspace, QWidget* parent) : QWidget(parent), m_workspace(workspace) {
    constexpr int margin = ScrollPage::margin;
    auto* const column = columnIn(this, 0, QMargins(margin, margin, margin, margin));
    auto* const title = new PageTitle(tr("Session memory"), tr("Pick up the thread."),
                                      tr("Orvo saves the latest 50 completed terminal snapshots on this Mac. "
                                         "Original provider sessions stay "
                                         "in their own tools."));
    m_clear = new OrvoButton(tr("Clear history"), QStringLiteral("trash"));
    connect(m_clear, &OrvoButton::clicked, this, &HistoryView::clearHistory);
    title->addTrailing(m_clear);
    column->addWidget(title);
    column->addSpacing(20);
    m_empty =
        new EmptyState(QStringLiteral("clock.arrow.circlepath"), tr("Your next session starts the story."),
                       tr("Completed sessions will appear here."));
    column->addWidget(m_empty, 1);
    m_columns = new QWidget;
    auto* const columns = rowIn(m_columns, gap);
    columns->addWidget(makeList());
    columns->addWidget(makeDetail(), 1);
    column->addWidget(m_columns, 1);

    observe(m_workspace.history(), {&HistoryStore::entriesChanged}, this, [this] { refreshEntries(); });
    observe(m_workspace.assistants(), {&Assistants::providersChanged}, this, [this] { refreshEntries(); });
}

QWidget* HistoryView::makeList() {
    m_listCard = new Card;
    auto* const column = columnIn(m_listCard, 8, QMargins(12, 12, 4, 12));
    m_query = new TextField(tr("Search completed sessions…"));
    m_query->setAccessibleName(m_query->placeholderText());
    m_query->setIcon(QStringLiteral("magnifyingglass"));
    connect(m_query, &TextField::textChanged, this, [this] { refreshEntries(); });
    auto* const field = rowIn(nullptr, 0, QMargins(0, 0, 8, 0));
    field->addWidget(m_query);
    column->addLayout(field);
    auto* const rows = new ChoiceRows;
    rows->setAccessibleName(tr("Completed sessions"));
    m_rows = columnIn(rows, 2, QMargins(0, 0, 8, 0));
    m_rows->addStretch();
    m_list = scrolling(rows);
    column->addWidget(m_list, 1);
    m_nothingFound = new TextLabel(tr("No session matches."), TypeRole::Caption, Ink::Muted);
    m_nothingFound->setContentsMargins(10, 0, 0, 0);
    column->insertWidget(1, m_nothingFound);
    return m_listCard;
}

QWidget* HistoryView::makeDetail() {
    auto* const card = new Card;
    auto* const column = columnIn(card, 0, QMargins(16, 16, 16, 12));
    column->addWidget(makeDetailHeader());
    column->addSpacing(16);
    column->addWidget(new Eyebrow(tr("Saved output")));
    column->addSpacing(8);
    auto* const well = new Well;
    m_output = new TextViewer(tr("Saved output"), TextViewer::Lines::Wrap);
    m_output->setFont(codeFont(outputPixels));
    columnIn(well, 0, QMargins(1, 1, 1, 1))->addWidget(m_output);
    column->addWidget(well, 1);
    column->addSpacing(12);
    auto* const actions = rowIn(nullptr, 8);
    auto* const exporting = new OrvoButton(tr("Export"), QStringLiteral("square.and.arrow.up"));
    connect(exporting, &OrvoButton::clicked, this, &HistoryView::exportShown);
    auto* const folder = new OrvoButton(tr("Open folder"), QStringLiteral("folder"));
    connect(folder, &OrvoButton::clicked, this, &HistoryView::openFolder);
    actions->addWidget(exporting);
    actions->addWidget(folder);
    actions->addStretch();
    column->addLayout(actions);
    return card;
}

QWidget* HistoryView::makeDetailHeader() {
    auto* const header = new QWidget;
    auto* const row = rowIn(header, 12);
    m_tile = new IconTile(QString(), 36);
    row->addWidget(m_tile);
    auto* const lines = columnIn(nullptr);
    m_title = new ElidedLabel(QString(), TypeRole::Section);
    m_details = new ElidedLabel(QString(), TypeRole::Caption, Ink::Muted);
    m_details->setElideMode(Qt::ElideMiddle);
    lines->addWidget(m_title);
    lines->addWidget(m_details);
    row->addLayout(lines, 1);
    return header;
}

void HistoryView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    m_listCard->setFixedWidth(window()->width() >= wideWindow ? wideListWidth : listWidth);
}

const HistoryEntry* HistoryView::shownEntry() const {
    const auto& entries = m_workspace.history().entries();
    if (entries.isEmpty()) return nullptr;
    const auto found =
        m_selected ? std::ranges::find(entries, *m_selected, &HistoryEntry::id) : entries.end();
    return found == entries.end() ? &entries.front() : &*found;
}

bool HistoryView::isListed(const HistoryEntry& entry) const {
    const QString query = m_query->text();
    if (query.isEmpty()) return true;
    const QString wanted = QLocale().toLower(query);
    return QLocale().toLower(entry.title).contains(wanted) ||
           QLocale().toLower(connectorName(entry)).contains(wanted);
}

// As it is named now; a connector that is gone has only its id.
QString HistoryView::connectorName(const HistoryEntry& entry) const {
    const Provider provider = m_workspace.assistants().provider(entry.provider);
    return provider.id == entry.provider ? provider.shownName() : entry.provider;
}

void HistoryView::refreshEntries() {
    const auto& entries = m_workspace.history().entries();
    m_empty->setVisible(entries.isEmpty());
    m_columns->setVisible(!entries.isEmpty());
    m_clear->setEnabled(!entries.isEmpty());
    refreshRows();
    m_nothingFound->setVisible(m_rowOf.isEmpty());
    refreshDetail();
}

// Rows stay with their sessions, and with them the focus and what is in sight.
void HistoryView::refreshRows() {
    const QWidget* const top = firstRowInSight();
    const int topBefore = top ? top->y() : 0;
    QList<Row> former = std::exchange(m_rowOf, {});
    const QWidget* const focused = window()->focusWidget();
    const auto isFocused = [focused](const Row& row) {
        return row.second == focused;
    };
    const qsizetype focusedAt = std::ranges::find_if(former, isFocused) - former.begin();
    for (const HistoryEntry& entry : m_workspace.history().entries()) {
        if (!isListed(entry)) continue;
        const HistoryRow::Lines lines{connectorName(entry), titleOf(entry), dateOf(entry), exitOf(entry)};
        const auto known = std::ranges::find(former, entry.id, &Row::first);
        HistoryRow* row = nullptr;
        if (known != former.end()) {
            row = known->second;
            row->setLines(lines);
            former.erase(known);
        } else {
            row = new HistoryRow(lines);
            connect(row, &HistoryRow::clicked, this, [this, id = entry.id] {
                m_selected = id;
                refreshDetail();
            });
        }
        const int place = static_cast<int>(m_rowOf.size());
        if (m_rows->indexOf(row) != place) {
            m_rows->removeWidget(row);
            m_rows->insertWidget(place, row);
            row->show();  // at once, so that it has its height below
            // Screen readers go by the order of the children.
            if (QWidget* const next = m_rows->itemAt(place + 1)->widget())
                row->stackUnder(next);
            else
                row->raise();
        }
        m_rowOf.append({entry.id, row});
    }
    for (const auto& [id, row] : std::as_const(former)) {
        if (row == focused && !m_rowOf.isEmpty())
            m_rowOf[std::min(focusedAt, m_rowOf.size() - 1)].second->setFocus(Qt::OtherFocusReason);
        m_rows->removeWidget(row);
        row->hide();
        row->deleteLater();  // it may be what is being pressed
    }
    const bool stays = std::ranges::any_of(m_rowOf, [top](const Row& row) { return row.second == top; });
    if (stays) keepInSight(*top, topBefore);
}

const QWidget* HistoryView::firstRowInSight() const {
    // At the very top, what is new is to be seen.
    const int scrolled = m_list->verticalScrollBar()->value();
    if (scrolled == 0) return nullptr;
    const auto found = std::ranges::find_if(
        m_rowOf, [scrolled](const Row& row) { return row.second->geometry().bottom() >= scrolled; });
    return found == m_rowOf.end() ? nullptr : found->second;
}

void HistoryView::keepInSight(const QWidget& row, int before) {
    // The range follows the height, which the layout would take over with the next turn of the event loop.
    QWidget* const rows = m_list->widget();
    m_rows->activate();
    rows->resize(rows->width(), std::max(m_list->viewport()->height(), rows->sizeHint().height()));
    QScrollBar* const bar = m_list->verticalScrollBar();
    bar->setValue(bar->value() + row.y() - before);
}

void HistoryView::refreshDetail() {
    const HistoryEntry* const entry = shownEntry();
    if (!entry) return;
    for (const auto& [id, row] : std::as_const(m_rowOf))
        row->setCurrent(id == entry->id);
    const Provider provider = m_workspace.assistants().provider(entry->provider);
    m_tile->setIcon(provider.icon, colorFromHex(provider.colorHex.toStdString()));
    m_title->setText(titleOf(*entry).simplified());
    const QString separator = QStringLiteral("  ·  ");
    m_details->setText(
        QStringList{connectorName(*entry), entry->directory.display(), dateOf(*entry), exitOf(*entry)}.join(
            separator));
    m_output->setText(entry->output.isEmpty() ? tr("No terminal output was captured.") : entry->output);
}

void HistoryView::clearHistory() {
    const int answer = m_workspace.dialogs().alert(
        {.message = tr("Clear Orvo’s saved history?"),
         .informativeText = tr("Provider session files will remain in their original tools."),
         .buttons = {tr("Clear"), tr("Cancel")}});
    if (answer == 0) m_workspace.clearHistory();
}

void HistoryView::exportShown() {
    if (const HistoryEntry* const entry = shownEntry())
        m_workspace.exportText(entry->output, QStringLiteral("Orvo-session.txt"));
}

void HistoryView::openFolder() {
    const HistoryEntry* const entry = shownEntry();
    if (!entry) return;
    // A copy: the question below runs an event loop, in which the list may change.
    const FilePath folder = entry->directory;
    if (!m_workspace.files().confirmDiscard()) return;
    m_workspace.setFolder(folder);
    m_workspace.setDestination(Destination::Workspace);
}

}  // namespace orvo
