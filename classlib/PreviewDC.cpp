// Tested by: tests/win/ClasslibPreviewTest.cpp
#include "classlib/PreviewDC.h"

// A device without sheets, such as a screen, has its surface for one.
SIZE CPreviewDC::GetPaperSize() const {
    const int cx = GetDeviceCaps(PHYSICALWIDTH);
    const int cy = GetDeviceCaps(PHYSICALHEIGHT);
    return {cx > 0 ? cx : GetDeviceCaps(HORZRES), cy > 0 ? cy : GetDeviceCaps(VERTRES)};
}

POINT CPreviewDC::GetPrintOffset() const {
    return {GetDeviceCaps(PHYSICALOFFSETX), GetDeviceCaps(PHYSICALOFFSETY)};
}

void CPreviewDC::SetOutputDC(HDC hdc, const RECT& rcSheet) {
    m_hDC = hdc;
    const SIZE sizePaper = GetPaperSize();
    const POINT ptOffset = GetPrintOffset();
    ::SetMapMode(hdc, MM_ANISOTROPIC);
    ::SetWindowExtEx(hdc, sizePaper.cx, sizePaper.cy, nullptr);
    ::SetViewportExtEx(hdc, rcSheet.right - rcSheet.left, rcSheet.bottom - rcSheet.top, nullptr);
    ::SetWindowOrgEx(hdc, -ptOffset.x, -ptOffset.y, nullptr);
    ::SetViewportOrgEx(hdc, rcSheet.left, rcSheet.top, nullptr);
    ::IntersectClipRect(hdc, 0, 0, GetDeviceCaps(HORZRES), GetDeviceCaps(VERTRES));
}
