#include "workspace/ui/WelcomeHero.h"

#include "appearance/controls/Eyebrow.h"
#include "appearance/controls/HeaderPill.h"
#include "appearance/controls/HeroArt.h"
#include "appearance/controls/Paragraph.h"
#include "appearance/controls/layouts.h"
#include "assistants/Provider.h"

#include <array>

namespace orvo {
namespace {

// Below this the art would crowd the greeting.
constexpr int widthForArt = 600;
/// The orbits end well inside the art's box, so the box stands nearer to the edges than a margin.
constexpr QPoint artOffset(-6, -8);

/// The art shows the first four built-in connectors.
std::array<Rgb, 4> artDots() {
    std::array<Rgb, 4> dots;
    for (std::size_t i = 0; i < dots.size(); ++i) {
        dots.at(i) = colorFromHex(Provider::defaults()[static_cast<qsizetype>(i)].colorHex.toStdString());
    }
    return dots;
}

}  // namespace

WelcomeHero::WelcomeHero(QWidget* parent) : QWidget(parent), m_art(new HeroArt(artDots(), this)) {
    auto* const greeting = columnIn(this);
    greeting->addWidget(new Eyebrow(tr("Orvo AI · Your creative orbit")));
    greeting->addSpacing(10);
    greeting->addWidget(new Paragraph(tr("A new orbit\nfor your ideas."), TypeRole::Display, Ink::Text));
    greeting->addSpacing(10);
    greeting->addWidget(new Paragraph(
        tr("Think it. Build it. Make it real.\nYour tools and your companion, together."), TypeRole::Lead));
    greeting->addSpacing(14);
    greeting->addWidget(
        new HeaderPill(QStringLiteral("lock.shield"), tr("Your files. Your tools. Your accounts.")), 0,
        Qt::AlignLeft);
}

void WelcomeHero::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    m_art->setVisible(width() >= widthForArt);
    m_art->move(width() - m_art->width() + artOffset.x(), artOffset.y());
    m_art->lower();
}

}  // namespace orvo
