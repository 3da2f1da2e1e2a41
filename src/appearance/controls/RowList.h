#pragma once

#include <QListView>

#include <optional>

namespace orvo {

/// A list whose rows assistive technology can press, and tick where they have a box. Qt's own interface for
/// items of a view can only select them, and knows of no boxes.
class RowList : public QListView {
    Q_OBJECT

public:
    /// What a click on the row does.
    virtual void pressRow(int row) = 0;
    /// Whether the row is ticked; nothing where rows have no box.
    virtual std::optional<bool> isRowTicked(int row) const;
    virtual void toggleRow(int row);
    virtual QString rowDescription(int row) const;

protected:
    using QListView::QListView;

    /// Tells listeners that a row has been ticked or not.
    void announceToggled(int row);
};

}  // namespace orvo
