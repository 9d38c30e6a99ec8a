// Why the fronts are enough. Let a be a front and c the next one, with a pocket between them.
//
// The pruning of a chain that begins at a has let go of the whole pocket when it comes to c: that is tried, pixel by pixel. In
// a longer chain it does the same behind a for as long as a stays. Only a pixel that comes to stand right behind a can take
// its place, and it does if it does not turn to the kept side on the way from p over a, where p is what is left right before a.
// From a, those pixels lie in a sector of less than half a turn, since each has taken the place of the one before it. So if
// both its ends turn to the kept side from every pixel p before a, all in the sector do, a stays, and c meets it as if the
// pocket were not there.
//
// Fronts come in order: each lies ahead of those before it or level with them, and level ones follow each other in a row that
// runs one way. The scan then never meets a pixel behind its last corners and keeps what every scan of sorted points keeps.
// What is left of a stretch's pixels before its first front joins in if the last step of it goes ahead. Then all steps behind
// its last step back do, in order with the fronts; and to where that step goes the scan never falls back, since from there the
// fronts lie ahead and not to the side of the step where a turn is not kept.
// Tested by: tests/unit/analysis/LineSearchTest.cpp
#include "analysis/FrontHull.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ranges>

#include "analysis/Pruning.h"

namespace width {

namespace {

// Pockets up to this long are as good as none.
constexpr std::int32_t kShortPocket = 64;

}  // namespace

class FrontHull::Order {
public:
    Order(const Heading& heading, const PathPoint& pt) noexcept
        : m_heading(heading), m_nAlong(heading.Along(pt)), m_nAcross(heading.Across(pt)) {}

