// The row passes for every 64-bit processor of this kind.
// Tested by: tests/unit/analysis/FastSkeletonTest.cpp
#include "analysis/fast/InstructionSet.h"
#include "analysis/fast/RowPassesOf.h"

namespace width::fast {

const RowPasses* Sse2RowPasses() noexcept {
    return &RowPassesOf<Sse2>::kPasses;
}

}  // namespace width::fast
