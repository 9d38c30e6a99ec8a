// One way per depth, through tables made once: a byte of 1-bit pixels becomes eight words at a stroke.
// Tested by: tests/unit/core/PackedDibTest.cpp
#include "core/Expand.h"

#include <algorithm>
#include <array>

namespace width {

namespace {

constexpr std::uint32_t WordOf(Colour colour) noexcept {
    return (std::uint32_t{colour.red} << 16) | (std::uint32_t{colour.green} << 8) | colour.blue;
}

template <std::size_t nBits>
void ExpandIndices(const DibView& dib, std::uint32_t* pOut) noexcept {
    constexpr std::size_t kPerByte = 8 / nBits;
    std::array<std::array<std::uint32_t, kPerByte>, 256> words{};
    const std::array<Colour, 256> palette = dib.Palette();
    for (std::size_t nByte = 0; nByte < 256; ++nByte) {
        for (std::size_t i = 0; i < kPerByte; ++i) {
            words[nByte][i] = WordOf(palette[(nByte >> (8 - nBits * (i + 1))) & ((std::size_t{1} << nBits) - 1)]);
        }
    }
    const std::size_t nFull = static_cast<std::size_t>(dib.Width()) / kPerByte;
    const std::size_t nRest = static_cast<std::size_t>(dib.Width()) % kPerByte;
    for (std::int32_t s = 0; s < dib.Height(); ++s) {
        const std::uint8_t* pRow = dib.Row(s).data();
        for (std::size_t i = 0; i < nFull; ++i) {
            pOut = std::copy_n(words[pRow[i]].data(), kPerByte, pOut);
        }
        if (nRest != 0) {
            pOut = std::copy_n(words[pRow[nFull]].data(), nRest, pOut);
        }
    }
}

template <std::size_t nBytes>
void ExpandColours(const DibView& dib, std::uint32_t* pOut) noexcept {
    for (std::int32_t s = 0; s < dib.Height(); ++s) {
        const std::uint8_t* pPixel = dib.Row(s).data();
        for (std::int32_t x = 0; x < dib.Width(); ++x, pPixel += nBytes) {
            *pOut++ = WordOf({pPixel[2], pPixel[1], pPixel[0]});
        }
    }
}

}  // namespace

void ExpandToWords(const DibView& dib, std::uint32_t* pOut) noexcept {
    switch (dib.BitCount()) {
        case 1:
            return ExpandIndices<1>(dib, pOut);
        case 4:
            return ExpandIndices<4>(dib, pOut);
        case 8:
            return ExpandIndices<8>(dib, pOut);
        case 24:
            return ExpandColours<3>(dib, pOut);
        case 32:
            return ExpandColours<4>(dib, pOut);
        default:
            std::fill_n(pOut, static_cast<std::size_t>(dib.Width()) * static_cast<std::size_t>(dib.Height()), 0U);
    }
}

}  // namespace width
