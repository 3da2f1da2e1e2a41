#include "app/self_test/SelfTest.h"

#include "platform/AppFolders.h"
#include "platform/saveAtomically.h"
#include "platform/systemError.h"
#include "workspace/Workspace.h"
#include "workspace/ui/version.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QLocale>
#include <QSysInfo>
#include <QTimer>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace orvo {
namespace {

using namespace std::chrono_literals;

// A minute is the promise; the last check may be under way when the time is over, and sessions get their
// second to end.
constexpr auto wholeTime = 45s;
constexpr auto pollInterval = 20ms;

QString tr(const char* text) {
    return QCoreApplication::translate("SelfTest", text);
}

void say(std::FILE* stream, const QString& line) {
    std::fprintf(stream, "%s\n", qUtf8Printable(line));
    std::fflush(stream);
}

/// The report may be passed on: the home folder's path tells a name.
QString withoutHome(QString text) {
    const QString home = QDir::homePath();
    return home.size() > 1 ? text.replace(home, QStringLiteral("~")) : text;
}

/// The system's folder for temporary files, also when nothing can be made there.
QByteArray temporaryFolder() {
    const QByteArray named = qgetenv("TMPDIR");
    return named.isEmpty() ? QByteArray("/tmp") : named;
}

/// A folder of our own, gone with everything in it afterwards, whatever the names are.
class ScratchFolder {
public:
    ScratchFolder() : m_path(temporaryFolder() + "/Orvo-check-XXXXXX") {
        if (mkdtemp(m_path.data()) == nullptr) m_error = errno;
    }
    ~ScratchFolder() {
        std::error_code ignored;
        if (m_error == 0) std::filesystem::remove_all(m_path.toStdString(), ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    /// 0 when the folder is there.
    int error() const { return m_error; }
    FilePath path() const { return FilePath(m_path); }

private:
    QByteArray m_path;
    int m_error = 0;
};

QString connectorLines(const Workspace& workspace) {
    QString lines;
    for (const Provider& provider : Provider::defaults()) {
        const FilePath executable = workspace.assistants().available().value(provider.id);
        lines +=
            QStringLiteral("- %1: %2\n")
                .arg(provider.shownName(), executable.isEmpty() ? tr("not installed") : executable.display());
    }
    return lines;
}

}  // namespace

bool CheckRoom::waitFor(const std::function<bool()>& condition, std::chrono::milliseconds limit) const {
    const QDeadlineTimer own(limit);
    QEventLoop loop;
    QTimer poll;
    poll.start(pollInterval);
    while (!condition()) {
        if (own.hasExpired() || deadline.hasExpired()) return false;
        loop.processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return true;
}

FilePath SelfTest::defaultFolder() {
    return FilePath(temporaryFolder()).child("Orvo-tests");
}

SelfTest::SelfTest(Workspace& workspace, FilePath samples, FilePath folder, QObject* parent)
    : QObject(parent), m_workspace(workspace), m_samples(std::move(samples)), m_folder(std::move(folder)) {}

void SelfTest::start(std::function<void(bool)> completed) {
    m_deadline = QDeadlineTimer(wholeTime);
    QTimer::singleShot(0, this, [this, completed = std::move(completed)] { completed(runAll()); });
}

bool SelfTest::runAll() {
    bool passed = true;
    QString report;
    for (const auto& group : {systemChecks(), terminalChecks(), fileChecks(), workspaceChecks()}) {
        for (const Check& check : group) {
            QElapsedTimer time;
            time.start();
            const Finding finding = runCheck(check);
            const QString line =
                (finding ? QStringLiteral("PASS ") : QStringLiteral("FAIL ")) + tr(check.name);
            const QString remark = finding ? *finding : finding.error().message;
            say(stdout, line);
            if (!finding) say(stderr, QStringLiteral("orvo: %1: %2").arg(tr(check.name), remark));
            report +=
                QStringLiteral("- %1 (%2 s)%3\n")
                    .arg(line, QLocale::c().toString(static_cast<double>(time.elapsed()) / 1000, 'f', 2),
                         remark.isEmpty() ? QString() : QStringLiteral(": ") + remark);
            passed = passed && finding;
        }
    }
    const bool written = writeReport(report);
    say(stdout, (written ? QStringLiteral("PASS ") : QStringLiteral("FAIL ")) + tr("The report is written"));
    return passed && written;
}

Finding SelfTest::runCheck(const Check& check) {
    if (m_deadline.hasExpired()) return checkFailed(tr("There was no time left for it."));
    const ScratchFolder folder;
    if (folder.error() != 0) return systemFailure(folder.error(), FilePath(temporaryFolder()));
    return check.run(
        {.workspace = m_workspace, .samples = m_samples, .folder = folder.path(), .deadline = m_deadline});
}

bool SelfTest::writeReport(const QString& checks) {
    const QString report =
        QStringLiteral("# Orvo verification\n\n") +
        tr("Orvo AI %1, Qt %2, %3, kernel %4, %5.")
            .arg(versionText(), QString::fromLatin1(qVersion()), QSysInfo::prettyProductName(),
                 QSysInfo::kernelVersion(), QSysInfo::currentCpuArchitecture()) +
        QStringLiteral("\n\n## ") + tr("Checks") + QStringLiteral("\n\n") + checks + QStringLiteral("\n## ") +
        tr("Assistants") + QStringLiteral("\n\n") + connectorLines(m_workspace) + u'\n' +
        tr("No model requests were made. Everything above was tried on this computer alone.") + u'\n';
    const FilePath file = m_folder.child("Verification.md");
    Result<void> written = createPrivateFolder(m_folder);
    if (written) {
        written = saveAtomically(file, withoutHome(report).toUtf8(),
                                 {.newFile = SaveOptions::NewFile::AsUserWants});
    }
    say(stderr, written ? tr("orvo: The report is %1.").arg(file.display())
                        : tr("orvo: The report could not be written: %1").arg(written.error().message));
    return written.has_value();
}

}  // namespace orvo
