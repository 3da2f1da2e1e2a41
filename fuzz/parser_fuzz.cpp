// The byte machine alone: any split of the input gives the same text, characters and sequences, and each of
// them keeps what its reader may count on.
//
// Input: two sizes of pieces, then output of a program.
#include "fuzz/FuzzInput.h"
#include "terminal/core/EscapeParser.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace {

using orvo::EscapeParser;
using orvo::fuzz::FuzzInput;
using orvo::fuzz::require;

/// Writes down what it is handed.
class Log {
public:
    void printAscii(std::string_view text, const char* /*end*/) {
        require(!text.empty() && std::ranges::all_of(text, orvo::isPrintableAscii), "text that is none");
        // Where a run of text ends is no matter.
        if (!m_inText) m_text += "\ntext ";
        m_text += text;
        m_inText = true;
    }
    /// Takes no runs: each scalar is to be looked at.
    const char* printText(const char* position, const char*) { return position; }
    void print(char32_t scalar) {
        require(scalar >= 0x80 && scalar <= 0x10FFFF && (scalar < 0xD800 || scalar > 0xDFFF), "no scalar");
        note("scalar " + std::to_string(scalar));
    }
    void control(char character) {
        require(static_cast<unsigned char>(character) < 0x20 || character == 0x7F, "no control character");
        note("control " + std::to_string(int{character}));
    }
    void escape(char32_t scalar) { note("escape " + std::to_string(scalar)); }
    void intermediateEscape(std::string_view intermediates, char final) {
        require(!intermediates.empty() && final >= 0x30 && final <= 0x7E, "no escape with intermediates");
        note("escape " + std::string(intermediates) + final);
    }
    void controlSequence(const orvo::ControlSequence& sequence) {
        require(sequence.final >= 0x40 && sequence.final <= 0x7E, "no final");
        require(!sequence.parameters.empty(), "a sequence without a parameter");
        require(sequence.parameters.size() <= EscapeParser::longestSequence + 1, "too many parameters");
        std::string text = "sequence ";
        if (sequence.marker != 0) text += sequence.marker;
        for (const int parameter : sequence.parameters) {
            require(parameter >= 0 && parameter <= EscapeParser::greatestParameter, "parameter out of range");
            text += std::to_string(parameter) + ";";
        }
        for (const char byte : sequence.intermediates)
            require(byte >= 0x20 && byte <= 0x2F, "no intermediate");
        note(text.append(sequence.intermediates) + sequence.final + " " + std::string(sequence.colonFields));
    }
    void operatingSystemCommand(std::string_view text, std::string_view terminator) {
        require(text.size() <= EscapeParser::longestString, "a string that is too long");
        require(text.find('\a') == std::string_view::npos, "a string goes on behind its end");
        note("command " + std::string(text) + "|" + std::string(terminator));
    }
    const std::string& text() const { return m_text; }

private:
    void note(const std::string& event) {
        m_text += "\n" + event;
        m_inText = false;
    }

    std::string m_text;
    bool m_inText = false;
};

/// Feeds the pieces in turn.
std::string logOf(std::string_view bytes, std::array<std::size_t, 2> pieces) {
    Log log;
    EscapeParser parser;
    orvo::Utf8Decoder decoder;
    for (std::size_t turn = 0; !bytes.empty(); ++turn) {
        const std::size_t size = std::min(pieces[turn % pieces.size()], bytes.size());
        parser.feed(bytes.substr(0, size), decoder, log);
        bytes.remove_prefix(size);
    }
    return log.text();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    FuzzInput input(data, size);
    const std::array pieces{static_cast<std::size_t>(input.between(1, 16)),
                            static_cast<std::size_t>(input.between(1, 255))};
    const std::string whole = logOf(input.rest(), {size, size});
    require(whole == logOf(input.rest(), pieces), "what is found depends on how the input was split");
    require(whole == logOf(input.rest(), {1, 1}), "what is found byte by byte is something else");
    return 0;
}
