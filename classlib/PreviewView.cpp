// The sheet on its ground, its zoom, and the preview's commands.
// Tested by: tests/win/ClasslibPreviewTest.cpp, tests/e2e/PrintTest.cpp
#include "classlib/PreviewView.h"

#include <algorithm>
#include <new>
#include <utility>

#include "classlib/Thread.h"

namespace {

constexpr int kMargin = 8;  // ground round the sheet, screen pixels; the shadow lies in it
constexpr int kShadow = 3;

// A frame that is to close gives up its preview first.
bool ClosePreview(CFrameWnd* pFrame) {
    auto* const pView = dynamic_cast<CPreviewView*>(CWnd::FromHandle(pFrame->GetDlgItem(AFX_IDW_PANE_FIRST)));
    if (pView == nullptr) {
        return true;
    }
    pView->OnPreviewClose();
    return false;
}

RECT Grown(const RECT& rc, LONG n) {
    return {rc.left - n, rc.top - n, rc.right + n, rc.bottom + n};
}

}  // namespace

CPrintPreviewState::CPrintPreviewState() : lpfnCloseProc(ClosePreview) {}

SIZE PreviewSheetSize(PreviewZoom zoom, SIZE sizeRoom, SIZE sizeTrue) {
    const auto scaled = [&](double dScale) {
        return SIZE{std::max<LONG>(static_cast<LONG>(sizeTrue.cx * dScale), 1),
                    std::max<LONG>(static_cast<LONG>(sizeTrue.cy * dScale), 1)};
    };
    const double dWhole = std::max(std::min(static_cast<double>(sizeRoom.cx) / sizeTrue.cx,  //
                                            static_cast<double>(sizeRoom.cy) / sizeTrue.cy),
                                   0.0);
    const double dClose = std::max(1.0, 2 * dWhole);
    switch (zoom) {
        case PreviewZoom::WholePage:
            return scaled(dWhole);
        case PreviewZoom::Between:
            return scaled((dWhole + dClose) / 2);
        default:
            return scaled(dClose);
    }
}

CPreviewView::~CPreviewView() {
    m_previewDC.SetAttribDC(nullptr);
    delete m_pPreviewState;
}

std::span<const CmdEntry> CPreviewView::Commands() const {
    static constexpr CmdEntry kTable[] = {
        Cmd<&CPreviewView::OnPreviewPrint>(AFX_ID_PREVIEW_PRINT),
        Cmd<&CPreviewView::OnZoomIn, &CPreviewView::OnUpdateZoomIn>(AFX_ID_PREVIEW_ZOOMIN),
        Cmd<&CPreviewView::OnZoomOut, &CPreviewView::OnUpdateZoomOut>(AFX_ID_PREVIEW_ZOOMOUT),
        Cmd<&CPreviewView::OnPreviewClose>(AFX_ID_PREVIEW_CLOSE),
        Cmd<&CPreviewView::OnPreviewClose>(IDCANCEL),  // the escape key in the bar
    };
    return kTable;
}

bool CPreviewView::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) {
    static constexpr MsgEntry kTable[] = {
        Msg<WM_ERASEBKGND, &CPreviewView::OnEraseBkgnd>(),
        Msg<WM_SIZE, &CPreviewView::OnSize>(),
        Msg<WM_LBUTTONDOWN, &CPreviewView::OnLButtonDown>(),
        Msg<WM_KEYDOWN, &CPreviewView::OnKeyDown>(),
    };
    return Dispatch(kTable, message, wParam, lParam, lResult) || CScrollView::OnWndMsg(message, wParam, lParam, lResult);
}

// ---- start and end ----

// The frame is in preview mode already: an exception must not leave it there.
bool CPreviewView::SetPrintView(CView* pPrintView) {
    m_pPrintView = pPrintView;
    try {
        m_bReady = Prepare();
    } catch (const std::bad_alloc&) {
        return false;
    }
    LayOutSheet();
    return m_bReady;
}

bool CPreviewView::Prepare() {
    m_pPreviewInfo = std::make_unique<CPrintInfo>();
    m_pPreviewInfo->m_bPreview = true;
    // Should there be no printer, it is the set-up dialog that says so.
    DWORD& dwFlags = m_pPreviewInfo->m_pPD->m_pd.Flags;
    dwFlags = (dwFlags | PD_PRINTSETUP) & ~static_cast<DWORD>(PD_RETURNDC);
    if (!m_pPrintView->OnPreparePrinting(m_pPreviewInfo.get()) || m_hWnd == nullptr) {
        return false;
    }
    const HDC hdcPrinter = m_pPreviewInfo->m_pPD->m_pd.hDC;
    m_previewDC.SetAttribDC(hdcPrinter);
    {
        const CClientDC dc(this);
        const CSaveDC kept(hdcPrinter);
        m_previewDC.SetOutputDC(dc, GetClientRect());
        m_pPrintView->OnBeginPrinting(&m_previewDC, m_pPreviewInfo.get());
        m_previewDC.ReleaseOutputDC();
    }
    return true;
}

