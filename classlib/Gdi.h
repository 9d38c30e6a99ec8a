// Owners of drawing handles: one class for each kind, device contexts, and guards for what is selected.
//
// These files are the only ones that call DeleteObject, SelectObject, ReleaseDC and DeleteDC. An owner can be
// moved and not copied, converts to its handle wherever the system's functions want one, and releases it when it
// goes. A call that fails leaves the owner empty (null handle) and returns false; drawing into a null context does
// nothing. All coordinates are the logical ones of the context, rectangles leave out their right and bottom edge.
// Tested by: tests/win/ClasslibTest.cpp.
#pragma once

#include <utility>

#include "classlib/Win.h"

class CWnd;

/// Deletes any kind of drawing object. For CGdiObject only.
void AfxDeleteGdiHandle(HGDIOBJ hObject);

/// The owner of one drawing object. Each class below adds the calls that make its kind; making one releases the
/// one before.
template <class Handle>
class CGdiObject {
public:
    CGdiObject() = default;
    CGdiObject(CGdiObject&& other) noexcept : m_hObject(other.Detach()) {}
    CGdiObject& operator=(CGdiObject&& other) noexcept {
        if (this != &other) {
            Attach(other.Detach());
        }
        return *this;
    }
    CGdiObject(const CGdiObject&) = delete;
    CGdiObject& operator=(const CGdiObject&) = delete;
    ~CGdiObject() { DeleteObject(); }

    /// Takes over a handle, null included, and releases the one held before. True if there is a handle now.
    bool Attach(Handle hObject) {
        DeleteObject();
        m_hObject = hObject;
        return m_hObject != nullptr;
    }
    /// Gives the handle to the caller, who has to release it.
    Handle Detach() { return std::exchange(m_hObject, nullptr); }
    void DeleteObject() {
        if (m_hObject != nullptr) {
            AfxDeleteGdiHandle(Detach());
        }
    }
    Handle GetSafeHandle() const { return m_hObject; }
    operator Handle() const { return m_hObject; }

private:
    Handle m_hObject = nullptr;
};

class CPen : public CGdiObject<HPEN> {
public:
    CPen() = default;
    CPen(int nStyle, int nWidth, COLORREF clr) { CreatePen(nStyle, nWidth, clr); }
    /// nStyle PS_SOLID and so on; nWidth in logical units, 1 where a pattern is to show.
    bool CreatePen(int nStyle, int nWidth, COLORREF clr);
};

class CBrush : public CGdiObject<HBRUSH> {
public:
    CBrush() = default;
    explicit CBrush(COLORREF clr) { CreateSolidBrush(clr); }
    bool CreateSolidBrush(COLORREF clr);
};

class CFont : public CGdiObject<HFONT> {
public:
    bool CreateFontIndirect(const LOGFONTW& logFont);
    /// nPointSize in tenths of a point, turned into pixels with the resolution of hdc, or of the screen when null.
    bool CreatePointFont(int nPointSize, LPCWSTR lpszFaceName, HDC hdc = nullptr);
    /// The font's description; false and a cleared record when there is no font.
    bool GetLogFont(LOGFONTW* pLogFont) const;
};

class CBitmap : public CGdiObject<HBITMAP> {
public:
    /// Sizes in pixels, at least 1. hdc gives the colour format: a memory context without a bitmap is monochrome.
    bool CreateCompatibleBitmap(HDC hdc, int nWidth, int nHeight);
    /// *ppBits receives the pixel memory, which lives as long as the bitmap; null on failure.
    bool CreateDIBSection(const BITMAPINFO* pInfo, void** ppBits);
    /// A bitmap resource, stretched to a size in pixels.
    bool LoadPicture(HINSTANCE hInstance, UINT nIDResource, SIZE size);
};

class CPalette : public CGdiObject<HPALETTE> {
public:
    bool CreatePalette(const LOGPALETTE* pPalette);
    /// The index of the entry nearest to clr, 0 without a palette.
    UINT GetNearestPaletteIndex(COLORREF clr) const;
};

/// A device context and its calls. On its own it owns a memory context; the derived classes own a window's.
class CDC {
public:
    HDC m_hDC = nullptr;        ///< where output goes
    HDC m_hAttribDC = nullptr;  ///< what is asked for resolution and sizes; differs in a print preview only
    bool m_bPrinting = false;

    CDC() = default;
    CDC(const CDC&) = delete;
    CDC& operator=(const CDC&) = delete;
    /// Deletes the context if one is still attached.
    virtual ~CDC();
    operator HDC() const { return m_hDC; }
    HDC GetSafeHdc() const { return m_hDC; }

    /// A memory context like hdc, or like the screen when null. Holds a monochrome bitmap of one pixel at first.
    bool CreateCompatibleDC(HDC hdc);
    bool Attach(HDC hdc);
    HDC Detach();
    void DeleteDC();
    bool IsPrinting() const { return m_bPrinting; }
    int GetDeviceCaps(int nIndex) const { return ::GetDeviceCaps(m_hAttribDC, nIndex); }

