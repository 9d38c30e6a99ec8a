// The search for the straight line on a path, step by step as its rules say it: every list copied, every pair of pixels
// compared, every pixel of a stretch looked at. What the search in analysis/ gives must be the same.
#pragma once

#include <vector>

#include "analysis/LineDetector.h"

namespace width::test {

struct LiteralLine {
    bool bFound = false;
    PathPoint first;
    PathPoint last;
    FitAxis axis = FitAxis::HullEdge;
    int nTrips = 0;  ///< narrowing trips and trims that it took; not part of the result

    friend bool operator==(const LiteralLine& a, const LiteralLine& b) noexcept {
        return a.bFound == b.bFound && (!a.bFound || (a.first == b.first && a.last == b.last && a.axis == b.axis));
    }
};

/// path  as LineDetector::TraceFromPoint leaves it; seed in path coordinates
LiteralLine LiteralSearch(std::vector<PathPoint> path, bool bClosed, POINT seed, const LineConditions& conditions);

/// What LineDetector::SearchLine makes of the path that it has traced.
LiteralLine FoundLine(LineDetector& detector);

/// Every pixel with every later one, a strictly greater distance winning. As LineDetector::FindFarthestPair.
std::int32_t LiteralFarthestPair(std::span<const PathPoint> path, std::int32_t& i, std::int32_t& j);

}  // namespace width::test
