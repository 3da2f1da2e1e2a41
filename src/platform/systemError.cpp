#include "platform/systemError.h"

namespace orvo {

Error systemError(int code) {
    return {QStringLiteral("POSIX"), code, qt_error_string(code)};
}

Error systemError(int code, const FilePath& about) {
    Error error = systemError(code);
    error.message.prepend(about.displayName() + QStringLiteral(": "));
    return error;
}

}  // namespace orvo
