// Repeats a piece of output until it is a flood, between resizes. What a screen holds afterwards must be what
// is on it and in its scrollback, whatever went through it.
//
// Input: length of the flood, six sizes of the screen, how often it is resized; then the piece.
#include "fuzz/FuzzInput.h"
#include "terminal/core/TerminalScreen.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <new>

#include <malloc.h>

namespace {

std::size_t allocated = 0;

}  // namespace

// Counts, so that a screen's memory is known in every build, with and without sanitizers. All forms, because
// what one form takes another may give back.
void* operator new(std::size_t size) {
    void* const memory = std::malloc(size);
    if (memory == nullptr) std::abort();
    allocated += malloc_usable_size(memory);
    return memory;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return operator new(size);
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return operator new(size);
}

void operator delete(void* memory) noexcept {
    if (memory != nullptr) allocated -= malloc_usable_size(memory);
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    operator delete(memory);
}
void operator delete[](void* memory) noexcept {
    operator delete(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    operator delete(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    operator delete(memory);
}

namespace {

using orvo::CellExtras;
using orvo::TerminalCell;
using orvo::TerminalRow;
using orvo::TerminalScreen;
using orvo::fuzz::FuzzInput;
using orvo::fuzz::require;

constexpr int mostRows = 30;
constexpr int mostColumns = 80;
/// Each looks at every line of the scrollback, in builds that check themselves.
constexpr std::size_t mostResizes = 500;
/// Of one allocation beside its content.
constexpr std::size_t overhead = 32;
/// A string that grew to hold a scalar too many has room for twice as many.
constexpr std::size_t largestCluster =
    sizeof(std::u32string) + overhead + 2 * TerminalRow::longestCluster * sizeof(char32_t);

/// What one line may take that is not written at the moment.
std::size_t kept(const TerminalRow& row) {
    const auto width = static_cast<std::size_t>(row.width());
    std::size_t bytes = sizeof(TerminalRow) + 2 * overhead + width * sizeof(TerminalCell);
    for (int column = 0; column < row.width(); ++column) {
        if (row.isCluster(column)) bytes += largestCluster;
    }
    return bytes;
}

std::size_t allowed(const TerminalScreen& screen) {
    // The lines of both screens are empty, but keep their room for cells and twice as many clusters.
    constexpr std::size_t grids =
        std::size_t{2} * mostRows *
        (sizeof(TerminalRow) +
         std::size_t{2} * mostColumns * (sizeof(TerminalCell) + 2 * sizeof(std::u32string)));
    // The screen itself with its parser and handles.
    constexpr std::size_t constant = 128 << 10;
    std::size_t bytes = constant + grids;
    for (int index = 0; index < screen.scrollbackCount(); ++index) {
        bytes += kept(screen.scrollbackLine(index));
    }
    for (std::size_t number = 1; number < CellExtras::capacity; ++number) {
        TerminalCell cell;
        cell.extra = static_cast<std::uint16_t>(number);
        const orvo::CellExtra& extra = screen.extraOf(cell);
        // Each is there twice, as itself and as the key to find it by.
        if (!extra.empty())
            bytes += 2 * (2 * extra.link.size() + 2 * extra.linkName.size() + sizeof extra + 4 * overhead);
    }
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    FuzzInput input(data, size);
    const std::size_t length = std::size_t{1} << input.between(10, 16);
    std::array<std::array<int, 2>, 3> sizes{};
    for (auto& [rows, columns] : sizes) {
        rows = input.between(3, mostRows);
        columns = input.between(10, mostColumns);
    }
    const auto wantedEvery = static_cast<std::size_t>(input.between(1, 255));
    const std::string_view piece = input.rest();
    if (piece.empty()) return 0;
    const std::size_t resizeEvery = std::max(wantedEvery, length / piece.size() / mostResizes);

    const std::size_t before = allocated;
    const auto screen = std::make_unique<TerminalScreen>(sizes[0][0], sizes[0][1]);
    screen->setBackgroundColorErase(true);
    std::size_t turn = 0;
    for (std::size_t fed = 0; fed < length; fed += piece.size()) {
        screen->feed(piece);
        if (++turn % resizeEvery != 0) continue;
        const auto& [rows, columns] = sizes[turn / resizeEvery % sizes.size()];
        screen->resize(rows, columns);
    }
    // A string that has not ended is held up to its own limit.
    require(allocated - before <= allowed(*screen) + (std::size_t{64} << 20), "no bound during a flood");
    // Ends what is going on, and clears what is not in the scrollback.
    screen->feed(
        "\x18\x1B"
        "c");
    screen->compact();
    screen->assertInvariants();
    require(allocated - before <= allowed(*screen), "a flood has left something behind");
    return 0;
}
