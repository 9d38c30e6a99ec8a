// Block reduction: thins what the ridge rules left two cells thick.
//
// Two scans, then both once more. The first clears every 2 x 2 block down to its first cell and
// remembers where; the second goes through those places in the same order and gives back the cells
// that join a neighbour. Both work in place, so each test sees what earlier cells of the same scan
// have changed: the order is part of the result.
// Tested by: tests/unit/analysis/FastSkeletonTest.cpp
#include <cstring>
#include <vector>

#include "analysis/SkeletonPasses.h"

namespace width {

namespace {

std::uint64_t Load8(const std::uint8_t* p) noexcept {
    std::uint64_t word = 0;
    std::memcpy(&word, p, sizeof word);
    return word;
}

// Whether a block may begin in one of eight cells. Cells only ever go from 1 to 0 in the first
// scan, so a no stays a no while the scan passes over them.
bool MayHoldBlock(const std::uint8_t* pRow, const std::uint8_t* pNext) noexcept {
    return (Load8(pRow) & Load8(pRow + 1) & Load8(pNext) & Load8(pNext + 1)) != 0;
}

void ClearBlockAt(std::uint8_t* pCell, std::ptrdiff_t nPitch, std::vector<std::uint8_t*>& cleared) {
    std::uint8_t* pNext = pCell + nPitch;
    if (pCell[0] != 0 && pCell[1] != 0 && pNext[0] != 0 && pNext[1] != 0) {
        cleared.push_back(pCell);
        pNext[1] = pNext[0] = pCell[1] = 0;
    }
}

void ClearBlocks(SkeletonMap& ridge, std::vector<std::uint8_t*>& cleared) {
    const std::ptrdiff_t nPitch = ridge.Columns();
    const std::int32_t nLast = ridge.Width();  // the last column and row in which a block can begin
    for (std::int32_t r = SkeletonMap::kBorder; r <= ridge.Height(); ++r) {
        std::uint8_t* pRow = ridge.Row(r);
        std::int32_t c = SkeletonMap::kBorder;
        for (; c + 7 <= nLast; c += 8) {
            if (MayHoldBlock(pRow + c, pRow + c + nPitch)) {
                for (std::int32_t i = 0; i < 8; ++i) {
                    ClearBlockAt(pRow + c + i, nPitch, cleared);
                }
            }
        }
        for (; c <= nLast; ++c) {
            ClearBlockAt(pRow + c, nPitch, cleared);
        }
    }
}

void GiveBack(std::uint8_t* pCell, std::ptrdiff_t nPitch) noexcept {
    std::uint8_t* pNext = pCell + nPitch;
    const std::uint8_t* pNext2 = pNext + nPitch;
    const std::uint8_t* pBefore = pCell - nPitch;
    if (pNext[2] != 0 || pNext2[2] != 0 || pNext2[1] != 0) {
        pNext[1] = 1;
    }
    if (pNext2[0] != 0 || pNext2[-1] != 0) {
        pNext[0] = 1;
    }
    if (pBefore[2] != 0 || pCell[2] != 0) {
        pCell[1] = 1;
    }
}

}  // namespace

void ReduceBlocks(SkeletonMap& ridge) {
    std::vector<std::uint8_t*> cleared;
    for (int nPass = 0; nPass < 2; ++nPass) {
        cleared.clear();
        ClearBlocks(ridge, cleared);
        for (std::uint8_t* pCell : cleared) {
            GiveBack(pCell, ridge.Columns());
        }
    }
}

}  // namespace width
