#include "orvoctl/Verb.h"

#include <array>

namespace orvo::ctl {

std::span<const Verb* const> allVerbs() {
    static constexpr std::array verbs = {&runVerb,    &providersVerb,     &historyVerb,
                                         &screenVerb, &templateCheckVerb, &templateCommandVerb};
    return verbs;
}

}  // namespace orvo::ctl
