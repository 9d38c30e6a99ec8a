#include "analysis/LineDetector.h"

#include <gtest/gtest.h>

#include <cmath>
#include <list>
#include <numbers>
#include <random>
#include <set>

#include "tests/support/Pictures.h"

namespace width {
namespace {

using test::DrawnMap;

LineConditions Conditions(std::int32_t nMinLength, bool bRect = true) {
    LineConditions conditions;
    conditions.nMinLineLength = nMinLength;
    conditions.bRectAlgorithm = bRect ? 1 : 0;
    return conditions;
}

SkeletonMap Horizontal(std::int32_t nLength) {
    return DrawnMap({std::string(40, '.'), std::string(40, '.'),
                     std::string(5, '.') + std::string(static_cast<std::size_t>(nLength), '#') +
                         std::string(static_cast<std::size_t>(35 - nLength), '.'),
                     std::string(40, '.')});
}

std::vector<PathPoint> TracedAt(const SkeletonMap& map, std::int32_t x, std::int32_t y) {
    LineDetector detector{LineConditions{}};
    return detector.TraceFromPoint(map, {x, y}) == 1 ? detector.Path() : std::vector<PathPoint>{};
}

// Every index is one more than the one before.
void ExpectRisingIndices(const std::vector<PathPoint>& path) {
    for (std::size_t i = 1; i < path.size(); ++i) {
        ASSERT_EQ(path[i].nIndex, path[i - 1].nIndex + 1);
    }
}

TEST(CrossingNumber, CountsRunsRoundACell) {
    const SkeletonMap map = DrawnMap({"#.#.#", ".....", "#####", ".....", "#.#.#"});
    EXPECT_EQ(CrossingNumber(map, {4, 2}), 1);
    EXPECT_EQ(CrossingNumber(map, {4, 4}), 2);
    EXPECT_EQ(CrossingNumber(map, {3, 3}), 3);
    EXPECT_EQ(CrossingNumber(DrawnMap({"#.#", ".#.", "#.#"}), {3, 3}), 4);
}

TEST(TraceFromPoint, SearchAreaIsFiveRowsByFourColumns) {
    SkeletonMap map(20, 20);
    for (std::int32_t r = 2; r < 22; ++r) {
        map.Set({r, 12}, 1);  // image column 10
    }
    std::set<std::int32_t> found;
    for (std::int32_t x = 0; x < 20; ++x) {
        if (!TracedAt(map, x, 10).empty()) {
            found.insert(x);
        }
    }
    EXPECT_EQ(found, (std::set<std::int32_t>{9, 10, 11, 12}));
    EXPECT_TRUE(TracedAt(map, INT32_MAX, 10).empty());
    EXPECT_TRUE(TracedAt(map, 10, INT32_MIN).empty());
}

TEST(TraceFromPoint, LowestAndLeftmostCellIsTheSeedAndMustBePlain) {
    const SkeletonMap map = DrawnMap({"........", ".#......", "..#.....", "...#....", "....#...", ".....#..", "........"});
    LineDetector detector{LineConditions{}};
    ASSERT_EQ(detector.TraceFromPoint(map, {3, 3}), 1);
    EXPECT_EQ(detector.Seed().x, 4) << "picture row 4 lies lower than row 3";
    EXPECT_EQ(detector.Seed().y, 2);
    EXPECT_TRUE(TracedAt(map, 4, 4).empty()) << "the lowest cell in the area is an end";
}

TEST(TraceFromPoint, NoSeedInTheLastTwoRowsAndColumnsButWalksGoThere) {
    const SkeletonMap map = DrawnMap({"########", "........", "........", "........"});
    EXPECT_TRUE(TracedAt(map, 3, 0).empty());
    const SkeletonMap column = DrawnMap({"...#", "...#", "...#", "..#.", ".#..", ".#..", ".#..", ".#..", ".#.."});
    const std::vector<PathPoint> path = TracedAt(column, 1, 5);
    ASSERT_EQ(path.size(), 9U);
    EXPECT_TRUE(path.front().y == 8 || path.back().y == 8);
}

TEST(TracePath, AHorizontalRunGoesLeftFirstAVerticalOneDown) {
    const std::vector<PathPoint> run = TracedAt(Horizontal(30), 12, 2);
    ASSERT_EQ(run.size(), 30U);
    EXPECT_EQ(run.front().x, 34);
    EXPECT_EQ(run.back().x, 5);
    ExpectRisingIndices(run);
    const std::vector<PathPoint> column =
        TracedAt(DrawnMap({"....", ".#..", ".#..", ".#..", ".#..", ".#..", ".#..", "....", "...."}), 1, 3);
    ASSERT_EQ(column.size(), 6U);
    EXPECT_EQ(column.front().y, 7);
    EXPECT_EQ(column.back().y, 2);
}

TEST(TracePath, ASeedBesideAnEnd) {
    const SkeletonMap map = DrawnMap({".........", ".........", "..####...", ".........", "........."});
    const std::vector<PathPoint> forwardEnd = TracedAt(map, 4, 2);  // the area's leftmost cell is column 2, an end
    EXPECT_TRUE(forwardEnd.empty());
    const std::vector<PathPoint> besideLeft = TracedAt(map, 5, 2);
    ASSERT_EQ(besideLeft.size(), 4U) << "seed at column 3, its left neighbour ends the forward side";
    EXPECT_EQ(besideLeft.back().nIndex, 1);
    const std::vector<PathPoint> besideRight = TracedAt(map, 6, 2);
    ASSERT_EQ(besideRight.size(), 5U) << "the backward end stands twice";
    EXPECT_EQ(besideRight[0].x, besideRight[1].x);
    EXPECT_EQ(besideRight[0].nIndex, -2);
}

TEST(TracePath, ARingIsClosedAndHoldsEachPixelOnce) {
    const SkeletonMap ring = DrawnMap(
        {"..........", "...####...", "..#....#..", "..#....#..", "..#....#..", "...####...", "..........", ".........."});
    LineDetector detector{LineConditions{}};
    ASSERT_EQ(detector.TraceFromPoint(ring, {2, 3}), 1);
    EXPECT_TRUE(detector.IsClosed());
    EXPECT_EQ(detector.Path().size(), 14U);
    EXPECT_EQ(detector.Path().front().nIndex, 0);
    ExpectRisingIndices(detector.Path());
}

TEST(TracePath, ALoopThroughAJunctionHasItAtBothEnds) {
    const SkeletonMap loop = DrawnMap({"............", "....###.....", "...#...#....", "...#...#....", "....#.#.....",
                                       ".....#......", ".....#......", ".....#......", ".....#......", "............"});
    const std::vector<PathPoint> path = TracedAt(loop, 4, 1);
    ASSERT_GE(path.size(), 3U);
    EXPECT_TRUE(path.front().x == path.back().x && path.front().y == path.back().y);
    EXPECT_LT(path.front().nIndex, 0);
}

using Chain = std::vector<std::pair<std::int32_t, std::int32_t>>;

std::vector<PathPoint> PathOf(const Chain& chain, std::int32_t nFirstIndex = 0) {
    std::vector<PathPoint> path;
    for (const auto& [x, y] : chain) {
        path.push_back({nFirstIndex++, x, y});
    }
    return path;
}

Chain Pruned(const Chain& chain, std::int32_t nSide) {
    const std::vector<PathPoint> path = PathOf(chain);
    std::vector<std::int32_t> positions(path.size());
    std::iota(positions.begin(), positions.end(), 0);
    EXPECT_EQ(LineDetector::PruneToHull(path, positions, nSide), chain.size() < 2 ? 0 : 1);
    Chain result;
    for (const std::int32_t i : positions) {
        result.push_back(chain[static_cast<std::size_t>(i)]);
    }
    return result;
}

// The pruning step by step on a linked list.
Chain LiterallyPruned(const Chain& chain, int s) {
    std::list<std::pair<std::int32_t, std::int32_t>> list(chain.begin(), chain.end());
    if (list.size() <= 2) {
        return chain;
    }
    auto a = list.begin();
    auto b = std::next(a);
    auto c = std::next(b);
    for (;;) {
        const int turn = ((b->second - a->second) * (c->first - b->first) - (b->first - a->first) * (c->second - b->second)) * s;
        if (turn >= 1) {
            ++a, ++b, ++c;
            if (c == list.end())
                break;
        } else if (a != list.begin()) {
            list.erase(b);
            b = a--;
        } else if (list.size() == 3) {
            list.erase(b);
            break;
        } else {
            list.erase(b);
            b = c++;
        }
    }
    return {list.begin(), list.end()};
}

TEST(PruneToHull, KeepsTheTurnsToOneSide) {
    const Chain stair = {{0, 0}, {1, 0}, {2, 1}, {3, 1}, {4, 2}};
    EXPECT_EQ(Pruned(stair, +1), (Chain{{0, 0}, {4, 2}}));
    EXPECT_EQ(Pruned(stair, -1), (Chain{{0, 0}, {1, 0}, {3, 1}, {4, 2}}));
    EXPECT_EQ(Pruned({{0, 0}}, 1), (Chain{{0, 0}}));
    EXPECT_EQ(Pruned({{0, 0}, {5, 5}}, 1), (Chain{{0, 0}, {5, 5}}));
}

TEST(PruneToHull, EqualsTheLinkedListOnRandomChains) {
    std::mt19937 random(5);
    for (int i = 0; i < 20000; ++i) {
        Chain chain;
        std::pair<std::int32_t, std::int32_t> at{0, 0};
        for (std::size_t n = 2 + random() % 14; n-- > 0;) {
            chain.push_back(at);
            at.first += test::Below(random, 3) - 1;
            at.second += test::Below(random, 3) - 1;
        }
        const std::int32_t s = random() % 2 == 0 ? 1 : -1;
        ASSERT_EQ(Pruned(chain, s), LiterallyPruned(chain, s));
    }
}

std::vector<PathPoint> Circle(std::int32_t nRadius, std::int32_t nSquash) {
    Chain chain;
    const int nSteps = 8 * nRadius;
    for (int i = 0; i < nSteps; ++i) {
        const double angle = 2 * std::numbers::pi * i / nSteps;
        const std::pair pt{static_cast<std::int32_t>(std::lround(nRadius * std::cos(angle))),
                           static_cast<std::int32_t>(std::lround((nRadius - nSquash) * std::sin(angle)))};
        if (chain.empty() || chain.back() != pt) {
            chain.push_back(pt);
        }
    }
    return PathOf(chain);
}

struct Ends {
    std::int32_t x1, y1, x2, y2;
    friend bool operator==(const Ends&, const Ends&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Ends& e) {
        return out << e.x1 << ',' << e.y1 << " - " << e.x2 << ',' << e.y2;
    }
};

// The line found at an image point, ends in path coordinates; all -1 for none.
Ends LineAt(const SkeletonMap& map, std::int32_t x, std::int32_t y, const LineConditions& conditions) {
    LineDetector detector{conditions};
    if (detector.TraceFromPoint(map, {x, y}) == 0 || detector.SearchLine() == 0) {
        return {-1, -1, -1, -1};
    }
    return {detector.First().x, detector.First().y, detector.Last().x, detector.Last().y};
}
constexpr Ends kNone{-1, -1, -1, -1};

TEST(SearchLine, StraightRunsAreFoundFromEndToEnd) {
    EXPECT_EQ(LineAt(Horizontal(30), 15, 2, Conditions(29)), (Ends{34, 1, 5, 1}))
        << "the first end lies on the backward side: right";
    EXPECT_EQ(LineAt(Horizontal(30), 15, 2, Conditions(30, false)), kNone) << "29 pixels from end to end";
    SkeletonMap diagonal(50, 50);
    for (std::int32_t i = 0; i < 40; ++i) {
        diagonal.Set({i + 5, i + 5}, 1);
    }
    EXPECT_EQ(LineAt(diagonal, 20, 29, Conditions(30)), (Ends{42, 42, 3, 3}));
}

TEST(SearchLine, AnLGivesTheClickedLegWithItsCorner) {
    SkeletonMap map(60, 60);
    for (std::int32_t i = 0; i < 40; ++i) {
        map.Set({10, 10 + i}, 1);  // path row 8, columns 8..47
        map.Set({10 + i, 10}, 1);  // path column 8
    }
    const Ends flat = LineAt(map, 30, 59 - 8, Conditions(30));
    EXPECT_TRUE(flat == (Ends{47, 8, 8, 8}) || flat == (Ends{8, 8, 47, 8})) << flat;
    const Ends steep = LineAt(map, 8, 59 - 30, Conditions(30));
    EXPECT_TRUE(steep == (Ends{8, 47, 8, 8}) || steep == (Ends{8, 8, 8, 47})) << steep;
}

SkeletonMap CircleMap(std::int32_t nRadius) {
    SkeletonMap map(2 * nRadius + 11, 2 * nRadius + 11);
    for (const PathPoint& pt : Circle(nRadius, 0)) {
        map.Set({pt.y + nRadius + 7, pt.x + nRadius + 7}, 1);
    }
    return map;
}

TEST(SearchLine, CurvesGiveAStripOnlyWhereTheRectangularWayIsOn) {
    const SkeletonMap map = CircleMap(200);
    const Ends strip = LineAt(map, 205, 6, Conditions(30));
    EXPECT_NE(strip, kNone);
    EXPECT_GE(std::hypot(strip.x1 - strip.x2, strip.y1 - strip.y2), 28.0);
    EXPECT_EQ(LineAt(map, 205, 6, Conditions(30, false)), kNone);
    EXPECT_EQ(LineAt(CircleMap(12), 17, 6, Conditions(30)), kNone) << "no chord of 30 pixels";
}

}  // namespace
}  // namespace width
