// Tested by: tests/win/ClasslibPreviewTest.cpp
#include "classlib/DialogBar.h"

#include <utility>

#include "classlib/BarRows.h"
#include "classlib/FrameWnd.h"
#include "classlib/Thread.h"

namespace {

/// The state of one control. One that has the focus hands it on before it is disabled, or the keyboard would be lost.
class CControlCmdUI : public CCmdUI {
public:
    CControlCmdUI(UINT nID, HWND hBar, HWND hControl) : CCmdUI(nID), m_hBar(hBar), m_hControl(hControl) {}
    void SetText(LPCWSTR lpszText) override { ::SetWindowTextW(m_hControl, lpszText); }

protected:
    void DoEnable(bool bOn) override {
        if (bOn == (::IsWindowEnabled(m_hControl) != FALSE)) {
            return;
        }
        if (!bOn && ::GetFocus() == m_hControl) {
            ::SetFocus(::GetNextDlgTabItem(m_hBar, m_hControl, FALSE));
        }
        ::EnableWindow(m_hControl, bOn ? TRUE : FALSE);
    }

private:
    HWND m_hBar;
    HWND m_hControl;
};

INT_PTR CALLBACK BarProc(HWND, UINT, WPARAM, LPARAM) {
    return FALSE;
}

}  // namespace

bool CDialogBar::Create(CWnd* pParentWnd, UINT nIDTemplate, UINT nStyle, UINT nID) {
    const HWND hDlg = ::CreateDialogParamW(AfxGetResourceHandle(), MAKEINTRESOURCEW(nIDTemplate), pParentWnd->m_hWnd, BarProc, 0);
    if (hDlg == nullptr || !SubclassWindow(hDlg)) {
        if (hDlg != nullptr) {
            ::DestroyWindow(hDlg);
        }
        return false;
    }
    m_dwStyle = nStyle;
    m_nDpi = DpiOf(pParentWnd->m_hWnd);
    Remember();
    SetDlgCtrlID(nID);
    SetWindowPos(nullptr, 0, 0, 0, 0, SWP_NOZORDER | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    return true;
}

void CDialogBar::Remember() {
    m_nFirstDpi = m_nDpi;
    ::GetObjectW(reinterpret_cast<HFONT>(SendMessage(WM_GETFONT)), sizeof m_logFont, &m_logFont);
    const RECT rc = GetWindowRect();
    m_nHeight = rc.bottom - rc.top;
    for (HWND hControl = ::GetWindow(m_hWnd, GW_CHILD); hControl != nullptr; hControl = ::GetWindow(hControl, GW_HWNDNEXT)) {
        Item item{hControl, {}};
        ::GetWindowRect(hControl, &item.rc);
        ::MapWindowPoints(nullptr, m_hWnd, reinterpret_cast<POINT*>(&item.rc), 2);
        m_items.push_back(item);
    }
}

void CDialogBar::OnDpiChanged(int nDpi) {
    CControlBar::OnDpiChanged(nDpi);
    LOGFONTW logFont = m_logFont;
    logFont.lfHeight = Rescaled(logFont.lfHeight);
    CFont font;
    if (font.CreateFontIndirect(logFont)) {
        for (const Item& item : m_items) {
            ::SendMessageW(item.hWnd, WM_SETFONT, reinterpret_cast<WPARAM>(font.GetSafeHandle()), TRUE);
        }
        m_font = std::move(font);
    }
}

int CDialogBar::LayOutItems(int cx) {
    std::vector<BarItem> row;
    for (const Item& item : m_items) {
        row.push_back({Rescaled(item.rc.left), Rescaled(item.rc.right)});
    }
    const int nHeight = Rescaled(m_nHeight);
    int nRows = 1;
    std::size_t i = 0;
    for (const BarPlace& place : BreakIntoRows(row, cx)) {
        const RECT& rc = m_items[i].rc;
        ::SetWindowPos(m_items[i].hWnd, nullptr, place.nLeft, place.nRow * nHeight + Rescaled(rc.top),
                       row[i].nRight - row[i].nLeft, Rescaled(rc.bottom - rc.top), SWP_NOZORDER | SWP_NOACTIVATE);
        nRows = place.nRow + 1;
        ++i;
    }
    return m_hWnd != nullptr ? nRows * nHeight : 0;
}

void CDialogBar::OnUpdateCmdUI(CCmdTarget& target, bool bDisableIfNoHandler) {
    for (HWND hControl = ::GetWindow(m_hWnd, GW_CHILD); hControl != nullptr; hControl = ::GetWindow(hControl, GW_HWNDNEXT)) {
        const auto nID = static_cast<UINT>(::GetDlgCtrlID(hControl));
        if ((::SendMessageW(hControl, WM_GETDLGCODE, 0, 0) & DLGC_BUTTON) != 0) {
            CControlCmdUI state(nID, m_hWnd, hControl);
            state.DoUpdate(target, bDisableIfNoHandler);
        }
    }
}

bool CDialogBar::OnCmdMsg(UINT nID, int nCode, CCmdUI* pCmdUI, CCmdTarget** ppHandler) {
    CFrameWnd* const pFrame = GetParentFrame();
    return pFrame != nullptr && pFrame->OnCmdMsg(nID, nCode, pCmdUI, ppHandler);
}

bool CDialogBar::PreTranslateMessage(MSG* pMsg) {
    return pMsg->message >= WM_KEYFIRST && pMsg->message <= WM_KEYLAST && ::IsDialogMessageW(m_hWnd, pMsg) != FALSE;
}

void CDialogBar::PostNcDestroy() {
    if (m_bAutoDelete) {
        DeleteAfterDispatch();
    }
}
