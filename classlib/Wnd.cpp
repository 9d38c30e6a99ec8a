// The window procedure, the bond between window and object, and the calls on a window.
//
// The object's address is kept in the window's user data; a window counts as ours only while its procedure is
// WndProc, so that a foreign window's user data is never taken for an object. Tested by: tests/win/ClasslibTest.cpp.
#include "classlib/Wnd.h"

#include <cwchar>
#include <exception>
#include <mutex>
#include <vector>

#include "classlib/FrameWnd.h"
#include "classlib/Thread.h"

namespace {

/// What travels through CreateWindowEx to the first message.
struct CreateParams {
    CWnd* pWnd;
    bool bBound;
};

thread_local MSG t_msgCurrent{};  // the message that the innermost handler works on
thread_local int t_nDepth = 0;    // window procedures on the thread's stack
thread_local CWnd* t_pFirstDoomed = nullptr;

std::mutex g_mutexClasses;
std::vector<ATOM> g_classes;

/// The answer of an update handler to "may this command run now?".
class CTestCmdUI : public CCmdUI {
public:
    using CCmdUI::CCmdUI;
    bool m_bEnabled = true;

protected:
    void DoEnable(bool bOn) override { m_bEnabled = bOn; }
};

}  // namespace

/// One run of the window procedure: remembers the message for Default(), and when the outermost one ends deletes the
/// objects that asked for it.
struct DispatchScope {
    DispatchScope(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) : m_msgOuter(t_msgCurrent) {
        t_msgCurrent = MSG{hWnd, message, wParam, lParam, 0, {}};
        ++t_nDepth;
    }
    DispatchScope(const DispatchScope&) = delete;
    DispatchScope& operator=(const DispatchScope&) = delete;
    ~DispatchScope() {
        t_msgCurrent = m_msgOuter;
        if (--t_nDepth > 0) {
            return;
        }
        while (t_pFirstDoomed != nullptr) {
            CWnd* const pWnd = t_pFirstDoomed;
            t_pFirstDoomed = pWnd->m_pNextDoomed;
            delete pWnd;
        }
    }

private:
    MSG m_msgOuter;
};

LPCWSTR AfxRegisterWndClass(UINT nClassStyle, HCURSOR hCursor, HBRUSH hbrBackground, HICON hIcon) {
    const HINSTANCE hInstance = AfxGetInstanceHandle();
    wchar_t szName[128];
    std::swprintf(szName, std::size(szName), L"Afx:%p:%x:%p:%p:%p", static_cast<void*>(hInstance), nClassStyle,
                  static_cast<void*>(hCursor), static_cast<void*>(hbrBackground), static_cast<void*>(hIcon));
    const std::lock_guard lock(g_mutexClasses);
    WNDCLASSEXW wc{};
    wc.cbSize = sizeof wc;
    ATOM atom = static_cast<ATOM>(::GetClassInfoExW(hInstance, szName, &wc));
    if (atom == 0) {
        wc.style = nClassStyle;
        wc.lpfnWndProc = CWnd::WndProc;
        wc.hInstance = hInstance;
        wc.hIcon = hIcon;
        wc.hCursor = hCursor;
        wc.hbrBackground = hbrBackground;
        wc.lpszClassName = szName;
        atom = ::RegisterClassExW(&wc);
        if (atom != 0) {
            g_classes.push_back(atom);
        }
    }
    return MAKEINTATOM(atom);
}

void AfxUnregisterWndClasses() {
    const std::lock_guard lock(g_mutexClasses);
    for (const ATOM atom : g_classes) {
        ::UnregisterClassW(MAKEINTATOM(atom), AfxGetInstanceHandle());
    }
    g_classes.clear();
}

// ---- the bond ----

CWnd::~CWnd() {
    if (m_hWnd != nullptr) {
        ::DestroyWindow(m_hWnd);
    }
    AfxForgetMainWnd(this);
}

CWnd* CWnd::Bound(HWND hWnd) {
    if (reinterpret_cast<WNDPROC>(::GetWindowLongPtrW(hWnd, GWLP_WNDPROC)) != &CWnd::WndProc) {
        return nullptr;
    }
    return reinterpret_cast<CWnd*>(::GetWindowLongPtrW(hWnd, GWLP_USERDATA));
}

CWnd* CWnd::FromHandle(HWND hWnd) {
    if (hWnd == nullptr || ::GetWindowThreadProcessId(hWnd, nullptr) != ::GetCurrentThreadId()) {
        return nullptr;
    }
    return Bound(hWnd);
}

CWnd* CWnd::BindCreated(HWND hWnd, LPARAM lParam) {
    auto* const pParams = static_cast<CreateParams*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
    if (pParams == nullptr) {
        return nullptr;
    }
    pParams->bBound = true;
    pParams->pWnd->m_hWnd = hWnd;
    ::SetWindowLongPtrW(hWnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(pParams->pWnd));
    return pParams->pWnd;
}

