#include "companion/ui/CompanionSettingsView.h"

#include "appearance/controls/Card.h"
#include "appearance/controls/Divider.h"
#include "appearance/controls/Eyebrow.h"
#include "appearance/controls/FlowGrid.h"
#include "appearance/controls/InfoCard.h"
#include "appearance/controls/OrvoButton.h"
#include "appearance/controls/PageTitle.h"
#include "appearance/controls/Paragraph.h"
#include "appearance/controls/ScrollPage.h"
#include "appearance/controls/Switch.h"
#include "appearance/controls/TextLabel.h"
#include "appearance/controls/layouts.h"
#include "companion/CompanionModel.h"
#include "companion/ui/PetArt.h"
#include "companion/ui/PetTile.h"
#include "platform/images/QtImage.h"
#include "platform/observe.h"
#include "workspace/Workspace.h"

#include <QSignalBlocker>
#include <QSlider>

#include <cmath>

namespace orvo {
namespace {

constexpr int gap = 12;
constexpr int padding = 20;
constexpr int previewWidth = 340;
constexpr int labelWidth = 84;
constexpr int percentWidth = 40;
constexpr int explanationWidth = 400;
/// The slider counts in hundredths of the scale.
constexpr int scaleStep = 5;

int hundredths(double scale) {
    return static_cast<int>(std::lround(scale * 100));
}

// The model stores what it is given, also when it has it already.
void showChecked(Switch& control, bool on) {
    const QSignalBlocker quiet(control);
    control.setChecked(on);
}

QWidget* makeSection(std::initializer_list<QWidget*> parts, int spacing) {
    auto* const host = new QWidget;
    auto* const column = columnIn(host, spacing, QMargins(padding, 14, padding, 14));
    for (QWidget* const part : parts)
        column->addWidget(part);
    return host;
}

}  // namespace

CompanionSettingsView::CompanionSettingsView(CompanionModel& model, Workspace& workspace, QWidget* parent)
    : QWidget(parent), m_model(model), m_workspace(workspace) {
    auto* const page = new ScrollPage;
    columnIn(this)->addWidget(page);
    QVBoxLayout& column = page->column();
    column.addWidget(makeBack(), 0, Qt::AlignLeft);
    column.addSpacing(4);
    column.addWidget(
        new PageTitle(tr("Your pixel companion"), tr("A familiar face, always close."),
                      tr("Your reference, reimagined in pixels. Built into Orvo and ready on your "
                         "desktop, even when the workspace is minimized.")));
    column.addSpacing(20);
    auto* const halves = rowIn(nullptr, gap);
    halves->addWidget(makePreview());
    halves->addWidget(makeSettings(), 1);
    column.addLayout(halves);
    column.addSpacing(gap);
    column.addWidget(makeExplanations());
    column.addStretch(1);

    observe(m_model, {&CompanionModel::appearanceChanged, &CompanionModel::customImageChanged}, this,
            [this] { refreshPet(); });
    observe(m_model, {&CompanionModel::scaleChanged}, this, [this] { refreshScale(); });
}

QWidget* CompanionSettingsView::makeBack() {
    auto* const back =
        new OrvoButton(tr("Back to Settings"), {}, OrvoButton::Kind::Plain, OrvoButton::Size::Small);
    connect(back, &OrvoButton::clicked, this, [this] { m_workspace.setDestination(Destination::Settings); });
    back->setFlush(true);
    return back;
}

QWidget* CompanionSettingsView::makePreview() {
    auto* const card = new Card;
    card->setFixedWidth(previewWidth);
    auto* const column = columnIn(card, 0, QMargins(padding, padding, padding, padding));
    column->addStretch(1);
    auto* const art = new PetArt(m_model, PetArt::Motion::Floating);
    art->setFixedSize(200, 200);
    column->addWidget(art, 0, Qt::AlignHCenter);
    column->addSpacing(gap);
    m_name = new TextLabel(QString(), TypeRole::Name);
    column->addWidget(m_name, 0, Qt::AlignHCenter);
    column->addSpacing(4);
    auto* const text =
        new Paragraph(tr("Lives on your desktop, even when Orvo is minimized."), TypeRole::Caption);
    text->setAlignment(Qt::AlignHCenter);
    column->addWidget(text);
    column->addSpacing(gap);
    auto* const open = new OrvoButton(tr("Open quick draft"), QStringLiteral("bubble.left"));
    connect(open, &OrvoButton::clicked, this, [this] {
        m_model.setEnabled(true);
        if (m_model.openControls) m_model.openControls();
    });
    column->addWidget(open, 0, Qt::AlignHCenter);
    column->addStretch(1);
    return card;
}

QWidget* CompanionSettingsView::makeSettings() {
    auto* const card = new Card;
    auto* const column = columnIn(card);
    column->addWidget(makeShown());
    column->addWidget(new Divider);
    column->addWidget(makePets());
    column->addWidget(new Divider);
    column->addWidget(makeMotion());
    column->addStretch(1);
    return card;
}

QWidget* CompanionSettingsView::makeShown() {
    auto* const shown = new Switch(tr("Show desktop companion"));
    connect(shown, &Switch::toggled, this, [this](bool on) { m_model.setEnabled(on); });
    observe(m_model, {&CompanionModel::enabledChanged}, shown,
            [this, shown] { showChecked(*shown, m_model.enabled()); });
    auto* const text =
        new Paragraph(tr("Your pixel character is the permanent default. Choose a custom image "
                         "whenever you like, or restore the default below."),
                      TypeRole::Caption);
    return makeSection({shown, text}, 0);
}

QWidget* CompanionSettingsView::makePets() {
    auto* const tiles = new QWidget;
    auto* const row = rowIn(tiles, gap);
    m_defaultPet = new PetTile(tr("Default pet"));
    m_customPet = new PetTile(tr("Custom"));
    // Not `clicked`: assistive technology toggles.
    connect(m_defaultPet, &PetTile::toggled, this, [this](bool on) {
        if (on) m_model.setAppearance(QStringLiteral("default"));
    });
    connect(m_customPet, &PetTile::toggled, this, [this](bool on) {
        if (on) m_model.setAppearance(QStringLiteral("custom"));
    });
    row->addWidget(m_defaultPet);
    row->addWidget(m_customPet);
    row->addStretch();
    auto* const note = new Paragraph(tr("PNG, JPEG, HEIC or TIFF · up to 10 MB. Transparent PNGs look best. "
                                        "Custom images use a gentle floating animation."),
                                     TypeRole::Caption);
    return makeSection({new Eyebrow(tr("Your pet image")), tiles, makePetButtons(), note}, gap);
}

QWidget* CompanionSettingsView::makePetButtons() {
    auto* const host = new QWidget;
    auto* const row = rowIn(host, 8);
    auto* const choose = new OrvoButton(tr("Choose your own image"), QStringLiteral("photo"));
    connect(choose, &OrvoButton::clicked, &m_model, &CompanionModel::importImage);
    auto* const remove = new OrvoButton(tr("Remove custom"));
    connect(remove, &OrvoButton::clicked, &m_model, &CompanionModel::removeCustomImage);
    auto* const restoring =
        new OrvoButton(tr("Restore default pet"), QStringLiteral("arrow.counterclockwise"));
    connect(restoring, &OrvoButton::clicked, &m_model, &CompanionModel::restoreDefaultPet);
    for (QWidget* const button : {choose, remove, restoring})
        row->addWidget(button);
    row->addStretch();
    return host;
}

QWidget* CompanionSettingsView::makeMotion() {
    auto* const animate = new Switch(tr("Gentle floating motion"));
    connect(animate, &Switch::toggled, this, [this](bool on) { m_model.setAnimate(on); });
    observe(m_model, {&CompanionModel::animateChanged}, animate,
            [this, animate] { showChecked(*animate, m_model.animate()); });
    auto* const places = new QWidget;
    auto* const row = rowIn(places, 8);
    auto* const find = new OrvoButton(tr("Find pet on desktop"), QStringLiteral("scope"));
    connect(find, &OrvoButton::clicked, this, [this] {
        if (m_model.findOnDesktop) m_model.findOnDesktop();
    });
    auto* const reset = new OrvoButton(tr("Reset desktop position"));
    connect(reset, &OrvoButton::clicked, this, [this] {
        if (m_model.resetPosition) m_model.resetPosition();
    });
    row->addWidget(find);
    row->addWidget(reset);
    row->addStretch();
    return makeSection({makeSize(), animate, places}, 4);
}

QWidget* CompanionSettingsView::makeSize() {
    auto* const host = new QWidget;
    auto* const row = rowIn(host, gap);
    auto* const name = new TextLabel(tr("Pet size"));
    name->setFixedWidth(labelWidth);
    row->addWidget(name);
    m_slider = new QSlider(Qt::Horizontal);
    m_slider->setAccessibleName(name->text());
    m_slider->setRange(hundredths(CompanionModel::smallestScale) / scaleStep,
                       hundredths(CompanionModel::greatestScale) / scaleStep);
    m_slider->setPageStep(2);
    connect(m_slider, &QSlider::valueChanged, this,
            [this](int step) { m_model.setScale(step * scaleStep / 100.0); });
    row->addWidget(m_slider, 1);
    m_percent = new TextLabel(QString(), TypeRole::Body, Ink::Muted);
    m_percent->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_percent->setFixedWidth(percentWidth);
    row->addWidget(m_percent);
    return host;
}

QWidget* CompanionSettingsView::makeExplanations() {
    auto* const host = new QWidget;
    auto* const grid = new FlowGrid(explanationWidth, gap, host);
    grid->addWidget(new InfoCard(
        QStringLiteral("mic"), tr("Your voice, on your terms"),
        tr("Start the microphone to turn speech into an editable draft. It stops when you close the quick "
           "draft "
           "or after one minute. macOS asks for microphone and speech recognition permission on first use. "
           "Recognition uses Apple’s service when on-device recognition is unavailable. Nothing is sent to "
           "an "
           "AI assistant until you run the task.")));
    grid->addWidget(new InfoCard(
        QStringLiteral("speaker.wave.2"), tr("Read it. Hear it. Stop it."),
        tr("The speaker menu reads your draft or the latest terminal output using a Mac voice. Stop Orvo "
           "audio "
           "ends Orvo’s speech. This is dictation and read-aloud; a live AI voice conversation is a later "
           "step.")));
    return host;
}

void CompanionSettingsView::refreshPet() {
    m_name->setText(m_model.displayName());
    const bool custom = m_model.appearance() == QStringLiteral("custom");
    for (PetTile* const tile : {m_defaultPet, m_customPet}) {
        const QSignalBlocker quiet(tile);
        // Exclusive buttons cannot be unchecked; the model says which one it is.
        tile->setAutoExclusive(false);
        tile->setChecked((tile == m_customPet) == custom);
        tile->setAutoExclusive(true);
    }
    m_defaultPet->setImage(QtImage::of(m_model.builtInPet().get()));
    m_customPet->setImage(QtImage::of(m_model.customImage().get()));
}

void CompanionSettingsView::refreshScale() {
    m_percent->setText(QStringLiteral("%1%").arg(hundredths(m_model.scale())));
    // A stored size between two steps stays as it is until the person moves the slider.
    const QSignalBlocker quiet(m_slider);
    m_slider->setValue(hundredths(m_model.scale()) / scaleStep);
}

}  // namespace orvo
