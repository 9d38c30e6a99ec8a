// Where bytes wrap: a foreground cell whose smaller neighbour holds 255 becomes 0, and from then on counts like
// background for the cells behind it. So a pass is the distance to the nearest background or wrapped cell, and a wrapped
// cell arises where that distance would be 256. In a row the first cell that is about to wrap does; it lowers the 255
// cells behind it, so that the next one to wrap is the first candidate at 256 cells' distance or more.
//
// No pass wraps anywhere if no distance of the rows done from one edge to a row anywhere, by the pair that comes from
// that edge, is above 127, and the same holds from the other edge to there. For a distance of 256 needs a triangle of
// foreground, 256 cells along the row and down the column. A pair that comes to meet it has, 128 rows inside, 128 cells
// to go to its slope and 129 to its tip or base; if fewer than 129 of its rows lie on that pair's side, the triangle is
// still 128 cells wide on the other side, where the pass itself or its mirror shows as much.
// Tested by: tests/unit/analysis/SkeletonRunTest.cpp
#include "analysis/fast/HalfDistance.h"

#include <bit>
#include <utility>

namespace width::fast {

namespace {

constexpr std::ptrdiff_t kReach = 255;  // cells beside a wrapped one that it lowers
constexpr std::uint8_t kSureNotToWrap = 127;

// The first bit set at column c or behind it, or -1.
std::ptrdiff_t NextBit(const std::vector<std::uint64_t>& words, std::ptrdiff_t c) noexcept {
    const auto nWords = static_cast<std::ptrdiff_t>(words.size());
    for (std::ptrdiff_t w = c / kWordColumns; w < nWords; ++w) {
        const std::uint64_t word = words[static_cast<std::size_t>(w)] >> (c % kWordColumns);
        if (word != 0) {
            return c + std::countr_zero(word);
        }
        c = (w + 1) * kWordColumns;
    }
    return -1;
}

// The last bit set at column c or before it, or -1.
std::ptrdiff_t LastBit(const std::vector<std::uint64_t>& words, std::ptrdiff_t c) noexcept {
    while (c >= 0) {
        const std::uint64_t word = words[static_cast<std::size_t>(c / kWordColumns)] << (kWordColumns - 1 - c % kWordColumns);
        if (word != 0) {
            return c - std::countl_zero(word);
        }
        c = c / kWordColumns * kWordColumns - 1;
    }
    return -1;
}

}  // namespace

HalfDistance::HalfDistance(const RowPasses& passes, std::ptrdiff_t nWidth)
    : m_passes(passes),
      m_nWidth(nWidth),
      m_strips(4, nWidth),
      m_pair{m_strips.At(0), m_strips.At(1)},
      m_pRunsLeft(m_strips.At(2)),
      m_pRunsRight(m_strips.At(3)),
      m_wrapping(static_cast<std::size_t>(WordsFor(nWidth))) {}

void HalfDistance::Step(const std::uint8_t* pMask, const std::uint64_t* pBits, std::ptrdiff_t nAhead,
                        std::uint8_t* pHalf) noexcept {
    m_passes.measureRuns(pMask, pBits, WordsFor(m_nWidth), m_pRunsLeft, m_pRunsRight);
    if (m_bMayWrap) {
        StepWithWrap(pMask, nAhead, pHalf);
    } else {
        m_bMayWrap = m_passes.stepPasses(m_pair, {pMask, m_pRunsLeft, m_pRunsRight}, m_nWidth, nAhead, pHalf) > kSureNotToWrap;
    }
}

void HalfDistance::StepWithWrap(const std::uint8_t* pMask, std::ptrdiff_t nAhead, std::uint8_t* pHalf) noexcept {
    const std::ptrdiff_t nWords = WordsFor(m_nWidth);
    if (m_passes.lowerToRuns(m_pair.pFromLeft, m_pRunsLeft, -1, pMask, nWords, m_wrapping.data())) {
        for (std::ptrdiff_t c = NextBit(m_wrapping, 0); c >= 0; c = NextBit(m_wrapping, c + kReach + 1)) {
            m_passes.lowerRight(m_pair.pFromLeft + c);
        }
    }
    if (m_passes.lowerToRuns(m_pair.pFromRight, m_pRunsRight, +1, pMask, nWords, m_wrapping.data())) {
        for (std::ptrdiff_t c = LastBit(m_wrapping, m_nWidth - 1); c >= 0; c = LastBit(m_wrapping, c - kReach - 1)) {
            m_passes.lowerLeft(m_pair.pFromRight + c);
        }
    }
    m_passes.addStep(m_pair, pMask, m_nWidth, nAhead, pHalf);
}

void HalfDistance::SwapWith(HalfDistance& other) noexcept {
    std::swap(m_strips, other.m_strips);  // the pointers into them move along
    std::swap(m_pair, other.m_pair);
    std::swap(m_pRunsLeft, other.m_pRunsLeft);
    std::swap(m_pRunsRight, other.m_pRunsRight);
    m_bMayWrap = other.m_bMayWrap = true;
}

void HalfDistance::Smaller(std::uint8_t* pOut) noexcept {
    m_passes.joinHalves(m_pair.pFromLeft, m_pair.pFromRight, m_nWidth, 0, pOut);
}

}  // namespace width::fast
