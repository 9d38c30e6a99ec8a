#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "classlib/BarRows.h"

namespace {

using ::testing::ElementsAre;

constexpr BarItem kItems[] = {{4, 54}, {60, 110}, {110, 160}, {170, 220}};

TEST(BarRows, RowThatFitsStaysAsItIs) {
    const auto same = ElementsAre(BarPlace{0, 4}, BarPlace{0, 60}, BarPlace{0, 110}, BarPlace{0, 170});
    EXPECT_THAT(BreakIntoRows(kItems, 1000), same);
    EXPECT_THAT(BreakIntoRows(kItems, 220), same) << "up to the last pixel";
}

TEST(BarRows, BrokenRowKeepsGapsAndBeginsAtTheSameEdge) {
    EXPECT_THAT(BreakIntoRows(kItems, 219), ElementsAre(BarPlace{0, 4}, BarPlace{0, 60}, BarPlace{0, 110}, BarPlace{1, 4}));
    EXPECT_THAT(BreakIntoRows(kItems, 120), ElementsAre(BarPlace{0, 4}, BarPlace{0, 60}, BarPlace{1, 4}, BarPlace{1, 64}));
    EXPECT_THAT(BreakIntoRows(kItems, 54), ElementsAre(BarPlace{0, 4}, BarPlace{1, 4}, BarPlace{2, 4}, BarPlace{3, 4}));
}

TEST(BarRows, WithoutRoomEachItemHasItsRow) {
    EXPECT_THAT(BreakIntoRows(kItems, 0), ElementsAre(BarPlace{0, 4}, BarPlace{1, 4}, BarPlace{2, 4}, BarPlace{3, 4}));
    EXPECT_TRUE(BreakIntoRows({}, 100).empty());
}

}  // namespace
