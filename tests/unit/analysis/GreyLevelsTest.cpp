#include "analysis/GreyLevels.h"

#include <gtest/gtest.h>

#include "analysis/fast/GreyRows.h"
#include "tests/support/LiteralThreshold.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

using fast::InstructionSet;
using test::DibBuilder;

std::int32_t ThresholdOf(const std::vector<std::byte>& block) {
    const auto dib = DibView::Open(block);
    return CalcAutoThreshold(&*dib);
}

std::vector<std::byte> Plain(std::uint16_t nBits, std::int32_t nWidth, Colour colour) {
    DibBuilder builder(nWidth, 1, nBits);
    for (std::int32_t x = 0; x < nWidth; ++x) {
        nBits > 8 ? builder.SetPixel(x, 0, colour) : builder.SetColour(0, colour);
    }
    return builder.Block();
}

std::vector<InstructionSet> Sets() {
    std::vector<InstructionSet> sets = {InstructionSet::Sse2};
    if (fast::BestInstructionSet() == InstructionSet::Avx2) {
        sets.push_back(InstructionSet::Avx2);
    }
    return sets;
}

// The levels of all 2^24 colours by each instruction set, in rows of a length that no vector divides.
TEST(GreyLevels, AllColoursByVectors) {
    constexpr std::uint32_t kRow = 4095;
    std::vector<std::uint8_t> row(3 * kRow);
    std::vector<std::uint8_t> expected(kRow);
    std::vector<std::uint8_t> levels(kRow);
    for (std::uint32_t nColour = 0; nColour < 1U << 24; nColour += kRow) {
        for (std::uint32_t i = 0; i < kRow; ++i) {
            const std::uint32_t n = nColour + i;
            row[3 * i] = static_cast<std::uint8_t>(n);
            row[3 * i + 1] = static_cast<std::uint8_t>(n >> 8);
            row[3 * i + 2] = static_cast<std::uint8_t>(n >> 16);
            expected[i] = ThresholdGrey({row[3 * i + 2], row[3 * i + 1], row[3 * i]});
        }
        for (const InstructionSet set : Sets()) {
            (set == InstructionSet::Sse2 ? fast::GreyLevelsSse2 : fast::GreyLevelsAvx2)(row.data(), 3, kRow, levels.data());
            ASSERT_EQ(levels, expected) << nColour;
        }
    }
}

TEST(GreyLevels, DoublesAndTruncationArePartOfTheLevel) {
    EXPECT_EQ(ThresholdGrey({128, 128, 128}), 127);
    EXPECT_EQ(ThresholdGrey({1, 1, 1}), 0);
    EXPECT_EQ(ThresholdGrey({255, 255, 255}), 255);
    EXPECT_EQ(ThresholdGrey({100, 100, 100}), 100);
}

TEST(AutoThreshold, EvenAndOddPlainPictures) {
    for (const std::uint16_t nBits : std::array<std::uint16_t, 3>{8, 24, 32}) {
        EXPECT_EQ(ThresholdOf(Plain(nBits, 6, {100, 100, 100})), 100) << nBits;
        EXPECT_EQ(ThresholdOf(Plain(nBits, 7, {100, 100, 100})), 99) << nBits;
    }
}

TEST(AutoThreshold, AnOverfullLevelZeroDependsOnTheDepth) {
    EXPECT_EQ(ThresholdOf(Plain(8, 6, {0, 0, 0})), 0);
    EXPECT_EQ(ThresholdOf(Plain(24, 6, {0, 0, 0})), 1);
    EXPECT_EQ(ThresholdOf(Plain(32, 6, {0, 0, 0})), 1);
    DibBuilder withOnes(4, 1, 24);
    withOnes.SetPixel(3, 0, {2, 2, 2});  // level 1 or 2: 2.0 in doubles truncates to 2 or just below
    const std::vector<std::byte> block = withOnes.Block();
    EXPECT_EQ(ThresholdOf(block), test::LiteralThreshold(*DibView::Open(block)));
}

TEST(AutoThreshold, HalfBlackHalfWhiteGives254) {
    DibBuilder builder(4, 2, 1);
    builder.SetColour(1, {255, 255, 255}).SetIndex(0, 0, 1).SetIndex(1, 0, 1).SetIndex(0, 1, 1).SetIndex(3, 1, 1);
    EXPECT_EQ(ThresholdOf(builder.Block()), 254);
}

TEST(AutoThreshold, WithoutReadablePixels) {
    EXPECT_EQ(CalcAutoThreshold(nullptr), -1);
    EXPECT_EQ(ThresholdOf(DibBuilder(5, 5, 16).Block()), 0);
}

TEST(AutoThreshold, EqualsTheLiteralWayOnRandomPictures) {
    std::mt19937 random(41);
    for (int i = 0; i < 400; ++i) {
        const std::uint16_t nBits = std::array<std::uint16_t, 5>{1, 4, 8, 24, 32}[static_cast<std::size_t>(i) % 5];
        const auto nWidth = 1 + test::Below(random, 70);
        const auto texture = static_cast<test::Texture>(random() % 3);
        std::vector<std::byte> block = test::RandomDib(random, nWidth, 1 + test::Below(random, 9), nBits, texture);
        for (std::size_t n = 40; nBits == 24 && n < block.size(); ++n) {
            block[n] = static_cast<std::byte>(random());  // any colour at all
        }
        const auto dib = DibView::Open(block);
        const std::int32_t nLiteral = test::LiteralThreshold(*dib);
        for (const InstructionSet set : Sets()) {
            EXPECT_EQ(CalcAutoThreshold(&*dib, set), nLiteral) << i << " bits " << nBits << " width " << nWidth;
        }
    }
}

}  // namespace
}  // namespace width
