// What the host says of a picture.
// Tested by: tests/win/host/HostTest.cpp
#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace width::host {

/// All empty for no picture.
struct PictureTexts {
    std::wstring size;        ///< "640 x 480 pixels"
    std::wstring depth;       ///< "8 bits per pixel"
    std::wstring resolution;  ///< "300 dpi", "300 x 72 dpi" or "no resolution"
};

/// block  a packed bitmap; one that CheckPackedDib refuses counts as no picture
PictureTexts DescribePicture(std::span<const std::byte> block);

/// The file's name without its folders.
std::wstring FileTitle(const std::wstring& path);

}  // namespace width::host
