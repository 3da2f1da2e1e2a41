#pragma once

#include "appearance/controls/RowList.h"

#include <QAbstractListModel>

namespace orvo {

class CopyReview;

/// The changes under review as rows: path, kind, and whether they are ticked.
class ChangeModel final : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role { KindRole = Qt::UserRole };

    explicit ChangeModel(CopyReview& review, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    CopyReview& m_review;
    /// As listeners know it: the review may have changed a moment before they are told.
    int m_rows = 0;
};

/// The list of changes: a box to tick each of them, and a click on a row compares its file. Thousands of rows
/// cost what the visible ones cost.
class ChangeList final : public RowList {
    Q_OBJECT

public:
    explicit ChangeList(CopyReview& review, QWidget* parent = nullptr);

    CopyReview& review() const { return m_review; }

    void pressRow(int row) override;
    std::optional<bool> isRowTicked(int row) const override;
    /// Ticks the row, or takes the tick away.
    void toggleRow(int row) override;
    QString rowDescription(int row) const override;

protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void refreshCurrent();

    CopyReview& m_review;
};

}  // namespace orvo
