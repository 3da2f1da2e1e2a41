#include "appearance/Theme.h"
#include "platform/fake/FakePreferences.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace orvo {
namespace {

void storeChoice(FakePreferences& preferences) {
    preferences.preset("background", QStringLiteral("081322"));
    preferences.preset("accent", QStringLiteral("00E5D0"));
    preferences.preset("preset", QStringLiteral("ocean"));
}

TEST(Theme, FirstStartMovesEveryInstallationToTheDefaultPalette) {
    FakePreferences preferences;
    storeChoice(preferences);
    preferences.preset("terminalFont", 15.0);
    const Theme theme(&preferences);
    EXPECT_EQ(theme.backgroundHex(), u"141413");
    EXPECT_EQ(theme.accentHex(), u"00D9FF");
    EXPECT_EQ(theme.presetID(), u"pelk");
    EXPECT_EQ(theme.fontSize(), 15.0);
    EXPECT_EQ(preferences.value(preference::background), QStringLiteral("141413"));
    EXPECT_EQ(preferences.value(preference::accent), QStringLiteral("00D9FF"));
    EXPECT_EQ(preferences.value(preference::preset), QStringLiteral("pelk"));
    EXPECT_EQ(preferences.value(preference::pelkAccentApplied), true);
}

TEST(Theme, LaterStartsKeepWhatWasChosen) {
    FakePreferences preferences;
    {
        Theme(&preferences).apply(ThemePreset::all().at(2));
    }
    const Theme second(&preferences);
    EXPECT_EQ(second.backgroundHex(), u"081322");
    EXPECT_EQ(second.accentHex(), u"00E5D0");
    EXPECT_EQ(second.presetID(), u"ocean");
}

TEST(Theme, TextSizeFallsBackTo12WhenTheStoredOneIsOfNoUse) {
    const std::vector<PreferenceValue> useless{0.0, -3.0, std::numeric_limits<double>::quiet_NaN(),
                                               QStringLiteral("14"), true};
    for (const PreferenceValue& value : useless) {
        FakePreferences preferences;
        preferences.preset("terminalFont", value);
        EXPECT_EQ(Theme(&preferences).fontSize(), 12.0) << "kind " << value.index();
    }
}

TEST(Theme, OwnColorsAreStoredInOneFormAndMakeThePresetCustom) {
    FakePreferences preferences;
    Theme theme(&preferences);
    theme.setAccentHex(QStringLiteral("#00d9fa"));
    EXPECT_EQ(theme.accentHex(), u"00D9FA");
    EXPECT_EQ(theme.presetID(), u"custom");
    theme.apply(ThemePreset::all().first());
    theme.setBackgroundHex(QStringLiteral("no colour"));
    EXPECT_EQ(theme.backgroundHex(), u"000000");
    EXPECT_EQ(theme.presetID(), u"custom");
    EXPECT_EQ(preferences.value(preference::background), QStringLiteral("000000"));
}

TEST(Theme, ChangesAreAssignedAndStoredBeforeAnyoneIsTold) {
    FakePreferences preferences;
    Theme theme(&preferences);
    int told = 0;
    const auto check = [&] {
        ++told;
        EXPECT_EQ(theme.accentHex(), u"A797FF");
        EXPECT_EQ(theme.presetID(), u"midnight");
        EXPECT_EQ(preferences.value(preference::preset), QStringLiteral("midnight"));
    };
    for (const auto change : {&Theme::backgroundHexChanged, &Theme::accentHexChanged, &Theme::presetIDChanged,
                              &Theme::fontSizeChanged}) {
        QObject::connect(&theme, change, &theme, check);
    }
    theme.apply(ThemePreset::all().last());
    EXPECT_EQ(told, 3) << "the text size did not change";
    theme.apply(ThemePreset::all().last());
    EXPECT_EQ(told, 3) << "nothing changed at all";
}

TEST(Theme, AppliesEvenWhenNothingCanBeStored) {
    FakePreferences preferences;
    preferences.refuseWrites(Error{QStringLiteral("Test"), 1, QStringLiteral("The disk is full.")});
    Theme theme(&preferences);
    theme.setFontSize(16);
    EXPECT_EQ(theme.fontSize(), 16);
}

TEST(Theme, ColorsFollowFromTheBackground) {
    struct Row {
        int preset;
        const char *bg, *surface, *sidebar, *muted, *text;
    };
    // The last two surfaces and sidebars: 5.5 % toward white, 13 % toward black.
    const Row rows[] = {
        {0, "141413", "212120", "111110", "A8A69D", "ECEBE6"},
        {1, "171719", "212124", "121214", "B0AAA1", "F1EEE8"},
        {2, "081322", "16202E", "07111E", "8496AB", "E8F0F8"},
        {3, "111221", "1E1F2D", "0F101D", "8496AB", "E8F0F8"},
    };
    for (const Row& row : rows) {
        Theme theme(nullptr);
        theme.apply(ThemePreset::all().at(row.preset));
        EXPECT_EQ(hexOf(theme.bg()), row.bg);
        EXPECT_EQ(hexOf(theme.surface()), row.surface);
        EXPECT_EQ(hexOf(theme.sidebar()), row.sidebar);
        EXPECT_EQ(hexOf(theme.muted()), row.muted);
        EXPECT_EQ(hexOf(theme.text()), row.text);
        EXPECT_EQ(theme.isNeutral(), row.preset < 2);
        EXPECT_EQ(theme.border().alpha < 1, row.preset >= 2);
    }
}

}  // namespace
}  // namespace orvo
