// The two pixels of a ring that lie farthest apart, in the search's own arithmetic.
//
// The result is that of comparing every pixel with every later one by EdgeLength, a strictly
// greater distance winning. EdgeLength rounds, so the pair that is farthest in whole numbers is
// often not the one that wins. But it rounds little: a pair that reaches the largest rounded
// distance has a squared length of at least (1 - 2^-20) times the largest one. The largest squared
// length is found on the convex hull; only pixels with a hull corner at least that far away can be
// part of the winning pair. Pairs of those few are compared by boxes round stretches of them: where
// two boxes can hold no pair that wins, none of their pixels are looked at.
//
// The squared y difference wraps beyond 46,340 rows, and a column beyond 2^24 becomes a float with an
// error as large as a short distance. The farthest pair has nothing to do with the hull then: all
// pixels of such a ring are compared, by the same boxes.
// Tested by: tests/unit/analysis/LineSearchTest.cpp (against all pairs)
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <tuple>

#include "analysis/ConvexHull.h"
#include "analysis/PathBoxes.h"
#include "analysis/PathLine.h"

namespace width {

namespace {

constexpr std::size_t kLeafPixels = 8;  // each is compared with each of another leaf

constexpr std::int64_t kTallest = 46'340;           // the largest number whose square fits 32 bits
constexpr std::int32_t kLastExactColumn = 1 << 24;  // columns up to here are floats

std::int64_t SquaredLength(const PathPoint& p, const PathPoint& q) noexcept {
    const std::int64_t dx = std::int64_t{q.x} - p.x;
    const std::int64_t dy = std::int64_t{q.y} - p.y;
    return dx * dx + dy * dy;
}

// The largest distance of coordinates in one range from those in another.
template <typename T>
T LargestGap(T nLow1, T nHigh1, T nLow2, T nHigh2) noexcept {
    return std::max(nHigh2 - nLow1, nHigh1 - nLow2);
}

// No pixel in the box is farther from the corner than this.
std::int64_t LargestSquaredLength(const PathBox& box, const PathPoint& corner) noexcept {
    const std::int64_t dx = LargestGap<std::int64_t>(box.xLow, box.xHigh, corner.x, corner.x);
    const std::int64_t dy = LargestGap<std::int64_t>(box.yLow, box.yHigh, corner.y, corner.y);
    return dx * dx + dy * dy;
}

// Collects the positions of the pixels that have one of some points at least so far away.
class FarPixels {
public:
    FarPixels(const PathBoxes& boxes, std::int64_t nEnough) : m_boxes(boxes), m_nEnough(nEnough) {}

    void Collect(PathBoxes::Node node, std::span<const PathPoint> corners) {
        std::vector<PathPoint> distant;
        std::ranges::copy_if(corners, std::back_inserter(distant),
                             [&](const PathPoint& pt) { return LargestSquaredLength(m_boxes.Box(node), pt) >= m_nEnough; });
        if (distant.empty()) {
            return;
        }
        if (node.nLevel == 0) {
            CollectPixels(m_boxes.Pixels(node), distant);
            return;
        }
        Collect(PathBoxes::Lower(node), distant);
        if (const std::optional<PathBoxes::Node> upper = m_boxes.Upper(node)) {
            Collect(*upper, distant);
        }
    }

    std::vector<std::size_t> positions;

private:
    void CollectPixels(PathBoxes::Range range, std::span<const PathPoint> corners) {
        for (std::size_t i = range.nFirst; i <= range.nLast; ++i) {
            const PathPoint& pixel = m_boxes.Path()[i];
            if (std::ranges::any_of(corners, [&](const PathPoint& pt) { return SquaredLength(pixel, pt) >= m_nEnough; })) {
                positions.push_back(i);
            }
        }
    }

    const PathBoxes& m_boxes;
    std::int64_t m_nEnough;
};

// Positions of the pixels that can be part of the winning pair, in list order, where no square wraps.
std::vector<std::size_t> Candidates(std::span<const PathPoint> path) {
    std::vector<PathPoint> corners(path.begin(), path.end());
    std::ranges::sort(corners, IsLeftOf);
    KeepHullCorners(corners);
    std::int64_t nLargest = 0;
    for (auto it = corners.begin(); it != corners.end(); ++it) {
        for (auto other = it + 1; other != corners.end(); ++other) {
            nLargest = std::max(nLargest, SquaredLength(*it, *other));
        }
    }
    const PathBoxes boxes(path, kLeafPixels);
    FarPixels distant(boxes, nLargest - (nLargest >> 20) - 1);
    distant.Collect(boxes.Root(), corners);
    return std::move(distant.positions);
}

// The first of the pairs with the largest EdgeLength.
class PairSearch {
public:
    explicit PairSearch(const PathBoxes& boxes) : m_boxes(boxes) {
        const PathBoxes::Node root = boxes.Root();
        Compare({LongestIn(root, root), root, root});
    }

    float fLength = 0.0F;
    std::size_t nFirst = 0;
    std::size_t nSecond = 0;

private:
    struct NodePair {
        float fBound;  // no pair with a pixel in each has a larger EdgeLength
        PathBoxes::Node a;
        PathBoxes::Node b;
    };

