#include "bench/TsmReference.h"

#include <libtsm.h>

#include <cstdlib>

namespace orvo::bench {
namespace {

constexpr unsigned scrollbackLines = 2'000;

/// Replies go nowhere.
void onWrite(tsm_vte* /*terminal*/, const char* /*bytes*/, std::size_t /*size*/, void* /*user*/) {}

}  // namespace

struct TsmReference::Terminal {
    tsm_screen* screen = nullptr;
    tsm_vte* interpreter = nullptr;
};

TsmReference::TsmReference(int rows, int columns) : m_terminal(std::make_unique<Terminal>()) {
    auto& [screen, interpreter] = *m_terminal;
    if (tsm_screen_new(&screen, nullptr, nullptr) != 0) std::abort();
    if (tsm_screen_resize(screen, static_cast<unsigned>(columns), static_cast<unsigned>(rows)) != 0)
        std::abort();
    tsm_screen_set_max_sb(screen, scrollbackLines);
    if (tsm_vte_new(&interpreter, screen, onWrite, nullptr, nullptr, nullptr) != 0) std::abort();
}

TsmReference::~TsmReference() {
    tsm_vte_unref(m_terminal->interpreter);
    tsm_screen_unref(m_terminal->screen);
}

void TsmReference::feed(std::string_view bytes) {
    tsm_vte_input(m_terminal->interpreter, bytes.data(), bytes.size());
}

}  // namespace orvo::bench
