// Composing: rows expanded through tables, skeleton cells stored as pixels, lines by the system's own drawing.
// Tested by: tests/e2e/PluginTest.cpp
#include "measure/Composition_win.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "core/Expand.h"

namespace width {

namespace {

std::uint32_t PixelOf(COLORREF clr) noexcept {
    return (std::uint32_t{GetRValue(clr)} << 16) | (std::uint32_t{GetGValue(clr)} << 8) | GetBValue(clr);
}

// Cells that are set become pixels; rows of the map and of the surface both count from the bottom.
void DrawSkeleton(const SkeletonMap& map, std::uint32_t nPixel, std::uint32_t* pPixels) noexcept {
    const std::int32_t nWidth = map.Width();
    for (std::int32_t s = 0; s < map.Height(); ++s, pPixels += nWidth) {
        const std::uint8_t* pCells = map.Row(s + SkeletonMap::kBorder) + SkeletonMap::kBorder;
        for (std::int32_t x = 0; x < nWidth; ++x) {
            std::uint64_t nWord = 1;
            if (x + 8 <= nWidth) {
                std::memcpy(&nWord, pCells + x, sizeof nWord);
            }
            if (nWord == 0) {
                x += 7;  // most of a map is empty
            } else if (pCells[x] != 0) {
                pPixels[x] = nPixel;
            }
        }
    }
}

}  // namespace

void DrawDetectedLine(CDC& dc, const DetectedLine& line, COLORREF clrLine, std::int32_t nHeight) {
    const CPen pen(PS_SOLID, 1, clrLine);
    const CSelectGuard selected(dc, pen);
    dc.SetBkMode(OPAQUE);
    dc.MoveTo(line.ptFirst.x, nHeight - 1 - line.ptFirst.y);
    dc.LineTo(line.ptLast.x, nHeight - 1 - line.ptLast.y);
}

DrawingInfo DrawingInfoOf(const DibView& dib) {
    DrawingInfo info{};
    const DibFigures& figures = dib.Figures();
    info.header.biSize = sizeof info.header;
    info.header.biWidth = figures.nWidth;
    info.header.biHeight = figures.nHeight;
    info.header.biPlanes = 1;
    info.header.biBitCount = figures.nBitCount;
    if (figures.nBitCount <= 8) {
        const std::array<Colour, 256> palette = dib.Palette();
        info.header.biClrUsed = std::min<std::uint32_t>(figures.nPalEntries, 1U << figures.nBitCount);
        std::ranges::transform(palette, info.table, [](Colour colour) {
            return RGBQUAD{colour.blue, colour.green, colour.red, 0};
        });
    }
    return info;
}

bool CComposition::MakeSurface(const DibView& dib) {
    if (m_pPixels != nullptr && m_nWidth == dib.Width() && m_nHeight == dib.Height()) {
        return true;
    }
    m_selected.reset();
    m_pPixels = nullptr;
    // The system forms a section's size with 32 bits; one that does not fit would be made too small.
    if (std::int64_t{4} * dib.Width() * dib.Height() > std::numeric_limits<std::int32_t>::max()) {
        return false;
    }
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = dib.Width();
    info.bmiHeader.biHeight = dib.Height();
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* pBits = nullptr;
    if ((m_dc.GetSafeHdc() == nullptr && !m_dc.CreateCompatibleDC(nullptr)) || !m_offBitmap.CreateDIBSection(&info, &pBits)) {
        return false;
    }
    m_selected.emplace(m_dc, m_offBitmap);
    m_pPixels = static_cast<std::uint32_t*>(pBits);
    m_nWidth = dib.Width();
    m_nHeight = dib.Height();
    m_bValid = false;
    return true;
}

bool CComposition::Compose(const DibView& dib, const Overlays& overlays) {
    if (!MakeSurface(dib)) {
        return false;
    }
    if (m_bValid) {
        return true;
    }
    ::GdiFlush();  // what the system still has to draw must not land on what follows
    if (IsReadableDepth(dib.BitCount())) {
        ExpandToWords(dib, m_pPixels);
    } else {
        const DrawingInfo info = DrawingInfoOf(dib);
        ::StretchDIBits(m_dc, 0, 0, m_nWidth, m_nHeight, 0, 0, m_nWidth, m_nHeight, dib.Row(0).data(), info.Get(), DIB_RGB_COLORS,
                        SRCCOPY);
        ::GdiFlush();
    }
    if (overlays.pSkeleton != nullptr) {
        DrawSkeleton(*overlays.pSkeleton, PixelOf(overlays.clrSkeleton), m_pPixels);
    }
    for (const DetectedLine& line : overlays.lines) {
        DrawDetectedLine(m_dc, line, overlays.clrLine, m_nHeight);
    }
    if (overlays.pLabels != nullptr) {
        const DibFigures& figures = dib.Figures();
        DrawLabels(m_dc, *overlays.pLabels, overlays.pattern, {figures.nXPelsPerMeter, figures.nYPelsPerMeter});
    }
    m_bValid = true;
    return true;
}

}  // namespace width
