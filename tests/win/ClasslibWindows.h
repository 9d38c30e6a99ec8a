// A frame, a view and a thread made as an application makes them, which write down what happens to them.
#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "classlib/FrameWnd.h"
#include "classlib/RectTracker.h"
#include "classlib/ScrollView.h"
#include "classlib/StatusBar.h"
#include "classlib/Thread.h"
#include "classlib/ToolBar.h"

namespace width::test {

enum : UINT { kView = 101, kDisabled, kNobody, kBoth, kMarked, kRenamed, kThrow, kCloseInside, kBadFrame = 999 };

/// What happened, in order; written by the thread under test.
class EventLog {
public:
    void Add(const std::string& event);
    std::vector<std::string> All() const;
    bool Has(const std::string& event) const;

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_events;
};

class TestView : public CScrollView {
public:
    explicit TestView(EventLog& log) : m_log(log) {}
    ~TestView() override { m_log.Add("view gone"); }
    std::span<const CmdEntry> Commands() const override;
    void OnDraw(CDC* pDC) override;
    void OnInitialUpdate() override;

    bool m_bThrowInPaint = false;
    RECT m_rcPainted{};  // clip box of the last paint, content coordinates
    int m_nPaints = 0;
    std::wstring m_paneText = L"first";

protected:
    void PostNcDestroy() override {}
    bool OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) override;

private:
    void OnView() { m_log.Add("view's"); }
    void OnBoth() { m_log.Add("both's in view"); }
    void OnNever() { m_log.Add("disabled ran"); }
    void OnMarked() {}
    void OnThrow() { throw std::string("command"); }
    void OnCloseInside();
    void OnUpdateDisabled(CCmdUI* pCmdUI) { pCmdUI->Enable(false); }
    void OnUpdateMarked(CCmdUI* pCmdUI) { pCmdUI->SetCheck(1); }
    void OnUpdateRenamed(CCmdUI* pCmdUI) { pCmdUI->SetText(L"New name"); }
    void OnUpdatePane(CCmdUI* pCmdUI) { pCmdUI->SetText(pCmdUI->m_nID == 11 ? m_paneText.c_str() : L"second"); }
    void OnPaint();
    void OnLButtonDown(UINT nFlags, POINT point);
    bool OnEraseBkgnd(CDC*) { return true; }

    EventLog& m_log;
};

class TestFrame : public CFrameWnd {
public:
    explicit TestFrame(EventLog& log) : m_wndView(log), m_log(log) {}
    ~TestFrame() override { m_log.Add("frame gone"); }
    std::span<const CmdEntry> Commands() const override;
    bool OnCmdMsg(UINT nID, int nCode, CCmdUI* pCmdUI, CCmdTarget** ppHandler) override;

    CStatusBar m_wndStatusBar;
    CToolBar m_wndToolBar;
    TestView m_wndView;
    bool m_bThrowInCreate = false;

protected:
    bool OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) override;

private:
    int OnCreate(CREATESTRUCTW* pCreate);
    bool OnToolTipText(UINT nID, NMHDR* pNMHDR, LRESULT* pResult);
    LRESULT OnCall(WPARAM wParam, LPARAM lParam);
    void OnBoth() { m_log.Add("both's in frame"); }
    void OnUpdateNever(CCmdUI* pCmdUI) { pCmdUI->Enable(true); }

    EventLog& m_log;
};

/// What the thread's start does beside loading the frame.
struct StartOptions {
    UINT nIDResource = 1;
    bool bThrowInCreate = false;
    bool bThrowInInit = false;
};

class TestThread : public CWinThread {
public:
    TestThread(EventLog& log, const StartOptions& options) : m_log(log), m_options(options) {}
    ~TestThread() override { m_log.Add("thread gone"); }
    bool InitInstance() override;
    int ExitInstance() override;

private:
    EventLog& m_log;
    StartOptions m_options;
};

/// The running application: started by the constructor, closed at the latest by the destructor.
class TestApp {
public:
    explicit TestApp(const StartOptions& options = {});
    ~TestApp();
    TestApp(const TestApp&) = delete;
    TestApp& operator=(const TestApp&) = delete;

    /// Runs a function on the window's thread, between two messages, with frame and view. False if the frame is gone.
    bool Run(const std::function<void(TestFrame&, TestView&)>& function) const;
    /// Makes the loop go idle once more, and waits until the condition holds.
    bool IdleUntil(const std::function<bool()>& condition) const;
    /// Closes the frame and waits for the end of the thread.
    bool Close() const;
    bool WaitForEnd() const;
    DWORD ThreadId() const { return m_nThreadId; }

    EventLog log;
    HWND hFrame = nullptr;  ///< null if the start failed
    HWND hView = nullptr;
    HWND hToolBar = nullptr;
    HWND hStatusBar = nullptr;

private:
    HANDLE m_hThread = nullptr;  // a handle of our own: the thread object closes its one
    DWORD m_nThreadId = 0;
};

}  // namespace width::test
