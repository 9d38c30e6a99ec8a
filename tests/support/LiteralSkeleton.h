// The skeleton as its rules say it, pass by pass and cell by cell, for comparison. Slow on purpose.
#pragma once

#include "analysis/Skeleton.h"

namespace width::test {

SkeletonMap LiteralSkeleton(const DibView& dib, GreyWindow window);

/// The distance map on the way there: what the four one-sided passes leave.
SkeletonMap LiteralDistance(const SkeletonMap& foreground);

/// The same from a foreground map of 0 and 1.
SkeletonMap LiteralSkeletonOfMap(const SkeletonMap& foreground);

}  // namespace width::test
