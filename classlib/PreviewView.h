// CPreviewView: shows in a frame what a view would print, and takes the commands of the bar above it.
//
// The frame's part, and the steps that start a preview, belong to whoever shows it: create the object, give it the state,
// create bar and window in a frame in preview mode, then SetPrintView. The pages are painted by the print view's own OnPrint
// through a CPreviewDC, anew with every paint. Tested by: tests/win/ClasslibPreviewTest.cpp, tests/e2e/PrintTest.cpp
#pragma once

#include <memory>

#include "classlib/DialogBar.h"
#include "classlib/FrameWnd.h"
#include "classlib/PreviewDC.h"
#include "classlib/Print.h"
#include "classlib/ScrollView.h"

// Commands of a preview and its bar.
constexpr UINT AFX_ID_PREVIEW_CLOSE = 0xE300;
constexpr UINT AFX_ID_PREVIEW_PRINT = 0xE304;
constexpr UINT AFX_ID_PREVIEW_ZOOMIN = 0xE305;
constexpr UINT AFX_ID_PREVIEW_ZOOMOUT = 0xE306;
/// What Print of a preview gives to the main window, once the preview is closed.
constexpr UINT AFX_ID_FILE_PRINT = 0xE107;

/// How large a sheet is shown: wholly, or larger than the window.
enum class PreviewZoom : int { WholePage, Between, Close };

/// The sheet's size in screen pixels at one zoom. WholePage fits into sizeRoom; Close is the sheet's true size or twice
/// WholePage, whichever is larger; Between lies in the middle. Proportions are kept; no side is below 1.
/// sizeRoom   screen pixels
/// sizeTrue   the sheet at its true size, screen pixels, 1 or more
SIZE PreviewSheetSize(PreviewZoom zoom, SIZE sizeRoom, SIZE sizeTrue);

/// Made with new; deletes itself when its window is gone, and its state with it. One page at a time is shown: page 1.
class CPreviewView : public CScrollView {
public:
    /// Deleted with this object: to be set back to null by whoever wants to keep it.
    CPrintPreviewState* m_pPreviewState = nullptr;
    /// The bar above, not owned. It goes when the preview is closed.
    CDialogBar* m_pToolBar = nullptr;
    /// The view whose pages are shown, not owned; null before SetPrintView.
    CView* m_pPrintView = nullptr;

    CPreviewView() = default;
    ~CPreviewView() override;

    std::span<const CmdEntry> Commands() const override;
    /// Takes a view to show, lets it choose the printer and prepare. False if it refuses, if memory runs out, or if this preview
    /// has been closed meanwhile.
    bool SetPrintView(CView* pPrintView);
    /// Destroys the bar, and lets the print view end the preview. Does nothing when that has been done.
    void OnPreviewClose();
    void OnDraw(CDC* pDC) override;

protected:
    bool OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) override;

private:
    bool OnEraseBkgnd(CDC* pDC);
    void OnSize(UINT nType, int cx, int cy);
    void OnLButtonDown(UINT nFlags, POINT point);
    void OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags);
    void OnPreviewPrint();
    void OnZoomIn();
    void OnZoomOut();
    void OnUpdateZoomIn(CCmdUI* pCmdUI);
    void OnUpdateZoomOut(CCmdUI* pCmdUI);

    bool Prepare();
    bool HasPage() const { return m_bReady; }
    SIZE GetOuterSize() const;
    void LayOutSheet();
    void ZoomAround(PreviewZoom zoom, POINT ptClient);
    POINT ClientCentre() const;

    std::unique_ptr<CPrintInfo> m_pPreviewInfo;  // goes after m_previewDC, whose printer context it owns
    CPreviewDC m_previewDC;
    PreviewZoom m_zoom = PreviewZoom::WholePage;
    RECT m_rcSheet{};  // content coordinates
    bool m_bReady = false;
    bool m_bInsideLayout = false;
};
