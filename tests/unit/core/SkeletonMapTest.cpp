#include "core/SkeletonMap.h"

#include <gtest/gtest.h>

#include "tests/support/Pictures.h"

namespace width {
namespace {

TEST(SkeletonMap, HasABorderOfTwoCellsRoundAnyPicture) {
    const SkeletonMap map(1, 3);
    EXPECT_EQ(map.Rows(), 5);
    EXPECT_EQ(map.Columns(), 7);
    EXPECT_TRUE(map.Holds({4, 6}));
    EXPECT_FALSE(map.Holds({5, 0}));
    EXPECT_FALSE(map.Holds({0, -1}));
    EXPECT_EQ(SkeletonMap().Rows(), 0);
    EXPECT_FALSE(SkeletonMap().Holds({0, 0}));
}

TEST(SkeletonMap, RunsBottomUp) {
    const SkeletonMap map = test::DrawnMap({"#..", "..2"});
    EXPECT_EQ(map.At({3, 2}), 1) << "the picture's top row is the higher map row";
    EXPECT_EQ(map.At({2, 4}), 2);
    EXPECT_EQ(map.Row(3)[2], 1);
}

}  // namespace
}  // namespace width
