// Driving real windows. Counting objects has two ways: Windows tells the number, Wine lets each handle be asked.
#include "tests/support/WinDriver.h"

#include <atomic>
#include <cstdio>
#include <vector>

#include "classlib/Gdi.h"

namespace width::test {

namespace {

LONG WINAPI OnCrash(EXCEPTION_POINTERS* pInfo) {
    std::fprintf(stderr, "crashed: exception 0x%08lX at %p\n", pInfo->ExceptionRecord->ExceptionCode,
                 pInfo->ExceptionRecord->ExceptionAddress);
    std::fflush(stderr);
    ::TerminateProcess(::GetCurrentProcess(), 99);
    return EXCEPTION_EXECUTE_HANDLER;
}

const LPTOP_LEVEL_EXCEPTION_FILTER g_pfnBefore = ::SetUnhandledExceptionFilter(OnCrash);

std::vector<HWND> TopWindows() {
    std::vector<HWND> windows;
    const auto collect = [](HWND hWnd, LPARAM lParam) -> BOOL {
        DWORD nProcess = 0;
        ::GetWindowThreadProcessId(hWnd, &nProcess);
        if (nProcess == ::GetCurrentProcessId() && ::IsWindowVisible(hWnd)) {
            reinterpret_cast<std::vector<HWND>*>(lParam)->push_back(hWnd);
        }
        return TRUE;
    };
    ::EnumWindows(collect, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

std::wstring ClassOf(HWND hWnd) {
    wchar_t szName[256]{};
    ::GetClassNameW(hWnd, szName, static_cast<int>(std::size(szName)));
    return szName;
}

std::wstring TitleOf(HWND hWnd) {
    wchar_t szText[200]{};
    ::InternalGetWindowText(hWnd, szText, static_cast<int>(std::size(szText)));  // sends no message, so it can't hang
    return szText;
}

void TellInVain(int nWaitedMs, const CallSite& where) {
    std::fprintf(stderr, "%s:%u: waited %d ms in vain; open windows, topmost first:\n", where.file_name(),
                 static_cast<unsigned>(where.line()), nWaitedMs);
    for (const HWND hWnd : TopWindows()) {
        std::fprintf(stderr, "    %ls \"%ls\"%s %ls\n", ClassOf(hWnd).c_str(), TitleOf(hWnd).c_str(),
                     ::IsWindowEnabled(hWnd) != FALSE ? "" : " (disabled)", TitleOf(::GetDlgItem(hWnd, 0xFFFF)).c_str());
    }
    std::fflush(stderr);
}

// The marker of WaitUntilServed, as the thread that takes it from its queue tells of it.
std::atomic<unsigned> g_nLastMarker{0};
std::atomic<unsigned> g_nTakenMarker{0};
std::atomic<bool> g_bInputLeft{false};

UINT MarkerMessage() {
    static const UINT nMessage = ::RegisterWindowMessageW(L"WidthTestMarker");
    return nMessage;
}

LRESULT CALLBACK OnMessageTaken(int nCode, WPARAM wParam, LPARAM lParam) {
    const auto* const pMsg = reinterpret_cast<const MSG*>(lParam);
    if (nCode == HC_ACTION && wParam == PM_REMOVE && pMsg->hwnd == nullptr && pMsg->message == MarkerMessage()) {
        g_bInputLeft = HIWORD(::GetQueueStatus(QS_INPUT | QS_POSTMESSAGE)) != 0;
        g_nTakenMarker = static_cast<unsigned>(pMsg->wParam);
    }
    return ::CallNextHookEx(nullptr, nCode, wParam, lParam);
}

bool IsUserObject(UINT_PTR nHandle) {
    ICONINFO info{};
    if (::IsWindow(reinterpret_cast<HWND>(nHandle)) || ::IsMenu(reinterpret_cast<HMENU>(nHandle))) {
        return true;
    }
    if (!::GetIconInfo(reinterpret_cast<HICON>(nHandle), &info)) {
        return false;
    }
    CBitmap mask;
    CBitmap colour;
    mask.Attach(info.hbmMask);
    colour.Attach(info.hbmColor);
    return true;
}

}  // namespace

bool WaitFor(const std::function<bool()>& condition, int nTimeoutMs, CallSite where) {
    const ULONGLONG nEnd = ::GetTickCount64() + static_cast<ULONGLONG>(nTimeoutMs);
    while (!condition()) {
        if (::GetTickCount64() > nEnd) {
            TellInVain(nTimeoutMs, where);
            return false;
        }
        ::Sleep(1);
    }
    return true;
}

bool WaitForThread(HANDLE hThread, int nTimeoutMs, CallSite where) {
    const bool bEnded = ::WaitForSingleObject(hThread, static_cast<DWORD>(nTimeoutMs)) == WAIT_OBJECT_0;
    if (!bEnded) {
        TellInVain(nTimeoutMs, where);
    }
    return bEnded;
}

bool SendAndWait(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam, DWORD_PTR* pResult, CallSite where) {
    DWORD_PTR nIgnored = 0;
    if (::SendMessageTimeoutW(hWnd, message, wParam, lParam, SMTO_NORMAL, kLongestWaitMs,
                              pResult != nullptr ? pResult : &nIgnored) != 0) {
        return true;
    }
    if (::IsWindow(hWnd) != FALSE) {
        TellInVain(kLongestWaitMs, where);
    }
    return false;
}

// The marker is a posted message, which goes before input. So where input is left the marker goes round once more, posted
// from here: one that the thread posted to itself would never let the input have its turn.
bool WaitUntilServed(DWORD nThreadId, CallSite where) {
    const HHOOK hHook = ::SetWindowsHookExW(WH_GETMESSAGE, OnMessageTaken, nullptr, nThreadId);
    const HANDLE hThread = ::OpenThread(SYNCHRONIZE, FALSE, nThreadId);
    const auto hasEnded = [&] { return hThread == nullptr || ::WaitForSingleObject(hThread, 0) == WAIT_OBJECT_0; };
    const auto goesRound = [&] {
        const unsigned nMarker = ++g_nLastMarker;
        ::PostThreadMessageW(nThreadId, MarkerMessage(), nMarker, 0);
        return !WaitFor([&] { return g_nTakenMarker == nMarker || hasEnded(); }, kLongestWaitMs, where) || hasEnded() ||
               !g_bInputLeft;
    };
    const bool bServed = WaitFor(goesRound, kLongestWaitMs, where) && !hasEnded() && g_nTakenMarker == g_nLastMarker;
    ::CloseHandle(hThread);
    ::UnhookWindowsHookEx(hHook);
    return bServed;
}

HWND FindTopWindow(DWORD nThreadId, LPCWSTR lpszClass, LPCWSTR lpszTitle) {
    for (const HWND hWnd : TopWindows()) {
        const bool bThread = nThreadId == 0 || ::GetWindowThreadProcessId(hWnd, nullptr) == nThreadId;
        if (bThread && (lpszClass == nullptr || ClassOf(hWnd) == lpszClass) &&
            (lpszTitle == nullptr || TextOf(hWnd) == lpszTitle)) {
            return hWnd;
        }
    }
    return nullptr;
}

HWND WaitForWindow(DWORD nThreadId, LPCWSTR lpszClass, LPCWSTR lpszTitle, CallSite where) {
    HWND hWnd = nullptr;
    WaitFor([&] { return (hWnd = FindTopWindow(nThreadId, lpszClass, lpszTitle)) != nullptr; }, kLongestWaitMs, where);
    return hWnd;
}

bool WaitUntilClosed(HWND hDlg, CallSite where) {
    const DWORD nThreadId = ::GetWindowThreadProcessId(hDlg, nullptr);
    return nThreadId == 0 ||
           (WaitFor([&] { return ::IsWindow(hDlg) == FALSE; }, kLongestWaitMs, where) && WaitUntilServed(nThreadId, where));
}

std::wstring TextOf(HWND hWnd) {
    wchar_t szText[512]{};
    SendAndWait(hWnd, WM_GETTEXT, std::size(szText), reinterpret_cast<LPARAM>(szText));
    return szText;
}

std::wstring MessageBoxText(HWND hBox) {
    return TextOf(::GetDlgItem(hBox, 0xFFFF));
}

void PostCommand(HWND hWnd, UINT nID) {
    ::PostMessageW(hWnd, WM_COMMAND, nID, 0);
}

void PostMouse(HWND hWnd, UINT message, POINT point, WPARAM nFlags) {
    ::PostMessageW(hWnd, message, nFlags, MAKELPARAM(point.x, point.y));
}

std::size_t CountGdiObjects() {
    if (const DWORD nCount = ::GetGuiResources(::GetCurrentProcess(), GR_GDIOBJECTS)) {
        return nCount;
    }
    std::size_t nCount = 0;
    for (UINT_PTR i = 1; i < 0x10000; ++i) {
        nCount += ::GetObjectType(reinterpret_cast<HGDIOBJ>(i)) != 0 ? 1U : 0U;
    }
    return nCount;
}

std::size_t CountUserObjects() {
    if (const DWORD nCount = ::GetGuiResources(::GetCurrentProcess(), GR_USEROBJECTS)) {
        return nCount;
    }
    std::size_t nCount = 0;
    for (UINT_PTR i = 0x20; i < 0x10000; i += 2) {
        nCount += IsUserObject(i) ? 1U : 0U;
    }
    return nCount;
}

bool SaveScreenshot(const std::wstring& path) {
    const int nWidth = ::GetSystemMetrics(SM_CXSCREEN);
    const int nHeight = ::GetSystemMetrics(SM_CYSCREEN);
    BITMAPINFO info{};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), nWidth, nHeight, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    void* pBits = nullptr;
    CDC dc;
    CBitmap picture;
    if (!dc.CreateCompatibleDC(nullptr) || !picture.CreateDIBSection(&info, &pBits)) {
        return false;
    }
    const CSelectGuard selected(dc, picture);
    const std::vector<HWND> windows = TopWindows();
    for (auto it = windows.rbegin(); it != windows.rend(); ++it) {
        ::RedrawWindow(*it, nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
        RECT rc{};
        ::GetWindowRect(*it, &rc);
        dc.BitBlt(rc, CWindowDC(*it), {0, 0});
    }
    ::GdiFlush();
    const auto nBytes = static_cast<DWORD>((nWidth * 3 + 3) / 4 * 4 * nHeight);
    constexpr DWORD kHeads = sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER);
    const BITMAPFILEHEADER head{0x4D42, kHeads + nBytes, 0, 0, kHeads};
    std::FILE* const pFile = ::_wfopen(path.c_str(), L"wb");
    if (pFile == nullptr) {
        return false;
    }
    const bool bWritten = std::fwrite(&head, sizeof head, 1, pFile) == 1 &&
                          std::fwrite(&info.bmiHeader, sizeof info.bmiHeader, 1, pFile) == 1 &&
                          std::fwrite(pBits, nBytes, 1, pFile) == 1;
    return std::fclose(pFile) == 0 && bWritten;
}

}  // namespace width::test
