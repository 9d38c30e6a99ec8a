// One-sided hulls of the stretches of a path round one middle, from the corners of two hulls found once. Internal to the
// analysis.
//
// Fronts are pixels that each lie further along one heading than the front before it. Between two of them may be a pocket:
// pixels of which the pruning has let go again by the time it comes to the next front, and none of which can have taken the
// place of the front before them. So a stretch prunes to what its fronts prune to; and since they come in order along the
// heading, that is the corners of their true convex hull on the kept side, which are among those of the hulls from either
// end to the middle. Only what a stretch has before its first front and behind its last one is looked at pixel by pixel.
// Tested by: tests/unit/analysis/LineSearchTest.cpp (against the pruning of whole stretches)
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "analysis/PathBoxes.h"

namespace width {

class FrontHull {
public:
    /// boxes  of a path no turn of which wraps; must outlive the object
    /// nSide  +1 or -1, as for LineDetector::PruneToHull
    FrontHull(const PathBoxes& boxes, std::int32_t nSide) noexcept : m_boxes(boxes), m_path(boxes.Path()), m_nSide(nSide) {}

    /// Finds fronts from nFirst on, up to nLast if it can, with pockets as short as it can, and the hulls on both sides of the
    /// front nearest to nMiddle. Looks at each pixel a few times. Throws std::bad_alloc.
    void Cover(std::int32_t nFirst, std::int32_t nLast, std::int32_t nMiddle);

    /// What LineDetector::PruneToHull leaves of the chain of all positions from nFirst to nLast.
    /// corners  gets them, in rising order
    /// returns  how many pixels had to be looked at one by one; nothing, with corners of no use, where the stretch lies to one
    ///          side of the middle, begins before what is covered, or begins out of order. Throws std::bad_alloc.
    std::optional<std::int32_t> Corners(std::int32_t nFirst, std::int32_t nLast, std::vector<std::int32_t>& corners);

private:
    struct Heading {
        std::int64_t x = 0;
        std::int64_t y = 0;

        std::int64_t Along(const PathPoint& pt) const noexcept { return x * pt.x + y * pt.y; }
        std::int64_t Across(const PathPoint& pt) const noexcept { return x * pt.y - y * pt.x; }
    };
    class Order;

    const PathPoint& At(std::int32_t i) const noexcept { return m_path[static_cast<std::size_t>(i)]; }

    std::vector<Heading> Headings(std::int32_t nFirst, std::int32_t nLast) const;
    std::int32_t FindFronts(const Heading& heading, std::int32_t nFirst, std::int32_t nLast);
    std::optional<std::int32_t> EndOfPocket(const Order& order, std::int32_t nFirst, std::int32_t nFront, std::int32_t nLast);
    bool AllSee(std::int32_t nFirst, std::int32_t nFront, std::int32_t nInside1, std::int32_t nInside2) const;
    void PointInwards(std::int32_t nMiddle);
    bool EndsAhead(std::span<const std::int32_t> chain) const noexcept;

    const PathBoxes& m_boxes;
    std::span<const PathPoint> m_path;
    std::int32_t m_nSide;
    Heading m_heading;
    std::vector<std::int32_t> m_fronts;  // their positions, rising
    // By their number among the fronts: from each the next corner on the way to the middle.
    std::vector<std::size_t> m_inwards;
    std::size_t m_nMiddle = 0;
    std::vector<std::int32_t> m_pocket;
    std::vector<std::int32_t> m_collected;
};

}  // namespace width
