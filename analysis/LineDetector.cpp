// The search for the straight stretch round the seed, on one-sided hulls of the path.
//
// A chain is a list of positions in m_Path, always in rising order; a stretch is a part of m_Path
// without gaps. Positions are carried along and never looked for, except that a pixel that stands
// several times in the path counts as its first occurrence.
// Tested by: tests/unit/analysis/LineDetectorTest.cpp, LineSearchTest.cpp
#include "analysis/LineDetector.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <tuple>

#include "analysis/PathBoxes.h"
#include "analysis/PathDistances.h"
#include "analysis/PathLine.h"
#include "analysis/Pruning.h"
#include "analysis/StretchHull.h"

namespace width {

namespace {

constexpr float kSeedToEdge = 1.0F;    // pixels, inclusive
constexpr float kPixelToChord = 2.0F;  // pixels, inclusive
constexpr std::size_t kShortestStretch = 3;

// The first position of the path that holds the same pixel as this one.
std::int32_t FirstOccurrence(const PathBoxes& boxes, std::int32_t nPosition) {
    const PathPoint& pt = boxes.Path()[static_cast<std::size_t>(nPosition)];
    const auto first = boxes.FindFirst(
        {0, static_cast<std::size_t>(nPosition)}, [&](PathBoxes::Node node) { return boxes.Box(node).Holds(pt.x, pt.y); },
        [&](const PathPoint& other) { return other.x == pt.x && other.y == pt.y; });
    return first ? static_cast<std::int32_t>(*first) : nPosition;
}

// As LineDetector::IsChainStraight, for a stretch of the path.
bool IsStretchStraight(const PathDistances& distances, std::size_t nFirst, std::size_t nLast) {
    const std::span<const PathPoint> path = distances.Boxes().Path();
    const PathLine chord(path[nFirst], path[nLast]);
    if (nLast - nFirst + 1 < kShortestStretch) {
        return false;
    }
    if (!chord.IsLine()) {
        return true;  // from a pixel to itself: no distance is a number, so none is too large
    }
    return distances.AreWithin(kPixelToChord, chord, {nFirst + 1, nLast});
}

}  // namespace

std::int32_t LineDetector::PruneToHull(std::span<const PathPoint> path, std::vector<std::int32_t>& chain, std::int32_t nSide) {
    if (chain.size() < 2) {
        return 0;
    }
    const std::vector<std::int32_t> whole = std::move(chain);
    chain.clear();
    PruneOn(
        path, whole.size(), [&](std::size_t i) { return whole[i]; }, nSide, chain);
    return 1;
}

std::int32_t LineDetector::IsEdgeLongEnough(const PathPoint& p, const PathPoint& q) const noexcept {
    return EdgeLength(p, q) >= static_cast<float>(m_conditions.nMinLineLength) ? 1 : 0;
}

std::int32_t LineDetector::IsSeedNearEdge(const PathPoint& p, const PathPoint& q) const noexcept {
    return std::fabs(PathLine(p, q).Distance(m_ptSeed.x, m_ptSeed.y)) <= kSeedToEdge ? 1 : 0;
}

std::int32_t LineDetector::IsChainStraight(std::span<const PathPoint> stretch) {
    if (stretch.size() < kShortestStretch) {
        return 0;
    }
    const PathBoxes boxes(stretch, PathDistances::kLeafPixels);
    return IsStretchStraight(PathDistances(boxes), 0, stretch.size() - 1) ? 1 : 0;
}

// A ring is cut at the two pixels farthest apart; the arc with the seed stays, and the part of it
// that lay behind the ring's end moves in front of the seed with negative numbers.
void LineDetector::CutOpen() {
    std::int32_t i = 0;
    std::int32_t j = 0;
    FindFarthestPair(m_Path, i, j);
    std::vector<PathPoint> arc(m_Path.begin() + j, m_Path.end());
    auto nIndex = -static_cast<std::int32_t>(arc.size());
    for (PathPoint& pt : arc) {
        pt.nIndex = nIndex++;
    }
    arc.insert(arc.end(), m_Path.begin(), m_Path.begin() + i + 1);
    m_Path = std::move(arc);
}

std::int32_t LineDetector::AcceptEdge(std::int32_t p, std::int32_t q) noexcept {
    m_ptFirst = m_Path[static_cast<std::size_t>(p)];
    m_ptLast = m_Path[static_cast<std::size_t>(q)];
    m_nFitAxis = FitAxis::HullEdge;
    m_bFound = 1;
    return 1;
}

std::int32_t LineDetector::GiveUpOnHull(const PathDistances& distances) {
    return m_conditions.bRectAlgorithm != 0 ? TrimToStrip(distances) : 0;
}

std::int32_t LineDetector::SearchLine() {
    if (m_Path.empty()) {
        return 0;
    }
    if (m_bClosed != 0) {
        CutOpen();
    }
    const std::span<const PathPoint> path = m_Path;
    const PathBoxes boxes(path, PathDistances::kLeafPixels);
    const PathDistances distances(boxes);
    StretchHull hull(boxes, -path.front().nIndex);
    // What a trip does depends on the stretch and the side alone: one that comes again never ends.
    std::set<std::tuple<std::int32_t, std::int32_t, std::int32_t>> narrowed;
    const auto nTail = static_cast<std::int32_t>(path.size()) - 1;
    std::int32_t nFrom = 0;
    std::int32_t nTo = nTail;
    std::int32_t nHullSide = 1;
    while (nFrom < nTo) {
        const std::vector<std::int32_t>& corners = hull.Corners(nFrom, nTo, nHullSide);
        const auto index = [&](std::int32_t i) { return path[static_cast<std::size_t>(i)].nIndex; };
        const auto edge =
            std::ranges::adjacent_find(corners, [&](std::int32_t a, std::int32_t b) { return WrapMul(index(a), index(b)) < 0; });
        if (edge == corners.end()) {
            return 0;
        }
        const std::int32_t nP = edge[0];
        const std::int32_t nQ = edge[1];
        const PathPoint& ptP = path[static_cast<std::size_t>(nP)];
        const PathPoint& ptQ = path[static_cast<std::size_t>(nQ)];
        if (IsEdgeLongEnough(ptP, ptQ) == 0) {
            return GiveUpOnHull(distances);
        }
        nFrom = FirstOccurrence(boxes, nP);
        nTo = FirstOccurrence(boxes, nQ);
        if (nTo < nFrom) {
            nTo = nQ;  // a pixel that also stands before P counts where it is
        }
        if (IsSeedNearEdge(ptP, ptQ) != 0) {
            if (IsStretchStraight(distances, static_cast<std::size_t>(nFrom), static_cast<std::size_t>(nTo))) {
                return AcceptEdge(nP, nQ);
            }
            nTo = std::min(nTo + 1, nTail);
        }
        nHullSide = -nHullSide;
        if (!narrowed.emplace(nFrom, nTo, nHullSide).second) {
            return GiveUpOnHull(distances);
        }
    }
    return 0;
}

}  // namespace width
