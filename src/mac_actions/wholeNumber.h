#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace orvo {

/// The value of a JSON number as written, when it is whole and fits 64 bits: "1", "1.0" and "1e2" are,
/// "1.5" and "9223372036854775808" are not. Nothing is rounded on the way.
std::optional<std::int64_t> wholeNumber(std::string_view json);

}  // namespace orvo
