// The row passes for processors with AVX2; compiled for those, and called on those only.
// Tested by: tests/unit/analysis/SkeletonRunTest.cpp
#include "analysis/fast/GreyRows.h"
#include "analysis/fast/GreyRowsOf.h"
#include "analysis/fast/RowPassesOf.h"

namespace width::fast {

const RowPasses* Avx2RowPasses() noexcept {
    return &RowPassesOf<Avx2>::kPasses;
}

void GreyLevelsAvx2(const std::uint8_t* pPixels, std::ptrdiff_t nBytes, std::ptrdiff_t nCount, std::uint8_t* pLevels) noexcept {
    GreyRowsOf<Avx2>::Run(pPixels, nBytes, nCount, pLevels);
}

}  // namespace width::fast
