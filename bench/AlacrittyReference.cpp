#include "bench/AlacrittyReference.h"

// Of bench/alacritty/src/lib.rs.
extern "C" {
OrvoAlacrittyPeer* orvo_alacritty_new(std::size_t rows, std::size_t columns);
void orvo_alacritty_feed(OrvoAlacrittyPeer* peer, const char* bytes, std::size_t length);
void orvo_alacritty_free(OrvoAlacrittyPeer* peer);
}

namespace orvo::bench {

AlacrittyReference::AlacrittyReference(int rows, int columns)
    : m_peer(orvo_alacritty_new(static_cast<std::size_t>(rows), static_cast<std::size_t>(columns))) {}

AlacrittyReference::~AlacrittyReference() {
    orvo_alacritty_free(m_peer);
}

void AlacrittyReference::feed(std::string_view bytes) {
    orvo_alacritty_feed(m_peer, bytes.data(), bytes.size());
}

}  // namespace orvo::bench
