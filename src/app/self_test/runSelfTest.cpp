#include "app/QtArguments.h"
#include "app/TerminationSignals.h"
#include "app/exampleProject.h"
#include "app/self_test/SelfTest.h"
#include "platform/linux/LogindSleepInhibitor.h"
#include "terminal/TerminalSession.h"
#include "workspace/Workspace.h"
#include "workspace/ui/version.h"

#include <QGuiApplication>

#include <cstdio>

namespace orvo {
namespace {

/// Nobody is there to answer: each question gets the way out.
class UnattendedDialogs final : public Dialogs {
public:
    int alert(const Alert& alert) override { return static_cast<int>(alert.buttons.size()) - 1; }
    std::optional<FilePath> openFolder(const QString&) override { return std::nullopt; }
    std::optional<FilePath> openFile(const OpenPanel&) override { return std::nullopt; }
    std::optional<FilePath> saveFile(const QString&, const std::optional<FilePath>&) override {
        return std::nullopt;
    }
};

/// Opens nothing on a desktop that nobody may be looking at.
class UnattendedLauncher final : public Launcher {
public:
    Result<void> openFolder(const FilePath&) override { return {}; }
    Result<void> openAddress(const QUrl&) override { return {}; }
};

}  // namespace

int runSelfTest(int argc, char** argv, const std::optional<FilePath>& reportFolder) {
    // Drawing is tried without a display; a desktop's own theme would want one.
    qunsetenv("QT_QPA_PLATFORMTHEME");
    QtArguments arguments(argc > 0 ? argv[0] : "orvo", {"-platform", "offscreen"});
    const QGuiApplication application(arguments.count(), arguments.values());
    QCoreApplication::setApplicationName(QStringLiteral("Orvo AI"));
    QCoreApplication::setApplicationVersion(versionText());

    SystemClock clock;
    UnattendedDialogs dialogs;
    UnattendedLauncher launcher;
    LogindSleepInhibitor sleepInhibitor;
    Workspace workspace({.preferences = nullptr,
                         .clock = clock,
                         .dialogs = dialogs,
                         .launcher = launcher,
                         .sleepInhibitor = sleepInhibitor,
                         .tools = ToolEnvironment::fromProcess(),
                         .historyInbox = nullptr});
    const FilePath samples =
        ExampleProject::installedSource(FilePath::fromString(QCoreApplication::applicationDirPath()));
    SelfTest selfTest(workspace, samples, reportFolder.value_or(SelfTest::defaultFolder()));
    const TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::received, &selfTest, &SelfTest::interrupt);
    selfTest.start([&workspace](bool passed) {
        std::puts(passed ? "PELK_TESTS_PASSED" : "PELK_TESTS_FAILED");
        std::fflush(stdout);
        workspace.stopAll();
        QCoreApplication::exit(passed ? 0 : 1);
    });
    const int status = QCoreApplication::exec();
    stopSessionsAndWait(workspace.sessions());
    return status;
}

}  // namespace orvo
