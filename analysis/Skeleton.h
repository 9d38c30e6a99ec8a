// The skeleton: every structure whose grey lies in a window becomes a line about one pixel wide.
//
// A fixed sequence of full-image passes, no iteration: city-block distance to the background by
// four one-sided passes, the ridge of that map, and a cleaning of 2 x 2 blocks. Distances are bytes
// and wrap: 255 + 1 is 0, so the inner part of a structure deeper than 255 pixels follows the
// wrapped values. Results depend on that wrap and on the scan orders; tests compare every result
// with a literal version.
// Tested by: tests/unit/analysis/SkeletonTest.cpp
#pragma once

#include <cstdint>
#include <optional>

#include "core/PackedDib.h"
#include "core/SkeletonMap.h"

namespace width {

/// Grey levels that count as foreground, both limits inclusive.
struct GreyWindow {
    std::int32_t nMinGrey = 0;
    std::int32_t nMaxGrey = 0;
};

/// Whether a window can be used: maximum above minimum, both within 0..255.
constexpr bool IsGreyWindowValid(GreyWindow window) noexcept {
    return window.nMaxGrey > window.nMinGrey && window.nMaxGrey < 256 && window.nMinGrey >= 0;
}

/// Grey value of a colour for the skeleton: (0.299 R + 0.587 G) + 0.114 B in double precision,
/// compared with the window without truncation or rounding. 128, 128, 128 gives
/// 127.99999999999999, which is inside neither 0..127 nor 128..255.
double SkeletonGrey(Colour colour) noexcept;

/// Makes the skeleton of everything in the picture whose grey lies in the window. The picture's
/// edge counts as background. A depth whose pixels can't be read gives an empty skeleton.
/// window   must be valid
/// returns  a map of 0 and 1, or nothing when memory runs out
std::optional<SkeletonMap> MakeSkeleton(const DibView& dib, GreyWindow window) noexcept;

}  // namespace width
