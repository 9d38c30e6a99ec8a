// Which pixels lie in the grey window: one table look-up for pictures with a colour table, an
// integer test for the others.
//
// The test is defined in doubles. For true-colour pixels it is made in integers scaled by 1000:
// 299 R + 587 G + 114 B differs from 1000 times a limit by 1 or more wherever the two are not
// equal, far more than the doubles' error, so only equality needs the doubles themselves.
// Tested by: tests/unit/analysis/SkeletonTest.cpp (all 2^24 colours against the doubles)
#include <algorithm>
#include <cstring>

#include "analysis/SkeletonPasses.h"

namespace width {

bool IsInside(Colour colour, GreyWindow window) noexcept {
    const double grey = SkeletonGrey(colour);
    return static_cast<double>(window.nMinGrey) <= grey && grey <= static_cast<double>(window.nMaxGrey);
}

InsideTable InsideByIndex(const DibView& dib, GreyWindow window) noexcept {
    InsideTable inside{};
    const std::array<Colour, 256> palette = dib.Palette();
    std::ranges::transform(palette, inside.begin(), [&](Colour colour) -> std::uint8_t { return IsInside(colour, window); });
    return inside;
}

namespace {

// Rows of whole bytes, each holding nPerByte pixels: every byte value is expanded once.
template <std::size_t nPerByte>
void BinarisePacked(const DibView& dib, const InsideTable& inside, SkeletonMap& mask) noexcept {
    constexpr std::size_t kBits = 8 / nPerByte;
    std::array<std::array<std::uint8_t, nPerByte>, 256> cells{};
    for (std::size_t nByte = 0; nByte < 256; ++nByte) {
        for (std::size_t i = 0; i < nPerByte; ++i) {
            cells[nByte][i] = inside[(nByte >> (8 - kBits * (i + 1))) & ((std::size_t{1} << kBits) - 1)];
        }
    }
    const std::size_t nFull = static_cast<std::size_t>(dib.Width()) / nPerByte;
    const std::size_t nRest = static_cast<std::size_t>(dib.Width()) % nPerByte;
    for (std::int32_t s = 0; s < dib.Height(); ++s) {
        const std::uint8_t* pRow = dib.Row(s).data();
        std::uint8_t* pOut = mask.Row(s + SkeletonMap::kBorder) + SkeletonMap::kBorder;
        for (std::size_t i = 0; i < nFull; ++i, pOut += nPerByte) {
            std::memcpy(pOut, cells[pRow[i]].data(), nPerByte);
        }
        if (nRest != 0) {
            std::memcpy(pOut, cells[pRow[nFull]].data(), nRest);
        }
    }
}

// Eight bits where the indices inside the window are one range, as with every grey table in order:
// a comparison instead of a look-up.
void BinariseRange(const DibView& dib, std::uint8_t nFirst, std::uint8_t nLast, SkeletonMap& mask) noexcept {
    const auto nSpan = static_cast<std::uint8_t>(nLast - nFirst);
    for (std::int32_t s = 0; s < dib.Height(); ++s) {
        const std::uint8_t* pRow = dib.Row(s).data();
        std::uint8_t* pOut = mask.Row(s + SkeletonMap::kBorder) + SkeletonMap::kBorder;
        for (std::int32_t x = 0; x < dib.Width(); ++x) {
            pOut[x] = static_cast<std::uint8_t>(static_cast<std::uint8_t>(pRow[x] - nFirst) <= nSpan);
        }
    }
}

void BinariseBytes(const DibView& dib, const InsideTable& inside, SkeletonMap& mask) noexcept {
    const auto first = std::ranges::find(inside, 1);
    const auto behind = std::find(first, inside.end(), 0);
    if (first != inside.end() && std::find(behind, inside.end(), 1) == inside.end()) {
        const auto nFirst = static_cast<std::uint8_t>(first - inside.begin());
        BinariseRange(dib, nFirst, static_cast<std::uint8_t>(behind - inside.begin() - 1), mask);
    } else {
        BinarisePacked<1>(dib, inside, mask);
    }
}

template <std::size_t nBytes>
void BinariseTrueColour(const DibView& dib, GreyWindow window, SkeletonMap& mask) noexcept {
    const std::int32_t nLow = 1000 * window.nMinGrey;
    const std::int32_t nHigh = 1000 * window.nMaxGrey;
    for (std::int32_t s = 0; s < dib.Height(); ++s) {
        const std::uint8_t* pPixel = dib.Row(s).data();
        std::uint8_t* pOut = mask.Row(s + SkeletonMap::kBorder) + SkeletonMap::kBorder;
        for (std::int32_t x = 0; x < dib.Width(); ++x, pPixel += nBytes) {
            const std::int32_t nGrey = 299 * pPixel[2] + 587 * pPixel[1] + 114 * pPixel[0];
            const bool bOnLimit = nGrey == nLow || nGrey == nHigh;
            const bool bInside = bOnLimit ? IsInside({pPixel[2], pPixel[1], pPixel[0]}, window) : nGrey > nLow && nGrey < nHigh;
            pOut[x] = static_cast<std::uint8_t>(bInside);
        }
    }
}

}  // namespace

void Binarise(const DibView& dib, GreyWindow window, SkeletonMap& mask) noexcept {
    switch (dib.BitCount()) {
        case 1:
            return BinarisePacked<8>(dib, InsideByIndex(dib, window), mask);
        case 4:
            return BinarisePacked<2>(dib, InsideByIndex(dib, window), mask);
        case 8:
            return BinariseBytes(dib, InsideByIndex(dib, window), mask);
        case 24:
            return BinariseTrueColour<3>(dib, window, mask);
        case 32:
            return BinariseTrueColour<4>(dib, window, mask);
        default:
            return;
    }
}

}  // namespace width
