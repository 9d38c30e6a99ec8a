// The automatic threshold pixel by pixel, for comparison. Slow on purpose.
#pragma once

#include <cstdint>

#include "core/PackedDib.h"

namespace width::test {

std::int32_t LiteralThreshold(const DibView& dib);

}  // namespace width::test
