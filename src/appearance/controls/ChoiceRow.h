#pragma once

#include "appearance/controls/Pressable.h"

namespace orvo {

/// A row of a list in which one is current. Screen readers hear of a list item, and whether it is selected.
class ChoiceRow : public Pressable {
    Q_OBJECT

public:
    bool isCurrent() const { return m_current; }
    void setCurrent(bool current);

protected:
    using Pressable::Pressable;

private:
    bool m_current = false;
};

/// What the rows stand in: the list that screen readers hear of, by its accessible name.
class ChoiceRows final : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;
};

}  // namespace orvo
