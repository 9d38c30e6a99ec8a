// Indices are compared where those inside follow each other, as with every grey table in order, and looked up where not.
// Tested by: tests/unit/analysis/FastSkeletonTest.cpp
#include "analysis/fast/Foreground.h"

#include <algorithm>

namespace width::fast {

namespace {

constexpr std::uint8_t kInside = 255;

// The bits of eight pixels from their byte, whose highest bit is the first pixel.
InsideTable BitsByByte(const InsideTable& byIndex) noexcept {
    InsideTable bits{};
    for (std::size_t nByte = 0; nByte < 256; ++nByte) {
        std::uint32_t pixels = 0;
        for (std::size_t i = 0; i < 8; ++i) {
            pixels |= std::uint32_t{byIndex[(nByte >> (7 - i)) & 1]} << i;
        }
        bits[nByte] = static_cast<std::uint8_t>(pixels);
    }
    return bits;
}

}  // namespace

ForegroundReader::ForegroundReader(const DibView& dib, GreyWindow window, const RowPasses& passes) noexcept
    : m_dib(dib), m_passes(passes), m_window(window) {
    if (dib.BitCount() > 8) {
        return;
    }
    m_inside = InsideByIndex(dib, window);
    const auto end = m_inside.begin() + (std::ptrdiff_t{1} << dib.BitCount());
    const auto first = std::find(m_inside.begin(), end, 1);
    const auto behind = std::find(first, end, 0);
    m_bRange = first != end && std::find(behind, end, 1) == end;
    if (m_bRange) {
        m_nFirst = static_cast<std::uint8_t>(first - m_inside.begin());
        m_nSpan = static_cast<std::uint8_t>(behind - first - 1);
    }
    if (dib.BitCount() == 1) {
        m_inside = BitsByByte(m_inside);
    }
}

void ForegroundReader::Read(std::int32_t s, std::uint8_t* pScratch, std::uint8_t* pMask, std::uint64_t* pBits) const noexcept {
    const std::uint8_t* pRow = m_dib.Row(s).data();
    switch (m_dib.BitCount()) {
        case 1:
            return ReadBits(pRow, pMask, pBits);
        case 4:
            m_passes.unpackHalfBytes(pRow, m_dib.Width(), pScratch);
            return ReadIndices(pScratch, pScratch, pMask, pBits);
        case 8:
            return ReadIndices(pRow, pScratch, pMask, pBits);
        default:
            JudgeTrueColour(pRow, pScratch);
            return m_passes.foregroundOfIndices(pScratch, m_dib.Width(), kInside, 0, pMask, pBits);
    }
}

void ForegroundReader::ReadIndices(const std::uint8_t* pIndices, std::uint8_t* pScratch, std::uint8_t* pMask,
                                   std::uint64_t* pBits) const noexcept {
    if (m_bRange) {
        return m_passes.foregroundOfIndices(pIndices, m_dib.Width(), m_nFirst, m_nSpan, pMask, pBits);
    }
    std::transform(pIndices, pIndices + m_dib.Width(), pScratch, [this](std::uint8_t nIndex) { return m_inside[nIndex]; });
    m_passes.foregroundOfIndices(pScratch, m_dib.Width(), 1, 0, pMask, pBits);
}

void ForegroundReader::ReadBits(const std::uint8_t* pRow, std::uint8_t* pMask, std::uint64_t* pBits) const noexcept {
    const std::ptrdiff_t nWidth = m_dib.Width();
    const std::ptrdiff_t nWords = WordsFor(nWidth);
    for (std::ptrdiff_t w = 0; w < nWords; ++w) {
        const std::ptrdiff_t nColumns = std::min(nWidth - w * kWordColumns, kWordColumns);
        std::uint64_t word = 0;
        for (std::ptrdiff_t i = 0; 8 * i < nColumns; ++i) {
            word |= std::uint64_t{m_inside[pRow[8 * w + i]]} << (8 * i);
        }
        pBits[w] = nColumns < kWordColumns ? word & ((std::uint64_t{1} << nColumns) - 1) : word;
    }
    m_passes.expandBits(pBits, nWords * kWordColumns, kInside, pMask);
}

void ForegroundReader::JudgeTrueColour(const std::uint8_t* pRow, std::uint8_t* pVerdicts) const noexcept {
    const std::ptrdiff_t nBytes = m_dib.BitCount() / 8;
    for (std::ptrdiff_t x = 0; x < m_dib.Width(); ++x) {
        const std::uint8_t* pPixel = pRow + x * nBytes;
        pVerdicts[x] = IsInside({pPixel[2], pPixel[1], pPixel[0]}, m_window) ? kInside : 0;
    }
}

}  // namespace width::fast
