// What is kept on the disk, in throw-away folders.

#include "app/exampleProject.h"
#include "app/self_test/SelfTest.h"
#include "history/HistoryStore.h"
#include "mac_actions/ComputerPlan.h"
#include "platform/linux/FilePreferences.h"
#include "platform/readFile.h"
#include "platform/saveAtomically.h"
#include "team_runs/Apply.h"
#include "team_runs/Changes.h"
#include "team_runs/Snapshot.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <cerrno>

#include <sys/stat.h>

namespace orvo {
namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("SelfTest", text);
}

constexpr qsizetype longest = 1'000'000;

/// Permission bits, or -1.
int modeOf(const FilePath& path) {
    struct stat status{};
    return stat(path.bytes().constData(), &status) == 0 ? static_cast<int>(status.st_mode & 07777) : -1;
}

Finding preferencesRoundTrip(const CheckRoom& room) {
    const FilePath folder = room.folder.child("configuration");
    const QStringList folders = {QStringLiteral("/srv/tide notes"), QStringLiteral("/srv/漢字")};
    {
        FilePreferences first(folder, FilePreferences::Access::ReadWrite);
        const bool stored = first.setValue(preference::keepAwake, true) &&
                            first.setValue(preference::terminalFont, 14.5) &&
                            first.setValue(preference::accent, QStringLiteral("7C5CFF")) &&
                            first.setValue(preference::recentFolders, folders) &&
                            first.setValue(preference::history, QByteArray("[]"));
        if (!stored) return checkFailed(tr("A preference could not be stored."));
    }
    const FilePreferences second(folder, FilePreferences::Access::ReadOnly);
    if (second.value(preference::keepAwake) != true || second.value(preference::terminalFont) != 14.5 ||
        second.value(preference::accent) != QStringLiteral("7C5CFF") ||
        second.value(preference::recentFolders) != folders ||
        second.value(preference::history) != QByteArray("[]")) {
        return checkFailed(tr("A preference came back with another value."));
    }
    if (modeOf(folder) != 0700 || modeOf(folder.child("preferences.json")) != 0600) {
        return checkFailed(tr("Others may read the preferences."));
    }
    return QString();
}

Finding savingReplacesWhole(const CheckRoom& room) {
    const FilePath file = room.folder.child(QByteArray(250, 'n') + ".text");
    for (const QByteArray& content : {QByteArray(longest, 'a'), QByteArray("b"), QByteArray()}) {
        if (const Result<void> saved = saveAtomically(file, content); !saved) {
            return tl::unexpected(saved.error());
        }
        if (readFile(file, longest) != content)
            return checkFailed(tr("The file has another content than was saved."));
    }
    if (modeOf(file) != 0600) return checkFailed(tr("Others may read the file."));
    return QString();
}

Finding samplesArePrepared(const CheckRoom& room) {
    const FilePath project = room.folder.child("Example Project");
    if (const auto prepared = ExampleProject::prepare(room.samples, project); !prepared) {
        return tl::unexpected(prepared.error());
    }
    const FilePath readme = project.child("README.md");
    if (readFile(readme, longest).value_or(QByteArray()).isEmpty())
        return checkFailed(tr("There is no README."));
    if (!saveAtomically(readme, "mine") || !ExampleProject::prepare(room.samples, project) ||
        readFile(readme, longest) != QByteArray("mine")) {
        return checkFailed(tr("A changed sample file was not kept."));
    }
    return QString();
}

