// CMainFrame: the job's one top-level window, with menu, tool bar, status bar and the view.
//
// Commands go to the view first; the frame takes what is left. It is made with new and deletes itself when its window
// is gone; its members go in reverse order, the view, and with it the bitmap, first.
// Tested by: tests/e2e/PluginTest.cpp
#pragma once

#include "classlib/FrameWnd.h"
#include "classlib/StatusBar.h"
#include "classlib/ToolBar.h"
#include "view/PibView_win.h"

namespace width {

class CMainFrame : public CFrameWnd {
public:
    ~CMainFrame() override;

    std::span<const CmdEntry> Commands() const override;
    bool OnCmdMsg(UINT nID, int nCode, CCmdUI* pCmdUI, CCmdTarget** ppHandler) override;

protected:
    bool PreCreateWindow(CREATESTRUCTW& cs) override;
    bool OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) override;

private:
    int OnCreate(CREATESTRUCTW* pCreate);
    void OnSetFocus(HWND hOldWnd);
    LRESULT OnSetDib(WPARAM wParam, LPARAM lParam);
    bool OnToolTipTextA(UINT nID, NMHDR* pNotify, LRESULT* pResult);
    bool OnToolTipTextW(UINT nID, NMHDR* pNotify, LRESULT* pResult);

    void OnAbout();
    void OnExit();
    void OnPrintSetup();
    void OnHelp();

    bool CreateBars();

    CStatusBar m_wndStatusBar;
    CToolBar m_wndToolBar;
    CPibView m_wndView;
};

}  // namespace width
