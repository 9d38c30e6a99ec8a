#include "measure/Width.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

#include "tests/support/LiteralMeasure.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

PickedEnds Ends(std::array<std::int32_t, 8> v) {
    return {{{v[0], v[1]}, {v[2], v[3]}, {v[4], v[5]}, {v[6], v[7]}}};
}

void ExpectFeet(Feet feet, POINT pt1, POINT pt2) {
    EXPECT_TRUE(feet.pt1.x == pt1.x && feet.pt1.y == pt1.y && feet.pt2.x == pt2.x && feet.pt2.y == pt2.y)
        << feet.pt1.x << ',' << feet.pt1.y << ' ' << feet.pt2.x << ',' << feet.pt2.y;
}

PickedEnds WithSecondLineAt(double degrees) {
    const auto dx = static_cast<std::int32_t>(std::lround(100000 * std::cos(degrees * std::numbers::pi / 180)));
    const auto dy = static_cast<std::int32_t>(std::lround(100000 * std::sin(degrees * std::numbers::pi / 180)));
    return Ends({0, 0, 10000, 0, 0, 50, dx / 10, 50 + dy / 10});
}

TEST(IsPairParallel, AcceptsUpToTheToleranceInEitherDirection) {
    EXPECT_EQ(IsPairParallel(WithSecondLineAt(4.9)), 1);
    EXPECT_EQ(IsPairParallel(WithSecondLineAt(-4.9)), 1);
    EXPECT_EQ(IsPairParallel(WithSecondLineAt(175.1)), 1) << "picked the other way round";
    EXPECT_EQ(IsPairParallel(WithSecondLineAt(5.1)), 0);
    EXPECT_EQ(IsPairParallel(WithSecondLineAt(90)), 0);
    EXPECT_EQ(IsPairParallel(Ends({0, 0, 100, 0, 7, 40, 7, 40})), 0) << "a line without length";
}

TEST(PairWidth, IsTheMeanOfTheMiddlesDistances) {
    EXPECT_EQ(PairWidth(Ends({10, 0, 10, 50, 30, 90, 30, 20})), 20.0F);
    EXPECT_EQ(PairWidth(Ends({0, 10, 50, 10, 90, 35, 20, 35})), 25.0F);
    EXPECT_EQ(PairWidth(Ends({0, 0, 30, 40, 0, 0, 30, 40})), 0.0F);
    EXPECT_FLOAT_EQ(PairWidth(Ends({0, 0, 40, 30, 0, 50, 40, 80})), 40.0F);
    // One vertical line, one slanted: each distance takes its own case.
    EXPECT_FLOAT_EQ(PairWidth(Ends({0, 0, 0, 100, 20, 0, 22, 100})), (21.0F + 2100.0F / std::sqrt(4.0F + 10000.0F)) * 0.5F);
}

TEST(ComputeFeet, LieOnTheCommonNormal) {
    ExpectFeet(ComputeFeet({60, 50}, Ends({0, 0, 100, 50, 0, 40, 100, 90})), {68, 34}, {52, 66});
}

TEST(ComputeFeet, VerticalPairsAreFoundInBothDirections) {
    ExpectFeet(ComputeFeet({15, 33}, Ends({10, 0, 10, 100, 31, 0, 31, 100})), {10, 33}, {31, 33});
    ExpectFeet(ComputeFeet({15, 33}, Ends({10, 0, 10, 100, 31, 100, 31, 0})), {10, 33}, {31, 33});
}

TEST(ComputeFeet, NearlyHorizontalIsHorizontal) {
    ExpectFeet(ComputeFeet({40, 20}, Ends({0, 10, 2000, 11, 0, 50, 2000, 51})), {40, 10}, {40, 50});
    // Nearly vertical lines leaning to both sides have a mean sine near 0 and take this case too.
    ExpectFeet(ComputeFeet({25, 60}, Ends({10, 0, 11, 100, 40, 0, 39, 100})), {25, 50}, {25, 50});
}

TEST(ComputeFeet, ALineWithoutDirectionTakesTheOthers) {
    ExpectFeet(ComputeFeet({60, 50}, Ends({0, 0, 100, 50, 0, 40, 0, 40})), {68, 34}, {52, 66});
    ExpectFeet(ComputeFeet({15, 33}, Ends({10, 5, 10, 5, 31, 100, 31, 0})), {10, 33}, {31, 33});
    ExpectFeet(ComputeFeet({5, 5}, Ends({1, 1, 1, 1, 2, 7, 2, 7})), {1, 1}, {2, 7});
}

