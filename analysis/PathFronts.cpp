// Why a pocket does not matter. Let a be a front and c the next one.
//
// The pruning of a chain that begins at a has let go of the whole pocket when it comes to c: that is tried, pixel by pixel. In
// a longer chain it does the same behind a for as long as a stays. Only a pixel that comes to stand right behind a can take
// its place, and it does if it does not turn to the kept side on the way from p over a, where p is what is left right before a.
// Seen from a, each of those pixels lies further round, away from the kept side, than the one before it; the search gives up
// where they come to half a turn, so all lie in the sector from the first to the last. If both ends of the sector turn to the
// kept side from p, all do, a stays, and c meets it as if the pocket were not there.
//
// Both ends must do so from all fronts before a, or c is not taken for the next one. Another pixel from which one does not is
// blind at a; it can be p only in a stretch that begins nearby, since all others have left its pocket.
// Tested by: tests/unit/analysis/LineSearchTest.cpp
#include "analysis/PathFronts.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

#include "analysis/Pruning.h"

namespace width {

namespace {

constexpr std::int32_t kNone = std::numeric_limits<std::int32_t>::max();

// The turn p, b, c for one b and c. It is linear in p, so that over a box it is least at a corner.
class TurnFrom {
public:
    TurnFrom(const PathPoint& b, const PathPoint& c, std::int32_t nSide) noexcept {
        const std::int64_t dx = nSide * (std::int64_t{c.x} - b.x);
        const std::int64_t dy = nSide * (std::int64_t{c.y} - b.y);
        m_nConstant = b.y * dx - b.x * dy;
        m_nPerX = dy;
        m_nPerY = -dx;
    }
    std::int64_t Least(const PathBox& box) const noexcept {
        return m_nConstant + m_nPerX * (m_nPerX > 0 ? box.xLow : box.xHigh) + m_nPerY * (m_nPerY > 0 ? box.yLow : box.yHigh);
    }

private:
    std::int64_t m_nConstant = 0;
    std::int64_t m_nPerX = 0;
    std::int64_t m_nPerY = 0;
};

class FrontFinder {
public:
    FrontFinder(const PathBoxes& boxes, std::int32_t nSide, const Heading& heading, std::int32_t nFirst, std::int32_t nLast)
        : m_boxes(boxes), m_path(boxes.Path()), m_nSide(nSide), m_nFirst(nFirst), m_nLast(nLast), m_heading(heading) {
        constexpr std::int32_t kAnyPocket = 1000;
        constexpr std::int64_t kLooks = 8;
        m_nLongestAllowed = (nLast - nFirst) / 8 + kAnyPocket;
        m_nLooksLeft = kLooks * (nLast - nFirst) + kAnyPocket;
    }

    PathFronts Find() {
        Add(m_nFirst, kNone);
        while (Last() < m_nLast && (MayTake(Last() + 1) ? Add(Last() + 1, kNone) : LeavePocket())) {
        }
        PathFronts found{m_heading, std::move(m_fronts), std::move(m_blind), 0};
        for (std::size_t n = found.positions.size(); n-- > 0;) {
            const bool bLast = n + 1 == found.positions.size();
            const std::int32_t nNext = bLast ? m_nLast + 1 : found.positions[n + 1];
            found.nLongestPocket = std::max(found.nLongestPocket, nNext - found.positions[n] - 1);
            // What is blind at the pocket behind this front, or farther behind.
            found.firstBlind[n] = bLast ? kNone : std::min(found.firstBlind[n], found.firstBlind[n + 1]);
        }
        return found;
    }

private:
    struct Pocket {
        std::int32_t nEnd;
        std::int32_t nFirstBlind;
    };

    const PathPoint& At(std::int32_t i) const noexcept { return m_path[static_cast<std::size_t>(i)]; }
    std::int32_t Last() const noexcept { return m_fronts.back(); }

    // Whether a pixel may come behind the last front: ahead of it, or level with it the way that its level has gone so far.
    bool MayTake(std::int32_t i) const noexcept {
        const std::int64_t nAhead = m_heading.Along(At(i)) - m_heading.Along(At(Last()));
        const std::int64_t nAcross = m_heading.Across(At(i)) - m_heading.Across(At(Last()));
        return nAhead > 0 || (nAhead == 0 && nAcross != 0 && (m_ways.back() == 0 || (nAcross > 0) == (m_ways.back() > 0)));
    }

    bool Add(std::int32_t i, std::int32_t nFirstBlind) {
        std::int8_t nWay = 0;
        if (!m_fronts.empty()) {
            m_blind.back() = nFirstBlind;
            if (m_heading.Along(At(i)) == m_heading.Along(At(Last()))) {
                nWay = m_heading.Across(At(i)) > m_heading.Across(At(Last())) ? +1 : -1;
            }
        }
        m_fronts.push_back(i);
        m_ways.push_back(nWay);
        m_blind.push_back(kNone);
        return true;
    }

