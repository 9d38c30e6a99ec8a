// Asks the processor, once.
// Tested by: tests/unit/analysis/FastSkeletonTest.cpp
#include "analysis/fast/InstructionSet.h"

namespace width::fast {

namespace {

InstructionSet Ask() noexcept {
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx2") != 0) {
        return InstructionSet::Avx2;
    }
    return __builtin_cpu_supports("sse2") != 0 ? InstructionSet::Sse2 : InstructionSet::Plain;
}

}  // namespace

InstructionSet BestInstructionSet() noexcept {
    static const InstructionSet s_best = Ask();
    return s_best;
}

const RowPasses& RowPassesFor(InstructionSet set) noexcept {
    return set == InstructionSet::Avx2 ? *Avx2RowPasses() : *Sse2RowPasses();
}

}  // namespace width::fast
