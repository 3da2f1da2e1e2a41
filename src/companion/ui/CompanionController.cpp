#include "companion/ui/CompanionController.h"

#include "appearance/Roles.h"
#include "appearance/Theme.h"
#include "appearance/controls/painting.h"
#include "appearance/controls/symbols.h"
#include "companion/CompanionModel.h"
#include "companion/ui/CompanionControls.h"
#include "companion/ui/CompanionPanel.h"
#include "companion/ui/DesktopPet.h"
#include "companion/ui/PetInteractionView.h"
#include "companion/ui/deskScreens.h"
#include "platform/Preferences.h"
#include "platform/desktop/panelHints.h"
#include "platform/observe.h"
#include "terminal/TerminalSession.h"
#include "workspace/SessionNotices.h"
#include "workspace/Workspace.h"

#include <QGuiApplication>
#include <QMenu>
#include <QPainter>
#include <QScreen>
#include <QSystemTrayIcon>

#include <algorithm>
#include <cmath>

namespace orvo {
namespace {

/// Of the pet's window at scale 1, in dip.
constexpr QSizeF petAtOne(176, 186);
/// Status items are drawn between 16 and 32 pixels high.
constexpr int statusIconSize = 32;
/// Half as wide as the mark of a session that asks.
constexpr double statusDot = 8;
constexpr auto evidenceInterval = std::chrono::seconds(10);

}  // namespace

CompanionController::CompanionController(CompanionModel& model, Workspace& workspace, const Theme& theme,
                                         Preferences& preferences, CompanionActions actions, QObject* parent)
    : QObject(parent),
      m_model(model),
      m_workspace(workspace),
      m_theme(theme),
      m_preferences(preferences),
      m_actions(std::move(actions)) {
    makePanels();
    connectModel();
    makeStatusItem();
    watchScreens();
    updateSize();
    restorePosition();
    updateVisibility();
}

CompanionController::~CompanionController() {
    for (CompanionModel::Action* const action :
         {&m_model.visibilityChanged, &m_model.sizeChanged, &m_model.openControls, &m_model.openWorkspace,
          &m_model.openSettings, &m_model.resetPosition, &m_model.findOnDesktop, &m_model.useDraft,
          &m_model.readOutput}) {
        *action = {};
    }
}

void CompanionController::makePanels() {
    auto* const pointer = new PetInteractionView({.click = [this] { toggleControls(); },
                                                  .hold = [this] { m_startOrigin = m_origin; },
                                                  .drag = [this](const QPoint& way) { dragTo(way); },
                                                  .drop = [this] { savePosition(); },
                                                  .menu =
                                                      [this](const QPoint& point) {
                                                          showMenu(point);
                                                      }});
    m_pet = new DesktopPet(m_model, pointer);
    m_panel = std::make_unique<CompanionPanel>(tr("Orvo desktop companion"), m_pet,
                                               CompanionPanel::Shadow::None, CompanionPanel::Focus::Refuses);
    connect(m_panel.get(), &CompanionPanel::closeRequested, this, [this] { m_model.setEnabled(false); });
    // The shape follows the floating pet where clear parts would be black.
    m_panel->setOutline([this] { return m_pet->outline(); });
    connect(m_pet, &DesktopPet::outlineChanged, m_panel.get(), [this] {
        if (m_panel->isVisible()) m_panel->refreshBlending();
    });

    m_draft = new CompanionControls(m_model);
    m_controls = std::make_unique<CompanionPanel>(tr("Orvo companion controls"), m_draft,
                                                  CompanionPanel::Shadow::Soft, CompanionPanel::Focus::Takes);
    m_controls->setContentSize(CompanionControls::size);
    connect(m_draft, &CompanionControls::closeRequested, this, &CompanionController::dismissControls);
    connect(m_controls.get(), &CompanionPanel::closeRequested, this, &CompanionController::dismissControls);
}

void CompanionController::connectModel() {
    m_model.visibilityChanged = [this] {
        updateVisibility();
    };
    m_model.sizeChanged = [this] {
        updateSize();
    };
    m_model.openControls = [this] {
        showControls();
    };
    m_model.openWorkspace = m_actions.showMain;
    m_model.openSettings = [this] {
        m_workspace.setDestination(Destination::Companion);
        m_actions.showMain();
    };
    m_model.resetPosition = [this] {
        resetPosition();
    };
    m_model.findOnDesktop = [this] {
        findPet();
    };
    m_model.useDraft = [this] {
        useDraft();
    };
    m_model.readOutput = [this] {
        readOutput();
    };
}

void CompanionController::makeStatusItem() {
    if (!hasStatusItems()) return;
    m_statusMenu = std::make_unique<QMenu>();
    m_statusMenu->addAction(tr("Open Orvo AI"), this, &CompanionController::openMain);
    addApplicationEntries(*m_statusMenu);
    m_statusItem = std::make_unique<QSystemTrayIcon>();
    m_statusItem->setContextMenu(m_statusMenu.get());
    connect(m_statusItem.get(), &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason == QSystemTrayIcon::Trigger) openMain();
            });
    observe(m_theme, {&Theme::accentHexChanged}, m_statusItem.get(), [this] { refreshStatusIcon(); });
    m_askingAge.setInterval(evidenceInterval);
    connect(&m_askingAge, &QTimer::timeout, this, &CompanionController::refreshAsking);
    observe(m_workspace, {&Workspace::sessionMarksChanged, &Workspace::sessionsChanged}, m_statusItem.get(),
            [this] { refreshAsking(); });
    // Shows up as soon as the desktop has a place for it.
    m_statusItem->show();
}

