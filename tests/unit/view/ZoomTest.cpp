#include "view/Zoom.h"

#include <gtest/gtest.h>

namespace width {
namespace {

TEST(Zoom, StepsGoToTheNeighbourInTheTable) {
    Zoom zoom{1, 20};
    for (std::size_t i = 1; i < kZoomTable.size(); ++i) {
        const auto next = NextZoomIn(zoom);
        ASSERT_TRUE(next);
        EXPECT_EQ(*next, kZoomTable[i]);
        EXPECT_EQ(*NextZoomOut(*next), zoom);
        zoom = *next;
    }
    EXPECT_FALSE(NextZoomIn({16, 1}));
    EXPECT_FALSE(NextZoomOut({1, 20}));
}

TEST(Zoom, FractionsBetweenTheStepsCountByTheirValue) {
    EXPECT_EQ(*NextZoomIn({37, 100}), (Zoom{1, 2}));
    EXPECT_EQ(*NextZoomOut({37, 100}), (Zoom{1, 3}));
    EXPECT_EQ(*NextZoomIn({50, 100}), (Zoom{2, 3}));
    EXPECT_EQ(*NextZoomOut({50, 100}), (Zoom{1, 3}));
    EXPECT_FALSE(NextZoomOut({5, 100}));
    EXPECT_FALSE(NextZoomIn({1600, 100}));
}

TEST(Zoom, BestFitTakesTheTighterAxisInWholePerCent) {
    EXPECT_EQ(BestFitZoom(370, 900, 1000, 1000), (Zoom{37, 100}));
    EXPECT_EQ(BestFitZoom(900, 370, 1000, 1000), (Zoom{37, 100}));
    EXPECT_EQ(BestFitZoom(49, 49, 1000, 1000), (Zoom{1, 20}));
    EXPECT_EQ(BestFitZoom(50, 50, 1000, 1000), (Zoom{5, 100}));
    EXPECT_EQ(BestFitZoom(1600, 1700, 100, 100), (Zoom{1600, 100}));
    EXPECT_EQ(BestFitZoom(1601, 1701, 100, 100), (Zoom{16, 1}));
    EXPECT_EQ(BestFitZoom(0, 500, 100, 100), (Zoom{1, 20}));
    // 0.29F * 100.0F is 29 in single precision; in double it would fall below and give 28.
    EXPECT_EQ(BestFitZoom(29, 100, 100, 100), (Zoom{29, 100}));
}

TEST(Zoom, PercentIsTruncated) {
    EXPECT_EQ(ZoomPercent({1, 3}), 33);
    EXPECT_EQ(ZoomPercent({2, 3}), 66);
    EXPECT_EQ(ZoomPercent({1, 8}), 12);
    EXPECT_EQ(ZoomPercent({3, 2}), 150);
}

}  // namespace
}  // namespace width
