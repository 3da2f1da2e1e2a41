#pragma once

#include "appearance/controls/ChoiceRow.h"

namespace orvo {

/// One finished session in the list: connector, title, date and exit code, in three lines. Named by its
/// title.
class HistoryRow final : public ChoiceRow {
    Q_OBJECT

public:
    struct Lines {
        QString connector;
        QString title;
        QString date;
        QString exit;

        bool operator==(const Lines&) const = default;
    };

    explicit HistoryRow(const Lines& lines, QWidget* parent = nullptr);

    void setLines(const Lines& lines);

    QSize sizeHint() const override { return {240, 64}; }
    QSize minimumSizeHint() const override { return {120, 64}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Lines m_lines;
};

}  // namespace orvo
