// Making and releasing drawing objects and device contexts. Tested by: tests/win/ClasslibTest.cpp.
#include "classlib/Gdi.h"

#include <cwchar>

#include "classlib/Wnd.h"

void AfxDeleteGdiHandle(HGDIOBJ hObject) {
    ::DeleteObject(hObject);
}

bool CPen::CreatePen(int nStyle, int nWidth, COLORREF clr) {
    return Attach(::CreatePen(nStyle, nWidth, clr));
}

bool CBrush::CreateSolidBrush(COLORREF clr) {
    return Attach(::CreateSolidBrush(clr));
}

bool CFont::CreateFontIndirect(const LOGFONTW& logFont) {
    return Attach(::CreateFontIndirectW(&logFont));
}

bool CFont::CreatePointFont(int nPointSize, LPCWSTR lpszFaceName, HDC hdc) {
    const CClientDC screen(nullptr);
    LOGFONTW logFont{};
    logFont.lfHeight = -::MulDiv(nPointSize, ::GetDeviceCaps(hdc != nullptr ? hdc : screen.m_hDC, LOGPIXELSY), 720);
    logFont.lfCharSet = DEFAULT_CHARSET;
    std::wcsncpy(logFont.lfFaceName, lpszFaceName, LF_FACESIZE - 1);
    return CreateFontIndirect(logFont);
}

bool CFont::GetLogFont(LOGFONTW* pLogFont) const {
    *pLogFont = {};
    return ::GetObjectW(GetSafeHandle(), sizeof *pLogFont, pLogFont) != 0;
}

bool CBitmap::CreateCompatibleBitmap(HDC hdc, int nWidth, int nHeight) {
    return Attach(::CreateCompatibleBitmap(hdc, nWidth, nHeight));
}

bool CBitmap::CreateDIBSection(const BITMAPINFO* pInfo, void** ppBits) {
    *ppBits = nullptr;
    return Attach(::CreateDIBSection(nullptr, pInfo, DIB_RGB_COLORS, ppBits, nullptr, 0));
}

bool CBitmap::LoadPicture(HINSTANCE hInstance, UINT nIDResource, SIZE size) {
    const HANDLE hImage =
        ::LoadImageW(hInstance, MAKEINTRESOURCEW(nIDResource), IMAGE_BITMAP, size.cx, size.cy, LR_CREATEDIBSECTION);
    return Attach(static_cast<HBITMAP>(hImage));
}

bool CPalette::CreatePalette(const LOGPALETTE* pPalette) {
    return Attach(::CreatePalette(pPalette));
}

UINT CPalette::GetNearestPaletteIndex(COLORREF clr) const {
    return GetSafeHandle() != nullptr ? ::GetNearestPaletteIndex(GetSafeHandle(), clr) : 0;
}

CDC::~CDC() {
    DeleteDC();
}

bool CDC::CreateCompatibleDC(HDC hdc) {
    DeleteDC();
    return Attach(::CreateCompatibleDC(hdc));
}

bool CDC::Attach(HDC hdc) {
    m_hDC = m_hAttribDC = hdc;
    return m_hDC != nullptr;
}

HDC CDC::Detach() {
    m_hAttribDC = nullptr;
    return std::exchange(m_hDC, nullptr);
}

void CDC::DeleteDC() {
    if (m_hDC != nullptr) {
        ::DeleteDC(Detach());
    }
}

void CDC::FillSolidRect(const RECT& rc, COLORREF clr) {
    const CBrush brush(clr);
    FillRect(rc, brush);
}

SIZE CDC::GetTextExtent(LPCWSTR lpszText, int nLength) const {
    SIZE size{};
    ::GetTextExtentPoint32W(m_hAttribDC, lpszText, nLength, &size);
    return size;
}

RECT CDC::GetClipBox() const {
    RECT rc{};
    if (::GetClipBox(m_hDC, &rc) == ERROR) {
        rc = {};
    }
    return rc;
}

bool CDC::BitBlt(const RECT& rcDest, HDC hdcSource, POINT ptSource, DWORD dwRop) {
    return ::BitBlt(m_hDC, rcDest.left, rcDest.top, rcDest.right - rcDest.left, rcDest.bottom - rcDest.top, hdcSource, ptSource.x,
                    ptSource.y, dwRop) != FALSE;
}

bool CDC::StretchBlt(const RECT& rcDest, HDC hdcSource, const RECT& rcSource, DWORD dwRop) {
    return ::StretchBlt(m_hDC, rcDest.left, rcDest.top, rcDest.right - rcDest.left, rcDest.bottom - rcDest.top, hdcSource,
                        rcSource.left, rcSource.top, rcSource.right - rcSource.left, rcSource.bottom - rcSource.top,
                        dwRop) != FALSE;
}

CClientDC::CClientDC(const CWnd* pWnd) : m_hWnd(pWnd != nullptr ? pWnd->m_hWnd : nullptr) {
    if (pWnd == nullptr || m_hWnd != nullptr) {
        Attach(::GetDC(m_hWnd));
    }
}

CClientDC::~CClientDC() {
    if (m_hDC != nullptr) {
        ::ReleaseDC(m_hWnd, Detach());
    }
}

CWindowDC::CWindowDC(HWND hWnd) : m_hWnd(hWnd) {
    Attach(::GetWindowDC(hWnd));
}

CWindowDC::~CWindowDC() {
    if (m_hDC != nullptr) {
        ::ReleaseDC(m_hWnd, Detach());
    }
}

CPaintDC::CPaintDC(const CWnd* pWnd) : m_hWnd(pWnd->m_hWnd) {
    Attach(::BeginPaint(m_hWnd, &m_ps));
}

CPaintDC::~CPaintDC() {
    if (Detach() != nullptr) {
        ::EndPaint(m_hWnd, &m_ps);
    }
}

CSelectGuard::CSelectGuard(HDC hdc, HGDIOBJ hObject)
    : m_hDC(hdc), m_hOld(hObject != nullptr ? ::SelectObject(hdc, hObject) : nullptr) {}

CSelectGuard::~CSelectGuard() {
    if (m_hOld != nullptr) {
        ::SelectObject(m_hDC, m_hOld);
    }
}
