// Tested by: tests/unit/imageio/ImageIoTest.cpp, tests/win/kestrix/FullDiskTest.cpp
#include "imageio/PictureSaver_win.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <limits>
#include <memory>
#include <optional>
#include <vector>

#include "imageio/PlainBmp.h"

namespace width {

namespace {

constexpr SaveResult kDone{};

struct CloseFile {
    void operator()(std::FILE* pFile) const { std::fclose(pFile); }
};

SaveResult SystemFault(DWORD nError) noexcept {
    return nError == ERROR_SUCCESS ? SaveResult{SaveFault::Component, 0} : SaveResult{SaveFault::System, nError};
}

/// The component's answer as a fault: the system's own errors keep their number.
SaveResult FaultOf(HRESULT nResult) noexcept {
    if (SUCCEEDED(nResult)) {
        return kDone;
    }
    if (nResult == E_OUTOFMEMORY) {
        return {SaveFault::Memory, 0};
    }
    return HRESULT_FACILITY(nResult) == FACILITY_WIN32 ? SystemFault(static_cast<DWORD>(HRESULT_CODE(nResult)))
                                                       : SaveResult{SaveFault::Component, 0};
}

/// Gives a TIFF picture's colour table its 16-bit values. Some versions of the component leave their low bytes 0, and other
/// programs then read colours that are one level too dark. Both bytes are alike, so the byte order does not matter.
void StoreTiffColours(NewFile& file, const DibView& view) {
    std::vector<std::byte> bytes(static_cast<std::size_t>(file.Size()));
    file.Seek(0);
    bytes.resize(file.Read(bytes.data(), bytes.size()));
    const TiffTable table = FindTiffTable(bytes);
    const std::array<Colour, 256> colours = view.Palette();
    std::vector<std::uint8_t> values;
    for (const auto part : {&Colour::red, &Colour::green, &Colour::blue}) {
        for (std::size_t i = 0; i < table.nColours; ++i) {
            values.insert(values.end(), 2, i < colours.size() ? colours[i].*part : std::uint8_t{0});
        }
    }
    file.Seek(table.nOffset);
    file.Write(values.data(), values.size());
}

SaveResult Encode(NewFile& file, const SourceBlock& source, WicFile kind, const WicStyle& style) {
    if (kind == WicFile::Bmp) {
        return SaveBmp(file, source).empty() ? kDone : SaveResult{SaveFault::Component, 0};
    }
    const SaveResult result = FaultOf(SaveWic(file, source, kind, style));
    if (result.fault == SaveFault::None && kind == WicFile::Tiff && source.view.BitCount() <= 8) {
        StoreTiffColours(file, source.view);
    }
    return result;
}

/// Reads the finished file back: what the component says of its work is not proof enough to give up an old file.
SaveResult CheckFinished(const std::filesystem::path& path, const DibView& view, WicFile kind) {
    if (kind != WicFile::Bmp) {
        return FaultOf(ReadBackWic(path, view));
    }
    const std::unique_ptr<std::FILE, CloseFile> pFile(_wfopen(path.c_str(), L"rb"));
    if (pFile == nullptr) {
        return SystemFault(GetLastError());
    }
    const BmpHead head = ReadBmpHead(pFile.get());
    const bool bWhole = RefusalOf(head).empty() && head.info.biWidth == view.Width() && head.info.biHeight == view.Height();
    return bWhole ? kDone : SystemFault(ERROR_WRITE_FAULT);
}

}  // namespace

SaveResult SaveBy(const std::filesystem::path& path, const DibView& view, WicFile kind, const Encoder& encode) {
    const ComScope scope;
    NewFile file(path);
    SaveResult result;
    if (file.Create()) {
        result = encode(file);
    }
    if (result.fault == SaveFault::None && file.Finish()) {
        result = CheckFinished(file.Path(), view, kind);
    }
    if (result.fault == SaveFault::None) {
        file.Commit();
    }
    return file.Error() != ERROR_SUCCESS ? SystemFault(file.Error()) : result;  // an encoder's words say less
}

SaveFault FaultOf(const DibView& view, WicFile kind) noexcept {
    constexpr std::int32_t kMaxGifSide = std::numeric_limits<std::uint16_t>::max();
    constexpr std::int32_t kMaxJpegSide = 65500;
    if (!IsReadableDepth(view.BitCount())) {
        return SaveFault::Depth;
    }
    if (kind == WicFile::Gif && view.BitCount() > 8) {
        return SaveFault::Colours;
    }
    const std::int32_t nMaxSide = kind == WicFile::Gif ? kMaxGifSide : kMaxJpegSide;
    const bool bLimited = kind == WicFile::Gif || kind == WicFile::Jpeg;
    return bLimited && std::max(view.Width(), view.Height()) > nMaxSide ? SaveFault::Size : SaveFault::None;
}

SaveResult SavePictureAs(const std::filesystem::path& path, std::span<const std::byte> block, WicFile kind,
                         const WicStyle& style) noexcept {
    try {
        const std::optional<DibView> view = DibView::Open(block);
        if (!view.has_value()) {
            return {SaveFault::Bitmap, 0};
        }
        if (const SaveFault fault = FaultOf(*view, kind); fault != SaveFault::None) {
            return {fault, 0};
        }
        return SaveBy(path, *view, kind, [&](NewFile& file) { return Encode(file, {block, *view}, kind, style); });
    } catch (const std::exception&) {
        return {SaveFault::Memory, 0};
    }
}

}  // namespace width
