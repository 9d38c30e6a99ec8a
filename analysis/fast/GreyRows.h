// Grey levels of a row of true colour for the automatic threshold.
// Tested by: tests/unit/analysis/GreyLevelsTest.cpp
#pragma once

#include <cstddef>
#include <cstdint>

namespace width::fast {

/// Levels of nCount pixels of nBytes each, 3 or 4: ((0.3 R + 0.59 G) + 0.11 B) in double precision, truncated.
using GreyLevelsFunction = void (*)(const std::uint8_t* pPixels, std::ptrdiff_t nBytes, std::ptrdiff_t nCount,
                                    std::uint8_t* pLevels) noexcept;

// For one instruction set each.
void GreyLevelsSse2(const std::uint8_t* pPixels, std::ptrdiff_t nBytes, std::ptrdiff_t nCount, std::uint8_t* pLevels) noexcept;
void GreyLevelsAvx2(const std::uint8_t* pPixels, std::ptrdiff_t nBytes, std::ptrdiff_t nCount, std::uint8_t* pLevels) noexcept;

}  // namespace width::fast