void CPreviewView::OnPreviewClose() {
    CDialogBar* const pBar = std::exchange(m_pToolBar, nullptr);
    if (pBar == nullptr || m_pPrintView == nullptr) {
        return;
    }
    pBar->DestroyWindow();
    m_pPrintView->OnEndPrintPreview(&m_previewDC, m_pPreviewInfo.get(), this);
}

// The bar and with it the button that was pressed are gone when the main window gets the command.
void CPreviewView::OnPreviewPrint() {
    OnPreviewClose();
    if (CWnd* const pMain = AfxGetMainWnd()) {
        pMain->PostMessage(WM_COMMAND, AFX_ID_FILE_PRINT);
    }
}

// ---- the sheet ----

/// The client area as it is without scroll bars.
SIZE CPreviewView::GetOuterSize() const {
    const RECT rc = GetClientRect();
    const DWORD dwStyle = GetStyle();
    return {rc.right + ((dwStyle & WS_VSCROLL) != 0 ? ::GetSystemMetrics(SM_CXVSCROLL) : 0),
            rc.bottom + ((dwStyle & WS_HSCROLL) != 0 ? ::GetSystemMetrics(SM_CYHSCROLL) : 0)};
}

void CPreviewView::LayOutSheet() {
    if (!HasPage() || m_bInsideLayout) {
        return;
    }
    m_bInsideLayout = true;  // showing a bar changes the client area
    const SIZE sizeOuter = GetOuterSize();
    const SIZE sizePaper = m_previewDC.GetPaperSize();
    const CClientDC screen(nullptr);
    const SIZE sizeTrue{
        std::max(::MulDiv(sizePaper.cx, screen.GetDeviceCaps(LOGPIXELSX), m_previewDC.GetDeviceCaps(LOGPIXELSX)), 1),
        std::max(::MulDiv(sizePaper.cy, screen.GetDeviceCaps(LOGPIXELSY), m_previewDC.GetDeviceCaps(LOGPIXELSY)), 1)};
    const SIZE sizeSheet = PreviewSheetSize(m_zoom, {sizeOuter.cx - 2 * kMargin, sizeOuter.cy - 2 * kMargin}, sizeTrue);
    const bool bWhole = m_zoom == PreviewZoom::WholePage;
    SetScrollSizes(MM_TEXT, bWhole ? SIZE{0, 0} : SIZE{sizeSheet.cx + 2 * kMargin, sizeSheet.cy + 2 * kMargin});
    const RECT rcClient = GetClientRect();
    m_rcSheet.left = std::max<LONG>((rcClient.right - sizeSheet.cx) / 2, kMargin);
    m_rcSheet.top = std::max<LONG>((rcClient.bottom - sizeSheet.cy) / 2, kMargin);
    m_rcSheet.right = m_rcSheet.left + sizeSheet.cx;
    m_rcSheet.bottom = m_rcSheet.top + sizeSheet.cy;
    m_bInsideLayout = false;
    Invalidate();
}

void CPreviewView::OnSize(UINT nType, int cx, int cy) {
    CScrollView::OnSize(nType, cx, cy);
    LayOutSheet();
}

bool CPreviewView::OnEraseBkgnd(CDC* pDC) {
    const CSaveDC kept(*pDC);
    OnPrepareDC(pDC);
    if (HasPage()) {
        ::ExcludeClipRect(*pDC, m_rcSheet.left - 1, m_rcSheet.top - 1, m_rcSheet.right + 1, m_rcSheet.bottom + 1);
    }
    pDC->FillRect(pDC->GetClipBox(), ::GetSysColorBrush(COLOR_APPWORKSPACE));
    return true;
}

void CPreviewView::OnDraw(CDC* pDC) {
    if (!HasPage()) {
        return;
    }
    const RECT& rc = m_rcSheet;
    const HBRUSH hShadow = ::GetSysColorBrush(COLOR_3DDKSHADOW);
    pDC->FillRect({rc.right + 1, rc.top + kShadow, rc.right + 1 + kShadow, rc.bottom + 1 + kShadow}, hShadow);
    pDC->FillRect({rc.left + kShadow, rc.bottom + 1, rc.right + 1, rc.bottom + 1 + kShadow}, hShadow);
    pDC->FillSolidRect(Grown(rc, 1), RGB(0, 0, 0));
    pDC->FillSolidRect(rc, RGB(255, 255, 255));

    const CSaveDC keptScreen(*pDC);
    const CSaveDC keptPrinter(m_previewDC.m_hAttribDC);
    RECT rcDevice = rc;
    const POINT ptScroll = GetDeviceScrollPosition();
    ::OffsetRect(&rcDevice, -ptScroll.x, -ptScroll.y);
    CPrintInfo& info = *m_pPreviewInfo;
    info.m_bContinuePrinting = true;
    info.m_nCurPage = 1;
    info.m_rectDraw = {0, 0, m_previewDC.GetDeviceCaps(HORZRES), m_previewDC.GetDeviceCaps(VERTRES)};
    m_previewDC.SetOutputDC(*pDC, rcDevice);
    m_pPrintView->OnPrepareDC(&m_previewDC, &info);
    if (info.m_bContinuePrinting) {
        m_pPrintView->OnPrint(&m_previewDC, &info);
    }
    m_previewDC.ReleaseOutputDC();
}

