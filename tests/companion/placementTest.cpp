#include "companion/placement.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

constexpr DeskScreen mainScreen{{0, 0, 1440, 900}, {0, 60, 1440, 815}};
constexpr DeskScreen left{{-1440, 0, 1440, 900}, {-1440, 20, 1440, 880}};
constexpr DeskScreen below{{0, -1080, 1920, 1080}, {0, -1080, 1920, 1080}};
constexpr QSizeF petSize(176, 186);
constexpr QSizeF controlsSize(340, 394);

DeskRect petAt(double x, double y) {
    return {x, y, petSize.width(), petSize.height()};
}

TEST(Placement, KeepsAWindowWithinItsFrame) {
    struct Case {
        QPointF origin;
        QSizeF size;
        QPointF expected;
    };
    for (const Case& each :
         {Case{{500, -100}, {200, 200}, {-200, 20}}, Case{{-900, 300}, {200, 200}, {-900, 300}},
          Case{{-2000, 2000}, {200, 200}, {-1440, 700}},
          // Larger than the frame: the left and the lower edge are shown.
          Case{{-900, 300}, {2000, 1000}, {-1440, 20}}}) {
        EXPECT_EQ(boundedOrigin(each.origin, each.size, left.visibleFrame), each.expected);
    }
}

TEST(Placement, ThePetStaysOnTheFirstScreenItTouches) {
    const QList<DeskScreen> screens = {mainScreen, left, below};
    // Across the edge of the main screen and the left one: the main one comes first.
    EXPECT_EQ(constrainedOrigin(petAt(-100, 300), screens), QPointF(0, 300));
    EXPECT_EQ(constrainedOrigin(petAt(-900, 300), screens), QPointF(-900, 300));
    EXPECT_EQ(constrainedOrigin(petAt(1700, -500), screens), QPointF(1700, -500));
    EXPECT_EQ(constrainedOrigin(petAt(1800, -500), screens), QPointF(1744, -500));
    // A place on a screen that is gone.
    EXPECT_EQ(constrainedOrigin(petAt(5000, 5000), screens), QPointF(1264, 689));
    EXPECT_EQ(constrainedOrigin(petAt(-900, 300), {mainScreen}), QPointF(0, 300));
    // Touching along an edge is not lying on the screen.
    EXPECT_EQ(constrainedOrigin(petAt(-176, 300), {mainScreen, left}), QPointF(-176, 300));
    EXPECT_EQ(constrainedOrigin(petAt(0, 0), {}), std::nullopt);
}

TEST(Placement, ThePetBeginsInTheLowerRightCorner) {
    EXPECT_EQ(defaultOrigin(petSize, {mainScreen, left}), QPointF(1440 - 176 - 28, 60 + 30));
    EXPECT_EQ(defaultOrigin(petSize, {}), std::nullopt);
}

TEST(Placement, TheQuickDraftOpensWhereThereIsRoom) {
    const QList<DeskScreen> screens = {mainScreen, left};
    EXPECT_EQ(controlsOrigin(petAt(200, 200), controlsSize, screens), QPointF(200 + 176 + 8, 215));
    // The last place with room at the right, and the first without.
    EXPECT_EQ(controlsOrigin(petAt(916, 200), controlsSize, screens), QPointF(1100, 215));
    EXPECT_EQ(controlsOrigin(petAt(917, 200), controlsSize, screens), QPointF(917 - 340 - 8, 215));
    // At the top it is pushed down; on another screen it stays with the pet.
    EXPECT_EQ(controlsOrigin(petAt(200, 689), controlsSize, screens), QPointF(384, 875 - 394));
    EXPECT_EQ(controlsOrigin(petAt(-300, 200), controlsSize, screens), QPointF(-300 - 340 - 8, 215));
    EXPECT_EQ(controlsOrigin(petAt(200, 200), controlsSize, {}), std::nullopt);
}

TEST(Placement, CoordinatesAreTurnedOverAndBack) {
    const QRectF rect(-30, 100, 200, 50);
    const DeskRect desk = deskRect(rect, 900);
    EXPECT_EQ(desk, (DeskRect{-30, 750, 200, 50}));
    EXPECT_EQ(toolkitRect(desk, 900), rect);
    // A screen below the main one lies in the negative.
    EXPECT_EQ(deskRect(QRectF(0, 900, 1920, 1080), 900), below.frame);
}

}  // namespace
}  // namespace orvo
