// Pictures, skeleton maps and paths to measure on. All are made from fixed seeds: two runs, on
// whatever machine, measure the same pixels.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "analysis/LineDetector.h"
#include "analysis/Skeleton.h"
#include "core/PackedDib.h"
#include "core/SkeletonMap.h"

namespace width::bench {

/// What a picture shows.
enum class Scene {
    LineArt,    ///< dark strokes 3 to 20 pixels wide on white, 15 % of the pixels
    LineSpace,  ///< noisy lines: leaning dark lines and light spaces, 12 pixels each, with noise at the edges
    DeepAreas,  ///< dark areas deeper than 255 pixels, with a few light pixels in them
};

const char* SceneName(Scene scene) noexcept;

/// The window that takes the dark parts of every scene.
inline constexpr GreyWindow kDark{0, 127};

/// A square picture of nSize pixels a side, in 1, 4 or 8 bits with a grey table or in 24 or 32 bits. The
/// one made last is kept; a reference is good until the next call.
const std::vector<std::byte>& Picture(Scene scene, std::int32_t nSize, std::uint16_t nBitCount);

/// A path and the map that it lies in; the click that traces it is an image point on it.
struct PathMap {
    SkeletonMap map;
    POINT ptClick;
};

/// A path that runs to and fro in rows three apart, of about nPixels pixels.
PathMap Serpentine(std::int32_t nPixels);

/// A closed path of about nPixels pixels: the outline of a comb.
PathMap CombRing(std::int32_t nPixels);

/// A ring: the pixels of a circle, about nPixels of them.
PathMap CircleRing(std::int32_t nPixels);

// Paths of nPixels on which the search takes half a wave off at either end, again and again.

/// Up 3 and down 3, to the right.
PathMap LevelWaves(std::int32_t nPixels);
/// The same, a tenth uphill.
PathMap SlantingWaves(std::int32_t nPixels);
/// Six pixels up, six to the right.
PathMap Stairs(std::int32_t nPixels);
/// To the right, with teeth that lean back over the gap before them.
PathMap LeaningTeeth(std::int32_t nPixels);
/// Five pixels uphill, four downhill: many tops that are equally far from what is trimmed, but for roundings.
PathMap UnevenWaves(std::int32_t nPixels);
/// Upright teeth, two pixels wide and each a little higher than the one before, whose tops are equally far from what is trimmed.
PathMap SlantingComb(std::int32_t nPixels);

/// The pixels of a circle, about nPixels of them, in order: the worst case for the farthest pair.
std::vector<PathPoint> CirclePath(std::int32_t nPixels);

}  // namespace width::bench
