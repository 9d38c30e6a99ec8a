// Distance to the background, exactly as four one-sided passes give it, bytes that wrap included.
//
// A pass goes over the rows upwards or downwards and within a row to the left or to the right; each
// foreground cell becomes the smaller of the two neighbours it comes from, plus 1, in a byte: 255
// and 1 give 0. A pass only needs its own previous row, so the two passes of one vertical direction
// share a sweep with a row buffer each, and only the minimum of all four is kept as a map. (The
// minimum of the four is what the map holds even where one of them has wrapped to 0.) Two sweeps
// where bytes don't wrap would do with plain city-block passes; these are right either way.
// Tested by: tests/unit/analysis/FastSkeletonTest.cpp
#include <algorithm>
#include <cstring>
#include <vector>

#include "analysis/SkeletonPasses.h"

namespace width {

namespace {

constexpr std::uint64_t kAllOnes = 0x0101010101010101ULL;

std::uint64_t Load8(const std::uint8_t* p) noexcept {
    std::uint64_t word = 0;
    std::memcpy(&word, p, sizeof word);
    return word;
}

// First column from c on, below nEnd, whose cell is (not) 0; nEnd if there is none.
std::ptrdiff_t SkipBackground(const std::uint8_t* pMask, std::ptrdiff_t c, std::ptrdiff_t nEnd) noexcept {
    while (c + 8 <= nEnd && Load8(pMask + c) == 0) {
        c += 8;
    }
    while (c < nEnd && pMask[c] == 0) {
        ++c;
    }
    return c;
}

std::ptrdiff_t SkipForeground(const std::uint8_t* pMask, std::ptrdiff_t c, std::ptrdiff_t nEnd) noexcept {
    while (c + 8 <= nEnd && Load8(pMask + c) == kAllOnes) {
        c += 8;
    }
    while (c < nEnd && pMask[c] != 0) {
        ++c;
    }
    return c;
}

std::uint8_t Step(std::uint8_t a, std::uint8_t b) noexcept {
    return static_cast<std::uint8_t>(std::min(a, b) + 1);
}

// Rows of the two passes of one sweep: one goes to the right, one to the left.
class SweepRows {
public:
    explicit SweepRows(std::size_t nColumns) : m_cells(4 * nColumns), m_nColumns(nColumns) {}

    /// Moves on to the next row: what was current becomes the previous row, and the new one is empty.
    void Advance() noexcept {
        m_bOdd = !m_bOdd;
        std::fill_n(Right(), m_nColumns, std::uint8_t{0});
        std::fill_n(Left(), m_nColumns, std::uint8_t{0});
    }

    /// Both passes over the run of foreground cells [c0, c1) of the current row.
    void Run(std::ptrdiff_t c0, std::ptrdiff_t c1) noexcept {
        std::uint8_t* pRight = Right();
        std::uint8_t* pLeft = Left();
        const std::uint8_t* pRightBefore = Row(0, !m_bOdd);
        const std::uint8_t* pLeftBefore = Row(1, !m_bOdd);
        std::uint8_t right = 0;
        std::uint8_t left = 0;
        for (std::ptrdiff_t c = c0, d = c1 - 1; c < c1; ++c, --d) {
            right = Step(pRightBefore[c], right);
            left = Step(pLeftBefore[d], left);
            pRight[c] = right;
            pLeft[d] = left;
        }
    }

    std::uint8_t* Right() noexcept { return Row(0, m_bOdd); }
    std::uint8_t* Left() noexcept { return Row(1, m_bOdd); }

private:
    std::uint8_t* Row(std::size_t nPass, bool bOdd) noexcept {
        return m_cells.data() + (2 * nPass + (bOdd ? 1 : 0)) * m_nColumns;
    }

    std::vector<std::uint8_t> m_cells;
    std::size_t m_nColumns;
    bool m_bOdd = false;
};

// One row of a sweep. The first sweep stores the smaller of its two distances, the second one
// lowers what is there.
template <bool bFirstSweep>
void SweepRow(const std::uint8_t* pMask, std::ptrdiff_t nEnd, SweepRows& rows, std::uint8_t* pDistance) noexcept {
    rows.Advance();
    for (std::ptrdiff_t c = SkipBackground(pMask, SkeletonMap::kBorder, nEnd); c < nEnd; c = SkipBackground(pMask, c, nEnd)) {
        const std::ptrdiff_t c1 = SkipForeground(pMask, c, nEnd);
        rows.Run(c, c1);
        const std::uint8_t* pRight = rows.Right();
        const std::uint8_t* pLeft = rows.Left();
        for (std::ptrdiff_t i = c; i < c1; ++i) {
            const std::uint8_t smaller = std::min(pRight[i], pLeft[i]);
            pDistance[i] = bFirstSweep ? smaller : std::min(pDistance[i], smaller);
        }
        c = c1;
    }
}

}  // namespace

void MeasureDistance(const SkeletonMap& mask, SkeletonMap& distance) {
    const std::ptrdiff_t nEnd = mask.Width() + SkeletonMap::kBorder;
    const std::int32_t nLastRow = mask.Height() + 1;
    SweepRows upwards(static_cast<std::size_t>(mask.Columns()));
    for (std::int32_t r = SkeletonMap::kBorder; r <= nLastRow; ++r) {
        SweepRow<true>(mask.Row(r), nEnd, upwards, distance.Row(r));
    }
    SweepRows downwards(static_cast<std::size_t>(mask.Columns()));
    for (std::int32_t r = nLastRow; r >= SkeletonMap::kBorder; --r) {
        SweepRow<false>(mask.Row(r), nEnd, downwards, distance.Row(r));
    }
}

}  // namespace width
