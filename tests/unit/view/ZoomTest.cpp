#include "view/Zoom.h"

#include <gtest/gtest.h>

#include <string>

namespace width {
namespace {

std::string Text(Zoom zoom) {
    return std::to_string(zoom.nNum) + "/" + std::to_string(zoom.nDen) + " ";
}

TEST(Zoom, TwentyThreeStepsLeadInAndBackOut) {
    std::string in, out;
    Zoom zoom{1, 20};
    for (std::optional<Zoom> next = zoom; next; next = NextZoomIn(zoom)) {
        zoom = *next;
        in += Text(zoom);
    }
    EXPECT_EQ(in, "1/20 1/8 1/4 1/3 1/2 2/3 3/4 4/5 1/1 3/2 2/1 3/1 4/1 5/1 6/1 7/1 8/1 10/1 12/1 13/1 14/1 15/1 16/1 ");
    for (std::optional<Zoom> next = zoom; next; next = NextZoomOut(zoom)) {
        zoom = *next;
        out.insert(0, Text(zoom));
    }
    EXPECT_EQ(out, in);
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
