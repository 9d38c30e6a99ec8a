#include "tests/win/ClasslibWindows.h"

#include <algorithm>
#include <cstring>
#include <cwchar>

#include "tests/support/WinDriver.h"

namespace width::test {

namespace {

constexpr UINT kCall = WM_APP + 7;  // runs the function that lParam points to
using Call = std::function<void(TestFrame&, TestView&)>;

/// Writes down each change of its rectangle.
class LoggingTracker : public CRectTracker {
public:
    explicit LoggingTracker(EventLog& log) : m_log(log) {}
    void OnChangedRect(const RECT& rectOld) override {
        m_log.Add("moved " + std::to_string(m_rect.right - rectOld.right) + "," + std::to_string(m_rect.bottom - rectOld.bottom));
    }

private:
    EventLog& m_log;
};

}  // namespace

void EventLog::Add(const std::string& event) {
    const std::lock_guard lock(m_mutex);
    m_events.push_back(event);
}

std::vector<std::string> EventLog::All() const {
    const std::lock_guard lock(m_mutex);
    return m_events;
}

bool EventLog::Has(const std::string& event) const {
    const auto events = All();
    return std::find(events.begin(), events.end(), event) != events.end();
}

std::span<const CmdEntry> TestView::Commands() const {
    static constexpr CmdEntry kTable[] = {
        Cmd<&TestView::OnView>(kView),
        Cmd<&TestView::OnNever, &TestView::OnUpdateDisabled>(kDisabled),
        Cmd<&TestView::OnBoth>(kBoth),
        Cmd<&TestView::OnMarked, &TestView::OnUpdateMarked>(kMarked),
        Cmd<&TestView::OnMarked, &TestView::OnUpdateRenamed>(kRenamed),
        Cmd<&TestView::OnThrow>(kThrow),
        Cmd<&TestView::OnCloseInside>(kCloseInside),
        CmdUpdate<&TestView::OnUpdatePane>(11, 12),
    };
    return kTable;
}

bool TestView::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) {
    static constexpr MsgEntry kTable[] = {
        Msg<WM_PAINT, &TestView::OnPaint>(),
        Msg<WM_LBUTTONDOWN, &TestView::OnLButtonDown>(),
        Msg<WM_ERASEBKGND, &TestView::OnEraseBkgnd>(),
    };
    return Dispatch(kTable, message, wParam, lParam, lResult) || CScrollView::OnWndMsg(message, wParam, lParam, lResult);
}

void TestView::OnPaint() {
    ++m_nPaints;
    if (m_bThrowInPaint) {
        throw std::string("paint");
    }
    CScrollView::OnPaint();
}

void TestView::OnDraw(CDC* pDC) {
    m_rcPainted = pDC->GetClipBox();
    pDC->FillSolidRect(m_rcPainted, RGB(255, 255, 255));
}

void TestView::OnInitialUpdate() {
    CScrollView::OnInitialUpdate();
    m_log.Add("initial update");
}

void TestView::OnCloseInside() {
    GetParentFrame()->SendMessage(WM_CLOSE);
    Invalidate();  // the object must still be there
    m_log.Add(m_hWnd == nullptr ? "still valid" : "window left");
}

void TestView::OnLButtonDown(UINT, POINT point) {
    LoggingTracker tracker(m_log);
    const bool bTracked = tracker.TrackRubberBand(this, point);
    m_log.Add(bTracked ? "tracked" : "not tracked");
}

std::span<const CmdEntry> TestFrame::Commands() const {
    static constexpr CmdEntry kTable[] = {
        Cmd<&TestFrame::OnBoth>(kBoth),
        Cmd<&TestFrame::OnBoth, &TestFrame::OnUpdateNever>(kDisabled),
    };
    return kTable;
}

bool TestFrame::OnCmdMsg(UINT nID, int nCode, CCmdUI* pCmdUI, CCmdTarget** ppHandler) {
    return m_wndView.OnCmdMsg(nID, nCode, pCmdUI, ppHandler) || CFrameWnd::OnCmdMsg(nID, nCode, pCmdUI, ppHandler);
}

bool TestFrame::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) {
    static constexpr MsgEntry kTable[] = {
        Msg<WM_CREATE, &TestFrame::OnCreate>(),
        Msg<kCall, &TestFrame::OnCall>(),
        Notify<TTN_NEEDTEXTA, &TestFrame::OnToolTipText>(),
        Notify<TTN_NEEDTEXTW, &TestFrame::OnToolTipText>(),
    };
    return Dispatch(kTable, message, wParam, lParam, lResult) || CFrameWnd::OnWndMsg(message, wParam, lParam, lResult);
}

