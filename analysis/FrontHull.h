// One-sided hulls of the stretches of a path round one middle, from the corners of two hulls found once. Internal to the
// analysis.
//
// A stretch prunes to what its fronts prune to (PathFronts.h); and since they come in order along a heading, that is the
// corners of their true convex hull on the kept side, which are among those of the hulls from either end to the middle. Only
// what a stretch has before its first front and behind its last one is looked at pixel by pixel.
// Tested by: tests/unit/analysis/LineSearchTest.cpp (against the pruning of whole stretches)
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "analysis/PathBoxes.h"
#include "analysis/PathFronts.h"

namespace width {

class FrontHull {
public:
    /// boxes  of a path no turn of which wraps; must outlive the object
    /// nSide  +1 or -1, as for LineDetector::PruneToHull
    FrontHull(const PathBoxes& boxes, std::int32_t nSide) noexcept : m_boxes(boxes), m_path(boxes.Path()), m_nSide(nSide) {}

    /// Finds fronts from nFirst on, up to nLast if it can, with pockets as short as it can, and the hulls on both sides of the
    /// first front from nMiddle on. Looks at each pixel some dozen times at most. Throws std::bad_alloc.
    void Cover(std::int32_t nFirst, std::int32_t nLast, std::int32_t nMiddle);

    /// What LineDetector::PruneToHull leaves of the chain of all positions from nFirst to nLast.
    /// corners    gets them, in rising order
    /// nLookedAt  grows by how many pixels were looked at one by one
    /// returns    false, with corners of no use, where the stretch lies to one side of the middle, begins before what is covered,
    ///            or does not soon join in with the fronts. Throws std::bad_alloc.
    bool Corners(std::int32_t nFirst, std::int32_t nLast, std::vector<std::int32_t>& corners, std::int64_t& nLookedAt);

private:
    const PathPoint& At(std::int32_t i) const noexcept { return m_path[static_cast<std::size_t>(i)]; }

    std::vector<Heading> Headings(std::int32_t nFirst, std::int32_t nLast) const;
    void PointInwards(std::int32_t nMiddle);
    bool JoinsAt(std::size_t nFront, std::span<const std::int32_t> chain) const;

    const PathBoxes& m_boxes;
    std::span<const PathPoint> m_path;
    std::int32_t m_nSide;
    PathFronts m_fronts;
    // By their number among the fronts: from each the next corner on the way to the middle.
    std::vector<std::size_t> m_inwards;
    std::size_t m_nMiddle = 0;
    std::vector<std::int32_t> m_collected;
};

}  // namespace width
