// Picture files to packed bitmaps and back: one interface, over well-kept libraries on
// Linux, one for each format, and over the system's imaging component on Windows.
//
// Depth is kept where a packed bitmap can hold it: 1, 4 and 8 bits with the file's own colour table
// in its own order, 24 bits otherwise, 32 bits for a bitmap file that has them. Two-bit pictures
// become 4 bits, grey pictures get a grey table of all levels of their depth, 16-bit samples keep
// their high byte. What is transparent is composited over white: pixels of an alpha channel or of a
// colour that the file hides, and entries of a colour table, which keep their places. Rows stay in the
// order in which they are stored, whatever a file says of its orientation. Resolution in both axes goes into biXPelsPerMeter and
// biYPelsPerMeter, rounded to the nearest pixel per metre; a file without one, and one whose resolution has no unit, gives 0. A
// bitmap file of such a depth, uncompressed and bottom-up, becomes the block as it stands, header values, colour table and all,
// whatever the length of its header.
//
// The Windows source goes as far as the system's imaging component: it reads no TIFF pictures of more
// than 4 GiB (BigTIFF), nor those that the component does not know, and says so; it saves a resolution only when both axes have
// one and into JPEG in whole dots per inch, and a GIF picture may come back with a larger table than it was saved with. Tested
// by: tests/unit/imageio/ImageIoTest.cpp
#pragma once

#include <cstddef>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace width {

/// A picture that was read, or why it was not.
struct LoadedPicture {
    std::vector<std::byte> block;  ///< a packed bitmap that CheckPackedDib accepts; empty on failure
    std::string error;             ///< empty on success, else one line in English without the file's name
};

/// Reads BMP (all kinds), PNG, JPEG, TIFF and GIF (their first picture), told apart by content and
/// not by name. Never throws for bad input: a damaged, truncated, hostile or foreign file comes
/// back as an error. A picture whose block would be refused by CheckPackedDib, or would take more
/// than 1 GiB, is refused before memory is taken for it.
LoadedPicture LoadPicture(const std::filesystem::path& path);

/// Writes a packed bitmap in the format that the name's ending asks for (.bmp, .png, .tif, .tiff,
/// .gif, .jpg, .jpeg, in any case), with depth and resolution where the format has a place for
/// them; 32 bits stay 32 in BMP and become 24 elsewhere. JPEG takes any readable depth and is lossy;
/// GIF takes 8 bits and fewer. The file is written beside its target and moved over it only when
/// complete, so a failure leaves an existing file as it was. Never throws.
/// block    one that CheckPackedDib accepts, of a depth of 1, 4, 8, 24 or 32
/// returns  an empty text on success, else one line in English without the file's name
std::string SavePicture(const std::filesystem::path& path, std::span<const std::byte> block);

}  // namespace width
