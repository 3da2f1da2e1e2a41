#pragma once

#include "appearance/Roles.h"
#include "appearance/Theme.h"
#include "appearance/controls/Pressable.h"

namespace orvo {

/// A palette to choose, with a picture of its colours. Checked while it is the current one; a radio button to
/// assistive technology.
class PaletteTile final : public Pressable {
    Q_OBJECT

public:
    explicit PaletteTile(const ThemePreset& preset, QWidget* parent = nullptr);

    const ThemePreset& preset() const { return m_preset; }

    QSize sizeHint() const override { return {272, 168}; }
    QSize minimumSizeHint() const override { return {180, 168}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void paintSwatch(QPainter& painter, const QRectF& box) const;

    const ThemePreset m_preset;
    const Roles m_colors;
};

}  // namespace orvo
