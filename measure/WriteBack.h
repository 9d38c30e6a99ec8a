// A composed picture stored into a packed bitmap in the bitmap's own pixel format.
// Tested by: tests/unit/measure/WriteBackTest.cpp
#pragma once

#include <cstdint>
#include <functional>

#include "core/PackedDib.h"
#include "core/Platform.h"

namespace width {

/// Finds the index of the colour-table entry nearest to a colour.
using NearestIndex = std::function<std::uint32_t(COLORREF)>;

/// Stores every pixel into a block of 1, 4, 8 or 24 bits; any other depth stays as it is.
///
/// Up to 8 bits every pixel, changed or not, becomes the index that nearest gives for its colour, asked once for each
/// distinct colour and remembered; bits and bytes behind a row's last pixel stay. At 24 bits a
/// row's padding becomes 0. The colour table does not change.
/// figures   of the block, as CheckPackedDib gave them
/// pBits     the block's first row
/// pPixels   nWidth x nHeight pixels 0x00RRGGBB without gaps, bottom row first
/// Throws std::bad_alloc; rows stored until then stay.
void StorePixels(const DibFigures& figures, std::uint8_t* pBits, const std::uint32_t* pPixels, const NearestIndex& nearest);

}  // namespace width
