// The walk from a click to its path, against the literal one.
#include <gtest/gtest.h>

#include <numbers>

#include "analysis/LineDetector.h"
#include "analysis/Skeleton.h"
#include "tests/support/LiteralTrace.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

using test::LiteralPixel;
using test::LiteralTrace;

struct Tally {
    int nTraced = 0, nClosed = 0, nCircled = 0, nJunctions = 0, nLongest = 0;
};

std::vector<LiteralPixel> PixelsOf(const std::vector<PathPoint>& path) {
    std::vector<LiteralPixel> pixels;
    for (const PathPoint& pt : path) {
        pixels.push_back({pt.nIndex, pt.x, pt.y});
    }
    return pixels;
}

void ExpectLiteral(const SkeletonMap& map, POINT ptClick, Tally& tally) {
    LineDetector detector{LineConditions{}};
    const bool bFound = detector.TraceFromPoint(map, ptClick) == 1;
    const LiteralTrace literal = test::TraceLiterally(map, ptClick);
    const auto where = [&] {
        return testing::Message() << "click at " << ptClick.x << ',' << ptClick.y << " of " << map.Width() << " x "
                                  << map.Height() << (map.Width() <= 60 ? test::Drawing(map) : "");
    };
    ASSERT_EQ(bFound, literal.bFound) << where();
    ASSERT_EQ(PixelsOf(detector.Path()), literal.path) << where();
    if (!bFound) {
        return;
    }
    ASSERT_EQ(detector.IsClosed(), literal.bClosed) << where();
    ASSERT_TRUE(detector.Seed().x == literal.seed.x && detector.Seed().y == literal.seed.y) << where();
    const LiteralPixel& last = literal.path.back();
    ++tally.nTraced;
    tally.nClosed += literal.bClosed ? 1 : 0;
    tally.nCircled += literal.bCircled ? 1 : 0;
    tally.nJunctions += CrossingNumber(map, {last.y + 2, last.x + 2}) > 2 ? 1 : 0;
    tally.nLongest = std::max(tally.nLongest, static_cast<int>(literal.path.size()));
}

// Every map of a size, with every pixel as the seed: the click's search area begins there.
void ExpectLiteralOnAllMaps(std::int32_t w, std::int32_t h) {
    SkeletonMap map(h + 2, w + 2);
    Tally tally;
    for (std::uint32_t nBits = 0; nBits < 1U << (w * h); ++nBits) {
        const auto isSet = [nBits](std::int32_t i) { return (nBits >> i & 1U) != 0; };
        for (std::int32_t i = 0; i < w * h; ++i) {
            map.Set({2 + i / w, 2 + i % w}, isSet(i) ? 1 : 0);
        }
        for (std::int32_t i = 0; i < w * h; ++i) {
            if (isSet(i)) {
                ExpectLiteral(map, {2 + i % w, map.Height() - 3 - i / w}, tally);
                ASSERT_FALSE(testing::Test::HasFatalFailure());
            }
        }
    }
    EXPECT_TRUE(tally.nTraced > 1000 && tally.nClosed > 0 && tally.nCircled > 0) << tally.nTraced << ' ' << tally.nCircled;
}

TEST(PathTrace, EqualsTheLiteralWalkOnAllMapsOf4By4) {
    ExpectLiteralOnAllMaps(4, 4);
}

TEST(PathTrace, EqualsTheLiteralWalkOnAllMapsOf5By3) {
    ExpectLiteralOnAllMaps(5, 3);
}

// Cells of a map that are drawn on, its outermost pixels among them.
struct Canvas {
    std::mt19937& random;
    SkeletonMap& map;

