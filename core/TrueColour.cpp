// Rows expanded through the colour table, one way per depth, chosen once per picture.
// Tested by: tests/unit/core/PackedDibTest.cpp
#include "core/TrueColour.h"

#include <array>
#include <cstring>

namespace width {

namespace {

void Store(std::byte* pOut, Colour colour) noexcept {
    pOut[0] = std::byte{colour.blue};
    pOut[1] = std::byte{colour.green};
    pOut[2] = std::byte{colour.red};
}

// nBits per pixel, leftmost pixel in the highest bits.
void ExpandIndices(const std::uint8_t* pRow, std::size_t nWidth, std::size_t nBits, const std::array<Colour, 256>& palette,
                   std::byte* pOut) noexcept {
    const std::size_t nPerByte = 8 / nBits;
    const std::size_t nMask = (std::size_t{1} << nBits) - 1;
    for (std::size_t x = 0; x < nWidth; ++x, pOut += 3) {
        const std::size_t nShift = 8 - nBits * (x % nPerByte + 1);
        Store(pOut, palette[(static_cast<std::size_t>(pRow[x / nPerByte]) >> nShift) & nMask]);
    }
}

void ExpandColours(const std::uint8_t* pRow, std::size_t nWidth, std::size_t nBytes, std::byte* pOut) noexcept {
    for (std::size_t x = 0; x < nWidth; ++x, pOut += 3, pRow += nBytes) {
        Store(pOut, {pRow[2], pRow[1], pRow[0]});
    }
}

}  // namespace

std::vector<std::byte> ToTrueColour(const DibView& dib) {
    const DibFigures& figures = dib.Figures();
    const std::size_t nStride = DibStride(24, static_cast<std::uint32_t>(dib.Width()));
    std::vector<std::byte> block(sizeof(BITMAPINFOHEADER) + nStride * static_cast<std::size_t>(dib.Height()));
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = figures.nWidth;
    header.biHeight = figures.nHeight;
    header.biPlanes = 1;
    header.biBitCount = 24;
    header.biXPelsPerMeter = figures.nXPelsPerMeter;
    header.biYPelsPerMeter = figures.nYPelsPerMeter;
    std::memcpy(block.data(), &header, sizeof header);
    const std::array<Colour, 256> palette = dib.Palette();
    const auto nWidth = static_cast<std::size_t>(dib.Width());
    for (std::int32_t s = 0; IsReadableDepth(dib.BitCount()) && s < dib.Height(); ++s) {
        std::byte* pOut = block.data() + sizeof header + static_cast<std::size_t>(s) * nStride;
        if (dib.BitCount() <= 8) {
            ExpandIndices(dib.Row(s).data(), nWidth, dib.BitCount(), palette, pOut);
        } else {
            ExpandColours(dib.Row(s).data(), nWidth, dib.BitCount() / 8U, pOut);
        }
    }
    return block;
}

std::byte* TrueColourPixel(std::vector<std::byte>& block, const DibFigures& figures, std::int32_t x, std::int32_t y) noexcept {
    const std::size_t nStride = DibStride(24, static_cast<std::uint32_t>(figures.nWidth));
    const auto nRow = static_cast<std::size_t>(figures.nHeight - 1 - y);
    return block.data() + sizeof(BITMAPINFOHEADER) + nRow * nStride + 3 * static_cast<std::size_t>(x);
}

}  // namespace width
