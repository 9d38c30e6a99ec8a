// Which pixels of a stretch are far from a line. Internal to the analysis.
//
// Whole nodes are passed over by how far their pixels can be at most: by the corners of the node's box, which is exact for
// level and upright paths, rounding included; and by the corners of its convex hull, since beside a slanting path a box leaves
// too much room. The smaller bound counts. Where coordinates are so large that products of them are rounded, tops of waves are
// often equally far but for roundings, and each has to be looked at: the pixels of a leaf are taken four at a time.
// Tested by: tests/unit/analysis/LineSearchTest.cpp
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "analysis/PathBoxes.h"
#include "analysis/PathLine.h"

namespace width {

class PathDistances {
public:
    /// Leaves of this size suit a search best: to look at them takes about as long as to tell which of them to look at.
    static constexpr std::size_t kLeafPixels = 256;

    /// boxes  must outlive the object, and so must their path. Throws std::bad_alloc.
    explicit PathDistances(const PathBoxes& boxes);

    const PathBoxes& Boxes() const noexcept { return m_boxes; }

    /// The two pixels of a stretch farthest from a line, one on each side, and how far they are. The first of several equal
    /// ones counts; a stretch with nothing on a side has its head there, at 0.
    struct Extremes {
        PathBoxes::Largest above;
        PathBoxes::Largest below;  ///< the distance negated
    };
    /// line  must be one (PathLine::IsLine)
    Extremes FindExtremes(const PathLine& line, PathBoxes::Range stretch) const;

    /// Whether no pixel of a stretch is farther from a line, which must be one, than fMost on either side.
    bool AreWithin(float fMost, const PathLine& line, PathBoxes::Range stretch) const;

    /// Bounds of the distances from one line.
    class Bounds {
    public:
        /// line  must be one. It and the distances must outlive the object.
        Bounds(const PathDistances& distances, const PathLine& line) noexcept;

        /// No pixel of the node has a larger, or a smaller, line.Distance.
        float Largest(PathBoxes::Node node) const noexcept;
        float Smallest(PathBoxes::Node node) const noexcept;

    private:
        float LargestAtCorners(PathBoxes::Node node, double fSign) const noexcept;

        const PathDistances& m_distances;
        const PathLine& m_line;
        bool m_bProductsExact;
        double m_error;
    };

private:
    // Hull corners of all nodes of a level, one node behind the other.
    struct Level {
        std::vector<PathPoint> corners;
        std::vector<std::size_t> ends;
    };

    std::span<const PathPoint> Corners(PathBoxes::Node node) const noexcept;
    void TakeLargest(const PathLine& line, float fSign, PathBoxes::Range range, PathBoxes::Largest& largest) const noexcept;

    const PathBoxes& m_boxes;
    std::vector<Level> m_levels;
    // Coordinates of all pixels as floats.
    std::vector<float> m_x;
    std::vector<float> m_y;
};

}  // namespace width
