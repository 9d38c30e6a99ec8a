#include "tests/win/LiteralLabel.h"

#include <cmath>
#include <string>

namespace width::test {

namespace {

int Truncated(float f) {
    return static_cast<int>(f);
}

POINT Middle(POINT a, POINT b) {
    return {(a.x + b.x) / 2, (a.y + b.y) / 2};
}

// Selected for as long as the object lives, then deleted.
struct Tool {
    Tool(HDC hdcOn, HGDIOBJ hTool) : hdc(hdcOn), h(hTool), hOld(::SelectObject(hdcOn, hTool)) {}
    Tool(const Tool&) = delete;
    Tool& operator=(const Tool&) = delete;
    ~Tool() {
        ::SelectObject(hdc, hOld);
        ::DeleteObject(h);
    }
    HDC hdc;
    HGDIOBJ h, hOld;
};

void DrawArrow(HDC hdc, POINT tip, POINT tail, COLORREF clr) {
    const Tool pen(hdc, ::CreatePen(PS_SOLID, 1, clr));
    const Tool brush(hdc, ::CreateSolidBrush(clr));
    const float vx = static_cast<float>(tip.x) - static_cast<float>(tail.x);
    const float vy = static_cast<float>(tip.y) - static_cast<float>(tail.y);
    const float len = std::sqrt(vy * vy + vx * vx);
    const float th = 3.0F / (len * 2.0F);
    const float ta = 3.0F / (std::tan(0.314159265F) * 0.5F * 2.0F * len);
    const int bx = Truncated(static_cast<float>(tip.x) - ta * vx);
    const int by = Truncated(static_cast<float>(tip.y) - ta * vy);
    const POINT head[] = {tip,
                          {Truncated(static_cast<float>(bx) + th * -vy), Truncated(th * vx + static_cast<float>(by))},
                          {Truncated(static_cast<float>(bx) - th * -vy), Truncated(static_cast<float>(by) - th * vx)}};
    ::MoveToEx(hdc, tail.x, tail.y, nullptr);
    ::LineTo(hdc, tip.x, tip.y);
    ::Polygon(hdc, head, 3);
}

void DrawLines(HDC hdc, const LabelEntry& m, const LabelEntry& f, COLORREF clr) {
    ::SetBkMode(hdc, TRANSPARENT);
    {
        const Tool pen(hdc, ::CreatePen(PS_DASHDOTDOT, 1, clr));
        ::MoveToEx(hdc, m.ptA.x, m.ptA.y, nullptr);
        ::LineTo(hdc, f.ptA.x, f.ptA.y);
        ::MoveToEx(hdc, m.ptB.x, m.ptB.y, nullptr);
        ::LineTo(hdc, f.ptB.x, f.ptB.y);
    }
    DrawArrow(hdc, f.ptA, Middle(f.ptA, f.ptB), clr);
    DrawArrow(hdc, f.ptB, Middle(f.ptA, f.ptB), clr);
}

void DrawTurned(HDC hdc, const std::wstring& text, POINT anchor, double angle, LOGFONTW font) {
    font.lfEscapement = font.lfOrientation = static_cast<LONG>(angle * 10.0);
    const Tool turned(hdc, ::CreateFontIndirectW(&font));
    const double r = angle * 0.017453292522222223;
    SIZE size{};
    ::GetTextExtentPoint32W(hdc, text.c_str(), static_cast<int>(text.size()), &size);
    const double hw = size.cx / 2, hh = size.cy / 2;  // whole pixels
    const int a = static_cast<int>(hw * std::cos(r) - hh * std::sin(r));
    const int b = static_cast<int>(std::sin(r) * hw + hh * std::cos(r));
    ::SetTextAlign(hdc, 24);
    ::SetBkMode(hdc, TRANSPARENT);
    ::TextOutW(hdc, anchor.x - a, anchor.y + b, text.c_str(), static_cast<int>(text.size()));
}

void DrawText(HDC hdc, const std::wstring& text, POINT f1, POINT f2, bool bSide, const LOGFONTW& font) {
    const POINT pR = f1.x > f2.x ? f1 : f2;
    const POINT pL = f1.x > f2.x ? f2 : f1;
    const int dx = pR.x - pL.x, dy = pR.y - pL.y;
    const int L = Truncated(std::sqrt(static_cast<float>(dy * dy) + static_cast<float>(dx) * static_cast<float>(dx)));
    SIZE size{};
    {
        const Tool level(hdc, ::CreateFontIndirectW(&font));
        ::GetTextExtentPoint32W(hdc, text.c_str(), static_cast<int>(text.size()), &size);
    }
    const int h = 2 * size.cy / 3;
    const POINT m = Middle(pL, pR);
    if (dx == 0) {
        return DrawTurned(hdc, text, {bSide ? m.x + h : m.x - h, m.y}, bSide ? 270.0 : 90.0, font);
    }
    if (dy == 0) {
        return DrawTurned(hdc, text, {m.x, m.y - h}, 0.0, font);
    }
    const float t = static_cast<float>(dy) / static_cast<float>(dx);
    const float cs = std::abs(static_cast<float>(dx) / static_cast<float>(L));
    const float sn = std::abs(static_cast<float>(dy) / static_cast<float>(L));
    const auto fh = static_cast<float>(h), mx = static_cast<float>(m.x), my = static_cast<float>(m.y);
    POINT anchor{};
    if (bSide) {
        anchor = t < 0 ? POINT{Truncated(sn * 5.0F + mx), Truncated(cs * 5.0F + my)}
                       : POINT{Truncated(sn * fh + mx), Truncated(my - cs * fh)};
    } else {
        anchor = t < 0 ? POINT{Truncated(mx - sn * fh), Truncated(my - cs * fh)}
                       : POINT{Truncated(mx - sn * 5.0F), Truncated(cs * 5.0F + my)};
    }
    DrawTurned(hdc, text, anchor, 360 - static_cast<int>(static_cast<double>(std::atan(t)) / 3.14159265 * 180.0), font);
}

}  // namespace

void DrawLabelsLiterally(HDC hdc, const LabelList& labels, COLORREF clr, const LOGFONTW& font, Resolution resolution) {
    for (int n = 1; n <= labels.m_nCurLabel; ++n) {
        const LabelEntry& m = labels.m_Labels[static_cast<std::size_t>(2 * n - 2)];
        const LabelEntry& f = labels.m_Labels[static_cast<std::size_t>(2 * n - 1)];
        DrawLines(hdc, m, f, clr);
        ::SetTextColor(hdc, clr);
        const std::string text = FormatLabelText(n, f.ptA, f.ptB, resolution);
        DrawText(hdc, {text.begin(), text.end()}, f.ptA, f.ptB, f.ptA.x + f.ptB.x > m.ptA.x + m.ptB.x, font);
    }
}

}  // namespace width::test