int TestFrame::OnCreate(CREATESTRUCTW* pCreate) {
    if (CFrameWnd::OnCreate(pCreate) != 0) {
        return -1;
    }
    static constexpr UINT kPanes[] = {11, 12};
    const bool bMade = m_wndView.Create(nullptr, nullptr, WS_CHILD | WS_VISIBLE, RECT{}, this, AFX_IDW_PANE_FIRST) &&
                       m_wndToolBar.CreateEx(this, TBSTYLE_FLAT, WS_CHILD | WS_VISIBLE | CBRS_TOP | CBRS_TOOLTIPS) &&
                       m_wndToolBar.LoadToolBar(1) && !m_wndToolBar.LoadToolBar(2) && !m_wndToolBar.LoadToolBar(3) &&
                       m_wndStatusBar.Create(this) && m_wndStatusBar.SetIndicators(kPanes);
    m_wndStatusBar.SetPaneInfo(0, 11, SBPS_STRETCH, 200);
    m_wndStatusBar.SetPaneInfo(1, 12, SBPS_NORMAL, 150);
    if (m_bThrowInCreate) {
        throw std::string("create");
    }
    return bMade ? 0 : -1;
}

bool TestFrame::OnToolTipText(UINT nID, NMHDR* pNMHDR, LRESULT* pResult) {
    const std::wstring text = AfxLoadString(nID);
    if (text.empty()) {
        return false;
    }
    if (pNMHDR->code == TTN_NEEDTEXTW) {
        std::wcscpy(reinterpret_cast<NMTTDISPINFOW*>(pNMHDR)->szText, text.c_str());
    } else {
        std::strcpy(reinterpret_cast<NMTTDISPINFOA*>(pNMHDR)->szText, "narrow");
    }
    *pResult = 0;
    return true;
}

LRESULT TestFrame::OnCall(WPARAM, LPARAM lParam) {
    (*reinterpret_cast<const Call*>(lParam))(*this, m_wndView);
    return 1;
}

bool TestThread::InitInstance() {
    m_log.Add("init");
    auto* const pFrame = new TestFrame(m_log);
    m_pMainWnd = pFrame;
    pFrame->m_bThrowInCreate = m_options.bThrowInCreate;
    const HINSTANCE hBefore = AfxGetResourceHandle();
    AfxSetResourceHandle(::GetModuleHandleW(nullptr));
    const bool bLoaded = pFrame->LoadFrame(m_options.nIDResource);
    AfxSetResourceHandle(hBefore);
    if (!bLoaded) {
        return false;
    }
    if (m_options.bThrowInInit) {
        throw std::string("init");
    }
    m_pMainWnd->SetWindowPos(nullptr, 0, 0, 600, 400, SWP_NOZORDER);
    m_pMainWnd->ShowWindow(SW_SHOW);
    m_log.Add("shown");
    return true;
}

int TestThread::ExitInstance() {
    m_log.Add("exit");
    return CWinThread::ExitInstance();
}

TestApp::TestApp(const StartOptions& options) {
    auto* const pThread = new TestThread(log, options);
    if (!pThread->CreateThread(CREATE_SUSPENDED)) {
        delete pThread;
        return;
    }
    m_nThreadId = pThread->m_nThreadID;
    ::DuplicateHandle(::GetCurrentProcess(), pThread->m_hThread, ::GetCurrentProcess(), &m_hThread, 0, FALSE,
                      DUPLICATE_SAME_ACCESS);
    pThread->ResumeThread();
    WaitFor([&] { return log.Has("shown") || log.Has("thread gone"); });
    hFrame = FindTopWindow(m_nThreadId);
    hView = ::GetDlgItem(hFrame, AFX_IDW_PANE_FIRST);
    hToolBar = ::GetDlgItem(hFrame, AFX_IDW_TOOLBAR);
    hStatusBar = ::GetDlgItem(hFrame, AFX_IDW_STATUS_BAR);
}

TestApp::~TestApp() {
    Close();
    ::CloseHandle(m_hThread);
}

bool TestApp::Run(const Call& function) const {
    return ::SendMessageW(hFrame, kCall, 0, reinterpret_cast<LPARAM>(&function)) == 1;
}

bool TestApp::IdleUntil(const std::function<bool()>& condition) const {
    ::PostMessageW(hFrame, WM_NULL, 0, 0);
    return WaitFor(condition);
}

bool TestApp::Close() const {
    if (hFrame != nullptr) {
        ::PostMessageW(hFrame, WM_CLOSE, 0, 0);
    }
    return WaitForEnd();
}

bool TestApp::WaitForEnd() const {
    return WaitForThread(m_hThread);
}

}  // namespace width::test
