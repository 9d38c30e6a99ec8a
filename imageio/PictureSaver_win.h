// Saving with the format and its options named by the caller, and with a failure that a caller can put into words of
// its own. SavePicture of ImageIo.h is this with the format of the name's ending and English words.
// Tested by: tests/unit/imageio/ImageIoTest.cpp, tests/win/kestrix/KestrixTest.cpp
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <span>

#include "imageio/Wic_win.h"

namespace width {

enum class SaveFault {
    None,
    Bitmap,     ///< not a block that CheckPackedDib accepts
    Depth,      ///< pixels of that depth cannot be read
    Colours,    ///< more colours than the format holds
    Size,       ///< larger than the format holds
    Memory,     ///< not enough of it
    System,     ///< see nSystemError
    Component,  ///< the imaging component is missing or gives no reason
};

struct SaveResult {
    SaveFault fault = SaveFault::None;
    DWORD nSystemError = 0;  ///< with SaveFault::System
};

/// What a format cannot hold of a picture: Depth, Colours, Size, or None when it can.
SaveFault FaultOf(const DibView& view, WicFile kind) noexcept;

/// Writes a packed bitmap. The file is written beside its target and moved over it only when complete, so a failure, and
/// the end of the process, leave an existing file as it was. A file that may not be written is not replaced. Never throws.
/// block    one that CheckPackedDib accepts
SaveResult SavePictureAs(const std::filesystem::path& path, std::span<const std::byte> block, WicFile kind,
                         const WicStyle& style) noexcept;

/// Has an encoder make a new file, reads that back, and puts it in the target's place.
using Encoder = std::function<SaveResult(NewFile& file)>;
SaveResult SaveBy(const std::filesystem::path& path, const DibView& view, WicFile kind, const Encoder& encode);

}  // namespace width