Finding copyRoundTrips(const CheckRoom& room) {
    const FilePath project = room.folder.child("project");
    if (const auto prepared = ExampleProject::prepare(room.samples, project); !prepared) {
        return tl::unexpected(prepared.error());
    }
    // A name that is no UTF-8, as old archives leave it.
    const QByteArray oldName = "caf\xe9.txt";
    if (!saveAtomically(project.child(oldName), "old"))
        return checkFailed(tr("The project could not be filled."));

    const FilePath baseline = room.folder.child("baseline");
    const FilePath copy = room.folder.child("copy");
    const auto copied = RunFiles::snapshot(project, {baseline, copy});
    if (!copied) return tl::unexpected(copied.error());
    if (!saveAtomically(copy.child(oldName), "new") || !saveAtomically(copy.child("added.txt"), "added")) {
        return checkFailed(tr("The copy could not be changed."));
    }
    const auto changes = RunFiles::changes(baseline, copy);
    if (!changes) return tl::unexpected(changes.error());
    if (changes->size() != 2)
        return checkFailed(tr("%1 changes were found instead of 2.").arg(changes->size()));
    const FilePath backup = room.folder.child("backup");
    if (const auto applied = RunFiles::apply(*changes, project, copy, backup); !applied) {
        return tl::unexpected(applied.error());
    }
    if (readFile(project.child(oldName), longest) != QByteArray("new") ||
        readFile(project.child("added.txt"), longest) != QByteArray("added") ||
        readFile(backup.child(oldName), longest) != QByteArray("old")) {
        return checkFailed(tr("The changes or the originals are not where they belong."));
    }
    return tr("%1 files copied").arg(copied->files);
}

Finding historySurvives(const CheckRoom& room) {
    const FilePath folder = room.folder.child("configuration");
    const HistoryEntry entry{.id = QUuid::createUuid(),
                             .provider = QStringLiteral("shell"),
                             .title = QStringLiteral("A finished session"),
                             .directory = room.folder,
                             .started = QDateTime::fromSecsSinceEpoch(1'700'000'000, Qt::UTC),
                             .exitCode = 3,
                             .output = QStringLiteral("漢字 🙂\nlast line")};
    {
        FilePreferences preferences(folder, FilePreferences::Access::ReadWrite);
        HistoryStore(&preferences).record(entry);
    }
    FilePreferences preferences(folder, FilePreferences::Access::ReadOnly);
    const HistoryStore store(&preferences);
    if (store.entries() != QList{entry})
        return checkFailed(tr("The session came back otherwise than it was kept."));
    return QString();
}

Finding planLimitsHold(const CheckRoom&) {
    const ComputerPlan plan{.explanation = QStringLiteral("Writes one line."),
                            .steps = {{.id = 1,
                                       .title = QStringLiteral("Open the editor"),
                                       .action = QStringLiteral("open_app"),
                                       .app = QStringLiteral("com.apple.TextEdit"),
                                       .value = {}},
                                      {.id = 2,
                                       .title = QStringLiteral("Type"),
                                       .action = QStringLiteral("type_text"),
                                       .app = QStringLiteral("com.apple.TextEdit"),
                                       .value = QStringLiteral("Low tide at 06:12")}}};
    const auto read = ComputerPlan::fromJson(plan.toJson());
    if (read != plan) return checkFailed(tr("The plan was read otherwise than it was written."));
    if (const auto valid = plan.validated(); !valid) return tl::unexpected(valid.error());
    ComputerPlan twoLines = plan;
    twoLines.steps[1].value = QStringLiteral("rm -rf\n");
    if (twoLines.validated()) return checkFailed(tr("A plan that types a line end was accepted."));
    return QString();
}

constexpr std::array checks = {
    Check{QT_TRANSLATE_NOOP("SelfTest", "Preferences survive a restart"), preferencesRoundTrip},
    Check{QT_TRANSLATE_NOOP("SelfTest", "Saving replaces a file whole"), savingReplacesWhole},
    Check{QT_TRANSLATE_NOOP("SelfTest", "The example project is prepared and edits in it are kept"),
          samplesArePrepared},
    Check{QT_TRANSLATE_NOOP("SelfTest", "A copy of a project is changed, reviewed and applied"),
          copyRoundTrips},
    Check{QT_TRANSLATE_NOOP("SelfTest", "Finished sessions survive a restart"), historySurvives},
    Check{QT_TRANSLATE_NOOP("SelfTest", "An action plan is read and its limits hold"), planLimitsHold},
};

}  // namespace

std::span<const Check> fileChecks() {
    return checks;
}

}  // namespace orvo
