// Convex hulls of pixels, in exact integers. Internal to the analysis.
// Tested by: tests/unit/analysis/LineSearchTest.cpp
#pragma once

#include <vector>

#include "analysis/LineDetector.h"

namespace width {

/// The order in which KeepHullCorners wants pixels and leaves them: by x, and by y where x is the same.
inline bool IsLeftOf(const PathPoint& p, const PathPoint& q) noexcept {
    return p.x != q.x ? p.x < q.x : p.y < q.y;
}

/// Removes all pixels but the corners of their convex hull. A corner that stands several times in the list stays once or
/// twice. No two coordinates are more than 2^30 apart. Throws std::bad_alloc.
void KeepHullCorners(std::vector<PathPoint>& sorted);

}  // namespace width
