// Grey levels of a row as a template over the instruction set. Included once by the source of each set.
// Tested by: tests/unit/analysis/GreyLevelsTest.cpp
#pragma once

#include "analysis/fast/Vectors.h"

namespace width::fast {

/// True doubles, in the order of the formula: neither scaled integers nor a fused multiply-add round like them.
template <class V>
struct GreyRowsOf {
    using Ints = typename V::Ints;
    using Doubles = typename V::Doubles;

    static Doubles Grey(Doubles red, Doubles green, Doubles blue) noexcept { return (0.3 * red + 0.59 * green) + 0.11 * blue; }

    static Ints Levels(Ints pixels) noexcept {
        const Ints blue = pixels & 255;
        const Ints green = (pixels >> 8) & 255;
        const Ints red = (pixels >> 16) & 255;
        return V::Truncated(Grey(V::LowerDoubles(red), V::LowerDoubles(green), V::LowerDoubles(blue)),
                            Grey(V::UpperDoubles(red), V::UpperDoubles(green), V::UpperDoubles(blue)));
    }

    template <std::ptrdiff_t nBytes>
    static void StoreLevels(const std::uint8_t* p, std::uint8_t* pLevels) noexcept {
        constexpr std::ptrdiff_t kStep = V::kWidth / 4 * nBytes;
        Ints levels[4];
        for (std::ptrdiff_t i = 0; i < 4; ++i) {
            levels[i] = Levels(nBytes == 3 ? V::LoadTriples(p + i * kStep) : reinterpret_cast<Ints>(V::Load(p + i * kStep)));
        }
        V::Store(pLevels, V::NarrowUnsigned(levels[0], levels[1], levels[2], levels[3]));
    }

    // What a load of the last pixels would reach beyond the row goes by way of the stack.
    template <std::ptrdiff_t nBytes>
    static void OfRow(const std::uint8_t* pPixels, std::ptrdiff_t nCount, std::uint8_t* pLevels) noexcept {
        constexpr std::ptrdiff_t kOverrun = nBytes == 3 ? 2 : 0;
        std::ptrdiff_t x = 0;
        for (; x + V::kWidth + kOverrun <= nCount; x += V::kWidth) {
            StoreLevels<nBytes>(pPixels + x * nBytes, pLevels + x);
        }
        std::uint8_t rest[(2 * V::kWidth + kOverrun) * nBytes] = {};
        std::uint8_t levels[2 * V::kWidth] = {};
        std::memcpy(rest, pPixels + x * nBytes, static_cast<std::size_t>((nCount - x) * nBytes));
        StoreLevels<nBytes>(rest, levels);
        StoreLevels<nBytes>(rest + V::kWidth * nBytes, levels + V::kWidth);
        std::memcpy(pLevels + x, levels, static_cast<std::size_t>(nCount - x));
    }

    static void Run(const std::uint8_t* pPixels, std::ptrdiff_t nBytes, std::ptrdiff_t nCount, std::uint8_t* pLevels) noexcept {
        nBytes == 3 ? OfRow<3>(pPixels, nCount, pLevels) : OfRow<4>(pPixels, nCount, pLevels);
    }
};

}  // namespace width::fast
