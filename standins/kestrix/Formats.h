// The library's formats: their numbers, names and extensions, what each can hold, and what their options mean.
// Tested by: tests/win/kestrix/KestrixTest.cpp
#pragma once

#include "api/Kestrix.h"
#include "imageio/PictureSaver_win.h"

namespace width::kestrix {

enum Format : std::int32_t { FORMAT_BMP, FORMAT_PNG, FORMAT_JPEG, FORMAT_TIFF, FORMAT_GIF, FORMAT_COUNT };

constexpr bool IsFormat(std::int32_t nFormat) noexcept {
    return nFormat >= 0 && nFormat < FORMAT_COUNT;
}

/// The view of a block that comes without its size: what its header says is taken for true. Nothing for a header that
/// can't be.
std::optional<DibView> OpenBlock(const void* pDib) noexcept;

/// Whether a format holds the picture without loss of pixels, JPEG but for what its blocks always cost: GIF up to 256
/// colours, JPEG grey levels of 8 bits and true colour, the others every depth that can be read.
bool CanHold(const DibView& view, std::int32_t nFormat) noexcept;

WicFile FileOf(std::int32_t nFormat) noexcept;

// Options. 0 is the default everywhere, so that a record of zeros asks for nothing special. bOption1 is left alone: it would
// keep the user from being asked before a file is replaced.

enum TiffPacking : std::uint32_t { TIFF_PACK_LZW = 0, TIFF_PACK_NONE = 1, TIFF_PACK_ZIP = 2 };

constexpr std::uint32_t kDefaultQuality = 95;
constexpr std::uint32_t kMaxQuality = 100;

/// JPEG: nOption0 is the quality 1..100, TIFF: a TiffPacking. PNG: bOption2 not 0 means interlaced.
FormatOptions DefaultOptions(std::int32_t nFormat) noexcept;

/// How to write what a save asks for; values out of range give the default.
WicStyle StyleOf(const SaveOptions& options) noexcept;

}  // namespace width::kestrix
