#include "mac_actions/ComputerPlan.h"
#include "mac_actions/readPlanFile.h"
#include "orvoctl/Console.h"
#include "orvoctl/Invocation.h"

#include <QJsonObject>

namespace orvo::ctl {
namespace {

ExitStatus check(const Invocation& invocation) {
    if (invocation.positional().size() != 1) return invocation.wrongUsage(QStringLiteral("Give one FILE."));
    const auto plan = readPlanFile(Invocation::path(invocation.positional().first()))
                          .and_then(&ComputerPlan::fromJson)
                          .and_then(&ComputerPlan::validated);
    if (!plan) return invocation.failed(plan.error().message);
    if (invocation.format() == Invocation::Format::Json) {
        Invocation::printJson(
            QJsonDocument(QJsonObject{{QStringLiteral("ok"), true}, {QStringLiteral("message"), QString()}}));
    } else {
        print("The plan keeps every limit.\n");
    }
    return ExitStatus::Done;
}

}  // namespace

const Verb planCheckVerb = {"plan check",
                            "FILE",
                            "check an action plan",
                            "Says whether FILE holds an action plan that may be shown and run.",
                            {},
                            check};

}  // namespace orvo::ctl
