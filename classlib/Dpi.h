// The resolution that a window is drawn for. Lengths in the code are pixels at 96 dots per inch and are scaled where they are
// used. The program decides whether it wants to know of another resolution at all. Tested by: tests/e2e/ScreenTest.cpp
#pragma once

#include "classlib/Win.h"

constexpr int kDefaultDpi = 96;

/// Dots per inch at a window's place, or of the whole screen on systems before per-monitor resolutions.
int DpiOf(HWND hWnd);

/// A length at 96 dots per inch, in pixels at another resolution.
inline int ScaleToDpi(int nLength, int nDpi) {
    return ::MulDiv(nLength, nDpi, kDefaultDpi);
}
