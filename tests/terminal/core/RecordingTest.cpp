// What assistants and everyday programs wrote (scripts/record_terminal.py), and the screens that it must
// give. A screen that has changed for a reason is written anew with ORVO_WRITE_SCREENS=1, and looked at
// before it is kept.
#include "terminal/core/ScreenText.h"
#include "terminal/core/TerminalScreen.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace orvo::test {
namespace {

namespace fs = std::filesystem;

std::string contentsOf(const fs::path& path) {
    std::ostringstream contents;
    contents << std::ifstream(path, std::ios::binary).rdbuf();
    return contents.str();
}

std::string lookOf(const TerminalScreen& screen, const TerminalCell& cell) {
    static constexpr std::pair<int, char> letters[] = {
        {TerminalCell::Bold, 'b'},    {TerminalCell::Dim, 'd'},    {TerminalCell::Italic, 'i'},
        {TerminalCell::Inverse, 'r'}, {TerminalCell::Strike, 's'}, {TerminalCell::Overline, 'o'},
        {TerminalCell::Conceal, 'c'},
    };
    const auto color = [](CellColor value) {
        return value.isDefault() ? std::string("-") : hexOf(*value.color());
    };
    std::string look = color(cell.foreground) + "/" + color(cell.background) + " ";
    for (const auto& [attribute, letter] : letters) {
        if ((cell.attributes & attribute) != 0) look += letter;
    }
    if (cell.underline() != TerminalCell::Underline::None)
        look += "u" + std::to_string(static_cast<int>(cell.underline()));
    return look + screen.extraOf(cell).link;
}

/// Text, cursor, modes, and the runs of cells that are not plain.
std::string drawn(const TerminalScreen& screen) {
    std::ostringstream out;
    out << drawnRows(screen) << "\n=== cursor " << cursorOf(screen)
        << (screen.cursorVisible() ? "" : " hidden") << (screen.alternateScreen() ? " alternate" : "")
        << (screen.applicationCursor() ? " application" : "") << (screen.bracketedPaste() ? " paste" : "")
        << " history " << screen.scrollbackCount() << " title \"" << screen.programTitle() << "\"\n";
    const std::string plain = lookOf(screen, TerminalCell());
    for (int row = 0; row < screen.rows(); ++row) {
        const auto cells = screen.line(row).cells();
        for (std::size_t begin = 0, end = 0; begin < cells.size(); begin = end) {
            const std::string look = lookOf(screen, cells[begin]);
            for (end = begin + 1; end < cells.size() && lookOf(screen, cells[end]) == look; ++end) {
            }
            if (look != plain) out << row << ":" << begin << "-" << end << " " << look << "\n";
        }
    }
    return out.str();
}

struct Recording {
    std::string name;
    int rows = 0;
    int columns = 0;
    std::string bytes;
};

std::vector<Recording> recordings() {
    std::vector<Recording> found;
    for (const auto& entry : fs::directory_iterator(ORVO_TEST_DATA "/recordings")) {
        if (entry.path().extension() != ".bytes") continue;
        const std::string name = entry.path().stem();
        const std::size_t size = name.rfind('-') + 1;
        const std::size_t times = name.find('x', size);
        found.push_back({name, std::stoi(name.substr(size)), std::stoi(name.substr(times + 1)),
                         contentsOf(entry.path())});
    }
    return found;
}

/// Feeds a recording in pieces; half-way, and again near its end, the screen may get another size.
std::string drawnFrom(const Recording& recording, std::size_t piece, bool resized) {
    TerminalScreen screen(recording.rows, recording.columns);
    screen.setBackgroundColorErase(true);
    const auto feed = [&](std::string_view bytes) {
        for (; !bytes.empty(); bytes.remove_prefix(std::min(piece, bytes.size()))) {
            screen.feed(bytes.substr(0, piece));
        }
        screen.assertInvariants();
    };
    const std::string_view bytes = recording.bytes;
    if (!resized) {
        feed(bytes);
        return drawn(screen);
    }
    const std::size_t half = bytes.size() / 2;
    const std::size_t late = bytes.size() - bytes.size() / 10;
    feed(bytes.substr(0, half));
    screen.resize(recording.rows - 9, recording.columns - 17);
    feed(bytes.substr(half, late - half));
    screen.resize(recording.rows + 3, recording.columns + 30);
    feed(bytes.substr(late));
    return drawn(screen);
}

TEST(Recording, ProgramsGiveTheScreensTheyAreKnownToGive) {
    const std::vector<Recording> all = recordings();
    ASSERT_GE(all.size(), 26u);
    for (const Recording& recording : all) {
        SCOPED_TRACE(recording.name);
        const fs::path path = ORVO_TEST_DATA "/recordings/" + recording.name + ".screen";
        const std::string screen = drawnFrom(recording, recording.bytes.size(), false);
        if (std::getenv("ORVO_WRITE_SCREENS") != nullptr) std::ofstream(path, std::ios::binary) << screen;
        EXPECT_EQ(screen, contentsOf(path));
    }
}

TEST(Recording, HowTheOutputArrivesMakesNoDifference) {
    for (const Recording& recording : recordings()) {
        SCOPED_TRACE(recording.name);
        for (const bool resized : {false, true}) {
            const std::string whole = drawnFrom(recording, recording.bytes.size(), resized);
            for (const std::size_t piece : {1u, 7u, 4095u})
                EXPECT_EQ(drawnFrom(recording, piece, resized), whole) << piece;
        }
    }
}

}  // namespace
}  // namespace orvo::test
