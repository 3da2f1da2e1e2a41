#include "workspace/ui/DeckGeometry.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <ostream>

namespace orvo {
namespace {

// The deck's area in the smallest window, in the usual one and on a large screen.
constexpr QSize smallArea(612, 378);
constexpr QSize usualArea(872, 538);
constexpr QSize largeArea(1992, 1078);

struct Case {
    int count;
    QSize area;
    int columns;
    int rows;
    bool scrolls;
};

/// The name of the case in the list of tests.
void PrintTo(const Case& deck, std::ostream* out) {
    *out << deck.count << " panes in " << deck.area.width() << " x " << deck.area.height();
}

class DeckGeometryTest : public testing::TestWithParam<Case> {};

int columnsOf(const DeckGeometry& geometry) {
    const int top = geometry.panes.first().top();
    return static_cast<int>(std::ranges::count_if(geometry.panes, [top](QRect p) { return p.top() == top; }));
}

TEST_P(DeckGeometryTest, fillsTheAreaWithoutOverlap) {
    const auto [count, area, columns, rows, scrolls] = GetParam();
    const DeckGeometry geometry = DeckGeometry::grid(count, area);
    ASSERT_EQ(geometry.panes.size(), count);
    EXPECT_EQ(columnsOf(geometry), columns);
    EXPECT_EQ(geometry.height > area.height(), scrolls);

    QRect covered;
    for (int i = 0; i < count; ++i) {
        covered |= geometry.panes[i];
        EXPECT_GE(geometry.panes[i].height(), DeckGeometry::minimumPaneHeight);
        EXPECT_GE(geometry.panes[i].width(), columns > 1 ? DeckGeometry::minimumPaneWidth : area.width());
        for (int j = 0; j < i; ++j) {
            const QRect apart = geometry.panes[j].adjusted(-DeckGeometry::gap, -DeckGeometry::gap,
                                                           DeckGeometry::gap, DeckGeometry::gap);
            EXPECT_FALSE(geometry.panes[i].intersects(apart)) << i << " is too near " << j;
        }
    }
    EXPECT_EQ(covered, QRect(QPoint(0, 0), QSize(area.width(), geometry.height)));
    EXPECT_EQ(geometry.panes.last().bottom(), geometry.height - 1);
    EXPECT_EQ(geometry.panes.last().right(), area.width() - 1) << "a short last row shares its width";
    EXPECT_EQ((count + columns - 1) / columns, rows);
}

INSTANTIATE_TEST_SUITE_P(Sessions, DeckGeometryTest,
                         testing::Values(Case{1, smallArea, 1, 1, false}, Case{2, smallArea, 2, 1, false},
                                         Case{3, smallArea, 2, 2, false}, Case{4, smallArea, 2, 2, false},
                                         Case{5, smallArea, 2, 3, true}, Case{12, smallArea, 2, 6, true},
                                         Case{4, usualArea, 2, 2, false}, Case{12, usualArea, 2, 6, true},
                                         Case{4, largeArea, 2, 2, false}, Case{7, largeArea, 3, 3, false},
                                         Case{12, largeArea, 4, 3, false},
                                         // Narrower than one pane ought to be: still one column.
                                         Case{2, QSize(200, 400), 1, 2, false}));

TEST(DeckGeometryEmpty, hasNoPanes) {
    EXPECT_TRUE(DeckGeometry::grid(0, usualArea).panes.isEmpty());
}

}  // namespace
}  // namespace orvo
