#pragma once

#include "platform/FilePath.h"

#include <QCoreApplication>

namespace orvo {

class Dialogs;

/// The reports that faults have left. Their form is told in docs/formats/crash.md. Main thread only.
class CrashReports {
    Q_DECLARE_TR_FUNCTIONS(CrashReports)

public:
    /// A report's name is the prefix, the time, the process id and a suffix: another one once it was told of.
    static constexpr char prefix[] = "crash-";
    static constexpr char untoldSuffix[] = ".new.txt";
    static constexpr char toldSuffix[] = ".txt";
    /// Older ones are removed.
    static constexpr int maximumKept = 20;

    /// `folder` need not exist.
    explicit CrashReports(FilePath folder) : m_folder(std::move(folder)) {}

    /// Says once that the application has ended unexpectedly, if it has since this was last asked.
    void tell(Dialogs& dialogs) const;

private:
    const FilePath m_folder;
};

}  // namespace orvo
