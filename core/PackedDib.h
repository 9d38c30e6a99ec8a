// The packed bitmap: the one image format of the system, explained here and referred to elsewhere.
//
// A packed bitmap is one block of memory: a 40-byte BITMAPINFOHEADER, a colour table for 8 bits per
// pixel and fewer, and the pixel rows, with no gaps.
//
//   offset 0    header, biSize 40
//   offset 40   colour table: biClrUsed entries, or 2 to the power biBitCount when that is 0; each
//               entry is blue, green, red and one byte that is not read. Above 8 bits per pixel
//               there is no table, whatever biClrUsed holds.
//   behind it   biHeight rows of Stride() bytes, bottom row first. A row is its pixels' bits
//               rounded up to whole 4-byte words.
//
//   biBitCount  pixel x of a row
//   1           bit 7 - (x mod 8) of byte x / 8, an index into the colour table
//   4           high half of byte x / 2 for even x, low half for odd x, an index
//   8           byte x, an index
//   24          bytes 3x, 3x + 1, 3x + 2: blue, green, red
//   32          bytes 4x, 4x + 1, 4x + 2: blue, green, red; byte 4x + 3 is not read
//   other       no pixel is read
//
// biPlanes, biCompression, biSizeImage and biClrImportant are never read: rows are always taken as
// uncompressed. Block rows count from the bottom: row s shows the picture's row biHeight - 1 - s.
// Tested by: tests/unit/core/PackedDibTest.cpp
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "core/Platform.h"

namespace width {

/// Why a block was refused, or Ok.
enum class DibStatus {
    Ok,
    TooShort,       ///< null, or shorter than a header
    BadHeaderSize,  ///< biSize is not 40
    BadDepth,       ///< biBitCount is 0 or above 255: no such depth exists
    BadSize,        ///< width or height is not positive
    TooLarge,       ///< a size, stride or pixel count that does not fit 32-bit arithmetic
    Truncated,      ///< the block ends before its colour table and rows do
};

/// One English sentence for a status, for a log or a terminal.
const char* DibStatusText(DibStatus status) noexcept;

/// What a header says, worked out once. Filled in only for an accepted block.
struct DibFigures {
    std::int32_t nWidth = 0;          ///< pixels, 1 or more
    std::int32_t nHeight = 0;         ///< rows, 1 or more
    std::uint16_t nBitCount = 0;      ///< bits per pixel, 1..255
    std::uint32_t nColors = 0;        ///< biClrUsed, or 1 << nBitCount when that is 0 (0 from 32 bits on)
    std::uint32_t nPalEntries = 0;    ///< entries in the colour table; 0 above 8 bits
    std::uint32_t nStride = 0;        ///< bytes from one row to the next
    std::size_t nBitsOffset = 0;      ///< where the rows begin, in bytes from the block's start
    std::size_t nBytes = 0;           ///< header, table and rows together
    std::int32_t nXPelsPerMeter = 0;  ///< pixels per metre, 0: not known
    std::int32_t nYPelsPerMeter = 0;
};

/// Bytes from one row to the next: the row's bits rounded up to whole 4-byte words.
/// nBitCount * nWidth + 31 must fit 32 bits, which CheckPackedDib has made sure of.
constexpr std::uint32_t DibStride(std::uint32_t nBitCount, std::uint32_t nWidth) noexcept {
    return ((nBitCount * nWidth + 31U) >> 3) & 0x1FFFFFFCU;
}

struct DibCheck {
    DibStatus status = DibStatus::TooShort;
    DibFigures figures;
};

/// The door: decides whether a block may be used as a picture. Every block that comes from outside
/// passes here once, and nothing behind this door tests sizes again.
/// block    the whole allocated block; may be empty; need not be aligned
/// returns  Ok and the figures, or why the block is refused. An accepted block holds all that its
///          header promises, W x H fits 31 bits, and so do the strides of the block and of a 24-bit
///          picture of its size. Never throws, never reads outside the block.
DibCheck CheckPackedDib(std::span<const std::byte> block) noexcept;

/// Red, green and blue of one pixel.
struct Colour {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    friend constexpr bool operator==(const Colour&, const Colour&) = default;
};

/// Read-only view of an accepted block. Does not own the block, which must outlive the view.
class DibView {
public:
    /// The view of a block that CheckPackedDib accepts, or nothing.
    static std::optional<DibView> Open(std::span<const std::byte> block) noexcept;

    const DibFigures& Figures() const noexcept { return m_figures; }
    std::int32_t Width() const noexcept { return m_figures.nWidth; }
    std::int32_t Height() const noexcept { return m_figures.nHeight; }
    std::uint16_t BitCount() const noexcept { return m_figures.nBitCount; }

    /// The bytes of block row nRow (0..Height() - 1, bottom row first), padding included.
    std::span<const std::uint8_t> Row(std::int32_t nRow) const noexcept {
        return {m_pBits + static_cast<std::size_t>(nRow) * m_figures.nStride, m_figures.nStride};
    }

    /// The colours of all indices that a pixel byte can hold. An index beyond the colour table is
    /// black, which is how the platform draws it.
    std::array<Colour, 256> Palette() const noexcept;

    /// Colour of one pixel; x in 0..Width() - 1, nRow a block row. For a depth without readable
    /// pixels the result is black. Slow: for single pixels only.
    Colour PixelAt(std::int32_t x, std::int32_t nRow) const noexcept;

private:
    DibView(const std::byte* pBlock, const DibFigures& figures) noexcept
        : m_figures(figures),
          m_pTable(reinterpret_cast<const std::uint8_t*>(pBlock) + sizeof(BITMAPINFOHEADER)),
          m_pBits(reinterpret_cast<const std::uint8_t*>(pBlock) + figures.nBitsOffset) {}

    DibFigures m_figures;
    const std::uint8_t* m_pTable;
    const std::uint8_t* m_pBits;
};

/// Depths whose pixels the analysis reads: 1, 4, 8, 24 and 32.
constexpr bool IsReadableDepth(std::uint16_t nBitCount) noexcept {
    return nBitCount == 1 || nBitCount == 4 || nBitCount == 8 || nBitCount == 24 || nBitCount == 32;
}

}  // namespace width
