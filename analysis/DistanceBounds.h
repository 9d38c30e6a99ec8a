// How far from a line the pixels of a stretch can be at most. Internal to the analysis.
//
// By the corners of the stretch's box, which is exact for level and upright paths, rounding included; and by the corners of
// its convex hull, since beside a slanting path a box leaves too much room. The smaller bound counts.
// Tested by: tests/unit/analysis/LineSearchTest.cpp
#pragma once

#include <span>
#include <vector>

#include "analysis/PathBoxes.h"
#include "analysis/PathLine.h"

namespace width {

class DistanceBounds {
public:
    /// For all nodes of the boxes, which must outlive the object. Throws std::bad_alloc.
    explicit DistanceBounds(const PathBoxes& boxes);

    const PathBoxes& Boxes() const noexcept { return m_boxes; }

    /// Of the distances from one line.
    class Of {
    public:
        /// line  must be one (PathLine::IsLine). It and the bounds must outlive the object.
        Of(const DistanceBounds& bounds, const PathLine& line) noexcept;

        /// No pixel of the node has a larger, or a smaller, line.Distance.
        float Largest(PathBoxes::Node node) const noexcept;
        float Smallest(PathBoxes::Node node) const noexcept;

    private:
        float LargestAtCorners(PathBoxes::Node node, double fSign) const noexcept;

        const DistanceBounds& m_bounds;
        const PathLine& m_line;
        double m_error;
    };

private:
    // Hull corners of all nodes of a level, one node behind the other.
    struct Level {
        std::vector<PathPoint> corners;
        std::vector<std::size_t> ends;
    };

    std::span<const PathPoint> Corners(PathBoxes::Node node) const noexcept;

    const PathBoxes& m_boxes;
    std::vector<Level> m_levels;
};

}  // namespace width
