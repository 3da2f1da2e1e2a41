#include "terminal/core/MouseEncoder.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

TEST(MouseEncoder, BothFormsTellButtonModifiersAndPlace) {
    const struct {
        MouseEvent event;
        const char* classic;
        const char* sgr;
    } cases[] = {
        {{MouseAction::Press, MouseButton::Left, {}, 0, 0}, "\x1b[M !!", "\x1b[<0;1;1M"},
        {{MouseAction::Press, MouseButton::Right, {}, 4, 9}, "\x1b[M\"*%", "\x1b[<2;10;5M"},
        {{MouseAction::Release, MouseButton::Middle, {}, 0, 0}, "\x1b[M#!!", "\x1b[<1;1;1m"},
        {{MouseAction::Move, MouseButton::Left, {}, 0, 1}, "\x1b[M@\"!", "\x1b[<32;2;1M"},
        {{MouseAction::Move, MouseButton::None, {}, 0, 1}, "\x1b[MC\"!", "\x1b[<35;2;1M"},
        {{MouseAction::Press, MouseButton::WheelUp, {}, 0, 0}, "\x1b[M`!!", "\x1b[<64;1;1M"},
        {{MouseAction::Press, MouseButton::WheelDown, {KeyModifiers::Control}, 0, 0},
         "\x1b[Mq!!",
         "\x1b[<81;1;1M"},
        {{MouseAction::Press, MouseButton::Left, {KeyModifiers::Alt | KeyModifiers::Shift}, 0, 0},
         "\x1b[M,!!",
         "\x1b[<12;1;1M"},
        {{MouseAction::Press, MouseButton::Left, {}, 222, 0}, "\x1b[M !\xff", "\x1b[<0;1;223M"},
        {{MouseAction::Press, MouseButton::Left, {}, 0, 223}, "", "\x1b[<0;224;1M"},
    };
    for (const auto& [event, classic, sgr] : cases) {
        EXPECT_EQ(encodeMouse(event, MouseForm::Classic), classic);
        EXPECT_EQ(encodeMouse(event, MouseForm::Sgr), sgr);
    }
}

}  // namespace
}  // namespace orvo
