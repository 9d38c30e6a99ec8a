// What a click in the line tool does, from the image point to the stored line.
// Tested by: tests/unit/analysis/LineStoreTest.cpp
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "analysis/LineDetector.h"

namespace width {

/// One detected line. Only x and y of the end points are filled in, in path coordinates (y from the
/// bottom row). ptFirst is the end on the backward side of the seed. An end point may lie outside
/// the picture by a pixel or so.
struct DetectedLine {
    PathPoint ptFirst;
    PathPoint ptLast;
    friend constexpr bool operator==(const DetectedLine&, const DetectedLine&) = default;
};

/// All lines of a job in the order of detection, and the id for the next one that is marked. An id
/// is no index into m_Lines: a line that could not be marked takes none.
struct LineStore {
    std::vector<DetectedLine> m_Lines;
    std::int32_t m_nNextLineId = 2;
};

/// How a detection ended. The other fields mean something only when bStored is set.
struct Detection {
    bool bStored = false;
    DetectedLine line;
    FitAxis nFitAxis = FitAxis::HullEdge;
    std::optional<std::int32_t> nId;  ///< full value of the line's id; none when an end lies outside the picture
};

/// Detects the line at a point, appends it to the store and writes the low 8 bits of its id into
/// the map's cells under its two ends, both or neither: a line with an end outside the picture is
/// stored without marks and takes no id.
/// ptImage  image coordinates, y from the top; may lie beside the picture
/// returns  what was stored. When nothing was found, or memory ran out, store and map are unchanged.
Detection DetectLine(SkeletonMap& map, POINT ptImage, const LineConditions& conditions, LineStore& store) noexcept;

}  // namespace width
