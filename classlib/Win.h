// The way every file of this folder reaches the system: windows.h and the common controls, without the
// min and max macros. Tested by: every test in tests/win.
#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
// after windows.h
#include <commctrl.h>

/// The point that a mouse message packs into its long parameter: two signed 16-bit halves.
inline POINT PointFromLParam(LPARAM lParam) {
    const auto nBits = static_cast<DWORD_PTR>(lParam);
    return {static_cast<SHORT>(LOWORD(nBits)), static_cast<SHORT>(HIWORD(nBits))};
}
