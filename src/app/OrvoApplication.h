#pragma once

#include "app/CrashReports.h"
#include "app/EditorRecovery.h"
#include "app/Options.h"
#include "app/SingleInstance.h"
#include "appearance/Theme.h"
#include "companion/CompanionModel.h"
#include "platform/AppFolders.h"
#include "workspace/Workspace.h"

#include <QImage>
#include <QObject>

#include <memory>

namespace orvo {

class CompanionController;
class DesktopControl;
class DesktopNotifications;
class EscapedPrograms;
class MainWindow;
class OrvoRoot;
class SessionNotices;
class WorkspaceMacActions;
class WorkspaceTeamRuns;

/// Where the application finds and keeps its things.
struct AppPlaces {
    AppFolders folders;
    /// The installed sample files.
    FilePath exampleSource;

    FilePath crashReports() const { return folders.applicationData("Crash reports"); }
};

/// What the desktop does for more than the workspace. All outlive the application.
struct DesktopServices {
    DesktopControl& control;
    const ImageDecoder& images;
    Microphone& microphone;
    SpeechRecognition& recognition;
    SpeechSynthesizer& synthesizer;
    EscapedPrograms& escapedPrograms;
    DesktopNotifications& notifications;
};

/// The running application with a window: it makes the models, shows the window and ends the run. Main thread
/// only; lives from start to exit.
class OrvoApplication : public QObject {
    Q_OBJECT

public:
    /// The services outlive the application. Without preferences the run is transient: it keeps nothing and
    /// quits without a question.
    OrvoApplication(const WorkspaceServices& services, Options options, AppPlaces places,
                    const DesktopServices& desktop, QObject* parent = nullptr);
    ~OrvoApplication() override;

    Workspace& workspace() { return m_workspace; }
    Theme& theme() { return m_theme; }
    CompanionModel& companion() { return m_companion; }
    /// The companion on the desktop; null until the event loop runs, and in a transient run.
    CompanionController* companionController() const { return m_companionController.get(); }
    /// Null until `launch`.
    MainWindow* window() const { return m_window.get(); }

    /// Whether things glide on the screen or jump. Works once the window is open.
    void setReducedMotion(bool reduced);
    /// Opens the main window, once.
    void launch();
    void showMainWindow();
    /// With what the desktop gave the one who asks, so that it lets the window come to the front.
    void showMainWindow(const QByteArray& activationToken);
    /// What a later start asks for: the window in front, and perhaps a folder or an errand.
    void serve(const StartRequest& request);

    void about();
    void showSettings();
    void hide();
    void openProject();
    void newTerminal();
    /// The companion's quick draft; without one, the main window with the keyboard in the task field.
    void quickDraft();
    void stopAudio();
    void saveFile();
    void exportPreview();
    void minimize();
    void zoom();

    /// Asks what must be asked, stops all sessions, and says that the run has ended unless the person stays.
    void quit();
    /// The same without a question, when the system wants the process to end: unsaved text of the editor is
    /// kept for the next start.
    void endNow();
    /// Keeps the editor's unsaved text for a next start, should the system end this run.
    void keepUnsavedText();

Q_SIGNALS:
    /// All sessions are stopped; the process may exit.
    void ended();

private:
    bool isTransient() const { return m_services.preferences == nullptr; }
    /// Of the window's content; null while there is no window.
    QImage pictureOfWindow() const;
    void openFirstProject();
    void startCompanion();
    void closeWindow();
    void openExampleProject();
    void runErrand(Options::Errand errand);
    void tellOfTheLastRun();
    void keepUnsavedTextSoon();
    void end();
    void askAboutEscapedPrograms();
    void capturePages();
    void capturePage(std::size_t index);

    const WorkspaceServices m_services;
    const Options m_options;
    const AppPlaces m_places;
    EscapedPrograms& m_escapedPrograms;
    DesktopNotifications& m_notifications;
    Theme m_theme;
    Workspace m_workspace;
    const std::unique_ptr<WorkspaceMacActions> m_macActions;
    CompanionModel m_companion;
    const CrashReports m_crashReports;
    EditorRecovery m_recovery;
    bool m_keepDue = false;
    /// The throw-away example project of a transient run.
    std::optional<FilePath> m_throwAwayExamples;
    /// Null in a transient run.
    std::unique_ptr<WorkspaceTeamRuns> m_teamRuns;
    /// Null in a transient run, and before `launch`.
    std::unique_ptr<SessionNotices> m_notices;
    std::unique_ptr<MainWindow> m_window;
    std::unique_ptr<CompanionController> m_companionController;
    OrvoRoot* m_root = nullptr;
    bool m_quitting = false;
    bool m_serving = false;
    bool m_ended = false;
};

}  // namespace orvo
