// The pruning of a chain to its one-sided hull. Internal to the analysis.
// Tested by: tests/unit/analysis/LineSearchTest.cpp, LineDetectorTest.cpp
#pragma once

#include <algorithm>
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

/// Goes on with the pruning, as LineDetector::PruneToHull says it, behind the positions that it has kept so far.
/// position  the positions that follow by their number, from 0 to nPositions - 1
/// kept      changed in place; must not be what position reads. Throws std::bad_alloc.
template <class PositionAt>
void PruneOn(std::span<const PathPoint> path, std::size_t nPositions, PositionAt position, std::int32_t nSide,
             std::vector<std::int32_t>& kept) {
    const auto at = [path](std::int32_t i) -> const PathPoint& { return path[static_cast<std::size_t>(i)]; };
    std::size_t nKept = kept.size();
    std::size_t i = 0;
    kept.resize(nKept + nPositions);
    for (; nKept < 2 && i < nPositions; ++i) {
        kept[nKept++] = position(i);
    }
    if (nKept < 2) {
        return;
    }
    // The last two kept are a and b. Only the pixel behind the head has no a to fall back to, and then c takes its place.
    PathPoint a = at(kept[nKept - 2]);
    PathPoint b = at(kept[nKept - 1]);
    for (; i < nPositions; ++i) {
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

/// The same for all positions from nFirst to nLast; none where nFirst is behind nLast.
inline void PruneOn(std::span<const PathPoint> path, std::int32_t nFirst, std::int32_t nLast, std::int32_t nSide,
                    std::vector<std::int32_t>& kept) {
    PruneOn(
        path, static_cast<std::size_t>(std::max(nLast - nFirst + 1, 0)),
        [nFirst](std::size_t i) { return nFirst + static_cast<std::int32_t>(i); }, nSide, kept);
}

}  // namespace width
