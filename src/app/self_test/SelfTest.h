#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"

#include <QDeadlineTimer>
#include <QObject>
#include <QString>

#include <chrono>
#include <functional>
#include <span>

namespace orvo {

class Workspace;

/// What a check has to work with. Its folder is fresh, and removed when the check is over.
struct CheckRoom {
    /// Keeps nothing; shared by all checks, in their order.
    Workspace& workspace;
    /// The installed sample files.
    FilePath samples;
    FilePath folder;
    /// The whole self-test's time; over at once when it is interrupted.
    const QDeadlineTimer& deadline;

    /// Lets the event loop run until `condition` holds; false when the check's time is over before.
    bool waitFor(const std::function<bool()>& condition,
                 std::chrono::milliseconds limit = std::chrono::seconds(10)) const;
};

/// What a check adds to the report, empty when there is nothing to say; or why it failed, as a sentence.
using Finding = Result<QString>;

inline tl::unexpected<Error> checkFailed(QString reason) {
    return failure(QStringLiteral("Orvo"), std::move(reason));
}

struct Check {
    const char* name;
    Finding (*run)(const CheckRoom& room);
};

std::span<const Check> terminalChecks();
std::span<const Check> fileChecks();
std::span<const Check> workspaceChecks();
std::span<const Check> systemChecks();

/// Tries out, offline and without a window, what the application needs of this computer: the answer that a
/// person with a problem can send along. One line a check on standard output, the reasons on standard error,
/// and the report "Verification.md". Main thread only; takes less than a minute.
class SelfTest : public QObject {
    Q_OBJECT

public:
    /// `workspace` outlives this object and keeps nothing. `folder` is where the report goes.
    SelfTest(Workspace& workspace, FilePath samples, FilePath folder, QObject* parent = nullptr);

    /// Where the report goes unless the person says otherwise.
    static FilePath defaultFolder();

    /// Runs all checks once the event loop runs; `completed` hears whether every one passed.
    void start(std::function<void(bool passed)> completed);
    /// Lets the check that is under way and those that are left fail, and tidies up as always.
    void interrupt() { m_deadline = QDeadlineTimer(0); }

private:
    bool runAll();
    Finding runCheck(const Check& check);
    bool writeReport(const QString& checks);

    Workspace& m_workspace;
    const FilePath m_samples;
    const FilePath m_folder;
    QDeadlineTimer m_deadline;
};

/// The process of "--self-test": prints the checks' lines and the one marker, and gives the exit status.
/// Without a folder the report goes below the system's temporary one.
int runSelfTest(int argc, char** argv, const std::optional<FilePath>& reportFolder);

}  // namespace orvo
