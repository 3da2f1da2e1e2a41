#include "platform/desktop/X11DesktopControl.h"

#include "platform/FileDescriptor.h"
#include "platform/SerialQueue.h"
#include "platform/desktop/ApplicationWindow.h"
#include "platform/desktop/DesktopEntries.h"
#include "platform/desktop/KeyboardTyper.h"
#include "platform/desktop/XConnection.h"
#include "platform/systemError.h"

#include <QPointer>
#include <QSocketNotifier>
#include <QTimer>

#include <cerrno>

#include <sys/syscall.h>
#include <sys/wait.h>

namespace orvo {
namespace {

bool isWaylandSession() {
    return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           qEnvironmentVariable("XDG_SESSION_TYPE") == QStringLiteral("wayland");
}

}  // namespace

// A started process: reaped when it ends. One that ended without an error has handed over to another.
struct X11DesktopControl::Launched {
    InstalledApplication application;
    FileDescriptor process;
    std::unique_ptr<QSocketNotifier> watch;
    bool failed = false;
};

X11DesktopControl::X11DesktopControl(QObject* parent) : QObject(parent) {
    if (isWaylandSession()) return;
    m_connection = XConnection::open();
    if (m_connection && !m_connection->hasTestExtension()) m_connection.reset();
}

X11DesktopControl::~X11DesktopControl() {
    m_stop.request_stop();
}

bool X11DesktopControl::isTrusted() const {
    return m_connection && !xcb_connection_has_error(m_connection->get());
}

QString X11DesktopControl::trustHint() const {
    return isTrusted() ? QString() : tr("Typing into other apps needs an X11 session.");
}

Result<void> X11DesktopControl::openSettings(SettingsPage) {
    const auto settings = DesktopEntries::first({"gnome-control-center.desktop", "org.gnome.Settings.desktop",
                                                 "systemsettings.desktop", "xfce-settings-manager.desktop",
                                                 "cinnamon-settings.desktop", "mate-control-center.desktop"});
    if (!settings) {
        return failure(QStringLiteral("OrvoDesktop"),
                       tr("No settings application is installed on this desktop."));
    }
    return launch(*settings, {}).map([](qint64) {});
}

std::optional<InstalledApplication> X11DesktopControl::application(const QString& identifier) const {
    return DesktopEntries::find(identifier);
}

Result<qint64> X11DesktopControl::launch(const InstalledApplication& application, const QUrl& address) {
    const auto started = DesktopEntries::launch(application, address);
    if (!started || *started <= 0) return started;
    const auto id = static_cast<pid_t>(*started);
    auto launched = std::make_unique<Launched>();
    launched->application = application;
    launched->process = FileDescriptor(static_cast<int>(syscall(SYS_pidfd_open, id, 0)));
    if (!launched->process.isOpen()) return started;
    launched->watch = std::make_unique<QSocketNotifier>(launched->process.number(), QSocketNotifier::Read);
    connect(launched->watch.get(), &QSocketNotifier::activated, this, [this, id] {
        int status = 0;
        if (waitpid(id, &status, WNOHANG) == 0) return;
        const auto ended = m_launched.find(id);
        if (ended == m_launched.end()) return;
        ended->second->watch->setEnabled(false);
        ended->second->watch.release()->deleteLater();
        ended->second->failed = status != 0;
        if (status == 0) m_launched.erase(ended);
    });
    m_launched[id] = std::move(launched);
    return started;
}

// Many programs open one more window each time they are started; the steps of a plan belong into one.
std::optional<RunningApplication> X11DesktopControl::activate(const InstalledApplication& application) {
    if (!isTrusted()) return std::nullopt;
    const QByteArray windowClass = DesktopEntries::windowClass(application);
    QList<RunningApplication> candidates{{0, application}};
    for (const auto& [id, launched] : m_launched) {
        if (launched->application == application) candidates.append({id, application});
    }
    for (const ApplicationWindow& window : ApplicationWindow::all(*m_connection)) {
        for (const RunningApplication& candidate : std::as_const(candidates)) {
            if (!window.belongsTo(candidate, windowClass)) continue;
            window.activate(*m_connection);
            return RunningApplication{candidate.processID ? candidate.processID : window.processID,
                                      application};
        }
    }
    return std::nullopt;
}

void X11DesktopControl::later(std::function<void()> work) {
    QTimer::singleShot(0, this, std::move(work));
}

void X11DesktopControl::openApplication(const InstalledApplication& application, Opened done) {
    if (const auto running = activate(application)) {
        later([running, done = std::move(done)] { done(running); });
        return;
    }
    const auto started = launch(application, {});
    later([started, application, done = std::move(done)] {
        done(started.map([&](qint64 id) { return std::optional(RunningApplication{id, application}); }));
    });
}

void X11DesktopControl::openAddress(const QUrl& address, const InstalledApplication& application, Done done) {
    const auto started = launch(application, address);
    later([started, done = std::move(done)] { done(started.map([](qint64) {})); });
}

bool X11DesktopControl::isTerminated(const RunningApplication& application) const {
    const auto launched = m_launched.find(application.processID);
    return launched != m_launched.end() && launched->second->failed;
}

bool X11DesktopControl::isFrontmost(const RunningApplication& application) const {
    if (!isTrusted()) return false;
    const auto front = ApplicationWindow::inFront(*m_connection);
    return front && front->belongsTo(application, DesktopEntries::windowClass(application.application));
}

Result<void> X11DesktopControl::checkTypeable(const QString& line) const {
    return KeyboardTyper::check(line);
}

void X11DesktopControl::cancelTyping() {
    m_stop.request_stop();
}

namespace {

// What holds while input goes to this application: its window has the keyboard.
KeyboardTyper::Guard inFront(const RunningApplication& application) {
    return [application, windowClass = DesktopEntries::windowClass(application.application)](
               const XConnection& connection) {
        const auto front = ApplicationWindow::inFront(connection);
        return front && front->belongsTo(application, windowClass);
    };
}

}  // namespace

void X11DesktopControl::input(Input send, Done done) {
    if (!m_typing) m_typing = SerialQueue::create("orvo.typing");
    if (!m_typing) {
        later([done = std::move(done), error = systemError(errno)] { done(tl::unexpected(error)); });
        return;
    }
    m_typing->async([desktop = QPointer(this), send = std::move(send), done = std::move(done)]() mutable {
        const auto typer = KeyboardTyper::open();
        Result<void> outcome = typer ? send(**typer) : tl::unexpected(typer.error());
        deliver(desktop, [outcome = std::move(outcome), done = std::move(done)] { done(outcome); });
    });
}

// On the main thread, and only while the desktop is there.
void X11DesktopControl::deliver(const QPointer<X11DesktopControl>& desktop, std::function<void()> work) {
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [desktop, work = std::move(work)] {
            if (desktop) work();
        },
        Qt::QueuedConnection);
}

void X11DesktopControl::typeLine(const RunningApplication& application, const QString& line,
                                 Progress progress, Done done) {
    m_stop = std::stop_source();
    const auto report = [desktop = QPointer(this), progress = std::move(progress)](qsizetype sent) {
        deliver(desktop, [progress, sent] { progress(sent); });
    };
    input([line, stop = m_stop.get_token(), guard = inFront(application),
           report](KeyboardTyper& typer) { return typer.type(line, stop, guard, report); },
          std::move(done));
}

void X11DesktopControl::pressKey(const RunningApplication& application, quint16 code, quint64 modifiers,
                                 Done done) {
    input([code, modifiers, guard = inFront(application)](
              KeyboardTyper& typer) { return typer.press(code, modifiers, guard); },
          std::move(done));
}

}  // namespace orvo
