// The plug-in as a host sees it: the DLL loaded by name, its export, and a job whose events are written down.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "api/PluginApi.h"
#include "tests/support/WinDriver.h"

namespace width::test {

/// One call of the host's callback.
struct HostEvent {
    int32_t nCode;
    void* pParam;
    DWORD nThreadId;
    std::vector<std::byte> block;  ///< with code 2 a copy of the picture
};

/// Loads the plug-in anew, so that every test starts with a fresh module, and unloads it in the end. Ends a job that is
/// still running.
class PluginJob {
public:
    explicit PluginJob(WORD nLangId, LPCWSTR lpszPath = PLUGIN_PATH);
    PluginJob(const PluginJob&) = delete;
    PluginJob& operator=(const PluginJob&) = delete;
    ~PluginJob();

    const pi_table& Table() const { return m_table; }

    /// Hands a copy of a block over and waits for the frame. Null if none came.
    HWND Start(const std::vector<std::byte>& block, CallSite where = CallSite::current());
    /// The same without waiting.
    void StartOnly(const std::vector<std::byte>& block);
    /// The same with a block from malloc, which goes to the plug-in; waits for the frame.
    HWND StartWith(void* pDib, CallSite where = CallSite::current());
    /// Closes the frame, waits for code 4 and for the thread to end. True if all of it came.
    bool Close(CallSite where = CallSite::current());
    bool WaitForEnd(CallSite where = CallSite::current());

    HWND Frame() const { return m_hFrame; }
    HWND View() const;
    HWND ToolBar() const;
    std::vector<HostEvent> Events();
    /// Called within the callback, before the event is written down.
    void (*m_pfnOnEvent)(PluginJob&, int32_t nCode) = nullptr;

    /// Text of a status pane now. The job's thread brings panes up to date when it has nothing else to do.
    std::wstring Pane(int nPane) const;
    bool WaitForPane(int nPane, const std::wstring& text, CallSite where = CallSite::current()) const;
    /// Whether a command is enabled and marked: in its menu, if it has one, as a menu that opens now shows it, else on
    /// the tool bar as the last idle time left it.
    bool IsEnabled(UINT nId) const;
    bool IsMarked(UINT nId) const;
    /// Gives a command and waits until it has been carried out. For commands that open no dialog and no box: false, after
    /// the longest wait, if one is open.
    bool Command(UINT nId, CallSite where = CallSite::current()) const;
    /// Waits until no dialog has the frame disabled and the job's thread asks for messages: whatever a dialog chose has then
    /// been taken over.
    bool WaitUntilIdle(CallSite where = CallSite::current()) const;
    /// While the frame is there.
    DWORD ThreadId() const;
    /// Has everything painted that is still to be painted, also what the job's thread is painting just now: a message
    /// that is sent is dealt with only when that thread has finished.
    void Paint() const;
    /// Sends a message to a window of the job and lets the job's thread have an idle time after it. False if it was not dealt
    /// with.
    bool Send(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam = 0, CallSite where = CallSite::current()) const;

private:
    static void Callback(void* pCookie, int32_t nCode, void* pParam, void* pUnused);
    UINT MenuState(UINT nId) const;
    bool AskToolBar(UINT message, UINT nId) const;

    HMODULE m_hPlugin = nullptr;
    pi_table m_table{};
    HWND m_hFrame = nullptr;
    HANDLE m_hThread = nullptr;
    std::mutex m_mutex;
    std::vector<HostEvent> m_events;
};

/// Colour of a client point as it is on the screen.
COLORREF PixelAt(HWND hView, POINT pt);
RECT ClientRect(HWND hWnd);
/// Answers the message box that is open, or opens next, gives its text, and waits until the code that showed it has gone on.
std::wstring AnswerBox(CallSite where = CallSite::current());

}  // namespace width::test
