#include "tests/support/LiteralTrace.h"

#include <cmath>
#include <limits>

namespace width::test {

namespace {

using Cells = std::vector<MapCell>;

// The eight neighbours of a cell and the first of them once more: straight up, then anticlockwise.
Cells RingOf(MapCell p) {
    const std::int32_t r = p.row;
    const std::int32_t c = p.column;
    return {{r + 1, c},     {r + 1, c - 1}, {r, c - 1},     {r - 1, c - 1}, {r - 1, c},
            {r - 1, c + 1}, {r, c + 1},     {r + 1, c + 1}, {r + 1, c}};
}

// The first pixels of the runs round a cell, in the order of the ring.
Cells RunsRound(const SkeletonMap& map, MapCell p) {
    const Cells ring = RingOf(p);
    Cells runs;
    for (std::size_t i = 0; i < 8; ++i) {
        if (map.At(ring[i]) == 0 && map.At(ring[i + 1]) != 0) {
            runs.push_back(ring[i + 1]);
        }
    }
    return runs;
}

bool IsPlain(const SkeletonMap& map, MapCell p) {
    return RunsRound(map, p).size() == 2;
}

// Up, left, down, right, then up right, up left, down left, down right: the first that is set and not left out; none, one.
Cells NextOf(const SkeletonMap& map, MapCell p, MapCell notThis, MapCell norThis) {
    const std::int32_t r = p.row;
    const std::int32_t c = p.column;
    for (const MapCell q : {MapCell{r + 1, c}, MapCell{r, c - 1}, MapCell{r - 1, c}, MapCell{r, c + 1}, MapCell{r + 1, c + 1},
                            MapCell{r + 1, c - 1}, MapCell{r - 1, c - 1}, MapCell{r - 1, c + 1}}) {
        if (map.At(q) != 0 && q != notThis && q != norThis) {
            return {q};
        }
    }
    return {};
}

// Whether the last three cells of a walk have followed each other in it before.
bool HasBeenHere(const Cells& walk) {
    const std::size_t n = walk.size();
    for (std::size_t i = 2; i + 1 < n; ++i) {
        if (walk[i] == walk[n - 1] && walk[i - 1] == walk[n - 2] && walk[i - 2] == walk[n - 3]) {
            return true;
        }
    }
    return false;
}

enum class End { Reached, BackAtSeed, Circled };

// Three cells are walked. A circle that misses the seed stands in the walk once.
End WalkOn(const SkeletonMap& map, Cells& walk, bool bLookForSeed) {
    while (IsPlain(map, walk.back())) {
        const std::size_t n = walk.size();
        const Cells next = NextOf(map, walk[n - 1], walk[n - 2], walk[n - 3]);
        if (next.empty()) {
            return End::Reached;
        }
        if (bLookForSeed && next[0] == walk[0]) {
            return End::BackAtSeed;
        }
        walk.push_back(next[0]);
        if (HasBeenHere(walk)) {
            walk.resize(n - 2);
            return End::Circled;
        }
    }
    return End::Reached;
}

LiteralPixel ToPixel(MapCell p, std::size_t nFromSeed, int nSign) {
    return {nSign * static_cast<std::int32_t>(nFromSeed), p.column - 2, p.row - 2};
}

LiteralTrace WalkBothWays(const SkeletonMap& map, MapCell seed) {
    const MapCell a = RunsRound(map, seed)[0];
    const MapCell b = RunsRound(map, seed)[1];
    LiteralTrace trace;
    trace.bFound = true;
    trace.seed = ToPixel(seed, 0, 1);
    Cells forward = {seed, a};
    if (const Cells a2 = NextOf(map, a, seed, b); !a2.empty()) {
        forward.push_back(a2[0]);
        const End end = WalkOn(map, forward, true);
        trace.bClosed = end == End::BackAtSeed;
        trace.bCircled = end == End::Circled;
    }
    for (std::size_t i = 0; i < forward.size(); ++i) {
        trace.path.push_back(ToPixel(forward[i], i, 1));
    }
    if (!trace.bClosed) {
        const Cells b2 = NextOf(map, b, seed, a);
        Cells backward = {seed, b, b2.empty() ? b : b2[0]};
        trace.bCircled |= WalkOn(map, backward, false) == End::Circled;
        for (std::size_t i = 1; i < backward.size(); ++i) {
            trace.path.insert(trace.path.begin(), ToPixel(backward[i], i, -1));
        }
    }
    return trace;
}

std::int32_t Truncated(float f) {
    const bool bFits = f >= -2147483648.0F && f < 2147483648.0F;
    return bFits ? static_cast<std::int32_t>(f) : std::numeric_limits<std::int32_t>::min();
}

// A product on 32 bits.
float Product(std::int32_t p, std::int32_t q) {
    return static_cast<float>(static_cast<std::int32_t>(std::int64_t{p} * q));
}

struct Sums {
    float n = 0.0F, u = 0.0F, v = 0.0F, uu = 0.0F, uv = 0.0F;
};

Sums SumsOf(const std::vector<LiteralPixel>& chain, bool bSteep) {
    Sums s;
    for (const LiteralPixel& pixel : chain) {
        const std::int32_t u = bSteep ? pixel.y : pixel.x;
        const std::int32_t v = bSteep ? pixel.x : pixel.y;
        s.n += 1.0F;
        s.u += static_cast<float>(u);
        s.v += static_cast<float>(v);
        s.uu += Product(u, u);
        s.uv += Product(u, v);
    }
    return s;
}

LiteralPixel OntoLine(const LiteralPixel& end, const LiteralFit& fit) {
    const bool bSteep = fit.nAxis == 1;
    std::int32_t nU = bSteep ? end.y : end.x;
    std::int32_t nV = bSteep ? end.x : end.y;
    if (fit.a == 0.0F) {
        nV = Truncated(fit.b);
    } else {
        const float m = -1.0F / fit.a;
        const float k = static_cast<float>(nV) - static_cast<float>(nU) * m;
        nU = Truncated((k - fit.b) / (fit.a - m));
        nV = Truncated(-((fit.a * k - fit.b * m) / (m - fit.a)));
    }
    return {end.nIndex, bSteep ? nV : nU, bSteep ? nU : nV};
}

}  // namespace

LiteralTrace TraceLiterally(const SkeletonMap& map, POINT ptImage) {
    const std::int64_t c0 = std::int64_t{ptImage.x} + 2;
    const std::int64_t r0 = std::int64_t{map.Height()} - ptImage.y + 1;
    for (std::int64_t r = r0 - 2; r <= r0 + 2; ++r) {
        for (std::int64_t c = c0 - 2; c <= c0 + 1; ++c) {
            if (r < 0 || r >= map.Height() || c < 0 || c >= map.Width()) {
                continue;
            }
            const MapCell p{static_cast<std::int32_t>(r), static_cast<std::int32_t>(c)};
            if (map.At(p) != 0) {
                return IsPlain(map, p) ? WalkBothWays(map, p) : LiteralTrace{};
            }
        }
    }
    return {};
}

LiteralFit FitLiterally(const std::vector<LiteralPixel>& chain) {
    LiteralFit fit;
    fit.nAxis = 2;
    Sums s = SumsOf(chain, false);
    const float fFlat = (s.v * s.u - s.uv * s.n) / (s.u * s.u - s.n * s.uu);
    if (fFlat > 1.0F || fFlat < -1.0F || s.u * s.u - s.n * s.uu == 0.0F) {
        s = SumsOf(chain, true);
        fit.nAxis = 1;
    }
    fit.a = (s.v * s.u - s.uv * s.n) / (s.u * s.u - s.n * s.uu);
    fit.b = (s.v * s.uu - s.uv * s.u) / (s.n * s.uu - s.u * s.u);
    fit.first = OntoLine(chain.front(), fit);
    fit.last = OntoLine(chain.back(), fit);
    return fit;
}

}  // namespace width::test
