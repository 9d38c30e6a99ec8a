// Which pixels of a row lie in the grey window.
// Tested by: tests/unit/analysis/SkeletonRunTest.cpp
#pragma once

#include <array>
#include <cstdint>

#include "analysis/Skeleton.h"
#include "analysis/fast/RowPasses.h"

namespace width::fast {

/// Works out once what the window means for the picture's depth. Several threads may read rows at a time.
class ForegroundReader {
public:
    /// dib  of a readable depth; it and the passes must outlive the reader
    ForegroundReader(const DibView& dib, GreyWindow window, const RowPasses& passes) noexcept;

    /// Foreground of block row s, as a mask and as bits.
    /// nRowsAhead  from this row to the one that may be read after it, 0 at the picture's edge
    /// pScratch    a strip to work on
    void Read(std::ptrdiff_t s, std::ptrdiff_t nRowsAhead, std::uint8_t* pScratch, std::uint8_t* pMask,
              std::uint64_t* pBits) const noexcept;

private:
    void ReadIndices(const std::uint8_t* pIndices, std::ptrdiff_t nAhead, std::uint8_t* pScratch, std::uint8_t* pMask,
                     std::uint64_t* pBits) const noexcept;
    void ReadBits(const std::uint8_t* pRow, std::ptrdiff_t nAhead, std::uint8_t* pMask, std::uint64_t* pBits) const noexcept;
    void ReadTrueColour(const std::uint8_t* pRow, std::ptrdiff_t nAhead, std::uint8_t* pScratch, std::uint8_t* pMask,
                        std::uint64_t* pBits) const noexcept;

    const DibView& m_dib;
    const RowPasses& m_passes;
    GreyWindow m_window;
    ScaledWindow m_scaled;
    std::array<std::uint8_t, 256> m_inside{};  // 1 for each index whose colour lies in the window
    bool m_bRange = false;                     // whether the indices inside are one range, or none
    IndexRange m_range;
};

}  // namespace width::fast
