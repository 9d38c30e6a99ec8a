#include "analysis/LineStore.h"

#include <gtest/gtest.h>

#include <set>

#include "analysis/Skeleton.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

// A picture of 60 x 40 with a skeleton line along block row 20, columns 5..54.
SkeletonMap OneLine() {
    SkeletonMap map(40, 60);
    for (std::int32_t x = 5; x < 55; ++x) {
        map.Set({22, x + 2}, 1);
    }
    return map;
}

TEST(DetectLine, StoresAndMarksBothEnds) {
    SkeletonMap map = OneLine();
    LineStore store;
    const Detection detection = DetectLine(map, {30, 19}, LineConditions{}, store);
    ASSERT_TRUE(detection.bStored);
    EXPECT_EQ(detection.nId, 2);
    EXPECT_EQ(detection.nFitAxis, FitAxis::HullEdge);
    ASSERT_EQ(store.m_Lines.size(), 1U);
    EXPECT_EQ(store.m_Lines[0].ptFirst, (PathPoint{0, 54, 20}));
    EXPECT_EQ(map.At({22, 56}), 2);
    EXPECT_EQ(map.At({22, 7}), 2);
    EXPECT_EQ(store.m_nNextLineId, 3);
}

TEST(DetectLine, TheSameLineAgainTakesANewId) {
    SkeletonMap map = OneLine();
    LineStore store;
    DetectLine(map, {30, 19}, LineConditions{}, store);
    EXPECT_EQ(DetectLine(map, {30, 19}, LineConditions{}, store).nId, 3);
    EXPECT_EQ(store.m_Lines.size(), 2U);
    EXPECT_EQ(map.At({22, 7}), 3);
}

TEST(DetectLine, IdsWrapInTheMapAndNotInTheStore) {
    SkeletonMap map = OneLine();
    LineStore store;
    store.m_nNextLineId = 257;
    EXPECT_EQ(DetectLine(map, {30, 19}, LineConditions{}, store).nId, 257);
    EXPECT_EQ(map.At({22, 7}), 1) << "an unmarked end";
    EXPECT_EQ(DetectLine(map, {30, 19}, LineConditions{}, store).nId, 258);
    EXPECT_EQ(map.At({22, 7}), 2);
    store.m_nNextLineId = 256;
    DetectLine(map, {30, 19}, LineConditions{}, store);
    EXPECT_EQ(map.At({22, 7}), 0) << "256 wipes the pixel under it";
}

TEST(DetectLine, NothingFoundChangesNothing) {
    SkeletonMap map = OneLine();
    const SkeletonMap before = map;
    LineStore store;
    LineConditions conditions;
    conditions.nMinLineLength = 200;
    EXPECT_FALSE(DetectLine(map, {30, 19}, conditions, store).bStored);
    EXPECT_FALSE(DetectLine(map, {30, 5}, LineConditions{}, store).bStored);
    EXPECT_EQ(map, before);
    EXPECT_TRUE(store.m_Lines.empty());
    EXPECT_EQ(store.m_nNextLineId, 2);
}

// Clicks all over noisy pictures: every mark lies under a stored end, every stored line without a
// mark has an end outside, and nothing but marked cells ever changes.
TEST(DetectLine, MarksAgreeWithTheStoreOnNoisyPictures) {
    std::mt19937 random(12);
    int nStored = 0;
    for (int i = 0; i < 100; ++i) {
        const std::vector<std::byte> block = test::RandomDib(random, 120, 90, 8, test::Texture::Strokes);
        SkeletonMap map = *MakeSkeleton(*DibView::Open(block), {0, 127});
        const SkeletonMap before = map;
        LineStore store;
        LineConditions conditions;
        conditions.nMinLineLength = 4 + test::Below(random, 20);
        std::set<std::pair<std::int32_t, std::int32_t>> marked;
        for (int nClick = 0; nClick < 60; ++nClick) {
            const Detection detection = DetectLine(map, {test::Below(random, 120), test::Below(random, 90)}, conditions, store);
            nStored += detection.bStored ? 1 : 0;
            const auto isInside = [](const PathPoint& pt) { return pt.x >= 0 && pt.x < 120 && pt.y >= 0 && pt.y < 90; };
            ASSERT_EQ(detection.nId.has_value(),
                      detection.bStored && isInside(detection.line.ptFirst) && isInside(detection.line.ptLast));
            if (detection.nId) {
                marked.insert({detection.line.ptFirst.y + 2, detection.line.ptFirst.x + 2});
                marked.insert({detection.line.ptLast.y + 2, detection.line.ptLast.x + 2});
            }
        }
        for (std::int32_t r = 0; r < map.Rows(); ++r) {
            for (std::int32_t c = 0; c < map.Columns(); ++c) {
                ASSERT_EQ(map.At({r, c}) != before.At({r, c}), marked.contains({r, c}) && map.At({r, c}) != before.At({r, c}));
                ASSERT_EQ(map.At({r, c}) >= 2, marked.contains({r, c}));
            }
        }
    }
    EXPECT_GT(nStored, 100);
}

}  // namespace
}  // namespace width
