// The checks of the door and the readers behind it. All sums are formed on 64 bits, from values of
// 32 bits at most, so that none of them can overflow before it is compared.
// Tested by: tests/unit/core/PackedDibTest.cpp
#include "core/PackedDib.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace width {

namespace {

constexpr std::uint64_t kMaxInt32 = std::numeric_limits<std::int32_t>::max();
constexpr std::uint64_t kColourBits = 24;  // every picture must be composable at this depth

DibFigures FiguresOf(const BITMAPINFOHEADER& header) noexcept {
    DibFigures figures;
    figures.nWidth = header.biWidth;
    figures.nHeight = header.biHeight;
    figures.nBitCount = header.biBitCount;
    figures.nXPelsPerMeter = header.biXPelsPerMeter;
    figures.nYPelsPerMeter = header.biYPelsPerMeter;
    figures.nColors = header.biClrUsed;
    if (header.biClrUsed == 0 && header.biBitCount < 32) {
        figures.nColors = 1U << header.biBitCount;
    }
    figures.nPalEntries = header.biBitCount <= 8 ? figures.nColors : 0;
    return figures;
}

bool FitsArithmetic(std::uint64_t nWidth, std::uint64_t nHeight, std::uint64_t nBitCount) noexcept {
    const std::uint64_t nBits = std::max(nBitCount, kColourBits);
    return nWidth * nHeight <= kMaxInt32 && nWidth * nBits + 31 <= kMaxInt32 && nHeight <= kMaxInt32 - 4;
}

}  // namespace

const char* DibStatusText(DibStatus status) noexcept {
    switch (status) {
        case DibStatus::Ok:
            return "the bitmap is usable";
        case DibStatus::TooShort:
            return "the bitmap is shorter than its header";
        case DibStatus::BadHeaderSize:
            return "the bitmap's header is not the 40-byte kind";
        case DibStatus::BadDepth:
            return "the bitmap has an impossible number of bits per pixel";
        case DibStatus::BadSize:
            return "the bitmap's width or height is not positive";
        case DibStatus::TooLarge:
            return "the bitmap is too large";
        case DibStatus::Truncated:
            return "the bitmap is shorter than its header promises";
    }
    return "the bitmap is not usable";
}

DibCheck CheckPackedDib(std::span<const std::byte> block) noexcept {
    if (block.size() < sizeof(BITMAPINFOHEADER)) {
        return {DibStatus::TooShort, {}};
    }
    BITMAPINFOHEADER header;
    std::memcpy(&header, block.data(), sizeof header);
    if (header.biSize != sizeof(BITMAPINFOHEADER)) {
        return {DibStatus::BadHeaderSize, {}};
    }
    if (header.biBitCount == 0 || header.biBitCount > 255) {
        return {DibStatus::BadDepth, {}};
    }
    if (header.biWidth <= 0 || header.biHeight <= 0) {
        return {DibStatus::BadSize, {}};
    }
    DibFigures figures = FiguresOf(header);
    const auto nWidth = static_cast<std::uint32_t>(figures.nWidth);
    const auto nHeight = static_cast<std::uint32_t>(figures.nHeight);
    if (!FitsArithmetic(nWidth, nHeight, figures.nBitCount)) {
        return {DibStatus::TooLarge, {}};
    }
    figures.nStride = DibStride(figures.nBitCount, nWidth);
    const std::uint64_t nOffset = sizeof(BITMAPINFOHEADER) + std::uint64_t{4} * figures.nPalEntries;
    const std::uint64_t nBytes = nOffset + std::uint64_t{figures.nStride} * nHeight;
    if (nBytes > block.size()) {
        return {DibStatus::Truncated, {}};
    }
    figures.nBitsOffset = static_cast<std::size_t>(nOffset);
    figures.nBytes = static_cast<std::size_t>(nBytes);
    return {DibStatus::Ok, figures};
}

std::optional<DibView> DibView::Open(std::span<const std::byte> block) noexcept {
    const DibCheck check = CheckPackedDib(block);
    if (check.status != DibStatus::Ok) {
        return std::nullopt;
    }
    return DibView(block.data(), check.figures);
}

std::array<Colour, 256> DibView::Palette() const noexcept {
    std::array<Colour, 256> colours{};
    const std::uint32_t nEntries = std::min<std::uint32_t>(m_figures.nPalEntries, 256);
    for (std::uint32_t i = 0; i < nEntries; ++i) {
        const std::uint8_t* pEntry = m_pTable + std::size_t{4} * i;
        colours[i] = {pEntry[2], pEntry[1], pEntry[0]};
    }
    return colours;
}

Colour DibView::PixelAt(std::int32_t x, std::int32_t nRow) const noexcept {
    const std::uint8_t* pRow = Row(nRow).data();
    const auto nX = static_cast<std::size_t>(x);
    switch (m_figures.nBitCount) {
        case 1:
            return Palette()[(pRow[nX / 8] >> (7 - nX % 8)) & 1];
        case 4:
            return Palette()[(pRow[nX / 2] >> (4 * (1 - nX % 2))) & 15];
        case 8:
            return Palette()[pRow[nX]];
        case 24:
            return {pRow[3 * nX + 2], pRow[3 * nX + 1], pRow[3 * nX]};
        case 32:
            return {pRow[4 * nX + 2], pRow[4 * nX + 1], pRow[4 * nX]};
        default:
            return {};
    }
}

}  // namespace width
