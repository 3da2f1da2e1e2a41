// Reads action plans from anything. What is accepted keeps its limits and comes back unchanged from its own
// JSON; what is refused has a sentence.
#include "mac_actions/ComputerPlan.h"

#include <cstdio>
#include <cstdlib>

namespace {

void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using orvo::ComputerPlan;
    const QByteArray json(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const auto plan = ComputerPlan::fromJson(json);
    if (!plan) {
        require(!plan.error().message.isEmpty(), "refused without a sentence");
        return 0;
    }
    require(ComputerPlan::fromJson(plan->toJson()) == *plan, "another plan comes back");
    const auto valid = plan->validated();
    if (!valid) {
        require(!valid.error().message.isEmpty(), "invalid without a sentence");
        return 0;
    }
    require(*valid == *plan, "validating changes a plan");
    require(valid->steps.size() <= 12, "more steps than are allowed");
    for (const auto& step : valid->steps) {
        require(step.action != u"key" || ComputerPlan::key(step.value), "a key that is not in the table");
        require(!step.value.contains(u'\n') && !step.value.contains(u'\r'), "more than one line to type");
    }
    return 0;
}
