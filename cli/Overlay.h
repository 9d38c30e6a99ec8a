// A measurement drawn into a copy of its picture.
// Tested by: tests/e2e/LinewidthTest.cpp
#pragma once

#include <cstddef>
#include <vector>

#include "analysis/LineStore.h"
#include "core/PackedDib.h"
#include "measure/Width.h"

namespace width {

/// The picture at 24 bits with the skeleton in green, the detected lines in red and, if there is a
/// label, its segment between the feet in blue, in this order.
/// pFeet   feet in image coordinates, or null; parts outside the picture are left out
std::vector<std::byte> DrawOverlay(const DibView& dib, const SkeletonMap& map, const std::vector<DetectedLine>& lines,
                                   const LabelEntry* pFeet);

}  // namespace width
