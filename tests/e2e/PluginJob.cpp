#include "tests/e2e/PluginJob.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "res/resource.h"

namespace width::test {

PluginJob::PluginJob(WORD nLangId, LPCWSTR lpszPath) {
    m_hPlugin = ::LoadLibraryW(lpszPath);
    const auto pfnInit = reinterpret_cast<pi_init_fn>(reinterpret_cast<void*>(::GetProcAddress(m_hPlugin, PI_INIT_NAME)));
    pfnInit(&m_table, nLangId);
}

PluginJob::~PluginJob() {
    if (m_hFrame != nullptr) {
        Close();
    }
    ::FreeLibrary(m_hPlugin);
}

void PluginJob::Callback(void* pCookie, int32_t nCode, void* pParam, void* /*pUnused*/) {
    auto& job = *static_cast<PluginJob*>(pCookie);
    if (job.m_pfnOnEvent != nullptr) {
        job.m_pfnOnEvent(job, nCode);
    }
    std::vector<std::byte> block(pParam != nullptr ? _msize(pParam) : 0);
    if (!block.empty()) {
        std::memcpy(block.data(), pParam, block.size());
    }
    const std::lock_guard lock(job.m_mutex);
    job.m_events.push_back({nCode, pParam, ::GetCurrentThreadId(), std::move(block)});
}

static void* Allocated(const std::vector<std::byte>& block) {
    void* pDib = malloc(block.size());
    std::memcpy(pDib, block.data(), block.size());
    return pDib;
}

void PluginJob::StartOnly(const std::vector<std::byte>& block) {
    m_table.pfnStart(Allocated(block), nullptr, Callback, this);
}

HWND PluginJob::Start(const std::vector<std::byte>& block) {
    return StartWith(Allocated(block));
}

HWND PluginJob::StartWith(void* pDib) {
    m_table.pfnStart(pDib, nullptr, Callback, this);
    m_hFrame = WaitForWindow(0);
    if (m_hFrame != nullptr) {
        m_hThread = ::OpenThread(SYNCHRONIZE, FALSE, ::GetWindowThreadProcessId(m_hFrame, nullptr));
        WaitFor([&] { return ::IsZoomed(m_hFrame) != FALSE; });
    }
    return m_hFrame;
}

bool PluginJob::Close() {
    ::PostMessageW(m_hFrame, WM_CLOSE, 0, 0);
    return WaitForEnd();
}

bool PluginJob::WaitForEnd() {
    const bool bEnded = WaitForThread(m_hThread);
    ::CloseHandle(m_hThread);
    m_hThread = nullptr;
    m_hFrame = nullptr;
    const auto events = Events();
    return bEnded && !events.empty() && events.back().nCode == PI_CODE_END;
}

HWND PluginJob::View() const {
    return ::GetDlgItem(m_hFrame, 59648);
}
HWND PluginJob::ToolBar() const {
    return ::GetDlgItem(m_hFrame, 59392);
}

std::vector<HostEvent> PluginJob::Events() {
    const std::lock_guard lock(m_mutex);
    return m_events;
}

std::wstring PluginJob::Pane(int nPane) const {
    const HWND hBar = ::GetDlgItem(m_hFrame, 59393);
    wchar_t text[300] = {};
    ::SendMessageW(hBar, SB_GETTEXTW, static_cast<WPARAM>(nPane), reinterpret_cast<LPARAM>(text));
    return text;
}

bool PluginJob::WaitForPane(int nPane, const std::wstring& text) const {
    return WaitFor([&] { return Pane(nPane) == text; });
}

UINT PluginJob::MenuState(UINT nId) const {
    const HMENU hMenu = ::GetMenu(m_hFrame);
    for (int i = 0; i < ::GetMenuItemCount(hMenu); ++i) {
        const HMENU hPopup = ::GetSubMenu(hMenu, i);
        if (::GetMenuState(hPopup, nId, MF_BYCOMMAND) != UINT_MAX) {
            ::SendMessageW(m_hFrame, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(hPopup), i);
            return ::GetMenuState(hPopup, nId, MF_BYCOMMAND);
        }
    }
    return UINT_MAX;
}

bool PluginJob::IsEnabled(UINT nId) const {
    const UINT nState = MenuState(nId);
    return nState != UINT_MAX ? (nState & (MF_GRAYED | MF_DISABLED)) == 0
                              : ::SendMessageW(ToolBar(), TB_ISBUTTONENABLED, nId, 0) != 0;
}

bool PluginJob::IsMarked(UINT nId) const {
    const UINT nState = MenuState(nId);
    return nState != UINT_MAX ? (nState & MF_CHECKED) != 0 : ::SendMessageW(ToolBar(), TB_ISBUTTONCHECKED, nId, 0) != 0;
}

void PluginJob::Command(UINT nId) const {
    Send(m_hFrame, WM_COMMAND, nId);
}

// The paint may be one that the job's thread has seen in its queue: it then waits for another message before its idle time.
void PluginJob::Paint() const {
    ::UpdateWindow(View());
    ::SendMessageW(m_hFrame, WM_NULL, 0, 0);
    ::PostMessageW(m_hFrame, WM_NULL, 0, 0);
}

// A message that is sent to another thread is dealt with inside its wait for a posted one, so only a posted one behind
// it brings the thread to its idle time.
void PluginJob::Send(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) const {
    ::SendMessageW(hWnd, message, wParam, lParam);
    ::PostMessageW(m_hFrame, WM_NULL, 0, 0);
}

COLORREF PixelAt(HWND hView, POINT pt) {
    const HDC hdc = ::GetDC(hView);
    const COLORREF clr = ::GetPixel(hdc, pt.x, pt.y);
    ::ReleaseDC(hView, hdc);
    return clr;
}

RECT ClientRect(HWND hWnd) {
    RECT rc{};
    ::GetClientRect(hWnd, &rc);
    return rc;
}

std::wstring AnswerBox() {
    const HWND hBox = WaitForWindow(0, L"#32770");
    const std::wstring text = MessageBoxText(hBox);
    ::RedrawWindow(hBox, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_UPDATENOW | RDW_ALLCHILDREN);
    PostCommand(hBox, IDOK);
    WaitFor([&] { return ::IsWindow(hBox) == FALSE; });
    return text;
}

}  // namespace width::test
