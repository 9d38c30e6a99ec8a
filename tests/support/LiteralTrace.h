// The way from a click to a fitted line but for the search in between, step by step as its rules say it, for comparison: seed
// search, walk and fit. Slow on purpose; nothing of analysis/ is called.
#pragma once

#include <vector>

#include "core/Platform.h"
#include "core/SkeletonMap.h"

namespace width::test {

/// A pixel of a path: its number from the seed on, and its place from the bottom left of the picture.
struct LiteralPixel {
    std::int32_t nIndex = 0;
    std::int32_t x = 0;
    std::int32_t y = 0;
    friend bool operator==(const LiteralPixel&, const LiteralPixel&) = default;
};

struct LiteralTrace {
    bool bFound = false;    ///< whether a path stands in the other fields
    bool bClosed = false;   ///< whether the walk came back to its seed
    bool bCircled = false;  ///< whether it came back elsewhere and was cut; not part of the result
    LiteralPixel seed;
    std::vector<LiteralPixel> path;
};

/// ptImage  the click, y from the top
LiteralTrace TraceLiterally(const SkeletonMap& map, POINT ptImage);

struct LiteralFit {
    std::int32_t nAxis = 0;  ///< 2: y = a x + b, 1: x = a y + b
    float a = 0.0F;
    float b = 0.0F;
    LiteralPixel first;  ///< the chain's ends, moved onto the line
    LiteralPixel last;
};

/// chain  two pixels or more
LiteralFit FitLiterally(const std::vector<LiteralPixel>& chain);

}  // namespace width::test
