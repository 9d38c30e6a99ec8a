// Painting, extents and scrolling of views. Tested by: tests/win/ClasslibViewTest.cpp.
#include "classlib/ScrollView.h"

#include <algorithm>
#include <cstdint>

#include "classlib/FrameWnd.h"

namespace {

/// Which bars a content needs in a window of a given size without bars, and what client area they leave.
struct BarPlan {
    bool bHorz = false;
    bool bVert = false;
    SIZE sizeClient{};
};

BarPlan PlanBars(SIZE sizeTotal, SIZE sizeWhole, SIZE sizeBars) {
    BarPlan plan;
    plan.bHorz = sizeTotal.cx > sizeWhole.cx;
    plan.bVert = sizeTotal.cy > sizeWhole.cy - (plan.bHorz ? sizeBars.cy : 0);
    // The vertical bar takes width, which may be what the content lacks.
    plan.bHorz = plan.bHorz || (plan.bVert && sizeTotal.cx > sizeWhole.cx - sizeBars.cx);
    plan.sizeClient = {sizeWhole.cx - (plan.bVert ? sizeBars.cx : 0), sizeWhole.cy - (plan.bHorz ? sizeBars.cy : 0)};
    return plan;
}

LONG OrTenthOf(LONG nValue, LONG nWhole) {
    return nValue != 0 ? nValue : nWhole / 10;
}

}  // namespace

// ---- CView ----

bool CView::PreCreateWindow(CREATESTRUCTW& cs) {
    if (cs.lpszClass == nullptr) {
        cs.lpszClass = AfxRegisterWndClass(CS_DBLCLKS, ::LoadCursorW(nullptr, IDC_ARROW), ::GetSysColorBrush(COLOR_WINDOW));
    }
    if ((cs.style & WS_BORDER) != 0) {
        cs.dwExStyle |= WS_EX_CLIENTEDGE;
        cs.style &= ~WS_BORDER;
    }
    return CWnd::PreCreateWindow(cs);
}

bool CView::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) {
    static constexpr MsgEntry kTable[] = {
        Msg<WM_PAINT, &CView::OnPaint>(),
        Msg<WM_DESTROY, &CView::OnDestroy>(),
        Msg<WM_INITIALUPDATE, &CView::OnInitialUpdateMsg>(),
    };
    return Dispatch(kTable, message, wParam, lParam, lResult) || CWnd::OnWndMsg(message, wParam, lParam, lResult);
}

void CView::OnPaint() {
    CPaintDC dc(this);
    OnPrepareDC(&dc);
    OnDraw(&dc);
}

void CView::OnDestroy() {
    CFrameWnd* const pFrame = GetParentFrame();
    if (pFrame != nullptr && pFrame->GetActiveView() == this) {
        pFrame->SetActiveView(nullptr);
    }
    Default();
}

void CView::OnActivateView(bool bActivate) {
    if (bActivate) {
        SetFocus();
    }
}

// ---- extent and bars ----

void CScrollView::SetScrollSizes(int /*nMapMode*/, SIZE sizeTotal, SIZE sizePage, SIZE sizeLine) {
    m_sizeTotal = sizeTotal;
    m_sizePage = {OrTenthOf(sizePage.cx, sizeTotal.cx), OrTenthOf(sizePage.cy, sizeTotal.cy)};
    m_sizeLine = {OrTenthOf(sizeLine.cx, m_sizePage.cx), OrTenthOf(sizeLine.cy, m_sizePage.cy)};
    UpdateBars();
}

