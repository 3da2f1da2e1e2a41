#pragma once

#include <string>
#include <vector>

namespace orvo::bench {

struct Payload {
    std::string name;
    std::string bytes;
};

/// What programs write to a terminal of that size, made by a seeded generator: the same bytes on every
/// machine.
std::vector<Payload> payloads(int rows, int columns);

}  // namespace orvo::bench
