#pragma once

#include "companion/placement.h"

#include <QObject>
#include <QPoint>
#include <QTimer>

#include <functional>
#include <memory>

class QMenu;
class QSystemTrayIcon;

namespace orvo {

class CompanionControls;
class CompanionModel;
class CompanionPanel;
class DesktopPet;
class Preferences;
class Theme;
class Workspace;

/// What the companion's windows and menus need of the application.
struct CompanionActions {
    std::function<void()> showMain;
    std::function<void()> quit;
};

/// Puts the companion on the desktop: the pet's window, the quick draft beside it and the status item, and
/// keeps them where they can be seen. Main thread only; made after the models, all of which outlive it.
class CompanionController final : public QObject {
    Q_OBJECT

public:
    CompanionController(CompanionModel& model, Workspace& workspace, const Theme& theme,
                        Preferences& preferences, CompanionActions actions, QObject* parent = nullptr);
    ~CompanionController() override;

    /// The pet's place, in the coordinates of places.
    QPointF origin() const { return m_origin; }
    bool isPetVisible() const;
    bool isDraftVisible() const;
    /// Something of the application can be seen and pressed while its main window is hidden.
    bool isReachable() const;

    /// Shows the pet while the companion is on, else hides it with its draft and its voice.
    void updateVisibility();
    void updateSize();
    void showControls();
    void dismissControls();
    void toggleControls();
    /// The pet to its first place, which is remembered.
    void resetPosition();
    void restorePosition();
    /// The pet back into a screen.
    void constrainPosition();
    void positionControls();
    void savePosition();
    /// Turns the companion on and brings the pet to its first place, in front.
    void findPet();
    /// Turns the companion on and opens the quick draft.
    void quickDraft();
    void toggle();
    void customize();
    void openMain();
    void openSettingsPage();
    void stopAudio();
    /// Ends the voice and takes everything off the desktop.
    void shutdown();

private:
    void makePanels();
    void connectModel();
    void makeStatusItem();
    void watchScreens();
    /// The application's own entries, as the status item has them.
    void addApplicationEntries(QMenu& menu);
    void showMenu(const QPoint& point);
    void moveTo(QPointF origin);
    void dragTo(const QPoint& way);
    QSize petSize() const;
    DeskRect petRect() const;
    void useDraft();
    void readOutput();
    void refreshStatusIcon();
    void refreshAsking();

    CompanionModel& m_model;
    Workspace& m_workspace;
    const Theme& m_theme;
    Preferences& m_preferences;
    const CompanionActions m_actions;
    std::unique_ptr<CompanionPanel> m_panel;
    std::unique_ptr<CompanionPanel> m_controls;
    DesktopPet* m_pet = nullptr;
    CompanionControls* m_draft = nullptr;
    std::unique_ptr<QMenu> m_statusMenu;
    std::unique_ptr<QSystemTrayIcon> m_statusItem;
    /// Runs while a session asks for the person: the age of the evidence grows.
    QTimer m_askingAge;
    bool m_asking = false;
    QPointF m_origin;
    /// Where the pet was when the pointer took hold of it.
    QPointF m_startOrigin;
};

}  // namespace orvo
