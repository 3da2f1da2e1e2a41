#pragma once

#include <QWidget>

namespace orvo {

/// A line of the theme's border colour between two parts.
class Divider final : public QWidget {
    Q_OBJECT

public:
    explicit Divider(Qt::Orientation orientation = Qt::Horizontal, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace orvo
