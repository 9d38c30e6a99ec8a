// What is measured between two picked lines and how its label is laid out, word for word as the rules say it, for comparison.
// Nothing of measure/ is called.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "core/Platform.h"
#include "core/SkeletonMap.h"

namespace width::test {

/// A line end in the window of a click.
struct LiteralEnd {
    std::int32_t nId = 0;
    POINT ptBlock{};
};

/// All line ends in the window, in the order in which they are picked. (cx, cy)  the click, image coordinates
std::vector<LiteralEnd> EndsNear(const SkeletonMap& map, std::int32_t cx, std::int32_t cy);

using LiteralPoints = std::array<POINT, 4>;  ///< the ends of the first line, then those of the second

bool AreParallelLiterally(const LiteralPoints& ends, float fTolerance);
float PairWidthLiterally(const LiteralPoints& ends);

struct LiteralFeet {
    POINT pt1{};
    POINT pt2{};
};
LiteralFeet FeetLiterally(POINT pt, const LiteralPoints& ends);

/// The text of a label. Resolution in pixels per metre, 0: not known.
std::string TextLiterally(std::int32_t nLabel, POINT f1, POINT f2, std::int32_t nXPelsPerMeter, std::int32_t nYPelsPerMeter);

/// The two corners beside the tip. The arrow must have a length.
std::array<POINT, 2> ArrowHeadLiterally(POINT tip, POINT tail);

struct LiteralText {
    POINT anchor{};
    double angle = 0.0;
};
/// cy  height of the text
LiteralText PlaceTextLiterally(POINT f1, POINT f2, bool bSide, std::int32_t cy);

/// Where a text of cx by cy pixels begins whose middle is to lie on its anchor.
POINT TextStartLiterally(const LiteralText& text, std::int32_t cx, std::int32_t cy);

}  // namespace width::test
