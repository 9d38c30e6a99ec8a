// Why forward stretches prune to their convex hull: seen along the direction that none of their steps goes against, each
// pixel lies ahead of those before it or level with them, and level pixels follow each other in a row that runs one way,
// since no step goes straight back. The scan then never meets a pixel behind its last corners, and keeps what every scan of
// sorted points keeps. A turn that wraps would spoil
// that, so the way is taken only where none can.
// Tested by: tests/unit/analysis/LineSearchTest.cpp
#include "analysis/StretchHull.h"

#include <algorithm>
#include <bit>

namespace width {

namespace {

constexpr int kDirections = 8;

// Direction of the step from p to q, anticlockwise from the right, or -1 for what is no step to a neighbour.
int DirectionOf(const PathPoint& p, const PathPoint& q) noexcept {
    constexpr std::array<std::int8_t, 9> kByStep = {5, 6, 7, 4, -1, 0, 3, 2, 1};
    const std::int64_t dx = std::int64_t{q.x} - p.x;
    const std::int64_t dy = std::int64_t{q.y} - p.y;
    return dx < -1 || dx > 1 || dy < -1 || dy > 1 ? -1 : kByStep[static_cast<std::size_t>(3 * (dy + 1) + dx + 1)];
}

// Whether some direction lies within a quarter turn of all those in a set of bits.
bool IsHalfTurn(unsigned set) noexcept {
    constexpr std::uint8_t kQuarterTurns = 0b11111;
    for (int d = 0; d < kDirections; ++d) {
        if ((set & ~unsigned{std::rotl(kQuarterTurns, d)}) == 0) {
            return true;
        }
    }
    return false;
}

// The steps of a stretch that grows at its tail and shrinks at its head.
class Steps {
public:
    /// Adds a step if the stretch still goes forward with it.
    bool Add(int nDirection) noexcept {
        const bool bBack = m_nSteps > 0 && (nDirection ^ 4) == m_nLast;
        if (nDirection < 0 || bBack || !IsHalfTurn(m_set | (1U << nDirection))) {
            return false;
        }
        m_set |= 1U << nDirection;
        ++m_counts[static_cast<std::size_t>(nDirection)];
        ++m_nSteps;
        m_nLast = nDirection;
        return true;
    }
    void RemoveFirst(int nDirection) noexcept {
        --m_nSteps;
        if (--m_counts[static_cast<std::size_t>(nDirection)] == 0) {
            m_set &= ~(1U << nDirection);
        }
    }

private:
    std::array<std::int32_t, kDirections> m_counts{};
    unsigned m_set = 0;
    int m_nLast = 0;
    std::int32_t m_nSteps = 0;
};

// For each position the last one to which the path goes forward from there.
std::vector<std::int32_t> ForwardTo(std::span<const PathPoint> path) {
    std::vector<std::int32_t> forwardTo(path.size());
    Steps steps;
    std::size_t nEnd = 0;
    for (std::size_t i = 0; i < path.size(); ++i) {
        nEnd = std::max(nEnd, i);
        while (nEnd + 1 < path.size() && steps.Add(DirectionOf(path[nEnd], path[nEnd + 1]))) {
            ++nEnd;
        }
        forwardTo[i] = static_cast<std::int32_t>(nEnd);
        if (nEnd > i) {
            steps.RemoveFirst(DirectionOf(path[i], path[i + 1]));
        }
    }
    return forwardTo;
}

// Whether no turn of three of the pixels is beyond 32 bits: each of its products is at most width times height.
bool TurnsFit(std::span<const PathPoint> path) noexcept {
    const auto [left, right] = std::ranges::minmax_element(path, {}, &PathPoint::x);
    const auto [bottom, top] = std::ranges::minmax_element(path, {}, &PathPoint::y);
    return (std::int64_t{right->x} - left->x) * (std::int64_t{top->y} - bottom->y) < (std::int64_t{1} << 30);
}

}  // namespace

StretchHull::StretchHull(std::span<const PathPoint> path, std::int32_t nMiddle) : m_path(path), m_nUsualMiddle(nMiddle) {
    if (TurnsFit(path)) {
        m_forwardTo = ForwardTo(path);
    } else {
        m_forwardTo.resize(path.size());  // nowhere
    }
}

const std::vector<std::int32_t>& StretchHull::Corners(std::int32_t nFirst, std::int32_t nLast, std::int32_t nSide) {
    if (m_forwardTo[static_cast<std::size_t>(nFirst)] < nLast || nLast - nFirst < 2) {
        const auto nPixels = static_cast<std::size_t>(nLast - nFirst) + 1;
        PruneInto(
            m_path, nPixels, [nFirst](std::size_t i) { return nFirst + static_cast<std::int32_t>(i); }, nSide, m_corners);
    } else {
        CollectCorners(nFirst, nLast, nSide);
        PruneInto(
            m_path, m_collected.size(), [this](std::size_t i) { return m_collected[i]; }, nSide, m_corners);
    }
    return m_corners;
}

// The corners of the hulls from either end to the middle: all that can be corners of the stretch's own.
void StretchHull::CollectCorners(std::int32_t nFirst, std::int32_t nLast, std::int32_t nSide) {
    if (!Covers(nFirst, nLast)) {
        Cover(nFirst, nLast);
    }
    const std::vector<std::int32_t>& inwards = m_inwards[nSide > 0 ? 0 : 1];
    const auto addUpToMiddle = [&](std::int32_t i) {
        for (; i != m_nMiddle; i = inwards[static_cast<std::size_t>(i)]) {
            m_collected.push_back(i);
        }
    };
    m_collected.clear();
    addUpToMiddle(nFirst);
    m_collected.push_back(m_nMiddle);
    const auto nBehindMiddle = static_cast<std::ptrdiff_t>(m_collected.size());
    addUpToMiddle(nLast);
    std::reverse(m_collected.begin() + nBehindMiddle, m_collected.end());
}

void StretchHull::Cover(std::int32_t nFirst, std::int32_t nLast) {
    m_nFrom = nFirst;
    m_nTo = m_forwardTo[static_cast<std::size_t>(nFirst)];
    m_nMiddle = nFirst < m_nUsualMiddle && m_nUsualMiddle < nLast ? m_nUsualMiddle : nFirst + (nLast - nFirst) / 2;
    const auto at = [this](std::int32_t i) -> const PathPoint& { return m_path[static_cast<std::size_t>(i)]; };
    for (const std::int32_t nSide : {+1, -1}) {
        std::vector<std::int32_t>& inwards = m_inwards[nSide > 0 ? 0 : 1];
        inwards.resize(m_path.size());
        const auto next = [&inwards](std::int32_t i) { return inwards[static_cast<std::size_t>(i)]; };
        // From one pixel outwards to the next; seen from the other end of the path, the kept side is the other one.
        const auto addOutside = [&](std::int32_t i, std::int32_t nInwards) {
            std::int32_t nCorner = i + nInwards;
            while (nCorner != m_nMiddle && Turn(at(i), at(nCorner), at(next(nCorner)), nInwards * nSide) <= 0) {
                nCorner = next(nCorner);
            }
            inwards[static_cast<std::size_t>(i)] = nCorner;
        };
        for (std::int32_t i = m_nMiddle - 1; i >= m_nFrom; --i) {
            addOutside(i, +1);
        }
        for (std::int32_t i = m_nMiddle + 1; i <= m_nTo; ++i) {
            addOutside(i, -1);
        }
    }
}

}  // namespace width
