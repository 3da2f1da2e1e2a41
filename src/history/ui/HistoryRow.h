#pragma once

#include "appearance/controls/Pressable.h"

namespace orvo {

/// One finished session in the list: connector, title, date and exit code, in three lines. Named by its
/// title.
class HistoryRow final : public Pressable {
    Q_OBJECT

public:
    struct Lines {
        QString connector;
        QString title;
        QString date;
        QString exit;
    };

    explicit HistoryRow(const Lines& lines, QWidget* parent = nullptr);

    bool isCurrent() const { return m_current; }
    /// Whether this is the session that is being read.
    void setCurrent(bool current);

    QSize sizeHint() const override { return {240, 64}; }
    QSize minimumSizeHint() const override { return {120, 64}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Lines m_lines;
    bool m_current = false;
};

}  // namespace orvo
