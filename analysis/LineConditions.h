// The conditions under which line detection accepts a line; the user sets them, and they outlive a job.
#pragma once

#include <cstdint>

namespace width {

struct LineConditions {
    std::int32_t nMinLineLength = 30;  ///< shortest accepted line, pixels; equal passes
    std::int32_t bRectAlgorithm = 1;   ///< 1: a hull edge that is too short hands over to the strip and its fit
    float fRectWidth = 3.0F;           ///< the strip must be narrower than this, pixels
};

}  // namespace width
