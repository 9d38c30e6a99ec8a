// The skeleton with given means, for those who compare them: tests and benchmarks. analysis/Skeleton.cpp has it.
// Tested by: tests/unit/analysis/SkeletonRunTest.cpp (against the literal version)
#pragma once

#include "analysis/Skeleton.h"
#include "analysis/fast/InstructionSet.h"

namespace width::fast {

/// How two threads share a picture's rows: so many at its lower edge are left to one of them, and so many at its upper edge to
/// the other; those between go to whichever comes first.
struct Bands {
    static constexpr std::int32_t kFewestRows = 3;  ///< of a band, but that one of two may have none: then there is one thread

    std::int32_t nLowerRows = 0;
    std::int32_t nUpperRows = 0;
};

/// The bands of one or two threads, which is what nThreads may be; a picture too low for two has one.
Bands BandsFor(const DibView& dib, int nThreads) noexcept;

/// How many threads a picture is worth on this machine.
int ThreadsFor(const DibView& dib) noexcept;

/// As width::MakeSkeleton; the result is the same with any means. Throws std::bad_alloc.
/// set    one that this processor has
/// bands  no more rows than the picture has, and all of them where there is one band. Without a second thread, as with it.
SkeletonMap MakeSkeleton(const DibView& dib, GreyWindow window, InstructionSet set, Bands bands);

}  // namespace width::fast
