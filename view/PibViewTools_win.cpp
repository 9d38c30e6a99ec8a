// The mouse in its four meanings, zoom steps, panning and cursors.
// Tested by: tests/e2e/PluginTest.cpp
#include "classlib/RectTracker.h"
#include "classlib/Thread.h"
#include "module/ModuleState.h"
#include "view/PibView_win.h"

namespace width {

/// Moves the picture with the mouse: every change of the invisible rubber band scrolls by as much.
class CPibView::CHandTracker : public CRectTracker {
public:
    explicit CHandTracker(CPibView* pView) : m_pView(pView) { m_sizeMin = {1, 1}; }
    void DrawTrackerRect(const RECT& /*rect*/, CDC* /*pDC*/) override {}
    void OnChangedRect(const RECT& rectOld) override {
        const std::int32_t dx = (m_rect.right - m_rect.left) - (rectOld.right - rectOld.left);
        const std::int32_t dy = (m_rect.bottom - m_rect.top) - (rectOld.bottom - rectOld.top);
        const POINT pt = m_pView->GetDeviceScrollPosition();
        const DWORD dwStyle = m_pView->GetStyle();
        const std::int32_t x = (dwStyle & WS_HSCROLL) != 0 ? std::max<std::int32_t>(pt.x - dx, 0) : 0;
        const std::int32_t y = (dwStyle & WS_VSCROLL) != 0 ? std::max<std::int32_t>(pt.y - dy, 0) : 0;
        if (dx != 0 || dy != 0) {
            m_pView->ScrollToPosition({x, y});
        }
    }

private:
    CPibView* m_pView;  // outlives the tracking
};

void CPibView::OnLButtonDown(UINT /*nFlags*/, POINT point) {
    if (HasImage()) {
        switch (g_nToolMode) {
            case TOOL_LINE_DETECT:
                if (m_bSkeletonReady == 0) {
                    AfxMessageBox(g_bChinese != 0 ? L"请先求取骨架" : L"Please get the skeleton of the image first!");
                    return;
                }
                if (DetectLine(*m_skeleton, ClientToImage(point, Geometry()), CurrentConditions(), m_lineStore).bStored) {
                    InvalidateView();
                }
                break;
            case TOOL_WIDTH_LABEL:
                if (!PickAt(point)) {
                    return;
                }
                break;
            case TOOL_TRACK:
                Pan(point);
                break;
            case TOOL_ZOOM:
                StepZoom(NextZoomIn({m_nZoomNum, m_nZoomDen}));
                break;
            default:
                break;
        }
    }
    Default();
}

void CPibView::OnRButtonDown(UINT /*nFlags*/, POINT /*point*/) {
    if (HasImage() && g_nToolMode == TOOL_WIDTH_LABEL) {
        ForgetSquares();
        m_picker.Reset();
        Invalidate(true);
    } else if (HasImage() && g_nToolMode == TOOL_ZOOM) {
        StepZoom(NextZoomOut({m_nZoomNum, m_nZoomDen}));
    }
    Default();
}

LineConditions CPibView::CurrentConditions() {
    return {g_nMinLineLength, g_bRectAlgorithm, g_fRectWidth};
}

void CPibView::Pan(POINT point) {
    if (!IsOnImage(point, Geometry()) || (GetStyle() & (WS_HSCROLL | WS_VSCROLL)) == 0) {
        return;
    }
    const HCURSOR hOldCursor = ::SetCursor(g_hCursorGrab);
    CHandTracker tracker(this);
    if (tracker.TrackRubberBand(this, point, true)) {
        RepaintView();
    }
    ::SetCursor(hOldCursor);
}

void CPibView::SetZoom(std::int32_t nNum, std::int32_t nDen) {
    m_nZoomNum = nNum;
    m_nZoomDen = nDen;
}

// What lies in the middle of the window stays there; the place of the click has no influence.
void CPibView::StepZoom(std::optional<Zoom> zoom) {
    if (!zoom) {
        return;
    }
    const std::optional<POINT> ptCentre = GetCentreImagePoint(Geometry());
    SetZoom(zoom->nNum, zoom->nDen);
    UpdateScrollSizes();
    if (ptCentre) {
        const POINT ptTarget = ScrollTargetForCentre(*ptCentre, Geometry());
        if (ptTarget.x != 0 || ptTarget.y != 0) {
            ScrollToPosition(ptTarget);
        }
    }
}

// A fit is worked out for the area without scroll bars.
void CPibView::OnBestFit() {
    if (!HasImage()) {
        return;
    }
    const ViewGeometry old = Geometry();
    const DWORD dwStyle = GetStyle();
    const std::int32_t cx = old.nClientWidth + ((dwStyle & WS_VSCROLL) != 0 ? ::GetSystemMetrics(SM_CXVSCROLL) : 0);
    const std::int32_t cy = old.nClientHeight + ((dwStyle & WS_HSCROLL) != 0 ? ::GetSystemMetrics(SM_CYHSCROLL) : 0);
    const Zoom zoom = BestFitZoom(cx, cy, m_dib->Width(), m_dib->Height());
    SetZoom(zoom.nNum, zoom.nDen);
    const ViewGeometry now = Geometry();
    if (ZoomedWidth(now) != ZoomedWidth(old) || ZoomedHeight(now) != ZoomedHeight(old)) {
        UpdateScrollSizes();
    }
}

void CPibView::OnActualSize() {
    if (!HasImage()) {
        return;
    }
    const ViewGeometry old = Geometry();
    SetZoom(1, 1);
    if (ZoomedWidth(old) != m_dib->Width() || ZoomedHeight(old) != m_dib->Height()) {
        UpdateScrollSizes();
    }
}

bool CPibView::OnSetCursor(HWND /*hWnd*/, UINT nHitTest, UINT /*message*/) {
    if (nHitTest == HTCLIENT && g_nToolMode == TOOL_TRACK) {
        ::SetCursor(g_hCursorHand);
        return true;
    }
    if (nHitTest == HTCLIENT && g_nToolMode == TOOL_ZOOM) {
        const bool bIn = NextZoomIn({m_nZoomNum, m_nZoomDen}).has_value();
        const bool bOut = NextZoomOut({m_nZoomNum, m_nZoomDen}).has_value();
        ::SetCursor(!bIn ? g_hCursorZoomOut : (bOut ? g_hCursorZoom : g_hCursorZoomIn));
        return true;
    }
    return Default() != 0;
}

}  // namespace width
