// Two of the four one-sided distance passes: those that go over the rows in one direction.
// Tested by: tests/unit/analysis/SkeletonRunTest.cpp
#pragma once

#include <cstdint>
#include <vector>

#include "analysis/fast/RowPasses.h"
#include "analysis/fast/Strips.h"

namespace width::fast {

/// State of the pass pair behind the row done last; before the first row, the border's.
class HalfDistance {
public:
    /// passes must outlive the object. Throws std::bad_alloc.
    HalfDistance(const RowPasses& passes, std::ptrdiff_t nWidth);

    /// Moves on by a row.
    /// pMask, pBits  its foreground
    /// nAhead        bytes from pHalf to that of the next row, whoever does it; 0 at the picture's edge
    /// pHalf         gets the smaller distance of the two passes, exactly one byte a pixel
    void Step(const std::uint8_t* pMask, const std::uint64_t* pBits, std::ptrdiff_t nAhead, std::uint8_t* pHalf) noexcept;

    /// Whether a distance was so large that some pass may wrap, if not here then in the rows that the opposite pair does.
    bool MayWrap() const noexcept { return m_bMayWrap; }

    /// Exchanges the state with that of another pair of the same width; both now allow for wraps.
    void SwapWith(HalfDistance& other) noexcept;

    /// The smaller distance of the two passes in the row done last, into a strip.
    void Smaller(std::uint8_t* pOut) noexcept;

private:
    void StepWithWrap(const std::uint8_t* pMask, std::ptrdiff_t nAhead, std::uint8_t* pHalf) noexcept;

    const RowPasses& m_passes;
    std::ptrdiff_t m_nWidth;
    Strips m_strips;
    PassPair m_pair;
    std::uint8_t* m_pRunsLeft;
    std::uint8_t* m_pRunsRight;
    std::vector<std::uint64_t> m_wrapping;
    bool m_bMayWrap = false;
};

}  // namespace width::fast
