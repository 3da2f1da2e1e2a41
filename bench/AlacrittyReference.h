#pragma once

#include <cstddef>
#include <string_view>

struct OrvoAlacrittyPeer;

namespace orvo::bench {

/// Alacritty's terminal core with a scrollback of the same 2,000 lines, fed as its own event loop feeds it.
class AlacrittyReference {
public:
    AlacrittyReference(int rows, int columns);
    ~AlacrittyReference();
    AlacrittyReference(const AlacrittyReference&) = delete;
    AlacrittyReference& operator=(const AlacrittyReference&) = delete;

    void feed(std::string_view bytes);

private:
    OrvoAlacrittyPeer* m_peer;
};

}  // namespace orvo::bench
