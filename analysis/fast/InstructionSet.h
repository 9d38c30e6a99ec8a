// Which instructions the fast passes may use. The choice is made at run time; every choice gives the same results.
// Tested by: tests/unit/analysis/SkeletonRunTest.cpp
#pragma once

namespace width::fast {

enum class InstructionSet {
    Sse2,  ///< every 64-bit processor of this kind
    Avx2,
};

/// The best set that this processor has.
InstructionSet BestInstructionSet() noexcept;

}  // namespace width::fast
