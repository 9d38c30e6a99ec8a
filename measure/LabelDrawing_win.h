// Dimension labels drawn by the system: stored ones with their text on a surface of image pixels, and the rubber label
// that follows the mouse, on the window.
// Tested by: tests/e2e/MeasureTest.cpp
#pragma once

#include "classlib/Gdi.h"
#include "measure/LabelLayout.h"
#include "measure/Width.h"

namespace width {

/// How labels look. The font is not owned.
struct LabelPattern {
    COLORREF clrLabel = 0;
    HFONT hFont = nullptr;
};

/// Draws the labels in force, the first one first, each with its lines and then its text. Image coordinates.
void DrawLabels(CDC& dc, const LabelList& labels, const LabelPattern& pattern, Resolution resolution);

/// Draws the rubber label of four ends and two feet in client coordinates so that drawing it once more restores every
/// pixel. Has no text.
void DrawRubberLabel(CDC& dc, const PickedEnds& ends, POINT ptFoot1, POINT ptFoot2, COLORREF clrLabel);

/// The mark of a picked end: a small red circle and a number below it. Client coordinates.
void DrawPickMark(CDC& dc, POINT pt, std::int32_t nNumber);

/// The square that shows where a click would look for ends, drawn so that drawing it once more restores every pixel.
void DrawSearchSquare(CDC& dc, const RECT& rc);

}  // namespace width
