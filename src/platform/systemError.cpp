#include "platform/systemError.h"

namespace orvo {

Error systemError(int code) {
    return {QStringLiteral("POSIX"), code, qt_error_string(code)};
}

}  // namespace orvo
