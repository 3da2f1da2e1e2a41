#include "orvoctl/Verb.h"

#include <array>

namespace orvo::ctl {

std::span<const Verb* const> allVerbs() {
    static constexpr std::array verbs = {
        &runVerb,       &runsVerb,    &reviewVerb, &outputVerb,    &applyVerb,         &compareVerb,
        &providersVerb, &historyVerb, &screenVerb, &planCheckVerb, &templateCheckVerb, &templateCommandVerb,
        &snapshotVerb,  &copiesVerb,  &changesVerb};
    return verbs;
}

}  // namespace orvo::ctl
