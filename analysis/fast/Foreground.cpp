// True colour is compared in scaled integers, and in doubles where these can't tell. Indices are compared where those inside
// follow each other, as with every grey table in order, and looked up where not.
// Tested by: tests/unit/analysis/SkeletonRunTest.cpp
#include "analysis/fast/Foreground.h"

#include <algorithm>
#include <cstring>

namespace width::fast {

namespace {

constexpr std::uint8_t kMaskInside = 255;
constexpr std::ptrdiff_t kCacheLine = 64;

bool IsInside(Colour colour, GreyWindow window) noexcept {
    const double grey = SkeletonGrey(colour);
    return static_cast<double>(window.nMinGrey) <= grey && grey <= static_cast<double>(window.nMaxGrey);
}

// The bits of each byte of a word in opposite order.
std::uint64_t ReverseBitsInBytes(std::uint64_t word) noexcept {
    word = ((word >> 1) & 0x5555555555555555) | ((word & 0x5555555555555555) << 1);
    word = ((word >> 2) & 0x3333333333333333) | ((word & 0x3333333333333333) << 2);
    return ((word >> 4) & 0x0F0F0F0F0F0F0F0F) | ((word & 0x0F0F0F0F0F0F0F0F) << 4);
}

// 299 R + 587 G + 114 B differs from 1000 times a limit by 1 or more wherever the two are not equal, far more than the
// doubles' error. Every grey is 0 or more, and 255 or less: these two limits hold nobody out.
ScaledWindow Scaled(GreyWindow window) noexcept {
    constexpr std::int32_t kScale = 1000;
    return {window.nMinGrey <= 0 ? -1 : kScale * window.nMinGrey,
            window.nMaxGrey >= 255 ? 255 * kScale + 1 : kScale * window.nMaxGrey};
}

}  // namespace

ForegroundReader::ForegroundReader(const DibView& dib, GreyWindow window, const RowPasses& passes) noexcept
    : m_dib(dib), m_passes(passes), m_window(window) {
    if (dib.BitCount() > 8) {
        m_scaled = Scaled(window);
        return;
    }
    std::ranges::transform(dib.Palette(), m_inside.begin(),
                           [&](Colour colour) -> std::uint8_t { return IsInside(colour, window) ? 1 : 0; });
    const auto end = m_inside.begin() + (std::ptrdiff_t{1} << dib.BitCount());
    const auto first = std::find(m_inside.begin(), end, 1);
    const auto behind = std::find(first, end, 0);
    m_bRange = first != end && std::find(behind, end, 1) == end;
    if (m_bRange) {
        m_range = {static_cast<std::uint8_t>(first - m_inside.begin()), static_cast<std::uint8_t>(behind - first - 1)};
    }
}

void ForegroundReader::Read(std::ptrdiff_t s, std::ptrdiff_t nRowsAhead, std::uint8_t* pScratch, std::uint8_t* pMask,
                            std::uint64_t* pBits) const noexcept {
    const std::uint8_t* pRow = m_dib.Row(static_cast<std::int32_t>(s)).data();
    const std::ptrdiff_t nAhead = nRowsAhead * static_cast<std::ptrdiff_t>(m_dib.Figures().nStride);
    switch (m_dib.BitCount()) {
        case 1:
            return ReadBits(pRow, nAhead, pMask, pBits);
        case 4:
            m_passes.unpackHalfBytes(pRow, m_dib.Width(), nAhead, pScratch);
            return ReadIndices(pScratch, 0, pScratch, pMask, pBits);
        case 8:
            return ReadIndices(pRow, nAhead, pScratch, pMask, pBits);
        default:
            return ReadTrueColour(pRow, nAhead, pScratch, pMask, pBits);
    }
}

void ForegroundReader::ReadIndices(const std::uint8_t* pIndices, std::ptrdiff_t nAhead, std::uint8_t* pScratch,
                                   std::uint8_t* pMask, std::uint64_t* pBits) const noexcept {
    if (m_bRange) {
        return m_passes.foregroundOfIndices(pIndices, m_dib.Width(), nAhead, m_range, pMask, pBits);
    }
    std::transform(pIndices, pIndices + m_dib.Width(), pScratch, [this](std::uint8_t nIndex) { return m_inside[nIndex]; });
    m_passes.foregroundOfIndices(pScratch, m_dib.Width(), 0, {1, 0}, pMask, pBits);
}

void ForegroundReader::ReadBits(const std::uint8_t* pRow, std::ptrdiff_t nAhead, std::uint8_t* pMask,
                                std::uint64_t* pBits) const noexcept {
    const std::ptrdiff_t nWidth = m_dib.Width();
    const std::ptrdiff_t nWords = WordsFor(nWidth);
    const std::uint64_t ones = m_inside[1] != 0 ? ~std::uint64_t{0} : 0;
    const std::uint64_t zeros = m_inside[0] != 0 ? ~std::uint64_t{0} : 0;
    const auto inside = [&](std::uint64_t pixels) { return (pixels & ones) | (~pixels & zeros); };
    const std::ptrdiff_t nFull = nWidth / kWordColumns;
    for (std::ptrdiff_t w = 0; w < nFull; ++w) {
        std::uint64_t pixels = 0;
        std::memcpy(&pixels, pRow + 8 * w, sizeof pixels);
        pBits[w] = inside(ReverseBitsInBytes(pixels));
    }
    for (std::ptrdiff_t i = 0; i < 8 * nFull; i += kCacheLine) {
        __builtin_prefetch(pRow + i + nAhead);
    }
    if (const std::ptrdiff_t nRest = nWidth - nFull * kWordColumns; nRest > 0) {
        std::uint64_t pixels = 0;
        std::memcpy(&pixels, pRow + 8 * nFull, static_cast<std::size_t>((nRest + 7) / 8));
        pBits[nFull] = inside(ReverseBitsInBytes(pixels)) & ((std::uint64_t{1} << nRest) - 1);
    }
    m_passes.expandBits(pBits, nWords * kWordColumns, kMaskInside, pMask);
}

void ForegroundReader::ReadTrueColour(const std::uint8_t* pRow, std::ptrdiff_t nAhead, std::uint8_t* pScratch,
                                      std::uint8_t* pMask, std::uint64_t* pBits) const noexcept {
    const std::ptrdiff_t nBytes = m_dib.BitCount() / 8;
    const std::ptrdiff_t nWidth = m_dib.Width();
    if (m_passes.judgeTrueColour(pRow, nBytes, nWidth, nAhead, m_scaled, pScratch)) {
        std::uint8_t* const pEnd = pScratch + nWidth;
        for (std::uint8_t* p = std::find(pScratch, pEnd, kPixelOnLimit); p != pEnd; p = std::find(p, pEnd, kPixelOnLimit)) {
            const std::uint8_t* pPixel = pRow + (p - pScratch) * nBytes;
            *p = IsInside({pPixel[2], pPixel[1], pPixel[0]}, m_window) ? kPixelInside : 0;
        }
    }
    m_passes.foregroundOfIndices(pScratch, nWidth, 0, {kPixelInside, 0}, pMask, pBits);
}

}  // namespace width::fast
