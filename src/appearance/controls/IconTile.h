#pragma once

#include "appearance/HexColor.h"

#include <QWidget>

#include <optional>

namespace orvo {

/// A symbol on a small round-cornered square: in the theme's accent, or in a connector's own colour.
class IconTile final : public QWidget {
    Q_OBJECT

public:
    /// `side` is 28 (idea card), 32 or 36 (full connector card).
    explicit IconTile(const QString& icon, int side = 32, std::optional<Rgb> color = {},
                      QWidget* parent = nullptr);

    void setIcon(const QString& icon, std::optional<Rgb> color = {});

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_icon;
    std::optional<Rgb> m_color;
};

}  // namespace orvo