void CompanionController::refreshStatusIcon() {
    QPixmap drawing =
        symbolPixmap(QStringLiteral("circle.hexagongrid"), toQColor(m_theme.accent()), statusIconSize, 1);
    if (m_asking) {
        QPainter painter(&drawing);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        const QPointF centre(statusIconSize - statusDot, statusDot);
        // Cut out of the symbol, so that both can be told apart on a panel of any colour.
        painter.setCompositionMode(QPainter::CompositionMode_Clear);
        painter.drawEllipse(centre, statusDot, statusDot);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter.setBrush(toQColor(Roles::of(m_theme).danger));
        painter.drawEllipse(centre, statusDot - 2, statusDot - 2);
    }
    m_statusItem->setIcon(QIcon(drawing));
}

void CompanionController::refreshAsking() {
    const QString asking = askingText(m_workspace);
    m_statusItem->setToolTip(asking.isEmpty() ? tr("Orvo AI") : tr("Orvo AI") + u'\n' + asking);
    if (assign(m_asking, !asking.isEmpty())) refreshStatusIcon();
    if (m_asking && !m_askingAge.isActive()) m_askingAge.start();
    if (!m_asking) m_askingAge.stop();
}

void CompanionController::addApplicationEntries(QMenu& menu) {
    menu.addAction(tr("Settings…"), this, &CompanionController::openSettingsPage);
    menu.addAction(tr("Stop microphone & audio").replace(u'&', QStringLiteral("&&")), this,
                   &CompanionController::stopAudio);
    menu.addSeparator();
    QAction* const quit = menu.addAction(tr("Quit Orvo AI"), this, [this] { m_actions.quit(); });
    quit->setShortcut(Qt::CTRL | Qt::Key_Q);
    // Only told here: the main window's menu has the key.
    quit->setShortcutContext(Qt::WidgetShortcut);
}

void CompanionController::watchScreens() {
    const auto follow = [this] {
        constrainPosition();
        positionControls();
    };
    const auto watch = [this, follow](QScreen* screen) {
        connect(screen, &QScreen::geometryChanged, this, follow);
        connect(screen, &QScreen::availableGeometryChanged, this, follow);
        follow();
    };
    for (QScreen* const screen : QGuiApplication::screens())
        watch(screen);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, watch);
    // The screen still counts until the signal has been served.
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, follow, Qt::QueuedConnection);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, follow);
}

bool CompanionController::isPetVisible() const {
    return m_panel->isVisible();
}

bool CompanionController::isDraftVisible() const {
    return m_controls->isVisible();
}

bool CompanionController::isReachable() const {
    return isPetVisible() || (m_statusItem && QSystemTrayIcon::isSystemTrayAvailable());
}

void CompanionController::updateVisibility() {
    if (m_model.enabled() && m_model.displayedImage()) {
        m_panel->showQuietly();
        return;
    }
    m_panel->hide();
    m_controls->hide();
    stopAudio();
}

QSize CompanionController::petSize() const {
    const double scale =
        std::clamp(m_model.scale(), CompanionModel::smallestScale, CompanionModel::greatestScale);
    return (petAtOne * scale).toSize();
}

DeskRect CompanionController::petRect() const {
    const QSizeF size = petSize();
    return {m_origin.x(), m_origin.y(), size.width(), size.height()};
}

void CompanionController::moveTo(QPointF origin) {
    m_origin = origin;
    m_panel->placeContent(toolkitCorner(m_origin, petSize()));
}

