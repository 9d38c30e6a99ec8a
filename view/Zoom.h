// The zoom table, its steps, and the arithmetic of Best Fit.
// Tested by: tests/unit/view/ZoomTest.cpp
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace width {

/// A zoom factor nNum / nDen, both positive. Fractions are compared by cross-multiplication, so
/// 50/100 is the same zoom as 1/2, though not the same fraction.
struct Zoom {
    std::int32_t nNum = 1;
    std::int32_t nDen = 1;
    friend constexpr bool operator==(const Zoom&, const Zoom&) = default;
};

/// The 23 steps in ascending order, 1/20 to 16/1. There is no 9/1 and no 11/1.
inline constexpr std::array<Zoom, 23> kZoomTable = {{{1, 20}, {1, 8},  {1, 4},  {1, 3},  {1, 2},  {2, 3},  {3, 4}, {4, 5},
                                                     {1, 1},  {3, 2},  {2, 1},  {3, 1},  {4, 1},  {5, 1},  {6, 1}, {7, 1},
                                                     {8, 1},  {10, 1}, {12, 1}, {13, 1}, {14, 1}, {15, 1}, {16, 1}}};

/// The first table entry strictly greater than a zoom, or none.
std::optional<Zoom> NextZoomIn(Zoom zoom) noexcept;

/// The last table entry strictly smaller than a zoom, or none.
std::optional<Zoom> NextZoomOut(Zoom zoom) noexcept;

/// The zoom at which a picture just fits an area, in whole per cent, truncated: P/100, not reduced;
/// 1/20 below 5 per cent and 16/1 above 1600.
/// nAreaWidth, nAreaHeight    screen pixels, without scroll bars
/// nImageWidth, nImageHeight  image pixels, 1 or more
Zoom BestFitZoom(std::int32_t nAreaWidth, std::int32_t nAreaHeight, std::int32_t nImageWidth, std::int32_t nImageHeight) noexcept;

/// What the status bar shows: per cent, truncated.
std::int32_t ZoomPercent(Zoom zoom) noexcept;

}  // namespace width
