// Pixels whose grey lies on a limit of the window, or as near to it as a colour can, through the skeleton that is shipped.
#include <gtest/gtest.h>

#include "analysis/Skeleton.h"
#include "tests/support/LiteralSkeleton.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

// All colours whose 299 R + 587 G + 114 B differs from a number by 1 at most.
std::vector<Colour> ColoursAt(std::int32_t nScaled) {
    std::vector<Colour> colours;
    for (std::int32_t nGreen = 0; nGreen < 256; ++nGreen) {
        for (std::int32_t nBlue = 0; nBlue < 256; ++nBlue) {
            const std::int32_t nRest = nScaled - 587 * nGreen - 114 * nBlue;
            const std::int32_t nRed = (nRest + 1) / 299;
            if (nRest >= -1 && nRed < 256 && nRest - 299 * nRed <= 1) {
                colours.push_back(
                    {static_cast<std::uint8_t>(nRed), static_cast<std::uint8_t>(nGreen), static_cast<std::uint8_t>(nBlue)});
            }
        }
    }
    return colours;
}

// A row of pixels, each on its own with a pixel between it and the next that lies outside the window.
std::vector<std::byte> RowOf(const std::vector<Colour>& colours, std::uint16_t nBits, Colour outside) {
    const auto nWidth = static_cast<std::int32_t>(2 * colours.size());
    test::DibBuilder builder(nWidth, 1, nBits);
    for (std::int32_t x = 0; x < nWidth; ++x) {
        builder.SetPixel(x, 0, x % 2 == 0 ? colours[static_cast<std::size_t>(x) / 2] : outside);
    }
    return builder.Block();
}

bool IsInside(Colour colour, GreyWindow window) {
    const double grey = (0.299 * colour.red + 0.587 * colour.green) + 0.114 * colour.blue;
    return window.nMinGrey <= grey && grey <= window.nMaxGrey;
}

class GreyLimit : public testing::TestWithParam<std::uint16_t> {};

// What is inside by itself is a skeleton of one pixel. A rounding decides which side of an equal limit a colour is on, and the
// four limits of two windows have to agree with it.
TEST_P(GreyLimit, ColoursOnALimitFallOnTheSideOfTheirDouble) {
    int nRoundedOut = 0;
    for (std::int32_t nLimit = 0; nLimit < 256; ++nLimit) {
        const std::vector<Colour> colours = ColoursAt(1000 * nLimit);
        ASSERT_FALSE(colours.empty());
        for (const GreyWindow window :
             {GreyWindow{nLimit, 255}, GreyWindow{0, nLimit}, GreyWindow{nLimit, nLimit + 1}, GreyWindow{nLimit - 1, nLimit}}) {
            if (!IsGreyWindowValid(window)) {
                continue;
            }
            const Colour outside = window.nMinGrey > 0 ? Colour{} : Colour{255, 255, 255};
            const std::vector<std::byte> block = RowOf(colours, GetParam(), outside);
            const DibView dib = *DibView::Open(block);
            const SkeletonMap map = *MakeSkeleton(dib, window);
            for (std::size_t i = 0; i < colours.size() && !IsInside(outside, window); ++i) {
                const Colour colour = colours[i];
                const bool bInside = IsInside(colour, window);
                const bool bOnLimit = 299 * colour.red + 587 * colour.green + 114 * colour.blue == 1000 * nLimit;
                nRoundedOut += bOnLimit && !bInside ? 1 : 0;
                ASSERT_EQ(map.At({2, static_cast<std::int32_t>(2 * i) + 2}) != 0, bInside)
                    << window.nMinGrey << ".." << window.nMaxGrey << ": " << int{colour.red} << ' ' << int{colour.green} << ' '
                    << int{colour.blue};
            }
            ASSERT_EQ(map == test::LiteralSkeleton(dib, window), true) << window.nMinGrey << ".." << window.nMaxGrey;
        }
    }
    EXPECT_GT(nRoundedOut, 100) << "colours on a limit whose double lies beyond it";
}

INSTANTIATE_TEST_SUITE_P(Depths, GreyLimit, testing::Values(std::uint16_t{24}, std::uint16_t{32}));

}  // namespace
}  // namespace width
