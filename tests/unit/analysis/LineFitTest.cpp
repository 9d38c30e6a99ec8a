#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "analysis/LineDetector.h"
#include "tests/support/LiteralTrace.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

using Chain = std::vector<PathPoint>;

struct Fitted {
    FitAxis axis;
    float slope, intercept;
    PathPoint first, last;
};

Fitted FitOf(const Chain& chain) {
    LineDetector detector{LineConditions{}};
    EXPECT_EQ(detector.FitLeastSquares(chain), 1);
    return {detector.Axis(), detector.Slope(), detector.Intercept(), detector.First(), detector.Last()};
}

void ExpectPoint(const PathPoint& pt, std::int32_t x, std::int32_t y) {
    EXPECT_TRUE(pt.x == x && pt.y == y) << pt.x << ',' << pt.y;
}

TEST(FitLeastSquares, FlatAndSteepChains) {
    const Fitted flat = FitOf({{-1, 0, 0}, {0, 1, 0}, {1, 2, 1}, {2, 3, 1}});
    EXPECT_EQ(flat.axis, FitAxis::YOnX);
    EXPECT_FLOAT_EQ(flat.slope, 0.4F);
    EXPECT_FLOAT_EQ(flat.intercept, -0.1F);
    ExpectPoint(flat.first, 0, 0);
    ExpectPoint(flat.last, 2, 1);
    EXPECT_EQ(flat.first.nIndex, -1);
    const Fitted steep = FitOf({{-2, 0, 0}, {-1, 0, 1}, {0, 1, 2}, {1, 1, 3}, {2, 1, 4}});
    EXPECT_EQ(steep.axis, FitAxis::XOnY);
    EXPECT_FLOAT_EQ(steep.slope, 0.3F);
    EXPECT_NEAR(steep.intercept, 0.0F, 1e-6F);
    ExpectPoint(steep.last, 1, 3);
}

TEST(FitLeastSquares, RowsColumnsAndTheDiagonal) {
    const Fitted row = FitOf({{-1, 4, 7}, {0, 5, 7}, {1, 6, 7}});
    EXPECT_EQ(row.axis, FitAxis::YOnX);
    EXPECT_EQ(row.slope, 0.0F);
    ExpectPoint(row.first, 4, 7);
    ExpectPoint(row.last, 6, 7);
    const Fitted column = FitOf({{-1, 3, 10}, {0, 3, 11}, {1, 3, 12}});
    EXPECT_EQ(column.axis, FitAxis::XOnY);
    ExpectPoint(column.first, 3, 10);
    ExpectPoint(column.last, 3, 12);
    EXPECT_EQ(FitOf({{-1, 0, 0}, {0, 1, 1}, {1, 2, 2}}).axis, FitAxis::YOnX) << "a slope of exactly 1 stays flat";
}

// The sums round in single precision, in list order: row 100 with 39 pixels comes out as 99.
TEST(FitLeastSquares, SumsAreSinglePrecisionInListOrder) {
    Chain chain;
    for (std::int32_t i = 0; i < 39; ++i) {
        chain.push_back({i - 20, i, 100});
    }
    const Fitted row = FitOf(chain);
    EXPECT_EQ(row.first.y, 99);
    EXPECT_LT(row.intercept, 100.0F);
}

TEST(FitLeastSquares, OnePixelTwiceDoesNotFail) {
    EXPECT_EQ(FitOf({{0, 5, 5}, {1, 5, 5}}).axis, FitAxis::XOnY);
}

bool IsSameFloat(float a, float b) {
    return a == b || (std::isnan(a) && std::isnan(b));
}