// Two lines, each in any of many directions: all of a few pixels, and long ones just off the axes, where the cases change.
TEST(ComputeFeet, EqualsTheLiteralMeasureOnEveryPairOfDirections) {
    std::vector<POINT> directions;
    for (std::int32_t n = 0; n < 21 * 21; ++n) {
        directions.push_back({n % 21 - 10, n / 21 - 10});
    }
    for (const std::int32_t nLong : {-2000, -1400, -999, -501, -102, 102, 499, 707, 1000, 3000}) {
        for (std::int32_t nShort = -16; nShort <= 16; ++nShort) {
            directions.push_back({nLong, nShort});
            directions.push_back({nShort, nLong});
        }
    }
    std::mt19937 random(51);
    int nGeneral = 0;
    for (const POINT& d1 : directions) {
        for (const POINT& d2 : directions) {
            const auto any = [&] { return POINT{test::Below(random, 900) - 200, test::Below(random, 900) - 200}; };
            const POINT p1 = any(), p2 = any(), pt = any();
            const PickedEnds ends{p1, {p1.x + d1.x, p1.y + d1.y}, p2, {p2.x + d2.x, p2.y + d2.y}};
            const Feet feet = ComputeFeet(pt, ends);
            const test::LiteralFeet literal = test::FeetLiterally(pt, ends);
            ASSERT_TRUE(feet.pt1.x == literal.pt1.x && feet.pt1.y == literal.pt1.y && feet.pt2.x == literal.pt2.x &&
                        feet.pt2.y == literal.pt2.y)
                << d1.x << ',' << d1.y << " and " << d2.x << ',' << d2.y << ": " << feet.pt1.x << ',' << feet.pt1.y << ' '
                << feet.pt2.x << ',' << feet.pt2.y;
            ASSERT_EQ(IsPairParallel(ends) == 1, test::AreParallelLiterally(ends, 5.0F));
            const float fWidth = PairWidth(ends), fLiteral = test::PairWidthLiterally(ends);
            ASSERT_TRUE(fWidth == fLiteral || (std::isnan(fWidth) && std::isnan(fLiteral))) << fWidth << ' ' << fLiteral;
            nGeneral += feet.pt1.x != pt.x && feet.pt1.y != pt.y ? 1 : 0;
        }
    }
    EXPECT_GT(nGeneral, 10'000);
}

TEST(CommitLabel, StoresImagePointsAndDropsUndoneLabels) {
    LabelList labels;
    const ViewGeometry geometry{200, 200, 0, 0, 400, 400, 1, 2};
    const PickedEnds ends = Ends({10, 10, 10, 50, 30, 10, 30, 51});
    for (int i = 0; i < 3; ++i) {
        CommitLabel({20, 20 + i}, ends, geometry, labels);
    }
    EXPECT_EQ(labels.m_nCurLabel, 3);
    EXPECT_EQ(labels.m_Labels.size(), 6U);
    EXPECT_EQ(labels.m_Labels[0].ptA.x, 20);
    EXPECT_EQ(labels.m_Labels[0].ptA.y, 58) << "one client pixel above the middle, then scaled";
    EXPECT_EQ(labels.m_Labels[1].ptB.x, 60);
    EXPECT_EQ(labels.m_Labels[1].ptB.y, 40);
    labels.Undo();
    labels.Undo();
    EXPECT_TRUE(labels.CanRedo());
    labels.Redo();
    CommitLabel({20, 90}, ends, geometry, labels);
    EXPECT_EQ(labels.m_nCurLabel, 3);
    EXPECT_EQ(labels.m_Labels.size(), 6U);
    EXPECT_EQ(labels.m_Labels[5].ptA.y, 180);
    EXPECT_FALSE(labels.CanRedo());
}

TEST(FormatLabelText, TellsPixelsOrCentimetres) {
    EXPECT_EQ(FormatLabelText(1, {100, 100}, {130, 140}, {}), "1#: 50");
    EXPECT_EQ(FormatLabelText(1, {130, 140}, {100, 100}, {500, 500}), "1#: 10.0000cm");
    EXPECT_EQ(FormatLabelText(12, {0, 0}, {1, 1}, {}), "12#: 1") << "truncated";
    EXPECT_EQ(FormatLabelText(2, {0, 0}, {30, 40}, {300, 400}), "2#: 14.1421cm") << "each axis has its own resolution";
    EXPECT_EQ(FormatLabelText(3, {5, 5}, {5, 5}, {}), "3#: 0");
}

TEST(FormatLabelText, EqualsTheLiteralTextInEveryDirection) {
    for (std::int32_t n = 0; n < 201 * 201; ++n) {
        const POINT pt1{50, 60}, pt2{n % 201 - 100, n / 201 - 100};
        for (const Resolution& resolution : {Resolution{}, Resolution{3937, 3937}, Resolution{11811, 2835}}) {
            ASSERT_EQ(FormatLabelText(n, pt1, pt2, resolution),
                      test::TextLiterally(n, pt1, pt2, resolution.nXPelsPerMeter, resolution.nYPelsPerMeter));
        }
    }
}

TEST(FormatLabelText, AResolutionOnOneAxisIsNone) {
    EXPECT_EQ(FormatLabelText(1, {0, 0}, {30, 40}, {500, 0}), "1#: 50");
    EXPECT_EQ(FormatLabelText(1, {0, 0}, {30, 40}, {0, 500}), "1#: 50");
}

}  // namespace
}  // namespace width
