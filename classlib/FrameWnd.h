// CFrameWnd: a top-level window with menu, bars along its edges, and one view that fills the rest.
// Tested by: tests/win/ClasslibTest.cpp.
#pragma once

#include <vector>

#include "classlib/Wnd.h"

class CControlBar;
class CView;

/// What OnSetPreviewMode puts aside and brings back.
struct CPreviewFrameState {
    HWND hPane = nullptr;
    std::vector<CControlBar*> bars;  ///< those that were visible
};

/// Make it with new: when its window is gone the object deletes itself, as soon as the thread's last handler has
/// returned (see Wnd.h). Bars and view may be members. A bar stands along the edge that its style names and stays there.
class CFrameWnd : public CWnd {
public:
    /// Creates the window from the resources nIDResource of AfxGetResourceHandle(): the menu, which must exist, the
    /// icon, and the string up to its first line break as title. Then every window inside gets WM_INITIALUPDATE. The
    /// window is not shown. False on failure; the object has then deleted itself and must not be touched.
    bool LoadFrame(UINT nIDResource, DWORD dwStyle = WS_OVERLAPPEDWINDOW, CWnd* pParentWnd = nullptr);

    CView* GetActiveView() const { return m_pViewActive; }
    /// Tells the old and the new view, either may be null; the new one gets the focus. The view is not owned, and
    /// leaves by itself when its window goes.
    void SetActiveView(CView* pView);

    void ShowControlBar(CControlBar* pBar, bool bShow);
    /// Lays out bars, then the child AFX_IDW_PANE_FIRST in what they leave.
    virtual void RecalcLayout();
    /// true: hides menu, bars and pane, to be brought back from state; the pane's id is free for another child, and bars made
    /// from now on are laid out as usual. false: brings all back; the other child must be gone or renamed. No layout.
    void OnSetPreviewMode(bool bPreview, CPreviewFrameState& state);

    /// The active view first, then this frame's Commands(), then the thread.
    bool OnCmdMsg(UINT nID, int nCode, CCmdUI* pCmdUI, CCmdTarget** ppHandler) override;

protected:
    bool PreCreateWindow(CREATESTRUCTW& cs) override;
    void PostNcDestroy() override { DeleteAfterDispatch(); }
    bool OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) override;

    int OnCreate(CREATESTRUCTW* pCreate);
    void OnClose();
    void OnEnable(bool bEnable);
    void OnDestroy();
    void OnSize(UINT nType, int cx, int cy);
    void OnSetFocus(HWND hOldWnd);
    bool OnEraseBkgnd(CDC* pDC);
    void OnInitMenuPopup(HMENU hMenu, UINT nIndex, bool bSysMenu);

private:
    CView* m_pViewActive = nullptr;
    bool m_bCloseWanted = false;   // as soon as no dialog is open
    HMENU m_hMenuAside = nullptr;  // owned, while a preview hides it
    HICON m_hIcon = nullptr;       // the system's or shared: not owned
};
