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

/// How many threads a picture is worth on this machine.
int ThreadsFor(const DibView& dib) noexcept;

}  // namespace width::fast
