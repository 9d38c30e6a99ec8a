// The thread's life and its message loop. Tested by: tests/win/ClasslibTest.cpp.
#include "classlib/Thread.h"

#include <utility>

#include "classlib/Wnd.h"

namespace {

thread_local CWinThread* t_pThread = nullptr;
thread_local HINSTANCE t_hResource = nullptr;

constexpr UINT kCaretBlink = 0x0118;  // the system's own timer

HMODULE ModuleOfThisCode(DWORD dwFlags) {
    HMODULE hModule = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | dwFlags, reinterpret_cast<LPCWSTR>(&ModuleOfThisCode),
                         &hModule);
    return hModule;
}

}  // namespace

CWinThread* AfxGetThread() {
    return t_pThread;
}

CWnd* AfxGetMainWnd() {
    return t_pThread != nullptr ? t_pThread->m_pMainWnd : nullptr;
}

void AfxForgetMainWnd(const CWnd* pWnd) {
    if (t_pThread != nullptr && t_pThread->m_pMainWnd == pWnd) {
        t_pThread->m_pMainWnd = nullptr;
        ::PostQuitMessage(0);
    }
}

HINSTANCE AfxGetInstanceHandle() {
    static const HINSTANCE hModule = ModuleOfThisCode(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT);
    return hModule;
}

HINSTANCE AfxGetResourceHandle() {
    return t_hResource != nullptr ? t_hResource : AfxGetInstanceHandle();
}

void AfxSetResourceHandle(HINSTANCE hInstance) {
    t_hResource = hInstance;
}

std::wstring AfxLoadString(UINT nID, HINSTANCE hInstance) {
    const wchar_t* pText = nullptr;  // with a size of 0 the call gives the address of the resource itself
    const int nLength = ::LoadStringW(hInstance, nID, reinterpret_cast<LPWSTR>(&pText), 0);
    return nLength > 0 ? std::wstring(pText, static_cast<std::size_t>(nLength)) : std::wstring();
}

int AfxMessageBox(LPCWSTR lpszText, UINT nType) {
    const CWnd* const pMain = AfxGetMainWnd();
    const std::wstring title = pMain != nullptr ? pMain->GetWindowText() : std::wstring();
    const HWND hOwner = pMain != nullptr ? ::GetLastActivePopup(pMain->m_hWnd) : nullptr;
    return ::MessageBoxW(hOwner, lpszText, title.c_str(), nType);
}

CWinThread::~CWinThread() {
    if (t_pThread == this) {
        t_pThread = nullptr;
    }
    if (m_hThread != nullptr) {
        ::CloseHandle(m_hThread);
    }
}

bool CWinThread::CreateThread(DWORD dwCreateFlags, UINT nStackSize) {
    const HMODULE hModule = ModuleOfThisCode(0);  // a reference of the thread's own, given back by ThreadProc
    // Always suspended first: the handle must stand in the object before the thread can delete it.
    const HANDLE hThread = ::CreateThread(nullptr, nStackSize, ThreadProc, this, CREATE_SUSPENDED, &m_nThreadID);
    if (hThread == nullptr) {
        ::FreeLibrary(hModule);
        return false;
    }
    m_hThread = hThread;
    if ((dwCreateFlags & CREATE_SUSPENDED) == 0) {
        ::ResumeThread(hThread);
    }
    return true;
}

DWORD WINAPI CWinThread::ThreadProc(void* pThis) {
    auto* const pThread = static_cast<CWinThread*>(pThis);
    t_pThread = pThread;
    const int nExitCode = pThread->RunGuarded();
    if (pThread->m_bAutoDelete) {
        delete pThread;
    } else {
        t_pThread = nullptr;
    }
    ::FreeLibraryAndExitThread(AfxGetInstanceHandle(), static_cast<DWORD>(nExitCode));
}

int CWinThread::RunGuarded() {
    try {
        if (InitInstance()) {
            Run();
        }
    } catch (...) {  // ends the thread as a failed InitInstance does
        m_msgCur.wParam = static_cast<WPARAM>(-1);
    }
    if (m_pMainWnd != nullptr) {
        m_pMainWnd->DestroyWindow();
    }
    try {
        return ExitInstance();
    } catch (...) {
        return -1;
    }
}

int CWinThread::Run() {
    bool bIdle = true;
    LONG lIdleCount = 0;
    MSG msg;
    for (;;) {
        while (bIdle && !::PeekMessageW(&msg, nullptr, 0, 0, PM_NOREMOVE)) {
            bIdle = OnIdle(lIdleCount++);
        }
        if (!PumpMessage()) {
            return static_cast<int>(m_msgCur.wParam);
        }
        if (IsIdleMessage(&m_msgCur)) {
            bIdle = true;
            lIdleCount = 0;
        }
    }
}

bool CWinThread::PumpMessage() {
    if (::GetMessageW(&m_msgCur, nullptr, 0, 0) <= 0) {
        return false;
    }
    if (!PreTranslateMessage(&m_msgCur)) {
        ::TranslateMessage(&m_msgCur);
        ::DispatchMessageW(&m_msgCur);
    }
    return true;
}

int CWinThread::ExitInstance() {
    return static_cast<int>(m_msgCur.wParam);
}

bool CWinThread::OnIdle(LONG lCount) {
    if (lCount == 0 && m_pMainWnd != nullptr && m_pMainWnd->IsWindowVisible()) {
        m_pMainWnd->SendMessage(WM_IDLEUPDATECMDUI, TRUE);
        if (m_pMainWnd != nullptr) {
            m_pMainWnd->SendMessageToDescendants(WM_IDLEUPDATECMDUI, TRUE);
        }
    }
    return false;
}

bool CWinThread::PreTranslateMessage(MSG* pMsg) {
    for (HWND hWnd = pMsg->hwnd; hWnd != nullptr; hWnd = ::GetParent(hWnd)) {
        CWnd* const pWnd = CWnd::FromHandle(hWnd);
        if (pWnd != nullptr && pWnd->PreTranslateMessage(pMsg)) {
            return true;
        }
        if (pWnd != nullptr && pWnd == m_pMainWnd) {
            break;
        }
    }
    return false;
}

bool CWinThread::IsIdleMessage(const MSG* pMsg) {
    if (pMsg->message == WM_MOUSEMOVE || pMsg->message == WM_NCMOUSEMOVE) {
        const bool bMoved = pMsg->message != m_nLastMoveMsg || pMsg->pt.x != m_ptLastMove.x || pMsg->pt.y != m_ptLastMove.y;
        m_ptLastMove = pMsg->pt;
        m_nLastMoveMsg = pMsg->message;
        return bMoved;
    }
    return pMsg->message != WM_PAINT && pMsg->message != kCaretBlink;
}
