#include "terminal/core/TerminalModes.h"

namespace orvo {

bool* TerminalModes::privateMode(int number) {
    switch (number) {
        case 1:
            return &applicationCursor;
        case 6:
            return &origin;
        case 7:
            return &autowrap;
        case 25:
            return &cursorVisible;
        case 1000:
            return &mouseButtons;
        case 1002:
            return &mouseDrags;
        case 1003:
            return &mouseMotion;
        case 1004:
            return &focusReports;
        case 1006:
            return &sgrMouse;
        case 1007:
            return &alternateScroll;
        case 2004:
            return &bracketedPaste;
        case 2026:
            return &synchronizedOutput;
        case 2031:
            return &colorSchemeReports;
        default:
            return nullptr;
    }
}

}  // namespace orvo
