// One-sided hulls of many stretches of one path. Internal to the analysis.
//
// A search that narrows step by step asks for hundreds or thousands of them, each a little shorter than the one before it.
// Where the path goes forward, that is, where all its steps lie within one half turn and none goes straight back on the one
// before it, the pruning gives the corners of the true convex hull from the stretch's head to its tail, on the kept side. Then
// the hulls on both sides of a pixel in the middle, found once, do for all stretches round it: a stretch's hull has its corners
// among theirs, and pruning those few gives the same as pruning all. Elsewhere the stretch is pruned pixel by pixel. Tested by:
// tests/unit/analysis/LineSearchTest.cpp (against the pruning of whole stretches)
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "analysis/LineDetector.h"

namespace width {

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
    void PruneStretch(std::int32_t nFirst, std::int32_t nLast, std::int32_t nSide);
    void Cover(std::int32_t nFirst, std::int32_t nLast);

    std::span<const PathPoint> m_path;
    std::vector<std::int32_t> m_forwardTo;  // how far the path goes forward from each position
    std::int32_t m_nSeed;
    // The hulls known: from each position between m_nFrom and m_nTo the next corner on the way to m_nMiddle, on both sides.
    std::array<std::vector<std::int32_t>, 2> m_inwards;
    std::int32_t m_nFrom = 0;
    std::int32_t m_nMiddle = 0;
    std::int32_t m_nTo = -1;
    std::vector<std::int32_t> m_chain;
};

/// Turn of the chain a, b, c, on 32 bits that wrap: positive where it goes to the side that nSide keeps.
std::int32_t Turn(const PathPoint& a, const PathPoint& b, const PathPoint& c, std::int32_t nSide) noexcept;

}  // namespace width
