#pragma once

#include "appearance/controls/Pressable.h"

namespace orvo {

/// A setting that is on or off: label at the left, switch at the right, the whole row reacts. A check box to
/// assistive technology; handle `toggled`.
class Switch final : public Pressable {
    Q_OBJECT

public:
    explicit Switch(const QString& title, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void checkStateSet() override;
    void nextCheckState() override;
    void paintEvent(QPaintEvent* event) override;

private:
    Glide m_position;
};

}  // namespace orvo
