#include "appearance/Roles.h"
#include "appearance/Theme.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

class RolesOfPreset : public testing::TestWithParam<int> {
protected:
    RolesOfPreset() {
        Theme theme(nullptr);
        theme.apply(ThemePreset::all().at(GetParam()));
        r = Roles::of(theme);
    }

    Roles r;
};

TEST_P(RolesOfPreset, TextIsReadableWhereverItIsWritten) {
    struct Pair {
        const char* where;
        Rgb ink;
        Rgb paper;
    };
    const Pair pairs[] = {
        {"text on the page", r.text, r.bg},
        {"text on a card", r.text, r.surface},
        {"text in the sidebar", r.text, r.sidebar},
        {"text on the chosen entry", r.text, over(r.selected, r.sidebar)},
        {"text on the chosen segment", r.text, over(r.segmentOn, r.bg)},
        {"text on a lit menu item", r.text, over(r.menuHighlight, r.surface)},
        {"text on selected text", r.text, over({r.accent, 0.35}, r.surface)},
        {"a count", r.text, over(r.countBadge, over(r.selected, r.sidebar))},
        {"muted on the page", r.muted, r.bg},
        {"muted on a card", r.muted, r.surface},
        {"muted in the sidebar", r.muted, r.sidebar},
        {"muted on a lit card", r.muted, r.cardHover},
        {"muted on a pressed card", r.muted, r.cardPressed},
        {"muted on a lit row", r.muted, over(r.hover, r.bg)},
        {"caption on a lit row of a card", r.muted, over(r.hover, r.surface)},
        {"name on a selected row", r.accent, over(r.selected, r.surface)},
        {"caption on a selected row", r.mutedOnSelected, over(r.selected, r.surface)},
        {"primary button", r.onAccent, r.accent},
        {"lit primary button", r.onAccent, r.accentHover},
        {"pressed primary button", r.onAccent, r.accentPressed},
        {"button at work, faded", r.text, over({r.accent, 0.4}, r.surface)},
        {"destroying button", r.onDanger, r.danger},
        {"pressed destroying button", r.onDanger, r.dangerFillPressed},
        {"error on the page", r.danger, r.bg},
        {"error on a card", r.danger, r.surface},
        {"destructive button, pressed", r.danger, over(r.dangerPressed, r.surface)},
        {"accent text on a card", r.accent, r.surface},
        {"pill", r.accent, over(r.pillOf(r.accent), r.surface)},
        {"error pill", r.danger, over(r.pillOf(r.danger), r.surface)},
        {"quiet pill", r.muted, over(r.pillOf(r.muted), r.surface)},
    };
    for (const Pair& pair : pairs)
        EXPECT_GE(contrastRatio(pair.ink, pair.paper), 4.5) << pair.where;
}

TEST_P(RolesOfPreset, ControlsAndFocusStandOutFromTheirBackground) {
    for (const Rgb below : {r.bg, r.surface, r.sidebar}) {
        EXPECT_GE(contrastRatio(over(r.controlOutline, below), below), 3.0);
        EXPECT_GE(contrastRatio(r.accent, below), 3.0) << "the focus ring";
    }
}

INSTANTIATE_TEST_SUITE_P(Presets, RolesOfPreset, testing::Range(0, 4), [](const auto& preset) {
    return ThemePreset::all().at(preset.param).id.toStdString();
});

TEST(Roles, ButtonTextTurnsWhiteOnADarkAccent) {
    Theme theme(nullptr);
    theme.setAccentHex(QStringLiteral("3311AA"));
    EXPECT_EQ(Roles::of(theme).onAccent, (Rgb{255, 255, 255}));
    theme.setAccentHex(QStringLiteral("FFEE00"));
    EXPECT_EQ(Roles::of(theme).onAccent, (Rgb{0, 0, 0}));
}

TEST(ColorMath, ContrastIsThatOfTheGuideline) {
    EXPECT_DOUBLE_EQ(contrastRatio({0, 0, 0}, {255, 255, 255}), 21.0);
    EXPECT_NEAR(contrastRatio({0x77, 0x77, 0x77}, {255, 255, 255}), 4.48, 0.01);
    EXPECT_DOUBLE_EQ(contrastRatio({9, 8, 7}, {9, 8, 7}), 1.0);
}

}  // namespace
}  // namespace orvo
