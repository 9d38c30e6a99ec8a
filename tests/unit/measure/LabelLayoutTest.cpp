#include "measure/LabelLayout.h"

#include <gtest/gtest.h>

#include "tests/support/LiteralMeasure.h"

namespace width {
namespace {

void ExpectPoint(POINT pt, std::int32_t x, std::int32_t y) {
    EXPECT_TRUE(pt.x == x && pt.y == y) << pt.x << ',' << pt.y;
}

TEST(ArrowHead, StandsAtTheTip) {
    const auto head = LayOutArrowHead({100, 0}, {0, 0});
    ASSERT_TRUE(head);
    ExpectPoint(head->ptCorner1, 90, 1);
    ExpectPoint(head->ptCorner2, 90, -1);
    const auto shorter = LayOutArrowHead({4, 0}, {0, 0});
    ASSERT_TRUE(shorter);
    EXPECT_LT(shorter->ptCorner1.x, 0) << "a short arrow keeps its head, which reaches beyond the tail";
    EXPECT_FALSE(LayOutArrowHead({7, 7}, {7, 7}));
}

TEST(LabelLayout, EqualsTheLiteralOneInEveryDirection) {
    for (std::int32_t n = 0; n < 121 * 121; ++n) {
        const POINT pt1{70, 90}, pt2{n % 121, n / 121 + 30};
        if (const auto head = LayOutArrowHead(pt1, pt2)) {
            const auto literal = test::ArrowHeadLiterally(pt1, pt2);
            ExpectPoint(head->ptCorner1, literal[0].x, literal[0].y);
            ExpectPoint(head->ptCorner2, literal[1].x, literal[1].y);
        }
        for (const std::int32_t nTextHeight : {13, 14, 15, 40}) {
            for (const std::int32_t nSide : {0, 1}) {
                const TextPlace place = PlaceText(pt1, pt2, nSide, nTextHeight);
                const test::LiteralText literal = test::PlaceTextLiterally(pt1, pt2, nSide != 0, nTextHeight);
                ExpectPoint(place.ptAnchor, literal.anchor.x, literal.anchor.y);
                ASSERT_EQ(place.dAngle, literal.angle);
                const POINT start = test::TextStartLiterally(literal, n % 97, nTextHeight);
                ExpectPoint(TextStart(place, n % 97, nTextHeight), start.x, start.y);
            }
        }
        ASSERT_FALSE(testing::Test::HasFailure()) << pt2.x << ',' << pt2.y;
    }
}

struct Placing {
    POINT ptFoot1, ptFoot2;
    std::int32_t nSide;
    POINT ptAnchor;
    double dAngle;
};

// Text height 16, so two thirds of it are 10.
TEST(PlaceText, FollowsTheArrowOnTheSideAwayFromTheLines) {
    constexpr Placing kTable[] = {
        {{100, 100}, {130, 140}, 1, {123, 114}, 307.0}, {{130, 140}, {100, 100}, 1, {123, 114}, 307.0},
        {{100, 100}, {130, 140}, 0, {111, 123}, 307.0}, {{100, 140}, {130, 100}, 1, {119, 123}, 413.0},
        {{100, 140}, {130, 100}, 0, {107, 114}, 413.0}, {{50, 10}, {50, 90}, 1, {60, 50}, 270.0},
        {{50, 10}, {50, 90}, 0, {40, 50}, 90.0},        {{10, 50}, {90, 50}, 1, {50, 40}, 0.0},
        {{10, 50}, {90, 50}, 0, {50, 40}, 0.0},         {{5, 5}, {5, 5}, 0, {-5, 5}, 90.0},
    };
    for (const Placing& row : kTable) {
        const TextPlace place = PlaceText(row.ptFoot1, row.ptFoot2, row.nSide, 16);
        ExpectPoint(place.ptAnchor, row.ptAnchor.x, row.ptAnchor.y);
        EXPECT_EQ(place.dAngle, row.dAngle);
    }
}

TEST(PlaceText, SideTellsWhereTheExtensionLinesLie) {
    EXPECT_EQ(TextSide({{0, 0}, {10, 0}}, {{5, 9}, {6, 9}}), 1);
    EXPECT_EQ(TextSide({{0, 0}, {10, 0}}, {{5, 9}, {5, 9}}), 0) << "equal sums";
}

TEST(TextStart, PutsTheMiddleOnTheAnchor) {
    ExpectPoint(TextStart({{100, 100}, 0.0}, 41, 17), 80, 108);
    // A right angle by the measuring code's pi is not quite one, and 19.99 truncates to 19.
    ExpectPoint(TextStart({{100, 100}, 90.0}, 40, 16), 108, 119);
    ExpectPoint(TextStart({{100, 100}, 270.0}, 40, 16), 92, 81);
}

}  // namespace
}  // namespace width
