// The strip round the path and the least-squares line through what is left of it.
// Tested by: tests/unit/analysis/LineFitTest.cpp, LineSearchTest.cpp
#include <cmath>

#include "analysis/PathDistances.h"
#include "analysis/PathLine.h"

namespace width {

namespace {

// Single-precision sums of a fit of v on u, added pixel by pixel in list order: the rounding of
// each step is part of the result.
struct Sums {
    float n = 0.0F;
    float u = 0.0F;
    float v = 0.0F;
    float uu = 0.0F;
    float uv = 0.0F;

    void Add(std::int32_t nU, std::int32_t nV) noexcept {
        n += 1.0F;
        u += static_cast<float>(nU);
        v += static_cast<float>(nV);
        uu += static_cast<float>(WrapMul(nU, nU));
        uv += static_cast<float>(WrapMul(nU, nV));
    }
    float SlopeDenominator() const noexcept { return u * u - n * uu; }
    float Slope() const noexcept { return (v * u - uv * n) / SlopeDenominator(); }
    float Intercept() const noexcept { return (v * uu - uv * u) / (n * uu - u * u); }
};

Sums SumsOf(std::span<const PathPoint> chain, bool bSteep) noexcept {
    Sums sums;
    for (const PathPoint& pt : chain) {
        bSteep ? sums.Add(pt.y, pt.x) : sums.Add(pt.x, pt.y);
    }
    return sums;
}

// Moves the point (u, v) onto v = a * u + b along the perpendicular, both coordinates truncated.
void MoveOntoLine(float a, float b, std::int32_t& u, std::int32_t& v) noexcept {
    if (a == 0.0F) {
        v = TruncateToInt32(b);
        return;
    }
    const float m = -1.0F / a;
    const float k = static_cast<float>(v) - static_cast<float>(u) * m;
    u = TruncateToInt32((k - b) / (a - m));
    v = TruncateToInt32(-((a * k - b * m) / (m - a)));
}

}  // namespace

std::int32_t LineDetector::IsChordLongEnough(std::span<const PathPoint> chain) const noexcept {
    if (chain.empty()) {
        return 0;
    }
    const std::int32_t dx = WrapSub(chain.back().x, chain.front().x);
    const std::int32_t dy = WrapSub(chain.back().y, chain.front().y);
    const float fLength = std::sqrt(static_cast<float>(WrapAdd(WrapMul(dx, dx), WrapMul(dy, dy))));
    return fLength >= static_cast<float>(m_conditions.nMinLineLength) ? 1 : 0;
}

std::int32_t LineDetector::TrimToStrip() {
    if (m_Path.empty()) {
        return 0;
    }
    const PathBoxes boxes(m_Path, PathDistances::kLeafPixels);
    return TrimToStrip(PathDistances(boxes));
}

std::int32_t LineDetector::TrimToStrip(const PathDistances& distances) {
    PathBoxes::Range stretch{0, m_Path.size() - 1};
    for (;;) {
        const auto chain = std::span(m_Path).subspan(stretch.nFirst, stretch.nLast - stretch.nFirst + 1);
        if (IsChordLongEnough(chain) == 0) {
            return 0;
        }
        const PathLine chord(chain.front(), chain.back());
        PathDistances::Extremes extremes{{0.0F, stretch.nFirst}, {0.0F, stretch.nFirst}};
        if (chord.IsLine()) {
            extremes = distances.FindExtremes(chord, stretch);
        }
        const bool bFits = m_conditions.fRectWidth > std::fabs(extremes.above.fValue + extremes.below.fValue);
        const std::size_t nExtreme =
            extremes.above.fValue > extremes.below.fValue ? extremes.above.nPosition : extremes.below.nPosition;
        const bool bForward = m_Path[nExtreme].nIndex > 0;
        const PathBoxes::Range trimmed =
            bForward ? PathBoxes::Range{stretch.nFirst, nExtreme} : PathBoxes::Range{nExtreme, stretch.nLast};
        // A chain on its chord has nothing to trim, however narrow the strip has to be: it is as
        // straight as a chain can be, and that is a line.
        if (bFits || trimmed == stretch) {
            FitLeastSquares(chain);
            m_bFound = 1;
            return 1;
        }
        stretch = trimmed;
    }
}

std::int32_t LineDetector::FitLeastSquares(std::span<const PathPoint> chain) noexcept {
    m_ptFirst = chain.front();
    m_ptLast = chain.back();
    m_nFitAxis = FitAxis::YOnX;
    Sums sums = SumsOf(chain, false);
    if (sums.Slope() > 1.0F || sums.Slope() < -1.0F || sums.SlopeDenominator() == 0.0F) {
        sums = SumsOf(chain, true);
        m_nFitAxis = FitAxis::XOnY;
    }
    m_fSlope = sums.Slope();
    m_fIntercept = sums.Intercept();
    for (PathPoint* pt : {&m_ptFirst, &m_ptLast}) {
        if (m_nFitAxis == FitAxis::YOnX) {
            MoveOntoLine(m_fSlope, m_fIntercept, pt->x, pt->y);
        } else {
            MoveOntoLine(m_fSlope, m_fIntercept, pt->y, pt->x);
        }
    }
    return 1;
}

}  // namespace width
