// Bitmap files as far as no library is needed: their head, the plain kind, and writing. A plain file (40-byte header,
// uncompressed, bottom-up) is a packed bitmap behind a 14-byte file header and becomes the block as it stands.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "imageio/Formats.h"

namespace width {

struct BmpHead {
    std::uint64_t nFileBytes = 0;
    std::uint32_t nBitsOffset = 0;         // bfOffBits
    BITMAPINFOHEADER info{};               // as far as the file has it, sizes filled in for the old kind too
    std::array<std::uint32_t, 3> masks{};  // of red, green and blue; only bit-field files have them
};

/// Reads the head of a file that is positioned at its start.
BmpHead ReadBmpHead(std::FILE* pFile);

/// Why the file cannot hold the picture that its head promises, judged before memory is taken for it; empty when it can.
std::string RefusalOf(const BmpHead& head);

/// Whether LoadPlainBmp reads the file.
bool IsPlain(const BmpHead& head);

/// Reads a plain file. head  of that file, not refused
LoadedPicture LoadPlainBmp(std::FILE* pFile, const BmpHead& head);

}  // namespace width
