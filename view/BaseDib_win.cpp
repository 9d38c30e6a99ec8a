// Tested by: tests/win/BaseDibTest.cpp
#include "view/BaseDib_win.h"

#include <malloc.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "measure/Composition_win.h"

namespace width {

void CBaseDib::Attach(void* pDib) {
    const std::size_t nBlock = _msize(pDib);
    const DibFigures figures = CheckPackedDib({static_cast<const std::byte*>(pDib), nBlock}).figures;
    m_pHeader = static_cast<std::uint8_t*>(pDib);
    m_nBitCount = static_cast<std::uint8_t>(figures.nBitCount);
    m_nColors = figures.nColors;
    m_nWidth = figures.nWidth;
    m_nHeight = figures.nHeight;
    m_nStride = figures.nStride;
    m_nPalEntries = figures.nPalEntries;
    m_pBits = m_pHeader + figures.nBitsOffset;

    const std::size_t nScratch =
        static_cast<std::size_t>(m_nHeight) * DibStride(24, static_cast<std::uint32_t>(m_nWidth)) + sizeof(BITMAPINFOHEADER);
    m_pCopy.reset(new (std::nothrow) std::uint8_t[nBlock]);
    m_pScratch.reset(new (std::nothrow) std::uint8_t[nScratch]);
    if (m_pCopy && m_pScratch) {
        std::memcpy(m_pCopy.get(), pDib, nBlock);
        std::memset(m_pScratch.get(), 0, nScratch);
    }
}

// The header goes to the system as far as it was checked, not as the block has it: a compression that nobody reads here
// must not make the system decode rows that aren't compressed.
void CBaseDib::Draw(CDC& dc) const {
    const auto dib = DibView::Open({reinterpret_cast<const std::byte*>(m_pHeader), m_pHeader != nullptr ? _msize(m_pHeader) : 0});
    if (!m_pCopy || !dib) {
        return;
    }
    const DrawingInfo info = DrawingInfoOf(*dib);
    const int nOldMode = dc.SetStretchBltMode(COLORONCOLOR);
    ::StretchDIBits(dc, 0, 0, m_nWidth, m_nHeight, 0, 0, m_nWidth, m_nHeight, m_pCopy.get() + dib->Figures().nBitsOffset,
                    info.Get(), DIB_RGB_COLORS, SRCCOPY);
    dc.SetStretchBltMode(nOldMode);
}

HPALETTE MakePalette(const DibView& dib) {
    struct {
        WORD palVersion = 0x300;
        WORD palNumEntries = 0;
        PALETTEENTRY palPalEntry[256]{};
    } palette;
    static_assert(offsetof(LOGPALETTE, palPalEntry) == 4);
    const std::uint32_t nEntries = std::min<std::uint32_t>(dib.Figures().nPalEntries, 256);
    if (nEntries == 0) {
        return nullptr;
    }
    palette.palNumEntries = static_cast<WORD>(nEntries);
    std::ranges::transform(dib.Palette(), palette.palPalEntry, [](Colour colour) {
        return PALETTEENTRY{colour.red, colour.green, colour.blue, 0};
    });
    return ::CreatePalette(reinterpret_cast<const LOGPALETTE*>(&palette));
}

HPALETTE CBaseDib::MakePalette() const {
    if (m_nBitCount > 8 || !m_pCopy) {
        return nullptr;
    }
    const auto dib = DibView::Open({reinterpret_cast<const std::byte*>(m_pCopy.get()), _msize(m_pHeader)});
    return dib ? width::MakePalette(*dib) : nullptr;
}

}  // namespace width
