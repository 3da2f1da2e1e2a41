#pragma once

#include <QList>
#include <QWidget>

class QLabel;
class QSlider;

namespace orvo {

class ColorWell;
class FlowGrid;
class PaletteTile;
class Theme;

/// The Appearance page: palettes, colours of one's own, terminal text size, and how that looks. Every change
/// counts at once. The theme outlives the page.
class AppearanceView final : public QWidget {
    Q_OBJECT

public:
    explicit AppearanceView(Theme& theme, QWidget* parent = nullptr);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* makeTiles();
    QWidget* makePersonalPalette();
    QWidget* makeTextSize();
    QWidget* makePreview();
    void refreshTiles();
    void refreshColors();
    void refreshTextSize();
    void restore();

    Theme& m_theme;
    FlowGrid* m_tileGrid = nullptr;
    QList<PaletteTile*> m_tiles;
    ColorWell* m_background = nullptr;
    ColorWell* m_accent = nullptr;
    QLabel* m_size = nullptr;
    QSlider* m_slider = nullptr;
};

}  // namespace orvo