void CompanionController::updateSize() {
    m_panel->setContentSize(petSize());
    // It grows upward from where it stands.
    moveTo(m_origin);
    constrainPosition();
    positionControls();
}

void CompanionController::showControls() {
    positionControls();
    m_controls->showInFront();
    m_draft->focusDraft();
}

void CompanionController::dismissControls() {
    m_model.stopMicrophone();
    m_controls->hide();
}

void CompanionController::toggleControls() {
    if (m_controls->isVisible()) {
        dismissControls();
    } else {
        showControls();
    }
}

void CompanionController::resetPosition() {
    const auto origin = defaultOrigin(petSize(), deskScreens());
    if (!origin) return;
    moveTo(*origin);
    savePosition();
    positionControls();
}

void CompanionController::restorePosition() {
    const auto x = m_preferences.value(preference::petX);
    if (!x) return resetPosition();
    const double y = m_preferences.value(preference::petY).value_or(0);
    // Numbers that are none would survive every clamp.
    if (!std::isfinite(*x) || !std::isfinite(y)) return resetPosition();
    moveTo({*x, y});
    constrainPosition();
}

void CompanionController::constrainPosition() {
    if (const auto origin = constrainedOrigin(petRect(), deskScreens())) moveTo(*origin);
}

void CompanionController::positionControls() {
    const QSize size = CompanionControls::size;
    if (const auto origin = controlsOrigin(petRect(), size, deskScreens()))
        m_controls->placeContent(toolkitCorner(*origin, size));
}

// The place lasts for this run when it cannot be stored; the store tells the person itself.
void CompanionController::savePosition() {
    (void)m_preferences.setValue(preference::petX, m_origin.x());
    (void)m_preferences.setValue(preference::petY, m_origin.y());
}

void CompanionController::dragTo(const QPoint& way) {
    moveTo(m_startOrigin + QPointF(way.x(), -way.y()));
    constrainPosition();
    positionControls();
}

void CompanionController::findPet() {
    m_model.setEnabled(true);
    resetPosition();
    m_panel->showInFront();
}

void CompanionController::quickDraft() {
    m_model.setEnabled(true);
    showControls();
}

void CompanionController::toggle() {
    m_model.setEnabled(!m_model.enabled());
}

void CompanionController::customize() {
    if (m_model.openSettings) m_model.openSettings();
}

void CompanionController::openMain() {
    m_actions.showMain();
}

void CompanionController::openSettingsPage() {
    m_workspace.setDestination(Destination::Settings);
    m_actions.showMain();
}

void CompanionController::stopAudio() {
    m_model.stopMicrophone();
    m_model.stopSpeech();
}

void CompanionController::shutdown() {
    stopAudio();
    m_panel->hide();
    m_controls->hide();
    m_askingAge.stop();
    m_statusItem.reset();
    m_statusMenu.reset();
}

void CompanionController::showMenu(const QPoint& point) {
    auto* const menu = new QMenu;
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(tr("Open Orvo AI"), this, [this] { m_model.openWorkspace(); });
    menu->addAction(tr("Quick draft"), this, &CompanionController::showControls);
    menu->addAction(tr("Change pet image…"), this, [this] { m_model.importImage(); });
    menu->addAction(tr("Customize companion"), this, &CompanionController::customize);
    menu->addAction(tr("Hide companion"), this, [this] { m_model.setEnabled(false); });
    if (!QSystemTrayIcon::isSystemTrayAvailable()) {
        menu->addSeparator();
        addApplicationEntries(*menu);
    }
    menu->popup(point);
}

void CompanionController::useDraft() {
    m_model.stopMicrophone();
    const QString draft = m_model.draft().trimmed();
    if (draft.isEmpty()) return;
    const QString& prompt = m_workspace.prompt();
    m_workspace.setPrompt(prompt.trimmed().isEmpty() ? draft : prompt + QStringLiteral("\n\n") + draft);
    m_workspace.setDestination(Destination::Workspace);
    m_model.setDraft(QString());
    dismissControls();
    m_actions.showMain();
    m_workspace.notify(tr("Companion draft added. Choose your assistants and run it when ready."));
}

void CompanionController::readOutput() {
    QString text;
    if (const auto session = m_workspace.activeSession()) {
        text = QString::fromStdString(session->screen().plainText());
    } else if (const auto& entries = m_workspace.history().entries(); !entries.isEmpty()) {
        text = entries.first().output;
    }
    m_model.speak(text);
}

}  // namespace orvo
