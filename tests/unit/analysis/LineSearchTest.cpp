// The search for the line, and what makes it quick, against the literal search that looks at every pixel every time.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <numbers>
#include <numeric>
#include <random>
#include <span>

#include "analysis/FrontHull.h"
#include "analysis/LineDetector.h"
#include "analysis/PathDistances.h"
#include "analysis/StretchHull.h"
#include "tests/support/LiteralSearch.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

using Path = std::vector<PathPoint>;

constexpr std::size_t kLeafPixels = 8;  // few, so that short paths have many leaves

struct Step {
    std::int32_t dx;
    std::int32_t dy;
};

// A path of nPixels that takes step(i) behind its pixel i; the seed is in the middle.
Path Walk(std::int32_t nPixels, const std::function<Step(std::int32_t)>& step) {
    Path path;
    PathPoint pt{-nPixels / 2, 0, 0};
    for (std::int32_t i = 0; i < nPixels; ++i) {
        path.push_back(pt);
        const Step s = step(i);
        pt = {pt.nIndex + 1, pt.x + s.dx, pt.y + s.dy};
    }
    return path;
}

// Turns and mirrors a path, so that all directions come up: nTurn from 0 to 7.
Path Turned(Path path, int nTurn) {
    for (PathPoint& pt : path) {
        if ((nTurn & 1) != 0) {
            std::swap(pt.x, pt.y);
        }
        pt.x = (nTurn & 2) != 0 ? -pt.x : pt.x;
        pt.y = (nTurn & 4) != 0 ? -pt.y : pt.y;
    }
    return path;
}

// The map of a path, and the path's place in it: the lowest pixel and the leftmost one lie nMargin from the border.
struct Drawn {
    Drawn(const Path& path, std::int32_t nMargin) {
        const auto [left, right] = std::ranges::minmax_element(path, {}, &PathPoint::x);
        const auto [bottom, top] = std::ranges::minmax_element(path, {}, &PathPoint::y);
        dx = nMargin - left->x;
        dy = nMargin - bottom->y;
        map = SkeletonMap(top->y + dy + 1 + nMargin, right->x + dx + 1 + nMargin);
        for (const PathPoint& pt : path) {
            map.Set({pt.y + dy + SkeletonMap::kBorder, pt.x + dx + SkeletonMap::kBorder}, 1);
        }
    }
    POINT At(const PathPoint& pt) const { return {pt.x + dx, map.Height() - 1 - (pt.y + dy)}; }

    SkeletonMap map;
    std::int32_t dx = 0;
    std::int32_t dy = 0;
};

// Whether a click near a point traces a path; what the search makes of it must be what the literal one does.
bool ClickGivesTheSame(const SkeletonMap& map, POINT ptClick, const LineConditions& conditions, int& nMostTrips) {
    LineDetector detector(conditions);
    if (detector.TraceFromPoint(map, ptClick) == 0) {
        return false;
    }
    const test::LiteralLine literal = test::LiteralSearch(detector.Path(), detector.IsClosed(), detector.Seed(), conditions);
    nMostTrips = std::max(nMostTrips, literal.nTrips);
    EXPECT_EQ(test::FoundLine(detector) == literal, true)
        << detector.Path().size() << " pixels, seed " << detector.Seed().x << ',' << detector.Seed().y << ", shortest "
        << conditions.nMinLineLength << ", strip " << conditions.fRectWidth << ", literal found " << literal.bFound;
    return true;
}

LineConditions AnyConditions(std::mt19937& random, std::int32_t nLongest) {
    LineConditions conditions;
    conditions.nMinLineLength = test::Below(random, nLongest);
    conditions.bRectAlgorithm = test::Below(random, 4) == 0 ? 0 : 1;
    conditions.fRectWidth = static_cast<float>(test::Below(random, 9)) * 0.5F;
    return conditions;
}

