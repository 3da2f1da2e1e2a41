#pragma once

#include "platform/Result.h"

namespace orvo {

/// A failed system call as a value: domain "POSIX", the error number as code, the system's own description.
Error systemError(int code);

inline tl::unexpected<Error> systemFailure(int code) {
    return tl::unexpected<Error>(systemError(code));
}

}  // namespace orvo
