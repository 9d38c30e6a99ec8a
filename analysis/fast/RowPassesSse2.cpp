// The row passes for every 64-bit processor of this kind.
// Tested by: tests/unit/analysis/SkeletonRunTest.cpp
#include "analysis/fast/GreyRows.h"
#include "analysis/fast/GreyRowsOf.h"
#include "analysis/fast/RowPassesOf.h"

namespace width::fast {

const RowPasses* Sse2RowPasses() noexcept {
    return &RowPassesOf<Sse2>::kPasses;
}

void GreyLevelsSse2(const std::uint8_t* pPixels, std::ptrdiff_t nBytes, std::ptrdiff_t nCount, std::uint8_t* pLevels) noexcept {
    GreyRowsOf<Sse2>::Run(pPixels, nBytes, nCount, pLevels);
}

}  // namespace width::fast
