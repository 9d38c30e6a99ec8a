// The view's life, the arrival of the bitmap, and what hangs on image and zoom.
// Tested by: tests/e2e/PluginTest.cpp
#include "view/PibView_win.h"

#include <malloc.h>

#include <utility>

#include "module/ModuleState.h"
#include "res/resource.h"

namespace width {

namespace {

void LoadOnce(HCURSOR& hCursor, UINT nId) {
    if (hCursor == nullptr) {
        hCursor = ::LoadCursorW(g_hModule, MAKEINTRESOURCEW(nId));
    }
}

}  // namespace

CPibView::CPibView() {
    LoadOnce(g_hCursorHand, IDC_HAND_OPEN);
    LoadOnce(g_hCursorGrab, IDC_HAND_CLOSED);
    LoadOnce(g_hCursorZoom, IDC_ZOOM_BOTH);
    LoadOnce(g_hCursorZoomIn, IDC_ZOOM_IN);
    LoadOnce(g_hCursorZoomOut, IDC_ZOOM_OUT);
    m_font.CreatePointFont(100, L"Times New Roman");
}

CPibView::~CPibView() {
    m_dib.reset();
    free(m_pDib);
    m_pDib = nullptr;
}

bool CPibView::PreCreateWindow(CREATESTRUCTW& cs) {
    if (!CScrollView::PreCreateWindow(cs)) {
        return false;
    }
    cs.dwExStyle |= WS_EX_CLIENTEDGE;
    cs.style &= ~static_cast<LONG>(WS_BORDER);
    // No background brush: the image area is never erased, what lies around it is painted by OnEraseBkgnd.
    cs.lpszClass =
        AfxRegisterWndClass(CS_DBLCLKS | CS_HREDRAW | CS_VREDRAW, ::LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW)));
    return cs.lpszClass != nullptr;
}

void CPibView::OnInitialUpdate() {
    CScrollView::OnInitialUpdate();
    SetWindowPos(HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    SetScrollSizes(MM_TEXT, {0, 0});
}

bool CPibView::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) {
    static constexpr MsgEntry kTable[] = {
        Msg<WM_PIB_SETDIB, &CPibView::OnSetDib>(),       Msg<WM_ERASEBKGND, &CPibView::OnEraseBkgnd>(),
        Msg<WM_LBUTTONDOWN, &CPibView::OnLButtonDown>(), Msg<WM_RBUTTONDOWN, &CPibView::OnRButtonDown>(),
        Msg<WM_MOUSEMOVE, &CPibView::OnMouseMove>(),     Msg<WM_KILLFOCUS, &CPibView::OnKillFocus>(),
        Msg<WM_SETCURSOR, &CPibView::OnSetCursor>(),
    };
    return Dispatch(kTable, message, wParam, lParam, lResult) || CScrollView::OnWndMsg(message, wParam, lParam, lResult);
}

// The door for everything that the host hands over. A block that is refused is released at once, and the job goes on
// without a picture. Anybody may post the message; only the block that the job has brought is looked at.
LRESULT CPibView::OnSetDib(WPARAM wParam, LPARAM /*lParam*/) {
    if (wParam == 0 || wParam != reinterpret_cast<WPARAM>(g_pPendingDib)) {
        return 0;
    }
    void* pDib = std::exchange(g_pPendingDib, nullptr);  // it has found its owner, for better or worse
    const auto dib = DibView::Open({static_cast<const std::byte*>(pDib), _msize(pDib)});
    if (!dib || HasImage()) {
        free(pDib);
        return 0;
    }
    m_nFlags |= kImageChanged;
    m_pDib = pDib;
    m_dib = dib;
    UpdateScrollSizes();
    return 0;
}

ViewGeometry CPibView::Geometry() const {
    const RECT rcClient = GetClientRect();
    const POINT ptScroll = GetDeviceScrollPosition();
    ViewGeometry geometry{rcClient.right, rcClient.bottom, ptScroll.x, ptScroll.y, 0, 0, m_nZoomNum, m_nZoomDen};
    if (m_dib) {
        geometry.nImageWidth = m_dib->Width();
        geometry.nImageHeight = m_dib->Height();
    }
    return geometry;
}

void CPibView::UpdateScrollSizes() {
    const ViewGeometry geometry = Geometry();
    SetScrollSizes(MM_TEXT, {ZoomedWidth(geometry), ZoomedHeight(geometry)});
    Invalidate(true);
}

void CPibView::InvalidateView() {
    m_composition.Invalidate();
    RepaintView();
}

// The paint wipes the search square, which must not be wiped once more.
void CPibView::RepaintView() {
    ForgetSquares();
    Invalidate(true);
}

}  // namespace width