// Waves of all kinds: the search narrows by half a wave at a time, and the strip is trimmed by half a wave at a time.
TEST(SearchLine, EqualsTheLiteralSearchOnWaves) {
    const std::vector<std::function<Step(std::int32_t)>> waves = {
        [](std::int32_t i) {
            return Step{1, i / 3 % 2 == 0 ? 1 : -1};
        },
        [](std::int32_t i) {
            return Step{1, i / 5 % 2 == 0 ? 1 : -1};
        },
        [](std::int32_t i) {
            return i / 6 % 2 == 0 ? Step{1, 0} : Step{0, 1};
        },
        [](std::int32_t i) {
            return i % 14 < 10 ? Step{1, 0} : Step{0, 1};
        },
        [](std::int32_t i) {
            return i % 9 < 5 ? Step{1, 1} : Step{1, -1};
        },
        [](std::int32_t i) {
            return Step{1, i % 41 == 40 ? 1 : i / 4 % 2 == 0 ? 1 : -1};
        },
        [](std::int32_t i) {
            return i % 12 < 4 ? Step{0, 1} : i % 12 < 6 || i % 12 >= 10 ? Step{1, 0} : Step{0, -1};
        },
        [](std::int32_t i) {
            return i % 32 < 4 ? Step{-1, 1} : i % 32 >= 16 && i % 32 < 20 ? Step{-1, -1} : Step{1, 0};
        },
        [](std::int32_t i) {
            return std::fmod(std::sqrt(i + 1.0) * 5, 1.0) < 0.5 ? Step{1, 0} : Step{1, 1};
        },
    };
    std::mt19937 random(11);
    int nTraced = 0;
    int nMostTrips = 0;
    for (int i = 0; i < 360; ++i) {
        const Path path = Turned(Walk(200 + test::Below(random, 700), waves[random() % waves.size()]), i % 8);
        const Drawn drawn(path, 4 + test::Below(random, 5000) * (i % 5 == 0 ? 1 : 0));
        for (int nClick = 0; nClick < 4; ++nClick) {
            LineConditions conditions = AnyConditions(random, 60);
            nTraced += ClickGivesTheSame(drawn.map, drawn.At(path[random() % path.size()]), conditions, nMostTrips) ? 1 : 0;
            ASSERT_FALSE(testing::Test::HasFailure()) << i;
        }
    }
    EXPECT_GT(nTraced, 700);
    EXPECT_GT(nMostTrips, 100);
}

// Runs in random directions: ends, junctions, loops, rings, pixels that a path meets twice.
TEST(SearchLine, EqualsTheLiteralSearchOnClusters) {
    std::mt19937 random(12);
    int nTraced = 0;
    int nMostTrips = 0;
    for (int i = 0; i < 8000; ++i) {
        SkeletonMap map(60, 60);
        std::int32_t x = 30;
        std::int32_t y = 30;
        for (int n = 0; n < 100 + 100 * (i % 3); ++n) {
            const Step step{test::Below(random, 3) - 1, test::Below(random, 3) - 1};
            for (std::int32_t k = test::Below(random, 12); k > 0; --k, ++n) {
                x = std::clamp(x + step.dx, 0, 59);
                y = std::clamp(y + step.dy, 0, 59);
                map.Set({y + 2, x + 2}, 1);
            }
        }
        const POINT ptClick{test::Below(random, 60), test::Below(random, 60)};
        nTraced += ClickGivesTheSame(map, ptClick, AnyConditions(random, 12), nMostTrips) ? 1 : 0;
        ASSERT_FALSE(testing::Test::HasFailure()) << i << '\n' << test::Drawing(map);
    }
    EXPECT_GT(nTraced, 700);
}

