// Parallel test, mean distance, feet of the common normal, and the label's text.
// Tested by: tests/unit/measure/WidthTest.cpp
#include "measure/Width.h"

#include <array>
#include <charconv>
#include <cmath>

#include "core/Arithmetic.h"

namespace width {

namespace {

// The measuring code's own pi, not the best double for it.
constexpr double kPi = 3.14159265;

// Limits of the feet's cases: single-precision values widened to double.
constexpr double kExactlyVertical = static_cast<double>(0.999999F);
constexpr double kHorizontal = static_cast<double>(0.001F);
constexpr double kVertical = static_cast<double>(0.99F);

float ToFloat(std::int32_t value) noexcept {
    return static_cast<float>(value);
}

std::int32_t Middle(std::int32_t a, std::int32_t b) noexcept {
    return WrapAdd(a, b) / 2;
}

struct MidPoint {
    float x;
    float y;
};

MidPoint MidPointOf(POINT p, POINT q) noexcept {
    return {static_cast<float>(static_cast<double>(WrapAdd(p.x, q.x)) * 0.5),
            static_cast<float>(static_cast<double>(WrapAdd(p.y, q.y)) * 0.5)};
}

// Distance of a point from the infinite line through p and q.
float DistanceFromLine(MidPoint m, POINT p, POINT q) noexcept {
    if (p.x == q.x) {
        return std::fabs(ToFloat(p.x) - m.x);
    }
    if (p.y == q.y) {
        return std::fabs(ToFloat(p.y) - m.y);
    }
    const float a = ToFloat(WrapSub(p.y, q.y));
    const float b = ToFloat(WrapSub(q.x, p.x));
    const float c = ToFloat(WrapAdd(WrapMul(WrapSub(q.y, p.y), p.x), WrapMul(WrapSub(p.x, q.x), p.y)));
    return std::fabs(m.y * b + m.x * a + c) / std::sqrt(b * b + a * a);
}

// One line of a pair as the feet see it: its end with the smaller x, its slope and its sine.
struct SlopedLine {
    POINT ptBase;
    double slope;
    double sine;
};

SlopedLine SlopedLineOf(POINT first, POINT second) noexcept {
    const bool bFirstIsRight = first.x > second.x;
    const POINT ptRight = bFirstIsRight ? first : second;
    const POINT ptBase = bFirstIsRight ? second : first;
    const auto dx = static_cast<double>(WrapSub(ptRight.x, ptBase.x));
    const auto dy = static_cast<double>(WrapSub(ptRight.y, ptBase.y));
    return {ptBase, dy / dx, dy / std::sqrt(dy * dy + dx * dx)};
}

bool HasDirection(const SlopedLine& line) noexcept {
    return !std::isnan(line.sine);
}

// Foot of the normal through pt on the line through ptBase with the pair's mean slope and sine.
POINT GeneralFoot(POINT pt, POINT ptBase, double slope, double sine) noexcept {
    const auto px = static_cast<double>(pt.x);
    const auto py = static_cast<double>(pt.y);
    const double xOnLine = (py - static_cast<double>(ptBase.y)) / slope + static_cast<double>(ptBase.x);
    const double t = (px - xOnLine) * sine * sine;
    return {TruncateToInt32(px - t), TruncateToInt32(t / slope + py)};
}

struct Span {
    std::int32_t dx;  // never negative
    std::int32_t dy;
};

// From the left foot to the right one; at equal x the second foot is the right one.
Span SpanOf(POINT ptFoot1, POINT ptFoot2) noexcept {
    const bool bFirstIsRight = ptFoot1.x > ptFoot2.x;
    const POINT ptRight = bFirstIsRight ? ptFoot1 : ptFoot2;
    const POINT ptLeft = bFirstIsRight ? ptFoot2 : ptFoot1;
    return {WrapSub(ptRight.x, ptLeft.x), WrapSub(ptRight.y, ptLeft.y)};
}

// Four decimals with a full stop in every locale.
std::string FormatFixed4(double value) {
    std::array<char, 400> text{};
    const auto result = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 4);
    return {text.data(), result.ptr};
}

}  // namespace

std::int32_t IsPairParallel(const PickedEnds& ends, float fTolerance) noexcept {
    const float a = ToFloat(WrapSub(ends[0].x, ends[1].x));
    const float b = ToFloat(WrapSub(ends[0].y, ends[1].y));
    const float c = ToFloat(WrapSub(ends[2].x, ends[3].x));
    const float d = ToFloat(WrapSub(ends[2].y, ends[3].y));
    const float sine = (d * a - c * b) / (std::sqrt(b * b + a * a) * std::sqrt(d * d + c * c));
    const auto limit = static_cast<float>(std::fabs(std::sin(static_cast<double>(fTolerance) * kPi / 180.0)));
    return limit >= std::fabs(sine) ? 1 : 0;
}

