// The line through two path pixels, in the single-precision arithmetic of the search. Internal to
// the analysis.
#pragma once

#include <cmath>

#include "analysis/LineDetector.h"
#include "analysis/PathBoxes.h"
#include "core/Arithmetic.h"

namespace width {

/// The infinite line through two pixels. Coefficients are formed in 32-bit integers that wrap, then
/// converted. Through one and the same pixel twice, every distance is not a number.
class PathLine {
public:
    PathLine(const PathPoint& f, const PathPoint& e) noexcept
        : m_a(static_cast<float>(WrapSub(f.y, e.y))),
          m_b(static_cast<float>(WrapSub(e.x, f.x))),
          m_c(static_cast<float>(WrapAdd(WrapMul(WrapSub(f.x, e.x), f.y), WrapMul(WrapSub(e.y, f.y), f.x)))),
          m_length(std::sqrt(m_b * m_b + m_a * m_a)) {}

    /// Signed distance of a pixel, in pixels.
    float Distance(std::int32_t x, std::int32_t y) const noexcept {
        return (static_cast<float>(y) * m_b + static_cast<float>(x) * m_a + m_c) / m_length;
    }

    /// Whether the line runs through two different pixels, so that distances are numbers.
    bool IsLine() const noexcept { return m_length > 0.0F; }

    /// Coefficients of the distance: (b * y + a * x + c) / length.
    float A() const noexcept { return m_a; }
    float B() const noexcept { return m_b; }
    float C() const noexcept { return m_c; }
    float Length() const noexcept { return m_length; }

    /// Bounds of the distances of all pixels in a box; those of two of its corners.
    float LargestIn(const PathBox& box) const noexcept {
        return Distance(m_a >= 0.0F ? box.xHigh : box.xLow, m_b >= 0.0F ? box.yHigh : box.yLow);
    }
    float SmallestIn(const PathBox& box) const noexcept {
        return Distance(m_a >= 0.0F ? box.xLow : box.xHigh, m_b >= 0.0F ? box.yLow : box.yHigh);
    }

private:
    float m_a;
    float m_b;
    float m_c;
    float m_length;
};

/// Distance of two pixels: the squared y difference is a 32-bit integer that wraps, the x difference
/// that of two floats.
inline float EdgeLength(const PathPoint& p, const PathPoint& q) noexcept {
    const float dx = static_cast<float>(q.x) - static_cast<float>(p.x);
    const std::int32_t dy = WrapSub(q.y, p.y);
    return std::sqrt(dx * dx + static_cast<float>(WrapMul(dy, dy)));
}

}  // namespace width
