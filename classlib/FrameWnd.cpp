// Loading, layout and menus of the frame. Tested by: tests/win/ClasslibTest.cpp.
#include "classlib/FrameWnd.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "classlib/ControlBar.h"
#include "classlib/ScrollView.h"
#include "classlib/StatusBar.h"
#include "classlib/Thread.h"

namespace {

/// The state of one menu item, addressed by position.
class CMenuCmdUI : public CCmdUI {
public:
    CMenuCmdUI(UINT nID, HMENU hMenu, UINT nIndex) : CCmdUI(nID), m_hMenu(hMenu), m_nIndex(nIndex) {}

    void SetCheck(int nCheck) override {
        ::CheckMenuItem(m_hMenu, m_nIndex, MF_BYPOSITION | static_cast<UINT>(nCheck != 0 ? MF_CHECKED : MF_UNCHECKED));
    }
    void SetText(LPCWSTR lpszText) override {
        MENUITEMINFOW info{};
        info.cbSize = sizeof info;
        info.fMask = MIIM_STRING;
        std::wstring text(lpszText);
        info.dwTypeData = text.data();
        ::SetMenuItemInfoW(m_hMenu, m_nIndex, TRUE, &info);
    }

protected:
    void DoEnable(bool bOn) override {
        ::EnableMenuItem(m_hMenu, m_nIndex, MF_BYPOSITION | static_cast<UINT>(bOn ? MF_ENABLED : MF_GRAYED));
    }

private:
    HMENU m_hMenu;
    UINT m_nIndex;
};

constexpr UINT kFirstSystemCommand = 0xF000;

BOOL CALLBACK PostCloseToDialog(HWND hWnd, LPARAM) {
    wchar_t name[8] = {};
    if (::GetClassNameW(hWnd, name, 8) > 0 && std::wstring_view(name) == L"#32770") {
        ::PostMessageW(hWnd, WM_CLOSE, 0, 0);
    }
    return TRUE;
}

}  // namespace

bool CFrameWnd::LoadFrame(UINT nIDResource, DWORD dwStyle) {
    const HINSTANCE hInstance = AfxGetResourceHandle();
    const HMENU hMenu = ::LoadMenuW(hInstance, MAKEINTRESOURCEW(nIDResource));
    if (hMenu == nullptr) {
        PostNcDestroy();
        return false;
    }
    m_hIcon = ::LoadIconW(hInstance, MAKEINTRESOURCEW(nIDResource));
    std::wstring title = AfxLoadString(nIDResource, hInstance);
    title.resize(std::min(title.size(), title.find(L'\n')));
    const RECT rcDefault{CW_USEDEFAULT, CW_USEDEFAULT, 0, 0};
    if (!CreateEx(0, nullptr, title.c_str(), dwStyle, rcDefault, nullptr, hMenu)) {
        if (::IsMenu(hMenu)) {
            ::DestroyMenu(hMenu);
        }
        return false;
    }
    SendMessageToDescendants(WM_INITIALUPDATE);
    return true;
}

bool CFrameWnd::PreCreateWindow(CREATESTRUCTW& cs) {
    if (cs.lpszClass == nullptr) {
        const HICON hIcon = m_hIcon != nullptr ? m_hIcon : ::LoadIconW(nullptr, IDI_APPLICATION);
        cs.lpszClass =
            AfxRegisterWndClass(CS_DBLCLKS, ::LoadCursorW(nullptr, IDC_ARROW), ::GetSysColorBrush(COLOR_BTNFACE), hIcon);
    }
    cs.dwExStyle |= WS_EX_CLIENTEDGE;
    return CWnd::PreCreateWindow(cs);
}

bool CFrameWnd::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) {
    static constexpr MsgEntry kTable[] = {
        Msg<WM_CREATE, &CFrameWnd::OnCreate>(),
        Msg<WM_CLOSE, &CFrameWnd::OnClose>(),
        Msg<WM_ENABLE, &CFrameWnd::OnEnable>(),
        Msg<WM_DESTROY, &CFrameWnd::OnDestroy>(),
        Msg<WM_SIZE, &CFrameWnd::OnSize>(),
        Msg<WM_SETFOCUS, &CFrameWnd::OnSetFocus>(),
        Msg<WM_ERASEBKGND, &CFrameWnd::OnEraseBkgnd>(),
        Msg<WM_DPICHANGED, &CFrameWnd::OnDpiChanged>(),
        Msg<WM_INITMENUPOPUP, &CFrameWnd::OnInitMenuPopup>(),
        Msg<WM_SETMESSAGESTRING, &CFrameWnd::OnSetMessageString>(),
    };
    return Dispatch(kTable, message, wParam, lParam, lResult) || CWnd::OnWndMsg(message, wParam, lParam, lResult);
}

