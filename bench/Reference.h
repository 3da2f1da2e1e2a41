#pragma once

#include <memory>
#include <string_view>

struct VTerm;

namespace orvo::bench {

/// libvterm set up as a program that embeds it does: the screen layer with alternate screen, damage merged
/// for scrolling, and a scrollback of the same 2,000 lines that copies what the library pushes out.
class Reference {
public:
    Reference(int rows, int columns);
    ~Reference();
    Reference(const Reference&) = delete;
    Reference& operator=(const Reference&) = delete;

    void feed(std::string_view bytes);

    struct Embedder;

private:
    std::unique_ptr<Embedder> m_embedder;
    VTerm* m_terminal;
};

/// Sends the bytes through a pipe to a reader that throws them away, and returns the seconds it took: what
/// the kernel alone costs.
double secondsToDiscard(std::string_view bytes);

}  // namespace orvo::bench
