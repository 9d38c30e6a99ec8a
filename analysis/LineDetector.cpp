// The search for the straight stretch round the seed, on one-sided hulls of the path.
//
// A chain is a list of positions in m_Path, always in rising order; a stretch is a part of m_Path
// without gaps. Positions are carried along and never looked for, except that a pixel that stands
// several times in the path counts as its first occurrence; that look-up is one table.
// Tested by: tests/unit/analysis/LineDetectorTest.cpp
#include "analysis/LineDetector.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <set>
#include <tuple>
#include <unordered_map>

#include "analysis/PathLine.h"

namespace width {

namespace {

constexpr float kSeedToEdge = 1.0F;    // pixels, inclusive
constexpr float kPixelToChord = 2.0F;  // pixels, inclusive
constexpr std::size_t kShortestStretch = 3;

// For each position of a path the first position that holds the same pixel.
std::vector<std::int32_t> FirstOccurrences(std::span<const PathPoint> path) {
    std::unordered_map<std::int64_t, std::int32_t> seen;
    seen.reserve(path.size());
    std::vector<std::int32_t> first(path.size());
    for (std::size_t i = 0; i < path.size(); ++i) {
        const std::int64_t nKey = (std::int64_t{path[i].x} << 32) | static_cast<std::uint32_t>(path[i].y);
        first[i] = seen.try_emplace(nKey, static_cast<std::int32_t>(i)).first->second;
    }
    return first;
}

std::vector<std::int32_t> ChainOf(std::int32_t nFirst, std::int32_t nLast) {
    std::vector<std::int32_t> chain(static_cast<std::size_t>(nLast - nFirst) + 1);
    std::iota(chain.begin(), chain.end(), nFirst);
    return chain;
}

// Turn of the chain a, b, c: positive where it goes to the side that nSide keeps.
std::int32_t Turn(const PathPoint& a, const PathPoint& b, const PathPoint& c, std::int32_t nSide) noexcept {
    return WrapMul(WrapSub(WrapMul(WrapSub(b.y, a.y), WrapSub(c.x, b.x)), WrapMul(WrapSub(b.x, a.x), WrapSub(c.y, b.y))), nSide);
}

}  // namespace

std::int32_t LineDetector::PruneToHull(std::span<const PathPoint> path, std::vector<std::int32_t>& chain, std::int32_t nSide) {
    if (chain.size() < 2) {
        return 0;
    }
    const auto at = [&](std::size_t i) -> const PathPoint& { return path[static_cast<std::size_t>(chain[i])]; };
    // Kept pixels stand in front, in [0, nKept): the last two are a and b, chain[i] is c. Only the
    // pixel behind the head has no a to fall back to, and then c takes its place.
    std::size_t nKept = 2;
    for (std::size_t i = 2; i < chain.size(); ++i) {
        while (nKept >= 2 && Turn(at(nKept - 2), at(nKept - 1), at(i), nSide) <= 0) {
            --nKept;
        }
        chain[nKept++] = chain[i];
    }
    chain.resize(nKept);
    return 1;
}

std::int32_t LineDetector::IsEdgeLongEnough(const PathPoint& p, const PathPoint& q) const noexcept {
    return EdgeLength(p, q) >= static_cast<float>(m_conditions.nMinLineLength) ? 1 : 0;
}

std::int32_t LineDetector::IsSeedNearEdge(const PathPoint& p, const PathPoint& q) const noexcept {
    return std::fabs(PathLine(p, q).Distance(m_ptSeed.x, m_ptSeed.y)) <= kSeedToEdge ? 1 : 0;
}

std::int32_t LineDetector::IsChainStraight(std::span<const PathPoint> stretch) noexcept {
    if (stretch.size() < kShortestStretch) {
        return 0;
    }
    const PathLine chord(stretch.front(), stretch.back());
    return std::ranges::any_of(stretch.subspan(1),
                               [&](const PathPoint& pt) { return std::fabs(chord.Distance(pt.x, pt.y)) > kPixelToChord; })
               ? 0
               : 1;
}

// A ring is cut at the two pixels farthest apart; the arc with the seed stays, and the part of it
// that lay behind the ring's end moves in front of the seed with negative numbers.
void LineDetector::CutOpen() {
    std::int32_t i = 0;
    std::int32_t j = 0;
    FindFarthestPair(m_Path, i, j);
    std::vector<PathPoint> arc(m_Path.begin() + j, m_Path.end());
    auto nIndex = -static_cast<std::int32_t>(arc.size());
    for (PathPoint& pt : arc) {
        pt.nIndex = nIndex++;
    }
    arc.insert(arc.end(), m_Path.begin(), m_Path.begin() + i + 1);
    m_Path = std::move(arc);
}

std::int32_t LineDetector::AcceptEdge(std::int32_t p, std::int32_t q) noexcept {
    m_ptFirst = m_Path[static_cast<std::size_t>(p)];
    m_ptLast = m_Path[static_cast<std::size_t>(q)];
    m_nFitAxis = FitAxis::HullEdge;
    m_bFound = 1;
    return 1;
}

std::int32_t LineDetector::GiveUpOnHull() {
    return m_conditions.bRectAlgorithm != 0 ? TrimToStrip() : 0;
}

std::int32_t LineDetector::SearchLine() {
    if (m_Path.empty()) {
        return 0;
    }
    if (m_bClosed != 0) {
        CutOpen();
    }
    const std::span<const PathPoint> path = m_Path;
    const auto nTail = static_cast<std::int32_t>(path.size()) - 1;
    const std::vector<std::int32_t> firstOccurrence = FirstOccurrences(path);
    // What a trip does depends on the stretch and the side alone: one that comes again never ends.
    std::set<std::tuple<std::int32_t, std::int32_t, std::int32_t>> narrowed;
    std::vector<std::int32_t> chain = ChainOf(0, nTail);
    std::int32_t nHullSide = 1;
    while (PruneToHull(path, chain, nHullSide) != 0) {
        const auto index = [&](std::int32_t i) { return path[static_cast<std::size_t>(i)].nIndex; };
        const auto edge =
            std::ranges::adjacent_find(chain, [&](std::int32_t a, std::int32_t b) { return WrapMul(index(a), index(b)) < 0; });
        if (edge == chain.end()) {
            return 0;
        }
        const std::int32_t nP = edge[0];
        const std::int32_t nQ = edge[1];
        const PathPoint& ptP = path[static_cast<std::size_t>(nP)];
        const PathPoint& ptQ = path[static_cast<std::size_t>(nQ)];
        if (IsEdgeLongEnough(ptP, ptQ) == 0) {
            return GiveUpOnHull();
        }
        const std::int32_t nFrom = firstOccurrence[static_cast<std::size_t>(nP)];
        const std::int32_t nFirstQ = firstOccurrence[static_cast<std::size_t>(nQ)];
        std::int32_t nTo = nFirstQ < nFrom ? nQ : nFirstQ;  // a pixel that also stands before P counts where it is
        if (IsSeedNearEdge(ptP, ptQ) != 0) {
            const auto stretch = path.subspan(static_cast<std::size_t>(nFrom), static_cast<std::size_t>(nTo - nFrom) + 1);
            if (IsChainStraight(stretch) != 0) {
                return AcceptEdge(nP, nQ);
            }
            nTo = std::min(nTo + 1, nTail);
        }
        nHullSide = -nHullSide;
        if (!narrowed.emplace(nFrom, nTo, nHullSide).second) {
            return GiveUpOnHull();
        }
        chain = ChainOf(nFrom, nTo);
    }
    return 0;
}

}  // namespace width
