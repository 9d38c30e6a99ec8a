#include "measure/PairMeasure.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace width {
namespace {

DetectedLine Line(std::int32_t x1, std::int32_t y1, std::int32_t x2, std::int32_t y2) {
    return {{0, x1, y1}, {0, x2, y2}};
}

double Length(const PairMeasure& measure) {
    return std::hypot(measure.feet.ptA.x - measure.feet.ptB.x, measure.feet.ptA.y - measure.feet.ptB.y);
}

// Pairs 60 apart at every angle, ends in every order: the label always says 60, give or take the
// truncation of the feet. A fixed order fails near the vertical.
TEST(MeasurePair, AgreesWithTheDistanceAtEveryAngleAndInEveryOrder) {
    for (int degrees = 0; degrees < 180; ++degrees) {
        for (int nOrder = 0; nOrder < 4; ++nOrder) {
            const double angle = degrees * std::numbers::pi / 180;
            const auto at = [&](double along, double across) {
                return PathPoint{
                    0, static_cast<std::int32_t>(std::lround(300 + along * std::cos(angle) - across * std::sin(angle))),
                    static_cast<std::int32_t>(std::lround(300 + along * std::sin(angle) + across * std::cos(angle)))};
            };
            const DetectedLine line1 =
                (nOrder & 1) != 0 ? DetectedLine{at(-150, 30), at(150, 30)} : DetectedLine{at(150, 30), at(-150, 30)};
            const DetectedLine line2 =
                (nOrder & 2) != 0 ? DetectedLine{at(-120, -30), at(140, -30)} : DetectedLine{at(140, -30), at(-120, -30)};
            const PairMeasure measure = MeasurePair(line1, line2, {300, 300}, 600, 600);
            ASSERT_EQ(measure.outcome, PairOutcome::Measured) << degrees;
            EXPECT_NEAR(measure.fMeanDistance, 60.0F, 1.0F) << degrees;
            EXPECT_NEAR(Length(measure), 60.0, 2.5) << degrees << " order " << nOrder;
        }
    }
}

// An exactly vertical line has no right end, so the order of its ends decides which way it counts.
TEST(MeasurePair, AVerticalLineIsTakenTheWayTheOtherLeans) {
    for (const std::int32_t nLean : {-2, 2}) {
        for (const auto& [yFirst, yLast] : {std::pair{0, 200}, {200, 0}}) {
            const PairMeasure measure =
                MeasurePair(Line(100, yFirst, 100, yLast), Line(160, 0, 160 + nLean, 200), {130, 100}, 300, 201);
            ASSERT_EQ(measure.outcome, PairOutcome::Measured);
            EXPECT_NEAR(Length(measure), 60.0, 1.5) << nLean << ' ' << yFirst;
        }
    }
}

// Two lines that lean to both sides have a mean sine of 0 and count as horizontal in every order:
// the label then does not agree with the mean distance, and a caller can tell.
TEST(MeasurePair, LeaningToBothSidesShowsInTheMeanDistance) {
    const PairMeasure measure = MeasurePair(Line(100, 0, 101, 200), Line(160, 200, 161, 0), {130, 100}, 300, 201);
    ASSERT_EQ(measure.outcome, PairOutcome::Measured);
    EXPECT_NEAR(measure.fMeanDistance, 60.0F, 0.1F);
    EXPECT_EQ(Length(measure), 0.0);
}

TEST(MeasurePair, SaysWhyThereIsNoWidth) {
    EXPECT_EQ(MeasurePair(Line(0, 0, 100, 0), Line(0, 50, 100, 80), {50, 20}, 200, 200).outcome, PairOutcome::NotParallel);
    EXPECT_EQ(MeasurePair(Line(0, 0, 100, 40), Line(100, 40, 0, 0), {50, 20}, 200, 200).outcome, PairOutcome::NoWidth);
    EXPECT_EQ(MeasurePair(Line(5, 5, 5, 5), Line(0, 9, 100, 9), {50, 20}, 200, 200).outcome, PairOutcome::NotParallel);
}

}  // namespace
}  // namespace width
