#include "appearance/ui/PaletteTile.h"
#include "workspace_ui/ScreenFixture.h"

#include <QAccessible>
#include <QSlider>

namespace orvo::test {
namespace {

class AppearanceViewTest : public ScreenFixture {
protected:
    void openPage() {
        workspace().setDestination(Destination::Appearance);
        screen();
    }
    QStringList chosen() {
        QStringList titles;
        for (const auto* tile : screen().findChildren<PaletteTile*>())
            if (tile->isChecked()) titles.append(tile->title());
        return titles;
    }
    QSlider& slider() { return *find<QSlider>(screen(), text("Terminal text")); }
};

TEST_F(AppearanceViewTest, AppliesAPaletteAndMarksIt) {
    openPage();
    EXPECT_EQ(chosen(), QStringList{text("Orvo charcoal")});
    press(text("Deep ocean"));
    EXPECT_EQ(m_theme.backgroundHex(), text("081322"));
    EXPECT_EQ(chosen(), QStringList{text("Deep ocean")});
    // Once more changes nothing, and the mark stays.
    press(text("Deep ocean"));
    EXPECT_EQ(chosen(), QStringList{text("Deep ocean")});
    const auto* const tile = find<PaletteTile>(screen(), text("Midnight"));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(const_cast<PaletteTile*>(tile))->role(),
              QAccessible::RadioButton);
}

TEST_F(AppearanceViewTest, SetsTheTextSizeInWholePointsWithinItsRange) {
    m_theme.setFontSize(23.4);
    openPage();
    EXPECT_TRUE(shows(screen(), text("23")));
    EXPECT_EQ(m_theme.fontSize(), 23.4) << "opening the page must not change what is stored";
    slider().triggerAction(QSlider::SliderSingleStepSub);
    EXPECT_EQ(m_theme.fontSize(), 19);
    for (int step = 0; step < 30; ++step)
        slider().triggerAction(QSlider::SliderPageStepSub);
    EXPECT_EQ(m_theme.fontSize(), 10);
    EXPECT_TRUE(shows(screen(), text("10")));
    press(text("Restore charcoal & pelk"));
    EXPECT_EQ(m_theme.fontSize(), 12);
    EXPECT_EQ(slider().value(), 12);
}

TEST_F(AppearanceViewTest, TheSwitchOfTheSettingsFollowsTheModel) {
    workspace().setDestination(Destination::Settings);
    auto* const awake = find<QAbstractButton>(screen(), text("Keep Mac awake while Orvo tasks run"));
    workspace().setKeepAwake(true);
    EXPECT_TRUE(awake->isChecked());
    workspace().setKeepAwake(false);
    EXPECT_FALSE(awake->isChecked());
}

}  // namespace
}  // namespace orvo::test
