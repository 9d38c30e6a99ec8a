// Pixels of a path that come in order along a heading, with pockets between them that don't matter to the pruning. Internal to
// the analysis.
// Tested by: tests/unit/analysis/LineSearchTest.cpp (through FrontHull)
#pragma once

#include <cstdint>
#include <vector>

#include "analysis/PathBoxes.h"

namespace width {

/// A direction, up to 2^30 in each coordinate.
struct Heading {
    std::int64_t x = 0;
    std::int64_t y = 0;

    std::int64_t Along(const PathPoint& pt) const noexcept { return x * pt.x + y * pt.y; }
    std::int64_t Across(const PathPoint& pt) const noexcept { return x * pt.y - y * pt.x; }
};

/// Each front lies further along the heading than the one before it; or level with it, and level ones follow each other in a
/// row that runs one way.
///
/// What stands between a front and the next one is a pocket. A pixel is blind at a front if, left right before it in a chain, it
/// could let the pocket behind the front take the front's place. The pruning of a chain that comes to a front and has no blind
/// pixel right before it then leaves the same as if it went straight to the next front.
struct PathFronts {
    Heading heading;
    std::vector<std::int32_t> positions;  ///< in the path, rising; one at least
    /// For each front the first position of a pixel that is blind at it or at a later front, and the largest number where there
    /// is none; no front is blind at a later one.
    std::vector<std::int32_t> firstBlind;
    std::int32_t nLongestPocket = 0;  ///< in pixels; what is left behind the last front counts as one
};

/// Fronts from nFirst on, up to nLast if it can be.
/// boxes  of a path no turn of which wraps
/// nSide  +1 or -1, as for LineDetector::PruneToHull
/// nFirst, nLast  positions in the path, the first not behind the last
/// Looks at some eight times as many pixels at most; each pocket asks the boxes once. Throws std::bad_alloc.
PathFronts FindFronts(const PathBoxes& boxes, std::int32_t nSide, const Heading& heading, std::int32_t nFirst,
                      std::int32_t nLast);

}  // namespace width
