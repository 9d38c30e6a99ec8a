#include "core/Arithmetic.h"

#include <gtest/gtest.h>

#include <cmath>

namespace width {
namespace {

constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

TEST(Arithmetic, IntegersWrapOn32Bits) {
    EXPECT_EQ(WrapAdd(kMax, 1), kMin);
    EXPECT_EQ(WrapSub(kMin, 1), kMax);
    EXPECT_EQ(WrapMul(65536, 65536), 0);
    EXPECT_EQ(WrapMul(50000, 50000), static_cast<std::int32_t>(2500000000LL - 4294967296LL));
    EXPECT_EQ(WrapMul(kMin, -1), kMin);
}

TEST(Arithmetic, TruncationGoesTowardsZeroAndIsDefinedEverywhere) {
    EXPECT_EQ(TruncateToInt32(2.97), 2);
    EXPECT_EQ(TruncateToInt32(-2.97F), -2);
    EXPECT_EQ(TruncateToInt32(2147483647.9), kMax);
    EXPECT_EQ(TruncateToInt32(-2147483648.9), kMin);
    EXPECT_EQ(TruncateToInt32(2147483648.0), kMin);
    EXPECT_EQ(TruncateToInt32(INFINITY), kMin);
    EXPECT_EQ(TruncateToInt32(-INFINITY), kMin);
    EXPECT_EQ(TruncateToInt32(NAN), kMin);
}

TEST(Arithmetic, MulDivRoundsHalvesAwayFromZero) {
    EXPECT_EQ(MulDiv(100, 1, 3), 33);
    EXPECT_EQ(MulDiv(100, 2, 3), 67);
    EXPECT_EQ(MulDiv(1, 1, 2), 1);
    EXPECT_EQ(MulDiv(-1, 1, 2), -1);
    EXPECT_EQ(MulDiv(1, 1, -2), -1);
    EXPECT_EQ(MulDiv(-3, 1, -2), 2);
    EXPECT_EQ(MulDiv(7, 1, 16), 0);
    EXPECT_EQ(MulDiv(8, 1, 16), 1);
    EXPECT_EQ(MulDiv(2000000000, 1000, 2000), 1000000000) << "the product takes 64 bits";
}

TEST(Arithmetic, MulDivRefusesWhatHasNoResult) {
    EXPECT_EQ(MulDiv(5, 5, 0), -1);
    EXPECT_EQ(MulDiv(kMax, kMax, 1), -1);
    EXPECT_EQ(MulDiv(kMin, kMin, 1), -1);
    EXPECT_EQ(MulDiv(kMax, 1, 1), kMax);
}

}  // namespace
}  // namespace width
