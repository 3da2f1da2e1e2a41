#pragma once

#include "assistants/Provider.h"
#include "platform/FilePath.h"
#include "platform/Result.h"

#include <chrono>

namespace orvo {
class Assistants;
}

namespace orvo::ctl {

class Invocation;

/// What a call of "run" asks for.
struct RunRequest {
    QString task;
    FilePath project;
    /// For this run only.
    QList<Provider> connectors;
    /// Zero for none.
    std::chrono::seconds timeout{0};

    /// The error's message says what is wrong with the call.
    static Result<RunRequest> parse(const Invocation& invocation);
};

/// The connectors that are to work: those named; by default the connectors given, else the stored selection
/// that is ready. The error's code is the exit status.
Result<QList<Provider>> chosenProviders(const Invocation& invocation, const RunRequest& request,
                                        const Assistants& assistants);

}  // namespace orvo::ctl
