// The picture is kept as a bitmap of the system, so that painting is one stretch of what is visible.
// Tested by: tests/win/host/HostTest.cpp
#include "standins/host/PictureView.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <vector>

#include "core/PackedDib.h"

namespace width::host {

namespace {

constexpr const wchar_t* kClassName = L"WidthHostPicture";
constexpr int kLine = 24;  // pixels that one step of a scroll bar moves

// The header and a full colour table: entries that the block does not have are black.
std::vector<std::byte> BitmapInfo(std::span<const std::byte> block, const DibFigures& figures) {
    constexpr std::size_t kEntries = 256;
    std::vector<std::byte> info(sizeof(BITMAPINFOHEADER) + kEntries * sizeof(RGBQUAD));
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = figures.nWidth;
    header.biHeight = figures.nHeight;
    header.biPlanes = 1;
    header.biBitCount = figures.nBitCount;
    std::memcpy(info.data(), &header, sizeof header);
    const std::size_t nTable = std::min<std::size_t>(figures.nPalEntries, kEntries) * sizeof(RGBQUAD);
    std::memcpy(info.data() + sizeof header, block.data() + sizeof header, nTable);
    return info;
}

HBITMAP MakeBitmap(std::span<const std::byte> block) {
    const DibCheck check = CheckPackedDib(block);
    if (check.status != DibStatus::Ok) {
        return nullptr;
    }
    const std::vector<std::byte> info = BitmapInfo(block, check.figures);
    void* pBits = nullptr;
    HBITMAP hBitmap =
        CreateDIBSection(nullptr, reinterpret_cast<const BITMAPINFO*>(info.data()), DIB_RGB_COLORS, &pBits, nullptr, 0);
    if (hBitmap != nullptr && pBits != nullptr) {
        std::memcpy(pBits, block.data() + check.figures.nBitsOffset, check.figures.nBytes - check.figures.nBitsOffset);
    }
    return hBitmap;
}

SIZE SizeOf(HBITMAP hBitmap) {
    BITMAP bitmap{};
    GetObjectW(hBitmap, sizeof bitmap, &bitmap);
    return {bitmap.bmWidth, bitmap.bmHeight};
}

int Width(const RECT& rc) {
    return rc.right - rc.left;
}

int Height(const RECT& rc) {
    return rc.bottom - rc.top;
}

bool RegisterWindowClass(WNDPROC pfnProc) {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = pfnProc;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.lpszClassName = kClassName;
    return RegisterClassExW(&windowClass) != 0 || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
}

}  // namespace

PictureView::~PictureView() {
    if (m_hWnd != nullptr) {
        DestroyWindow(m_hWnd);
    }
}

bool PictureView::Create(HWND hParent, int nId) {
    const auto hId = std::bit_cast<HMENU>(static_cast<LONG_PTR>(nId));
    return RegisterWindowClass(WindowProc) && CreateWindowExW(WS_EX_CLIENTEDGE, kClassName, L"Picture", WS_CHILD | WS_VISIBLE, 0,
                                                              0, 0, 0, hParent, hId, GetModuleHandleW(nullptr), this) != nullptr;
}

bool PictureView::Show(std::span<const std::byte> block) {
    m_pBitmap.reset(block.empty() ? nullptr : MakeBitmap(block));
    m_size = m_pBitmap != nullptr ? SizeOf(m_pBitmap.get()) : SIZE{};
    Refresh();
    return block.empty() || m_pBitmap != nullptr;
}

void PictureView::SetFit(bool bFit) {
    m_bFit = bFit;
    Refresh();
}

void PictureView::Refresh() {
    UpdateScrollBars();
    InvalidateRect(m_hWnd, nullptr, FALSE);
}

RECT PictureView::ClientRect() const {
    RECT rc{};
    GetClientRect(m_hWnd, &rc);
    return rc;
}

SIZE PictureView::FittedSize(const RECT& rcClient) const {
    if (m_size.cx <= Width(rcClient) && m_size.cy <= Height(rcClient)) {
        return m_size;
    }
    const bool bWide = std::int64_t{m_size.cx} * Height(rcClient) >= std::int64_t{m_size.cy} * Width(rcClient);
    const int nWidth = bWide ? Width(rcClient) : MulDiv(m_size.cx, Height(rcClient), m_size.cy);
    const int nHeight = bWide ? MulDiv(m_size.cy, Width(rcClient), m_size.cx) : Height(rcClient);
    return {std::max(nWidth, 1), std::max(nHeight, 1)};
}

// Where the whole picture lies, in client coordinates: centred as far as there is room, else scrolled.
RECT PictureView::PictureRect() const {
    const RECT rcClient = ClientRect();
    const SIZE size = m_bFit ? FittedSize(rcClient) : m_size;
    const auto start = [this](int nBar, int nRoom, int nLength) {
        return nLength <= nRoom ? (nRoom - nLength) / 2 : -GetScrollPos(m_hWnd, nBar);
    };
    const int x = start(SB_HORZ, Width(rcClient), size.cx);
    const int y = start(SB_VERT, Height(rcClient), size.cy);
    return {x, y, x + size.cx, y + size.cy};
}

// The client area as it would be without scroll bars.
SIZE PictureView::FullSize() const {
    const RECT rcClient = ClientRect();
    const LONG_PTR nStyle = GetWindowLongPtrW(m_hWnd, GWL_STYLE);
    const int nRight = (nStyle & WS_VSCROLL) != 0 ? GetSystemMetrics(SM_CXVSCROLL) : 0;
    const int nBottom = (nStyle & WS_HSCROLL) != 0 ? GetSystemMetrics(SM_CYHSCROLL) : 0;
    return {Width(rcClient) + nRight, Height(rcClient) + nBottom};
}

// A bar takes room from the other direction and so may call for the other bar. Setting a bar sends WM_SIZE when it
// comes or goes, which must not start the work anew.
void PictureView::UpdateScrollBars() {
    if (m_bSettingBars) {
        return;
    }
    SIZE room = FullSize();
    const int nBarWidth = GetSystemMetrics(SM_CXVSCROLL);
    const int nBarHeight = GetSystemMetrics(SM_CYHSCROLL);
    const bool bTall = m_size.cy > room.cy || (m_size.cx > room.cx && m_size.cy > room.cy - nBarHeight);
    const bool bWide = m_size.cx > room.cx || (bTall && m_size.cx > room.cx - nBarWidth);
    room.cx -= bTall ? nBarWidth : 0;
    room.cy -= bWide ? nBarHeight : 0;
    const auto setBar = [this](int nBar, int nLength, int nPage) {
        SCROLLINFO info{};
        info.cbSize = sizeof info;
        info.fMask = SIF_RANGE | SIF_PAGE;
        info.nMax = m_bFit || nLength <= nPage ? 0 : nLength - 1;
        info.nPage = static_cast<UINT>(m_bFit ? 1 : std::max(nPage, 1));
        SetScrollInfo(m_hWnd, nBar, &info, TRUE);
    };
    m_bSettingBars = true;
    setBar(SB_HORZ, m_size.cx, room.cx);
    setBar(SB_VERT, m_size.cy, room.cy);
    m_bSettingBars = false;
}

void PictureView::ScrollTo(int nBar, int nPos) {
    SetScrollPos(m_hWnd, nBar, nPos, TRUE);
    InvalidateRect(m_hWnd, nullptr, FALSE);
}

void PictureView::OnScroll(int nBar, int nRequest) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    GetScrollInfo(m_hWnd, nBar, &info);
    const int nPage = static_cast<int>(info.nPage);
    switch (nRequest) {
        case SB_LINEUP:
            return ScrollTo(nBar, info.nPos - kLine);
        case SB_LINEDOWN:
            return ScrollTo(nBar, info.nPos + kLine);
        case SB_PAGEUP:
            return ScrollTo(nBar, info.nPos - nPage);
        case SB_PAGEDOWN:
            return ScrollTo(nBar, info.nPos + nPage);
        case SB_TOP:
            return ScrollTo(nBar, info.nMin);
        case SB_BOTTOM:
            return ScrollTo(nBar, info.nMax);
        case SB_THUMBTRACK:
        case SB_THUMBPOSITION:
            return ScrollTo(nBar, info.nTrackPos);
        default:
            return;
    }
}