// Positions beyond 46,340 from the seed: the product of two numbers wraps, and pairs count as spanning that do not, or do
// not count that do.
TEST(SearchLine, EqualsTheLiteralSearchWhereNumbersWrap) {
    const Path path = Walk(100'000, [](std::int32_t i) { return Step{1, i % 50'000 == 49'999 ? 0 : i / 40 % 2 == 0 ? 1 : -1}; });
    const Drawn drawn(path, 5);
    int nMostTrips = 0;
    for (const std::size_t nClick : std::array<std::size_t, 6>{3, 22'015, 40'000, 51'009, 60'013, 75'030}) {
        EXPECT_TRUE(ClickGivesTheSame(drawn.map, drawn.At(path[nClick]), LineConditions{}, nMostTrips)) << nClick;
    }
}

// The square of a height from 46,341 to 65,535 wraps to a negative number, its root is no length, and a line is not long
// enough then. Heights beyond that have lengths again.
TEST(SearchLine, EqualsTheLiteralSearchOnTallLines) {
    int nMostTrips = 0;
    int nFound = 0;
    for (const std::int32_t nHeight : {46'000, 50'000, 60'000, 70'000}) {
        for (const std::int32_t nSlant : {100'000, 900, 60}) {
            const Path path = Walk(nHeight, [&](std::int32_t i) { return Step{i % nSlant == nSlant - 1 ? 1 : 0, 1}; });
            const Drawn drawn(path, 5);
            const POINT ptClick = drawn.At(path[path.size() / 2 + 7]);
            EXPECT_TRUE(ClickGivesTheSame(drawn.map, ptClick, LineConditions{}, nMostTrips)) << nHeight;
            LineDetector detector(LineConditions{});
            nFound += detector.TraceFromPoint(drawn.map, ptClick) != 0 && detector.SearchLine() != 0 ? 1 : 0;
        }
    }
    EXPECT_TRUE(nFound > 0 && nFound < 12) << nFound;
}

// However loose the bounds are, and whichever half is looked at first: the first of the largest values counts.
TEST(PathBoxes, TheFirstOfTheLargestValuesIsFound) {
    std::mt19937 random(15);
    for (int i = 0; i < 400; ++i) {
        Path path;
        for (std::int32_t n = test::Below(random, 2000); n >= 0; --n) {
            path.push_back({0, test::Below(random, 9) - 2, 0});
        }
        const PathBoxes boxes(path, kLeafPixels);
        const auto nFirst = static_cast<std::size_t>(test::Below(random, static_cast<std::int32_t>(path.size())));
        const std::size_t nLast = nFirst + random() % (path.size() - nFirst);
        const PathBoxes::Largest found = boxes.FindLargest(
            {nFirst, nLast},
            [&](PathBoxes::Range range, PathBoxes::Largest& largest) {
                for (std::size_t n = range.nFirst; n <= range.nLast; ++n) {
                    const auto fValue = static_cast<float>(path[n].x);
                    if (fValue > largest.fValue || (fValue == largest.fValue && n < largest.nPosition)) {
                        largest = {fValue, n};
                    }
                }
            },
            [&](PathBoxes::Node node) { return static_cast<float>(boxes.Box(node).xHigh + test::Below(random, 3)); });
        const auto at = [&](std::size_t n) { return path.begin() + static_cast<std::ptrdiff_t>(n); };
        const auto largest = std::max_element(at(nFirst), at(nLast) + 1, [](auto& p, auto& q) { return p.x < q.x; });
        const auto nExpected = largest->x > 0 ? static_cast<std::size_t>(largest - path.begin()) : nFirst;
        ASSERT_EQ(found.nPosition, nExpected) << nFirst << " to " << nLast << " of " << path.size();
    }
}

// Slanting paths: near the origin, where every step of a distance is exact, and as far from it as coordinates go, where single
// precision is off by more than the pixels differ; steps of 1, 3 and 4, since powers of two keep more of them exact. Lines
// through the path, and beside it.
TEST(PathDistances, NoPixelIsFartherThanItsNodesBound) {
    std::mt19937 random(16);
    float fTightest = 1000.0F;
    for (int i = 0; i < 4000; ++i) {
        const std::array<std::int32_t, 5> reaches = {4'000, 20'000, 200'000, 30'000'000, 1 << 30};
        const std::int32_t nReach = reaches[random() % reaches.size()];
        const std::int32_t nStep = std::array{1, 3, 4}[random() % 3];
        Path path = Turned(Walk(400,
                                [&](std::int32_t) {
                                    return Step{nStep, test::Below(random, 4) == 0 ? 0 : nStep};
                                }),
                           test::Below(random, 8));
        const auto away = [&] { return test::Below(random, nReach) - (test::Below(random, 2) == 0 ? 0 : nReach); };
        const Step offset{away(), away()};
        for (PathPoint& pt : path) {
            pt = {pt.nIndex, pt.x + offset.dx, pt.y + offset.dy};
        }
        const PathBoxes boxes(path, kLeafPixels);
        const PathDistances pathDistances(boxes);
        const std::int32_t nBeside = i % 2 == 0 ? 0 : test::Below(random, 40'000);
        const PathPoint ptFrom = path[random() % 100];
        const PathPoint ptTo = path[300 + random() % 100];
        const PathLine line({0, ptFrom.x + nBeside, ptFrom.y}, {0, ptTo.x + nBeside, ptTo.y});
        const PathDistances::Bounds bounds(pathDistances, line);
        float fLargest = -1e30F;
        for (std::size_t n = 0; n < path.size(); ++n) {
            const float fDistance = line.Distance(path[n].x, path[n].y);
            fLargest = std::max(fLargest, fDistance);
            for (std::size_t nLevel = 0, nPlace = n / kLeafPixels; nLevel <= boxes.Root().nLevel; ++nLevel, nPlace /= 2) {
                ASSERT_LE(fDistance, bounds.Largest({nLevel, nPlace})) << i;
                ASSERT_GE(fDistance, bounds.Smallest({nLevel, nPlace})) << i;
            }
        }
        const float fLoose = bounds.Largest(boxes.Root()) - fLargest;
        if (nReach == reaches[0] || (nReach == reaches[1] && nStep == 4)) {
            ASSERT_EQ(fLoose, 0.0F) << "of tops that are equally far all would be looked at";
        } else if (nReach == reaches[2]) {
            fTightest = std::min(fTightest, fLoose);
        }
    }
    EXPECT_LT(fTightest, 0.1F) << "a bound that is never near is of no use";
}

// How far the farthest pixel is, just that, and a little less.
TEST(PathDistances, AreWithinWhatTheFarthestIs) {
    std::mt19937 random(19);
    for (int i = 0; i < 500; ++i) {
        const Path path = Turned(Walk(2 + test::Below(random, 600),
                                      [&](std::int32_t) {
                                          return Step{1, test::Below(random, 3) - 1};
                                      }),
                                 i % 8);
        const PathBoxes boxes(path, kLeafPixels);
        const PathDistances distances(boxes);
        const std::size_t nLast = 1 + random() % (path.size() - 1);
        const std::size_t nFirst = random() % nLast;
        const PathLine line(path[nFirst], path[nLast]);
        float fFarthest = 0.0F;
        for (std::size_t n = nFirst; n <= nLast; ++n) {
            fFarthest = std::max(fFarthest, std::fabs(line.Distance(path[n].x, path[n].y)));
        }
        EXPECT_TRUE(distances.AreWithin(fFarthest, line, {nFirst, nLast})) << i;
        EXPECT_FALSE(distances.AreWithin(std::nextafter(fFarthest, -1.0F), line, {nFirst, nLast})) << i;
    }
}

// Tops of waves that are equally far but for roundings, far from the origin; and from a line far away, where different
// numerators of a distance round to the same one.
TEST(PathDistances, TheFirstOfTheFarthestPixelsIsFound) {
    std::mt19937 random(18);
    for (int i = 0; i < 2000; ++i) {
        const std::int32_t nHalfWave = 1 + test::Below(random, 9);
        const std::int32_t nSlant = 5 + test::Below(random, 60);
        Path path = Walk(20 + test::Below(random, 1500), [&](std::int32_t n) {
            return Step{1, n % nSlant == 0 ? 0 : n / nHalfWave % 2 == 0 ? 1 : -1};
        });
        const std::int32_t nOffset = test::Below(random, 40'000);
        for (PathPoint& pt : path) {
            pt.y += nOffset;
        }
        path = Turned(path, i % 8);
        const PathBoxes boxes(path, kLeafPixels);
        const PathDistances distances(boxes);
        const std::size_t nFirst = random() % path.size();
        const std::size_t nLast = nFirst + random() % (path.size() - nFirst);
        PathPoint ptEnds[] = {path[random() % (path.size() / 2)], path[path.size() - 1 - random() % (path.size() / 2)]};
        if (i % 4 == 0) {
            ptEnds[0].y = ptEnds[1].y = path[0].y - 60'000 - test::Below(random, 10'000);
            ptEnds[i / 8 % 2].y += 1;
        }
        const PathLine line(ptEnds[0], ptEnds[1]);
        PathBoxes::Largest above{0.0F, nFirst};
        PathBoxes::Largest below = above;
        for (std::size_t n = nFirst; n <= nLast; ++n) {
            const float fDistance = line.Distance(path[n].x, path[n].y);
            above = fDistance > above.fValue ? PathBoxes::Largest{fDistance, n} : above;
            below = -fDistance > below.fValue ? PathBoxes::Largest{-fDistance, n} : below;
        }
        const PathDistances::Extremes found = distances.FindExtremes(line, {nFirst, nLast});
        ASSERT_EQ(found.above.fValue, above.fValue) << i;
        ASSERT_EQ(found.below.fValue, below.fValue) << i;
        ASSERT_EQ(found.above.nPosition, above.nPosition) << i;
        ASSERT_EQ(found.below.nPosition, below.nPosition) << i;
    }
}

std::vector<std::int32_t> Pruned(const Path& path, std::int32_t nFrom, std::int32_t nTo, std::int32_t nSide) {
    std::vector<std::int32_t> chain(static_cast<std::size_t>(nTo - nFrom) + 1);
    std::iota(chain.begin(), chain.end(), nFrom);
    LineDetector::PruneToHull(path, chain, nSide);
    return chain;
}

constexpr std::array<Step, 8> kSteps = {{{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}}};

// A row of steps again and again.
Path Repeated(std::int32_t nPixels, std::span<const std::size_t> row) {
    return Walk(nPixels, [&](std::int32_t i) { return kSteps[row[static_cast<std::size_t>(i) % row.size()]]; });
}

// Paths that go forward, that nearly do, and that do not: random steps of a few directions, or one and the same row of runs
// again and again, with a wrong step now and then.
Path AnyPath(std::mt19937& random, std::int32_t nPixels) {
    const std::int32_t nDirections = 1 + test::Below(random, 8);
    const std::int32_t nFirst = test::Below(random, 8);
    const std::int32_t nWrong = 20 + test::Below(random, 400);
    std::vector<std::size_t> row;
    if (test::Below(random, 3) > 0) {
        for (std::int32_t nRuns = 2 + test::Below(random, 5); nRuns > 0; --nRuns) {
            row.insert(row.end(), 1 + random() % 5, random() % 8);
        }
        if (test::Below(random, 3) > 0) {
            for (std::size_t i = 0, nHalf = row.size(); i < nHalf; ++i) {
                row.push_back((8 - row[i]) % 8);  // mirrored
            }
        }
    }
    return Walk(nPixels, [&](std::int32_t i) {
        if (test::Below(random, nWrong) == 0) {
            return test::Below(random, 9) == 0 ? Step{0, 0} : kSteps[random() % 8];
        }
        return row.empty() ? kSteps[static_cast<std::size_t>(nFirst + test::Below(random, nDirections)) % 8]
                           : kSteps[row[static_cast<std::size_t>(i) % row.size()]];
    });
}

// All stretches that one hull covers. Paths of teeth that lean back must be among them, or the hull is of no use.
TEST(FrontHull, EqualsPruningTheWholeStretch) {
    std::mt19937 random(17);
    std::int32_t nWithPockets = 0;
    for (int i = 0; i < 10'000; ++i) {
        const std::int32_t nPixels = 4 + test::Below(random, i % 4 == 0 ? 400 : 120);
        const Path path = AnyPath(random, nPixels);
        const PathBoxes boxes(path, kLeafPixels);
        const std::int32_t nSide = i % 2 == 0 ? +1 : -1;
        FrontHull hull(boxes, nSide);
        const std::int32_t nStart = test::Below(random, 1 + nPixels / 4);
        hull.Cover(nStart, nPixels - 1 - test::Below(random, 1 + nPixels / 4), nPixels / 2);
        for (int n = 0; n < 60; ++n) {
            const std::int32_t nFrom = test::Below(random, nPixels - 1);
            const std::int32_t nTo = nFrom + 1 + test::Below(random, nPixels - nFrom - 1);
            std::vector<std::int32_t> corners;
            std::int64_t nLookedAt = 0;
            if (hull.Corners(nFrom, nTo, corners, nLookedAt)) {
                ASSERT_EQ(corners, Pruned(path, nFrom, nTo, nSide)) << i << ": " << nFrom << " to " << nTo << ", side " << nSide;
                nWithPockets += nLookedAt > 2 && nLookedAt < (nTo - nFrom) / 2 ? 1 : 0;
            }
        }
    }
    EXPECT_GT(nWithPockets, 10'000);
}

// A pixel that is blind at a front far behind the one where the stretch would join in.
TEST(FrontHull, ABlindPixelKeepsAStretchFromJoining) {
    const Path path = {{0, 9, -16},  {1, 11, -4},  {2, 8, -18},  {3, 12, -29},
                       {4, 24, -26}, {5, 35, -38}, {6, 26, -27}, {7, 36, -42}};
    const PathBoxes boxes(path, kLeafPixels);
    FrontHull hull(boxes, +1);
    hull.Cover(0, 7, 2);
    std::vector<std::int32_t> corners;
    std::int64_t nLookedAt = 0;
    EXPECT_TRUE(!hull.Corners(1, 6, corners, nLookedAt) || corners == Pruned(path, 1, 6, +1));
}

// Teeth that lean back over pixels which were in order: without those the next tooth is within reach.
TEST(PathFronts, FrontsGiveWayToThePocketOverThem) {
    constexpr std::array<std::size_t, 15> kRow = {5, 5, 5, 4, 4, 4, 4, 4, 4, 4, 3, 3, 3, 2, 7};
    const Path path = Repeated(4'000, kRow);
    const PathBoxes boxes(path, kLeafPixels);
    EXPECT_LT(FindFronts(boxes, -1, {-2, -1}, 0, 3'999).nLongestPocket, 20);
}

// Many stretches of one path: by and by the hull takes over from the plain pruning.
TEST(StretchHull, EqualsPruningTheWholeStretch) {
    std::mt19937 random(13);
    for (int i = 0; i < 300; ++i) {
        const std::int32_t nPixels = 3 + test::Below(random, 120);
        const Path path = AnyPath(random, nPixels);
        const PathBoxes boxes(path, kLeafPixels);
        StretchHull hull(boxes, nPixels / 2);
        for (int n = 0; n < 60; ++n) {
            const std::int32_t nFrom = test::Below(random, nPixels - 1);
            const std::int32_t nTo = nFrom + 1 + test::Below(random, nPixels - nFrom - 1);
            for (const std::int32_t nSide : {+1, -1}) {
                ASSERT_EQ(hull.Corners(nFrom, nTo, nSide), Pruned(path, nFrom, nTo, nSide))
                    << i << ": " << nFrom << " to " << nTo << ", side " << nSide;
            }
        }
    }
}

// A narrowing that drops a tooth at a time would look at 2,000 times 30,000 pixels.
TEST(StretchHull, TheHullTakesOver) {
    constexpr std::array<std::size_t, 15> kRow = {0, 0, 0, 0, 0, 0, 3, 3, 3, 0, 0, 0, 7, 7, 7};
    const Path path = Repeated(60'000, kRow);
    const PathBoxes boxes(path, PathDistances::kLeafPixels);
    StretchHull hull(boxes, 30'000);
    for (std::int32_t n = 0; n < 29'990; n += 15) {
        hull.Corners(n, 59'999 - n, n % 2 == 0 ? +1 : -1);
    }
    EXPECT_LT(hull.PixelsLookedAt(), 40 * 60'000);
}

// A turn of 50,000 by 50,000 pixels wraps, and the pruning goes by its wrong sign.
TEST(StretchHull, EqualsPruningWhereTurnsWrap) {
    const Path path = Walk(100'000, [](std::int32_t i) {
        return i % 5'000 == 7 ? Step{1, 1} : i < 50'000 ? Step{1, 0} : Step{0, 1};
    });
    const PathBoxes boxes(path, kLeafPixels);
    StretchHull hull(boxes, 50'000);
    for (int n = 0; n < 20; ++n) {  // often enough for the hull to take over if it could
        for (const std::int32_t nSide : {+1, -1}) {
            ASSERT_EQ(hull.Corners(0, 99'999, nSide), Pruned(path, 0, 99'999, nSide)) << n << ", side " << nSide;
        }
    }
}

void ExpectLiteralPair(const Path& path) {
    std::pair<std::int32_t, std::int32_t> expected{-1, -1};
    std::pair<std::int32_t, std::int32_t> found{-1, -1};
    EXPECT_EQ(LineDetector::FindFarthestPair(path, found.first, found.second),
              test::LiteralFarthestPair(path, expected.first, expected.second));
    ASSERT_EQ(found, expected) << path.size();
}

Path Ellipse(double fHalfWidth, double fHalfHeight) {
    const auto nSteps = static_cast<std::int32_t>(8 * std::max(fHalfWidth, fHalfHeight));
    Path path;
    for (std::int32_t i = 0; i < nSteps; ++i) {
        const double angle = 2 * std::numbers::pi * i / nSteps;
        const PathPoint pt{std::ssize(path) > 0 ? path.back().nIndex + 1 : 0,
                           static_cast<std::int32_t>(std::lround(fHalfWidth * (1 + std::cos(angle)))),
                           static_cast<std::int32_t>(std::lround(fHalfHeight * (1 + std::sin(angle))))};
        if (path.empty() || path.back().x != pt.x || path.back().y != pt.y) {
            path.push_back(pt);
        }
    }
    return path;
}

// Round ones have many pairs nearly as far apart as the farthest, and often several that tie.
TEST(FindFarthestPair, EqualsComparingAllPairs) {
    std::mt19937 random(6);
    for (int i = 0; i < 80; ++i) {
        const double fRadius = 3 + test::Below(random, 200);
        ExpectLiteralPair(Ellipse(fRadius, fRadius - test::Below(random, 3)));
    }
    for (int i = 0; i < 20'000; ++i) {
        Path cloud;
        for (std::int32_t n = test::Below(random, 120); n >= 0; --n) {
            cloud.push_back({0, test::Below(random, 1 + i % 40), test::Below(random, 1 + i % 40)});
        }
        ExpectLiteralPair(cloud);
        ASSERT_FALSE(testing::Test::HasFatalFailure()) << i;
    }
    ExpectLiteralPair({});
    ExpectLiteralPair(Path(20, {0, 7, 7}));
}

// From 46,341 rows on the square of a difference in y wraps, to a negative number first, and from 65,536 on it is small.
TEST(FindFarthestPair, EqualsComparingAllPairsWhereSquaresWrap) {
    std::mt19937 random(14);
    for (const std::int32_t nHeight : {46'339, 46'340, 46'341, 46'350, 60'000, 65'535, 65'537, 92'681, 120'000}) {
        for (int i = 0; i < 12; ++i) {
            Path ring;
            const std::int32_t nWidth = i % 3 == 0 ? 4 : i % 3 == 1 ? 5'000 : 90'000;
            for (std::int32_t n = 0; n < 400; ++n) {
                const std::int32_t y =
                    test::Below(random, 20) == 0 ? nHeight * test::Below(random, 2) : test::Below(random, nHeight);
                ring.push_back({n, test::Below(random, nWidth), y});
            }
            ExpectLiteralPair(ring);
        }
        Path sides;  // as a narrow ring goes: up one side and down the other
        for (std::int32_t y = 0; y <= nHeight; y += 37) {
            sides.push_back({0, 0, y});
        }
        for (std::int32_t y = nHeight; y >= 0; y -= 41) {
            sides.push_back({0, 9, y});
        }
        ExpectLiteralPair(sides);
    }
}

// From column 2^24 on a column becomes a float with an error that has nothing to do with how far apart the pixels are.
TEST(FindFarthestPair, EqualsComparingAllPairsWhereColumnsAreNoFloats) {
    std::mt19937 random(21);
    for (int i = 0; i < 2'000; ++i) {
        const std::int32_t nLeft = (1 << (23 + i % 7)) + test::Below(random, 1 << 22);
        const std::int32_t nWidth = 1 + test::Below(random, i % 2 == 0 ? 300 : 1 << 24);
        Path cloud;
        for (std::int32_t n = 1 + test::Below(random, 120); n >= 0; --n) {
            cloud.push_back({0, nLeft + test::Below(random, nWidth), test::Below(random, 1 + i % 40)});
        }
        ExpectLiteralPair(cloud);
        ASSERT_FALSE(testing::Test::HasFatalFailure()) << i;
    }
}

}  // namespace
}  // namespace width
