// The two pixels of a ring that lie farthest apart, in the search's own arithmetic.
//
// The result is that of comparing every pixel with every later one by EdgeLength, a strictly
// greater distance winning. EdgeLength rounds, so the pair that is farthest in whole numbers is
// often not the one that wins. But it rounds little: a pair that reaches the largest rounded
// distance has a squared length of at least (1 - 2^-20) times the largest one. The largest squared
// length is found on the convex hull; only pixels with a hull corner at least that far away can be
// part of the winning pair, and the comparison runs over those few, in list order.
// The squared y difference wraps beyond 46,340 rows; for a ring taller than that the few are chosen
// the same way, so that the time stays bounded.
// Tested by: tests/unit/analysis/LineDetectorTest.cpp (against all pairs)
#include <algorithm>
#include <numeric>

#include "analysis/PathLine.h"

namespace width {

namespace {

std::int64_t SquaredLength(const PathPoint& p, const PathPoint& q) noexcept {
    const std::int64_t dx = std::int64_t{q.x} - p.x;
    const std::int64_t dy = std::int64_t{q.y} - p.y;
    return dx * dx + dy * dy;
}

bool TurnsLeft(const PathPoint& a, const PathPoint& b, const PathPoint& c) noexcept {
    return (std::int64_t{b.x} - a.x) * (std::int64_t{c.y} - a.y) - (std::int64_t{b.y} - a.y) * (std::int64_t{c.x} - a.x) > 0;
}

// Corners of the convex hull (Andrew's monotone chain: lower side, then upper side).
std::vector<PathPoint> HullCorners(std::span<const PathPoint> path) {
    std::vector<PathPoint> sorted(path.begin(), path.end());
    std::ranges::sort(sorted, [](const PathPoint& p, const PathPoint& q) { return p.x != q.x ? p.x < q.x : p.y < q.y; });
    std::vector<PathPoint> hull;
    const auto add = [&hull](const PathPoint& pt, std::size_t nFloor) {
        while (hull.size() >= nFloor + 2 && !TurnsLeft(hull[hull.size() - 2], hull.back(), pt)) {
            hull.pop_back();
        }
        hull.push_back(pt);
    };
    for (const PathPoint& pt : sorted) {
        add(pt, 0);
    }
    const std::size_t nUpper = hull.size() - 1;
    for (auto it = sorted.rbegin() + 1; it != sorted.rend(); ++it) {
        add(*it, nUpper);
    }
    return hull;
}

std::int64_t FarthestCorner(const PathPoint& pt, std::span<const PathPoint> corners) noexcept {
    std::int64_t nFarthest = 0;
    for (const PathPoint& corner : corners) {
        nFarthest = std::max(nFarthest, SquaredLength(pt, corner));
    }
    return nFarthest;
}

// Positions of the pixels that can be part of the winning pair, in list order.
std::vector<std::int32_t> Candidates(std::span<const PathPoint> path) {
    const std::vector<PathPoint> corners = HullCorners(path);
    std::vector<std::int64_t> farthest(path.size());
    std::ranges::transform(path, farthest.begin(), [&](const PathPoint& pt) { return FarthestCorner(pt, corners); });
    const std::int64_t nLargest = std::ranges::max(farthest);
    const std::int64_t nEnough = nLargest - (nLargest >> 20) - 1;
    std::vector<std::int32_t> candidates;
    for (std::size_t i = 0; i < path.size(); ++i) {
        if (farthest[i] >= nEnough) {
            candidates.push_back(static_cast<std::int32_t>(i));
        }
    }
    return candidates;
}

}  // namespace

std::int32_t LineDetector::FindFarthestPair(std::span<const PathPoint> path, std::int32_t& i, std::int32_t& j) {
    if (path.empty()) {
        return 0;
    }
    const std::vector<std::int32_t> candidates = Candidates(path);
    float fLargest = 0.0F;
    for (std::size_t a = 0; a < candidates.size(); ++a) {
        for (std::size_t b = a + 1; b < candidates.size(); ++b) {
            const float fLength =
                EdgeLength(path[static_cast<std::size_t>(candidates[a])], path[static_cast<std::size_t>(candidates[b])]);
            if (fLength > fLargest) {
                fLargest = fLength;
                i = candidates[a];
                j = candidates[b];
            }
        }
    }
    return 1;
}

}  // namespace width