    int SetStretchBltMode(int nMode) { return ::SetStretchBltMode(m_hDC, nMode); }
    int SetBkMode(int nMode) { return ::SetBkMode(m_hDC, nMode); }
    int SetROP2(int nMode) { return ::SetROP2(m_hDC, nMode); }
    UINT SetTextAlign(UINT nFlags) { return ::SetTextAlign(m_hDC, nFlags); }
    COLORREF SetTextColor(COLORREF clr) { return ::SetTextColor(m_hDC, clr); }
    /// Logical point (0, 0) lies at device point (x, y) afterwards.
    void SetViewportOrg(int x, int y) { ::SetViewportOrgEx(m_hDC, x, y, nullptr); }

    COLORREF SetPixel(int x, int y, COLORREF clr) { return ::SetPixel(m_hDC, x, y, clr); }
    COLORREF GetPixel(int x, int y) const { return ::GetPixel(m_hDC, x, y); }
    void MoveTo(int x, int y) { ::MoveToEx(m_hDC, x, y, nullptr); }
    /// Draws up to the point and leaves out its own pixel.
    void LineTo(int x, int y) { ::LineTo(m_hDC, x, y); }
    void Polygon(const POINT* pPoints, int nCount) { ::Polygon(m_hDC, pPoints, nCount); }
    void Ellipse(const RECT& rc) { ::Ellipse(m_hDC, rc.left, rc.top, rc.right, rc.bottom); }
    void Rectangle(const RECT& rc) { ::Rectangle(m_hDC, rc.left, rc.top, rc.right, rc.bottom); }
    void FillRect(const RECT& rc, HBRUSH hBrush) { ::FillRect(m_hDC, &rc, hBrush); }
    void FillSolidRect(const RECT& rc, COLORREF clr);
    void DrawFocusRect(const RECT& rc) { ::DrawFocusRect(m_hDC, &rc); }
    bool TextOut(int x, int y, LPCWSTR lpszText, int nLength) { return ::TextOutW(m_hDC, x, y, lpszText, nLength) != FALSE; }
    /// Width and height of the text in the selected font, as if written straight; (0, 0) on failure.
    SIZE GetTextExtent(LPCWSTR lpszText, int nLength) const;
    /// The smallest rectangle round what can be painted; empty when nothing can.
    RECT GetClipBox() const;

    bool BitBlt(const RECT& rcDest, HDC hdcSource, POINT ptSource, DWORD dwRop = SRCCOPY);
    bool StretchBlt(const RECT& rcDest, HDC hdcSource, const RECT& rcSource, DWORD dwRop = SRCCOPY);
};

/// A window's client area, or the whole screen for a null pointer, for as long as the object lives. An object whose
/// window is gone gives a null context, never the screen's.
class CClientDC : public CDC {
public:
    explicit CClientDC(const CWnd* pWnd);
    ~CClientDC() override;

private:
    HWND m_hWnd;
};

/// A whole window with its caption and borders, origin at its top left corner.
class CWindowDC : public CDC {
public:
    explicit CWindowDC(HWND hWnd);
    ~CWindowDC() override;

private:
    HWND m_hWnd;
};

/// The painting of one WM_PAINT.
class CPaintDC : public CDC {
public:
    PAINTSTRUCT m_ps{};
    explicit CPaintDC(const CWnd* pWnd);
    ~CPaintDC() override;

private:
    HWND m_hWnd;
};

/// A context lent by the system for the length of a message; nothing is released.
class CBorrowedDC : public CDC {
public:
    explicit CBorrowedDC(HDC hdc) { Attach(hdc); }
    ~CBorrowedDC() override { Detach(); }
};

/// Keeps an object selected in a context and puts the one before back. Must go before object and context do.
class CSelectGuard {
public:
    CSelectGuard(HDC hdc, HGDIOBJ hObject);
    CSelectGuard(const CSelectGuard&) = delete;
    CSelectGuard& operator=(const CSelectGuard&) = delete;
    ~CSelectGuard();

private:
    HDC m_hDC;
    HGDIOBJ m_hOld;
};

/// Puts every mode, colour, selection and origin of a context back to what it was. Objects selected meanwhile must
/// outlive the guard.
class CSaveDC {
public:
    explicit CSaveDC(HDC hdc) : m_hDC(hdc), m_nSaved(::SaveDC(hdc)) {}
    CSaveDC(const CSaveDC&) = delete;
    CSaveDC& operator=(const CSaveDC&) = delete;
    ~CSaveDC() {
        if (m_nSaved != 0) {
            ::RestoreDC(m_hDC, m_nSaved);
        }
    }

private:
    HDC m_hDC;
    int m_nSaved;
};