    // No integer from nLow to nHigh has a larger square, on 32 bits. Between two wraps squares rise, so the largest one is
    // that of nHigh or of an integer just before a wrap. Of ranges with many wraps only the largest number is known.
    static std::int64_t LargestWrappedSquare(std::int64_t nLow, std::int64_t nHigh) noexcept {
        constexpr std::int64_t kMax = std::numeric_limits<std::int32_t>::max();
        constexpr std::int64_t kMostWraps = 4;
        const auto wraps = [](std::int64_t n) { return (n * n + kMax + 1) >> 32; };
        if (wraps(nHigh) - wraps(nLow) > kMostWraps) {
            return kMax;
        }
        std::int64_t nLargest = nHigh * nHigh - (wraps(nHigh) << 32);
        for (std::int64_t k = wraps(nLow); k < wraps(nHigh); ++k) {
            auto n = static_cast<std::int64_t>(std::sqrt(static_cast<double>((k << 32) + kMax)));
            n -= wraps(n) > k ? 1 : 0;
            nLargest = std::max(nLargest, n * n - (k << 32));
        }
        return nLargest;
    }

    // By EdgeLength's own steps, each of which rises with the differences. Negative where no pair's is a number.
    float LongestIn(PathBoxes::Node a, PathBoxes::Node b) const noexcept {
        const PathBox& p = m_boxes.Box(a);
        const PathBox& q = m_boxes.Box(b);
        const float dx = LargestGap(static_cast<float>(p.xLow), static_cast<float>(p.xHigh), static_cast<float>(q.xLow),
                                    static_cast<float>(q.xHigh));
        const std::int64_t dyHigh = LargestGap<std::int64_t>(p.yLow, p.yHigh, q.yLow, q.yHigh);
        const std::int64_t dyLow = std::max({std::int64_t{q.yLow} - p.yHigh, std::int64_t{p.yLow} - q.yHigh, std::int64_t{0}});
        const float fSquare = dx * dx + static_cast<float>(LargestWrappedSquare(dyLow, dyHigh));
        return fSquare < 0.0F ? -1.0F : std::sqrt(fSquare);
    }

    bool Wins(float f, std::size_t i, std::size_t j) const noexcept {
        return f > fLength || (f == fLength && std::tie(i, j) < std::tie(nFirst, nSecond));
    }

    // b is a or lies behind it on the same level.
    void Compare(const NodePair& pair) noexcept {
        const PathBoxes::Range a = m_boxes.Pixels(pair.a);
        const PathBoxes::Range b = m_boxes.Pixels(pair.b);
        if (!Wins(pair.fBound, a.nFirst, std::max(a.nFirst + 1, b.nFirst))) {
            return;
        }
        pair.a.nLevel == 0 ? ComparePixels(a, b) : CompareHalves(pair.a, pair.b);
    }

    void CompareHalves(PathBoxes::Node a, PathBoxes::Node b) noexcept {
        std::array<NodePair, 4> pairs;
        std::size_t nPairs = 0;
        const auto add = [&](PathBoxes::Node p, PathBoxes::Node q) { pairs[nPairs++] = {LongestIn(p, q), p, q}; };
        const auto addBoth = [&](PathBoxes::Node p) {
            add(p, PathBoxes::Lower(b));
            if (const std::optional<PathBoxes::Node> upper = m_boxes.Upper(b)) {
                add(p, *upper);
            }
        };
        addBoth(PathBoxes::Lower(a));
        if (const std::optional<PathBoxes::Node> upper = m_boxes.Upper(a); upper && a != b) {
            addBoth(*upper);
        } else if (upper) {
            add(*upper, *upper);
        }
        // The farthest ones first: what they give rules out most of the others.
        const auto end = pairs.begin() + static_cast<std::ptrdiff_t>(nPairs);
        for (auto next = pairs.begin(); next != end; ++next) {
            std::iter_swap(next,
                           std::max_element(next, end, [](const NodePair& p, const NodePair& q) { return p.fBound < q.fBound; }));
            Compare(*next);
        }
    }

    void ComparePixels(PathBoxes::Range a, PathBoxes::Range b) noexcept {
        const std::span<const PathPoint> path = m_boxes.Path();
        for (std::size_t i = a.nFirst; i <= a.nLast; ++i) {
            for (std::size_t j = std::max(i + 1, b.nFirst); j <= b.nLast; ++j) {
                const float f = EdgeLength(path[i], path[j]);
                if (Wins(f, i, j)) {
                    fLength = f;
                    nFirst = i;
                    nSecond = j;
                }
            }
        }
    }

    const PathBoxes& m_boxes;
};

}  // namespace

std::int32_t LineDetector::FindFarthestPair(std::span<const PathPoint> path, std::int32_t& i, std::int32_t& j) {
    if (path.empty()) {
        return 0;
    }
    const auto [yLow, yHigh] = std::ranges::minmax_element(path, {}, &PathPoint::y);
    const auto right = std::ranges::max_element(path, {}, &PathPoint::x);
    std::vector<std::size_t> positions;
    std::vector<PathPoint> candidates;
    if (std::int64_t{yHigh->y} - yLow->y <= kTallest && right->x <= kLastExactColumn) {
        positions = Candidates(path);
        std::ranges::transform(positions, std::back_inserter(candidates), [&](std::size_t n) { return path[n]; });
    }
    const PathBoxes boxes(positions.empty() ? path : candidates, kLeafPixels);
    const PairSearch search(boxes);
    if (search.fLength > 0.0F) {
        const auto position = [&](std::size_t n) { return static_cast<std::int32_t>(positions.empty() ? n : positions[n]); };
        i = position(search.nFirst);
        j = position(search.nSecond);
    }
    return 1;
}

}  // namespace width
