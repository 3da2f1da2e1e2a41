#pragma once

namespace orvo::test {

/// Built with the address or thread sanitizer, whose allocator keeps what is freed and does not count it.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool isSanitized = true;
#else
inline constexpr bool isSanitized = false;
#endif

}  // namespace orvo::test
