#pragma once

#include "platform/Result.h"

#include <QByteArray>

namespace orvo::RunFiles {

/// A failure of our own rules: domain "OrvoRuns", code 1, the sentence for the person.
Error error(QString message);
tl::unexpected<Error> refusal(QString message);

/// A failed system call on the file at a relative path: domain "POSIX", its number, "PATH: description".
tl::unexpected<Error> pathFailure(const QByteArray& path, int code);

/// The work was stopped by its token. Nobody shows this; whoever stopped it knows.
tl::unexpected<Error> stopped();

/// The sentences that more than one operation raises.
QString folderMissing();
QString overLimit();
QString symbolicLink();

}  // namespace orvo::RunFiles