void PictureView::OnWheel(WPARAM wParam, bool bAcross) {
    const bool bShift = (LOWORD(wParam) & MK_SHIFT) != 0;
    const int nDelta = static_cast<SHORT>(HIWORD(wParam));
    m_nWheel += bAcross ? -nDelta : nDelta;
    const int nSteps = m_nWheel / (WHEEL_DELTA / 3);
    m_nWheel -= nSteps * (WHEEL_DELTA / 3);
    const int nBar = bAcross || bShift ? SB_HORZ : SB_VERT;
    if (nSteps != 0 && !m_bFit) {
        ScrollTo(nBar, GetScrollPos(m_hWnd, nBar) - nSteps * kLine);
    }
}

void PictureView::OnKey(WPARAM nKey) {
    struct KeyScroll {
        WPARAM nKey;
        int nBar;
        int nRequest;
    };
    static constexpr KeyScroll kKeys[] = {
        {VK_LEFT, SB_HORZ, SB_LINEUP},   {VK_RIGHT, SB_HORZ, SB_LINEDOWN}, {VK_UP, SB_VERT, SB_LINEUP},
        {VK_DOWN, SB_VERT, SB_LINEDOWN}, {VK_PRIOR, SB_VERT, SB_PAGEUP},   {VK_NEXT, SB_VERT, SB_PAGEDOWN},
        {VK_HOME, SB_VERT, SB_TOP},      {VK_END, SB_VERT, SB_BOTTOM},
    };
    for (const KeyScroll& key : kKeys) {
        if (key.nKey == nKey) {
            OnScroll(key.nBar, key.nRequest);
        }
    }
}

