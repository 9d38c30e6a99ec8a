// Tested by: tests/e2e/MeasureTest.cpp
#include "measure/LabelDrawing_win.h"

#include <string>

namespace width {

namespace {

constexpr COLORREF kRed = RGB(255, 0, 0);
constexpr int kMarkRadius = 6;  // pixels
constexpr int kSquarePenWidth = 4;

// Shaft and filled head, with the raster operation that the context has. An arrow without length draws nothing.
void DrawArrow(CDC& dc, POINT ptTip, POINT ptTail, COLORREF clr) {
    const std::optional<ArrowHead> head = LayOutArrowHead(ptTip, ptTail);
    if (!head) {
        return;
    }
    const CPen pen(PS_SOLID, 1, clr);
    const CBrush brush(clr);
    const CSelectGuard selectedPen(dc, pen);
    const CSelectGuard selectedBrush(dc, brush);
    dc.MoveTo(ptTail.x, ptTail.y);
    dc.LineTo(ptTip.x, ptTip.y);
    const POINT corners[] = {ptTip, head->ptCorner1, head->ptCorner2};
    dc.Polygon(corners, 3);
}

// Two arrows from the middle outwards form one double arrow.
void DrawDoubleArrow(CDC& dc, POINT ptFoot1, POINT ptFoot2, COLORREF clr) {
    const POINT ptMiddle = MiddleOf(ptFoot1, ptFoot2);
    DrawArrow(dc, ptFoot1, ptMiddle, clr);
    DrawArrow(dc, ptFoot2, ptMiddle, clr);
}

void DrawExtensionLines(CDC& dc, const LabelEntry& starts, POINT ptFoot1, POINT ptFoot2, COLORREF clr) {
    const CPen pen(PS_DASHDOTDOT, 1, clr);
    const CSelectGuard selected(dc, pen);
    dc.MoveTo(starts.ptA.x, starts.ptA.y);
    dc.LineTo(ptFoot1.x, ptFoot1.y);
    dc.MoveTo(starts.ptB.x, starts.ptB.y);
    dc.LineTo(ptFoot2.x, ptFoot2.y);
}

// One line of text, turned, its middle on the anchor.
void DrawRotatedText(CDC& dc, const std::wstring& text, const TextPlace& place, LOGFONTW logFont) {
    logFont.lfEscapement = logFont.lfOrientation = static_cast<LONG>(place.dAngle * 10.0);
    CFont font;
    font.CreateFontIndirect(logFont);
    const CSelectGuard selected(dc, font);
    const SIZE size = dc.GetTextExtent(text.c_str(), static_cast<int>(text.size()));
    const POINT pt = TextStart(place, size.cx, size.cy);
    dc.SetTextAlign(TA_BASELINE | TA_LEFT);
    dc.SetBkMode(TRANSPARENT);
    dc.TextOut(pt.x, pt.y, text.c_str(), static_cast<int>(text.size()));
}

void DrawLabelText(CDC& dc, std::int32_t nLabel, const LabelEntry& starts, const LabelEntry& feet, const LabelPattern& pattern,
                   Resolution resolution) {
    const std::string narrow = FormatLabelText(nLabel, feet.ptA, feet.ptB, resolution);
    const std::wstring text(narrow.begin(), narrow.end());  // digits and letters only
    LOGFONTW logFont{};
    ::GetObjectW(pattern.hFont, sizeof logFont, &logFont);
    dc.SetTextColor(pattern.clrLabel);
    const CSelectGuard selected(dc, pattern.hFont);
    const SIZE size = dc.GetTextExtent(text.c_str(), static_cast<int>(text.size()));
    DrawRotatedText(dc, text, PlaceText(feet.ptA, feet.ptB, TextSide(starts, feet), size.cy), logFont);
}

}  // namespace

void DrawLabels(CDC& dc, const LabelList& labels, const LabelPattern& pattern, Resolution resolution) {
    const CSaveDC saved(dc);
    for (std::int32_t i = 0; i < labels.m_nCurLabel; ++i) {
        const LabelEntry& starts = labels.m_Labels[2 * static_cast<std::size_t>(i)];
        const LabelEntry& feet = labels.m_Labels[2 * static_cast<std::size_t>(i) + 1];
        dc.SetBkMode(TRANSPARENT);
        DrawExtensionLines(dc, starts, feet.ptA, feet.ptB, pattern.clrLabel);
        DrawDoubleArrow(dc, feet.ptA, feet.ptB, pattern.clrLabel);
        DrawLabelText(dc, i + 1, starts, feet, pattern, resolution);
    }
}

// Background mode: opaque for the dashed lines, as a fresh window context has it, transparent for the arrows.
void DrawRubberLabel(CDC& dc, const PickedEnds& ends, POINT ptFoot1, POINT ptFoot2, COLORREF clrLabel) {
    const CSaveDC saved(dc);
    dc.SetROP2(R2_NOTXORPEN);
    const auto above = [](POINT pt) { return POINT{pt.x, pt.y - 1}; };
    DrawExtensionLines(dc, {above(MiddleOf(ends[0], ends[1])), above(MiddleOf(ends[2], ends[3]))}, ptFoot1, ptFoot2, clrLabel);
    dc.SetBkMode(TRANSPARENT);
    DrawDoubleArrow(dc, ptFoot1, ptFoot2, clrLabel);
}

void DrawPickMark(CDC& dc, POINT pt, std::int32_t nNumber) {
    const CSaveDC saved(dc);
    dc.SetROP2(R2_COPYPEN);
    dc.SetBkMode(TRANSPARENT);
    const CPen pen(PS_SOLID, 1, kRed);
    const CSelectGuard selectedPen(dc, pen);
    const CSelectGuard selectedBrush(dc, ::GetStockObject(NULL_BRUSH));
    dc.Ellipse({pt.x - kMarkRadius, pt.y - kMarkRadius, pt.x + kMarkRadius, pt.y + kMarkRadius});
    const std::wstring text = std::to_wstring(nNumber);
    dc.TextOut(pt.x, pt.y + kMarkRadius, text.c_str(), static_cast<int>(text.size()));
}

void DrawSearchSquare(CDC& dc, const RECT& rc) {
    const CSaveDC saved(dc);
    dc.SetROP2(R2_NOTXORPEN);
    const CPen pen(PS_SOLID, kSquarePenWidth, kRed);
    const CSelectGuard selectedPen(dc, pen);
    const CSelectGuard selectedBrush(dc, ::GetStockObject(NULL_BRUSH));
    dc.Rectangle(rc);
}

}  // namespace width
