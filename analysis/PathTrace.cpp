// The walk: from a click to the ordered path of skeleton pixels through the seed.
// Tested by: tests/unit/analysis/LineDetectorTest.cpp
#include <algorithm>
#include <array>

#include "analysis/LineDetector.h"

namespace width {

namespace {

struct Offset {
    std::int32_t row;
    std::int32_t column;
};

// The order is the tie-break among neighbours: straight before diagonal. Row + 1 is up in the picture.
constexpr std::array<Offset, 8> g_NeighbourOffsets = {
    {{+1, 0}, {0, -1}, {-1, 0}, {0, +1}, {+1, +1}, {+1, -1}, {-1, -1}, {-1, +1}}};

// The ring of neighbours, from straight up anticlockwise as seen in the picture.
constexpr std::array<Offset, 8> kRing = {{{+1, 0}, {+1, -1}, {0, -1}, {-1, -1}, {-1, 0}, {-1, +1}, {0, +1}, {+1, +1}}};

// The search area round a click: five rows by four columns, not centred.
constexpr std::int64_t kRowsBelow = 2;
constexpr std::int64_t kRowsAbove = 2;
constexpr std::int64_t kColumnsLeft = 2;
constexpr std::int64_t kColumnsRight = 1;

MapCell Neighbour(MapCell cell, Offset offset) noexcept {
    return {cell.row + offset.row, cell.column + offset.column};
}

bool IsSkeleton(const SkeletonMap& map, MapCell cell) noexcept {
    return map.At(cell) != 0;
}

// Whether ring position i is background and the one behind it is skeleton: a run begins there.
bool BeginsRun(const SkeletonMap& map, MapCell cell, std::size_t i) noexcept {
    return !IsSkeleton(map, Neighbour(cell, kRing[i])) && IsSkeleton(map, Neighbour(cell, kRing[(i + 1) % 8]));
}

// First cells of the two runs round a seed of crossing number 2, in the order of the ring pairs
// (0, 1) to (7, 0): straight up is met last.
std::array<MapCell, 2> Branches(const SkeletonMap& map, MapCell seed) noexcept {
    std::array<MapCell, 2> branches{};
    std::size_t nFound = 0;
    for (std::size_t i = 0; i < 8 && nFound < 2; ++i) {
        if (BeginsRun(map, seed, i)) {
            branches[nFound++] = Neighbour(seed, kRing[(i + 1) % 8]);
        }
    }
    return branches;
}

// The first cell of the search area that is skeleton, lowest row and then lowest column first.
// Cells at or beyond height or width in map coordinates are not looked at.
std::optional<MapCell> FindSeed(const SkeletonMap& map, POINT ptImage) noexcept {
    const std::int64_t nRow = std::int64_t{map.Height()} - ptImage.y + 1;
    const std::int64_t nColumn = std::int64_t{ptImage.x} + 2;
    const std::int64_t nLastRow = std::min<std::int64_t>(nRow + kRowsAbove, map.Height() - 1);
    const std::int64_t nLastColumn = std::min<std::int64_t>(nColumn + kColumnsRight, map.Width() - 1);
    for (std::int64_t r = std::max<std::int64_t>(nRow - kRowsBelow, 0); r <= nLastRow; ++r) {
        for (std::int64_t c = std::max<std::int64_t>(nColumn - kColumnsLeft, 0); c <= nLastColumn; ++c) {
            const MapCell cell{static_cast<std::int32_t>(r), static_cast<std::int32_t>(c)};
            if (IsSkeleton(map, cell)) {
                return cell;
            }
        }
    }
    return std::nullopt;
}

// Notices that a walk circles without coming back to the seed. Where a walk goes next depends on
// its last three cells alone, so a walk that has the same three again goes round for ever. One
// earlier place is compared at each step, moved on at doubling distances (Brent's method), so a
// walk that ends by itself pays a comparison a step.
class CircleWatch {
public:
    /// To be asked after each new cell. Once a circle is certain, cuts the walk to the cells before
    /// the first repetition, so that the circle stands in it once, and returns true.
    bool Ends(std::vector<MapCell>& walk) {
        const std::size_t nNow = walk.size() - 1;
        if (IsSame(walk, m_nMark, nNow)) {
            Cut(walk, nNow - m_nMark);
            return true;
        }
        if (nNow == m_nNextMark) {
            m_nMark = nNow;
            m_nNextMark = 2 * nNow;
        }
        return false;
    }

private:
    static constexpr std::size_t kFirst = 2;  // the first place with three cells behind it

