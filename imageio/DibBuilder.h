// Makes a packed bitmap piece by piece: sizes are settled and checked first, then memory is taken,
// then a reader fills in colours, resolution and rows. Rows are asked for in the picture's order,
// top row first, so that no format source has to think of the block's order.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "core/Platform.h"
#include "imageio/ImageIo.h"

namespace width {

/// No picture becomes a block larger than this, and no reader takes more than this at once beside
/// the block: 1 GiB.
constexpr std::uint64_t kMaxBlockBytes = std::uint64_t{1} << 30;

/// What files count resolutions in, for one pixel per metre.
constexpr double kInchesPerMeter = 1.0 / 0.0254;
constexpr double kCentimetersPerMeter = 100.0;

/// The level of shade i of a grey table of all levels of a depth: 0 is black, 255 white.
/// nBitCount 1, 2, 4 or 8; i in 0..2^nBitCount - 1.
constexpr std::uint8_t GreyLevel(std::uint32_t i, std::uint32_t nBitCount) noexcept {
    return static_cast<std::uint8_t>(i * 255U / ((1U << nBitCount) - 1U));
}

/// A level over white, by its alpha: 0 lets white through, 255 nothing.
constexpr std::uint8_t OverWhite(std::uint32_t nLevel, std::uint32_t nAlpha) noexcept {
    return static_cast<std::uint8_t>((nLevel * nAlpha + 255U * (255U - nAlpha) + 127U) / 255U);
}

/// A resolution as a header holds it: rounded to the nearest pixel per metre; 0 for one that is
/// not positive, not a number, or beyond 32 bits.
std::int32_t RoundedPelsPerMeter(double fPelsPerMeter) noexcept;

/// A failed read. text  one line in English, as LoadedPicture::error asks.
LoadedPicture Failed(std::string text);

class DibBuilder {
public:
    /// Takes a zeroed block for a header: table and rows as biBitCount, biClrUsed, biWidth and
    /// biHeight say. Every field of the header is kept as given.
    /// returns  an empty text, or why no such block can be; then the builder is not usable
    std::string Create(const BITMAPINFOHEADER& header);

    /// Takes a zeroed block for an uncompressed picture of nWidth x nHeight pixels.
    /// nBitCount  1, 4, 8, 24 or 32
    /// nEntries   entries of the colour table, at most 2^nBitCount are made; not read above 8 bits
    std::string Create(std::uint64_t nWidth, std::uint64_t nHeight, std::uint16_t nBitCount, std::uint32_t nEntries = 0);

    /// Sets entry i of the colour table, laid on white by its alpha. An entry that the table does not have is dropped.
    void SetColour(std::uint32_t i, std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::uint8_t alpha = 255) noexcept;

    /// Fills the table with all grey levels of a depth, black first, or white first when inverted.
    void SetGreyTable(std::uint32_t nBitCount, bool bInverted = false) noexcept;

    /// Resolution in pixels per metre, 0: not known.
    void SetResolution(std::int32_t nX, std::int32_t nY) noexcept;

    std::uint32_t Width() const noexcept { return m_nWidth; }
    std::uint32_t Height() const noexcept { return m_nHeight; }
    std::uint32_t Stride() const noexcept { return m_nStride; }

    /// The bytes of the colour table; empty above 8 bits per pixel.
    std::span<std::byte> Table() noexcept;

    /// All rows as the block holds them, bottom row first.
    std::span<std::byte> Bits() noexcept;

    /// The Stride() bytes of the picture's row y, counted from the top, 0..Height() - 1.
    std::uint8_t* Row(std::uint32_t y) noexcept;

    /// Hands the block over, once the door of the system has accepted it.
    LoadedPicture Finish();

private:
    std::vector<std::byte> m_block;
    std::uint32_t m_nWidth = 0;
    std::uint32_t m_nHeight = 0;
    std::uint32_t m_nStride = 0;
    std::uint32_t m_nEntries = 0;
    std::size_t m_nBitsOffset = 0;
};

}  // namespace width
