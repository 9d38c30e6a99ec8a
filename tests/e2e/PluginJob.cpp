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

HWND PluginJob::Start(const std::vector<std::byte>& block, CallSite where) {
    return StartWith(Allocated(block), where);
}

HWND PluginJob::StartWith(void* pDib, CallSite where) {
    m_table.pfnStart(pDib, nullptr, Callback, this);
    m_hFrame = WaitForWindow(0, nullptr, nullptr, where);
    if (m_hFrame != nullptr) {
        m_hThread = ::OpenThread(SYNCHRONIZE, FALSE, ::GetWindowThreadProcessId(m_hFrame, nullptr));
        WaitFor([&] { return ::IsZoomed(m_hFrame) != FALSE; }, kLongestWaitMs, where);
    }
    return m_hFrame;
}

bool PluginJob::Close(CallSite where) {
    ::PostMessageW(m_hFrame, WM_CLOSE, 0, 0);
    return WaitForEnd(where);
}

bool PluginJob::WaitForEnd(CallSite where) {
    const bool bEnded = WaitForThread(m_hThread, kLongestWaitMs, where);
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
    SendAndWait(hBar, SB_GETTEXTW, static_cast<WPARAM>(nPane), reinterpret_cast<LPARAM>(text));
    return text;
}

bool PluginJob::WaitForPane(int nPane, const std::wstring& text, CallSite where) const {
    return WaitFor([&] { return Pane(nPane) == text; }, kLongestWaitMs, where);
}

UINT PluginJob::MenuState(UINT nId) const {
    const HMENU hMenu = ::GetMenu(m_hFrame);
    for (int i = 0; i < ::GetMenuItemCount(hMenu); ++i) {
        const HMENU hPopup = ::GetSubMenu(hMenu, i);
        if (::GetMenuState(hPopup, nId, MF_BYCOMMAND) != UINT_MAX) {
            SendAndWait(m_hFrame, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(hPopup), i);
            return ::GetMenuState(hPopup, nId, MF_BYCOMMAND);
        }
    }
    return UINT_MAX;
}

bool PluginJob::AskToolBar(UINT message, UINT nId) const {
    DWORD_PTR nAnswer = 0;
    return SendAndWait(ToolBar(), message, nId, 0, &nAnswer) && nAnswer != 0;
}

bool PluginJob::IsEnabled(UINT nId) const {
    const UINT nState = MenuState(nId);
    return nState != UINT_MAX ? (nState & (MF_GRAYED | MF_DISABLED)) == 0 : AskToolBar(TB_ISBUTTONENABLED, nId);
}

bool PluginJob::IsMarked(UINT nId) const {
    const UINT nState = MenuState(nId);
    return nState != UINT_MAX ? (nState & MF_CHECKED) != 0 : AskToolBar(TB_ISBUTTONCHECKED, nId);
}

bool PluginJob::Command(UINT nId, CallSite where) const {
    return Send(m_hFrame, WM_COMMAND, nId, 0, where);
}

DWORD PluginJob::ThreadId() const {
    return ::GetWindowThreadProcessId(m_hFrame, nullptr);
}

bool PluginJob::WaitUntilIdle(CallSite where) const {
    return WaitFor([&] { return ::IsWindowEnabled(m_hFrame) != FALSE; }, kLongestWaitMs, where) &&
           WaitUntilServed(ThreadId(), where);
}

// The paint may be one that the job's thread has seen in its queue: it then waits for another message before its idle time.
void PluginJob::Paint() const {
    ::UpdateWindow(View());
    SendAndWait(m_hFrame, WM_NULL);
    ::PostMessageW(m_hFrame, WM_NULL, 0, 0);
}

// A message that is sent to another thread is dealt with inside its wait for a posted one, so only a posted one behind
// it brings the thread to its idle time.
bool PluginJob::Send(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam, CallSite where) const {
    const bool bDone = SendAndWait(hWnd, message, wParam, lParam, nullptr, where);
    ::PostMessageW(m_hFrame, WM_NULL, 0, 0);
    return bDone;
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

std::wstring AnswerBox(CallSite where) {
    const HWND hBox = WaitForWindow(0, L"#32770", nullptr, where);
    const std::wstring text = MessageBoxText(hBox);
    ::RedrawWindow(hBox, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_UPDATENOW | RDW_ALLCHILDREN);
    PostCommand(hBox, IDOK);
    WaitUntilClosed(hBox, where);
    return text;
}

}  // namespace width::test
