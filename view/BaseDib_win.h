// CBaseDib: short-lived accessor of the job's packed bitmap: its figures and a logical palette of its colours.
// Tested by: tests/win/BaseDibTest.cpp
#pragma once

#include <cstddef>
#include <memory>

#include "classlib/Gdi.h"
#include "core/PackedDib.h"

namespace width {

/// A logical palette of a bitmap's colour table, the caller's; null above 8 bits or on failure.
HPALETTE MakePalette(const DibView& dib);

/// Made for the time of one operation. Everything is 0 and null before Attach. The attached block is not owned and must
/// be one that CheckPackedDib accepts.
class CBaseDib {
public:
    CBaseDib() = default;
    CBaseDib(const CBaseDib&) = delete;
    CBaseDib& operator=(const CBaseDib&) = delete;
    virtual ~CBaseDib() = default;

    /// Takes the figures of a block, a private copy of the whole allocated block, and a zeroed scratch area for a
    /// 40-byte header and a 24-bit picture of the same size. To be called once. If memory runs out the figures are right
    /// all the same, and copy or scratch area may be null.
    void Attach(void* pDib);

    /// Paints the private copy one to one at (0, 0), with header and colour table of the attached block.
    void Draw(CDC& dc) const;

    /// A logical palette of the private copy's colour table, the caller's; null above 8 bits or on failure.
    HPALETTE MakePalette() const;

    std::uint8_t* Scratch() const { return m_pScratch.get(); }
    std::uint8_t* Bits() const { return m_pBits; }  ///< first row of the attached block itself: writing changes the image

    std::uint8_t m_nBitCount = 0;
    std::uint32_t m_nColors = 0;  ///< biClrUsed, or 1 shifted left by m_nBitCount when that is 0
    std::int32_t m_nWidth = 0;
    std::int32_t m_nHeight = 0;
    std::uint32_t m_nStride = 0;
    std::uint32_t m_nPalEntries = 0;  ///< m_nColors for 8 bits and fewer, else 0

private:
    std::unique_ptr<std::uint8_t[]> m_pScratch;
    std::uint8_t* m_pHeader = nullptr;  // not owned
    std::unique_ptr<std::uint8_t[]> m_pCopy;
    std::uint8_t* m_pBits = nullptr;  // not owned
};

}  // namespace width