void CScrollView::UpdateBars() {
    if (m_bInsideUpdate || m_hWnd == nullptr) {
        return;
    }
    const SIZE sizeBars{::GetSystemMetrics(SM_CXVSCROLL), ::GetSystemMetrics(SM_CYHSCROLL)};
    const RECT rcClient = GetClientRect();
    const SIZE sizeWhole{rcClient.right + (HasBar(SB_VERT) ? sizeBars.cx : 0),
                         rcClient.bottom + (HasBar(SB_HORZ) ? sizeBars.cy : 0)};
    if (sizeWhole.cx <= sizeBars.cx || sizeWhole.cy <= sizeBars.cy) {
        return;  // no room for bars, as in a window without size yet
    }
    m_bInsideUpdate = true;
    const BarPlan plan = PlanBars(m_sizeTotal, sizeWhole, sizeBars);
    const POINT ptNow = GetDeviceScrollPosition();
    ScrollToDevicePosition({plan.bHorz ? std::min(ptNow.x, m_sizeTotal.cx - plan.sizeClient.cx) : 0,
                            plan.bVert ? std::min(ptNow.y, m_sizeTotal.cy - plan.sizeClient.cy) : 0});
    if (plan.bHorz == plan.bVert && HasBar(SB_HORZ) != plan.bHorz && HasBar(SB_VERT) != plan.bVert) {
        ::ShowScrollBar(m_hWnd, SB_BOTH, plan.bHorz ? TRUE : FALSE);  // one change of the client area instead of two
    }
    SetBar(SB_HORZ, plan.bHorz, m_sizeTotal.cx, plan.sizeClient.cx);
    SetBar(SB_VERT, plan.bVert, m_sizeTotal.cy, plan.sizeClient.cy);
    m_bInsideUpdate = false;
}

void CScrollView::SetBar(int nBar, bool bShow, int nTotal, int nPage) {
    if (bShow != HasBar(nBar)) {
        ::ShowScrollBar(m_hWnd, nBar, bShow ? TRUE : FALSE);
    }
    if (bShow) {
        const SCROLLINFO info{sizeof info, SIF_RANGE | SIF_PAGE, 0, nTotal - 1, static_cast<UINT>(nPage), 0, 0};
        ::SetScrollInfo(m_hWnd, nBar, &info, TRUE);
    }
}

int CScrollView::GetScrollLimit(int nBar) const {
    if (!HasBar(nBar)) {
        return 0;
    }
    const RECT rcClient = GetClientRect();
    return std::max<int>(nBar == SB_HORZ ? m_sizeTotal.cx - rcClient.right : m_sizeTotal.cy - rcClient.bottom, 0);
}

POINT CScrollView::GetDeviceScrollPosition() const {
    return {GetScrollPos(SB_HORZ), GetScrollPos(SB_VERT)};
}

void CScrollView::ScrollToPosition(POINT pt) {
    ScrollToDevicePosition(
        {std::clamp<LONG>(pt.x, 0, GetScrollLimit(SB_HORZ)), std::clamp<LONG>(pt.y, 0, GetScrollLimit(SB_VERT))});
}

void CScrollView::ScrollToDevicePosition(POINT pt) {
    const POINT ptOld = GetDeviceScrollPosition();
    if (pt.x == ptOld.x && pt.y == ptOld.y) {
        return;
    }
    ::SetScrollPos(m_hWnd, SB_HORZ, static_cast<int>(pt.x), TRUE);
    ::SetScrollPos(m_hWnd, SB_VERT, static_cast<int>(pt.y), TRUE);
    ScrollWindow(static_cast<int>(ptOld.x - pt.x), static_cast<int>(ptOld.y - pt.y));
    OnScrolled();
}

void CScrollView::OnPrepareDC(CDC* pDC, CPrintInfo* pInfo) {
    if (!pDC->IsPrinting() && pInfo == nullptr) {
        const POINT pt = GetDeviceScrollPosition();
        pDC->SetViewportOrg(static_cast<int>(-pt.x), static_cast<int>(-pt.y));
    }
}

// ---- messages ----

bool CScrollView::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) {
    static constexpr MsgEntry kTable[] = {
        Msg<WM_SIZE, &CScrollView::OnSize>(),
        Msg<WM_HSCROLL, &CScrollView::OnHScroll>(),
        Msg<WM_VSCROLL, &CScrollView::OnVScroll>(),
        Msg<WM_MOUSEWHEEL, &CScrollView::OnMouseWheel>(),
        Msg<WM_MOUSEHWHEEL, &CScrollView::OnMouseHWheel>(),
    };
    return Dispatch(kTable, message, wParam, lParam, lResult) || CView::OnWndMsg(message, wParam, lParam, lResult);
}

