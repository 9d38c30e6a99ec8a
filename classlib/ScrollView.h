// CView, a child window that shows something, and CScrollView, one whose content can be larger than itself.
// Tested by: tests/win/ClasslibViewTest.cpp.
#pragma once

#include "classlib/Wnd.h"

class CPreviewView;
struct CPrintInfo;

/// Paints through OnDraw. When its window is gone the object deletes itself; a view that is a member of something
/// overrides PostNcDestroy with an empty body.
class CView : public CWnd {
public:
    /// Paints the content; pDC has been through OnPrepareDC.
    virtual void OnDraw(CDC* pDC) = 0;
    /// Prepares a context for content coordinates. pInfo is null on the screen.
    virtual void OnPrepareDC(CDC* /*pDC*/, CPrintInfo* /*pInfo*/ = nullptr) {}
    /// Called once, when the frame around has been loaded.
    virtual void OnInitialUpdate() { Invalidate(); }
    /// The frame's active view changes: bActivate says to which side of the change this view belongs. The base takes
    /// the focus when activated.
    virtual void OnActivateView(bool bActivate);

    // Printing, see Print.h. The base prints what OnDraw draws. A context's m_hAttribDC tells about the printer, also where
    // output goes to a preview.
    /// The first call of a run or preview: to choose the printer, normally by DoPreparePrinting. False: nothing is printed. The
    /// base refuses.
    virtual bool OnPreparePrinting(CPrintInfo* /*pInfo*/) { return false; }
    /// The printer is chosen: last moment to set the pages.
    virtual void OnBeginPrinting(CDC* /*pDC*/, CPrintInfo* /*pInfo*/) {}
    /// One page, pInfo->m_nCurPage, into pInfo->m_rectDraw.
    virtual void OnPrint(CDC* pDC, CPrintInfo* pInfo);
    /// The last call of a run or preview that was begun.
    virtual void OnEndPrinting(CDC* /*pDC*/, CPrintInfo* /*pInfo*/) {}
    /// The user leaves the preview: to take it off the frame. The view stays valid until the last handler has returned.
    virtual void OnEndPrintPreview(CDC* /*pDC*/, CPrintInfo* /*pInfo*/, CPreviewView* /*pView*/) {}

protected:
    /// Shows the print dialog; for a preview takes the printer chosen last, or the default one, without asking. Through the
    /// application object where there is one. False without a printer, or when the user gave up.
    bool DoPreparePrinting(CPrintInfo* pInfo);
    /// The print run: the dialog, the pages, and meanwhile a box that can end it, with the main window disabled. Returns when
    /// everything has been handed to the system, or after a failure, which it tells the user about.
    void OnFilePrint();

    /// A window class with arrow cursor and window-coloured background; WS_BORDER becomes the sunken edge.
    bool PreCreateWindow(CREATESTRUCTW& cs) override;
    void PostNcDestroy() override { DeleteAfterDispatch(); }
    bool OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) override;

    void OnPaint();
    void OnDestroy();

private:
    void OnInitialUpdateMsg() { OnInitialUpdate(); }
};

/// Scrolls in pixels (MM_TEXT). The scroll position is the content point at the client area's top left corner; it is
/// never negative and never beyond the content's size minus the client's. A bar is shown only where the content does
/// not fit, the room that the other bar takes included; without a bar the position is 0.
class CScrollView : public CView {
public:
    /// nMapMode must be MM_TEXT. Sizes in pixels; a page of (0, 0) stands for a tenth of the total, a line of (0, 0) for
    /// a tenth of the page, each axis by itself. Keeps the position as far as the new extent allows; moves the pixels
    /// shown but does not invalidate them.
    void SetScrollSizes(int nMapMode, SIZE sizeTotal, SIZE sizePage = {0, 0}, SIZE sizeLine = {0, 0});
    SIZE GetTotalSize() const { return m_sizeTotal; }
    POINT GetScrollPosition() const { return GetDeviceScrollPosition(); }
    POINT GetDeviceScrollPosition() const;
    /// Scrolls so that this content point comes to the top left corner, as far as the extent allows.
    void ScrollToPosition(POINT pt);
    /// Moves the origin by the scroll position, unless the context prints.
    void OnPrepareDC(CDC* pDC, CPrintInfo* pInfo = nullptr) override;

protected:
    /// The contents have moved on the screen, and with them what was drawn over them.
    virtual void OnScrolled() {}
    bool OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) override;

    void OnSize(UINT nType, int cx, int cy);
    void OnHScroll(UINT nSBCode, int nPos, HWND hScrollBar);
    void OnVScroll(UINT nSBCode, int nPos, HWND hScrollBar);
    /// One notch scrolls the system's number of lines, down the page, or across it with the shift key, without a
    /// vertical bar, or with the second wheel. With the control key, or without bars, it is passed on.
    bool OnMouseWheel(UINT nFlags, short zDelta, POINT point);
    bool OnMouseHWheel(UINT nFlags, short zDelta, POINT point);

private:
    bool HasBar(int nBar) const { return (GetStyle() & (nBar == SB_HORZ ? WS_HSCROLL : WS_VSCROLL)) != 0; }
    void UpdateBars();
    void SetBar(int nBar, bool bShow, int nTotal, int nPage);
    int GetScrollLimit(int nBar) const;
    int ThumbPosition(int nBar, int nPos) const;
    void ScrollToDevicePosition(POINT pt);
    void OnScroll(int nBar, UINT nSBCode, int nPos);
    bool ScrollByWheel(int nBar, int nDelta, UINT nLinesSetting);

    SIZE m_sizeTotal{};
    SIZE m_sizePage{};
    SIZE m_sizeLine{};
    bool m_bInsideUpdate = false;  // showing a bar changes the client area, which would call UpdateBars again
};
