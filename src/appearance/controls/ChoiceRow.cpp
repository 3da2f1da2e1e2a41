#include "appearance/controls/ChoiceRow.h"

#include <QAccessible>

namespace orvo {

void ChoiceRow::setCurrent(bool current) {
    if (m_current == current) return;
    m_current = current;
    update();
    QAccessible::State changed;
    changed.selected = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
}

}  // namespace orvo
