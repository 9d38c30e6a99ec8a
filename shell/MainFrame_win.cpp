// Tested by: tests/e2e/PluginTest.cpp
#include "shell/MainFrame_win.h"

#include <io.h>
#include <shellapi.h>

#include <algorithm>

#include <optional>
#include <string>

#include "classlib/Print.h"
#include "classlib/Thread.h"
#include "dialogs/DllDlg.h"
#include "module/ModuleState.h"
#include "res/resource.h"
#include "shell/HelpPath.h"
#include "shell/TipText.h"

namespace width {

namespace {

struct PaneInfo {
    UINT nId;
    UINT nStyle;
    int cxWidth;
};
constexpr PaneInfo kPanes[] = {
    {ID_PANE_PATH, SBPS_STRETCH, 200},
    {ID_PANE_SIZE, SBPS_NORMAL, 150},
    {ID_PANE_ZOOM, SBPS_NORMAL, 130},
    {ID_PANE_DEPTH, SBPS_NORMAL, 180},
};

constexpr std::size_t kTipBuffer = 80;  // characters in a tip notification, the end mark included

std::wstring ModulePath(HINSTANCE hModule) {
    wchar_t path[MAX_PATH];
    const DWORD n = ::GetModuleFileNameW(hModule, path, MAX_PATH);
    return n < MAX_PATH ? std::wstring(path, n) : std::wstring();
}

// The tip of the control that a notification asks about; nothing for a command without a string. Id 0 has an empty tip.
template <class Record>
std::optional<std::wstring> TipOf(const Record& record) {
    UINT_PTR nId = record.hdr.idFrom;
    if ((record.uFlags & TTF_IDISHWND) != 0) {
        nId = static_cast<UINT_PTR>(::GetDlgCtrlID(reinterpret_cast<HWND>(nId)));
    }
    if (nId == 0) {
        return std::wstring();
    }
    const std::wstring string = AfxLoadString(static_cast<UINT>(nId), g_hModule);
    if (string.empty()) {
        return std::nullopt;
    }
    return std::wstring(TipText(string, g_bChinese != 0)).substr(0, kTipBuffer - 1);
}

void RaiseTip(const NMHDR& notify, LRESULT* pResult) {
    *pResult = 0;
    ::SetWindowPos(notify.hwndFrom, HWND_TOP, 0, 0, 0, 0, SWP_NOACTIVATE | SWP_NOSIZE | SWP_NOMOVE | SWP_NOOWNERZORDER);
}

}  // namespace

CMainFrame::~CMainFrame() {
    g_pMainFrame = nullptr;
}

std::span<const CmdEntry> CMainFrame::Commands() const {
    static constexpr CmdEntry kTable[] = {
        Cmd<&CMainFrame::OnPrintSetup>(ID_FILE_PRINT_SETUP),
        Cmd<&CMainFrame::OnExit>(ID_EXIT),
        Cmd<&CMainFrame::OnHelp>(ID_HELP_CONTENTS),
        Cmd<&CMainFrame::OnAbout>(ID_ABOUT),
    };
    return kTable;
}

bool CMainFrame::OnCmdMsg(UINT nID, int nCode, CCmdUI* pCmdUI, CCmdTarget** ppHandler) {
    return m_wndView.OnCmdMsg(nID, nCode, pCmdUI, ppHandler) || CFrameWnd::OnCmdMsg(nID, nCode, pCmdUI, ppHandler);
}

bool CMainFrame::PreCreateWindow(CREATESTRUCTW& cs) {
    if (!CFrameWnd::PreCreateWindow(cs)) {
        return false;
    }
    cs.dwExStyle &= ~static_cast<DWORD>(WS_EX_CLIENTEDGE);  // the view carries that edge
    return true;
}

bool CMainFrame::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) {
    static constexpr MsgEntry kTable[] = {
        Msg<WM_CREATE, &CMainFrame::OnCreate>(),
        Msg<WM_SETFOCUS, &CMainFrame::OnSetFocus>(),
        Msg<WM_PIB_SETDIB, &CMainFrame::OnSetDib>(),
        Notify<TTN_NEEDTEXTA, &CMainFrame::OnToolTipTextA>(),
        Notify<TTN_NEEDTEXTW, &CMainFrame::OnToolTipTextW>(),
    };
    return Dispatch(kTable, message, wParam, lParam, lResult) || CFrameWnd::OnWndMsg(message, wParam, lParam, lResult);
}