// ---- zoom ----

POINT CPreviewView::ClientCentre() const {
    const RECT rc = GetClientRect();
    return {rc.right / 2, rc.bottom / 2};
}

// What lies under the point comes to the middle of the window, as far as the scroll range allows.
void CPreviewView::ZoomAround(PreviewZoom zoom, POINT ptClient) {
    const RECT rcOld = m_rcSheet;
    const POINT ptScroll = GetDeviceScrollPosition();
    m_zoom = zoom;
    LayOutSheet();
    const POINT ptCentre = ClientCentre();
    const RECT& rc = m_rcSheet;
    ScrollToPosition(
        {rc.left + ::MulDiv(ptClient.x + ptScroll.x - rcOld.left, rc.right - rc.left, rcOld.right - rcOld.left) - ptCentre.x,
         rc.top + ::MulDiv(ptClient.y + ptScroll.y - rcOld.top, rc.bottom - rc.top, rcOld.bottom - rcOld.top) - ptCentre.y});
}

void CPreviewView::OnZoomIn() {
    if (HasPage() && m_zoom != PreviewZoom::Close) {
        ZoomAround(m_zoom == PreviewZoom::WholePage ? PreviewZoom::Between : PreviewZoom::Close, ClientCentre());
    }
}

void CPreviewView::OnZoomOut() {
    if (HasPage() && m_zoom != PreviewZoom::WholePage) {
        ZoomAround(m_zoom == PreviewZoom::Close ? PreviewZoom::Between : PreviewZoom::WholePage, ClientCentre());
    }
}

void CPreviewView::OnUpdateZoomIn(CCmdUI* pCmdUI) {
    pCmdUI->Enable(HasPage() && m_zoom != PreviewZoom::Close);
}

void CPreviewView::OnUpdateZoomOut(CCmdUI* pCmdUI) {
    pCmdUI->Enable(HasPage() && m_zoom != PreviewZoom::WholePage);
}

// A click on the sheet comes nearer to that place, and from the nearest goes back to the whole page.
void CPreviewView::OnLButtonDown(UINT, POINT point) {
    const POINT ptScroll = GetDeviceScrollPosition();
    if (!HasPage() || ::PtInRect(&m_rcSheet, {point.x + ptScroll.x, point.y + ptScroll.y}) == FALSE) {
        return;
    }
    switch (m_zoom) {
        case PreviewZoom::WholePage:
            return ZoomAround(PreviewZoom::Between, point);
        case PreviewZoom::Between:
            return ZoomAround(PreviewZoom::Close, point);
        default:
            return ZoomAround(PreviewZoom::WholePage, point);
    }
}

// A flat dispatch: one line a key.
void CPreviewView::OnKeyDown(UINT nChar, UINT, UINT) {
    const bool bControl = ::GetKeyState(VK_CONTROL) < 0;
    switch (nChar) {
        case VK_ESCAPE:
            return OnPreviewClose();
        case VK_ADD:
            return OnZoomIn();
        case VK_SUBTRACT:
            return OnZoomOut();
        case VK_TAB:
            if (m_pToolBar != nullptr) {
                ::SetFocus(::GetNextDlgTabItem(*m_pToolBar, nullptr, FALSE));
            }
            return;
        case VK_LEFT:
            return OnHScroll(SB_LINELEFT, 0, nullptr);
        case VK_RIGHT:
            return OnHScroll(SB_LINERIGHT, 0, nullptr);
        case VK_UP:
            return OnVScroll(SB_LINEUP, 0, nullptr);
        case VK_DOWN:
            return OnVScroll(SB_LINEDOWN, 0, nullptr);
        case VK_PRIOR:
            return OnVScroll(SB_PAGEUP, 0, nullptr);
        case VK_NEXT:
            return OnVScroll(SB_PAGEDOWN, 0, nullptr);
        case VK_HOME:
            return bControl ? OnVScroll(SB_TOP, 0, nullptr) : OnHScroll(SB_LEFT, 0, nullptr);
        case VK_END:
            return bControl ? OnVScroll(SB_BOTTOM, 0, nullptr) : OnHScroll(SB_RIGHT, 0, nullptr);
        default:
            Default();
    }
}
