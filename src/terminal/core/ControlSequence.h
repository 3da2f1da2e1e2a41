#pragma once

#include <span>
#include <string_view>

namespace orvo {

/// A complete control sequence: ESC [ marker parameters intermediates final. Valid during its dispatch only.
struct ControlSequence {
    char final = 0;
    /// The first collected character when it is one of "<", "=", ">" and "?", else 0.
    char marker = 0;
    /// The characters 0x20 to 0x2F right before the final one.
    std::string_view intermediates;
    /// At least one; each from 0 to 1,000,000, an empty or malformed field is 0.
    std::span<const int> parameters;
    /// The fields as they came, ";" between them, when one of them holds a colon; else empty.
    std::string_view colonFields;

    /// A sequence with a marker or an intermediate is another one than the one without.
    bool plain() const { return marker == 0 && intermediates.empty(); }
    int parameter(std::size_t index) const { return index < parameters.size() ? parameters[index] : 0; }
    /// The first parameter as a count.
    int count() const { return parameters.front() > 1 ? parameters.front() : 1; }
};

}  // namespace orvo
