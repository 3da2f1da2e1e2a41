#include "appearance/controls/FlowGrid.h"

#include <QWidget>

#include <algorithm>

namespace orvo {

FlowGrid::FlowGrid(int minimumColumnWidth, int gap, QWidget* parent)
    : QLayout(parent), m_minimumColumnWidth(minimumColumnWidth), m_gap(gap) {
    setContentsMargins(0, 0, 0, 0);
}

FlowGrid::~FlowGrid() {
    qDeleteAll(m_items);
}

void FlowGrid::setFixedColumns(int columns) {
    m_fixedColumns = columns;
    invalidate();
}

int FlowGrid::columnsFor(int width) const {
    if (m_fixedColumns > 0) return m_fixedColumns;
    return std::max(1, (width + m_gap) / (m_minimumColumnWidth + m_gap));
}

void FlowGrid::addItem(QLayoutItem* item) {
    m_items.append(item);
}
int FlowGrid::count() const {
    return static_cast<int>(m_items.size());
}
QLayoutItem* FlowGrid::itemAt(int index) const {
    return m_items.value(index);
}

QLayoutItem* FlowGrid::takeAt(int index) {
    return index >= 0 && index < m_items.size() ? m_items.takeAt(index) : nullptr;
}

int FlowGrid::layOut(const QRect& area, Place place) const {
    QList<QLayoutItem*> shown;
    for (QLayoutItem* item : m_items) {
        if (!item->isEmpty()) shown.append(item);
    }
    const int columns = columnsFor(area.width());
    const int room = area.width() - (columns - 1) * m_gap;
    // Column edges are rounded one by one, so that all columns together fill the width.
    const auto left = [&](int column) {
        return room * column / columns + column * m_gap;
    };
    const auto width = [&](int column) {
        return room * (column + 1) / columns - room * column / columns;
    };

    int y = 0;
    for (qsizetype first = 0; first < shown.size(); first += columns) {
        const int inRow = static_cast<int>(std::min<qsizetype>(columns, shown.size() - first));
        int height = 0;
        for (int column = 0; column < inRow; ++column) {
            QLayoutItem* item = shown[first + column];
            const int wanted =
                item->hasHeightForWidth() ? item->heightForWidth(width(column)) : item->sizeHint().height();
            height = std::max({height, wanted, item->minimumSize().height()});
        }
        if (place == Place::Yes) {
            for (int column = 0; column < inRow; ++column) {
                shown[first + column]->setGeometry(
                    QRect(area.left() + left(column), area.top() + y, width(column), height));
            }
        }
        y += height + m_gap;
    }
    return std::max(0, y - m_gap);
}

int FlowGrid::heightForWidth(int width) const {
    const QMargins margins = contentsMargins();
    const int inner = width - margins.left() - margins.right();
    return layOut(QRect(0, 0, inner, 0), Place::No) + margins.top() + margins.bottom();
}

QSize FlowGrid::sizeHint() const {
    const int width =
        m_minimumColumnWidth * std::max(1, m_fixedColumns) + m_gap * std::max(0, m_fixedColumns - 1);
    return {width, heightForWidth(width)};
}

QSize FlowGrid::minimumSize() const {
    int width = 0;
    for (const QLayoutItem* item : m_items)
        width = std::max(width, item->minimumSize().width());
    if (m_fixedColumns > 0) width = width * m_fixedColumns + m_gap * (m_fixedColumns - 1);
    const QMargins margins = contentsMargins();
    return {width + margins.left() + margins.right(), margins.top() + margins.bottom()};
}

void FlowGrid::setGeometry(const QRect& rect) {
    QLayout::setGeometry(rect);
    layOut(rect.marginsRemoved(contentsMargins()), Place::Yes);
}

}  // namespace orvo
