// One-sided hulls of many stretches of one path. Internal to the analysis.
//
// A search that narrows step by step asks for hundreds or thousands of them, each a little shorter than the one before it. A
// few stretches are pruned pixel by pixel; if there are more, what they have in common is found once (FrontHull).
// Tested by: tests/unit/analysis/LineSearchTest.cpp (against the pruning of whole stretches)
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "analysis/FrontHull.h"
#include "analysis/PathBoxes.h"

namespace width {

class StretchHull {
public:
    /// boxes    must outlive the object, and so must their path
    /// nMiddle  a position that most stretches hold
    StretchHull(const PathBoxes& boxes, std::int32_t nMiddle) noexcept;

    /// What LineDetector::PruneToHull leaves of the chain of all positions from nFirst to nLast, which are not the same.
    /// nSide    +1 or -1, as there
    /// returns  positions in rising order, good until the next call. Throws std::bad_alloc.
    const std::vector<std::int32_t>& Corners(std::int32_t nFirst, std::int32_t nLast, std::int32_t nSide);

    /// How many pixels all stretches so far had looked at, one by one; not what it took to find what they have in common.
    std::int64_t PixelsLookedAt() const noexcept { return m_nPixelsLookedAt; }

private:
    struct Side {
        FrontHull hull;
        std::int64_t nLookedAt = 0;  // pixels, one by one, since the hull was last made to cover a stretch
        std::int64_t nPatience = 8;  // how many times the pixels of a stretch are looked at before that
    };

    std::span<const PathPoint> m_path;
    std::int32_t m_nUsualMiddle;
    bool m_bTurnsFit;
    Side m_clockwise;
    Side m_anticlockwise;
    std::int64_t m_nPixelsLookedAt = 0;
    std::vector<std::int32_t> m_corners;
};

}  // namespace width
