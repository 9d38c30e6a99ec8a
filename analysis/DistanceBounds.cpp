// Hull corners are compared with the line in double precision. The numerator of a pixel's distance in single precision
// differs from the true one by less than m_error, so that much is added; the quotient is rounded up.
// Tested by: tests/unit/analysis/LineSearchTest.cpp
#include "analysis/DistanceBounds.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "analysis/ConvexHull.h"

namespace width {

namespace {

constexpr double kRounding = 1.0 / (1 << 24);  // of a float, as a part of it

}  // namespace

DistanceBounds::DistanceBounds(const PathBoxes& boxes) : m_boxes(boxes) {
    std::vector<PathPoint> pixels;
    for (std::size_t nLevel = 0; nLevel <= boxes.Root().nLevel; ++nLevel) {
        Level level;
        for (std::size_t nPlace = 0; nPlace < boxes.Count(nLevel); ++nPlace) {
            const PathBoxes::Node node{nLevel, nPlace};
            pixels.clear();
            if (nLevel == 0) {
                const PathBoxes::Range range = boxes.Pixels(node);
                pixels.assign(&boxes.Path()[range.nFirst], &boxes.Path()[range.nLast] + 1);
                std::ranges::sort(pixels, IsLeftOf);
            } else {
                const std::optional<PathBoxes::Node> upper = boxes.Upper(node);
                std::ranges::merge(Corners(PathBoxes::Lower(node)), upper ? Corners(*upper) : std::span<const PathPoint>(),
                                   std::back_inserter(pixels), IsLeftOf);
            }
            KeepHullCorners(pixels);
            level.corners.insert(level.corners.end(), pixels.begin(), pixels.end());
            level.ends.push_back(level.corners.size());
        }
        m_levels.push_back(std::move(level));
    }
}

std::span<const PathPoint> DistanceBounds::Corners(PathBoxes::Node node) const noexcept {
    const Level& level = m_levels[node.nLevel];
    const std::size_t nFirst = node.nPlace == 0 ? 0 : level.ends[node.nPlace - 1];
    return std::span(level.corners).subspan(nFirst, level.ends[node.nPlace] - nFirst);
}

// The numerator is by + ax + c, of floats. The two products are each off by one rounding at most, and by one more where a
// coordinate does not fit a float; the first sum, which is the numerator less c, and the second one by one each. The two
// roundings of the numerator itself are left to the bound. A hundredth more is for the errors of those errors.
DistanceBounds::Of::Of(const DistanceBounds& bounds, const PathLine& line) noexcept : m_bounds(bounds), m_line(line) {
    const PathBox& all = bounds.m_boxes.Box(bounds.m_boxes.Root());
    const double x = std::max(std::fabs(static_cast<double>(all.xLow)), std::fabs(static_cast<double>(all.xHigh)));
    const double y = std::max(std::fabs(static_cast<double>(all.yLow)), std::fabs(static_cast<double>(all.yHigh)));
    const double fOfProduct = std::max(x, y) <= 1.0 / kRounding ? 1.01 : 2.01;
    m_error = kRounding * (fOfProduct * (std::fabs(line.A()) * x + std::fabs(line.B()) * y) + 1.01 * std::fabs(line.C()));
}

float DistanceBounds::Of::LargestAtCorners(PathBoxes::Node node, double fSign) const noexcept {
    const double a = fSign * m_line.A();
    const double b = fSign * m_line.B();
    double fLargest = -std::numeric_limits<double>::infinity();
    for (const PathPoint& pt : m_bounds.Corners(node)) {
        fLargest = std::max(fLargest, a * pt.x + b * pt.y);
    }
    const double fNumerator = fLargest + fSign * m_line.C();
    const double fBound = (fNumerator + 2.01 * kRounding * std::fabs(fNumerator) + m_error) / m_line.Length();
    return static_cast<float>(fBound + 2.0 * kRounding * std::fabs(fBound));
}

float DistanceBounds::Of::Largest(PathBoxes::Node node) const noexcept {
    return std::min(m_line.LargestIn(m_bounds.m_boxes.Box(node)), LargestAtCorners(node, +1.0));
}

float DistanceBounds::Of::Smallest(PathBoxes::Node node) const noexcept {
    return std::max(m_line.SmallestIn(m_bounds.m_boxes.Box(node)), -LargestAtCorners(node, -1.0));
}

}  // namespace width
