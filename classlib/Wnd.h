// CWnd: a window and the object that stands for it.
//
// The classes of this folder are a small stand-in for the classic windowing class library: same class, method and
// handler names, only what is called on, nothing of the project. They live in the global namespace, beside HWND and
// POINT, because they are platform vocabulary: user code derives from CWnd exactly as its books say, and the library
// whose names they carry is never linked into the same module.
//
// Bond of object and window. Create and SubclassWindow bind them one to one, until the window is destroyed or
// UnsubclassWindow is called; m_hWnd is null outside that time, and then every member does nothing and returns
// false, 0 or an empty value. The bond is thread-bound: FromHandle gives null for another thread's window.
//
// Life. Whoever makes the object owns it. After the window's last message m_hWnd becomes null and PostNcDestroy runs;
// a class that deletes itself there (frames, views) calls DeleteAfterDispatch(), so that the object stays valid until
// the last handler of the thread has returned, also when the window went from inside a handler's own message loop.
// Destroying the object destroys its window.
//
// No exception leaves a window procedure: OnWndProcException turns it into a result. All windows are Unicode windows.
// Tested by: tests/win/ClasslibTest.cpp.
#pragma once

#include <string>

#include "classlib/Message.h"

class CFrameWnd;

/// A window class of this module with the given CS_ style, cursor, background brush and icon, registered on first
/// use. Any of the handles may be null. The result serves as lpszClass; null on failure. It stays valid until
/// AfxUnregisterWndClasses.
LPCWSTR AfxRegisterWndClass(UINT nClassStyle, HCURSOR hCursor = nullptr, HBRUSH hbrBackground = nullptr, HICON hIcon = nullptr);

/// Forgets every window class above; to be called when the module goes and none of its windows is left.
void AfxUnregisterWndClasses();

class CWnd : public CCmdTarget {
public:
    HWND m_hWnd = nullptr;

    CWnd() = default;
    ~CWnd() override;
    operator HWND() const { return m_hWnd; }
    HWND GetSafeHwnd() const { return m_hWnd; }
    /// The object of a window of the calling thread; null if it has none. The pointer is good while the window lives.
    static CWnd* FromHandle(HWND hWnd);

    /// A child window. A null class name takes the class that PreCreateWindow gives. rect in the parent's client area.
    /// False on failure; PostNcDestroy has then run, so that a self-deleting object is gone.
    bool Create(LPCWSTR lpszClassName, LPCWSTR lpszWindowName, DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);
    /// Any window; nIDorHMenu is the child id, or the menu handle of a top-level window. As Create otherwise.
    bool CreateEx(DWORD dwExStyle, LPCWSTR lpszClassName, LPCWSTR lpszWindowName, DWORD dwStyle, const RECT& rect,
                  HWND hWndParent, HMENU nIDorHMenu);
    /// Puts the object in front of an existing window of any class; its own procedure stays behind Default().
    bool SubclassWindow(HWND hWnd);
    /// Undoes SubclassWindow and gives the handle back; null if there was none.
    HWND UnsubclassWindow();
    bool DestroyWindow() { return m_hWnd != nullptr && ::DestroyWindow(m_hWnd) != FALSE; }

    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    bool PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    /// Sends to every window below this one that has an object, outer ones first.
    void SendMessageToDescendants(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);

    DWORD GetStyle() const { return static_cast<DWORD>(::GetWindowLongPtrW(m_hWnd, GWL_STYLE)); }
    int GetDlgCtrlID() const { return ::GetDlgCtrlID(m_hWnd); }
    void SetDlgCtrlID(UINT nID);
    bool IsWindowVisible() const { return ::IsWindowVisible(m_hWnd) != FALSE; }
    bool ShowWindow(int nCmdShow) { return ::ShowWindow(m_hWnd, nCmdShow) != FALSE; }
    bool EnableWindow(bool bEnable) { return ::EnableWindow(m_hWnd, bEnable ? TRUE : FALSE) != FALSE; }
    void UpdateWindow() { ::UpdateWindow(m_hWnd); }
    void SetFocus() { ::SetFocus(m_hWnd); }
    /// Asks for a repaint of the whole client area, or of one part in client coordinates.
    void Invalidate(bool bErase = true);
    void InvalidateRect(const RECT& rc, bool bErase = true);
    bool SetWindowPos(HWND hWndInsertAfter, int x, int y, int cx, int cy, UINT nFlags);
    std::wstring GetWindowText() const;
    /// Client rectangle, left and top 0. Window rectangle in screen coordinates.
    RECT GetClientRect() const;
    RECT GetWindowRect() const;
    void ClientToScreen(POINT* pPoint) const { ::ClientToScreen(m_hWnd, pPoint); }
    void ScreenToClient(POINT* pPoint) const { ::ScreenToClient(m_hWnd, pPoint); }
    HWND GetDlgItem(UINT nID) const { return ::GetDlgItem(m_hWnd, static_cast<int>(nID)); }
    CWnd* GetParent() const { return FromHandle(::GetParent(m_hWnd)); }
    /// The nearest frame above the window; null if there is none.
    CFrameWnd* GetParentFrame() const;
    /// Position of one of the window's own scroll bars, SB_HORZ or SB_VERT, 32 bits.
    int GetScrollPos(int nBar) const { return ::GetScrollPos(m_hWnd, nBar); }
    /// Moves the pixels of the client area by (dx, dy) and invalidates the strips that become free, no more.
    void ScrollWindow(int dx, int dy) { ::ScrollWindow(m_hWnd, dx, dy, nullptr, nullptr); }
    int MessageBox(LPCWSTR lpszText, LPCWSTR lpszCaption, UINT nType = MB_OK);

    /// A last change of the creation record; false gives the window up. Overrides call the base first.
    virtual bool PreCreateWindow(CREATESTRUCTW& cs);
    /// A look at each message of the thread's loop that is meant for this window or one inside; true: dealt with.
    virtual bool PreTranslateMessage(MSG* pMsg);

protected:
    /// The class's message table, then the base's. False: nobody took the message, the system's handling follows.
    virtual bool OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult);
    /// WM_COMMAND: refuses a command that its update handler disables, offers the others to OnCmdMsg.
    virtual bool OnCommand(WPARAM wParam, LPARAM lParam);
    /// The window is gone and m_hWnd null. The base does nothing.
    virtual void PostNcDestroy() {}
    /// What a message gives whose handler threw: -1 for WM_CREATE, else 0; a failed paint counts as painted.
    virtual LRESULT OnWndProcException(UINT message);

    /// The system's, or the subclassed window's, handling of the message that is being handled now.
    LRESULT Default();
    /// Runs the first row of the table that fits and deals with the message.
    bool Dispatch(std::span<const MsgEntry> table, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult);
    /// Deletes this, made with new, as soon as no window procedure of the thread is on the stack any more.
    void DeleteAfterDispatch();

private:
    friend struct DispatchScope;
    static LRESULT CALLBACK WndProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
    friend LPCWSTR AfxRegisterWndClass(UINT, HCURSOR, HBRUSH, HICON);
    static CWnd* Bound(HWND hWnd);
    static CWnd* BindCreated(HWND hWnd, LPARAM lParam);
    LRESULT CallProcedure(UINT message, WPARAM wParam, LPARAM lParam);
    void OnNcDestroy();

    WNDPROC m_pfnSuper = nullptr;   // the procedure behind a subclassed window
    CWnd* m_pNextDoomed = nullptr;  // list of objects that wait for their deletion
};