int CFrameWnd::OnCreate(CREATESTRUCTW*) {
    return static_cast<int>(Default());
}

// The code that shows a dialog over the frame works with what the frame owns. So the dialogs are closed first, and the
// frame when the last of them has given it back.
void CFrameWnd::OnClose() {
    if (::IsWindowEnabled(m_hWnd) == FALSE) {
        m_bCloseWanted = true;
        ::EnumThreadWindows(::GetCurrentThreadId(), PostCloseToDialog, 0);
    } else if (m_pPreviewState == nullptr || m_pPreviewState->lpfnCloseProc(this)) {
        DestroyWindow();
    }
}

void CFrameWnd::OnEnable(bool bEnable) {
    Default();
    if (bEnable && std::exchange(m_bCloseWanted, false)) {
        ::PostMessageW(m_hWnd, WM_CLOSE, 0, 0);
    }
}

void CFrameWnd::OnDestroy() {
    m_pViewActive = nullptr;
    m_pPreviewState = nullptr;
    if (m_hMenuAside != nullptr) {
        ::DestroyMenu(std::exchange(m_hMenuAside, nullptr));
    }
    Default();
}

void CFrameWnd::OnSize(UINT nType, int, int) {
    Default();
    if (nType != SIZE_MINIMIZED) {
        RecalcLayout();
    }
}

void CFrameWnd::OnSetFocus(HWND) {
    if (m_pViewActive != nullptr) {
        m_pViewActive->SetFocus();
    } else {
        Default();
    }
}

// Bars and pane cover the whole client area: erasing it first would only flicker.
bool CFrameWnd::OnEraseBkgnd(CDC*) {
    return ::IsWindowVisible(GetDlgItem(AFX_IDW_PANE_FIRST)) != FALSE || Default() != 0;
}

// The system suggests the rectangle that covers as much of the new monitor as the window did of the old one.
void CFrameWnd::OnDpiChanged(int nDpi, const RECT& rcSuggested) {
    for (CControlBar* const pBar : Bars()) {
        pBar->OnDpiChanged(nDpi);
    }
    SetWindowPos(nullptr, rcSuggested.left, rcSuggested.top, rcSuggested.right - rcSuggested.left,
                 rcSuggested.bottom - rcSuggested.top, SWP_NOZORDER | SWP_NOACTIVATE);
    RecalcLayout();
}

/// The bars among the frame's children, hidden ones too.
std::vector<CControlBar*> CFrameWnd::Bars() const {
    std::vector<CControlBar*> bars;
    for (HWND hWnd = ::GetWindow(m_hWnd, GW_CHILD); hWnd != nullptr; hWnd = ::GetWindow(hWnd, GW_HWNDNEXT)) {
        if (auto* const pBar = dynamic_cast<CControlBar*>(FromHandle(hWnd))) {
            bars.push_back(pBar);
        }
    }
    return bars;
}

void CFrameWnd::OnInitMenuPopup(HMENU hMenu, UINT, bool bSysMenu) {
    if (bSysMenu) {
        return;
    }
    const int nCount = ::GetMenuItemCount(hMenu);
    for (int i = 0; i < nCount; ++i) {
        const UINT nID = ::GetMenuItemID(hMenu, i);
        if (nID != 0 && nID != static_cast<UINT>(-1)) {  // no separator, no popup
            CMenuCmdUI state(nID, hMenu, static_cast<UINT>(i));
            state.DoUpdate(*this, nID < kFirstSystemCommand);
        }
    }
}

bool CFrameWnd::OnCmdMsg(UINT nID, int nCode, CCmdUI* pCmdUI, CCmdTarget** ppHandler) {
    if (m_pViewActive != nullptr && m_pViewActive->OnCmdMsg(nID, nCode, pCmdUI, ppHandler)) {
        return true;
    }
    if (CWnd::OnCmdMsg(nID, nCode, pCmdUI, ppHandler)) {
        return true;
    }
    CWinThread* const pThread = AfxGetThread();
    return pThread != nullptr && pThread->OnCmdMsg(nID, nCode, pCmdUI, ppHandler);
}

