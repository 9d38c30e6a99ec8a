// The texts of the status panes.
// Tested by: tests/unit/view/StatusTextTest.cpp
#pragma once

#include <string>

#include "core/PackedDib.h"
#include "view/Zoom.h"

namespace width {

/// "%d x %d": width and height in pixels.
std::wstring SizeText(const DibFigures& figures);

/// "Zoom: %d%%" / "缩放: %d%%", per cent truncated.
std::wstring ZoomText(Zoom zoom, bool bChinese);

/// "BPP: %d, Resolution: %d %d" / "BPP: %d, 分辨率: %d %d": bits per pixel and the header's pixels per metre.
std::wstring DepthText(const DibFigures& figures, bool bChinese);

}  // namespace width
