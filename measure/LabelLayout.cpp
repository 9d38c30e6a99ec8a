// Tested by: tests/unit/measure/LabelLayoutTest.cpp
#include "measure/LabelLayout.h"

#include <cmath>

#include "core/Arithmetic.h"

namespace width {

namespace {

constexpr double kPi = 3.14159265;                 // the measuring code's own, not the best double
constexpr double kRadians = 0.017453292522222223;  // a degree by that pi
constexpr float kBelowOffset = 5.0F;               // pixels off the arrow where its normal points down

float ToFloat(std::int32_t value) noexcept {
    return static_cast<float>(value);
}

}  // namespace

std::optional<ArrowHead> LayOutArrowHead(POINT ptTip, POINT ptTail, std::int32_t nArrowWidth, double dTheta) noexcept {
    const float vx = ToFloat(ptTip.x) - ToFloat(ptTail.x);
    const float vy = ToFloat(ptTip.y) - ToFloat(ptTail.y);
    const float length = std::sqrt(vy * vy + vx * vx);
    if (length == 0.0F) {
        return std::nullopt;
    }
    const float fWidth = ToFloat(nArrowWidth);
    const float th = fWidth / (length * 2.0F);
    const float ta = fWidth / (std::tan(static_cast<float>(dTheta)) * 0.5F * 2.0F * length);
    const float bx = ToFloat(TruncateToInt32(ToFloat(ptTip.x) - ta * vx));
    const float by = ToFloat(TruncateToInt32(ToFloat(ptTip.y) - ta * vy));
    return ArrowHead{{TruncateToInt32(bx + th * -vy), TruncateToInt32(th * vx + by)},
                     {TruncateToInt32(bx - th * -vy), TruncateToInt32(by - th * vx)}};
}

POINT MiddleOf(POINT p, POINT q) noexcept {
    return {WrapAdd(p.x, q.x) / 2, WrapAdd(p.y, q.y) / 2};
}

std::int32_t TextSide(const LabelEntry& starts, const LabelEntry& feet) noexcept {
    return WrapAdd(feet.ptA.x, feet.ptB.x) > WrapAdd(starts.ptA.x, starts.ptB.x) ? 1 : 0;
}

TextPlace PlaceText(POINT ptFoot1, POINT ptFoot2, std::int32_t nSide, std::int32_t nTextHeight) noexcept {
    const bool bFirstIsRight = ptFoot1.x > ptFoot2.x;
    const POINT ptRight = bFirstIsRight ? ptFoot1 : ptFoot2;
    const POINT ptLeft = bFirstIsRight ? ptFoot2 : ptFoot1;
    const std::int32_t dx = WrapSub(ptRight.x, ptLeft.x);
    const std::int32_t dy = WrapSub(ptRight.y, ptLeft.y);
    const std::int32_t h = 2 * nTextHeight / 3;
    const POINT pt = MiddleOf(ptLeft, ptRight);
    if (dx == 0) {
        return nSide != 0 ? TextPlace{{pt.x + h, pt.y}, 270.0} : TextPlace{{pt.x - h, pt.y}, 90.0};
    }
    if (dy == 0) {
        return {{pt.x, pt.y - h}, 0.0};
    }
    const float t = ToFloat(dy) / ToFloat(dx);
    const float fLength = ToFloat(LabelLength(ptFoot1, ptFoot2));
    const float cosine = std::fabs(ToFloat(dx) / fLength);
    const float sine = std::fabs(ToFloat(dy) / fLength);
    const auto dAngle = static_cast<double>(360 - TruncateToInt32(static_cast<double>(std::atan(t)) / kPi * 180.0));
    // The text goes to the right of the arrow on side 1 and to the left on side 0, along the normal: up by part of its
    // height where the normal points up on that side, down by a fixed distance where it points down.
    const bool bDown = (t < 0.0F) == (nSide != 0);
    const float fOffset = bDown ? kBelowOffset : ToFloat(h);
    const float fAcross = sine * fOffset;
    const float fAlong = cosine * fOffset;
    return {{TruncateToInt32(nSide != 0 ? fAcross + ToFloat(pt.x) : ToFloat(pt.x) - fAcross),
             TruncateToInt32(bDown ? fAlong + ToFloat(pt.y) : ToFloat(pt.y) - fAlong)},
            dAngle};
}

POINT TextStart(const TextPlace& place, std::int32_t nTextWidth, std::int32_t nTextHeight) noexcept {
    const double r = place.dAngle * kRadians;
    const std::int32_t nHalfWidth = nTextWidth / 2;
    const std::int32_t nHalfHeight = nTextHeight / 2;
    const auto halfWidth = static_cast<double>(nHalfWidth);
    const auto halfHeight = static_cast<double>(nHalfHeight);
    const std::int32_t a = TruncateToInt32(halfWidth * std::cos(r) - halfHeight * std::sin(r));
    const std::int32_t b = TruncateToInt32(std::sin(r) * halfWidth + halfHeight * std::cos(r));
    return {WrapSub(place.ptAnchor.x, a), WrapAdd(place.ptAnchor.y, b)};
}

}  // namespace width
