#include "bench/Reference.h"

#include <unistd.h>
#include <vterm.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <vector>

namespace orvo::bench {

struct Reference::Embedder {
    static constexpr std::size_t capacity = 2'000;

    std::vector<std::vector<VTermScreenCell>> lines = std::vector<std::vector<VTermScreenCell>>(capacity);
    std::size_t pushed = 0;
    int damagedRows = 0;
};

namespace {

int onDamage(VTermRect area, void* user) {
    static_cast<Reference::Embedder*>(user)->damagedRows += area.end_row - area.start_row;
    return 1;
}

int onMove(VTermRect destination, VTermRect, void* user) {
    static_cast<Reference::Embedder*>(user)->damagedRows += destination.end_row - destination.start_row;
    return 1;
}

int onPushLine(int columns, const VTermScreenCell* cells, void* user) {
    auto& embedder = *static_cast<Reference::Embedder*>(user);
    embedder.lines[embedder.pushed++ % Reference::Embedder::capacity].assign(cells, cells + columns);
    return 1;
}

constexpr VTermScreenCallbacks callbacks = {
    .damage = onDamage,
    .moverect = onMove,
    .movecursor = nullptr,
    .settermprop = nullptr,
    .bell = nullptr,
    .resize = nullptr,
    .sb_pushline = onPushLine,
    .sb_popline = nullptr,
};

}  // namespace

Reference::Reference(int rows, int columns)
    : m_embedder(std::make_unique<Embedder>()), m_terminal(vterm_new(rows, columns)) {
    vterm_set_utf8(m_terminal, 1);
    VTermScreen* const screen = vterm_obtain_screen(m_terminal);
    vterm_screen_set_callbacks(screen, &callbacks, m_embedder.get());
    vterm_screen_set_damage_merge(screen, VTERM_DAMAGE_SCROLL);
    vterm_screen_enable_altscreen(screen, 1);
    vterm_screen_reset(screen, 1);
}

Reference::~Reference() {
    vterm_free(m_terminal);
}

void Reference::feed(std::string_view bytes) {
    vterm_input_write(m_terminal, bytes.data(), bytes.size());
    vterm_screen_flush_damage(vterm_obtain_screen(m_terminal));
}

double secondsToDiscard(std::string_view bytes) {
    std::array<int, 2> ends;
    if (pipe(ends.data()) != 0) std::abort();
    const auto start = std::chrono::steady_clock::now();
    {
        const std::jthread writer([&ends, bytes] {
            for (std::string_view rest = bytes; !rest.empty();) {
                const ssize_t written = write(ends[1], rest.data(), rest.size());
                if (written <= 0) std::abort();
                rest.remove_prefix(static_cast<std::size_t>(written));
            }
            close(ends[1]);
        });
        std::array<char, 65'536> buffer;
        while (read(ends[0], buffer.data(), buffer.size()) > 0) {
        }
    }
    close(ends[0]);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace orvo::bench
