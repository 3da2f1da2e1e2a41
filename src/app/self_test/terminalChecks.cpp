// Real commands on real pseudo-terminals.

#include "app/self_test/SelfTest.h"
#include "assistants/Provider.h"
#include "platform/linux/processTable.h"
#include "platform/readFile.h"
#include "terminal/TerminalSession.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <array>

namespace orvo {
namespace {

using namespace std::chrono_literals;

// A login shell reads the person's own start-up files, which may take their time.
constexpr auto shellPatience = 15s;

QString tr(const char* text) {
    return QCoreApplication::translate("SelfTest", text);
}

QString screenText(const TerminalSession& session) {
    return QString::fromStdString(session.screen().plainText());
}

/// Whether a process of the group still runs; one that only waits to be reaped by its parent does not.
bool groupLives(qint64 group) {
    return std::ranges::any_of(processTable(), [group](const ProcessEntry& entry) {
        return entry.group == group && entry.isAlive();
    });
}

/// A started command, ended with the check.
class Command {
public:
    Command(const CheckRoom& room, const QString& command)
        : m_room(room), m_session(QStringLiteral("shell"), tr("Self-test"), command, room.folder) {
        m_session.start();
    }
    ~Command() { m_session.stop(); }

    TerminalSession& session() { return m_session; }
    bool shows(const QString& text) {
        return m_room.waitFor([&] { return screenText(m_session).contains(text) || !m_session.running(); },
                              shellPatience) &&
               screenText(m_session).contains(text);
    }
    bool ends() {
        return m_room.waitFor([this] { return !m_session.running(); }, shellPatience);
    }
    /// What a person would see of a command that went wrong.
    tl::unexpected<Error> failed(const QString& reason) {
        const QString state = m_session.running()
                                  ? tr("still running")
                                  : tr("exit status %1").arg(m_session.exitCode().value_or(-1));
        return checkFailed(
            QStringLiteral("%1 (%2; %3)").arg(reason, state, screenText(m_session).simplified().right(200)));
    }

private:
    const CheckRoom& m_room;
    TerminalSession m_session;
};

Finding shellStarts(const CheckRoom& room) {
    QElapsedTimer time;
    time.start();
    Command command(room,
                    QStringLiteral("print -r -- orvo:$((6*7)):$TERM; [[ -t 0 && -t 1 && -t 2 ]] && exit 7"));
    if (!command.ends()) return command.failed(tr("The shell did not come to an end in time."));
    if (command.session().exitCode() != 7 || !command.shows(QStringLiteral("orvo:42:xterm-256color"))) {
        return command.failed(tr("The shell gave another answer than it should."));
    }
    return tr("zsh with its start-up files took %1 ms").arg(time.elapsed());
}

Finding inputArrives(const CheckRoom& room) {
    QByteArray input;
    for (int line = 0; input.size() < 200'000; ++line)
        input += "line " + QByteArray::number(line) + " é漢字🙂\n";
    Command command(
        room, QStringLiteral("stty raw -echo && print ready && head -c %1 > input.txt").arg(input.size()));
    if (!command.shows(QStringLiteral("ready")))
        return command.failed(tr("The terminal was not ready in time."));
    command.session().sendBytes(input);
    if (!command.ends()) return command.failed(tr("The input was not read in time."));
    const Result<QByteArray> read = readFile(room.folder.child("input.txt"), input.size());
    if (read != input) return command.failed(tr("Other bytes arrived than were sent."));
    return tr("%1 bytes").arg(input.size());
}

Finding outputIsInterpreted(const CheckRoom& room) {
    Command command(
        room,
        QStringLiteral(R"(printf '\033[2J\033[3;5H\033[1;31mred\033[0m e\314\201 漢字 🙂|\033[1;1Htop')"));
    if (!command.ends()) return command.failed(tr("The command did not come to an end in time."));
    const QStringList rows = screenText(command.session()).split(u'\n');
    if (!rows.value(0).startsWith(QStringLiteral("top")) ||
        !rows.value(2).startsWith(QStringLiteral("    red e\u0301 漢字 🙂|"))) {
        return command.failed(tr("The screen shows something else than was printed."));
    }
    return QString();
}

Finding sizeReachesProgram(const CheckRoom& room) {
    Command command(
        room, QStringLiteral("TRAPWINCH() { stty size; exit }; print ready; while :; do sleep 0.05; done"));
    if (!command.shows(QStringLiteral("ready")))
        return command.failed(tr("The terminal was not ready in time."));
    command.session().resize(31, 101);
    if (!command.shows(QStringLiteral("31 101"))) return command.failed(tr("The new size was not reported."));
    return QString();
}

Finding taskIsOneWord(const CheckRoom& room) {
    const QString task =
        QStringLiteral("Say \"hello\" to 'everyone';\n$(touch hacked) `touch hacked` \\ ~ * é漢🙂 !!");
    Command command(room, QStringLiteral("printf %s ") + shellQuote(task) + QStringLiteral(" > task.txt"));
    if (!command.ends()) return command.failed(tr("The command did not come to an end in time."));
    if (readFile(room.folder.child("task.txt"), 10'000) != task.toUtf8()) {
        return command.failed(tr("The program was given another task."));
    }
    if (readFile(room.folder.child("hacked"), 1))
        return command.failed(tr("The task was read as a command."));
    return QString();
}

Finding stoppingEndsTheGroup(const CheckRoom& room) {
    Command command(
        room, QStringLiteral("trap '' TERM HUP; /bin/sh -c 'trap \"\" TERM HUP; sleep 300; sleep 300' & "
                             "print ready; sleep 300; sleep 300"));
    if (!command.shows(QStringLiteral("ready")))
        return command.failed(tr("The terminal was not ready in time."));
    const pid_t group = command.session().pid();
    QElapsedTimer time;
    time.start();
    command.session().stop();
    if (!room.waitFor([group] { return !groupLives(group); }, 5s)) {
        return command.failed(tr("A program that is deaf to requests was not ended."));
    }
    return tr("gone after %1 ms").arg(time.elapsed());
}

constexpr std::array checks = {
    Check{QT_TRANSLATE_NOOP("SelfTest", "A login shell starts in a pseudo-terminal"), shellStarts},
    Check{QT_TRANSLATE_NOOP("SelfTest", "Input of any size arrives whole"), inputArrives},
    Check{QT_TRANSLATE_NOOP("SelfTest", "Output is interpreted into a screen"), outputIsInterpreted},
    Check{QT_TRANSLATE_NOOP("SelfTest", "A program hears of its terminal's new size"), sizeReachesProgram},
    Check{QT_TRANSLATE_NOOP("SelfTest", "A task reaches a program as one word"), taskIsOneWord},
    Check{QT_TRANSLATE_NOOP("SelfTest", "Stopping a session ends its whole process group"),
          stoppingEndsTheGroup},
};

}  // namespace

std::span<const Check> terminalChecks() {
    return checks;
}

}  // namespace orvo