bool CWnd::SubclassWindow(HWND hWnd) {
    if (hWnd == nullptr || m_hWnd != nullptr || FromHandle(hWnd) != nullptr) {
        return false;
    }
    m_hWnd = hWnd;
    m_pfnSuper = reinterpret_cast<WNDPROC>(::GetWindowLongPtrW(hWnd, GWLP_WNDPROC));
    ::SetWindowLongPtrW(hWnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    ::SetWindowLongPtrW(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&CWnd::WndProc));
    return true;
}

HWND CWnd::UnsubclassWindow() {
    if (m_hWnd == nullptr) {
        return nullptr;
    }
    if (m_pfnSuper != nullptr) {
        ::SetWindowLongPtrW(m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnSuper));
        m_pfnSuper = nullptr;
    }
    ::SetWindowLongPtrW(m_hWnd, GWLP_USERDATA, 0);
    return std::exchange(m_hWnd, nullptr);
}

bool CWnd::Create(LPCWSTR lpszClassName, LPCWSTR lpszWindowName, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID) {
    return CreateEx(0, lpszClassName, lpszWindowName, dwStyle | WS_CHILD, rect, pParentWnd->GetSafeHwnd(),
                    reinterpret_cast<HMENU>(static_cast<UINT_PTR>(nID)));
}

bool CWnd::CreateEx(DWORD dwExStyle, LPCWSTR lpszClassName, LPCWSTR lpszWindowName, DWORD dwStyle, const RECT& rect,
                    HWND hWndParent, HMENU nIDorHMenu) {
    const bool bDefaultPlace = rect.left == CW_USEDEFAULT;
    const int cx = bDefaultPlace ? CW_USEDEFAULT : static_cast<int>(rect.right - rect.left);
    const int cy = bDefaultPlace ? CW_USEDEFAULT : static_cast<int>(rect.bottom - rect.top);
    CreateParams params{this, false};
    CREATESTRUCTW cs{&params,
                     AfxGetInstanceHandle(),
                     nIDorHMenu,
                     hWndParent,
                     cy,
                     cx,
                     static_cast<int>(rect.top),
                     static_cast<int>(rect.left),
                     static_cast<LONG>(dwStyle),
                     lpszWindowName,
                     lpszClassName,
                     dwExStyle};
    HWND hWnd = nullptr;
    if (PreCreateWindow(cs) && cs.lpszClass != nullptr) {
        hWnd = ::CreateWindowExW(cs.dwExStyle, cs.lpszClass, cs.lpszName, static_cast<DWORD>(cs.style), cs.x, cs.y, cs.cx, cs.cy,
                                 cs.hwndParent, cs.hMenu, cs.hInstance, cs.lpCreateParams);
    }
    // After a failure the object may be gone: only one that never saw a message still waits for its end.
    if (hWnd == nullptr && !params.bBound) {
        PostNcDestroy();
    }
    return hWnd != nullptr && (params.bBound || SubclassWindow(hWnd));
}

bool CWnd::PreCreateWindow(CREATESTRUCTW& cs) {
    if (cs.lpszClass == nullptr) {
        cs.lpszClass = AfxRegisterWndClass(CS_DBLCLKS, ::LoadCursorW(nullptr, IDC_ARROW));
    }
    return true;
}

// ---- messages ----

LRESULT CALLBACK CWnd::WndProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* pWnd = reinterpret_cast<CWnd*>(::GetWindowLongPtrW(hWnd, GWLP_USERDATA));
    if (pWnd == nullptr && message == WM_NCCREATE) {
        pWnd = BindCreated(hWnd, lParam);
    }
    if (pWnd == nullptr) {
        return ::DefWindowProcW(hWnd, message, wParam, lParam);
    }
    const DispatchScope scope(hWnd, message, wParam, lParam);
    return pWnd->CallProcedure(message, wParam, lParam);
}

LRESULT CWnd::CallProcedure(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCDESTROY) {
        OnNcDestroy();
        return 0;
    }
    try {
        LRESULT lResult = 0;
        return OnWndMsg(message, wParam, lParam, lResult) ? lResult : Default();
    } catch (...) {
        return OnWndProcException(message);
    }
}

LRESULT CWnd::OnWndProcException(UINT message) {
    if (message == WM_PAINT) {
        ::ValidateRect(m_hWnd, nullptr);  // or the same paint would come again for ever
    }
    return message == WM_CREATE ? -1 : 0;
}

