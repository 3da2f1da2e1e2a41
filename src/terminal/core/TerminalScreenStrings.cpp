// Operating-system commands: titles, links, colour queries, what asks for attention, the clipboard.
#include "terminal/core/TerminalScreen.h"

#include <algorithm>

namespace orvo {
namespace {

/// Of a title or a message; what is longer is cut.
constexpr std::size_t longestLine = 512;
/// A table that was full with all in use is not searched again before this many changes of lines.
constexpr std::uint64_t changesBetweenSearches = 1 << 16;

/// Well-formed text without control characters.
std::string cleanLine(std::string_view bytes) {
    std::string line;
    std::size_t count = 0;
    const auto add = [&line, &count](char32_t scalar) {
        const bool control = scalar < 0x20 || (scalar >= 0x7F && scalar <= 0x9F);
        if (!control && ++count <= longestLine) appendUtf8(line, scalar);
    };
    Utf8Decoder decoder;
    for (const char *position = bytes.data(), *const end = position + bytes.size(); position < end;) {
        if (Utf8Decoder::isAscii(*position)) {
            add(static_cast<unsigned char>(*position++));
        } else {
            position = decoder.decode(position, end, add);
        }
    }
    if (decoder.pending()) decoder.finish(add);
    return line;
}

bool isAddress(std::string_view text) {
    return text.size() <= CellExtras::longestLink &&
           std::ranges::all_of(text, [](char byte) { return isPrintableAscii(byte) && byte != ' '; });
}

/// The value of "id" among "key=value" pairs with colons between them.
std::string_view linkNameIn(std::string_view parameters) {
    while (!parameters.empty()) {
        const std::size_t length = std::min(parameters.find(':'), parameters.size());
        const std::string_view pair = parameters.substr(0, length);
        if (pair.starts_with("id=")) return pair.substr(3);
        parameters.remove_prefix(std::min(length + 1, parameters.size()));
    }
    return {};
}

}  // namespace

void TerminalScreen::operatingSystemCommand(std::string_view text, std::string_view terminator) {
    const std::size_t length = std::min(text.find(';'), text.size());
    const std::string_view kind = text.substr(0, length);
    const std::string_view rest = text.substr(std::min(length + 1, text.size()));
    if (kind == "0" || kind == "2") {
        m_programTitle = cleanLine(rest);
    } else if (kind == "4") {
        reportPalette(rest, terminator);
    } else if (kind == "8") {
        setLink(rest);
    } else if (kind == "9") {
        // 9;4 tells how far the program has come, again and again.
        if (!rest.starts_with("4;")) notify(rest);
    } else if (kind == "10" || kind == "11" || kind == "12") {
        reportColors(static_cast<std::size_t>(kind[1] - '0'), rest, terminator);
    } else if (kind == "52") {
        // The answer to "?" would hand what the person copied to any program that asks.
        const std::string_view data = rest.substr(std::min(rest.find(';'), rest.size() - 1) + 1);
        if (!rest.empty() && data != "?") request(TerminalRequest::Kind::SetClipboard, data);
    } else if (kind == "99") {
        notify(rest.substr(std::min(rest.find(';'), rest.size() - 1) + 1));
    } else if (kind == "777" && rest.starts_with("notify;")) {
        notify(rest.substr(7));
    }
}

void TerminalScreen::notify(std::string_view text) {
    std::string line = cleanLine(text);
    // What stands between title and body in 777.
    std::ranges::replace(line, ';', ' ');
    request(TerminalRequest::Kind::Notify, line);
}

void TerminalScreen::setLink(std::string_view text) {
    const std::size_t separator = text.find(';');
    if (separator == std::string_view::npos) return;
    const std::string_view name = linkNameIn(text.substr(0, separator));
    const std::string_view address = text.substr(separator + 1);
    const bool valid = isAddress(address) && isAddress(name);
    m_link.link = valid ? address : std::string_view();
    m_link.linkName = valid && !address.empty() ? name : std::string_view();
    updateExtra();
}

void TerminalScreen::updateExtra() {
    CellExtra wanted = m_link;
    wanted.underlineColor = m_style.underlineColor;
    std::optional<std::uint16_t> number = m_extras.numberOf(wanted);
    if (!number && m_stamp - m_extrasFullAt >= changesBetweenSearches) {
        forgetUnusedExtras();
        number = m_extras.numberOf(wanted);
        m_extrasFullAt = m_stamp;
    }
    m_style.cell.extra = number.value_or(0);
}

void TerminalScreen::forgetUnusedExtras() {
    std::vector<bool> used(CellExtras::capacity);
    const auto mark = [&used](LineGrid& grid) {
        for (const TerminalRow* const row : grid.handles())
            row->markExtras(used);
    };
    mark(m_grid);
    if (m_savedMain) mark(m_savedMain->grid);
    for (int index = 0; index < scrollbackCount(); ++index) {
        scrollbackLine(index).markExtras(used);
    }
    m_extras.keepOnly(used);
}

}  // namespace orvo
