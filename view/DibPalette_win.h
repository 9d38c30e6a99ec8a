// The system's form of a bitmap's colour table.
// Tested by: tests/win/DibPaletteTest.cpp
#pragma once

#include "core/PackedDib.h"
#include "core/Platform.h"

namespace width {

/// A logical palette of a bitmap's colour table, the caller's; null above 8 bits or on failure.
HPALETTE MakePalette(const DibView& dib);

}  // namespace width
