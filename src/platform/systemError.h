#pragma once

#include "platform/FilePath.h"
#include "platform/Result.h"

namespace orvo {

/// A failed system call as a value: domain "POSIX", the error number as code, the system's own description.
Error systemError(int code);
/// The same, with "NAME: description" as message.
Error systemError(int code, const FilePath& about);

inline tl::unexpected<Error> systemFailure(int code) {
    return tl::unexpected<Error>(systemError(code));
}
inline tl::unexpected<Error> systemFailure(int code, const FilePath& about) {
    return tl::unexpected<Error>(systemError(code, about));
}

}  // namespace orvo
