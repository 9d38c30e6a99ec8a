// Zoom steps by cross-multiplication, and Best Fit in single precision.
// Tested by: tests/unit/view/ZoomTest.cpp
#include "view/Zoom.h"

#include <algorithm>

#include "core/Arithmetic.h"

namespace width {

namespace {

// Whether a is strictly greater than b.
constexpr bool IsGreater(Zoom a, Zoom b) noexcept {
    return WrapMul(a.nNum, b.nDen) > WrapMul(a.nDen, b.nNum);
}

}  // namespace

std::optional<Zoom> NextZoomIn(Zoom zoom) noexcept {
    const auto it = std::ranges::find_if(kZoomTable, [&](Zoom entry) { return IsGreater(entry, zoom); });
    return it == kZoomTable.end() ? std::nullopt : std::optional(*it);
}

std::optional<Zoom> NextZoomOut(Zoom zoom) noexcept {
    const auto it = std::find_if(kZoomTable.rbegin(), kZoomTable.rend(), [&](Zoom entry) { return IsGreater(zoom, entry); });
    return it == kZoomTable.rend() ? std::nullopt : std::optional(*it);
}

Zoom BestFitZoom(std::int32_t nAreaWidth, std::int32_t nAreaHeight, std::int32_t nImageWidth,
                 std::int32_t nImageHeight) noexcept {
    const float fX = static_cast<float>(nAreaWidth) / static_cast<float>(nImageWidth);
    const float fY = static_cast<float>(nAreaHeight) / static_cast<float>(nImageHeight);
    const std::int32_t nPercent = TruncateToInt32(std::min(fX, fY) * 100.0F);
    if (nPercent < 5) {  // 20 * P < 100, without the product's overflow
        return {1, 20};
    }
    return nPercent > 1600 ? Zoom{16, 1} : Zoom{nPercent, 100};
}

std::int32_t ZoomPercent(Zoom zoom) noexcept {
    return WrapMul(zoom.nNum, 100) / zoom.nDen;
}

}  // namespace width
