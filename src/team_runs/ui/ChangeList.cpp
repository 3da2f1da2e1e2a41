#include "team_runs/ui/ChangeList.h"

#include "appearance/controls/OrvoStyle.h"
#include "appearance/controls/lineText.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/typography.h"
#include "team_runs/ui/CopyReview.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyledItemDelegate>

#include <algorithm>

namespace orvo {
namespace {

constexpr int rowHeight = 32;
constexpr int listPadding = 8;
constexpr int box = 16;
constexpr int gap = 9;
/// Clicks left of this tick the row.
constexpr int tickWidth = 32;

class ChangeDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override {
        return {120, rowHeight};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const Roles& roles = rolesOf(option.widget);
        const QRect row = option.rect.adjusted(listPadding, 0, -listPadding, 0);
        const bool isCurrent = option.state.testFlag(QStyle::State_Selected);
        if (isCurrent)
            fillRounded(*painter, row, 8, toQColor(roles.selected));
        else if (option.state.testFlag(QStyle::State_MouseOver))
            fillRounded(*painter, row, 8, toQColor(roles.hover));
        if (isCurrent && option.state.testFlag(QStyle::State_HasFocus))
            strokeRing(*painter, row, 8, toQColor(roles.accent));
        paintBox(*painter, option, row, index);
        paintTexts(*painter, option, row, index, isCurrent ? roles.mutedOnSelected : roles.muted);
    }

private:
    static void paintBox(QPainter& painter, const QStyleOptionViewItem& option, const QRect& row,
                         const QModelIndex& index) {
        QStyleOption check;
        check.initFrom(option.widget);
        check.state = QStyle::State_Enabled;
        check.state.setFlag(QStyle::State_On, index.data(Qt::CheckStateRole).toInt() == Qt::Checked);
        check.rect = QRect(row.left() + listPadding, row.top() + (row.height() - box) / 2, box, box);
        option.widget->style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &check, &painter, option.widget);
    }

    static void paintTexts(QPainter& painter, const QStyleOptionViewItem& option, const QRect& row,
                           const QModelIndex& index, Rgb muted) {
        const QString kind = index.data(ChangeModel::KindRole).toString();
        const QFont small = fontOf(TypeRole::Caption);
        const int kindWidth = measureText(small, kind);
        const QRect inner = row.adjusted(listPadding + box + gap, 0, -listPadding, 0);
        painter.setFont(small);
        painter.setPen(toQColor(muted));
        paintText(painter, inner, Qt::AlignRight | Qt::AlignVCenter, kind);

        const QRect room = inner.adjusted(0, 0, -kindWidth - gap, 0);
        painter.setFont(fontOf(TypeRole::Body));
        painter.setPen(toQColor(rolesOf(option.widget).text));
        paintText(painter, room, Qt::AlignVCenter, index.data().toString(), Qt::ElideMiddle);
    }
};

}  // namespace

ChangeModel::ChangeModel(CopyReview& review, QObject* parent)
    : QAbstractListModel(parent), m_review(review), m_rows(static_cast<int>(review.changes().size())) {
    connect(&review, &CopyReview::changesChanged, this, [this] {
        beginResetModel();
        m_rows = static_cast<int>(m_review.changes().size());
        endResetModel();
    });
    connect(&review, &CopyReview::selectionChanged, this, [this] {
        if (rowCount() > 0) Q_EMIT dataChanged(index(0), index(rowCount() - 1), {Qt::CheckStateRole});
    });
}

int ChangeModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_rows;
}

QVariant ChangeModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= m_review.changes().size()) return {};
    const FileChange& change = m_review.changes()[index.row()];
    switch (role) {
        case Qt::DisplayRole:
            // A line feed in a name must not start a second line.
            return change.displayPath().replace(u'\n', u'␊');
        case Qt::ToolTipRole:
            return plainToolTip(change.displayPath());
        case KindRole:
            return textOf(change.kind());
        case Qt::CheckStateRole:
            return m_review.isSelected(change.path) ? Qt::Checked : Qt::Unchecked;
        default:
            return {};
    }
}

bool ChangeModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || role != Qt::CheckStateRole) return false;
    m_review.setSelected(m_review.changes()[index.row()].path, value.toInt() == Qt::Checked);
    return true;
}

Qt::ItemFlags ChangeModel::flags(const QModelIndex&) const {
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable;
}

ChangeList::ChangeList(CopyReview& review, QWidget* parent) : RowList(parent), m_review(review) {
    setAccessibleName(tr("Changed files"));
    setModel(new ChangeModel(review, this));
    setItemDelegate(new ChangeDelegate(this));
    setUniformItemSizes(true);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(QFrame::NoFrame);
    setMouseTracking(true);
    setViewportMargins(0, listPadding, 0, listPadding);
    viewport()->setAutoFillBackground(false);
    connect(&review, &CopyReview::previewPathChanged, this, &ChangeList::refreshCurrent);
    connect(model(), &QAbstractItemModel::modelReset, this, &ChangeList::refreshCurrent);
}

void ChangeList::refreshCurrent() {
    const auto& path = m_review.previewPath();
    const auto& changes = m_review.changes();
    const auto found = path ? std::ranges::find(changes, *path, &FileChange::path) : changes.end();
    if (found == changes.end()) {
        setCurrentIndex({});
        return;
    }
    const QModelIndex index = model()->index(static_cast<int>(found - changes.begin()), 0);
    if (currentIndex() != index) setCurrentIndex(index);
}

void ChangeList::pressRow(int row) {
    setCurrentIndex(model()->index(row, 0));
}

std::optional<bool> ChangeList::isRowTicked(int row) const {
    return model()->index(row, 0).data(Qt::CheckStateRole).toInt() == Qt::Checked;
}

QString ChangeList::rowDescription(int row) const {
    return model()->index(row, 0).data(ChangeModel::KindRole).toString();
}

void ChangeList::toggleRow(int row) {
    const QModelIndex index = model()->index(row, 0);
    const bool checked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    model()->setData(index, checked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
    announceToggled(row);
}

void ChangeList::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    RowList::currentChanged(current, previous);
    if (current.isValid()) m_review.setPreviewPath(m_review.changes()[current.row()].path);
}

void ChangeList::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space && currentIndex().isValid()) {
        toggleRow(currentIndex().row());
        return;
    }
    RowList::keyPressEvent(event);
}

void ChangeList::mousePressEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    const bool onBox = event->position().x() < listPadding + tickWidth;
    if (event->button() == Qt::LeftButton && index.isValid() && onBox) {
        toggleRow(index.row());
        return;
    }
    RowList::mousePressEvent(event);
}

}  // namespace orvo
