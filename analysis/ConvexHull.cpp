// Andrew's monotone chain: the lower side, then the upper side.
// Tested by: tests/unit/analysis/LineSearchTest.cpp
#include "analysis/ConvexHull.h"

namespace width {

namespace {

// Positive where the chain a, b, c turns left.
std::int64_t LeftTurn(const PathPoint& a, const PathPoint& b, const PathPoint& c) noexcept {
    return (std::int64_t{b.x} - a.x) * (std::int64_t{c.y} - a.y) - (std::int64_t{b.y} - a.y) * (std::int64_t{c.x} - a.x);
}

// Positions of the corners of one side, from the first pixel to the last.
std::vector<std::size_t> SideCorners(const std::vector<PathPoint>& sorted, std::int64_t nTurn) {
    std::vector<std::size_t> side;
    for (std::size_t i = 0; i < sorted.size(); ++i) {
        while (side.size() >= 2 && nTurn * LeftTurn(sorted[side[side.size() - 2]], sorted[side.back()], sorted[i]) <= 0) {
            side.pop_back();
        }
        side.push_back(i);
    }
    return side;
}

}  // namespace

void KeepHullCorners(std::vector<PathPoint>& sorted) {
    std::vector<bool> isCorner(sorted.size());
    for (const std::int64_t nTurn : {+1, -1}) {
        for (const std::size_t i : SideCorners(sorted, nTurn)) {
            isCorner[i] = true;
        }
    }
    std::size_t nKept = 0;
    for (std::size_t i = 0; i < sorted.size(); ++i) {
        if (isCorner[i]) {
            sorted[nKept++] = sorted[i];
        }
    }
    sorted.resize(nKept);
}

}  // namespace width
