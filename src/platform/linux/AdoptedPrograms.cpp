#include "platform/linux/AdoptedPrograms.h"

#include "platform/Clock.h"
#include "platform/linux/processTable.h"
#include "platform/readFile.h"

#include <algorithm>
#include <csignal>
#include <optional>
#include <thread>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orvo {
namespace {

using namespace std::chrono_literals;

// Whoever waits for a child reaps it within two seconds of its end. One that is still there a minute later is
// nobody's.
constexpr auto reapInterval = 60s;
constexpr auto patience = 1s;
constexpr auto checkInterval = 20ms;

/// What still runs of the programs' sessions: they themselves and what they have started.
QList<ProcessEntry> belongingTo(const QList<EscapedProgram>& programs) {
    const QList<ProcessEntry> table = processTable();
    QSet<qint64> sessions;
    for (const ProcessEntry& entry : table) {
        const bool isMeant = std::ranges::any_of(programs, [&entry](const EscapedProgram& program) {
            return program.pid == entry.pid && program.started == entry.started;
        });
        if (isMeant) sessions.insert(entry.session);
    }
    QList<ProcessEntry> found;
    std::ranges::copy_if(table, std::back_inserter(found), [&sessions](const ProcessEntry& entry) {
        return entry.isAlive() && sessions.contains(entry.session);
    });
    return found;
}

/// The search path that a process was started with; nothing when there is none or it may not be seen.
std::optional<QByteArray> searchPathOf(qint64 pid) {
    // A process takes at most two megabytes of arguments and environment unless somebody has raised the
    // limit.
    constexpr qsizetype longest = qsizetype{8} * 1024 * 1024;
    const auto environment = readFile(FilePath("/proc/" + QByteArray::number(pid) + "/environ"), longest);
    if (!environment) return std::nullopt;
    for (const QByteArray& entry : environment->split('\0')) {
        if (entry.startsWith("PATH=")) return entry.mid(5);
    }
    return std::nullopt;
}

}  // namespace

AdoptedPrograms::AdoptedPrograms(Clock& clock, QObject* parent) : QObject(parent), m_clock(clock) {
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    reapLater();
}

QList<EscapedProgram> AdoptedPrograms::running() const {
    const qint64 self = getpid();
    const qint64 ownSession = getsid(0);
    QList<EscapedProgram> programs;
    for (const ProcessEntry& entry : processTable()) {
        // What was started on the desktop shares our session; what ran in a terminal never did.
        if (entry.parent != self || !entry.isAlive() || entry.session == ownSession) continue;
        // Services that our own libraries start, such as the one that reads aloud, leave it too. They have
        // our search path, while every terminal has one of its own.
        if (searchPathOf(entry.pid) == qgetenv("PATH")) continue;
        programs.append({.pid = entry.pid, .started = entry.started, .name = QString::fromUtf8(entry.name)});
    }
    std::ranges::sort(programs, {}, &EscapedProgram::pid);
    return programs;
}

void AdoptedPrograms::stop(const QList<EscapedProgram>& programs) {
    QList<ProcessEntry> left = belongingTo(programs);
    for (const ProcessEntry& entry : left)
        kill(static_cast<pid_t>(entry.pid), SIGTERM);
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!left.isEmpty() && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(checkInterval);
        left = belongingTo(programs);
    }
    for (const ProcessEntry& entry : left)
        kill(static_cast<pid_t>(entry.pid), SIGKILL);
}

void AdoptedPrograms::reapLater() {
    m_clock.after(reapInterval, this, [this] {
        reap();
        reapLater();
    });
}

/// Each by its own id: waiting for any child would steal the status that a session waits for.
void AdoptedPrograms::reap() {
    const qint64 self = getpid();
    QSet<std::pair<qint64, quint64>> ended;
    for (const ProcessEntry& entry : processTable()) {
        if (entry.parent != self || entry.state != 'Z') continue;
        const std::pair child(entry.pid, entry.started);
        if (m_ended.contains(child))
            waitpid(static_cast<pid_t>(entry.pid), nullptr, WNOHANG);
        else
            ended.insert(child);
    }
    m_ended = ended;
}

}  // namespace orvo
