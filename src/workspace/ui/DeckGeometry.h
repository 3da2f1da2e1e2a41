#pragma once

#include <QList>
#include <QRect>
#include <QSize>

namespace orvo {

/// Where the panes of the session deck stand.
struct DeckGeometry {
    static constexpr int gap = 12;
    /// A pane is never narrower than this while more than one column is shown.
    static constexpr int minimumPaneWidth = 300;
    static constexpr int minimumPaneHeight = 168;

    QList<QRect> panes;
    /// Height that holds all rows; more than the area's means that the deck scrolls.
    int height = 0;

    /// `count` panes in a near square grid that fills `area`: rows share the height, and the panes of a last
    /// row that is not full share its width.
    static DeckGeometry grid(int count, QSize area);
};

}  // namespace orvo
