// CFrameWnd: a top-level window with menu, bars along its edges, and one view that fills the rest.
// Tested by: tests/win/ClasslibTest.cpp.
#pragma once

#include <vector>

#include "classlib/Wnd.h"

class CControlBar;
class CView;

/// What OnSetPreviewMode puts aside and brings back, and what else a preview remembers of its frame.
struct CPrintPreviewState {
    CPrintPreviewState();
    /// Asked when the frame is to close: ends the preview and gives false, which keeps the frame. CPreviewView's by default.
    bool (*lpfnCloseProc)(CFrameWnd* pFrame);
    CView* pViewActiveOld = nullptr;  ///< the frame's active view before the preview
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
    bool LoadFrame(UINT nIDResource, DWORD dwStyle = WS_OVERLAPPEDWINDOW);

    CView* GetActiveView() const { return m_pViewActive; }
    /// Tells the old and the new view, either may be null; the new one gets the focus. The view is not owned, and
    /// leaves by itself when its window goes.
    void SetActiveView(CView* pView);

    /// Lays out bars, then the child AFX_IDW_PANE_FIRST in what they leave.
    virtual void RecalcLayout();
    /// true: hides menu, pane and all bars but the status bar, to be brought back from the state, which the frame refers to from
    /// now on; the pane's id is free for another child, and bars made from now on are laid out as usual. false: brings all
    /// back and takes the id from that child. No layout. Each has to follow the other.
    void OnSetPreviewMode(bool bPreview, CPrintPreviewState* pState);
    bool IsInPreview() const { return m_pPreviewState != nullptr; }

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
    void OnDpiChanged(int nDpi, const RECT& rcSuggested);
    void OnInitMenuPopup(HMENU hMenu, UINT nIndex, bool bSysMenu);
    /// Shows a text, or the string resource wParam, in the status bar's pane of id 0, if there is one. The result is the id shown
    /// before.
    LRESULT OnSetMessageString(WPARAM wParam, LPARAM lParam);

private:
    std::vector<CControlBar*> Bars() const;
    void PutAside(CPrintPreviewState& state);
    void BringBack(CPrintPreviewState& state);

    CView* m_pViewActive = nullptr;
    bool m_bCloseWanted = false;                    // as soon as no dialog is open
    HMENU m_hMenuAside = nullptr;                   // owned, while a preview hides it
    CPrintPreviewState* m_pPreviewState = nullptr;  // not owned
    UINT m_nIDLastMessage = 0;
    HICON m_hIcon = nullptr;  // the system's or shared: not owned
};
