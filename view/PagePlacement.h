// Where a picture lies on a printed page: as large as on the screen at 100 per cent, smaller if the page is, in the
// middle.
// Tested by: tests/unit/view/PagePlacementTest.cpp
#pragma once

#include <cstdint>

namespace width {

/// Dots per inch of a device, each axis by itself, 1 or more.
struct DotsPerInch {
    std::int32_t nX = 0;
    std::int32_t nY = 0;
};

/// The picture's rectangle, printer dots, counted from the corner of the printable area. An empty one has no size.
struct PagePlacement {
    std::int32_t nX = 0;
    std::int32_t nY = 0;
    std::int32_t nWidth = 0;
    std::int32_t nHeight = 0;
    friend constexpr bool operator==(const PagePlacement&, const PagePlacement&) = default;
};

/// The picture keeps the size in inches that it has on the screen. One that does not fit the page is reduced in proportion,
/// one that fits is never enlarged. Sizes are cut to whole dots; what is left over is halved, towards zero.
/// nImageWidth, nImageHeight  image pixels, 1 or more
/// nPageWidth, nPageHeight    printable area in printer dots, 0 or more
/// returns  a rectangle inside the page, without a size where a side would be less than half a dot, or more dots than 32
///          bits hold
PagePlacement PlaceOnPage(std::int32_t nImageWidth, std::int32_t nImageHeight, DotsPerInch screen, DotsPerInch printer,
                          std::int32_t nPageWidth, std::int32_t nPageHeight) noexcept;

}  // namespace width
