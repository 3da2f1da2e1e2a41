#pragma once

#include "platform/Result.h"

namespace orvo {

/// A failure of the Mac actions' own rules: the sentence stands by itself.
inline tl::unexpected<Error> planError(QString sentence) {
    return failure(QStringLiteral("OrvoRuns"), std::move(sentence));
}

}  // namespace orvo
