#pragma once

#include "appearance/controls/TextLabel.h"

namespace orvo {

/// A small number beside a title.
class CountBadge final : public TextLabel {
    Q_OBJECT

public:
    explicit CountBadge(QWidget* parent = nullptr);

    void setCount(qsizetype count);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace orvo