    static bool IsSame(const std::vector<MapCell>& walk, std::size_t a, std::size_t b) {
        return a != b && walk[a] == walk[b] && walk[a - 1] == walk[b - 1] && walk[a - 2] == walk[b - 2];
    }

    static void Cut(std::vector<MapCell>& walk, std::size_t nPeriod) {
        std::size_t nStart = kFirst;
        while (!IsSame(walk, nStart, nStart + nPeriod)) {
            ++nStart;
        }
        walk.resize(nStart - kFirst + nPeriod);  // the three cells up to nStart + nPeriod are a repetition
    }

    std::size_t m_nMark = kFirst;
    std::size_t m_nNextMark = 4;
};

// Goes on from a walk of three cells or more until there is no next pixel, an end or a junction, or
// a circle. With a seed to look for, also until the walk is back there; the seed is then not
// repeated and the result is true.
bool WalkOn(const SkeletonMap& map, std::vector<MapCell>& walk, const MapCell* pSeed) {
    CircleWatch watch;
    while (CrossingNumber(map, walk.back()) == 2 && !watch.Ends(walk)) {
        const std::size_t n = walk.size();
        const std::optional<MapCell> next = NextPixel(map, walk[n - 1], walk[n - 2], walk[n - 3]);
        if (!next) {
            return false;
        }
        if (pSeed != nullptr && *next == *pSeed) {
            return true;
        }
        walk.push_back(*next);
    }
    return false;
}

PathPoint ToPathPoint(MapCell cell, std::int32_t nIndex) noexcept {
    return {nIndex, cell.column - SkeletonMap::kBorder, cell.row - SkeletonMap::kBorder};
}

}  // namespace

std::int32_t CrossingNumber(const SkeletonMap& map, MapCell cell) noexcept {
    std::int32_t nRuns = 0;
    for (std::size_t i = 0; i < 8; ++i) {
        nRuns += BeginsRun(map, cell, i) ? 1 : 0;
    }
    return nRuns;
}

std::optional<MapCell> NextPixel(const SkeletonMap& map, MapCell cell, MapCell excluded1, MapCell excluded2) noexcept {
    for (const Offset offset : g_NeighbourOffsets) {
        const MapCell next = Neighbour(cell, offset);
        if (IsSkeleton(map, next) && next != excluded1 && next != excluded2) {
            return next;
        }
    }
    return std::nullopt;
}

std::int32_t LineDetector::TraceFromPoint(const SkeletonMap& map, POINT ptImage) {
    const std::optional<MapCell> seed = FindSeed(map, ptImage);
    if (!seed || CrossingNumber(map, *seed) != 2) {
        return 0;
    }
    return TracePath(map, *seed);
}

std::int32_t LineDetector::TracePath(const SkeletonMap& map, MapCell seed) {
    const auto [a, b] = Branches(map, seed);
    std::vector<MapCell> forward = {seed, a};
    if (const std::optional<MapCell> a2 = NextPixel(map, a, seed, b)) {
        forward.push_back(*a2);
        m_bClosed = WalkOn(map, forward, &seed) ? 1 : 0;
    }
    std::vector<MapCell> backward;
    if (m_bClosed == 0) {
        // A branch without a further pixel stands twice on this side of the seed, and on this only.
        backward = {seed, b, NextPixel(map, b, seed, a).value_or(b)};
        WalkOn(map, backward, nullptr);
    }
    m_Path.clear();
    m_Path.reserve(forward.size() + backward.size());
    for (std::size_t i = backward.size(); i-- > 1;) {
        m_Path.push_back(ToPathPoint(backward[i], -static_cast<std::int32_t>(i)));
    }
    for (std::size_t i = 0; i < forward.size(); ++i) {
        m_Path.push_back(ToPathPoint(forward[i], static_cast<std::int32_t>(i)));
    }
    const PathPoint ptSeed = ToPathPoint(seed, 0);
    m_ptSeed = {ptSeed.x, ptSeed.y};
    return 1;
}

}  // namespace width
