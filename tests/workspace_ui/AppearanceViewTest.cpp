#include "appearance/ui/ColorWell.h"
#include "appearance/ui/PaletteTile.h"
#include "support/WaitFor.h"
#include "team_runs/TeamRuns.h"
#include "workspace_ui/ScreenFixture.h"

#include <QAccessible>
#include <QColorDialog>
#include <QFileInfo>
#include <QSlider>

namespace orvo::test {
namespace {

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

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

TEST_F(AppearanceViewTest, ColoursOfOnesOwnBelongToNoPalette) {
    openPage();
    struct Case {
        const char* well;
        const QString& (Theme::*hex)() const;
    };
    for (const Case& well :
         {Case{"Background", &Theme::backgroundHex}, {"Accent color", &Theme::accentHex}}) {
        press(text("Midnight"));
        press(text(well.well));
        auto* const picker = find<ColorWell>(screen(), text(well.well))->findChild<QColorDialog*>();
        ASSERT_NE(picker, nullptr);
        picker->setCurrentColor(QColor(0x12, 0xab, 0x34));
        EXPECT_EQ((m_theme.*well.hex)(), text("12AB34"));
        EXPECT_EQ(m_theme.presetID(), text("custom"));
        EXPECT_EQ(chosen(), QStringList());
        picker->close();
    }
    press(text("Restore charcoal & pelk"));
    EXPECT_EQ(chosen(), QStringList{text("Orvo charcoal")});
    EXPECT_EQ(m_theme.accentHex(), text("00D9FF"));
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

TEST_F(AppearanceViewTest, SettingsLeadOnAndKeepTheComputerAwake) {
    const FilePath runs = teamRuns().runsFolder();
    const auto open = [&] {
        workspace().setDestination(Destination::Settings);
    };
    open();
    screen();
    press(text("Open saved runs"));
    EXPECT_EQ(m_launcher.folders(), QList<FilePath>{runs});
    EXPECT_TRUE(QFileInfo(runs.display()).isDir());
    press(text("Refresh tools"));
    EXPECT_EQ(workspace().toast(), text("Installed tool list refreshed."));
    press(text("Keep Mac awake while Orvo tasks run"));
    EXPECT_TRUE(workspace().keepAwake());
    workspace().setKeepAwake(false);
    EXPECT_FALSE(find<QAbstractButton>(screen(), text("Keep Mac awake while Orvo tasks run"))->isChecked());

    struct Way {
        const char* button;
        Destination page;
    };
    for (const Way& way : {Way{"Desktop companion & voice", Destination::Companion},
                           {"Customize appearance", Destination::Appearance},
                           {"Manage assistants", Destination::Agents}}) {
        open();
        press(text(way.button));
        EXPECT_EQ(workspace().destination(), way.page);
    }
}

}  // namespace
}  // namespace orvo::test
