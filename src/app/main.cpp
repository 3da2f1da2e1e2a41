#include "app/CrashHandler.h"
#include "app/EndRequests.h"
#include "app/MainWindow.h"
#include "app/Options.h"
#include "app/OrvoApplication.h"
#include "app/QtArguments.h"
#include "app/SingleInstance.h"
#include "app/StallWatch.h"
#include "app/StartAhead.h"
#include "app/exampleProject.h"
#include "app/preferenceMigration.h"
#include "app/self_test/SelfTest.h"
#include "appearance/controls/AlertSheet.h"
#include "appearance/controls/OrvoMark.h"
#include "history/HistoryInbox.h"
#include "platform/AppFolders.h"
#include "platform/desktop/DesktopLauncher.h"
#include "platform/desktop/LoadedDesktopControl.h"
#include "platform/desktop/QtDialogs.h"
#include "platform/images/QtImageDecoder.h"
#include "platform/linux/AdoptedPrograms.h"
#include "platform/linux/FilePreferences.h"
#include "platform/linux/FreedesktopNotifications.h"
#include "platform/linux/LogindSleepInhibitor.h"
#include "platform/linux/MotionSetting.h"
#include "platform/observe.h"
#include "platform/voice/VoiceServices.h"
#include "workspace/ui/version.h"

#include <QApplication>
#include <QDir>
#include <QStandardPaths>

#include <cstdio>
#include <optional>

using namespace orvo;
using namespace std::chrono_literals;

namespace {

constexpr int usageError = 2;

// After the first picture of the window, which takes a few frames.
constexpr auto laterDelay = 100ms;

#ifdef ORVO_STALL_WATCH
// Three frames of a screen with 60 a second: what a person begins to feel.
constexpr auto stallLimit = 50ms;
#endif

FilePath currentFolder() {
    return FilePath(QFile::encodeName(QDir::currentPath()));
}

/// What the desktop gave this start; taken away so that children do not inherit it.
QByteArray takeActivationToken() {
    const QByteArray token = qgetenv("XDG_ACTIVATION_TOKEN");
    qunsetenv("XDG_ACTIVATION_TOKEN");
    return token;
}

/// The place of the one instance, or nothing when this start has nothing more to do, with its exit status.
struct Place {
    std::unique_ptr<SingleInstance> instance;
    int status = 0;
};

Place claimPlace(const Options& options, const FilePath& dataFolder, const QByteArray& activationToken) {
    // Empty when the session's folder is somebody else's, as after a change of the account.
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    Result<SingleInstance::Claim> claim = SingleInstance::claim(
        folder.isEmpty() ? dataFolder : FilePath::fromString(folder),
        {.workspace = options.workspace, .errand = options.errand, .activationToken = activationToken});
    if (!claim) {
        std::fprintf(stderr, "orvo: %s\n", qUtf8Printable(claim.error().message));
        return {nullptr, 1};
    }
    if (auto* const instance = std::get_if<std::unique_ptr<SingleInstance>>(&*claim)) {
        return {std::move(*instance), 0};
    }
    return {nullptr, 0};
}

int showWindow(const char* program, const Options& options) {
    const Result<QByteArrayList> display = displayOptions();
    if (!display) {
        std::fprintf(stderr, "orvo: %s\n", qUtf8Printable(display.error().message));
        return 1;
    }
    const StartAhead ahead;
    const QByteArray activationToken = takeActivationToken();
    QtArguments arguments(program, *display);
    QApplication application(arguments.count(), arguments.values());
    const FontFamiliesAhead fontFamilies;
    // Qt has read what the desktop wants to be told once the window is there.
    qunsetenv("DESKTOP_STARTUP_ID");
    QCoreApplication::setApplicationName(QStringLiteral("Orvo AI"));
    QCoreApplication::setApplicationVersion(versionText());
    QGuiApplication::setDesktopFileName(QStringLiteral("orvo"));
    // The application ends with its quit sequence, never because some window closed.
    QGuiApplication::setQuitOnLastWindowClosed(false);

    SystemClock clock;
    const AppPlaces places{.folders = AppFolders::fromProcess(),
                           .exampleSource = ExampleProject::installedSource(
                               FilePath::fromString(QCoreApplication::applicationDirPath()))};
    const FilePath configuration = places.folders.configuration;
    const HistoryInbox historyInbox(configuration.child("history.pending"));
    // A transient run leaves alone what belongs to the instance with the window, and nothing behind.
    const bool isTransient = options.capture.has_value();
    Place place;
    std::optional<FilePreferences> preferences;
    // What a first start stores goes to the disk in one piece, once the window is there.
    std::optional<Preferences::Together> together;
    if (!isTransient) {
        place = claimPlace(options, places.folders.data, activationToken);
        if (!place.instance) return place.status;
        installCrashHandler(places.crashReports(), versionText().toUtf8());
        preferences.emplace(configuration, FilePreferences::Access::ReadWrite);
        together.emplace(*preferences);
        migratePreferences(*preferences, configuration.parent().child("dev.pelk.desktop"));
    }
    // Alerts stand over the main window, which is made later than the dialogs it needs.
    MainWindow* window = nullptr;
    QtDialogs dialogs([&window](const Alert& alert) { return presentAlert(window, alert); });
    DesktopLauncher launcher;
    LoadedDesktopControl desktop;
    const QtImageDecoder images;
    VoiceServices voice(preferences ? &*preferences : nullptr);
    LogindSleepInhibitor sleepInhibitor;
    AdoptedPrograms escapedPrograms(clock);
    FreedesktopNotifications notifications;
    OrvoApplication orvo({.preferences = preferences ? &*preferences : nullptr,
                          .clock = clock,
                          .dialogs = dialogs,
                          .launcher = launcher,
                          .sleepInhibitor = sleepInhibitor,
                          .tools = ToolEnvironment::fromProcess(),
                          .historyInbox = isTransient ? nullptr : &historyInbox},
                         options, places,
                         {.control = desktop,
                          .images = images,
                          .microphone = voice.microphone(),
                          .recognition = voice.recognition(),
                          .synthesizer = voice.synthesizer(),
                          .escapedPrograms = escapedPrograms,
                          .notifications = notifications});
    // Not quit(): that would first ask the window to close, which it answers by asking for this end.
    QObject::connect(
        &orvo, &OrvoApplication::ended, &application, [] { QCoreApplication::exit(0); },
        Qt::QueuedConnection);
    const EndRequests endRequests(application, orvo);
    if (place.instance) {
        QObject::connect(place.instance.get(), &SingleInstance::requested, &orvo, &OrvoApplication::serve);
    }
    orvo.launch();
    window = orvo.window();
    // What need not be there for the first picture.
    std::optional<MotionSetting> motion;
    clock.after(laterDelay, &orvo, [&together, &motion, &orvo] {
        QGuiApplication::setWindowIcon(brandIcon());
        together.reset();
        motion.emplace();
        observe(*motion, {&MotionSetting::reducedChanged}, &orvo,
                [&orvo, &motion] { orvo.setReducedMotion(motion->isReduced()); });
    });
#ifdef ORVO_STALL_WATCH
    std::optional<StallWatch> stallWatch;
    // Once the window has been painted; the start has a measure of its own.
    clock.after(0ms, &orvo, [&stallWatch] { stallWatch.emplace(stallLimit); });
#endif
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
        case Options::Request::SelfTest:
            return runSelfTest(argc, argv, options->testOutput);
        case Options::Request::Window:
            break;
    }
    return showWindow(argc > 0 ? argv[0] : "orvo", *options);
}
