#pragma once

#include "app/Options.h"
#include "appearance/Theme.h"
#include "workspace/Workspace.h"

#include <QObject>

#include <memory>

namespace orvo {

class MainWindow;
class OrvoRoot;

/// The running application with a window: it makes the models, shows the window and ends the run. Main thread
/// only; lives from start to exit.
class OrvoApplication : public QObject {
    Q_OBJECT

public:
    /// The services outlive the application. Without preferences the run is transient: it keeps nothing and
    /// quits without a question.
    OrvoApplication(const WorkspaceServices& services, Options options, QObject* parent = nullptr);
    ~OrvoApplication() override;

    Workspace& workspace() { return m_workspace; }
    Theme& theme() { return m_theme; }
    /// Null until `launch`.
    MainWindow* window() const { return m_window.get(); }

    /// Opens the main window, once.
    void launch();
    void showMainWindow();

    void about();
    void showSettings();
    void hide();
    void openProject();
    void newTerminal();
    void saveFile();
    void exportPreview();
    void minimize();
    void zoom();

    /// Asks what must be asked, stops all sessions, and says that the run has ended unless the person stays.
    void quit();
    /// The same without a question, when the system wants the process to end.
    void endNow();

    /// Writes a picture of the window's content as PNG.
    Result<void> captureWindow(const FilePath& file) const;

Q_SIGNALS:
    /// All sessions are stopped; the process may exit.
    void ended();

private:
    void openProjectOfOptions();
    void capturePages();
    void capturePage(std::size_t index);

    const WorkspaceServices m_services;
    const Options m_options;
    Theme m_theme;
    Workspace m_workspace;
    std::unique_ptr<MainWindow> m_window;
    OrvoRoot* m_root = nullptr;
    bool m_quitting = false;
};

}  // namespace orvo
