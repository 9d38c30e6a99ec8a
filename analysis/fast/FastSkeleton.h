// The skeleton by vectors of bytes and words of bits, and by a second thread for large pictures.
// Tested by: tests/unit/analysis/FastSkeletonTest.cpp (against the literal version)
#pragma once

#include "analysis/Skeleton.h"
#include "analysis/fast/InstructionSet.h"

namespace width::fast {

/// As width::MakeSkeleton, with given means. Throws std::bad_alloc.
/// set       one that this processor has
/// nThreads  1 or 2; two that can't be had do as one
SkeletonMap MakeSkeleton(const DibView& dib, GreyWindow window, InstructionSet set, int nThreads);

/// Rows that each of two threads has to itself at least.
constexpr std::int32_t kFewestBandRows = 3;

/// For tests: the same by vectors and two threads that share the rows in a given way, not as they get there. Which way must not
/// matter.
/// dib         of a depth that can be read
/// set         not Plain
/// nLowerRows  that one thread does; from kFewestBandRows on, and as many must be left to the other
SkeletonMap MakeSkeletonInBands(const DibView& dib, GreyWindow window, InstructionSet set, std::int32_t nLowerRows);

/// How many threads a picture is worth on this machine.
int ThreadsFor(const DibView& dib) noexcept;

}  // namespace width::fast
