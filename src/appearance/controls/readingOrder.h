#pragma once

#include <QList>

class QWidget;

namespace orvo {

/// The controls below `root` that Tab can reach now, in the order in which they are read: as they lie in
/// their layouts, and from top to bottom where there is no layout. Unlike the order in which they were made,
/// this stays right when a page makes some of its controls anew.
QList<QWidget*> tabStops(const QWidget& root);

/// Moves the focus to the neighbour of the one that has it, around the ends too. False when there is none.
bool focusNeighbour(const QWidget& root, bool next);

}  // namespace orvo
