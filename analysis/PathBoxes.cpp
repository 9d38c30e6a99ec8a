// Building the boxes of a path.
// Tested by: tests/unit/analysis/LineSearchTest.cpp
#include "analysis/PathBoxes.h"

namespace width {

namespace {

PathBox Joined(const PathBox& a, const PathBox& b) noexcept {
    return {std::min(a.xLow, b.xLow), std::max(a.xHigh, b.xHigh), std::min(a.yLow, b.yLow), std::max(a.yHigh, b.yHigh)};
}

PathBox Round(const PathPoint& pt) noexcept {
    return {pt.x, pt.x, pt.y, pt.y};
}

const PathBox& Round(const PathBox& box) noexcept {
    return box;
}

// Boxes round nTogether of the parts each; the last one may have fewer.
template <class Parts>
std::vector<PathBox> RoundEach(std::size_t nTogether, const Parts& parts) {
    std::vector<PathBox> boxes;
    boxes.reserve((parts.size() + nTogether - 1) / nTogether);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i % nTogether == 0) {
            boxes.push_back(Round(parts[i]));
        } else {
            boxes.back() = Joined(boxes.back(), Round(parts[i]));
        }
    }
    return boxes;
}

}  // namespace

PathBoxes::PathBoxes(std::span<const PathPoint> path, std::size_t nLeafPixels) : m_path(path), m_nLeafPixels(nLeafPixels) {
    m_levels.push_back(RoundEach(nLeafPixels, path));
    while (m_levels.back().size() > 1) {
        m_levels.push_back(RoundEach(2, m_levels.back()));
    }
}

}  // namespace width
