// Which instructions the fast passes may use. The choice is made at run time; every choice gives the same results.
// Tested by: tests/unit/analysis/FastSkeletonTest.cpp
#pragma once

#include "analysis/fast/RowPasses.h"

namespace width::fast {

enum class InstructionSet {
    Plain,  ///< whatever the compiler makes of the passes in analysis/SkeletonPasses.h
    Sse2,   ///< every 64-bit processor of this kind
    Avx2,
};

/// The best set that this processor has.
InstructionSet BestInstructionSet() noexcept;

/// The row passes of a set that this processor has, not of Plain.
const RowPasses& RowPassesFor(InstructionSet set) noexcept;

// Of one set each; for RowPassesFor.
const RowPasses* Sse2RowPasses() noexcept;
const RowPasses* Avx2RowPasses() noexcept;

}  // namespace width::fast