    // Adds the front behind the pocket that begins behind the last one. Where there is none, fronts before it may become part
    // of the pocket.
    bool LeavePocket() {
        constexpr int kFrontsToGiveUp = 32;
        const std::int32_t nFrom = Last();
        for (int nGivenUp = 0; nGivenUp <= kFrontsToGiveUp; ++nGivenUp) {
            if (const std::optional<Pocket> pocket = FindPocket(nFrom)) {
                return Add(pocket->nEnd, pocket->nFirstBlind);
            }
            if (m_fronts.size() == 1) {
                break;
            }
            m_fronts.pop_back();
            m_ways.pop_back();
            m_blind.pop_back();
        }
        return false;
    }

    // The pocket behind the last front that ends behind a position.
    std::optional<Pocket> FindPocket(std::int32_t nBehind) {
        const std::int32_t nFront = Last();
        const std::int32_t nSectorBegin = nFront + 1;
        std::int32_t nSectorEnd = nSectorBegin;
        m_kept.assign({nFront, nSectorBegin});
        for (std::int32_t i = nSectorBegin + 1; i <= std::min(m_nLast, nFront + m_nLongestAllowed) && m_nLooksLeft > 0; ++i) {
            --m_nLooksLeft;
            PruneOn(m_path, i, i, m_nSide, m_kept);
            if (m_kept.size() > 2) {
                continue;
            }
            if (i > nBehind && MayTake(i)) {
                if (const std::optional<std::int32_t> nFirstBlind = FirstBlind(nSectorBegin, nSectorEnd)) {
                    return Pocket{i, *nFirstBlind};
                }
                break;
            }
            if (!IsWithinHalfTurn(nSectorBegin, i)) {
                break;
            }
            nSectorEnd = i;
        }
        return std::nullopt;
    }

    // Whether the turn at the last front from one pixel to another, which is not a kept one, is less than half a turn.
    bool IsWithinHalfTurn(std::int32_t i, std::int32_t j) const noexcept {
        const PathPoint& front = At(Last());
        const Heading toI{std::int64_t{At(i).x} - front.x, std::int64_t{At(i).y} - front.y};
        const std::int32_t nTurn = Turn(front, At(i), At(j), m_nSide);
        return nTurn < 0 || (nTurn == 0 && toI.Along(At(j)) > toI.Along(front));
    }

    // The first pixel from which an end of a sector behind the last front does not turn to the kept side, or kNone; nothing if
    // there is a front among such pixels, or if it would take too long to tell.
    std::optional<std::int32_t> FirstBlind(std::int32_t nSectorBegin, std::int32_t nSectorEnd) {
        if (Last() == m_nFirst) {
            return kNone;
        }
        const PathPoint& front = At(Last());
        const std::array<TurnFrom, 2> turns = {TurnFrom(front, At(nSectorBegin), m_nSide),
                                               TurnFrom(front, At(nSectorEnd), m_nSide)};
        const auto isBlindIn = [&](const PathBox& box) {
            return std::ranges::any_of(turns, [&](const TurnFrom& turn) { return turn.Least(box) <= 0; });
        };
        const auto isBlind = [&](const PathPoint& pt) { return isBlindIn({pt.x, pt.x, pt.y, pt.y}); };
        const auto first = m_boxes.FindFirst(
            {static_cast<std::size_t>(m_nFirst), static_cast<std::size_t>(Last()) - 1},
            [&](PathBoxes::Node node) { return isBlindIn(m_boxes.Box(node)); }, isBlind);
        if (!first) {
            return kNone;
        }
        const auto nFirst = static_cast<std::int32_t>(*first);
        for (std::size_t n = m_fronts.size() - 1; n-- > 0 && m_fronts[n] >= nFirst;) {
            if (--m_nLooksLeft <= 0 || isBlind(At(m_fronts[n]))) {
                return std::nullopt;
            }
        }
        return nFirst;
    }

    const PathBoxes& m_boxes;
    std::span<const PathPoint> m_path;
    std::int32_t m_nSide;
    std::int32_t m_nFirst;
    std::int32_t m_nLast;
    Heading m_heading;
    std::int32_t m_nLongestAllowed;
    std::int64_t m_nLooksLeft;
    std::vector<std::int32_t> m_fronts;
    std::vector<std::int8_t> m_ways;    // of the level that each front is on: across the heading to one side, the other, or 0
    std::vector<std::int32_t> m_blind;  // what is blind first at the pocket behind each front
    std::vector<std::int32_t> m_kept;
};

}  // namespace

PathFronts FindFronts(const PathBoxes& boxes, std::int32_t nSide, const Heading& heading, std::int32_t nFirst,
                      std::int32_t nLast) {
    return FrontFinder(boxes, nSide, heading, nFirst, nLast).Find();
}

}  // namespace width
