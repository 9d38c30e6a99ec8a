// The picture with its overlays at one image pixel a pixel: what a paint stretches to the screen.
//
// Image and skeleton are memory work on a 32-bit section of the image's size, lines and labels are drawn on it by the
// system. It is made again when what it shows has changed, and kept for scrolling, exposing and zooming.
// Tested by: tests/e2e/PluginTest.cpp
#pragma once

#include <span>

#include "analysis/LineStore.h"
#include "classlib/Gdi.h"
#include "core/PackedDib.h"
#include "core/SkeletonMap.h"
#include "measure/LabelDrawing_win.h"

namespace width {

/// What is drawn over the image, bottom to top. Nothing is owned.
struct Overlays {
    const SkeletonMap* pSkeleton = nullptr;  ///< null: not shown
    COLORREF clrSkeleton = 0;
    std::span<const DetectedLine> lines;
    COLORREF clrLine = 0;
    const LabelList* pLabels = nullptr;  ///< null: none
    LabelPattern pattern;

    bool AreEmpty() const { return pSkeleton == nullptr && lines.empty() && (pLabels == nullptr || pLabels->m_nCurLabel == 0); }
};

/// Draws a detected line on a surface of image pixels, from its first end up to its last, which is left out.
/// nHeight  of the image: the line's rows count from the bottom
void DrawDetectedLine(CDC& dc, const DetectedLine& line, COLORREF clrLine, std::int32_t nHeight);

/// A header and colour table that describe a block to the system's drawing and hold nothing else of what the block's
/// own header says: sizes and depth are those that were checked, uncompressed, bottom-up, 256 entries at most.
struct DrawingInfo {
    BITMAPINFOHEADER header;
    RGBQUAD table[256];
    const BITMAPINFO* Get() const { return reinterpret_cast<const BITMAPINFO*>(this); }
};
DrawingInfo DrawingInfoOf(const DibView& dib);

class CComposition {
public:
    /// What it shows is no longer right.
    void Invalidate() { m_bValid = false; }

    /// Brings the surface up to date. False if it can't be made; there is then no surface.
    bool Compose(const DibView& dib, const Overlays& overlays);

    /// A memory context that holds the surface, 0 x 0 to width x height. Only after Compose gave true.
    const CDC& Surface() const { return m_dc; }

    /// The surface's pixels, 0x00RRGGBB without gaps, bottom row first; the top byte is undefined. Only after Compose
    /// gave true, and only until the next call of it.
    const std::uint32_t* Pixels() const {
        ::GdiFlush();
        return m_pPixels;
    }

private:
    bool MakeSurface(const DibView& dib);

    CDC m_dc;
    CBitmap m_offBitmap;
    std::optional<CSelectGuard> m_selected;  // goes before the bitmap
    std::uint32_t* m_pPixels = nullptr;      // bottom row first, as in the block
    std::int32_t m_nWidth = 0;
    std::int32_t m_nHeight = 0;
    bool m_bValid = false;
};

}  // namespace width