void PictureView::PaintPicture(HDC hdc, const RECT& rcPicture) const {
    const HDC hdcBitmap = CreateCompatibleDC(hdc);
    const HGDIOBJ hOld = SelectObject(hdcBitmap, m_pBitmap.get());
    if (m_bFit) {
        SetStretchBltMode(hdc, HALFTONE);
        SetBrushOrgEx(hdc, 0, 0, nullptr);
        StretchBlt(hdc, rcPicture.left, rcPicture.top, Width(rcPicture), Height(rcPicture), hdcBitmap, 0, 0, m_size.cx, m_size.cy,
                   SRCCOPY);
    } else {
        BitBlt(hdc, rcPicture.left, rcPicture.top, m_size.cx, m_size.cy, hdcBitmap, 0, 0, SRCCOPY);
    }
    SelectObject(hdcBitmap, hOld);
    DeleteDC(hdcBitmap);
}

void PictureView::PaintHint(HDC hdc, RECT rcClient) const {
    const HGDIOBJ hOld = SelectObject(hdc, GetStockObject(DEFAULT_GUI_FONT));
    SetTextColor(hdc, GetSysColor(COLOR_BTNHIGHLIGHT));
    SetBkMode(hdc, TRANSPARENT);
    DrawTextW(hdc, L"Open a picture with File, Open, or drop one here.", -1, &rcClient,
              DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    SelectObject(hdc, hOld);
}

// The picture first, then everything else, so that no pixel is painted twice and nothing flickers.
void PictureView::OnPaint() const {
    PAINTSTRUCT paint{};
    const HDC hdc = BeginPaint(m_hWnd, &paint);
    const RECT rcClient = ClientRect();
    if (m_pBitmap != nullptr) {
        const RECT rcPicture = PictureRect();
        PaintPicture(hdc, rcPicture);
        ExcludeClipRect(hdc, rcPicture.left, rcPicture.top, rcPicture.right, rcPicture.bottom);
    }
    FillRect(hdc, &rcClient, GetSysColorBrush(COLOR_BTNSHADOW));
    if (m_pBitmap == nullptr) {
        PaintHint(hdc, rcClient);
    }
    EndPaint(m_hWnd, &paint);
}

// A flat dispatch: one line a message.
LRESULT PictureView::OnMessage(UINT nMessage, WPARAM wParam, LPARAM lParam) {
    switch (nMessage) {
        case WM_PAINT:
            OnPaint();
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_SIZE:
            Refresh();
            return 0;
        case WM_HSCROLL:
            OnScroll(SB_HORZ, LOWORD(wParam));
            return 0;
        case WM_VSCROLL:
            OnScroll(SB_VERT, LOWORD(wParam));
            return 0;
        case WM_MOUSEWHEEL:
        case WM_MOUSEHWHEEL:
            OnWheel(wParam, nMessage == WM_MOUSEHWHEEL);
            return 0;
        case WM_KEYDOWN:
            OnKey(wParam);
            return 0;
        case WM_LBUTTONDOWN:
            SetFocus(m_hWnd);
            return 0;
        default:
            return DefWindowProcW(m_hWnd, nMessage, wParam, lParam);
    }
}

LRESULT CALLBACK PictureView::WindowProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    if (nMessage == WM_NCCREATE) {
        auto* pView = static_cast<PictureView*>(std::bit_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
        pView->m_hWnd = hWnd;
        SetWindowLongPtrW(hWnd, GWLP_USERDATA, std::bit_cast<LONG_PTR>(pView));
    }
    auto* pView = std::bit_cast<PictureView*>(GetWindowLongPtrW(hWnd, GWLP_USERDATA));
    if (pView == nullptr) {
        return DefWindowProcW(hWnd, nMessage, wParam, lParam);
    }
    const LRESULT nResult = pView->OnMessage(nMessage, wParam, lParam);
    if (nMessage == WM_NCDESTROY) {
        SetWindowLongPtrW(hWnd, GWLP_USERDATA, 0);
        pView->m_hWnd = nullptr;
    }
    return nResult;
}

}  // namespace width::host
