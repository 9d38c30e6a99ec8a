// The passes of the skeleton in their plain form, each a scan over the whole map. For the plain way, tests and benchmarks.
// Tested by: tests/unit/analysis/SkeletonTest.cpp
#pragma once

#include <array>

#include "analysis/Skeleton.h"

namespace width {

/// The skeleton by the passes below, on whatever processor; what the fast way is measured against. Throws std::bad_alloc.
SkeletonMap MakeSkeletonPlainly(const DibView& dib, GreyWindow window);

/// Whether a colour's grey lies in the window, compared in doubles.
bool IsInside(Colour colour, GreyWindow window) noexcept;

/// 1 for each index of a picture with a colour table whose colour lies in the window, else 0.
using InsideTable = std::array<std::uint8_t, 256>;
InsideTable InsideByIndex(const DibView& dib, GreyWindow window) noexcept;

/// Sets the cell of every pixel to 1 if its grey lies in the window, else to 0.
/// mask  of the picture's size; a depth whose pixels can't be read leaves it as it is
void Binarise(const DibView& dib, GreyWindow window, SkeletonMap& mask) noexcept;

/// Distance of every foreground pixel from the background, as the smallest of four one-sided
/// city-block distances in bytes that wrap.
/// mask      1 for foreground, 0 for background
/// distance  of the same size, all 0; gets the distances. Throws std::bad_alloc.
void MeasureDistance(const SkeletonMap& mask, SkeletonMap& distance);

/// Marks the middle of every structure: ridges of the distance, flat 2 x 2 blocks, and the first of
/// two crest cells where a structure is an even number of cells wide.
/// ridge  gets 1 or 0 in every pixel's cell
void MarkRidges(const SkeletonMap& distance, SkeletonMap& ridge) noexcept;

/// Clears 2 x 2 blocks down to their first cell and gives back the cells that join something.
/// Throws std::bad_alloc.
void ReduceBlocks(SkeletonMap& ridge);

}  // namespace width
