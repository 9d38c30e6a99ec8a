// Asks the processor, once.
// Tested by: tests/unit/analysis/SkeletonRunTest.cpp
#include "analysis/fast/InstructionSet.h"

#include "analysis/fast/RowPasses.h"

namespace width::fast {

namespace {

InstructionSet Ask() noexcept {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") != 0 ? InstructionSet::Avx2 : InstructionSet::Sse2;
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
