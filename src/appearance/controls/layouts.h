#pragma once

#include <QBoxLayout>
#include <QScrollArea>
#include <QWidget>

namespace orvo {

/// Layouts without the style's own margins and gaps, whose numbers come from the screens.
inline QHBoxLayout* rowIn(QWidget* host, int gap = 0, const QMargins& margins = {}) {
    auto* const row = new QHBoxLayout(host);
    row->setContentsMargins(margins);
    row->setSpacing(gap);
    return row;
}

inline QVBoxLayout* columnIn(QWidget* host, int gap = 0, const QMargins& margins = {}) {
    auto* const column = new QVBoxLayout(host);
    column->setContentsMargins(margins);
    column->setSpacing(gap);
    return column;
}

/// Lets a control take all the width there is; buttons keep to their text otherwise.
template <class Control>
Control* wide(Control* control) {
    control->setSizePolicy(QSizePolicy::Expanding, control->sizePolicy().verticalPolicy());
    return control;
}

/// A frameless area in which `content`, as wide as the area, scrolls up and down.
inline QScrollArea* scrolling(QWidget* content) {
    auto* const area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidgetResizable(true);
    area->setWidget(content);
    // Both would paint over what lies behind them.
    area->viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
    return area;
}

/// Deletes all widgets of a layout at once, so that none of them is seen or focused once more.
inline void emptyLayout(QLayout& layout) {
    while (QLayoutItem* const item = layout.takeAt(0)) {
        delete item->widget();
        delete item;
    }
}

}  // namespace orvo
