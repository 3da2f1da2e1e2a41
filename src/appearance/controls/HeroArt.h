#pragma once

#include "appearance/HexColor.h"

#include <QWidget>

#include <array>

namespace orvo {

/// The welcome page's picture, 320 x 216: the brand's ring and orbit among three wider orbits, with four dots
/// in the connectors' colours.
class HeroArt final : public QWidget {
    Q_OBJECT

public:
    explicit HeroArt(const std::array<Rgb, 4>& dots, QWidget* parent = nullptr);

    /// Computes the shapes that the first picture would wait for. Any thread, also before the application
    /// object.
    static void prepare();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::array<Rgb, 4> m_dots;
};

}  // namespace orvo
