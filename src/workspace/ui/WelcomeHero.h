#pragma once

#include <QWidget>

namespace orvo {

class HeroArt;

/// The greeting of the welcome page, with its picture beside it where there is room. Reaches to the page's
/// right edge, because the picture's faint orbits do.
class WelcomeHero : public QWidget {
    Q_OBJECT

public:
    explicit WelcomeHero(QWidget* parent = nullptr);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    HeroArt* m_art;
};

}  // namespace orvo
