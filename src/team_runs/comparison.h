#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace orvo {

/// One assistant's result as the comparison shows it.
struct ComparisonBlock {
    QString assistant;
    std::optional<int> exitCode;
    QString output;
};

/// Bytes that the command of a session may have: what fits one argument, less what the session puts before
/// it.
inline constexpr qsizetype maximumCommandBytes = 131'071 - 1'024;

/// The read-only command that has the results compared. Outputs are shortened evenly, from the front, until
/// it has at most `limit` bytes: no output keeps more than any other that is shortened. Nothing when it is
/// too long even without any output.
std::optional<QString> comparisonCommand(const QString& task, const QList<ComparisonBlock>& blocks,
                                         qsizetype limit = maximumCommandBytes);

}  // namespace orvo
