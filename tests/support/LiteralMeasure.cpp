#include "tests/support/LiteralMeasure.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

namespace width::test {

namespace {

float F(std::int32_t n) {
    return static_cast<float>(n);
}

double D(std::int32_t n) {
    return static_cast<double>(n);
}

std::int32_t Truncated(double d) {
    const bool bFits = d > -2147483649.0 && d < 2147483648.0;
    return bFits ? static_cast<std::int32_t>(d) : std::numeric_limits<std::int32_t>::min();
}

// Distance of (mx, my) from the line through P and Q.
float Distance(float mx, float my, POINT P, POINT Q) {
    if (P.x == Q.x) {
        return std::fabs(F(P.x) - mx);
    }
    if (P.y == Q.y) {
        return std::fabs(F(P.y) - my);
    }
    const float A = F(P.y - Q.y);
    const float B = F(Q.x - P.x);
    const float K = F((Q.y - P.y) * P.x + (P.x - Q.x) * P.y);
    return std::fabs(my * B + mx * A + K) / std::sqrt(B * B + A * A);
}

float MiddleDistance(POINT a, POINT b, POINT P, POINT Q) {
    return Distance(static_cast<float>(D(a.x + b.x) * 0.5), static_cast<float>(D(a.y + b.y) * 0.5), P, Q);
}

// One line as the feet see it. A line whose ends coincide has a sine that is no number.
struct Line {
    POINT B;
    double s, k;
};

Line LineOf(POINT first, POINT second) {
    const POINT A = first.x > second.x ? first : second;
    const POINT B = first.x > second.x ? second : first;
    const double dx = D(A.x - B.x);
    const double dy = D(A.y - B.y);
    return {B, dy / std::sqrt(dy * dy + dx * dx), dy / dx};
}

POINT GeneralFoot(POINT p, POINT B, double s, double k) {
    const double xl = (D(p.y) - D(B.y)) / k + D(B.x);
    const double t = (D(p.x) - xl) * s * s;
    return {Truncated(D(p.x) - t), Truncated(t / k + D(p.y))};
}

// From the left foot to the right one.
struct Span {
    POINT pL, pR;
    std::int32_t dx, dy, L;
};

Span SpanOf(POINT f1, POINT f2) {
    const POINT pR = f1.x > f2.x ? f1 : f2;
    const POINT pL = f1.x > f2.x ? f2 : f1;
    const std::int32_t dx = pR.x - pL.x;
    const std::int32_t dy = pR.y - pL.y;
    return {pL, pR, dx, dy, Truncated(std::sqrt(F(dy * dy) + F(dx) * F(dx)))};
}

}  // namespace

std::vector<LiteralEnd> EndsNear(const SkeletonMap& map, std::int32_t cx, std::int32_t cy) {
    std::vector<LiteralEnd> ends;
    const std::int32_t H = map.Height();
    const std::int32_t W = map.Width();
    for (std::int32_t r = H - cy - 9; r <= H - cy + 10; ++r) {
        for (std::int32_t c = cx - 8; c <= cx + 11; ++c) {
            if (r >= 0 && r < H + 4 && c >= 0 && c < W + 4 && map.At({r, c}) >= 2) {
                ends.push_back({map.At({r, c}), {c - 2, r - 2}});
            }
        }
    }
    return ends;
}

bool AreParallelLiterally(const LiteralPoints& p, float fTolerance) {
    const float a = F(p[0].x - p[1].x);
    const float b = F(p[0].y - p[1].y);
    const float c = F(p[2].x - p[3].x);
    const float d = F(p[2].y - p[3].y);
    const float q = (d * a - c * b) / (std::sqrt(b * b + a * a) * std::sqrt(d * d + c * c));
    return static_cast<float>(std::fabs(std::sin(static_cast<double>(fTolerance) * 3.14159265 / 180.0))) >= std::fabs(q);
}

float PairWidthLiterally(const LiteralPoints& p) {
    if (p[0].x == p[1].x && p[2].x == p[3].x) {
        return F(std::abs(p[0].x - p[2].x));
    }
    if (p[0].y == p[1].y && p[2].y == p[3].y) {
        return F(std::abs(p[0].y - p[2].y));
    }
    const float d1 = MiddleDistance(p[0], p[1], p[2], p[3]);
    const float d2 = MiddleDistance(p[2], p[3], p[0], p[1]);
    return static_cast<float>(static_cast<double>(d1 + d2) * 0.5);
}

LiteralFeet FeetLiterally(POINT pt, const LiteralPoints& p) {
    Line line1 = LineOf(p[0], p[1]);
    Line line2 = LineOf(p[2], p[3]);
    if (std::isnan(line1.s) && std::isnan(line2.s)) {
        return {p[0], p[2]};
    }
    if (std::isnan(line1.s)) {
        line1 = {line1.B, line2.s, line2.k};
    }
    if (std::isnan(line2.s)) {
        line2 = {line2.B, line1.s, line1.k};
    }
    const double k = (line2.k + line1.k) * 0.5;
    const double s = (line2.s + line1.s) * 0.5;
    const LiteralFeet vertical{{(p[0].x + p[1].x) / 2, pt.y}, {(p[2].x + p[3].x) / 2, pt.y}};
    const LiteralFeet horizontal{{pt.x, (p[0].y + p[1].y) / 2}, {pt.x, (p[2].y + p[3].y) / 2}};
    if (line1.s == -line2.s && std::fabs(line1.s) > 0.9999989867210388) {
        return vertical;
    }
    if (std::fabs(s) < 0.0010000000474974513) {
        return horizontal;
    }
    if (std::fabs(s) > 0.9900000095367432) {
        return vertical;
    }
    return {GeneralFoot(pt, line1.B, s, k), GeneralFoot(pt, line2.B, s, k)};
}

std::string TextLiterally(std::int32_t nLabel, POINT f1, POINT f2, std::int32_t nX, std::int32_t nY) {
    const Span span = SpanOf(f1, f2);
    char text[400];
    if (nX == 0 || nY == 0) {
        std::snprintf(text, sizeof text, "%d#: %d", nLabel, span.L);
    } else {
        const double cm =
            std::sqrt(D(span.dy) * D(span.dy) / (D(nY) * D(nY)) + D(span.dx) * D(span.dx) / (D(nX) * D(nX))) * 100.0;
        std::snprintf(text, sizeof text, "%d#: %.4fcm", nLabel, cm);
    }
    return text;
}

std::array<POINT, 2> ArrowHeadLiterally(POINT tip, POINT tail) {
    const float vx = F(tip.x) - F(tail.x);
    const float vy = F(tip.y) - F(tail.y);
    const float len = std::sqrt(vy * vy + vx * vx);
    const float th = 3.0F / (len * 2.0F);
    const float ta = 3.0F / (std::tan(0.314159265F) * 0.5F * 2.0F * len);
    const std::int32_t bx = Truncated(F(tip.x) - ta * vx);
    const std::int32_t by = Truncated(F(tip.y) - ta * vy);
    return {
        {{Truncated(F(bx) + th * -vy), Truncated(th * vx + F(by))}, {Truncated(F(bx) - th * -vy), Truncated(F(by) - th * vx)}}};
}

LiteralText PlaceTextLiterally(POINT f1, POINT f2, bool bSide, std::int32_t cy) {
    const Span span = SpanOf(f1, f2);
    const std::int32_t h = 2 * cy / 3;
    const std::int32_t mx = (span.pL.x + span.pR.x) / 2;
    const std::int32_t my = (span.pL.y + span.pR.y) / 2;
    if (span.dx == 0) {
        return bSide ? LiteralText{{mx + h, my}, 270.0} : LiteralText{{mx - h, my}, 90.0};
    }
    if (span.dy == 0) {
        return {{mx, my - h}, 0.0};
    }
    const float t = F(span.dy) / F(span.dx);
    const float cs = std::fabs(F(span.dx) / F(span.L));
    const float sn = std::fabs(F(span.dy) / F(span.L));
    const double angle = D(360 - Truncated(static_cast<double>(std::atan(t)) / 3.14159265 * 180.0));
    if (bSide) {
        return t < 0 ? LiteralText{{Truncated(sn * 5.0F + F(mx)), Truncated(cs * 5.0F + F(my))}, angle}
                     : LiteralText{{Truncated(sn * F(h) + F(mx)), Truncated(F(my) - cs * F(h))}, angle};
    }
    return t < 0 ? LiteralText{{Truncated(F(mx) - sn * F(h)), Truncated(F(my) - cs * F(h))}, angle}
                 : LiteralText{{Truncated(F(mx) - sn * 5.0F), Truncated(cs * 5.0F + F(my))}, angle};
}

POINT TextStartLiterally(const LiteralText& text, std::int32_t cx, std::int32_t cy) {
    const double r = text.angle * 0.017453292522222223;
    const double hw = D(cx / 2);
    const double hh = D(cy / 2);
    const std::int32_t a = Truncated(hw * std::cos(r) - hh * std::sin(r));
    const std::int32_t b = Truncated(std::sin(r) * hw + hh * std::cos(r));
    return {text.anchor.x - a, text.anchor.y + b};
}

}  // namespace width::test
