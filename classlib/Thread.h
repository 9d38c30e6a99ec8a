// CWinThread: a thread with a message loop, and what belongs to the current thread: its object, its main window and
// the module that its resources come from. Tested by: tests/win/ClasslibTest.cpp.
#pragma once

#include <string>

#include "classlib/Command.h"

class CWnd;

/// A user-interface thread. Derive, make one with new, call CreateThread(CREATE_SUSPENDED), then ResumeThread.
///
/// On the new thread: InitInstance; if that gives true, Run; then, however the thread ends, the main window is
/// destroyed if it still exists, ExitInstance runs, and with m_bAutoDelete the object deletes itself. The thread holds
/// its module in memory until its last instruction. Exceptions end the thread along the same road.
class CWinThread : public CCmdTarget {
public:
    CWnd* m_pMainWnd = nullptr;  ///< not owned; the loop ends when its window goes, and then this is null
    bool m_bAutoDelete = true;
    HANDLE m_hThread = nullptr;  ///< owned; null before CreateThread
    DWORD m_nThreadID = 0;
    MSG m_msgCur{};  ///< the message taken last from the queue

    CWinThread() = default;
    ~CWinThread() override;

    /// Creates the thread; dwCreateFlags 0 or CREATE_SUSPENDED, stack size 0 for the module's own. On failure false,
    /// and the object stays the caller's; on success it belongs to the thread if m_bAutoDelete.
    bool CreateThread(DWORD dwCreateFlags = 0, UINT nStackSize = 0);
    /// The suspend count before the call, 0xFFFFFFFF on failure. The object may be gone when this returns.
    DWORD ResumeThread() { return ::ResumeThread(m_hThread); }

    /// Makes the main window and stores it in m_pMainWnd. False ends the thread.
    virtual bool InitInstance() { return true; }
    /// The message loop; the result goes to ExitInstance.
    virtual int Run();
    /// Last of all; the result is the thread's exit code. The base gives the code of the quit message.
    virtual int ExitInstance();
    /// A free moment; lCount counts from 0 and starts again with every message that can have changed something. The
    /// base brings the bars of the main window up to date at 0. True asks for one more.
    virtual bool OnIdle(LONG lCount);
    /// A look at each message before it is dispatched, by the window and those around it; true: dealt with.
    virtual bool PreTranslateMessage(MSG* pMsg);
    /// False for messages after which nothing needs updating: repaints, caret blinks, a mouse that stays in place.
    virtual bool IsIdleMessage(const MSG* pMsg);

private:
    static DWORD WINAPI ThreadProc(void* pThis);
    int RunGuarded();
    bool PumpMessage();

    POINT m_ptLastMove{-1, -1};
    UINT m_nLastMoveMsg = 0;
};

/// The object of the calling thread; null on threads that were not made by CWinThread.
CWinThread* AfxGetThread();
/// The main window of the calling thread; null without one.
CWnd* AfxGetMainWnd();
/// Called by a window's object when its window or itself goes: ends the loop of the thread whose main window it is.
void AfxForgetMainWnd(const CWnd* pWnd);

/// The module that this code is linked into: the DLL, not the program that loaded it.
HINSTANCE AfxGetInstanceHandle();
/// Where the calling thread's menus, bars, strings and icons are loaded from. Each thread starts with
/// AfxGetInstanceHandle().
HINSTANCE AfxGetResourceHandle();
void AfxSetResourceHandle(HINSTANCE hInstance);

/// A string resource, empty if there is none.
std::wstring AfxLoadString(UINT nID, HINSTANCE hInstance = AfxGetResourceHandle());

/// A message box over the thread's main window or the dialog in front of it, with the main window's title.
int AfxMessageBox(LPCWSTR lpszText, UINT nType = MB_OK);
