// The width tool: picks, the search square and the rubber label that follow the mouse, and Write to Bitmap.
//
// Marks, square and rubber label are drawn straight on the window, between paints. Square and rubber label are drawn
// once more to take them away; a repaint removes them too.
// Tested by: tests/e2e/MeasureTest.cpp
#include "classlib/Thread.h"
#include "measure/WriteBack.h"
#include "module/ModuleState.h"
#include "view/DibPalette_win.h"
#include "view/PibView_win.h"

namespace width {

namespace {

constexpr std::int32_t kSquareReach = 10;  // client pixels from the mouse to the square's edge

}  // namespace

void CPibView::ForgetSquares() {
    m_rcMark = {};
    m_rcMarkOld = {};
}

// True if the window's default handling is to follow. All state is final before the first box opens.
bool CPibView::PickAt(POINT point) {
    if (!m_skeleton) {
        return false;
    }
    if (m_picker.m_bLabelPending != 0) {
        ForgetSquares();
    }
    bool bDefault = false;
    for (const PickEvent& event : m_picker.Click(point, &*m_skeleton, Geometry(), m_labelList)) {
        bDefault = ShowPick(event);
    }
    return bDefault;
}

// Shows one event; true if it asks for the default handling.
bool CPibView::ShowPick(const PickEvent& event) {
    switch (event.kind) {
        case PickEventKind::LabelPlaced:
            InvalidateView();
            UpdateWindow();
            return false;
        case PickEventKind::Mark: {
            CClientDC dc(this);
            DrawPickMark(dc, event.ptClient, event.nNumber);
            return false;
        }
        case PickEventKind::WrongLine:  // one text for both languages
            MessageBox(L"两点不在一条直线上，请重新开始选择。", L"警告", MB_ICONWARNING);
            Invalidate(true);
            return false;
        case PickEventKind::NotParallel:
            AfxMessageBox(g_bChinese != 0 ? L"该线对不平行,请重新选取" : L"The line pair is not paralleled,please reselect");
            Invalidate(true);
            return false;
        case PickEventKind::RubberLabel: {
            CClientDC dc(this);
            DrawRubberLabel(dc, m_picker.m_ptPick, m_picker.m_ptFoot1, m_picker.m_ptFoot2, m_clrLabel);
            return false;
        }
        case PickEventKind::DefaultHandling:
            return true;
    }
    return false;
}

void CPibView::MoveSearchSquare(CDC& dc, POINT point) {
    m_rcMark = {point.x - kSquareReach, point.y - kSquareReach, point.x + kSquareReach, point.y + kSquareReach};
    if (::IsRectEmpty(&m_rcMarkOld) == FALSE) {
        DrawSearchSquare(dc, m_rcMarkOld);
    }
    DrawSearchSquare(dc, m_rcMark);
    m_rcMarkOld = m_rcMark;
    m_bMarkHidden = 0;
}

void CPibView::MoveRubberLabel(CDC& dc, POINT point) {
    if (m_bMarkHidden == 0) {
        if (::IsRectEmpty(&m_rcMark) == FALSE) {
            DrawSearchSquare(dc, m_rcMark);
        }
        m_bMarkHidden = 1;
    }
    const Feet feet = ComputeFeet(point, m_picker.m_ptPick);
    DrawRubberLabel(dc, m_picker.m_ptPick, m_picker.m_ptFoot1, m_picker.m_ptFoot2, m_clrLabel);
    DrawRubberLabel(dc, m_picker.m_ptPick, feet.pt1, feet.pt2, m_clrLabel);
    m_picker.m_ptFoot1 = feet.pt1;
    m_picker.m_ptFoot2 = feet.pt2;
}

void CPibView::OnMouseMove(UINT /*nFlags*/, POINT point) {
    const RECT rcClient = GetClientRect();
    if (::PtInRect(&rcClient, point) == FALSE) {
        Default();
        ForgetSquares();
        Invalidate(true);
        return;
    }
    if (g_nToolMode != TOOL_WIDTH_LABEL) {
        return;
    }
    CClientDC dc(this);
    if (m_picker.m_bLabelPending == 0) {
        MoveSearchSquare(dc, point);
    } else {
        MoveRubberLabel(dc, point);
    }
    Default();
}

// Scrolling moves the pixels of square and label, which belong to places of the window: the view is painted anew, and the
// pending label drawn where the next move will look for it.
void CPibView::OnScrolled() {
    if (g_nToolMode != TOOL_WIDTH_LABEL) {
        return;
    }
    ForgetSquares();
    Invalidate(true);
    if (m_picker.m_bLabelPending != 0) {
        UpdateWindow();
        CClientDC dc(this);
        DrawRubberLabel(dc, m_picker.m_ptPick, m_picker.m_ptFoot1, m_picker.m_ptFoot2, m_clrLabel);
    }
}

void CPibView::OnKillFocus(HWND /*hNewWnd*/) {
    Default();
    ForgetSquares();
}

// What is on the screen is what goes into the block: the paint's composition, with the overlays that are to be written.
void CPibView::WriteLabelsToBitmap() {
    if (!HasImage()) {
        return;
    }
    Overlays overlays = CurrentOverlays();
    if (m_bWriteSkeleton == 0) {
        overlays.pSkeleton = nullptr;
    }
    if (m_bWriteLines == 0) {
        overlays.lines = {};
    }
    // The composition is for the block alone: whatever comes between, the next paint makes its own.
    struct Borrowed {
        CComposition& composition;
        explicit Borrowed(CComposition& c) : composition(c) { composition.Invalidate(); }
        ~Borrowed() { composition.Invalidate(); }
        Borrowed(const Borrowed&) = delete;
        Borrowed& operator=(const Borrowed&) = delete;
    } const borrowed(m_composition);
    CPalette palette;
    palette.Attach(MakePalette(*m_dib));
    const bool bColoursFound = m_dib->BitCount() > 8 || palette.GetSafeHandle() != nullptr;
    if (bColoursFound && m_composition.Compose(*m_dib, overlays)) {
        StorePixels(m_dib->Figures(), static_cast<std::uint8_t*>(m_pDib) + m_dib->Figures().nBitsOffset, m_composition.Pixels(),
                    [&](COLORREF clr) { return palette.GetNearestPaletteIndex(clr); });
    }
}

void CPibView::OnWriteToBitmap() {
    WriteLabelsToBitmap();
    AfxMessageBox(g_bChinese != 0 ? L"标注已写入位图" : L"Labels have been written to the bitmap");
}

}  // namespace width
