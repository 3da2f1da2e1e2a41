#pragma once

#include <QAccessibleWidget>
#include <QHash>

namespace orvo {

class ChangeList;

/// The list of changes as assistive technology sees it: rows that are check boxes. Qt's own interface for
/// items of a view knows neither that they can be checked nor whether they are.
class ChangeListAccessible final : public QAccessibleWidget {
public:
    /// Done once; more calls do nothing.
    static void install();
    /// Tells listeners that a row has been ticked or not.
    static void announceToggled(ChangeList& list, int row);

    explicit ChangeListAccessible(ChangeList* list);
    ~ChangeListAccessible() override;

    int childCount() const override;
    QAccessibleInterface* child(int row) const override;
    int indexOfChild(const QAccessibleInterface* child) const override;
    QAccessibleInterface* childAt(int x, int y) const override;

private:
    ChangeList& list() const;

    /// Made when somebody asks; Qt owns the interfaces.
    mutable QHash<int, QAccessible::Id> m_rows;
};

}  // namespace orvo
