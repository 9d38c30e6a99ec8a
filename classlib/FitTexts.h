// Labels that are narrower than their text. Tested by: tests/e2e/ScreenTest.cpp
#pragma once

#include "classlib/Win.h"

/// Widens the labels, check boxes and radio buttons of a dialog whose text would be cut, as far to the right as nothing else
/// stands. How wide a text comes out is only known on the user's machine: templates count in units of the font that the system
/// was asked for, and it may give another.
void FitTexts(HWND hDlg);