void CScrollView::OnSize(UINT, int, int) {
    Default();
    UpdateBars();
}

void CScrollView::OnHScroll(UINT nSBCode, int nPos, HWND hScrollBar) {
    if (hScrollBar == nullptr) {
        OnScroll(SB_HORZ, nSBCode, nPos);
    }
}

void CScrollView::OnVScroll(UINT nSBCode, int nPos, HWND hScrollBar) {
    if (hScrollBar == nullptr) {
        OnScroll(SB_VERT, nSBCode, nPos);
    }
}

// The message has room for 16 bits; the bar knows the rest while the message is about the thumb that the user holds.
int CScrollView::ThumbPosition(int nBar, int nPos) const {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_TRACKPOS;
    const bool bSame = ::GetScrollInfo(m_hWnd, nBar, &info) != FALSE && (info.nTrackPos & 0xFFFF) == nPos;
    return bSame ? info.nTrackPos : nPos;
}

void CScrollView::OnScroll(int nBar, UINT nSBCode, int nPos) {
    const bool bHorz = nBar == SB_HORZ;
    const auto nLine = static_cast<int>(bHorz ? m_sizeLine.cx : m_sizeLine.cy);
    const auto nPage = static_cast<int>(bHorz ? m_sizePage.cx : m_sizePage.cy);
    POINT pt = GetDeviceScrollPosition();
    LONG& nTarget = bHorz ? pt.x : pt.y;
    switch (nSBCode) {
        case SB_TOP:
            nTarget = 0;
            break;
        case SB_BOTTOM:
            nTarget = GetScrollLimit(nBar);
            break;
        case SB_LINEUP:
            nTarget -= nLine;
            break;
        case SB_LINEDOWN:
            nTarget += nLine;
            break;
        case SB_PAGEUP:
            nTarget -= nPage;
            break;
        case SB_PAGEDOWN:
            nTarget += nPage;
            break;
        case SB_THUMBTRACK:
            nTarget = ThumbPosition(nBar, nPos);
            break;
        default:
            return;
    }
    ScrollToPosition(pt);
    UpdateWindow();
}

bool CScrollView::OnMouseWheel(UINT nFlags, short zDelta, POINT) {
    if ((nFlags & MK_CONTROL) != 0) {
        return false;
    }
    const bool bAcross = (nFlags & MK_SHIFT) != 0 || !HasBar(SB_VERT);
    return ScrollByWheel(bAcross ? SB_HORZ : SB_VERT, -zDelta, SPI_GETWHEELSCROLLLINES);
}

bool CScrollView::OnMouseHWheel(UINT nFlags, short zDelta, POINT) {
    return (nFlags & MK_CONTROL) == 0 && ScrollByWheel(SB_HORZ, zDelta, SPI_GETWHEELSCROLLCHARS);
}

bool CScrollView::ScrollByWheel(int nBar, int nDelta, UINT nLinesSetting) {
    if (!HasBar(nBar)) {
        return false;
    }
    UINT nLines = 3;
    ::SystemParametersInfoW(nLinesSetting, 0, &nLines, 0);
    const bool bHorz = nBar == SB_HORZ;
    const std::int64_t nPage = bHorz ? m_sizePage.cx : m_sizePage.cy;
    const std::int64_t nLine = bHorz ? m_sizeLine.cx : m_sizeLine.cy;
    // A notch never goes further than a page.
    const std::int64_t nStep = nLines == WHEEL_PAGESCROLL ? nPage : std::min(nPage, nLines * nLine);
    POINT pt = GetDeviceScrollPosition();
    (bHorz ? pt.x : pt.y) += static_cast<LONG>(nDelta * nStep / WHEEL_DELTA);
    ScrollToPosition(pt);
    UpdateWindow();
    return true;
}
