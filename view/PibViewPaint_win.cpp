// Painting: the composition stretched to where the image lies, and the strips round it.
//
// Only the stretch reaches the screen, and only as far as the clip allows. The source is never cut to the visible
// part, because a stretch chooses its source pixels by the whole rectangle; at zoom 1/1, where every pixel stands for
// itself, it may be, and a picture without overlays is then painted straight from its block, so that a job's first
// picture does not wait for a composition.
// Tested by: tests/e2e/PluginTest.cpp
#include <algorithm>

#include "view/PibView_win.h"

namespace width {

namespace {

void FillIfAny(CDC& dc, const RECT& rc) {
    if (rc.left < rc.right && rc.top < rc.bottom) {
        dc.FillRect(rc, ::GetSysColorBrush(COLOR_BTNFACE));
    }
}

bool IsEmpty(const RECT& rc) {
    return rc.left >= rc.right || rc.top >= rc.bottom;
}

}  // namespace

Overlays CPibView::CurrentOverlays() const {
    Overlays overlays;
    overlays.pSkeleton = m_bSkeletonReady != 0 && m_skeleton ? &*m_skeleton : nullptr;
    overlays.clrSkeleton = m_clrSkeleton;
    overlays.lines = m_lineStore.m_Lines;
    overlays.clrLine = m_clrLine;
    overlays.pLabels = &m_labelList;
    overlays.pattern = {m_clrLabel, m_font};
    return overlays;
}

// The visible rows and columns of the block, one to one.
bool CPibView::PaintVisiblePart(CDC& dc, const RECT& rcImage) const {
    const RECT rcClip = dc.GetClipBox();
    RECT rc{};
    if (::IntersectRect(&rc, &rcClip, &rcImage) == FALSE) {
        return true;
    }
    const std::int32_t nRows = rc.bottom - rc.top;
    const std::int32_t nFirstRow = m_dib->Height() - (rc.bottom - rcImage.top);
    DrawingInfo info = DrawingInfoOf(*m_dib);
    info.header.biHeight = nRows;
    const int nWidth = rc.right - rc.left;
    return ::StretchDIBits(dc, rc.left, rc.top, nWidth, nRows, rc.left - rcImage.left, 0, nWidth, nRows,
                           m_dib->Row(nFirstRow).data(), info.Get(), DIB_RGB_COLORS, SRCCOPY) != 0;
}

// The picture alone, at any zoom.
void CPibView::PaintWithoutOverlays(CDC& dc, const RECT& rcImage) const {
    const DrawingInfo info = DrawingInfoOf(*m_dib);
    ::StretchDIBits(dc, rcImage.left, rcImage.top, rcImage.right - rcImage.left, rcImage.bottom - rcImage.top, 0, 0,
                    m_dib->Width(), m_dib->Height(), m_dib->Row(0).data(), info.Get(), DIB_RGB_COLORS, SRCCOPY);
}

// Without memory for a composition the picture is still seen, if not what lies over it.
void CPibView::OnDraw(CDC* pDC) {
    if (!m_dib) {
        return;
    }
    const int nOldMode = pDC->SetStretchBltMode(COLORONCOLOR);
    const RECT rcImage = GetImageRect();
    const Overlays overlays = CurrentOverlays();
    const bool bPainted = overlays.AreEmpty() && m_nZoomNum == m_nZoomDen && PaintVisiblePart(*pDC, rcImage);
    if (!bPainted && m_composition.Compose(*m_dib, overlays)) {
        pDC->StretchBlt(rcImage, m_composition.Surface(), {0, 0, m_dib->Width(), m_dib->Height()});
    } else if (!bPainted) {
        PaintWithoutOverlays(*pDC, rcImage);
    }
    pDC->SetStretchBltMode(nOldMode);
}

bool CPibView::OnEraseBkgnd(CDC* pDC) {
    OnPrepareDC(pDC);
    const RECT rcClip = pDC->GetClipBox();
    if (IsEmpty(rcClip)) {
        return true;
    }
    const RECT rc = GetImageRect();
    if (IsEmpty(rc)) {
        FillIfAny(*pDC, rcClip);
        return true;
    }
    FillIfAny(*pDC, {rcClip.left, rcClip.top, rc.left, rcClip.bottom});
    FillIfAny(*pDC, {rcClip.left, rcClip.top, rcClip.right, rc.top});
    FillIfAny(*pDC, {rc.right, rcClip.top, rcClip.right, rcClip.bottom});
    FillIfAny(*pDC, {rcClip.left, rc.bottom, rcClip.right, rcClip.bottom});
    return true;
}

}  // namespace width
