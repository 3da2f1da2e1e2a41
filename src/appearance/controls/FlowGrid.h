#pragma once

#include <QLayout>
#include <QList>

namespace orvo {

/// A grid whose columns are as many as fit, all equally wide; the cells of a row are equally high.
class FlowGrid final : public QLayout {
    Q_OBJECT

public:
    /// `minimumColumnWidth` and `gap` are in dip.
    explicit FlowGrid(int minimumColumnWidth, int gap = 12, QWidget* parent = nullptr);
    ~FlowGrid() override;

    /// Always this many columns, whatever the width; 0 goes back to as many as fit.
    void setFixedColumns(int columns);
    int columnsFor(int width) const;

    void addItem(QLayoutItem* item) override;
    int count() const override;
    QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;
    Qt::Orientations expandingDirections() const override { return Qt::Horizontal; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSize() const override;
    void setGeometry(const QRect& rect) override;

private:
    enum class Place { No, Yes };
    /// Gives the height the cells need within `area`, and puts them there if told so.
    int layOut(const QRect& area, Place place) const;

    QList<QLayoutItem*> m_items;
    int m_minimumColumnWidth;
    int m_gap;
    int m_fixedColumns = 0;
};

}  // namespace orvo
