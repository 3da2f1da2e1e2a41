#pragma once

#include <QScrollArea>

class QVBoxLayout;

namespace orvo {

/// A page that scrolls: one column with 24 around it, at most 1160 wide and centred.
class ScrollPage final : public QScrollArea {
    Q_OBJECT

public:
    static constexpr int margin = 24;
    static constexpr int readingWidth = 1160;

    /// `widest` is the greatest width of the column in dip; tool pages use the full width.
    explicit ScrollPage(int widest = readingWidth, QWidget* parent = nullptr);

    /// Where the page's content goes, from top to bottom; spacing is the page's own affair.
    QVBoxLayout& column() { return *m_column; }

private:
    QVBoxLayout* m_column;
};

}  // namespace orvo