    /// Whether a pixel may come next: ahead of the last one, or level with it the way that its level has gone so far.
    bool MayTake(const PathPoint& pt) const noexcept {
        const std::int64_t nAlong = m_heading.Along(pt);
        const std::int64_t nAcross = m_heading.Across(pt) - m_nAcross;
        return nAlong > m_nAlong || (nAlong == m_nAlong && nAcross != 0 && (m_nWay == 0 || (nAcross > 0) == (m_nWay > 0)));
    }
    void Take(const PathPoint& pt) noexcept {
        const std::int64_t nAlong = m_heading.Along(pt);
        const std::int64_t nAcross = m_heading.Across(pt);
        m_nWay = nAlong > m_nAlong ? 0 : nAcross > m_nAcross ? +1 : -1;
        m_nAlong = nAlong;
        m_nAcross = nAcross;
    }

private:
    Heading m_heading;
    std::int64_t m_nAlong;
    std::int64_t m_nAcross;
    int m_nWay = 0;
};

void FrontHull::Cover(std::int32_t nFirst, std::int32_t nLast, std::int32_t nMiddle) {
    std::vector<std::int32_t> fronts;
    std::int32_t nShortest = -1;
    for (const Heading& heading : Headings(nFirst, nLast)) {
        const std::int32_t nLongestPocket = FindFronts(heading, nFirst, nLast);
        if (nShortest < 0 || nLongestPocket < nShortest) {
            nShortest = nLongestPocket;
            m_heading = heading;
            fronts.swap(m_fronts);
        }
        if (nShortest <= kShortPocket) {
            break;
        }
    }
    m_fronts.swap(fronts);
    PointInwards(nMiddle);
}

// Those that no step goes against; where there is none, the stretch's chord turned more and more to the kept side, so that
// what leans back that way does not go against it.
std::vector<FrontHull::Heading> FrontHull::Headings(std::int32_t nFirst, std::int32_t nLast) const {
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

// Returns the length of the longest pocket, counting what is left behind the last front.
std::int32_t FrontHull::FindFronts(const Heading& heading, std::int32_t nFirst, std::int32_t nLast) {
    Order order(heading, At(nFirst));
    std::int32_t nLongest = 0;
    m_fronts.assign(1, nFirst);
    for (std::int32_t i = nFirst; i < nLast;) {
        const std::optional<std::int32_t> next =
            order.MayTake(At(i + 1)) ? std::optional(i + 1) : EndOfPocket(order, nFirst, i, nLast);
        nLongest = std::max(nLongest, next.value_or(nLast + 1) - i - 1);
        if (!next) {
            break;
        }
        i = *next;
        m_fronts.push_back(i);
        order.Take(At(i));
    }
    return nLongest;
}

// The front behind the pocket that begins behind a front, if there is one.
std::optional<std::int32_t> FrontHull::EndOfPocket(const Order& order, std::int32_t nFirst, std::int32_t nFront,
                                                   std::int32_t nLast) {
    const auto isWithinHalfTurn = [&](std::int32_t i, std::int32_t j) {
        const PathPoint& front = At(nFront);
        const std::int32_t nTurn = Turn(front, At(i), At(j), m_nSide);
        const Heading toI{std::int64_t{At(i).x} - front.x, std::int64_t{At(i).y} - front.y};
        return nTurn < 0 || (nTurn == 0 && toI.Along(At(j)) > toI.Along(front));
    };
    // The pixels that came to stand right behind the front: the first of them and the last.
    const std::int32_t nSectorBegin = nFront + 1;
    std::int32_t nSectorEnd = nSectorBegin;
    m_pocket.assign({nFront, nSectorBegin});
    for (std::int32_t i = nSectorBegin + 1; i <= nLast; ++i) {
        PruneOn(m_path, i, i, m_nSide, m_pocket);
        if (m_pocket.size() > 2) {
            continue;
        }
        if (order.MayTake(At(i))) {
            return AllSee(nFirst, nFront, nSectorBegin, nSectorEnd) ? std::optional(i) : std::nullopt;
        }
        if (!isWithinHalfTurn(nSectorBegin, i)) {
            break;
        }
        nSectorEnd = i;
    }
    return std::nullopt;
}

// Whether the chain from every pixel before a front over the front to each of two others turns to the kept side.
bool FrontHull::AllSee(std::int32_t nFirst, std::int32_t nFront, std::int32_t nInside1, std::int32_t nInside2) const {
    if (nFirst == nFront) {
        return true;
    }
    // The turn p, b, c is linear in p: over a box it has its least value at a corner.
    struct TurnFrom {
        std::int64_t nConstant;
        std::int64_t nPerX;
        std::int64_t nPerY;

        std::int64_t Least(const PathBox& box) const noexcept {
            return nConstant + nPerX * (nPerX > 0 ? box.xLow : box.xHigh) + nPerY * (nPerY > 0 ? box.yLow : box.yHigh);
        }
    };
    const PathPoint& b = At(nFront);
    const auto turnTo = [&](const PathPoint& c) {
        const std::int64_t dx = m_nSide * (std::int64_t{c.x} - b.x);
        const std::int64_t dy = m_nSide * (std::int64_t{c.y} - b.y);
        return TurnFrom{b.y * dx - b.x * dy, dy, -dx};
    };
    const std::array<TurnFrom, 2> turns = {turnTo(At(nInside1)), turnTo(At(nInside2))};
    const auto mayMiss = [&](const PathBox& box) {
        return std::ranges::any_of(turns, [&](const TurnFrom& turn) { return turn.Least(box) <= 0; });
    };
    return !m_boxes.FindFirst(
        {static_cast<std::size_t>(nFirst), static_cast<std::size_t>(nFront) - 1},
        [&](PathBoxes::Node node) { return mayMiss(m_boxes.Box(node)); },
        [&](const PathPoint& p) {
            return mayMiss({p.x, p.x, p.y, p.y});
        });
}

void FrontHull::PointInwards(std::int32_t nMiddle) {
    const auto behind = std::ranges::lower_bound(m_fronts, nMiddle);
    m_nMiddle = std::min(static_cast<std::size_t>(behind - m_fronts.begin()), m_fronts.size() - 1);
    m_inwards.assign(m_fronts.size(), m_nMiddle);
    const auto at = [this](std::size_t n) -> const PathPoint& { return At(m_fronts[n]); };
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
    for (std::size_t n = m_nMiddle + 1; n < m_fronts.size(); ++n) {
        addOutside(n, n - 1, -m_nSide);
    }
}

// Whether the last step of a chain goes ahead; true where there is none.
bool FrontHull::EndsAhead(std::span<const std::int32_t> chain) const noexcept {
    return chain.size() < 2 || m_heading.Along(At(chain[chain.size() - 2])) < m_heading.Along(At(chain.back()));
}

std::optional<std::int32_t> FrontHull::Corners(std::int32_t nFirst, std::int32_t nLast, std::vector<std::int32_t>& corners) {
    const auto numberOf = [this](auto found) { return static_cast<std::size_t>(found - m_fronts.begin()); };
    std::size_t nFirstFront = numberOf(std::ranges::lower_bound(m_fronts, nFirst));
    const std::size_t nBehindLast = numberOf(std::ranges::upper_bound(m_fronts, nLast));
    if (nFirstFront > m_nMiddle || nBehindLast <= m_nMiddle || m_fronts.empty() || nFirst < m_fronts.front()) {
        return std::nullopt;
    }
    corners.clear();
    PruneOn(m_path, nFirst, m_fronts[nFirstFront], m_nSide, corners);
    while (!EndsAhead(corners)) {
        if (nFirstFront == m_nMiddle) {
            return std::nullopt;
        }
        PruneOn(m_path, m_fronts[nFirstFront] + 1, m_fronts[nFirstFront + 1], m_nSide, corners);
        ++nFirstFront;
    }
    m_collected.clear();
    for (std::size_t n = nFirstFront; n != m_nMiddle;) {
        n = m_inwards[n];
        m_collected.push_back(m_fronts[n]);
    }
    const auto nToMiddle = static_cast<std::ptrdiff_t>(m_collected.size());
    for (std::size_t n = nBehindLast - 1; n != m_nMiddle; n = m_inwards[n]) {
        m_collected.push_back(m_fronts[n]);
    }
    std::reverse(m_collected.begin() + nToMiddle, m_collected.end());
    PruneOn(
        m_path, m_collected.size(), [this](std::size_t i) { return m_collected[i]; }, m_nSide, corners);
    const std::int32_t nLastFront = m_fronts[nBehindLast - 1];
    PruneOn(m_path, nLastFront + 1, nLast, m_nSide, corners);
    return m_fronts[nFirstFront] - nFirst + nLast - nLastFront;
}

}  // namespace width
