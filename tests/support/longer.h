#pragma once

#include <cstdlib>

namespace orvo::test {

/// How much of something a test does: little in an ordinary run, much under `make soak`, which sets
/// ORVO_SOAK.
inline int lengthOf(int ordinary, int soak) {
    return std::getenv("ORVO_SOAK") != nullptr ? soak : ordinary;
}

}  // namespace orvo::test
