#pragma once

#include <QAccessibleWidget>
#include <QHash>

namespace orvo {

class RowList;

/// A list as assistive technology sees it: rows that can be pressed, check boxes where they can be ticked.
class RowListAccessible final : public QAccessibleWidget {
public:
    explicit RowListAccessible(RowList* list);
    ~RowListAccessible() override;

    int childCount() const override;
    QAccessibleInterface* child(int row) const override;
    int indexOfChild(const QAccessibleInterface* child) const override;
    QAccessibleInterface* childAt(int x, int y) const override;

private:
    RowList& list() const;

    /// Made when somebody asks; Qt owns the interfaces.
    mutable QHash<int, QAccessible::Id> m_rows;
};

}  // namespace orvo
