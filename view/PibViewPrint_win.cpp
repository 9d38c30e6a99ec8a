// Printing the picture on one page, and the preview of that page.
//
// Only the block is printed: overlays are on paper when they have been written into it. The view has no document and its
// frame is no document frame, so starting and ending a preview is done here, on the module's one frame.
// Tested by: tests/e2e/PrintTest.cpp
#include <memory>
#include <new>

#include "classlib/PreviewView.h"
#include "classlib/Thread.h"
#include "module/ModuleState.h"
#include "res/resource.h"
#include "view/PagePlacement.h"
#include "view/PibView_win.h"

namespace width {

static_assert(ID_FILE_PRINT == AFX_ID_FILE_PRINT && ID_PREVIEW_PRINT == AFX_ID_PREVIEW_PRINT &&
              ID_PREVIEW_CLOSE == AFX_ID_PREVIEW_CLOSE && ID_PREVIEW_ZOOM_IN == AFX_ID_PREVIEW_ZOOMIN &&
              ID_PREVIEW_ZOOM_OUT == AFX_ID_PREVIEW_ZOOMOUT && IDC_PRINT_DOCUMENT == AFX_IDC_PRINT_DOCNAME &&
              IDC_PRINT_PRINTER == AFX_IDC_PRINT_PRINTERNAME && IDC_PRINT_PORT == AFX_IDC_PRINT_PORTNAME);

namespace {

constexpr UINT kIdleMessage = 57345;  // what the status bar says when nothing is going on

UINT InLanguage(UINT nEnglish, UINT nChinese) {
    return g_bChinese != 0 ? nChinese : nEnglish;
}

DotsPerInch ResolutionOf(const CDC& dc) {
    return {dc.GetDeviceCaps(LOGPIXELSX), dc.GetDeviceCaps(LOGPIXELSY)};
}

/// Where the picture comes to lie; nothing when the screen can't be asked.
std::optional<PagePlacement> PlaceOn(const CDC& dcPrinter, const RECT& rcPage, const DibView& dib) {
    const CClientDC screen(nullptr);
    if (screen.GetSafeHdc() == nullptr) {
        return std::nullopt;
    }
    return PlaceOnPage(dib.Width(), dib.Height(), ResolutionOf(screen), ResolutionOf(dcPrinter), rcPage.right - rcPage.left,
                       rcPage.bottom - rcPage.top);
}

/// Sets a flag for as long as the object lives.
class CFlagGuard {
public:
    explicit CFlagGuard(bool& bFlag) : m_bFlag(bFlag) { m_bFlag = true; }
    CFlagGuard(const CFlagGuard&) = delete;
    CFlagGuard& operator=(const CFlagGuard&) = delete;
    ~CFlagGuard() { m_bFlag = false; }

private:
    bool& m_bFlag;
};

/// Back to the frame as it was, with the state still the caller's.
void GiveUpPreview(CPreviewView* pView, CPrintPreviewState* pState) {
    g_pMainFrame->OnSetPreviewMode(false, pState);
    g_pMainFrame->RecalcLayout();
    pView->m_pPreviewState = nullptr;
}

}  // namespace

// ---- printing ----

bool CPibView::IsPrinting() const {
    const CWinApp* const pApp = AfxGetApp();
    return m_bInsidePrinting || (pApp != nullptr && pApp->IsDialogOpen());
}

void CPibView::OnFilePrint() {
    if (HasImage() && !IsPrinting()) {
        const CFlagGuard inside(m_bInsidePrinting);
        CScrollView::OnFilePrint();
    }
}

bool CPibView::OnPreparePrinting(CPrintInfo* pInfo) {
    pInfo->m_nIDStatusDialog = InLanguage(IDD_PRINTING_EN, IDD_PRINTING_ZH);
    pInfo->m_strFailure = AfxLoadString(InLanguage(IDS_PRINT_FAILED_EN, IDS_PRINT_FAILED_ZH), g_hModule);
    pInfo->m_pPD->m_strNoPrinter = AfxLoadString(InLanguage(IDS_NO_PRINTER_EN, IDS_NO_PRINTER_ZH), g_hModule);
    return DoPreparePrinting(pInfo);
}

void CPibView::OnBeginPrinting(CDC* pDC, CPrintInfo* pInfo) {
    CScrollView::OnBeginPrinting(pDC, pInfo);
    pInfo->SetMaxPage(1);
}

void CPibView::OnPrint(CDC* pDC, CPrintInfo* pInfo) {
    const auto place = m_dib ? PlaceOn(*pDC, pInfo->m_rectDraw, *m_dib) : std::nullopt;
    if (!place) {
        return;
    }
    const DrawingInfo info = DrawingInfoOf(*m_dib);
    const int nOldMode = pDC->SetStretchBltMode(COLORONCOLOR);
    ::StretchDIBits(*pDC, place->nX, place->nY, place->nWidth, place->nHeight, 0, 0, m_dib->Width(), m_dib->Height(),
                    m_dib->Row(0).data(), info.Get(), DIB_RGB_COLORS, SRCCOPY);
    pDC->SetStretchBltMode(nOldMode);
}

void CPibView::OnEndPrinting(CDC* pDC, CPrintInfo* pInfo) {
    CScrollView::OnEndPrinting(pDC, pInfo);
}

// ---- preview ----

// One preview at a time: a command that comes in another way than by the menu, which is gone meanwhile, does nothing.
void CPibView::OnFilePrintPreview() {
    if (IsPrinting() || g_pMainFrame->IsInPreview()) {
        return;
    }
    const CFlagGuard inside(m_bInsidePrinting);
    auto pState = std::make_unique<CPrintPreviewState>();
    const UINT nBar = InLanguage(IDD_PREVIEW_BAR_EN, IDD_PREVIEW_BAR_ZH);
    if (DoPrintPreview(nBar, pState.get())) {
        static_cast<void>(pState.release());  // the preview view has it, or had it
    } else {
        AfxMessageBox(AfxLoadString(InLanguage(IDS_COMMAND_FAILED_EN, IDS_COMMAND_FAILED_ZH), g_hModule).c_str());
    }
}

/// Starts a preview of this view in the module's frame. False if it could not be built: the frame is then as before, and the
/// state still the caller's. True otherwise, also when it ended at once because there is no printer; the state then
/// belongs to the preview view.
bool CPibView::DoPrintPreview(UINT nIDResource, CPrintPreviewState* pState) {
    CFrameWnd* const pFrame = g_pMainFrame;
    auto pNewBar = std::make_unique<CDialogBar>();
    std::unique_ptr<CPreviewView> pNewView(new (std::nothrow) CPreviewView);
    if (!pNewView) {
        return false;
    }
    CPreviewView* const pView = pNewView.get();
    pFrame->OnSetPreviewMode(true, pState);
    pView->m_pPreviewState = pState;

    if (!pNewBar->Create(pFrame, nIDResource, CBRS_TOP, AFX_IDW_PREVIEW_BAR)) {
        GiveUpPreview(pView, pState);
        return false;
    }
    pView->m_pToolBar = pNewBar.release();
    pView->m_pToolBar->m_bAutoDelete = true;

    // From here on the view deletes itself: when its window goes, or when it gets none.
    pNewView.release();
    if (!pView->Create(nullptr, nullptr, WS_CHILD | WS_VISIBLE | WS_BORDER, {0, 0, 0, 0}, pFrame, AFX_IDW_PANE_FIRST)) {
        pView->m_pToolBar->DestroyWindow();
        GiveUpPreview(pView, pState);
        return false;
    }

    pState->pViewActiveOld = pFrame->GetActiveView();
    if (pState->pViewActiveOld != nullptr) {
        pState->pViewActiveOld->OnActivateView(false);
    }
    if (!pView->SetPrintView(this)) {
        pView->OnPreviewClose();
        return true;
    }
    pFrame->SetActiveView(pView);
    pView->m_pToolBar->SendMessage(WM_IDLEUPDATECMDUI, TRUE);
    pFrame->RecalcLayout();
    pFrame->UpdateWindow();
    return true;
}

void CPibView::OnEndPrintPreview(CDC* pDC, CPrintInfo* pInfo, CPreviewView* pView) {
    if (pView->m_pPrintView != nullptr) {
        pView->m_pPrintView->OnEndPrinting(pDC, pInfo);
    }
    CFrameWnd* const pFrame = g_pMainFrame;
    pFrame->OnSetPreviewMode(false, pView->m_pPreviewState);
    pFrame->SetActiveView(pView->m_pPreviewState->pViewActiveOld);
    if (GetParentFrame() != pFrame) {
        OnActivateView(true);
    }
    pView->DestroyWindow();
    pFrame->RecalcLayout();
    pFrame->SendMessage(WM_SETMESSAGESTRING, kIdleMessage);
    pFrame->UpdateWindow();
}

}  // namespace width
