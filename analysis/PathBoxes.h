// A path in boxes, so that a search over its pixels can pass over whole stretches. Internal to the analysis.
//
// Leaves are boxes round so many pixels that follow each other, and each box above is round two. What a search asks for
// must have a bound over a box that no pixel in it can exceed in the arithmetic of the answer itself; floating-point
// operations are monotone, so a formula whose every step rises or falls with the coordinates has its bound in a corner.
// Tested by: tests/unit/analysis/LineSearchTest.cpp
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "analysis/LineDetector.h"

namespace width {

/// Both ends of each range are included.
struct PathBox {
    std::int32_t xLow;
    std::int32_t xHigh;
    std::int32_t yLow;
    std::int32_t yHigh;

    bool Holds(std::int32_t x, std::int32_t y) const noexcept { return x >= xLow && x <= xHigh && y >= yLow && y <= yHigh; }
};

class PathBoxes {
public:
    /// path         not empty; must outlive the object
    /// nLeafPixels  in each leaf but the last, which may have fewer
    /// Throws std::bad_alloc.
    PathBoxes(std::span<const PathPoint> path, std::size_t nLeafPixels);

    /// A box by its level (0: leaves) and its place on that level.
    struct Node {
        std::size_t nLevel = 0;
        std::size_t nPlace = 0;
        friend bool operator==(const Node&, const Node&) = default;
    };

    /// Positions of pixels in the path, both included, the first not behind the last.
    struct Range {
        std::size_t nFirst = 0;
        std::size_t nLast = 0;
        friend bool operator==(const Range&, const Range&) = default;
    };

    /// The largest value found, and where.
    struct Largest {
        float fValue = 0.0F;
        std::size_t nPosition = 0;
    };

    /// The path of the constructor.
    std::span<const PathPoint> Path() const noexcept { return m_path; }

    /// The node of all pixels, alone on the highest level.
    Node Root() const noexcept { return {m_levels.size() - 1, 0}; }

    /// The smallest box that holds a node's pixels.
    const PathBox& Box(Node node) const noexcept { return m_levels[node.nLevel][node.nPlace]; }

    /// Nodes on a level up to the root's.
    std::size_t Count(std::size_t nLevel) const noexcept { return m_levels[nLevel].size(); }

    /// Pixels of a box.
    Range Pixels(Node node) const noexcept {
        const std::size_t nPixels = m_nLeafPixels << node.nLevel;
        return {node.nPlace * nPixels, std::min((node.nPlace + 1) * nPixels, m_path.size()) - 1};
    }

    /// The lower half of a box that is not a leaf; the upper half if there is one.
    static Node Lower(Node node) noexcept { return {node.nLevel - 1, 2 * node.nPlace}; }
    std::optional<Node> Upper(Node node) const noexcept {
        const Node upper{node.nLevel - 1, 2 * node.nPlace + 1};
        return upper.nPlace < m_levels[upper.nLevel].size() ? std::optional(upper) : std::nullopt;
    }

    /// The first position in a range whose pixel passes.
    /// mayHold  of a node: false only if none of its pixels passes
    template <class MayHold, class Passes>
    std::optional<std::size_t> FindFirst(Range range, MayHold mayHold, Passes passes) const {
        return FindFirst(Root(), range, mayHold, passes);
    }

    /// The position in a range whose pixel has the largest value; of several, the first. Values up to 0 and values that are
    /// not numbers don't count: with nothing above 0 the answer is 0 at the range's first position.
    /// takeLargest  of a range and a Largest, which it sets to the range's own if that is larger, or as large and before it
    /// bound        of a node: none of its pixels has a larger value
    template <class TakeLargest, class Bound>
    Largest FindLargest(Range range, TakeLargest takeLargest, Bound bound) const {
        Largest largest{0.0F, range.nFirst};
        FindLargest(Root(), bound(Root()), range, takeLargest, bound, largest);
        return largest;
    }

private:
    Range Shared(Node node, Range range) const noexcept {
        const Range pixels = Pixels(node);
        return {std::max(pixels.nFirst, range.nFirst), std::min(pixels.nLast, range.nLast)};
    }

    template <class MayHold, class Passes>
    std::optional<std::size_t> FindFirst(Node node, Range range, MayHold mayHold, Passes passes) const {
        const Range shared = Shared(node, range);
        if (shared.nFirst > shared.nLast || !mayHold(node)) {
            return std::nullopt;
        }
        if (node.nLevel == 0) {
            const auto end = m_path.begin() + static_cast<std::ptrdiff_t>(shared.nLast) + 1;
            const auto found = std::find_if(m_path.begin() + static_cast<std::ptrdiff_t>(shared.nFirst), end, passes);
            return found == end ? std::nullopt : std::optional(static_cast<std::size_t>(found - m_path.begin()));
        }
        const std::optional<std::size_t> found = FindFirst(Lower(node), range, mayHold, passes);
        const std::optional<Node> upper = Upper(node);
        return found || !upper ? found : FindFirst(*upper, range, mayHold, passes);
    }

    // The half with the larger bound is looked at first: it makes most of the other one superfluous.
    template <class TakeLargest, class Bound>
    void FindLargest(Node node, float fBound, Range range, TakeLargest takeLargest, Bound bound, Largest& largest) const {
        const Range shared = Shared(node, range);
        if (shared.nFirst > shared.nLast || fBound < largest.fValue ||
            (fBound == largest.fValue && shared.nFirst >= largest.nPosition)) {
            return;
        }
        if (node.nLevel == 0) {
            takeLargest(shared, largest);
            return;
        }
        const Node lower = Lower(node);
        const std::optional<Node> upper = Upper(node);
        if (!upper || shared.nLast <= Pixels(lower).nLast) {
            FindLargest(lower, bound(lower), range, takeLargest, bound, largest);
        } else if (shared.nFirst > Pixels(lower).nLast) {
            FindLargest(*upper, bound(*upper), range, takeLargest, bound, largest);
        } else {
            const float fLower = bound(lower);
            const float fUpper = bound(*upper);
            if (fUpper > fLower) {
                FindLargest(*upper, fUpper, range, takeLargest, bound, largest);
            }
            FindLargest(lower, fLower, range, takeLargest, bound, largest);
            if (!(fUpper > fLower)) {
                FindLargest(*upper, fUpper, range, takeLargest, bound, largest);
            }
        }
    }

    std::span<const PathPoint> m_path;
    std::size_t m_nLeafPixels;
    std::vector<std::vector<PathBox>> m_levels;
};

}  // namespace width
