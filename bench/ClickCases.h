// Clicks to measure: on pictures as people bring them, and on paths made by a formula, long or as hard on the search as can
// be. All from fixed seeds.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "analysis/LineDetector.h"
#include "core/SkeletonMap.h"

namespace width::bench {

/// A skeleton, and image points on it where a click finds a path.
struct ClickInput {
    SkeletonMap map;
    std::vector<POINT> clicks;
};

struct ClickCase {
    std::string name;                  ///< input/size
    std::function<ClickInput()> make;  ///< some need 500 MB
};

/// The shipped samples, artwork, gratings, fibres, spirals, charts, seams: up to 100 clicks each.
std::vector<ClickCase> PictureClickCases();

/// Paths made by a formula, one click each. The waves among them are what the search takes half a wave off at either end,
/// again and again.
std::vector<ClickCase> PathClickCases();

/// The pixels of a circle, about nPixels of them, in order: the worst case for the farthest pair.
std::vector<PathPoint> CirclePath(std::int32_t nPixels);

}  // namespace width::bench
