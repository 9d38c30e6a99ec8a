// From a clicked point to a straight line on the skeleton.
//
// One LineDetector serves one click. TraceFromPoint takes the skeleton pixel near the click as the
// seed and walks the path through it in both directions, up to an end or a junction. SearchLine
// then looks for the straight stretch of that path on which the seed lies: it prunes the path to a
// one-sided convex hull and takes the hull edge that spans the seed; where the pixels under that
// edge are not straight, it narrows to them and looks from the other side; where the edge gets too
// short, TrimToStrip shortens the whole path until it lies in a narrow strip and fits a line to it.
//
// Path coordinates: x from the left, y from the bottom row of the picture (block space), so map
// cell (y + 2, x + 2). Integers are 32 bits and wrap; distances and fits are single precision, in
// the order written. docs/DECISIONS.md says how the walks and loops that have no natural end are
// ended.
// Tested by: tests/unit/analysis/LineDetectorTest.cpp, LineSearchTest.cpp
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "analysis/LineConditions.h"
#include "core/Platform.h"
#include "core/SkeletonMap.h"

namespace width {

class PathDistances;

/// One pixel of a path, in path coordinates.
struct PathPoint {
    std::int32_t nIndex = 0;  ///< 0 at the seed, rising forwards, falling backwards
    std::int32_t x = 0;
    std::int32_t y = 0;
    friend constexpr bool operator==(const PathPoint&, const PathPoint&) = default;
};

/// How a line's end points came about.
enum class FitAxis : std::int32_t {
    HullEdge = 0,  ///< two pixels of the path
    XOnY = 1,      ///< a steep fit, x = a * y + b
    YOnX = 2,      ///< a flat fit, y = a * x + b
};

/// Number of separate runs of skeleton pixels round a cell, 0..4: 1 at an end, 2 on a plain stretch
/// of line, 3 or more at a junction. The cell itself is not looked at; it must not be a border cell.
std::int32_t CrossingNumber(const SkeletonMap& map, MapCell cell) noexcept;

/// The first skeleton neighbour of a cell, straight ones before diagonal ones (up, left, down,
/// right, then up right, up left, down left, down right), that is neither excluded cell; or none.
std::optional<MapCell> NextPixel(const SkeletonMap& map, MapCell cell, MapCell excluded1, MapCell excluded2) noexcept;

class LineDetector {
public:
    explicit LineDetector(const LineConditions& conditions) noexcept : m_conditions(conditions) {}

    /// Finds the seed near a point and walks the path through it into m_Path.
    /// ptImage  image coordinates, y from the top; may lie beside the picture
    /// returns  1 with m_Path, m_bClosed and m_ptSeed (path coordinates) set; 0 when no skeleton
    ///          pixel lies within the search area or the first one found is an end or a junction.
    ///          Throws std::bad_alloc only.
    std::int32_t TraceFromPoint(const SkeletonMap& map, POINT ptImage);

    /// Looks for the straight stretch of m_Path on which the seed lies. Call once, after
    /// TraceFromPoint returned 1.
    /// returns  1 with m_ptFirst (backward end), m_ptLast, m_nFitAxis and m_bFound set, else 0.
    ///          Throws std::bad_alloc only.
    std::int32_t SearchLine();

    const std::vector<PathPoint>& Path() const noexcept { return m_Path; }
    PathPoint First() const noexcept { return m_ptFirst; }
    PathPoint Last() const noexcept { return m_ptLast; }
    FitAxis Axis() const noexcept { return m_nFitAxis; }
    bool IsClosed() const noexcept { return m_bClosed != 0; }
    bool IsFound() const noexcept { return m_bFound != 0; }
    POINT Seed() const noexcept { return m_ptSeed; }
    float Slope() const noexcept { return m_fSlope; }
    float Intercept() const noexcept { return m_fIntercept; }

    // The steps of the search, each usable on its own.

    /// Takes out of a chain every pixel at which it does not turn to the kept side (nSide +1:
    /// clockwise with y up, -1: anticlockwise); collinear pixels go too; head and tail stay.
    /// chain    positions in path, in order; changed in place
    /// returns  0 for fewer than two pixels, else 1
    static std::int32_t PruneToHull(std::span<const PathPoint> path, std::vector<std::int32_t>& chain, std::int32_t nSide);

    /// The two pixels that lie farthest apart by the single-precision distance; of several equal
    /// pairs the first in list order. Positions go to i and j, i < j; both stay as they were where no
    /// distance is above 0. Coordinates from 0 to 2^30. Throws std::bad_alloc only.
    /// returns  0 for an empty list, else 1
    static std::int32_t FindFarthestPair(std::span<const PathPoint> path, std::int32_t& i, std::int32_t& j);

    /// Whether two pixels are at least the minimum length apart.
    std::int32_t IsEdgeLongEnough(const PathPoint& p, const PathPoint& q) const noexcept;

    /// Whether the seed lies at most 1.0 pixel from the line through two pixels.
    std::int32_t IsSeedNearEdge(const PathPoint& p, const PathPoint& q) const noexcept;

    /// Whether a stretch has three or more pixels, none farther than 2.0 pixels from the line
    /// through its head and tail. Throws std::bad_alloc only.
    static std::int32_t IsChainStraight(std::span<const PathPoint> stretch);

    /// Shortens the path from its ends until it lies in a strip narrower than fRectWidth, then
    /// fits a line. Returns as SearchLine; 0 for an empty path. Throws std::bad_alloc only.
    std::int32_t TrimToStrip();

    /// Whether head and tail of a list are at least the minimum length apart; 0 for an empty list.
    std::int32_t IsChordLongEnough(std::span<const PathPoint> chain) const noexcept;

    /// Least-squares line through two or more pixels, end points moved onto it and truncated. Sets
    /// m_nFitAxis, m_fSlope, m_fIntercept, m_ptFirst and m_ptLast. Returns 1.
    std::int32_t FitLeastSquares(std::span<const PathPoint> chain) noexcept;

private:
    std::int32_t TracePath(const SkeletonMap& map, MapCell seed);
    void CutOpen();
    std::int32_t AcceptEdge(std::int32_t p, std::int32_t q) noexcept;
    std::int32_t GiveUpOnHull(const PathDistances& distances);
    std::int32_t TrimToStrip(const PathDistances& distances);

    LineConditions m_conditions;
    FitAxis m_nFitAxis = FitAxis::HullEdge;
    POINT m_ptSeed{};
    PathPoint m_ptFirst;
    PathPoint m_ptLast;
    std::vector<PathPoint> m_Path;
    std::int32_t m_bFound = 0;
    std::int32_t m_bClosed = 0;
    float m_fSlope = 0.0F;
    float m_fIntercept = 0.0F;
};

}  // namespace width
