// Fronts come in order: each lies ahead of those before it or level with them, and level ones follow each other in a row that
// runs one way. The scan then never meets a pixel behind its last corners and keeps what every scan of sorted points keeps.
//
// What is left of a stretch's pixels before its first front joins in if the last step of it goes ahead. Then all steps behind
// its last step back do, in order with the fronts; and the scan never lets go of where that step goes. A front that lets go of
// all behind it lies ahead of it and on or beyond the line of the first step ahead, on the side away from the kept one; that
// step turned to the kept side by less than half a turn, so the front turns there too.
// Tested by: tests/unit/analysis/LineSearchTest.cpp
#include "analysis/FrontHull.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "analysis/Pruning.h"

namespace width {

void FrontHull::Cover(std::int32_t nFirst, std::int32_t nLast, std::int32_t nMiddle) {
    constexpr std::int32_t kShortPocket = 64;  // as good as none
    m_fronts = {};
    for (const Heading& heading : Headings(nFirst, nLast)) {
        PathFronts fronts = FindFronts(m_boxes, m_nSide, heading, nFirst, nLast);
        if (m_fronts.positions.empty() || fronts.nLongestPocket < m_fronts.nLongestPocket) {
            m_fronts = std::move(fronts);
        }
        if (m_fronts.nLongestPocket <= kShortPocket) {
            break;
        }
    }
    PointInwards(nMiddle);
}

// An axis that no step goes against. If there is none: the chord turned to the kept side by half a right angle, which serves
// most teeth that lean back; the chord itself; then the chord turned further.
std::vector<Heading> FrontHull::Headings(std::int32_t nFirst, std::int32_t nLast) const {
    constexpr std::array<Heading, 8> kAxes = {{{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}}};
    for (const Heading& axis : kAxes) {
        std::int32_t i = nFirst;
        while (i < nLast && axis.Along(At(i + 1)) >= axis.Along(At(i))) {
            ++i;
        }
        if (i == nLast) {
            return {axis};
        }
    }
    constexpr std::int64_t kLongest = 4096;  // far from the end of 64 bits, and as good as the chord itself
    Heading chord{std::int64_t{At(nLast).x} - At(nFirst).x, std::int64_t{At(nLast).y} - At(nFirst).y};
    const std::int64_t nShrink = std::max(std::abs(chord.x), std::abs(chord.y)) / kLongest + 1;
    chord = {chord.x / nShrink, chord.y / nShrink};
    std::vector<Heading> headings;
    for (const std::int64_t nTilt : {1, 0, 2, 4, 8, 16}) {
        headings.push_back({chord.x - nTilt * m_nSide * chord.y, chord.y + nTilt * m_nSide * chord.x});
    }
    return headings;
}

void FrontHull::PointInwards(std::int32_t nMiddle) {
    const auto behind = std::ranges::lower_bound(m_fronts.positions, nMiddle);
    m_nMiddle = std::min(static_cast<std::size_t>(behind - m_fronts.positions.begin()), m_fronts.positions.size() - 1);
    m_inwards.assign(m_fronts.positions.size(), m_nMiddle);
    const auto at = [this](std::size_t n) -> const PathPoint& { return At(m_fronts.positions[n]); };
    // From one front outwards to the next; seen from the other end of the path, the kept side is the other one.
    const auto addOutside = [&](std::size_t n, std::size_t nNextInwards, std::int32_t nSide) {
        std::size_t nCorner = nNextInwards;
        while (nCorner != m_nMiddle && Turn(at(n), at(nCorner), at(m_inwards[nCorner]), nSide) <= 0) {
            nCorner = m_inwards[nCorner];
        }
        m_inwards[n] = nCorner;
    };
    for (std::size_t n = m_nMiddle; n-- > 0;) {
        addOutside(n, n + 1, m_nSide);
    }
    for (std::size_t n = m_nMiddle + 1; n < m_fronts.positions.size(); ++n) {
        addOutside(n, n - 1, -m_nSide);
    }
}

// Whether the fronts from one on prune behind what is left of a stretch up to there as they do by themselves.
bool FrontHull::JoinsAt(std::size_t nFront, std::span<const std::int32_t> chain) const {
    if (chain.size() < 2) {
        return true;
    }
    const auto mayBeBlind = std::ranges::lower_bound(chain, m_fronts.firstBlind[nFront]);
    const auto isFront = [&](std::int32_t i) { return std::ranges::binary_search(m_fronts.positions, i); };
    return m_fronts.heading.Along(At(chain[chain.size() - 2])) < m_fronts.heading.Along(At(chain.back())) &&
           std::all_of(mayBeBlind, chain.end(), isFront);
}

bool FrontHull::Corners(std::int32_t nFirst, std::int32_t nLast, std::vector<std::int32_t>& corners, std::int64_t& nLookedAt) {
    constexpr std::int32_t kSoon = 1000;  // pixels behind the first front
    const std::vector<std::int32_t>& fronts = m_fronts.positions;
    const auto numberOf = [&](auto found) { return static_cast<std::size_t>(found - fronts.begin()); };
    std::size_t nJoined = numberOf(std::ranges::lower_bound(fronts, nFirst));
    const std::size_t nBehindLast = numberOf(std::ranges::upper_bound(fronts, nLast));
    if (nJoined > m_nMiddle || nBehindLast <= m_nMiddle || fronts.empty() || nFirst < fronts.front()) {
        return false;
    }
    std::int32_t nNext = nFirst;
    const auto lookUpTo = [&](std::int32_t nTo) {
        PruneOn(m_path, nNext, nTo, m_nSide, corners);
        nLookedAt += nTo - nNext + 1;
        nNext = nTo + 1;
    };
    const std::int32_t nGiveUp = fronts[nJoined] + kSoon;
    corners.clear();
    lookUpTo(fronts[nJoined]);
    while (!JoinsAt(nJoined, corners)) {
        if (nJoined == m_nMiddle || fronts[nJoined] > nGiveUp) {
            return false;
        }
        lookUpTo(fronts[++nJoined]);
    }
    m_collected.clear();
    for (std::size_t n = nJoined; n != m_nMiddle;) {
        n = m_inwards[n];
        m_collected.push_back(fronts[n]);
    }
    const auto nToMiddle = static_cast<std::ptrdiff_t>(m_collected.size());
    for (std::size_t n = nBehindLast - 1; n != m_nMiddle; n = m_inwards[n]) {
        m_collected.push_back(fronts[n]);
    }
    std::reverse(m_collected.begin() + nToMiddle, m_collected.end());
    PruneOn(
        m_path, m_collected.size(), [this](std::size_t i) { return m_collected[i]; }, m_nSide, corners);
    const std::int32_t nLastFront = fronts[nBehindLast - 1];
    PruneOn(m_path, nLastFront + 1, nLast, m_nSide, corners);
    nLookedAt += nLast - nLastFront;
    return true;
}

}  // namespace width
