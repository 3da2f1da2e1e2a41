#include "team_runs/runError.h"

#include "platform/systemError.h"

#include <QCoreApplication>

namespace orvo::RunFiles {
namespace {

QString domain() {
    return QStringLiteral("OrvoRuns");
}

}  // namespace

Error error(QString message) {
    return {domain(), 1, std::move(message)};
}

tl::unexpected<Error> refusal(QString message) {
    return tl::unexpected<Error>(error(std::move(message)));
}

tl::unexpected<Error> pathFailure(const QByteArray& path, int code) {
    Error failed = systemError(code);
    failed.message = QString::fromUtf8(path) + QStringLiteral(": ") + failed.message;
    return tl::unexpected<Error>(std::move(failed));
}

tl::unexpected<Error> stopped() {
    return failure(domain(), QCoreApplication::translate("RunFiles", "Stopped."), 2);
}

QString folderMissing() {
    return QCoreApplication::translate("RunFiles", "This project folder no longer exists.");
}

QString overLimit() {
    return QCoreApplication::translate("RunFiles",
                                       "Separate copies currently support up to 5,000 files and 150 MB. "
                                       "Choose a smaller project folder or use "
                                       "the shared-folder mode.");
}

QString symbolicLink() {
    return QCoreApplication::translate("RunFiles",
                                       "A file or parent folder is a symbolic link. Review it outside Orvo.");
}

}  // namespace orvo::RunFiles
