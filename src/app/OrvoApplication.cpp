#include "app/OrvoApplication.h"

#include "app/MainWindow.h"
#include "app/Menu.h"
#include "app/exampleProject.h"
#include "appearance/controls/OrvoStyle.h"
#include "companion/ui/CompanionController.h"
#include "companion/ui/builtInPet.h"
#include "platform/EscapedPrograms.h"
#include "platform/runInBackground.h"
#include "platform/saveAtomically.h"
#include "workspace/SessionNotices.h"
#include "workspace/WorkspaceMacActions.h"
#include "workspace/WorkspaceTeamRuns.h"
#include "workspace/ui/Composer.h"
#include "workspace/ui/OrvoRoot.h"
#include "workspace/ui/version.h"

#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QImage>
#include <QLocale>
#include <QMenuBar>
#include <QPixmap>
#include <QScopedValueRollback>
#include <QUuid>

#include <array>
#include <cstdio>
#include <utility>

namespace orvo {
namespace {

using namespace std::chrono_literals;

// Time for detection and first layout before the first picture, and for a page to settle before its own.
constexpr auto captureDelay = 1000ms;
constexpr auto capturePageDelay = 800ms;

// What a fault may cost of the editor's text, in time of typing.
constexpr auto keepInterval = 3s;
// After the first picture of the window, which takes a few frames.
constexpr auto companionDelay = 100ms;

constexpr std::array capturedPages = {Destination::Workspace, Destination::Agents, Destination::Appearance,
                                      Destination::Mac,       Destination::Files,  Destination::Settings};

/// Any thread.
Result<void> writePicture(const QImage& picture, const FilePath& file) {
    QByteArray png;
    QBuffer buffer(&png);
    if (!picture.save(&buffer, "PNG")) {
        return failure(QStringLiteral("Orvo"), OrvoApplication::tr("The picture could not be made."));
    }
    return saveAtomically(file, png, {.newFile = SaveOptions::NewFile::AsUserWants});
}

}  // namespace

OrvoApplication::OrvoApplication(const WorkspaceServices& services, Options options, AppPlaces places,
                                 const DesktopServices& desktop, QObject* parent)
    : QObject(parent),
      m_services(services),
      m_options(std::move(options)),
      m_places(std::move(places)),
      m_escapedPrograms(desktop.escapedPrograms),
      m_notifications(desktop.notifications),
      m_theme(services.preferences),
      m_workspace(services),
      m_macActions(std::make_unique<WorkspaceMacActions>(m_workspace, desktop.control, services.clock,
                                                         m_places.folders.applicationData("Computer plans"))),
      m_companion({.preferences = services.preferences,
                   .clock = services.clock,
                   .dialogs = services.dialogs,
                   .images = desktop.images,
                   .microphone = desktop.microphone,
                   .recognition = desktop.recognition,
                   .synthesizer = desktop.synthesizer,
                   .builtInPet = builtInPet,
                   .locale = QLocale().name()}),
      m_crashReports(m_places.crashReports()),
      m_recovery(m_workspace.files(), m_places.folders.applicationData("Recovery")) {}

OrvoApplication::~OrvoApplication() {
    if (m_throwAwayExamples) QDir(m_throwAwayExamples->display()).removeRecursively();
}

void OrvoApplication::launch() {
    if (m_window) return;
    openFirstProject();
    // A run that keeps nothing has no place for copies.
    if (m_services.preferences) {
        m_teamRuns = std::make_unique<WorkspaceTeamRuns>(m_workspace, m_services.clock,
                                                         m_places.folders.applicationData("Runs"));
        m_teamRuns->engine().loadTeamRuns();
    } else {
        m_workspace.setSeparateCopies(false);
    }

    applyTheme(m_theme);
    m_window = std::make_unique<MainWindow>();
    const Engines engines{.teamRuns = m_teamRuns ? &m_teamRuns->engine() : nullptr,
                          .macActions = m_macActions.get(),
                          .companion = &m_companion};
    m_root = new OrvoRoot(m_workspace, m_theme, m_services.launcher, engines, m_window.get());
    m_window->setCentralWidget(m_root);
    createMenu(*m_window->menuBar(), *this);
    connect(m_window.get(), &MainWindow::closeRequested, this, &OrvoApplication::closeWindow);
    m_window->placeOnScreen();
    showMainWindow();
    runErrand(m_options.errand);
    if (m_options.capture) capturePages();
    if (isTransient()) return;
    m_notices = std::make_unique<SessionNotices>(
        m_workspace, m_services.clock, *m_services.preferences, m_notifications,
        [this](const QByteArray& activationToken) { showMainWindow(activationToken); });
    // The question must not hold up the start, and neither the pet: the window is painted by then.
    m_services.clock.after(0ms, this, [this] { tellOfTheLastRun(); });
    m_services.clock.after(companionDelay, this, [this] { startCompanion(); });
    for (const auto change : {&ProjectFiles::editorTextChanged, &ProjectFiles::savedTextChanged}) {
        connect(&m_workspace.files(), change, this, &OrvoApplication::keepUnsavedTextSoon);
    }
}

void OrvoApplication::startCompanion() {
    if (m_companionController || m_ended) return;
    const CompanionActions actions{.showMain = [this] { showMainWindow(); },
                                   .quit =
                                       [this] {
                                           quit();
                                       }};
    m_companionController = std::make_unique<CompanionController>(m_companion, m_workspace, m_theme,
                                                                  *m_services.preferences, actions);
}

// A window that is gone must be reachable: by the pet or the status item.
void OrvoApplication::closeWindow() {
    if (m_companionController && m_companionController->isReachable()) {
        m_window->hide();
    } else {
        quit();
    }
}

void OrvoApplication::setReducedMotion(bool reduced) {
    if (auto* const style = qobject_cast<OrvoStyle*>(QApplication::style()))
        style->setMotion(reduced ? Motion::Reduced : Motion::Full);
}

void OrvoApplication::openFirstProject() {
    if (m_options.workspace)
        m_workspace.openFolderForThisRun(*m_options.workspace);
    else if (!m_workspace.folder())
        openExampleProject();
}

void OrvoApplication::openExampleProject() {
    FilePath destination = m_places.folders.applicationData("Example Project");
    if (isTransient()) {
        const QByteArray name = "Orvo-examples-" + QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
        destination = FilePath::fromString(QDir::tempPath()).child(name);
        m_throwAwayExamples = destination;
    }
    if (const auto prepared = ExampleProject::prepare(m_places.exampleSource, destination))
        m_workspace.openFolderForThisRun(*prepared);
    else
        m_workspace.notify(
            tr("Choose a project folder to get started. The example project could not be prepared."));
}

void OrvoApplication::runErrand(Options::Errand errand) {
    switch (errand) {
        case Options::Errand::None:
            break;
        case Options::Errand::NewTerminal:
            newTerminal();
            break;
        case Options::Errand::QuickDraft:
            quickDraft();
            break;
    }
}

void OrvoApplication::serve(const StartRequest& request) {
    if (m_ended) return;
    // A quick draft is written beside whatever the person is at; a question that stands already is to be
    // seen.
    const bool isAside =
        request.errand == Options::Errand::QuickDraft && !request.workspace && !isTransient();
    if (!isAside || m_quitting || m_serving) showMainWindow(request.activationToken);
    // A question stands already, about quitting or for an earlier request: the person sees it now.
    if (m_quitting || m_serving) return;
    const QScopedValueRollback serving(m_serving, true);
    if (request.workspace && request.workspace != m_workspace.folder()) {
        if (!m_workspace.files().confirmDiscard()) return;
        m_workspace.openFolderForThisRun(*request.workspace);
    }
    runErrand(request.errand);
}

void OrvoApplication::tellOfTheLastRun() {
    m_crashReports.tell(m_services.dialogs);
    if (m_recovery.offer(m_services.dialogs)) m_workspace.setDestination(Destination::Files);
}

void OrvoApplication::keepUnsavedTextSoon() {
    // What was saved or given up need not wait.
    if (!m_workspace.files().fileIsDirty()) return m_recovery.forget();
    if (std::exchange(m_keepDue, true)) return;
    m_services.clock.after(keepInterval, this, [this] {
        m_keepDue = false;
        if (!m_ended) m_recovery.keepSoon();
    });
}

void OrvoApplication::showMainWindow() {
    if (!m_window) return;
    m_window->setWindowState(m_window->windowState() & ~Qt::WindowMinimized);
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
}

void OrvoApplication::showMainWindow(const QByteArray& activationToken) {
    if (!activationToken.isEmpty()) qputenv("XDG_ACTIVATION_TOKEN", activationToken);
    showMainWindow();
    // It is not for the programs that are started from here.
    qunsetenv("XDG_ACTIVATION_TOKEN");
}

void OrvoApplication::about() {
    m_services.dialogs.alert(
        {.message = tr("Orvo AI"),
         .informativeText = tr("Version %1").arg(versionText()) + QStringLiteral("\n\n") +
                            tr("Your ideas, in orbit.\nA native Mac workspace with a desktop companion."),
         .buttons = {tr("OK")}});
}

void OrvoApplication::showSettings() {
    m_workspace.setDestination(Destination::Settings);
    showMainWindow();
}

void OrvoApplication::hide() {
    // A window that could not be brought back goes to the task bar instead.
    if (m_companionController && m_companionController->isReachable()) {
        m_window->hide();
    } else {
        minimize();
    }
}

void OrvoApplication::openProject() {
    m_workspace.chooseFolder();
}

void OrvoApplication::newTerminal() {
    m_workspace.launch(m_workspace.assistants().provider(QStringLiteral("shell")), QString());
}

void OrvoApplication::quickDraft() {
    if (!isTransient()) {
        startCompanion();
        m_companionController->quickDraft();
        return;
    }
    m_workspace.setFocusMode(false);
    m_workspace.setDestination(Destination::Workspace);
    showMainWindow();
    for (Composer* const composer : m_root->findChildren<Composer*>()) {
        if (composer->isVisible()) composer->focusTask();
    }
}

void OrvoApplication::stopAudio() {
    m_companion.stopMicrophone();
    m_companion.stopSpeech();
}

void OrvoApplication::saveFile() {
    m_workspace.files().saveFile();
}

void OrvoApplication::exportPreview() {
    const auto file = m_services.dialogs.saveFile(QStringLiteral("Orvo-Preview.png"), m_workspace.folder());
    if (!file) return;
    // Writing a picture takes longer than a frame.
    runInBackground(
        this, [picture = pictureOfWindow(), file = *file] { return writePicture(picture, file); },
        [this](const Result<void>& written) {
            m_workspace.notify(written ? tr("Interface preview exported.")
                                       : tr("Could not export the preview."));
        });
}

void OrvoApplication::minimize() {
    if (m_window) m_window->showMinimized();
}

void OrvoApplication::zoom() {
    if (m_window) m_window->setWindowState(m_window->windowState() ^ Qt::WindowMaximized);
}

void OrvoApplication::quit() {
    if (m_quitting) return;
    m_quitting = true;
    if (!m_workspace.confirmQuit()) {
        m_quitting = false;
        return;
    }
    // The person has decided about the text.
    m_recovery.forget();
    stopSessionsAndWait(m_workspace.sessions());
    if (!isTransient()) askAboutEscapedPrograms();
    end();
}

void OrvoApplication::askAboutEscapedPrograms() {
    const QList<EscapedProgram> programs = m_escapedPrograms.running();
    if (programs.isEmpty()) return;
    QStringList names;
    for (const EscapedProgram& program : programs)
        names.append(QStringLiteral("%1 (%2)").arg(program.name).arg(program.pid));
    const int answer = m_services.dialogs.alert(
        {.message = tr("Some programs are still running."),
         .informativeText = tr("They were started in a session and have left it: %1. They go on without "
                               "Orvo AI unless you stop them.")
                                .arg(names.join(QStringLiteral(", "))),
         .buttons = {tr("Stop them"), tr("Leave running")}});
    if (answer == 0) m_escapedPrograms.stop(programs);
}

void OrvoApplication::endNow() {
    keepUnsavedText();
    end();
}

void OrvoApplication::keepUnsavedText() {
    // Nobody is left to tell when it fails.
    if (!isTransient()) (void)m_recovery.keep();
}

void OrvoApplication::end() {
    if (m_ended) return;
    m_ended = true;
    if (m_companionController) m_companionController->shutdown();
    m_notices.reset();
    if (m_workspace.preparingRun()) m_workspace.cancelPreparation();
    stopSessionsAndWait(m_workspace.sessions());
    Q_EMIT ended();
}

QImage OrvoApplication::pictureOfWindow() const {
    return m_root ? m_root->grab().toImage() : QImage();
}

void OrvoApplication::capturePages() {
    if (!m_options.capture) return;
    QDir().mkpath(QFile::decodeName(m_options.capture->bytes()));
    m_services.clock.after(captureDelay, this, [this] { capturePage(0); });
}

void OrvoApplication::capturePage(std::size_t index) {
    if (index == capturedPages.size()) return quit();
    const Destination page = capturedPages.at(index);
    m_workspace.setDestination(page);
    m_services.clock.after(capturePageDelay, this, [this, index, page] {
        runInBackground(
            this,
            [picture = pictureOfWindow(), file = m_options.capture->child(textOf(page).toUtf8() + ".png")] {
                return writePicture(picture, file);
            },
            [this, index](const Result<void>& written) {
                if (!written) {
                    std::fprintf(stdout, "Capture error: %s\n", qUtf8Printable(written.error().message));
                }
                capturePage(index + 1);
            });
    });
}

}  // namespace orvo
