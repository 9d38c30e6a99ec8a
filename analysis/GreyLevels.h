// Automatic threshold: the grey level that splits a picture into two halves of about equal size.
// Tested by: tests/unit/analysis/GreyLevelsTest.cpp
#pragma once

#include <cstdint>

#include "analysis/fast/InstructionSet.h"
#include "core/PackedDib.h"

namespace width {

/// Grey level of a colour for the threshold, 0..255: ((0.3 R + 0.59 G) + 0.11 B) in double
/// precision, truncated. The doubles are part of the result: 128, 128, 128 gives 127.
/// The skeleton has a formula of its own (SkeletonGrey), with other coefficients and untruncated.
std::uint8_t ThresholdGrey(Colour colour) noexcept;

/// Proposes the upper limit of an automatic grey window 0..result: the level at which the running
/// total of the grey histogram passes half of the pixels, or the level below it, whichever is
/// nearer to the half; a tie goes to the upper one.
/// pDib     the picture, or null
/// returns  -1 without a picture, 0 for a depth whose pixels can't be read (16, say), else 0..255
std::int32_t CalcAutoThreshold(const DibView* pDib) noexcept;

/// The same by given instructions, which the processor must have; the result is the same with any.
std::int32_t CalcAutoThreshold(const DibView* pDib, fast::InstructionSet set) noexcept;

}  // namespace width
