#pragma once

#include "appearance/controls/Pressable.h"

namespace orvo {

/// A row of a short list, 28 high, such as a recent project. Cut short at the right, with the full text as
/// tooltip then.
class ListRow final : public Pressable {
    Q_OBJECT

public:
    explicit ListRow(const QString& text, QWidget* parent = nullptr);

    QSize sizeHint() const override { return {120, 28}; }
    QSize minimumSizeHint() const override { return {40, 28}; }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace orvo
