// Hull corners are compared with the line in double precision. The numerator of a pixel's distance in single precision
// differs from the true one by less than m_error, so that much is added; the quotient is rounded up. Where no product in any
// numerator is rounded, the steps that are left, a sum, another one and a division, are monotone, and the bound is the largest
// distance itself: tops that are equally far are passed over once one of them is found.
// Tested by: tests/unit/analysis/LineSearchTest.cpp
#include "analysis/PathDistances.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>

#include "analysis/ConvexHull.h"

namespace width {

namespace {

constexpr double kRounding = 1.0 / (1 << 24);  // of a float, as a part of it
constexpr double kMostExact = 1 << 24;         // whole numbers up to this are floats

}  // namespace

PathDistances::PathDistances(const PathBoxes& boxes) : m_boxes(boxes) {
    m_x.reserve(boxes.Path().size());
    m_y.reserve(boxes.Path().size());
    for (const PathPoint& pt : boxes.Path()) {
        m_x.push_back(static_cast<float>(pt.x));
        m_y.push_back(static_cast<float>(pt.y));
    }
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

std::span<const PathPoint> PathDistances::Corners(PathBoxes::Node node) const noexcept {
    const Level& level = m_levels[node.nLevel];
    const std::size_t nFirst = node.nPlace == 0 ? 0 : level.ends[node.nPlace - 1];
    return std::span(level.corners).subspan(nFirst, level.ends[node.nPlace] - nFirst);
}

// The numerator is by + ax + c, of floats. The two products are each off by one rounding at most, and by one more where a
// coordinate does not fit a float; the first sum, which is the numerator less c, and the second one by one each. The two
// roundings of the numerator itself are left to the bound. A hundredth more is for the errors of those errors.
PathDistances::Bounds::Bounds(const PathDistances& distances, const PathLine& line) noexcept
    : m_distances(distances), m_line(line) {
    const PathBox& all = distances.m_boxes.Box(distances.m_boxes.Root());
    const double x = std::max(std::fabs(static_cast<double>(all.xLow)), std::fabs(static_cast<double>(all.xHigh)));
    const double y = std::max(std::fabs(static_cast<double>(all.yLow)), std::fabs(static_cast<double>(all.yHigh)));
    const double ax = std::fabs(line.A()) * x;
    const double by = std::fabs(line.B()) * y;
    const double fOfProduct = std::max(x, y) <= kMostExact ? 1.01 : 2.01;
    m_error = kRounding * (fOfProduct * (ax + by) + 1.01 * std::fabs(line.C()));
    // Products are multiples of the highest power of two that is a factor of a and b, and such multiples are floats up to 2^24
    // times that power. A coordinate that is no float makes its product too large, or has the factor 0.
    const std::int64_t nBits = static_cast<std::int64_t>(line.A()) | static_cast<std::int64_t>(line.B());
    m_bProductsExact = std::max(ax, by) <= kMostExact * static_cast<double>(nBits & -nBits);
}

float PathDistances::Bounds::LargestAtCorners(PathBoxes::Node node, double fSign) const noexcept {
    const double a = fSign * m_line.A();
    const double b = fSign * m_line.B();
    double fLargest = -std::numeric_limits<double>::infinity();
    for (const PathPoint& pt : m_distances.Corners(node)) {
        fLargest = std::max(fLargest, a * pt.x + b * pt.y);
    }
    if (m_bProductsExact) {
        // A sum of two such products is exact in double precision, so to round it is what a float addition does.
        return (static_cast<float>(fLargest) + static_cast<float>(fSign) * m_line.C()) / m_line.Length();
    }
    const double fNumerator = fLargest + fSign * m_line.C();
    const double fBound = (fNumerator + 2.01 * kRounding * std::fabs(fNumerator) + m_error) / m_line.Length();
    return static_cast<float>(fBound + 2.0 * kRounding * std::fabs(fBound));
}

float PathDistances::Bounds::Largest(PathBoxes::Node node) const noexcept {
    return std::min(m_line.LargestIn(m_distances.m_boxes.Box(node)), LargestAtCorners(node, +1.0));
}

float PathDistances::Bounds::Smallest(PathBoxes::Node node) const noexcept {
    return std::max(m_line.SmallestIn(m_distances.m_boxes.Box(node)), -LargestAtCorners(node, -1.0));
}

// Finds the first pixel of a range with the range's largest distance; it counts if that is larger than the largest so far, or as
// large and in front of it, which then lies behind the range. That distance is the largest numerator divided; since quotients
// are rounded, others with a numerator smaller by two roundings at most can have the same.
void PathDistances::TakeLargest(const PathLine& line, float fSign, PathBoxes::Range range,
                                PathBoxes::Largest& largest) const noexcept {
    using Floats = float __attribute__((vector_size(16)));
    constexpr std::size_t kFloats = 4;
    const float a = fSign * line.A();
    const float b = fSign * line.B();
    const float c = fSign * line.C();
    const auto numerator = [&](std::size_t i) { return m_y[i] * b + m_x[i] * a + c; };
    const auto load = [](const std::vector<float>& from, std::size_t i) {
        Floats v;
        std::memcpy(&v, from.data() + i, sizeof v);
        return v;
    };
    std::size_t i = range.nFirst;
    float fLargest = numerator(i);
    if (range.nLast - range.nFirst >= kFloats) {
        Floats four = load(m_y, i) * b + load(m_x, i) * a + c;
        for (i += kFloats; i + kFloats <= range.nLast + 1; i += kFloats) {
            const Floats next = load(m_y, i) * b + load(m_x, i) * a + c;
            four = next > four ? next : four;
        }
        fLargest = std::max({four[0], four[1], four[2], four[3]});
    }
    for (; i <= range.nLast; ++i) {
        fLargest = std::max(fLargest, numerator(i));
    }
    const float fDistance = fLargest / line.Length();
    if (fDistance < largest.fValue || (fDistance == largest.fValue && range.nFirst >= largest.nPosition)) {
        return;
    }
    const float fNearly = fLargest * (1.0F - 8.0F * static_cast<float>(kRounding));
    for (i = range.nFirst; numerator(i) < fNearly || numerator(i) / line.Length() != fDistance;) {
        ++i;
    }
    largest = {fDistance, i};
}

PathDistances::Extremes PathDistances::FindExtremes(const PathLine& line, PathBoxes::Range stretch) const {
    const Bounds bounds(*this, line);
    const auto above = [&](PathBoxes::Range range, PathBoxes::Largest& largest) { TakeLargest(line, +1.0F, range, largest); };
    const auto below = [&](PathBoxes::Range range, PathBoxes::Largest& largest) { TakeLargest(line, -1.0F, range, largest); };
    return {m_boxes.FindLargest(stretch, above, [&](PathBoxes::Node node) { return bounds.Largest(node); }),
            m_boxes.FindLargest(stretch, below, [&](PathBoxes::Node node) { return -bounds.Smallest(node); })};
}

bool PathDistances::AreWithin(float fMost, const PathLine& line, PathBoxes::Range stretch) const {
    const Bounds bounds(*this, line);
    return !m_boxes.FindFirst(
        stretch, [&](PathBoxes::Node node) { return bounds.Largest(node) > fMost || bounds.Smallest(node) < -fMost; },
        [&](const PathPoint& pt) { return std::fabs(line.Distance(pt.x, pt.y)) > fMost; });
}

}  // namespace width
