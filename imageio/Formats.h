// What the format sources offer to the dispatch in ImageIo.cpp, and what they share.
//
// A reader gets a regular file opened for reading, positioned at its start, which it leaves open and which
// no other code may read meanwhile. A writer gets an empty one; what became of its writes is the file's to
// tell. Errors are single lines in English without the file's name; an empty text is success.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>

#include "core/PackedDib.h"
#include "imageio/DibBuilder.h"
#include "imageio/ImageIo.h"
#include "imageio/NewFile.h"

namespace width {

LoadedPicture LoadBmp(std::FILE* pFile);
LoadedPicture LoadPng(std::FILE* pFile);
LoadedPicture LoadJpeg(std::FILE* pFile);
LoadedPicture LoadTiff(std::FILE* pFile);
LoadedPicture LoadGif(std::FILE* pFile);

/// A block to be written, and the view of it. The block may be longer than the view's figures say.
struct SourceBlock {
    std::span<const std::byte> block;
    DibView view;
};

std::string SaveBmp(NewFile& file, const SourceBlock& source);
std::string SavePng(NewFile& file, const SourceBlock& source);
std::string SaveJpeg(NewFile& file, const SourceBlock& source);
std::string SaveTiff(NewFile& file, const SourceBlock& source);
std::string SaveGif(NewFile& file, const SourceBlock& source);

/// Has a writer make a new file, reads that back, and puts it in the target's place.
using Saver = std::string (*)(NewFile& file, const SourceBlock& source);
std::string SaveBy(const std::filesystem::path& path, const SourceBlock& source, Saver save);

/// A sentence and a library's own words as one printable line of reasonable length.
std::string WithDetail(const char* pSentence, const std::string& detail);

/// Size of the file in bytes; 0 when the system does not tell.
std::uint64_t FileBytes(std::FILE* pFile) noexcept;

/// Whether the file can unpack to nUnits of its format's making, when a byte of it gives nPerByte of
/// them at most. Judged before memory is taken, so that a tiny file cannot ask for a huge picture.
bool CanUnpackTo(std::FILE* pFile, std::uint64_t nUnits, std::uint64_t nPerByte) noexcept;

/// What a reader says of a file that cannot.
constexpr const char* kEndsEarly = "it ends before its rows do";

/// The picture's row y, counted from the top.
std::span<const std::uint8_t> PictureRow(const DibView& view, std::uint32_t y) noexcept;

/// Copies the picture's row y, counted from the top, as red, green, blue bytes.
/// view      of 24 or 32 bits per pixel
/// pTarget   room for three bytes a pixel
void CopyRgbRow(const DibView& view, std::uint32_t y, std::uint8_t* pTarget) noexcept;

/// Copies the picture's row y, counted from the top, as one index a byte.
/// view      of 1, 4 or 8 bits per pixel
/// pTarget   room for one byte a pixel
void CopyIndexRow(const DibView& view, std::uint32_t y, std::uint8_t* pTarget) noexcept;

/// Packs nWidth indices into a block's row of nBits bits per pixel (1, 4 or 8), whose bytes are zero.
/// Bits of an index above the depth are dropped.
template <class Index>
void PackIndexRow(const Index* pIndices, std::uint32_t nWidth, std::uint32_t nBits, std::uint8_t* pTarget) noexcept {
    const std::uint32_t nPerByte = 8 / nBits;
    const std::uint32_t nMask = (1U << nBits) - 1U;
    for (std::uint32_t x = 0; x < nWidth; ++x) {
        const std::uint32_t nShift = nBits * (nPerByte - 1 - x % nPerByte);
        const std::uint32_t nByte = pTarget[x / nPerByte] | ((pIndices[x] & nMask) << nShift);
        pTarget[x / nPerByte] = static_cast<std::uint8_t>(nByte);
    }
}

/// Turns a row of two-bit pixels into four-bit pixels: nWidth indices, the same values.
void WidenTwoBitRow(const std::uint8_t* pSource, std::uint32_t nWidth, std::uint8_t* pTarget) noexcept;

/// Exchanges the first and third of every three bytes, in place: nWidth pixels.
void SwapRedAndBlue(std::uint8_t* pRow, std::uint32_t nWidth) noexcept;

/// Whether the colour table is that of all grey levels of the block's depth, in ascending order,
/// or in descending order when inverted.
bool HasGreyTable(const DibView& view, bool bInverted) noexcept;

/// The entries of the colour table to write: those of the block, or all of its depth when a pixel lies beyond them, which
/// some formats forbid.
/// view  of 1, 4 or 8 bits per pixel
std::uint32_t EntriesInUse(const DibView& view);

}  // namespace width
