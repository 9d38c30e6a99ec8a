// The Windows Imaging Component behind ImageIo_win.cpp: reads PNG, JPEG, TIFF, GIF and the bitmap files that are not
// plain, writes all but bitmap files.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

#include "core/Platform.h"
// after core/Platform.h, which brings the platform in
#include <wincodec.h>

#include "imageio/Formats.h"
#include "imageio/PictureHead.h"

namespace width {

/// The thread's access to the system's components, for the object's life.
class ComScope {
public:
    ComScope() noexcept : m_nResult(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
    ~ComScope() {
        if (SUCCEEDED(m_nResult)) {
            CoUninitialize();
        }
    }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;

private:
    HRESULT m_nResult;
};

struct ReleaseCom {
    void operator()(IUnknown* pObject) const { pObject->Release(); }
};

/// Owner of one reference.
template <class Interface>
using Com = std::unique_ptr<Interface, ReleaseCom>;

/// Calls make with the place for a new object; an empty owner when that fails.
template <class Interface, class Make>
Com<Interface> MakeCom(const Make& make) {
    Interface* pObject = nullptr;
    const HRESULT nResult = make(&pObject);
    Com<Interface> owner(pObject);
    if (FAILED(nResult)) {
        owner.reset();
    }
    return owner;
}

/// The way to everything else; empty when the system has no imaging component. Within a ComScope.
Com<IWICImagingFactory> MakeWicFactory();

enum class WicFile { Bmp, Png, Jpeg, Tiff, Gif };

/// The format's name for error texts: "PNG" and the like.
const char* WicFileName(WicFile kind) noexcept;

/// Reads the first picture of a file. Within a ComScope.
/// file   all of its bytes
/// head   what the file says beside its pixels
LoadedPicture LoadWic(std::span<const std::byte> file, WicFile kind, const PictureHead& head);

/// How a format is written where it leaves a choice. The defaults are near the best for JPEG, whose blocks would move
/// edges, and small files for TIFF. A component may take such a wish and not follow it.
struct WicStyle {
    std::int32_t nJpegQuality = 95;  ///< 1..100
    WICTiffCompressionOption nTiffCompression = WICTiffCompressionLZW;
    bool bPngInterlaced = false;
};

/// Writes a block to an empty file. Within a ComScope.
/// kind      not Bmp, and one that can hold the picture
/// returns   a failure code of the component, or success, which does not say that every write went well: the file does
HRESULT SaveWic(NewFile& file, const SourceBlock& source, WicFile kind, const WicStyle& style);

/// Reads all rows of a file that was written from a block, and drops them. Within a ComScope.
/// returns   a failure code of the component, HRESULT_FROM_WIN32(ERROR_WRITE_FAULT) for a picture of another size, or success
HRESULT ReadBackWic(const std::filesystem::path& path, const DibView& view);

}  // namespace width
