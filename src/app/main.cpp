#include "app/MainWindow.h"
#include "app/Options.h"
#include "app/OrvoApplication.h"
#include "app/TerminationSignals.h"
#include "appearance/controls/AlertSheet.h"
#include "history/HistoryInbox.h"
#include "platform/AppFolders.h"
#include "platform/desktop/DesktopLauncher.h"
#include "platform/desktop/QtDialogs.h"
#include "platform/linux/FilePreferences.h"
#include "platform/linux/LogindSleepInhibitor.h"
#include "workspace/ui/version.h"

#include <QApplication>
#include <QDir>
#include <QIcon>

#include <cstdio>

using namespace orvo;

namespace {

constexpr int usageError = 2;

FilePath currentFolder() {
    return FilePath(QFile::encodeName(QDir::currentPath()));
}

/// Wayland lets no program place, raise or type into windows, so the X server is preferred where there is
/// one.
void choosePlatform() {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && !qEnvironmentVariableIsEmpty("DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "xcb");
    }
}

bool hasDisplay() {
    for (const char* variable : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) {
        if (!qEnvironmentVariableIsEmpty(variable)) return true;
    }
    return false;
}

int showWindow(int argc, char** argv, const Options& options) {
    choosePlatform();
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Orvo AI"));
    QCoreApplication::setApplicationVersion(versionText());
    QGuiApplication::setDesktopFileName(QStringLiteral("orvo"));
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/brand/orvo.svg")));
    // The application ends with its quit sequence, never because some window closed.
    QGuiApplication::setQuitOnLastWindowClosed(false);

    SystemClock clock;
    const FilePath configuration = AppFolders::fromProcess().configuration;
    FilePreferences preferences(configuration, FilePreferences::Access::ReadWrite);
    const HistoryInbox historyInbox(configuration.child("history.pending"));
    // Alerts stand over the main window, which is made later than the dialogs it needs.
    MainWindow* window = nullptr;
    QtDialogs dialogs([&window](const Alert& alert) { return presentAlert(window, alert); });
    DesktopLauncher launcher;
    LogindSleepInhibitor sleepInhibitor;
    OrvoApplication orvo({.preferences = options.capture ? nullptr : &preferences,
                          .clock = clock,
                          .dialogs = dialogs,
                          .launcher = launcher,
                          .sleepInhibitor = sleepInhibitor,
                          .tools = ToolEnvironment::fromProcess(),
                          .historyInbox = options.capture ? nullptr : &historyInbox},
                         options);
    // Not quit(): that would first ask the window to close, which it answers by asking for this end.
    QObject::connect(
        &orvo, &OrvoApplication::ended, &application, [] { QCoreApplication::exit(0); },
        Qt::QueuedConnection);
    TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::received, &orvo, &OrvoApplication::endNow);
    orvo.launch();
    window = orvo.window();
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    const Result<Options> options =
        parseOptions(QList<QByteArray>(argv + 1, argv + std::max(argc, 1)), currentFolder());
    if (!options) {
        std::fprintf(stderr, "orvo: %s Try \"orvo --help\".\n", qUtf8Printable(options.error().message));
        return usageError;
    }
    switch (options->request) {
        case Options::Request::Help:
            std::fputs(qUtf8Printable(optionsHelp()), stdout);
            return 0;
        case Options::Request::Version:
            std::printf("Orvo AI %s\n", qUtf8Printable(versionText()));
            return 0;
        case Options::Request::Window:
            break;
    }
    if (!hasDisplay()) {
        std::fputs("orvo: There is no display to open a window on. Try orvoctl.\n", stderr);
        return 1;
    }
    return showWindow(argc, argv, *options);
}
