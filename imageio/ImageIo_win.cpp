// The Windows source of picture files: chooses the format, by content for reading and by the name's ending for writing,
// and takes care of the file itself. Plain bitmap files go through PlainBmp.h, everything else through the system's
// imaging component.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#include <io.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <memory>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

#include "imageio/ImageIo.h"
#include "imageio/PictureSaver_win.h"
#include "imageio/PlainBmp.h"
#include "imageio/Wic_win.h"

namespace width {

namespace {

struct CloseFile {
    void operator()(std::FILE* pFile) const { std::fclose(pFile); }
};
using FileHandle = std::unique_ptr<std::FILE, CloseFile>;

std::string SystemText(DWORD nError) {
    switch (nError) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
            return "no such file or folder";
        case ERROR_ACCESS_DENIED:
            return "access is denied";
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
            return "another program is using the file";
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return "the disk is full";
        case ERROR_FILE_TOO_LARGE:
        case ERROR_GEN_FAILURE:  // a write that is refused without a reason
        case ERROR_IO_DEVICE:
        case ERROR_WRITE_FAULT:
            return "the disk is full or cannot be written to";
        default:
            return "system error " + std::to_string(nError);
    }
}

bool IsFolder(const std::filesystem::path& path) {
    const DWORD nAttributes = GetFileAttributesW(path.c_str());
    return nAttributes != INVALID_FILE_ATTRIBUTES && (nAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// Files on a disk only: what is behind other names may never end.
bool IsOnDisk(std::FILE* pFile) {
    return GetFileType(std::bit_cast<HANDLE>(_get_osfhandle(_fileno(pFile)))) == FILE_TYPE_DISK;
}

std::optional<WicFile> KindOf(std::string_view head) {
    using namespace std::string_view_literals;
    static constexpr std::array<std::pair<std::string_view, WicFile>, 9> kSignatures{{
        {"BM"sv, WicFile::Bmp},
        {"\x89PNG\r\n\x1a\n"sv, WicFile::Png},
        {"\xff\xd8\xff"sv, WicFile::Jpeg},
        {"II*\0"sv, WicFile::Tiff},
        {"MM\0*"sv, WicFile::Tiff},
        {"II+\0"sv, WicFile::Tiff},
        {"MM\0+"sv, WicFile::Tiff},
        {"GIF87a"sv, WicFile::Gif},
        {"GIF89a"sv, WicFile::Gif},
    }};
    const auto matches = [head](const auto& signature) { return head.starts_with(signature.first); };
    const auto pFound = std::find_if(kSignatures.begin(), kSignatures.end(), matches);
    return pFound != kSignatures.end() ? std::optional(pFound->second) : std::nullopt;
}

std::optional<WicFile> KindByEnding(const std::filesystem::path& path) {
    static constexpr std::array<std::pair<std::wstring_view, WicFile>, 7> kEndings{{
        {L".bmp", WicFile::Bmp},
        {L".png", WicFile::Png},
        {L".tif", WicFile::Tiff},
        {L".tiff", WicFile::Tiff},
        {L".gif", WicFile::Gif},
        {L".jpg", WicFile::Jpeg},
        {L".jpeg", WicFile::Jpeg},
    }};
    std::wstring ending = path.extension().wstring();
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](wchar_t c) { return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c; });
    const auto pFound = std::find_if(kEndings.begin(), kEndings.end(), [&](const auto& entry) { return entry.first == ending; });
    return pFound != kEndings.end() ? std::optional(pFound->second) : std::nullopt;
}

std::optional<std::vector<std::byte>> ReadAll(std::FILE* pFile) {
    if (_fseeki64(pFile, 0, SEEK_END) != 0) {
        return std::nullopt;
    }
    const std::int64_t nBytes = _ftelli64(pFile);
    if (nBytes < 0 || static_cast<std::uint64_t>(nBytes) > kMaxBlockBytes) {
        return std::nullopt;
    }
    std::vector<std::byte> bytes(static_cast<std::size_t>(nBytes));
    std::rewind(pFile);
    return std::fread(bytes.data(), 1, bytes.size(), pFile) == bytes.size() ? std::optional(std::move(bytes)) : std::nullopt;
}

PictureHead HeadOf(std::span<const std::byte> file, WicFile kind) {
    switch (kind) {
        case WicFile::Png:
            return ReadPngHead(file);
        case WicFile::Jpeg:
            return ReadJpegHead(file);
        case WicFile::Tiff:
            return ReadTiffHead(file);
        default:
            return {};
    }
}

LoadedPicture LoadByComponent(std::FILE* pFile, WicFile kind) {
    const auto file = ReadAll(pFile);
    if (!file.has_value()) {
        return Failed("the file is too large or cannot be read");
    }
    const ComScope scope;
    return LoadWic(*file, kind, HeadOf(*file, kind));
}

LoadedPicture LoadBitmapFile(std::FILE* pFile) {
    const BmpHead bmp = ReadBmpHead(pFile);
    if (std::string refusal = RefusalOf(bmp); !refusal.empty()) {
        return Failed(std::move(refusal));
    }
    if (IsPlain(bmp)) {
        return LoadPlainBmp(pFile, bmp);
    }
    const auto file = bmp.nFileBytes <= kMaxBlockBytes ? ReadWithOrdinaryHeader(pFile, bmp) : std::nullopt;
    if (!file.has_value()) {
        return Failed("the file is too large or cannot be read");
    }
    PictureHead head;
    head.nFileBits = bmp.info.biBitCount;
    head.nXPelsPerMeter = std::max<std::int32_t>(bmp.info.biXPelsPerMeter, 0);
    head.nYPelsPerMeter = std::max<std::int32_t>(bmp.info.biYPelsPerMeter, 0);
    const ComScope scope;
    return LoadWic(*file, WicFile::Bmp, head);
}

LoadedPicture LoadOpened(const std::filesystem::path& path) {
    if (IsFolder(path)) {
        return Failed("it is a folder");
    }
    const FileHandle pFile(_wfopen(path.c_str(), L"rb"));
    if (pFile == nullptr) {
        return Failed(SystemText(GetLastError()));
    }
    if (!IsOnDisk(pFile.get())) {
        return Failed("not a regular file");
    }
    std::array<char, 8> head{};
    const std::size_t nHead = std::fread(head.data(), 1, head.size(), pFile.get());
    const std::optional<WicFile> kind = KindOf({head.data(), nHead});
    if (!kind.has_value()) {
        return Failed(nHead == 0 ? "the file is empty" : "not a BMP, PNG, JPEG, TIFF or GIF picture");
    }
    std::rewind(pFile.get());
    return *kind == WicFile::Bmp ? LoadBitmapFile(pFile.get()) : LoadByComponent(pFile.get(), *kind);
}

// What a save says of its failure.
std::string SaveText(const SaveResult& result, WicFile kind, std::uint16_t nBits) {
    const std::string name = WicFileName(kind);
    switch (result.fault) {
        case SaveFault::None:
            return {};
        case SaveFault::Depth:
            return "a picture of " + std::to_string(nBits) + " bits per pixel cannot be written";
        case SaveFault::Colours:
            return "a " + name + " picture has at most 256 colours, this one has 24 or more bits per pixel";
        case SaveFault::Size:
            return "the picture is too large for a " + name + " file";
        case SaveFault::Memory:
            return "not enough memory";
        case SaveFault::System:
            return SystemText(result.nSystemError);
        default:
            return "the " + name + " picture cannot be written";
    }
}

}  // namespace

LoadedPicture LoadPicture(const std::filesystem::path& path) {
    try {
        return LoadOpened(path);
    } catch (const std::exception&) {
        return Failed("not enough memory");
    }
}

std::string SavePicture(const std::filesystem::path& path, std::span<const std::byte> block) {
    try {
        const std::optional<WicFile> kind = KindByEnding(path);
        if (!kind.has_value()) {
            return "the name does not end in .bmp, .png, .tif, .tiff, .gif, .jpg or .jpeg";
        }
        const DibCheck check = CheckPackedDib(block);
        const SaveResult result = SavePictureAs(path, block, *kind, WicStyle{});
        return result.fault == SaveFault::Bitmap ? DibStatusText(check.status) : SaveText(result, *kind, check.figures.nBitCount);
    } catch (const std::exception&) {
        return "not enough memory";
    }
}

}  // namespace width
