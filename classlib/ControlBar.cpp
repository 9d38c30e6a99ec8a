// What tool bar and status bar share. Tested by: tests/win/ClasslibTest.cpp.
#include "classlib/ControlBar.h"

#include "classlib/FrameWnd.h"

bool CControlBar::CreateControl(CWnd* pParentWnd, LPCWSTR lpszClassName, DWORD dwCtrlStyle, DWORD dwStyle, UINT nID) {
    const INITCOMMONCONTROLSEX init{sizeof init, ICC_BAR_CLASSES};
    ::InitCommonControlsEx(&init);
    m_dwStyle = dwStyle & 0xFFFF;
    m_nDpi = DpiOf(pParentWnd->m_hWnd);
    const DWORD dwWindow = (dwStyle & 0xFFFF0000) | dwCtrlStyle | CCS_NOPARENTALIGN | CCS_NORESIZE | CCS_NODIVIDER;
    return Create(lpszClassName, nullptr, dwWindow, RECT{}, pParentWnd, nID);
}

bool CControlBar::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) {
    static constexpr MsgEntry kTable[] = {
        Msg<WM_IDLEUPDATECMDUI, &CControlBar::OnIdleUpdateCmdUI>(),
        Msg<WM_SIZEPARENT, &CControlBar::OnSizeParent>(),
    };
    return Dispatch(kTable, message, wParam, lParam, lResult) || CWnd::OnWndMsg(message, wParam, lParam, lResult);
}

void CControlBar::OnIdleUpdateCmdUI() {
    CFrameWnd* const pFrame = GetParentFrame();
    if (pFrame != nullptr && (GetStyle() & WS_VISIBLE) != 0) {
        OnUpdateCmdUI(*pFrame, true);
    }
}

// Takes the bar's strip off the rectangle that lParam points to, and moves there.
LRESULT CControlBar::OnSizeParent(WPARAM, LPARAM lParam) {
    if ((GetStyle() & WS_VISIBLE) == 0) {
        return 0;
    }
    RECT& rcFree = *reinterpret_cast<RECT*>(lParam);
    const LONG nHeight = LayOutItems(rcFree.right - rcFree.left);
    const bool bTop = (m_dwStyle & CBRS_ALIGN_TOP) != 0;
    const LONG nTop = bTop ? rcFree.top : rcFree.bottom - nHeight;
    (bTop ? rcFree.top : rcFree.bottom) += bTop ? nHeight : -nHeight;
    SetWindowPos(nullptr, rcFree.left, nTop, rcFree.right - rcFree.left, nHeight, SWP_NOZORDER | SWP_NOACTIVATE);
    return 0;
}