float PairWidth(const PickedEnds& ends) noexcept {
    if (ends[0].x == ends[1].x && ends[2].x == ends[3].x) {
        return std::fabs(ToFloat(WrapSub(ends[0].x, ends[2].x)));
    }
    if (ends[0].y == ends[1].y && ends[2].y == ends[3].y) {
        return std::fabs(ToFloat(WrapSub(ends[0].y, ends[2].y)));
    }
    const float d1 = DistanceFromLine(MidPointOf(ends[0], ends[1]), ends[2], ends[3]);
    const float d2 = DistanceFromLine(MidPointOf(ends[2], ends[3]), ends[0], ends[1]);
    return static_cast<float>(static_cast<double>(d1 + d2) * 0.5);
}

Feet ComputeFeet(POINT ptClient, const PickedEnds& endsClient) noexcept {
    SlopedLine line1 = SlopedLineOf(endsClient[0], endsClient[1]);
    SlopedLine line2 = SlopedLineOf(endsClient[2], endsClient[3]);
    // At a small zoom both ends of a short line can fall on one client pixel: the lines are parallel, so the other tells
    // the direction, and where neither does, the pixels themselves are the feet.
    if (!HasDirection(line1) && !HasDirection(line2)) {
        return {endsClient[0], endsClient[2]};
    }
    if (!HasDirection(line1)) {
        line1 = {line1.ptBase, line2.slope, line2.sine};
    } else if (!HasDirection(line2)) {
        line2 = {line2.ptBase, line1.slope, line1.sine};
    }
    const double slope = (line2.slope + line1.slope) * 0.5;
    const double sine = (line2.sine + line1.sine) * 0.5;
    // A vertical pair picked in opposite directions has a mean sine of 0 and is caught first.
    const bool bOppositeVertical = line1.sine == -line2.sine && std::fabs(line1.sine) > kExactlyVertical;
    const bool bHorizontal = !bOppositeVertical && std::fabs(sine) < kHorizontal;
    if (bHorizontal) {
        return {{ptClient.x, Middle(endsClient[0].y, endsClient[1].y)}, {ptClient.x, Middle(endsClient[2].y, endsClient[3].y)}};
    }
    if (bOppositeVertical || std::fabs(sine) > kVertical) {
        return {{Middle(endsClient[0].x, endsClient[1].x), ptClient.y}, {Middle(endsClient[2].x, endsClient[3].x), ptClient.y}};
    }
    return {GeneralFoot(ptClient, line1.ptBase, slope, sine), GeneralFoot(ptClient, line2.ptBase, slope, sine)};
}

void CommitLabel(POINT ptClient, const PickedEnds& endsClient, const ViewGeometry& geometry, LabelList& labels) {
    const Feet feet = ComputeFeet(ptClient, endsClient);
    const auto lineStart = [&](POINT p, POINT q) {
        return ClientToImage({Middle(p.x, q.x), WrapSub(Middle(p.y, q.y), 1)}, geometry);
    };
    const LabelEntry starts{lineStart(endsClient[0], endsClient[1]), lineStart(endsClient[2], endsClient[3])};
    const LabelEntry ends{ClientToImage(feet.pt1, geometry), ClientToImage(feet.pt2, geometry)};
    const std::size_t nKept = 2 * static_cast<std::size_t>(labels.m_nCurLabel);
    labels.m_Labels.reserve(nKept + 2);  // nothing below throws, so a failure here leaves the list whole
    labels.m_Labels.resize(nKept);
    labels.m_Labels.push_back(starts);
    labels.m_Labels.push_back(ends);
    ++labels.m_nCurLabel;
}

std::int32_t LabelLength(POINT ptFoot1, POINT ptFoot2) noexcept {
    const Span span = SpanOf(ptFoot1, ptFoot2);
    const float fx = ToFloat(span.dx);
    return TruncateToInt32(std::sqrt(ToFloat(WrapMul(span.dy, span.dy)) + fx * fx));
}

std::string FormatLabelText(std::int32_t nLabel, POINT ptFoot1, POINT ptFoot2, Resolution resolution) {
    const std::string number = std::to_string(nLabel) + "#: ";
    if (resolution.nXPelsPerMeter == 0 || resolution.nYPelsPerMeter == 0) {
        return number + std::to_string(LabelLength(ptFoot1, ptFoot2));
    }
    const Span span = SpanOf(ptFoot1, ptFoot2);
    const auto dx = static_cast<double>(span.dx);
    const auto dy = static_cast<double>(span.dy);
    const auto rx = static_cast<double>(resolution.nXPelsPerMeter);
    const auto ry = static_cast<double>(resolution.nYPelsPerMeter);
    const double cm = std::sqrt(dy * dy / (ry * ry) + dx * dx / (rx * rx)) * 100.0;
    return number + FormatFixed4(cm) + "cm";
}

}  // namespace width