int CMainFrame::OnCreate(CREATESTRUCTW* pCreate) {
    if (CFrameWnd::OnCreate(pCreate) == -1) {
        return -1;
    }
    const DWORD dwViewStyle = WS_CHILD | WS_VISIBLE | WS_BORDER;
    if (!m_wndView.Create(nullptr, nullptr, dwViewStyle, {0, 0, 0, 0}, this, AFX_IDW_PANE_FIRST) || !CreateBars()) {
        return -1;
    }
    return 0;
}

bool CMainFrame::CreateBars() {
    constexpr DWORD kBarStyle = WS_CHILD | WS_VISIBLE;
    if (!m_wndToolBar.CreateEx(this, TBSTYLE_FLAT, kBarStyle | CBRS_TOP | CBRS_TOOLTIPS | CBRS_SIZE_DYNAMIC, AFX_IDW_TOOLBAR) ||
        !m_wndToolBar.LoadToolBar(IDR_MAINFRAME_EN, IDB_TOOLBAR_LARGE) ||
        !m_wndStatusBar.Create(this, kBarStyle | CBRS_BOTTOM, AFX_IDW_STATUS_BAR)) {
        return false;
    }
    UINT ids[std::size(kPanes)];
    std::ranges::transform(kPanes, ids, &PaneInfo::nId);
    if (!m_wndStatusBar.SetIndicators(ids)) {
        return false;
    }
    for (std::size_t i = 0; i < std::size(kPanes); ++i) {
        m_wndStatusBar.SetPaneInfo(i, kPanes[i].nId, kPanes[i].nStyle, kPanes[i].cxWidth);
    }
    return true;
}

// A hidden view must not get the keyboard and the wheel of the preview that stands in its place.
void CMainFrame::OnSetFocus(HWND hOldWnd) {
    if (IsInPreview()) {
        CFrameWnd::OnSetFocus(hOldWnd);
    } else {
        m_wndView.SetFocus();
    }
}

LRESULT CMainFrame::OnSetDib(WPARAM wParam, LPARAM lParam) {
    m_wndView.PostMessage(WM_PIB_SETDIB, wParam, lParam);
    return 0;
}

bool CMainFrame::OnToolTipTextA(UINT /*nID*/, NMHDR* pNotify, LRESULT* pResult) {
    auto& record = *reinterpret_cast<NMTTDISPINFOA*>(pNotify);
    const std::optional<std::wstring> tip = TipOf(record);
    if (!tip) {
        return false;
    }
    char text[4 * kTipBuffer] = {};
    ::WideCharToMultiByte(CP_THREAD_ACP, 0, tip->c_str(), -1, text, static_cast<int>(std::size(text)), nullptr, nullptr);
    ::lstrcpynA(record.szText, text, kTipBuffer);
    RaiseTip(*pNotify, pResult);
    return true;
}

bool CMainFrame::OnToolTipTextW(UINT /*nID*/, NMHDR* pNotify, LRESULT* pResult) {
    auto& record = *reinterpret_cast<NMTTDISPINFOW*>(pNotify);
    const std::optional<std::wstring> tip = TipOf(record);
    if (!tip) {
        return false;
    }
    ::lstrcpynW(record.szText, tip->c_str(), kTipBuffer);
    RaiseTip(*pNotify, pResult);
    return true;
}

void CMainFrame::OnAbout() {
    CAboutDlg(m_hWnd).DoModal();
}

void CMainFrame::OnExit() {
    PostMessage(WM_CLOSE);
}

// The set-up belongs to the application object, which keeps it.
void CMainFrame::OnPrintSetup() {
    CWinApp* const pApp = AfxGetApp();
    if (pApp == nullptr || IsInPreview() || m_wndView.IsPrinting()) {
        return;
    }
    const bool bChinese = g_bChinese != 0;
    CPrintDialog dialog(true);
    dialog.m_strNoPrinter = AfxLoadString(bChinese ? IDS_NO_PRINTER_ZH : IDS_NO_PRINTER_EN, g_hModule);
    pApp->DoPrintDialog(&dialog);
    if (dialog.HasFailed()) {
        AfxMessageBox(AfxLoadString(bChinese ? IDS_COMMAND_FAILED_ZH : IDS_COMMAND_FAILED_EN, g_hModule).c_str());
    }
}

void CMainFrame::OnHelp() {
    const std::optional<HelpPaths> paths = FindHelpPaths(ModulePath(nullptr), ModulePath(g_hModule), g_nLangId);
    if (paths) {
        const std::wstring& page = ::_waccess(paths->language.c_str(), 0) == 0 ? paths->language : paths->fallback;
        ::ShellExecuteW(nullptr, L"open", page.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    }
}

}  // namespace width
