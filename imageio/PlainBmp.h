// Bitmap files as far as no library is needed: their head, the plain kind, and writing. A picture's header has 12 bytes,
// or 16 and more. All of them lead to the fields of one of 40 bytes, and the longer ones to nothing else that a picture
// needs, so that libraries only ever see that length. A plain file (uncompressed, bottom-up, of a depth that a block has)
// is a packed bitmap behind a 14-byte file header.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "imageio/Formats.h"

namespace width {

struct BmpHead {
    std::uint64_t nFileBytes = 0;
    std::uint32_t nBitsOffset = 0;         // bfOffBits
    std::uint32_t nHeaderBytes = 0;        // of the picture's header in the file
    BITMAPINFOHEADER info{};               // what that says, in 40 bytes; 0 where it is shorter
    std::array<std::uint32_t, 3> masks{};  // of red, green and blue; only bit-field files have them
};

/// Reads the head of a file that is positioned at its start.
BmpHead ReadBmpHead(std::FILE* pFile);

/// Why the file cannot hold the picture that its head promises, judged before memory is taken for it, or cannot be read
/// by anybody here; empty when it can.
std::string RefusalOf(const BmpHead& head);

/// Whether LoadPlainBmp reads the file.
bool IsPlain(const BmpHead& head);

/// Reads a plain file. head  of that file, not refused
LoadedPicture LoadPlainBmp(std::FILE* pFile, const BmpHead& head);

/// The bytes of a file of another kind as they would be with a header of 40 bytes; none when it cannot be read.
/// head  of that file, not refused
std::optional<std::vector<std::byte>> ReadWithOrdinaryHeader(std::FILE* pFile, const BmpHead& head);

}  // namespace width
