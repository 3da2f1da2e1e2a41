#pragma once

#include <chrono>

namespace orvo {

/// The gentle floating of the pet: up and down by three dip in a little under four seconds, in whole dip.
namespace floating {

/// Redrawn at most this often.
inline constexpr std::chrono::milliseconds shortestStep{42};
inline constexpr int reach = 3;

/// How far below its place the pet is at a moment, in dip; negative is above.
int offsetAt(std::chrono::milliseconds moment);
/// How long the offset stays what it is at that moment: the pet need not be looked at before. At least
/// `shortestStep`.
std::chrono::milliseconds stepFrom(std::chrono::milliseconds moment);

}  // namespace floating
}  // namespace orvo
