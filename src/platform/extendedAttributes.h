#pragma once

namespace orvo {

/// Gives the open file `to` the extended attributes of `from`, as far as the system allows. What vouches for
/// the former content, such as the right to act as root, does not pass on. Any thread.
void copyAttributes(int from, int to);

}  // namespace orvo
