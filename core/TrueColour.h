// Any readable picture as a 24-bit one, for drawing over it.
// Tested by: tests/unit/core/PackedDibTest.cpp
#pragma once

#include <cstddef>
#include <vector>

#include "core/PackedDib.h"

namespace width {

/// A packed bitmap of 24 bits with the picture's size, resolution and colours. A depth whose pixels
/// can't be read gives a black picture. Throws std::bad_alloc.
std::vector<std::byte> ToTrueColour(const DibView& dib);

/// Bytes of the pixel at image point (x, y), y from the top, in a block made by ToTrueColour: blue,
/// green, red. The point must lie in the picture.
std::byte* TrueColourPixel(std::vector<std::byte>& block, const DibFigures& figures, std::int32_t x, std::int32_t y) noexcept;

}  // namespace width
