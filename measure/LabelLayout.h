// Where the parts of a dimension label lie: arrow heads, and the text along the arrow.
//
// All points are pixels with y down, of the surface that the label is drawn on. Single precision, truncations towards
// zero and the literal value of pi are part of the layout.
// Tested by: tests/unit/measure/LabelLayoutTest.cpp
#pragma once

#include <cstdint>
#include <optional>

#include "core/Platform.h"
#include "measure/Width.h"

namespace width {

inline constexpr std::int32_t kArrowWidth = 3;      ///< base of an arrow head, pixels
inline constexpr double kArrowTheta = 0.314159265;  ///< radians; sets the head's length

/// The filled triangle at the tip of an arrow, beside its tip: the two corners of its base.
struct ArrowHead {
    POINT ptCorner1{};
    POINT ptCorner2{};
};

/// The head of an arrow from ptTail to ptTip, about 9 pixels long. Nothing for an arrow without length, which has no
/// direction and is not drawn.
std::optional<ArrowHead> LayOutArrowHead(POINT ptTip, POINT ptTail, std::int32_t nArrowWidth = kArrowWidth,
                                         double dTheta = kArrowTheta) noexcept;

/// Middle of two points, each coordinate truncated.
POINT MiddleOf(POINT p, POINT q) noexcept;

/// Which side of the arrow the text goes to: 1, away from extension lines that lie left of the arrow, or 0.
std::int32_t TextSide(const LabelEntry& starts, const LabelEntry& feet) noexcept;

/// Middle of a text and its direction, degrees counter-clockwise as seen on the screen, 0 to 449.
struct TextPlace {
    POINT ptAnchor{};
    double dAngle = 0.0;
};

/// The place of the text beside the arrow between two feet.
/// nTextHeight  height of the text, pixels
TextPlace PlaceText(POINT ptFoot1, POINT ptFoot2, std::int32_t nSide, std::int32_t nTextHeight) noexcept;

/// Where the base line of a turned text begins, so that its middle comes to lie on the anchor.
/// nTextWidth, nTextHeight  of the text as if written straight, pixels
POINT TextStart(const TextPlace& place, std::int32_t nTextWidth, std::int32_t nTextHeight) noexcept;

}  // namespace width
