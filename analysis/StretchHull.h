// One-sided hulls of many stretches of one path. Internal to the analysis.
//
// A search that narrows step by step asks for hundreds or thousands of them, each a little shorter than the one before it.
// Where the path goes forward, that is, where all its steps lie within one half turn and none goes straight back on the one
// before it, the pruning gives the corners of the true convex hull from the stretch's head to its tail, on the kept side. Then
// the hulls on both sides of a pixel in the middle, found once, do for all stretches round it: a stretch's hull has its corners
// among theirs, and pruning those few gives the same as pruning all. Elsewhere the stretch is pruned pixel by pixel. Tested by:
// tests/unit/analysis/LineSearchTest.cpp (against the pruning of whole stretches)
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "analysis/LineDetector.h"
#include "core/Arithmetic.h"

namespace width {

/// Turn of the chain a, b, c, on 32 bits that wrap: positive where it goes to the side that nSide keeps.
inline std::int32_t Turn(const PathPoint& a, const PathPoint& b, const PathPoint& c, std::int32_t nSide) noexcept {
    return WrapMul(WrapSub(WrapMul(WrapSub(b.y, a.y), WrapSub(c.x, b.x)), WrapMul(WrapSub(b.x, a.x), WrapSub(c.y, b.y))), nSide);
}

/// The pruning itself, as LineDetector::PruneToHull says it.
/// position  the chain's positions in the path by their number, from 0 to nPositions - 1, two or more
/// kept      gets those that stay; must not be what position reads. Throws std::bad_alloc.
template <class PositionAt>
void PruneInto(std::span<const PathPoint> path, std::size_t nPositions, PositionAt position, std::int32_t nSide,
               std::vector<std::int32_t>& kept) {
    const auto at = [path](std::int32_t i) -> const PathPoint& { return path[static_cast<std::size_t>(i)]; };
    kept.resize(nPositions);
    kept[0] = position(0);
    kept[1] = position(1);
    // The last two kept are a and b. Only the pixel behind the head has no a to fall back to, and then c takes its place.
    std::size_t nKept = 2;
    PathPoint a = at(kept[0]);
    PathPoint b = at(kept[1]);
    for (std::size_t i = 2; i < nPositions; ++i) {
        const std::int32_t nPosition = position(i);
        const PathPoint& c = at(nPosition);
        while (nKept >= 2 && Turn(a, b, c, nSide) <= 0) {
            --nKept;
            b = a;
            a = at(kept[std::max<std::size_t>(nKept, 2) - 2]);
        }
        kept[nKept++] = nPosition;
        a = b;
        b = c;
    }
    kept.resize(nKept);
}

class StretchHull {
public:
    /// path     not empty; must outlive the object
    /// nMiddle  a position that most stretches hold
    /// Throws std::bad_alloc.
    StretchHull(std::span<const PathPoint> path, std::int32_t nMiddle);

    /// What LineDetector::PruneToHull leaves of the chain of all positions from nFirst to nLast, which are not the same.
    /// nSide    +1 or -1, as there
    /// returns  positions in rising order, good until the next call. Throws std::bad_alloc.
    const std::vector<std::int32_t>& Corners(std::int32_t nFirst, std::int32_t nLast, std::int32_t nSide);

private:
    bool Covers(std::int32_t nFirst, std::int32_t nLast) const noexcept {
        return nFirst >= m_nFrom && nFirst < m_nMiddle && nLast > m_nMiddle && nLast <= m_nTo;
    }
    void CollectCorners(std::int32_t nFirst, std::int32_t nLast, std::int32_t nSide);
    void Cover(std::int32_t nFirst, std::int32_t nLast);

    std::span<const PathPoint> m_path;
    std::vector<std::int32_t> m_forwardTo;  // how far the path goes forward from each position
    std::int32_t m_nUsualMiddle;
    // The hulls known: from each position between m_nFrom and m_nTo the next corner on the way to m_nMiddle, on both sides.
    std::array<std::vector<std::int32_t>, 2> m_inwards;
    std::int32_t m_nFrom = 0;
    std::int32_t m_nMiddle = 0;
    std::int32_t m_nTo = -1;
    std::vector<std::int32_t> m_collected;
    std::vector<std::int32_t> m_corners;
};

}  // namespace width
