// The passes over one row that the skeleton is made of, for one instruction set. All rows but those of the picture
// itself are strips: Columns() bytes, a whole number of 64, with kStripMargin bytes on either side that can be read and
// written; columns beyond the picture's width, and the margins, are 0. Words of bits hold 64 columns, the first in bit 0.
// Tested by: tests/unit/analysis/SkeletonRunTest.cpp
#pragma once

#include <cstddef>
#include <cstdint>

#include "analysis/fast/InstructionSet.h"

namespace width::fast {

inline constexpr std::ptrdiff_t kWordColumns = 64;
inline constexpr std::ptrdiff_t kStripMargin = 320;  ///< a wrapped cell lowers up to 255 cells beside it

/// Words that hold one bit for each of nColumns columns.
constexpr std::ptrdiff_t WordsFor(std::ptrdiff_t nColumns) noexcept {
    return (nColumns + kWordColumns - 1) / kWordColumns;
}

/// The grey window for true colour: limits on 299 R + 587 G + 114 B, which is 1000 times the grey but for rounding. Black
/// lies on neither limit.
struct ScaledWindow {
    std::int32_t nLow = 0;
    std::int32_t nHigh = 0;
};

inline constexpr std::uint8_t kPixelInside = 255;
inline constexpr std::uint8_t kPixelOnLimit = 1;

/// State of the two passes of one vertical direction: strips of their distances in the row done last.
struct PassPair {
    std::uint8_t* pFromLeft = nullptr;
    std::uint8_t* pFromRight = nullptr;
};

/// What the two passes need of a row.
struct RowRuns {
    const std::uint8_t* pMask = nullptr;       ///< 255 for foreground
    const std::uint8_t* pRunsLeft = nullptr;   ///< foreground cells from here to the left, this one included; 255: or more
    const std::uint8_t* pRunsRight = nullptr;  ///< and to the right
};

/// Four rows of distances: the marks of the second one depend on them.
struct DistanceRows {
    const std::uint8_t* pBefore;
    const std::uint8_t* pHere;
    const std::uint8_t* pNext;
    const std::uint8_t* pNext2;
};

/// Indices from nFirst to nFirst + nSpan.
struct IndexRange {
    std::uint8_t nFirst = 0;
    std::uint8_t nSpan = 0;
};

/// nAhead, where a pass has it: bytes from a row that is not a strip to the one that comes after it, 0 if none does. Memory
/// that far ahead is asked for early, since rows that follow each other downwards are nothing that a processor expects.
struct RowPasses {
    /// Foreground of a row of indices: those in a range, as a mask and as bits.
    void (*foregroundOfIndices)(const std::uint8_t* pIndices, std::ptrdiff_t nWidth, std::ptrdiff_t nAhead,
                                const IndexRange& range, std::uint8_t* pMask, std::uint64_t* pBits) noexcept;

    /// Indices of a row of four bits a pixel, the higher half of a byte first.
    void (*unpackHalfBytes)(const std::uint8_t* pRow, std::ptrdiff_t nWidth, std::ptrdiff_t nAhead,
                            std::uint8_t* pIndices) noexcept;

    /// Where the pixels of a row of true colour lie: kPixelInside between the limits, 0 beyond them, kPixelOnLimit where only
    /// the comparison in doubles can tell.
    /// nBytes   of a pixel: 3 or 4
    /// returns  whether any pixel is on a limit
    bool (*judgeTrueColour)(const std::uint8_t* pRow, std::ptrdiff_t nBytes, std::ptrdiff_t nWidth, std::ptrdiff_t nAhead,
                            const ScaledWindow& window, std::uint8_t* pVerdicts) noexcept;

    /// Sets a byte to value for each bit that is set, and to 0 for the others.
    /// pOut  exactly nWidth bytes are written, so this need not be a strip
    void (*expandBits)(const std::uint64_t* pBits, std::ptrdiff_t nWidth, std::uint8_t value, std::uint8_t* pOut) noexcept;

    /// Lengths of the foreground runs that end in each cell from the left, and from the right.
    void (*measureRuns)(const std::uint8_t* pMask, const std::uint64_t* pBits, std::ptrdiff_t nWords, std::uint8_t* pRunsLeft,
                        std::uint8_t* pRunsRight) noexcept;

    /// Moves both passes on by a row in which no distance wraps; their smaller one goes to pHalf.
    /// pHalf    exactly nWidth bytes are written
    /// returns  the largest distance of either pass in the row
    std::uint8_t (*stepPasses)(const PassPair& passes, const RowRuns& row, std::ptrdiff_t nWidth, std::ptrdiff_t nAhead,
                               std::uint8_t* pHalf) noexcept;

    /// The first half of the same where distances may wrap: what a cell gets 1 added to, so that 255 is about to wrap.
    /// pDistance  one pass's state, changed in place
    /// nRunStart  -1 with the runs from the left, +1 with those from the right
    /// pWrapping  a bit for each foreground cell that has 255
    /// returns    whether any bit is set
    bool (*lowerToRuns)(std::uint8_t* pDistance, const std::uint8_t* pRuns, std::ptrdiff_t nRunStart, const std::uint8_t* pMask,
                        std::ptrdiff_t nWords, std::uint64_t* pWrapping) noexcept;

    /// Lowers the 255 cells to the right, or left, of one that wraps to 0, 1, 2 and so on, where they are not lower.
    void (*lowerRight)(std::uint8_t* pWrapped) noexcept;
    void (*lowerLeft)(std::uint8_t* pWrapped) noexcept;

    /// The second half: adds 1 and clears the background. Output as for stepPasses.
    void (*addStep)(const PassPair& passes, const std::uint8_t* pMask, std::ptrdiff_t nWidth, std::ptrdiff_t nAhead,
                    std::uint8_t* pHalf) noexcept;

    /// Distance of a row from its half distance and the distances of the row before: one step more than there, or less.
    void (*stepDistance)(const std::uint8_t* pBefore, const std::uint8_t* pHalf, std::ptrdiff_t nWidth, std::ptrdiff_t nAhead,
                         std::uint8_t* pOut) noexcept;

    /// The smaller of two half distances. pOut may be pOther.
    void (*joinHalves)(const std::uint8_t* pHalf, const std::uint8_t* pOther, std::ptrdiff_t nWidth, std::ptrdiff_t nAhead,
                       std::uint8_t* pOut) noexcept;

    /// Ridges and first crest cells of a row, and the first cells of its plateaus, as bits.
    /// pInner         bits of the columns in which a crest along the row may have its first cell
    /// bColumnCrests  whether crests down a column may have their first cell in this row
    void (*markRow)(const DistanceRows& rows, std::ptrdiff_t nWords, const std::uint64_t* pInner, bool bColumnCrests,
                    std::uint64_t* pRidge, std::uint64_t* pPlateau) noexcept;
};

/// The row passes of a set that this processor has.
const RowPasses& RowPassesFor(InstructionSet set) noexcept;

// Of one set each; for RowPassesFor.
const RowPasses* Sse2RowPasses() noexcept;
const RowPasses* Avx2RowPasses() noexcept;

}  // namespace width::fast
