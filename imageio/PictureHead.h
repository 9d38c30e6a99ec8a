// What a file says of its picture beside the pixels, for a platform whose library does not tell it: a resolution that
// the file really has, and whether the file is whole.
//
// The readers take a file's bytes, whatever they are, and never look beyond them. What is missing or makes no sense
// counts as not there.
// Tested by: tests/unit/imageio/PictureHeadTest.cpp
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace width {

struct PictureHead {
    std::int32_t nXPelsPerMeter = 0;  ///< pixels per metre, rounded; 0: not known
    std::int32_t nYPelsPerMeter = 0;
    bool bWhole = true;           ///< PNG, JPEG: the picture's end mark is there; TIFF: so are all of its strips or tiles
    bool bGrey = false;           ///< PNG: grey levels, with or without alpha
    bool bCommonPacking = true;   ///< TIFF: rows are packed in a way that every reader unpacks
    std::uint16_t nFileBits = 0;  ///< BMP: bits per pixel in the file
};

PictureHead ReadPngHead(std::span<const std::byte> file) noexcept;
PictureHead ReadJpegHead(std::span<const std::byte> file) noexcept;
PictureHead ReadTiffHead(std::span<const std::byte> file) noexcept;

/// Where the colour table of a TIFF picture lies: all reds, all greens, all blues, 16 bits each.
struct TiffTable {
    std::size_t nOffset = 0;   ///< in bytes from the file's start
    std::size_t nColours = 0;  ///< 0: there is no table, or it does not lie in the file
};
TiffTable FindTiffTable(std::span<const std::byte> file) noexcept;

}  // namespace width