    std::int32_t Below(std::int32_t n) { return test::Below(random, n); }
    void Dot(double x, double y) {
        const std::int32_t c = std::clamp(static_cast<std::int32_t>(std::lround(x)), 0, map.Width() - 1);
        const std::int32_t r = std::clamp(static_cast<std::int32_t>(std::lround(y)), 0, map.Height() - 1);
        map.Set({r + 2, c + 2}, static_cast<std::uint8_t>(1 + Below(9) / 8 * Below(250)));  // now and then the end of a line
    }
    void Noise() {
        const std::int32_t nOneIn = 1 + Below(4);
        for (std::int32_t i = map.Width() * map.Height(); i-- > 0;) {
            if (Below(nOneIn) == 0) {
                Dot(i % map.Width(), i / map.Width());
            }
        }
    }
    void Runs() {
        std::int32_t x = Below(map.Width());
        std::int32_t y = Below(map.Height());
        for (std::int32_t n = 1 + Below(map.Width()); n > 0; --n) {
            const std::int32_t dx = Below(3) - 1;
            const std::int32_t dy = Below(3) - 1;
            for (std::int32_t k = Below(12); k > 0; --k) {
                Dot(x = std::clamp(x + dx, 0, map.Width() - 1), y = std::clamp(y + dy, 0, map.Height() - 1));
            }
        }
    }
    void Crossing() {
        for (std::int32_t n = 2 + Below(3); n > 0; --n) {
            const std::int32_t x = Below(map.Width()), y = Below(map.Height());
            const std::int32_t dx = Below(map.Width()) - x, dy = Below(map.Height()) - y;
            const std::int32_t nSteps = std::max({std::abs(dx), std::abs(dy), 1});
            for (std::int32_t i = 0; i <= nSteps; ++i) {
                Dot(x + static_cast<double>(dx) * i / nSteps, y + static_cast<double>(dy) * i / nSteps);
            }
        }
    }
    void Ring() {
        const double xRadius = 2 + Below(1 + map.Width() / 2), yRadius = 2 + Below(1 + map.Height() / 2);
        const std::int32_t nSteps = 8 * std::max(map.Width(), map.Height());
        const std::int32_t x = Below(map.Width()), y = Below(map.Height());
        for (std::int32_t i = 0; i < nSteps; ++i) {
            const double angle = 2 * std::numbers::pi * i / nSteps;
            Dot(x + xRadius * std::cos(angle), y + yRadius * std::sin(angle));
        }
    }
};

std::vector<POINT> ImagePointsOf(const SkeletonMap& map) {
    std::vector<POINT> points;
    for (std::int32_t i = 0; i < map.Width() * map.Height(); ++i) {
        const POINT pt{i % map.Width(), i / map.Width()};
        if (map.At({map.Height() + 1 - pt.y, pt.x + 2}) != 0) {
            points.push_back(pt);
        }
    }
    return points;
}

// Junctions, crossings, rings and noise, up to the edges, and skeletons as pictures have them; clicks on and beside the picture.
TEST(PathTrace, EqualsTheLiteralWalkOnSeededMaps) {
    std::mt19937 random(31);
    Tally tally;
    for (int i = 0; i < 3000; ++i) {
        const std::int32_t nMost = i % 7 == 0 ? 200 : 30;
        const std::int32_t w = 1 + test::Below(random, nMost);
        const std::int32_t h = 1 + test::Below(random, nMost);
        SkeletonMap map(h, w);
        Canvas canvas{random, map};
        switch (i % 5) {
            case 0:
                map = *MakeSkeleton(*DibView::Open(test::RandomDib(random, w, h, 8, test::Texture::Strokes)), {0, 127});
                break;
            case 1:
                canvas.Noise();
                break;
            case 2:
                canvas.Runs();
                break;
            case 3:
                canvas.Crossing();
                break;
            default:
                canvas.Ring();
                if (i % 3 == 0) {
                    canvas.Crossing();
                }
        }
        const std::vector<POINT> pixels = ImagePointsOf(map);
        for (int nClick = 0; nClick < 30; ++nClick) {
            POINT pt{test::Below(random, w + 12) - 6, test::Below(random, h + 12) - 6};
            if (nClick % 3 != 0 && !pixels.empty()) {
                const POINT pixel = pixels[random() % pixels.size()];
                pt = {pixel.x + test::Below(random, 6) - 2, pixel.y + test::Below(random, 7) - 3};
            }
            ExpectLiteral(map, pt, tally);
            ASSERT_FALSE(testing::Test::HasFatalFailure()) << i;
        }
    }
    EXPECT_GT(tally.nTraced, 5000);
    EXPECT_GT(tally.nClosed, 100);
    EXPECT_GT(tally.nCircled, 10);
    EXPECT_GT(tally.nJunctions, 1000);
    EXPECT_GT(tally.nLongest, 300);
}

}  // namespace
}  // namespace width