LRESULT CWnd::Default() {
    const MSG msg = t_msgCurrent;
    if (m_pfnSuper != nullptr) {
        return ::CallWindowProcW(m_pfnSuper, msg.hwnd, msg.message, msg.wParam, msg.lParam);
    }
    return ::DefWindowProcW(msg.hwnd, msg.message, msg.wParam, msg.lParam);
}

bool CWnd::Dispatch(std::span<const MsgEntry> table, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) {
    const UINT nCode = message == WM_NOTIFY ? reinterpret_cast<const NMHDR*>(lParam)->code : 0;
    for (const MsgEntry& entry : table) {
        if (entry.nMsg == message && entry.nCode == nCode && entry.pfnCall(*this, wParam, lParam, lResult)) {
            return true;
        }
    }
    return false;
}

bool CWnd::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) {
    lResult = 0;
    return message == WM_COMMAND && OnCommand(wParam, lParam);
}

bool CWnd::OnCommand(WPARAM wParam, LPARAM lParam) {
    const UINT nID = LOWORD(wParam);
    const int nCode = lParam == 0 ? CN_COMMAND : HIWORD(wParam);
    if (nID == 0) {
        return false;
    }
    if (nCode == CN_COMMAND) {
        // The item's look may be older than its state: the handler has the last word.
        CTestCmdUI state(nID);
        OnCmdMsg(nID, CN_UPDATE_COMMAND_UI, &state, nullptr);
        if (!state.m_bEnabled) {
            return true;
        }
    }
    return OnCmdMsg(nID, nCode, nullptr, nullptr);
}

void CWnd::OnNcDestroy() {
    Default();
    AfxForgetMainWnd(this);
    UnsubclassWindow();
    PostNcDestroy();
}

void CWnd::DeleteAfterDispatch() {
    if (t_nDepth == 0) {
        delete this;
        return;
    }
    m_pNextDoomed = t_pFirstDoomed;
    t_pFirstDoomed = this;
}

bool CWnd::PreTranslateMessage(MSG*) {
    return false;
}

LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return m_hWnd != nullptr ? ::SendMessageW(m_hWnd, message, wParam, lParam) : 0;
}

bool CWnd::PostMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return m_hWnd != nullptr && ::PostMessageW(m_hWnd, message, wParam, lParam) != FALSE;
}

void CWnd::SendMessageToDescendants(UINT message, WPARAM wParam, LPARAM lParam) {
    for (HWND hChild = ::GetWindow(m_hWnd, GW_CHILD); hChild != nullptr; hChild = ::GetWindow(hChild, GW_HWNDNEXT)) {
        if (CWnd* const pChild = FromHandle(hChild)) {
            pChild->SendMessage(message, wParam, lParam);
            pChild->SendMessageToDescendants(message, wParam, lParam);
        }
    }
}

// ---- calls on the window ----

void CWnd::SetDlgCtrlID(UINT nID) {
    ::SetWindowLongPtrW(m_hWnd, GWLP_ID, static_cast<LONG_PTR>(nID));
}

void CWnd::Invalidate(bool bErase) {
    if (m_hWnd != nullptr) {  // a null window would mean the whole screen
        ::InvalidateRect(m_hWnd, nullptr, bErase ? TRUE : FALSE);
    }
}

void CWnd::InvalidateRect(const RECT& rc, bool bErase) {
    if (m_hWnd != nullptr) {
        ::InvalidateRect(m_hWnd, &rc, bErase ? TRUE : FALSE);
    }
}

bool CWnd::SetWindowPos(HWND hWndInsertAfter, int x, int y, int cx, int cy, UINT nFlags) {
    return ::SetWindowPos(m_hWnd, hWndInsertAfter, x, y, cx, cy, nFlags) != FALSE;
}

std::wstring CWnd::GetWindowText() const {
    std::wstring text(static_cast<std::size_t>(::GetWindowTextLengthW(m_hWnd)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(::GetWindowTextW(m_hWnd, text.data(), static_cast<int>(text.size()))));
    return text;
}

RECT CWnd::GetClientRect() const {
    RECT rc{};
    ::GetClientRect(m_hWnd, &rc);
    return rc;
}

RECT CWnd::GetWindowRect() const {
    RECT rc{};
    ::GetWindowRect(m_hWnd, &rc);
    return rc;
}

CFrameWnd* CWnd::GetParentFrame() const {
    for (HWND hWnd = ::GetParent(m_hWnd); hWnd != nullptr; hWnd = ::GetParent(hWnd)) {
        if (auto* const pFrame = dynamic_cast<CFrameWnd*>(FromHandle(hWnd))) {
            return pFrame;
        }
    }
    return nullptr;
}

int CWnd::MessageBox(LPCWSTR lpszText, LPCWSTR lpszCaption, UINT nType) {
    return ::MessageBoxW(m_hWnd, lpszText, lpszCaption, nType);
}
