#include "tests/support/LiteralSearch.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <tuple>

#include "core/Arithmetic.h"

namespace width::test {

namespace {

using Chain = std::vector<PathPoint>;

bool SamePixel(const PathPoint& p, const PathPoint& q) {
    return p.x == q.x && p.y == q.y;
}

float Length(const PathPoint& p, const PathPoint& q) {
    const float dx = static_cast<float>(q.x) - static_cast<float>(p.x);
    const std::int32_t dy = WrapSub(q.y, p.y);
    return std::sqrt(dx * dx + static_cast<float>(WrapMul(dy, dy)));
}

float DistanceFromLine(const PathPoint& f, const PathPoint& e, std::int32_t x, std::int32_t y) {
    const auto a = static_cast<float>(WrapSub(f.y, e.y));
    const auto b = static_cast<float>(WrapSub(e.x, f.x));
    const auto c = static_cast<float>(WrapAdd(WrapMul(WrapSub(f.x, e.x), f.y), WrapMul(WrapSub(e.y, f.y), f.x)));
    return (static_cast<float>(y) * b + static_cast<float>(x) * a + c) / std::sqrt(b * b + a * a);
}

std::int32_t LiteralTurn(const PathPoint& a, const PathPoint& b, const PathPoint& c, std::int32_t nSide) {
    const std::int32_t nFirst = WrapMul(WrapSub(b.y, a.y), WrapSub(c.x, b.x));
    const std::int32_t nSecond = WrapMul(WrapSub(b.x, a.x), WrapSub(c.y, b.y));
    return WrapMul(WrapSub(nFirst, nSecond), nSide);
}

void Prune(Chain& chain, std::int32_t nSide) {
    Chain kept;
    for (const PathPoint& pt : chain) {
        while (kept.size() >= 2 && LiteralTurn(kept[kept.size() - 2], kept.back(), pt, nSide) <= 0) {
            kept.pop_back();
        }
        kept.push_back(pt);
    }
    chain = kept;
}

bool IsStraight(const Chain& chain) {
    return chain.size() >= 3 && std::none_of(chain.begin() + 1, chain.end(), [&](const PathPoint& pt) {
               return std::fabs(DistanceFromLine(chain.front(), chain.back(), pt.x, pt.y)) > 2.0F;
           });
}

Chain CutRing(const Chain& ring) {
    std::int32_t i = 0;
    std::int32_t j = 0;
    LiteralFarthestPair(ring, i, j);
    Chain arc(ring.begin() + j, ring.end());
    for (std::size_t n = 0; n < arc.size(); ++n) {
        arc[n].nIndex = static_cast<std::int32_t>(n) - static_cast<std::int32_t>(arc.size());
    }
    arc.insert(arc.end(), ring.begin(), ring.begin() + i + 1);
    return arc;
}

LiteralLine Fitted(const Chain& chain, const LineConditions& conditions, int nTrips) {
    LineDetector detector(conditions);
    detector.FitLeastSquares(chain);
    return {true, detector.First(), detector.Last(), detector.Axis(), nTrips};
}

LiteralLine Trim(Chain chain, const LineConditions& conditions, int nTrips) {
    for (;; ++nTrips) {
        const PathPoint head = chain.front();
        const PathPoint tail = chain.back();
        float fLargest = 0.0F;
        float fSmallest = 0.0F;
        std::size_t nLargest = 0;
        std::size_t nSmallest = 0;
        for (std::size_t i = 0; i < chain.size(); ++i) {
            const float d = DistanceFromLine(head, tail, chain[i].x, chain[i].y);
            if (d > fLargest) {
                fLargest = d;
                nLargest = i;
            }
            if (d < fSmallest) {
                fSmallest = d;
                nSmallest = i;
            }
        }
        const std::int32_t dx = WrapSub(tail.x, head.x);
        const std::int32_t dy = WrapSub(tail.y, head.y);
        const float fChord = std::sqrt(static_cast<float>(WrapAdd(WrapMul(dx, dx), WrapMul(dy, dy))));
        if (!(fChord >= static_cast<float>(conditions.nMinLineLength))) {
            return {false, {}, {}, FitAxis::HullEdge, nTrips};
        }
        if (conditions.fRectWidth > std::fabs(fLargest - fSmallest)) {
            return Fitted(chain, conditions, nTrips);
        }
        const std::size_t nExtreme = std::fabs(fLargest) > std::fabs(fSmallest) ? nLargest : nSmallest;
        const std::size_t nBefore = chain.size();
        if (chain[nExtreme].nIndex > 0) {
            chain.resize(nExtreme + 1);
        } else {
            chain.erase(chain.begin(), chain.begin() + static_cast<std::ptrdiff_t>(nExtreme));
        }
        if (chain.size() == nBefore) {
            return Fitted(chain, conditions, nTrips);
        }
    }
}

std::ptrdiff_t FirstPosition(const Chain& path, const PathPoint& pt) {
    return std::find_if(path.begin(), path.end(), [&](const PathPoint& other) { return SamePixel(other, pt); }) - path.begin();
}

}  // namespace

LiteralLine LiteralSearch(std::vector<PathPoint> path, bool bClosed, POINT seed, const LineConditions& conditions) {
    if (path.empty()) {
        return {};
    }
    if (bClosed) {
        path = CutRing(path);
    }
    const auto giveUp = [&](int nTrips) {
        return conditions.bRectAlgorithm != 0 ? Trim(path, conditions, nTrips) : LiteralLine{false, {}, {}, {}, nTrips};
    };
    std::set<std::tuple<std::ptrdiff_t, std::ptrdiff_t, std::int32_t>> tried;
    Chain hull = path;
    std::int32_t nSide = 1;
    for (int nTrips = 1; hull.size() >= 2; ++nTrips) {
        Prune(hull, nSide);
        const auto edge = std::adjacent_find(
            hull.begin(), hull.end(), [](const PathPoint& p, const PathPoint& q) { return WrapMul(p.nIndex, q.nIndex) < 0; });
        if (edge == hull.end()) {
            return {false, {}, {}, {}, nTrips};
        }
        const PathPoint p = edge[0];
        const PathPoint q = edge[1];
        if (!(Length(p, q) >= static_cast<float>(conditions.nMinLineLength))) {
            return giveUp(nTrips);
        }
        const std::ptrdiff_t nFrom = FirstPosition(path, p);
        std::ptrdiff_t nTo = FirstPosition(path, q);
        if (nTo < nFrom) {
            nTo = q.nIndex - path.front().nIndex;
        }
        hull.assign(path.begin() + nFrom, path.begin() + nTo + 1);
        if (std::fabs(DistanceFromLine(p, q, seed.x, seed.y)) <= 1.0F) {
            if (IsStraight(hull)) {
                return {true, p, q, FitAxis::HullEdge, nTrips};
            }
            if (nTo + 1 < std::ssize(path)) {
                hull.push_back(path[static_cast<std::size_t>(++nTo)]);
            }
        }
        nSide = -nSide;
        if (!tried.emplace(nFrom, nTo, nSide).second) {
            return giveUp(nTrips);
        }
    }
    return {};
}

LiteralLine FoundLine(LineDetector& detector) {
    const bool bFound = detector.SearchLine() != 0;
    return {bFound, detector.First(), detector.Last(), detector.Axis(), 0};
}

std::int32_t LiteralFarthestPair(std::span<const PathPoint> path, std::int32_t& i, std::int32_t& j) {
    float fLargest = 0.0F;
    for (std::size_t a = 0; a < path.size(); ++a) {
        for (std::size_t b = a + 1; b < path.size(); ++b) {
            const float fLength = Length(path[a], path[b]);
            if (fLength > fLargest) {
                fLargest = fLength;
                i = static_cast<std::int32_t>(a);
                j = static_cast<std::int32_t>(b);
            }
        }
    }
    return path.empty() ? 0 : 1;
}

}  // namespace width::test
