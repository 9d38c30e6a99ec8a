// Rows of a packed bitmap as 32-bit pixels, for composing.
// Tested by: tests/unit/core/PackedDibTest.cpp
#pragma once

#include <cstdint>

#include "core/PackedDib.h"

namespace width {

/// Writes every pixel of a readable picture as 0x00RRGGBB, row by row without gaps, bottom row first. A depth whose
/// pixels can't be read gives black.
/// pOut  room for Width() x Height() values
void ExpandToWords(const DibView& dib, std::uint32_t* pOut) noexcept;

}  // namespace width
