#pragma once

#include <cstdint>
#include <string_view>

namespace orvo {

/// Whether `text` can be one argument of a program: Linux takes at most 131,071 bytes before the terminating
/// NUL, whatever the room for all arguments together, and an argument ends at its first NUL.
bool fitsOneArgument(std::string_view text);

}  // namespace orvo

extern "C" {

/// Starts `/bin/zsh -l -c command` in `directory` on a fresh pseudo-terminal of the given size, as the leader
/// of a session of its own. Returns the child's process id and leaves the master descriptor, non-blocking and
/// close-on-exec, in `*master` (the caller closes it); or -1 with `errno` set, and `*master` is -1.
/// The child has default signal dispositions, an empty signal mask and no descriptor but 0, 1 and 2. It exits
/// with 126 after a message on its terminal when the directory cannot be entered, with 127 when the shell
/// cannot be executed.
std::int32_t pelk_spawn(const char* command, const char* directory, std::uint16_t rows, std::uint16_t columns,
                        std::int32_t* master);

/// Tells the terminal its new size in cells; the kernel signals the foreground program. 0, or -1 with
/// `errno`.
int pelk_resize(std::int32_t master, std::uint16_t rows, std::uint16_t columns);

/// Blocks until the child has ended and reaps it. Its exit code, 128 plus the signal that ended it, or -1
/// when it cannot be waited for. Call it once a child: afterwards the id may belong to another process.
int pelk_wait(std::int32_t processID);

}  // extern "C"
