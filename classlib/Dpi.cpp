// Tested by: tests/e2e/ScreenTest.cpp
#include "classlib/Dpi.h"

#include "classlib/Gdi.h"

int DpiOf(HWND hWnd) {
    using DpiFunction = UINT(WINAPI*)(HWND);  // of Windows 10
    static const auto pfnDpi = reinterpret_cast<DpiFunction>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"user32"), "GetDpiForWindow")));
    const UINT nDpi = pfnDpi != nullptr ? pfnDpi(hWnd) : 0;
    return nDpi != 0 ? static_cast<int>(nDpi) : CClientDC(nullptr).GetDeviceCaps(LOGPIXELSX);
}
