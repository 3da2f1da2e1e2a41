// The hub with its engines, as a person would use it on the example project.

#include "app/exampleProject.h"
#include "app/self_test/SelfTest.h"
#include "platform/readFile.h"
#include "workspace/Workspace.h"
#include "workspace/WorkspaceTeamRuns.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace orvo {
namespace {

using namespace std::chrono_literals;

constexpr qsizetype longest = 1'000'000;
// The practice assistants sleep a second; a slow machine starts its shells slowly.
constexpr auto sessionPatience = 20s;

QString tr(const char* text) {
    return QCoreApplication::translate("SelfTest", text);
}

/// The samples as the open project of the workspace.
Result<FilePath> openedProject(const CheckRoom& room) {
    auto project = ExampleProject::prepare(room.samples, room.folder.child("Example Project"));
    if (project) room.workspace.openFolderForThisRun(*project);
    return project;
}

QString lastWords(const TerminalSession& session) {
    return QString::fromStdString(session.screen().plainText()).simplified().right(200);
}

bool allEnd(const CheckRoom& room) {
    return room.waitFor([&room] { return !room.workspace.anySessionRunning(); }, sessionPatience);
}

/// Practice assistants that write PLAN.md in the folder they work in.
void choosePracticeAssistants(const CheckRoom& room, int count) {
    QSet<QString> ids;
    for (int number = 1; number <= count; ++number) {
        const QString id = QStringLiteral("practice-%1").arg(number);
        room.workspace.saveProvider({.id = id,
                                     .name = QStringLiteral("Practice %1").arg(number),
                                     .subtitle = {},
                                     .icon = QStringLiteral("sparkles"),
                                     .colorHex = QStringLiteral("7C5CFF"),
                                     .executable = QStringLiteral("/bin/sh"),
                                     .template_ = QStringLiteral("/bin/sh practice/planner.sh {prompt}"),
                                     .documentation = {}});
        ids.insert(id);
    }
    room.workspace.setSelectedProviders(ids);
}

Finding editorSaves(const CheckRoom& room) {
    const auto project = openedProject(room);
    if (!project) return tl::unexpected(project.error());
    ProjectFiles& files = room.workspace.files();
    const FilePath notes = project->child("notes.txt");
    if (!files.files().contains(FileEntry{notes, false})) {
        return checkFailed(tr("The project's files are not listed."));
    }
    files.openFile({notes, false});
    const QString text = files.editorText() + QStringLiteral("23:59 漢字 🙂\n");
    files.setEditorText(text);
    if (files.selectedFile() != notes || !files.saveFile() || readFile(notes, longest) != text.toUtf8()) {
        return checkFailed(tr("The file does not hold what was written in the editor."));
    }
    return QString();
}

Finding runnerRuns(const CheckRoom& room) {
    const auto project = openedProject(room);
    if (!project) return tl::unexpected(project.error());
    room.workspace.files().openFile({project->child("summary.sh"), false});
    room.workspace.runFile();
    const std::shared_ptr<TerminalSession> session = room.workspace.activeSession();
    if (!session) return checkFailed(tr("No session was started."));
    if (!allEnd(room)) return checkFailed(tr("The file did not come to an end: %1").arg(lastWords(*session)));
    if (session->exitCode() != 0) {
        return checkFailed(
            tr("Exit status %1: %2").arg(session->exitCode().value_or(-1)).arg(lastWords(*session)));
    }
    const QList<HistoryEntry>& history = room.workspace.history().entries();
    if (history.isEmpty() || history.first().title != session->title() ||
        !history.first().output.contains(QStringLiteral(" notes, last changed "))) {
        return checkFailed(tr("The session is not in the history."));
    }
    return QString();
}

Finding taskIsSent(const CheckRoom& room) {
    const auto project = openedProject(room);
    if (!project) return tl::unexpected(project.error());
    choosePracticeAssistants(room, 1);
    room.workspace.setSeparateCopies(false);
    room.workspace.setPrompt(QStringLiteral("Don't stop; \"sort\" the $notes"));
    room.workspace.dispatchPrompt();
    const std::shared_ptr<TerminalSession> session = room.workspace.activeSession();
    if (!session || !room.workspace.prompt().isEmpty()) {
        return checkFailed(tr("The task was not sent: %1").arg(room.workspace.toast().value_or(QString())));
    }
    if (!allEnd(room))
        return checkFailed(tr("The assistant did not come to an end: %1").arg(lastWords(*session)));
    const QByteArray plan = readFile(project->child("PLAN.md"), longest).value_or(QByteArray());
    if (!plan.contains("Task: Don't stop; \"sort\" the $notes\n")) {
        return checkFailed(tr("The assistant was given another task: %1").arg(lastWords(*session)));
    }
    return QString();
}

Finding teamRunWorks(const CheckRoom& room) {
    const auto project = openedProject(room);
    if (!project) return tl::unexpected(project.error());
    SystemClock clock;
    WorkspaceTeamRuns teamRuns(room.workspace, clock, room.folder.child("Runs"));
    choosePracticeAssistants(room, 2);
    room.workspace.setSeparateCopies(true);
    room.workspace.setPrompt(QStringLiteral("Sort the notes"));
    room.workspace.dispatchPrompt();
    const TeamRuns& engine = teamRuns.engine();
    const auto allEnded = [&engine] {
        return !engine.preparingRun() && engine.teamRuns().size() == 1 &&
               std::ranges::all_of(engine.teamRuns().first().copies,
                                   [](const RunCopy& copy) { return copy.exitCode.has_value(); });
    };
    if (!room.waitFor(allEnded, sessionPatience)) {
        return checkFailed(
            tr("The run did not come to an end: %1").arg(room.workspace.toast().value_or(QString())));
    }
    for (const RunCopy& copy : engine.teamRuns().first().copies) {
        if (copy.exitCode != 0 || !readFile(copy.directory.child("PLAN.md"), longest)) {
            return checkFailed(tr("An assistant did not do its work in its copy."));
        }
    }
    if (readFile(project->child("PLAN.md"), longest))
        return checkFailed(tr("The project itself was changed."));
    return tr("%1 copies").arg(engine.teamRuns().first().copies.size());
}

constexpr std::array checks = {
    Check{QT_TRANSLATE_NOOP("SelfTest", "The editor opens and saves a file"), editorSaves},
    Check{QT_TRANSLATE_NOOP("SelfTest", "The runner runs a file, and the history keeps it"), runnerRuns},
    Check{QT_TRANSLATE_NOOP("SelfTest", "A task reaches an assistant in the project"), taskIsSent},
    Check{QT_TRANSLATE_NOOP("SelfTest", "A team run works in copies and leaves the project alone"),
          teamRunWorks},
};

}  // namespace

std::span<const Check> workspaceChecks() {
    return checks;
}

}  // namespace orvo
