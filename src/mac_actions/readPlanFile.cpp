#include "mac_actions/readPlanFile.h"

#include "mac_actions/planError.h"
#include "platform/FileDescriptor.h"
#include "platform/readFile.h"
#include "platform/systemError.h"

#include <QCoreApplication>

#include <cerrno>

#include <fcntl.h>

namespace orvo {

Result<QByteArray> readPlanFile(const FilePath& file) {
    constexpr qsizetype limit = 60'000;
    // O_NONBLOCK: a pipe at this name must not hold us up before it can be refused.
    const FileDescriptor descriptor(
        open(file.bytes().constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!descriptor.isOpen()) return systemFailure(errno, file);
    Result<QByteArray> content = readFile(descriptor.number(), limit);
    if (content) return content;
    if (content.error().code == EFBIG) {
        return planError(
            QCoreApplication::translate("orvo::ComputerPlanner", "The plan response was too large."));
    }
    return systemFailure(content.error().code, file);
}

}  // namespace orvo
