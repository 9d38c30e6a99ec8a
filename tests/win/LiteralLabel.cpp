#include "tests/win/LiteralLabel.h"

#include <string>

#include "tests/support/LiteralMeasure.h"

namespace width::test {

namespace {

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
    const auto corners = ArrowHeadLiterally(tip, tail);
    const POINT head[] = {tip, corners[0], corners[1]};
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

void DrawText(HDC hdc, const std::wstring& text, POINT f1, POINT f2, bool bSide, LOGFONTW font) {
    SIZE size{};
    {
        const Tool level(hdc, ::CreateFontIndirectW(&font));
        ::GetTextExtentPoint32W(hdc, text.c_str(), static_cast<int>(text.size()), &size);
    }
    const LiteralText place = PlaceTextLiterally(f1, f2, bSide, size.cy);
    font.lfEscapement = font.lfOrientation = static_cast<LONG>(place.angle * 10.0);
    const Tool turned(hdc, ::CreateFontIndirectW(&font));
    ::GetTextExtentPoint32W(hdc, text.c_str(), static_cast<int>(text.size()), &size);
    const POINT start = TextStartLiterally(place, size.cx, size.cy);
    ::SetTextAlign(hdc, 24);
    ::SetBkMode(hdc, TRANSPARENT);
    ::TextOutW(hdc, start.x, start.y, text.c_str(), static_cast<int>(text.size()));
}

}  // namespace

void DrawLabelsLiterally(HDC hdc, const LabelList& labels, COLORREF clr, const LOGFONTW& font, Resolution resolution) {
    for (int n = 1; n <= labels.m_nCurLabel; ++n) {
        const LabelEntry& m = labels.m_Labels[static_cast<std::size_t>(2 * n - 2)];
        const LabelEntry& f = labels.m_Labels[static_cast<std::size_t>(2 * n - 1)];
        DrawLines(hdc, m, f, clr);
        ::SetTextColor(hdc, clr);
        const std::string text = TextLiterally(n, f.ptA, f.ptB, resolution.nXPelsPerMeter, resolution.nYPelsPerMeter);
        DrawText(hdc, {text.begin(), text.end()}, f.ptA, f.ptB, f.ptA.x + f.ptB.x > m.ptA.x + m.ptB.x, font);
    }
}

}  // namespace width::test
