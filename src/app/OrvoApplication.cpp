#include "app/OrvoApplication.h"

#include "app/MainWindow.h"
#include "app/Menu.h"
#include "appearance/controls/OrvoStyle.h"
#include "workspace/ui/OrvoRoot.h"
#include "workspace/ui/version.h"

#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QMenuBar>
#include <QPixmap>
#include <QSaveFile>

#include <array>
#include <cstdio>

namespace orvo {
namespace {

using namespace std::chrono_literals;

// Time for detection and first layout before the first picture, and for a page to settle before its own.
constexpr auto captureDelay = 1000ms;
constexpr auto capturePageDelay = 800ms;

constexpr std::array capturedPages = {Destination::Workspace, Destination::Agents, Destination::Appearance,
                                      Destination::Mac,       Destination::Files,  Destination::Settings};

}  // namespace

OrvoApplication::OrvoApplication(const WorkspaceServices& services, Options options, QObject* parent)
    : QObject(parent),
      m_services(services),
      m_options(std::move(options)),
      m_theme(services.preferences),
      m_workspace(services) {}

OrvoApplication::~OrvoApplication() = default;

void OrvoApplication::launch() {
    if (m_window) return;
    openProjectOfOptions();
    // Nobody takes over separate copies yet, so the composer starts with what works.
    if (!m_workspace.hasTeamRuns()) m_workspace.setSeparateCopies(false);

    applyTheme(m_theme);
    m_window = std::make_unique<MainWindow>();
    m_root = new OrvoRoot(m_workspace, m_theme, m_services.launcher, m_window.get());
    m_window->setCentralWidget(m_root);
    createMenu(*m_window->menuBar(), *this);
    connect(m_window.get(), &MainWindow::closeRequested, this, &OrvoApplication::quit);
    m_window->placeOnScreen();
    showMainWindow();
    if (m_options.capture) capturePages();
}

void OrvoApplication::openProjectOfOptions() {
    if (m_options.workspace) m_workspace.openFolderForThisRun(*m_options.workspace);
}

void OrvoApplication::showMainWindow() {
    if (!m_window) return;
    m_window->setWindowState(m_window->windowState() & ~Qt::WindowMinimized);
    m_window->show();
    m_window->raise();
    m_window->activateWindow();
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
    // Without a status item a window that is gone could not be brought back, so it goes to the task bar.
    minimize();
}

void OrvoApplication::openProject() {
    m_workspace.chooseFolder();
}

void OrvoApplication::newTerminal() {
    m_workspace.launch(m_workspace.assistants().provider(QStringLiteral("shell")), QString());
}

void OrvoApplication::saveFile() {
    m_workspace.files().saveFile();
}

void OrvoApplication::exportPreview() {
    const auto file = m_services.dialogs.saveFile(QStringLiteral("Orvo-Preview.png"), m_workspace.folder());
    if (!file) return;
    m_workspace.notify(captureWindow(*file) ? tr("Interface preview exported.")
                                            : tr("Could not export the preview."));
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
    endNow();
}

void OrvoApplication::endNow() {
    stopSessionsAndWait(m_workspace.sessions());
    Q_EMIT ended();
}

Result<void> OrvoApplication::captureWindow(const FilePath& file) const {
    if (!m_root) return failure(QStringLiteral("Orvo"), tr("There is no window."), 1);
    QByteArray png;
    QBuffer buffer(&png);
    if (!m_root->grab().save(&buffer, "PNG")) {
        return failure(QStringLiteral("Orvo"), tr("The picture could not be made."), 2);
    }
    QSaveFile out(QFile::decodeName(file.bytes()));
    if (!out.open(QIODevice::WriteOnly) || out.write(png) != png.size() || !out.commit()) {
        return failure(QStringLiteral("Orvo"), out.errorString(), 3);
    }
    return {};
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
        const auto written = captureWindow(m_options.capture->child(textOf(page).toUtf8() + ".png"));
        if (!written) {
            std::fprintf(stdout, "Capture error: %s\n", qUtf8Printable(written.error().message));
        }
        capturePage(index + 1);
    });
}

}  // namespace orvo
