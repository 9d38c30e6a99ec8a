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

}  // namespace width::bench
