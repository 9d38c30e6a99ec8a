#include "analysis/Skeleton.h"

#include <gtest/gtest.h>

#include "tests/support/LiteralSkeleton.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

using test::DibBuilder;
using test::DrawnMap;

constexpr GreyWindow kDark{0, 127};

SkeletonMap SkeletonOf(const std::vector<std::byte>& block, GreyWindow window = kDark) {
    return *MakeSkeleton(*DibView::Open(block), window);
}

// A bar of w x h cells with three cells round it. Rows of the expected drawing count from the
// bottom, as the map's do, and hold the bar only.
void ExpectBar(std::int32_t w, std::int32_t h, const std::vector<std::string>& rowsFromBottom) {
    DibBuilder builder(w + 6, h + 6, 8);
    builder.GreyTable().Fill(
        [&](std::int32_t x, std::int32_t s) { return x >= 3 && x < w + 3 && s >= 3 && s < h + 3 ? 0U : 255U; });
    const SkeletonMap map = SkeletonOf(builder.Block());
    for (std::int32_t s = 0; s < h + 6; ++s) {
        for (std::int32_t x = 0; x < w + 6; ++x) {
            const bool bInBar = x >= 3 && x < w + 3 && s >= 3 && s < h + 3;
            const bool bExpected =
                bInBar && rowsFromBottom[static_cast<std::size_t>(s - 3)][static_cast<std::size_t>(x - 3)] == '#';
            ASSERT_EQ(map.At({s + 2, x + 2}) != 0, bExpected)
                << w << " x " << h << " at " << x << ", " << s << test::Drawing(map);
        }
    }
}

TEST(Skeleton, BarsBecomeTheirMiddle) {
    const std::string full(26, '#');
    const std::string none(26, '.');
    const auto ends = [](std::size_t n) {
        return std::string(n, '.') + '#' + std::string(24 - 2 * n, '.') + '#' + std::string(n, '.');
    };
    const auto from = [](std::size_t n) { return std::string(n, '.') + std::string(26 - 2 * n, '#') + std::string(n, '.'); };
    ExpectBar(26, 1, {full});
    ExpectBar(26, 2, {std::string(25, '#') + '.', none});
    ExpectBar(26, 4, {ends(0), from(1), ends(1), ends(0)});
    ExpectBar(26, 5, {ends(0), ends(1), from(2), ends(1), ends(0)});
}

TEST(Skeleton, SquaresBecomeTheirDiagonals) {
    for (const std::int32_t n : {8, 9}) {
        std::vector<std::string> rows(static_cast<std::size_t>(n), std::string(static_cast<std::size_t>(n), '.'));
        for (std::size_t i = 0; i < rows.size(); ++i) {
            rows[i][i] = rows[i][rows.size() - 1 - i] = '#';
        }
        ExpectBar(n, n, rows);
    }
}

// A picture of one row keeps every pixel that is inside.
TEST(Skeleton, WindowLimitsAreInclusiveAndComparedAsDoubles) {
    const auto isInside = [](Colour colour, GreyWindow window) {
        return SkeletonOf(DibBuilder(1, 1, 24).SetPixel(0, 0, colour).Block(), window).At({2, 2}) == 1;
    };
    EXPECT_FALSE(isInside({128, 128, 128}, {0, 127}));
    EXPECT_FALSE(isInside({128, 128, 128}, {128, 255}));
    EXPECT_TRUE(isInside({128, 128, 128}, {127, 128}));
    EXPECT_TRUE(isInside({255, 255, 255}, {254, 255}));
    EXPECT_TRUE(isInside({0, 0, 0}, {0, 1}));
}

// The scaled integers of true colour against the doubles, on every colour. Only limits that a
// colour's grey can equal in whole numbers matter, and 1..254 covers them in turn.
TEST(Skeleton, AllColoursFallOnTheRightSideOfALimit) {
    DibBuilder builder(4096, 1, 24);
    for (std::uint32_t nRed = 0; nRed < 256; ++nRed) {
        const auto nMin = static_cast<std::int32_t>(nRed / 2);
        const GreyWindow window{nMin, nMin + 1 + static_cast<std::int32_t>(nRed % 120)};
        for (std::uint32_t nBlock = 0; nBlock < 16; ++nBlock) {
            const auto colour = [&](std::uint32_t x) {
                const std::uint32_t n = nBlock * 4096 + x;
                return Colour{static_cast<std::uint8_t>(nRed), static_cast<std::uint8_t>(n >> 8), static_cast<std::uint8_t>(n)};
            };
            for (std::int32_t x = 0; x < 4096; ++x) {
                builder.SetPixel(x, 0, colour(static_cast<std::uint32_t>(x)));
            }
            const SkeletonMap map = SkeletonOf(builder.Block(), window);
            for (std::int32_t x = 0; x < 4096; ++x) {
                const double grey = SkeletonGrey(colour(static_cast<std::uint32_t>(x)));
                const bool bInside = window.nMinGrey <= grey && grey <= window.nMaxGrey;
                ASSERT_EQ(map.At({2, x + 2}) == 1, bInside) << nRed << ' ' << nBlock << ' ' << x;
            }
        }
    }
}

TEST(Skeleton, GreyWindowHasToBeAnInterval) {
    EXPECT_TRUE(IsGreyWindowValid({0, 1}));
    EXPECT_TRUE(IsGreyWindowValid({254, 255}));
    EXPECT_FALSE(IsGreyWindowValid({0, 0}));
    EXPECT_FALSE(IsGreyWindowValid({-1, 5}));
    EXPECT_FALSE(IsGreyWindowValid({5, 256}));
    EXPECT_FALSE(IsGreyWindowValid({7, 5}));
}

TEST(Skeleton, AnUnreadableDepthGivesAnEmptyMap) {
    EXPECT_EQ(SkeletonOf(DibBuilder(9, 9, 16).Block()), SkeletonMap(9, 9));
}

TEST(Skeleton, ASquareDeeperThanAByteHasZeroesInside) {
    const auto isInside = [](std::int32_t x, std::int32_t s) { return x >= 3 && x < 533 && s >= 3 && s < 533; };
    const SkeletonMap map =
        SkeletonOf(DibBuilder(536, 536, 8).GreyTable().Fill([&](auto x, auto s) { return isInside(x, s) ? 0U : 255U; }).Block());
    SkeletonMap foreground(536, 536);
    for (std::int32_t s = 3; s < 533; ++s) {
        std::fill_n(foreground.Row(s + 2) + 5, 530, std::uint8_t{1});
    }
    const SkeletonMap distance = test::LiteralDistance(foreground);
    int nZeroes = 0;
    for (std::int32_t r = 5; r < 535; ++r) {
        for (std::int32_t c = 5; c < 535; ++c) {
            nZeroes += distance.At({r, c}) == 0 ? 1 : 0;
            ASSERT_FALSE(distance.At({r, c}) == 0 && map.At({r, c}) != 0) << r << ' ' << c;
        }
    }
    EXPECT_EQ(nZeroes, 1180);
}

}  // namespace
}  // namespace width
