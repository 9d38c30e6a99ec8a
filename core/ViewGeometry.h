// Coordinate spaces of a zoomed, scrolled picture, and the arithmetic between them.
//
//   client   screen pixels from the top left of the window's client area, y down: mouse points
//   content  client point + scroll position
//   image    image pixels from the top left of the picture, y down
//   block    image pixels from the bottom left: row = H - 1 - image y
//   map      cell (r, c) of a SkeletonMap: r = block row + 2, c = x + 2
//
// ClientToImage rounds, ImageToClient truncates; the two are not inverses to the last pixel, and
// results rest on both being just so.
// Tested by: tests/unit/core/ViewGeometryTest.cpp
#pragma once

#include <optional>

#include "core/Platform.h"

namespace width {

/// Everything that the mapping between the spaces depends on.
struct ViewGeometry {
    std::int32_t nClientWidth = 0;  ///< client area, screen pixels
    std::int32_t nClientHeight = 0;
    std::int32_t nScrollX = 0;  ///< scroll position, content pixels
    std::int32_t nScrollY = 0;
    std::int32_t nImageWidth = 0;  ///< picture, image pixels; 0 x 0 stands for no picture
    std::int32_t nImageHeight = 0;
    std::int32_t nZoomNum = 1;  ///< zoom is nZoomNum / nZoomDen; both 1 or more
    std::int32_t nZoomDen = 1;
};

/// The geometry in which client points are image points: zoom 1/1, nothing scrolled, a client area
/// as large as the picture.
ViewGeometry UnitGeometry(std::int32_t nImageWidth, std::int32_t nImageHeight) noexcept;

/// Width and height of the zoomed picture in screen pixels.
std::int32_t ZoomedWidth(const ViewGeometry& geometry) noexcept;
std::int32_t ZoomedHeight(const ViewGeometry& geometry) noexcept;

/// Where the zoomed picture lies, in content coordinates: centred on an axis where it is smaller
/// than the client area, else starting at 0. All 0 without a picture.
RECT GetImageRect(const ViewGeometry& geometry) noexcept;

/// Whether a client point lies on the picture (right and bottom edges excluded).
bool IsOnImage(POINT ptClient, const ViewGeometry& geometry) noexcept;

/// The image pixel nearest to a client point: image space, rounded, not clamped, so a point beside
/// the picture gives a value outside 0..W - 1 or 0..H - 1.
POINT ClientToImage(POINT ptClient, const ViewGeometry& geometry) noexcept;

/// Where an image point lies in the client area, by single-precision scale factors, truncated
/// towards zero. The picture must not be empty.
POINT ImageToClient(POINT ptImage, const ViewGeometry& geometry) noexcept;

/// The image pixel in the middle of the client area, truncated, or nothing if the middle is not on
/// the picture.
std::optional<POINT> GetCentreImagePoint(const ViewGeometry& geometry) noexcept;

/// The scroll position that brings an image point to the middle of the client area, on each axis on
/// which the picture is larger than the area, else 0. May be negative or beyond the extent: the
/// scrolling itself keeps within its limits. (0, 0) means that there is nothing to scroll.
POINT ScrollTargetForCentre(POINT ptImage, const ViewGeometry& geometry) noexcept;

}  // namespace width
