// The arithmetic that results depend on to the last bit: 32-bit integers that wrap, truncation
// from floating point, and MulDiv. Every place that relies on one of these calls it by name, so
// that a reader sees where a wrap or a truncation is part of the result, and so that none of them
// is ever undefined behaviour.
// Tested by: tests/unit/core/ArithmeticTest.cpp
#pragma once

#include <cstdint>
#include <limits>

namespace width {

/// a + b on 32 bits; what does not fit wraps.
constexpr std::int32_t WrapAdd(std::int32_t a, std::int32_t b) noexcept {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

/// a - b on 32 bits; what does not fit wraps.
constexpr std::int32_t WrapSub(std::int32_t a, std::int32_t b) noexcept {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

/// a * b on 32 bits; what does not fit wraps.
constexpr std::int32_t WrapMul(std::int32_t a, std::int32_t b) noexcept {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

/// Truncates towards zero. A value beyond 32 bits, and one that is not a number, gives
/// -2147483648, which is what the processor's own conversion gives; the plain cast would be
/// undefined there.
constexpr std::int32_t TruncateToInt32(double value) noexcept {
    constexpr double kLow = -2147483649.0;  // exclusive: everything above truncates into range
    constexpr double kHigh = 2147483648.0;  // exclusive
    return value > kLow && value < kHigh ? static_cast<std::int32_t>(value) : std::numeric_limits<std::int32_t>::min();
}

/// As for double; a float widens to double without loss.
constexpr std::int32_t TruncateToInt32(float value) noexcept {
    return TruncateToInt32(static_cast<double>(value));
}

/// a * b / c over a 64-bit product, rounded to the nearest integer, halves away from zero.
/// Returns -1 when c is 0 or the quotient does not fit 32 bits, as the Windows function of this
/// name does.
constexpr std::int32_t MulDiv(std::int32_t a, std::int32_t b, std::int32_t c) noexcept {
    if (c == 0) {
        return -1;
    }
    const std::int64_t product = static_cast<std::int64_t>(a) * b;
    const bool bNegative = (product < 0) != (c < 0);
    const std::int64_t dividend = product < 0 ? -product : product;
    const std::int64_t divisor = c < 0 ? -static_cast<std::int64_t>(c) : c;
    const std::int64_t quotient = (dividend + divisor / 2) / divisor;
    if (quotient > std::numeric_limits<std::int32_t>::max()) {
        return -1;
    }
    return static_cast<std::int32_t>(bNegative ? -quotient : quotient);
}

}  // namespace width