void ExpectLiteralFit(const Chain& chain) {
    std::vector<test::LiteralPixel> pixels;
    for (const PathPoint& pt : chain) {
        pixels.push_back({pt.nIndex, pt.x, pt.y});
    }
    const test::LiteralFit literal = test::FitLiterally(pixels);
    const Fitted fit = FitOf(chain);
    const auto isSame = [](const PathPoint& pt, const test::LiteralPixel& pixel) {
        return pt == PathPoint{pixel.nIndex, pixel.x, pixel.y};
    };
    ASSERT_TRUE(static_cast<std::int32_t>(fit.axis) == literal.nAxis && IsSameFloat(fit.slope, literal.a) &&
                IsSameFloat(fit.intercept, literal.b) && isSame(fit.first, literal.first) && isSame(fit.last, literal.last))
        << "from " << chain.front().x << ',' << chain.front().y << " to " << chain.back().x << ',' << chain.back().y << ", slope "
        << fit.slope << " and " << literal.a << ", ends at " << fit.first.x << ',' << fit.first.y << ' ' << fit.last.x << ','
        << fit.last.y;
}

// Lines in every direction, straight and ragged, at every distance from the origin: near it sums are exact, far from it they
// round, and from 46,341 on products wrap.
TEST(FitLeastSquares, EqualsTheLiteralFitInEveryDirection) {
    std::mt19937 random(23);
    for (std::int32_t nDirection = 0; nDirection < 61 * 61; ++nDirection) {
        const std::int32_t dx = nDirection % 61 - 30;
        const std::int32_t dy = nDirection / 61 - 30;
        const std::int32_t nSteps = std::max({std::abs(dx), std::abs(dy), 1});
        for (const std::int32_t nReach : {1, 300, 20'000, 200'000}) {
            const std::int32_t nRagged = test::Below(random, 3);
            const std::int32_t x = test::Below(random, nReach), y = test::Below(random, nReach);
            Chain chain;
            for (std::int32_t i = 0; i <= nSteps; ++i) {
                const auto stray = [&] { return test::Below(random, 2 * nRagged + 1) - nRagged; };
                chain.push_back({i - nSteps / 2, x + dx * i / nSteps + stray(), y + dy * i / nSteps + stray()});
            }
            ExpectLiteralFit(chain);
            ASSERT_FALSE(testing::Test::HasFatalFailure());
        }
    }
}

TEST(IsChainStraight, TwoPixelsOffTheChordStillPass) {
    const auto bump = [](std::int32_t nHeight) { return Chain{{0, 0, 0}, {1, 5, nHeight}, {2, 10, 0}}; };
    EXPECT_EQ(LineDetector::IsChainStraight(bump(2)), 1);
    EXPECT_EQ(LineDetector::IsChainStraight(bump(-3)), 0);
    EXPECT_EQ(LineDetector::IsChainStraight(Chain{{0, 0, 0}, {1, 10, 0}}), 0) << "two pixels are no line";
}

TEST(IsChordLongEnough, EqualPasses) {
    LineConditions conditions;
    conditions.nMinLineLength = 5;
    const LineDetector detector{conditions};
    EXPECT_EQ(detector.IsChordLongEnough(Chain{{0, 0, 0}, {1, 3, 4}}), 1);
    EXPECT_EQ(detector.IsChordLongEnough(Chain{{0, 0, 0}, {1, 3, 3}}), 0);
    EXPECT_EQ(detector.IsChordLongEnough({}), 0);
    EXPECT_EQ(detector.IsEdgeLongEnough({0, 0, 0}, {1, 4, 3}), 1);
}

// From column 2^24 on only every second column is a float; an odd one becomes its neighbour that four divides.
TEST(IsEdgeLongEnough, ColumnsBecomeFloatsBeforeTheirDifference) {
    constexpr std::int32_t kColumn = 1 << 24;
    LineConditions conditions;
    conditions.nMinLineLength = 5;
    const LineDetector detector{conditions};
    EXPECT_EQ(detector.IsEdgeLongEnough({0, kColumn, 0}, {1, kColumn + 5, 0}), 0) << "4.0 long";
    EXPECT_EQ(detector.IsEdgeLongEnough({0, kColumn + 1, 0}, {1, kColumn + 4, 3}), 1) << "exactly 5.0 long, where 4.2 were true";
}

}  // namespace
}  // namespace width
