// The row passes for processors with AVX2; compiled for those, and called on those only.
// Tested by: tests/unit/analysis/FastSkeletonTest.cpp
#include "analysis/fast/InstructionSet.h"
#include "analysis/fast/RowPassesOf.h"

namespace width::fast {

const RowPasses* Avx2RowPasses() noexcept {
    return &RowPassesOf<Avx2>::kPasses;
}

}  // namespace width::fast
