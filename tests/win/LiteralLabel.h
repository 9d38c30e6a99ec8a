// Labels drawn word for word as they are meant to look, by plain system calls, for comparison with the system's own drawing.
#pragma once

#include <windows.h>

#include "measure/Width.h"

namespace width::test {

/// Draws the labels in force in image pixels. clr  of lines, arrows and text
void DrawLabelsLiterally(HDC hdc, const LabelList& labels, COLORREF clr, const LOGFONTW& font, Resolution resolution);

}  // namespace width::test
