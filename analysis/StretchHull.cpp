// Tested by: tests/unit/analysis/LineSearchTest.cpp
#include "analysis/StretchHull.h"

#include <algorithm>

#include "analysis/Pruning.h"

namespace width {

namespace {

// To cover a stretch is as dear as to prune it some dozen times, or more where the path has few fronts. So the hull is tried
// early, and if it has to be tried again, later and later.
constexpr std::int64_t kMostPatience = 128;

// Whether no turn of three of the pixels is beyond 32 bits: it is twice the area of a triangle, at most that of the box. Pictures
// have fewer than 2^31 pixels, so it is so for all paths in one.
bool TurnsFit(const PathBox& box) noexcept {
    return (std::int64_t{box.xHigh} - box.xLow) * (std::int64_t{box.yHigh} - box.yLow) < (std::int64_t{1} << 31);
}

}  // namespace

StretchHull::StretchHull(const PathBoxes& boxes, std::int32_t nMiddle) noexcept
    : m_path(boxes.Path()),
      m_nUsualMiddle(nMiddle),
      m_bTurnsFit(TurnsFit(boxes.Box(boxes.Root()))),
      m_clockwise{FrontHull(boxes, +1)},
      m_anticlockwise{FrontHull(boxes, -1)} {}

const std::vector<std::int32_t>& StretchHull::Corners(std::int32_t nFirst, std::int32_t nLast, std::int32_t nSide) {
    Side& side = nSide > 0 ? m_clockwise : m_anticlockwise;
    const std::int32_t nPixels = nLast - nFirst + 1;
    if (m_bTurnsFit && side.nLookedAt > side.nPatience * nPixels) {
        const bool bHoldsUsual = nFirst < m_nUsualMiddle && m_nUsualMiddle < nLast;
        side.hull.Cover(nFirst, nLast, bHoldsUsual ? m_nUsualMiddle : nFirst + (nLast - nFirst) / 2);
        side.nLookedAt = 0;
        side.nPatience = std::min(2 * side.nPatience, kMostPatience);
    }
    std::int64_t nLookedAt = 0;
    if (!side.hull.Corners(nFirst, nLast, m_corners, nLookedAt)) {
        m_corners.clear();
        PruneOn(m_path, nFirst, nLast, nSide, m_corners);
        nLookedAt += nPixels;
    }
    side.nLookedAt += nLookedAt;
    m_nPixelsLookedAt += nLookedAt;
    return m_corners;
}

}  // namespace width
