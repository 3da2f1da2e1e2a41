#pragma once

#include "appearance/controls/Pressable.h"

#include <QColor>
#include <QPointer>

class QColorDialog;

namespace orvo {

/// A colour to choose: shows it, and opens the colour picker, whose every choice counts at once.
class ColorWell final : public Pressable {
    Q_OBJECT

public:
    explicit ColorWell(const QString& title, QWidget* parent = nullptr);

    const QColor& color() const { return m_color; }
    /// Shows the model's colour; emits nothing.
    void setColor(const QColor& color);

    QSize sizeHint() const override { return {64, 32}; }

Q_SIGNALS:
    void picked(const QColor& color);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void openPicker();

    QColor m_color;
    QPointer<QColorDialog> m_picker;
};

}  // namespace orvo