void CFrameWnd::SetActiveView(CView* pView) {
    CView* const pOld = m_pViewActive;
    if (pView == pOld) {
        return;
    }
    m_pViewActive = nullptr;
    if (pOld != nullptr) {
        pOld->OnActivateView(false);
    }
    m_pViewActive = pView;
    if (pView != nullptr) {
        pView->OnActivateView(true);
    }
}

void CFrameWnd::RecalcLayout() {
    RECT rcFree = GetClientRect();
    for (HWND hWnd = ::GetWindow(m_hWnd, GW_CHILD); hWnd != nullptr; hWnd = ::GetWindow(hWnd, GW_HWNDNEXT)) {
        if (CWnd* const pWnd = FromHandle(hWnd)) {
            pWnd->SendMessage(WM_SIZEPARENT, 0, reinterpret_cast<LPARAM>(&rcFree));
        }
    }
    const int cx = std::max<int>(rcFree.right - rcFree.left, 0);
    const int cy = std::max<int>(rcFree.bottom - rcFree.top, 0);
    ::SetWindowPos(GetDlgItem(AFX_IDW_PANE_FIRST), nullptr, rcFree.left, rcFree.top, cx, cy, SWP_NOZORDER | SWP_NOACTIVATE);
}

LRESULT CFrameWnd::OnSetMessageString(WPARAM wParam, LPARAM lParam) {
    const auto nID = static_cast<UINT>(wParam);
    auto* const pBar = dynamic_cast<CStatusBar*>(FromHandle(GetDlgItem(AFX_IDW_STATUS_BAR)));
    if (pBar != nullptr && (lParam != 0 || nID != 0)) {
        const std::wstring text = lParam != 0 ? reinterpret_cast<const wchar_t*>(lParam) : AfxLoadString(nID);
        pBar->SetPaneText(pBar->CommandToIndex(0), text.c_str());
    }
    return static_cast<LRESULT>(std::exchange(m_nIDLastMessage, nID));
}

void CFrameWnd::OnSetPreviewMode(bool bPreview, CPrintPreviewState* pState) {
    if (bPreview) {
        PutAside(*pState);
    } else {
        BringBack(*pState);
    }
    m_pPreviewState = bPreview ? pState : nullptr;
    // With the menu the client area has moved: what its windows show has to be drawn anew at the new place.
    if (m_hWnd != nullptr) {  // a null window would mean the whole screen
        ::RedrawWindow(m_hWnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
    }
}

// The list comes first: should memory run out, nothing has changed yet.
void CFrameWnd::PutAside(CPrintPreviewState& state) {
    state.bars = Bars();
    std::erase_if(state.bars, [](const CControlBar* pBar) {
        return (pBar->GetStyle() & WS_VISIBLE) == 0 || pBar->GetDlgCtrlID() == AFX_IDW_STATUS_BAR;
    });
    state.hPane = GetDlgItem(AFX_IDW_PANE_FIRST);
    ::SetWindowLongPtrW(state.hPane, GWLP_ID, AFX_IDW_PANE_SAVE);
    ::ShowWindow(state.hPane, SW_HIDE);
    for (CControlBar* const pBar : state.bars) {
        pBar->ShowWindow(SW_HIDE);
    }
    m_hMenuAside = ::GetMenu(m_hWnd);
    ::SetMenu(m_hWnd, nullptr);
}

// The pane has its id back before the menu changes the client area and with it the layout.
void CFrameWnd::BringBack(CPrintPreviewState& state) {
    if (const HWND hOther = GetDlgItem(AFX_IDW_PANE_FIRST)) {
        ::SetWindowLongPtrW(hOther, GWLP_ID, 0);
    }
    ::SetWindowLongPtrW(state.hPane, GWLP_ID, AFX_IDW_PANE_FIRST);
    ::ShowWindow(state.hPane, SW_SHOWNA);
    for (CControlBar* const pBar : state.bars) {
        pBar->ShowWindow(SW_SHOWNA);
    }
    state.hPane = nullptr;
    state.bars.clear();
    ::SetMenu(m_hWnd, std::exchange(m_hMenuAside, nullptr));
}
