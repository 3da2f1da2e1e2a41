#include "appearance/controls/RowList.h"

#include <QAccessible>

namespace orvo {

std::optional<bool> RowList::isRowTicked(int) const {
    return std::nullopt;
}

void RowList::toggleRow(int) {}

QString RowList::rowDescription(int) const {
    return {};
}

void RowList::announceToggled(int row) {
    if (!QAccessible::isActive()) return;
    QAccessibleInterface* const whole = QAccessible::queryAccessibleInterface(this);
    QAccessibleInterface* const interface = whole ? whole->child(row) : nullptr;
    if (!interface) return;
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(interface, changed);
    QAccessible::updateAccessibility(&event);
}

}  // namespace orvo
