#include "mac_actions/wholeNumber.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace orvo {
namespace {

// More decimal places than any 64-bit number has, either way.
constexpr int farAway = 1'000'000;

// Exponents beyond that bound make the same difference as the bound.
int exponentOf(std::string_view text) {
    if (text.starts_with('+')) text.remove_prefix(1);
    int exponent = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), exponent);
    if (error == std::errc::result_out_of_range) return text.starts_with('-') ? -farAway : farAway;
    return std::clamp(exponent, -farAway, farAway);
}

}  // namespace

std::optional<std::int64_t> wholeNumber(std::string_view json) {
    const std::size_t mark = json.find_first_of("eE");
    int exponent = mark == std::string_view::npos ? 0 : exponentOf(json.substr(mark + 1));
    const std::string_view mantissa = json.substr(0, mark);
    const std::size_t point = mantissa.find('.');
    std::string digits(mantissa.substr(0, point));
    if (point != std::string_view::npos) {
        const std::string_view fraction = mantissa.substr(point + 1);
        digits += fraction;
        exponent -= static_cast<int>(fraction.size());
    }
    // The digits now stand for a whole number times ten to the exponent, which is moved into them.
    while (exponent < 0 && digits.ends_with('0')) {
        digits.pop_back();
        ++exponent;
    }
    if (digits.find_first_of("123456789") == std::string::npos) return 0;
    constexpr int mostDigits = 19;
    if (exponent < 0 || exponent > mostDigits) return std::nullopt;
    digits.append(static_cast<std::size_t>(exponent), '0');
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    return value;
}

}  // namespace orvo
