#include "appearance/ui/AppearanceView.h"

#include "appearance/Theme.h"
#include "appearance/controls/Card.h"
#include "appearance/controls/Divider.h"
#include "appearance/controls/Eyebrow.h"
#include "appearance/controls/FlowGrid.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/PageTitle.h"
#include "appearance/controls/ScrollPage.h"
#include "appearance/controls/TextLabel.h"
#include "appearance/controls/layouts.h"
#include "appearance/controls/painting.h"
#include "appearance/ui/ColorWell.h"
#include "appearance/ui/PaletteTile.h"
#include "appearance/ui/ThemePreview.h"
#include "platform/observe.h"

#include <QSignalBlocker>
#include <QSlider>

#include <cmath>

namespace orvo {
namespace {

constexpr int gap = 12;
constexpr int padding = 20;
constexpr int rowHeight = 48;
constexpr int labelWidth = 124;
/// Under this width of the page's content, the tiles stand two by two.
constexpr int fourTiles = 900;
constexpr int smallestText = 10;
constexpr int largestText = 20;
constexpr double defaultText = 12;

/// A row of the palette card: a name, and its control at the right.
QWidget* makeRow(const QString& name, QWidget* control) {
    auto* const host = new QWidget;
    host->setFixedHeight(rowHeight);
    auto* const row = rowIn(host, gap);
    row->addWidget(new TextLabel(name), 1);
    row->addWidget(control);
    return host;
}

void pick(ColorWell& well, Theme& theme, void (Theme::*set)(const QString&)) {
    QObject::connect(&well, &ColorWell::picked, &theme,
                     [&theme, set](const QColor& color) { (theme.*set)(color.name().mid(1).toUpper()); });
}

}  // namespace

AppearanceView::AppearanceView(Theme& theme, QWidget* parent) : QWidget(parent), m_theme(theme) {
    auto* const page = new ScrollPage;
    columnIn(this)->addWidget(page);
    QVBoxLayout& column = page->column();
    column.addWidget(new PageTitle(tr("Make it yours"), tr("A workspace in your colors."),
                                   tr("Start with a palette, then tune the background, accent, and terminal "
                                      "text size. Changes apply immediately.")));
    column.addSpacing(20);
    column.addWidget(makeTiles());
    column.addSpacing(20);
    auto* const halves = rowIn(nullptr, gap);
    halves->addWidget(makePersonalPalette(), 1);
    halves->addWidget(makePreview(), 1);
    column.addLayout(halves);
    column.addStretch(1);

    observe(m_theme, {&Theme::presetIDChanged}, this, [this] { refreshTiles(); });
    observe(m_theme, {&Theme::backgroundHexChanged, &Theme::accentHexChanged}, this,
            [this] { refreshColors(); });
    observe(m_theme, {&Theme::fontSizeChanged}, this, [this] { refreshTextSize(); });
}

QWidget* AppearanceView::makeTiles() {
    auto* const host = new QWidget;
    m_tileGrid = new FlowGrid(0, gap, host);
    for (const ThemePreset& preset : ThemePreset::all()) {
        auto* const tile = new PaletteTile(preset);
        // Not `clicked`: assistive technology toggles.
        connect(tile, &PaletteTile::toggled, this, [this, preset](bool on) {
            if (on) m_theme.apply(preset);
        });
        m_tiles.append(tile);
        m_tileGrid->addWidget(tile);
    }
    return host;
}

QWidget* AppearanceView::makePersonalPalette() {
    auto* const card = new Card;
    auto* const column = columnIn(card, 0, QMargins(padding, padding, padding, padding));
    column->addWidget(new Eyebrow(tr("Personal palette")));
    column->addSpacing(6);
    column->addWidget(new TextLabel(tr("A little more you."), TypeRole::Section));
    column->addSpacing(12);
    m_background = new ColorWell(tr("Background"));
    pick(*m_background, m_theme, &Theme::setBackgroundHex);
    m_accent = new ColorWell(tr("Accent color"));
    pick(*m_accent, m_theme, &Theme::setAccentHex);
    for (ColorWell* const well : {m_background, m_accent}) {
        column->addWidget(makeRow(well->title(), well));
        column->addWidget(new Divider);
    }
    column->addWidget(makeTextSize());
    column->addWidget(new Divider);
    column->addSpacing(16);
    auto* const restoring =
        new OrvoButton(tr("Restore charcoal & pelk"), QStringLiteral("arrow.counterclockwise"));
    connect(restoring, &OrvoButton::clicked, this, [this] { restore(); });
    column->addWidget(restoring, 0, Qt::AlignLeft);
    column->addStretch();
    return card;
}

QWidget* AppearanceView::makeTextSize() {
    auto* const host = new QWidget;
    host->setFixedHeight(rowHeight);
    auto* const row = rowIn(host, gap);
    auto* const name = new TextLabel(tr("Terminal text"));
    name->setFixedWidth(labelWidth);
    row->addWidget(name);
    m_slider = new QSlider(Qt::Horizontal);
    m_slider->setAccessibleName(name->text());
    m_slider->setRange(smallestText, largestText);
    m_slider->setPageStep(1);
    connect(m_slider, &QSlider::valueChanged, this, [this](int size) { m_theme.setFontSize(size); });
    row->addWidget(m_slider, 1);
    m_size = new TextLabel(QString(), TypeRole::Body, Ink::Muted);
    m_size->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_size->setFixedWidth(28);
    row->addWidget(m_size);
    return host;
}

QWidget* AppearanceView::makePreview() {
    auto* const card = new Card;
    auto* const column = columnIn(card, 12, QMargins(padding, padding, padding, padding));
    column->addWidget(new Eyebrow(tr("Live preview")));
    column->addWidget(new ThemePreview(m_theme), 1);
    return card;
}

void AppearanceView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const int content = std::min(width() - 2 * ScrollPage::margin, ScrollPage::readingWidth);
    m_tileGrid->setFixedColumns(content < fourTiles ? 2 : 4);
}

void AppearanceView::refreshTiles() {
    for (PaletteTile* const tile : std::as_const(m_tiles)) {
        const QSignalBlocker quiet(tile);
        // Exclusive buttons keep one of them checked; colours of one's own belong to none.
        tile->setAutoExclusive(false);
        tile->setChecked(tile->preset().id == m_theme.presetID());
        tile->setAutoExclusive(true);
    }
}

void AppearanceView::refreshColors() {
    m_background->setColor(toQColor(m_theme.bg()));
    m_accent->setColor(toQColor(m_theme.accent()));
}

void AppearanceView::refreshTextSize() {
    const int size = static_cast<int>(std::lround(m_theme.fontSize()));
    m_size->setText(QString::number(size));
    // A stored size outside the slider's range stays as it is until the person moves the slider.
    const QSignalBlocker quiet(m_slider);
    m_slider->setValue(size);
}

void AppearanceView::restore() {
    m_theme.apply(ThemePreset::all().first());
    m_theme.setFontSize(defaultText);
}

}  // namespace orvo
