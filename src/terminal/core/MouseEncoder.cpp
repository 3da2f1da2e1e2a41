#include "terminal/core/MouseEncoder.h"

namespace orvo {
namespace {

constexpr int wheelCode = 64;
constexpr int movementCode = 32;
/// Added to each of the classic form's bytes, so that none is a control character.
constexpr int classicOffset = 32;

int codeOf(const MouseEvent& event, MouseForm form) {
    const bool wheel = event.button >= MouseButton::WheelUp;
    int code = wheel ? wheelCode + static_cast<int>(event.button) - static_cast<int>(MouseButton::WheelUp)
                     : static_cast<int>(event.button);
    // The classic form does not tell which button was let go.
    if (form == MouseForm::Classic && event.action == MouseAction::Release)
        code = static_cast<int>(MouseButton::None);
    if (event.action == MouseAction::Move) code += movementCode;
    if (event.modifiers.shift()) code += 4;
    if (event.modifiers.alt()) code += 8;
    if (event.modifiers.control()) code += 16;
    return code;
}

}  // namespace

std::string encodeMouse(const MouseEvent& event, MouseForm form) {
    const int code = codeOf(event, form);
    const int column = event.column + 1;
    const int row = event.row + 1;
    if (form == MouseForm::Sgr) {
        return "\x1B[<" + std::to_string(code) + ";" + std::to_string(column) + ";" + std::to_string(row) +
               (event.action == MouseAction::Release ? "m" : "M");
    }
    constexpr int greatest = 0xFF - classicOffset;
    if (column > greatest || row > greatest) return {};
    std::string bytes = "\x1B[M";
    for (const int value : {code, column, row}) {
        bytes.push_back(static_cast<char>(value + classicOffset));
    }
    return bytes;
}

}  // namespace orvo
