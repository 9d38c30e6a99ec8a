// Tested by: tests/unit/imageio/ImageIoTest.cpp, tests/win/kestrix/KestrixTest.cpp
#include "imageio/PictureSaver_win.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <exception>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "imageio/PlainBmp.h"

namespace width {

namespace {

constexpr SaveResult kDone{};

SaveResult SystemFault(DWORD nError) noexcept {
    return nError == ERROR_SUCCESS ? SaveResult{SaveFault::Component, 0} : SaveResult{SaveFault::System, nError};
}

// A new file beside a target, which takes the target's place when it is complete and vanishes when it is not.
class Replacement {
public:
    explicit Replacement(std::filesystem::path target) : m_target(std::move(target)) {}
    ~Replacement() {
        if (!m_temporary.empty()) {
            DeleteFileW(m_temporary.c_str());
        }
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    /// Both give a system error, ERROR_SUCCESS for none.
    DWORD Create();
    DWORD Commit();
    const std::filesystem::path& Path() const noexcept { return m_temporary; }

private:
    std::filesystem::path m_target;
    std::filesystem::path m_temporary;  // empty while there is none
};

DWORD Replacement::Create() {
    static std::atomic<unsigned> s_nCounter{0};
    constexpr int kAttempts = 100;
    const DWORD nAttributes = GetFileAttributesW(m_target.c_str());
    constexpr DWORD kUnwritable = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY;
    if (nAttributes != INVALID_FILE_ATTRIBUTES && (nAttributes & kUnwritable) != 0) {
        return ERROR_ACCESS_DENIED;
    }
    DWORD nError = ERROR_FILE_EXISTS;
    for (int i = 0; i < kAttempts && nError == ERROR_FILE_EXISTS; ++i) {
        const std::string name = "picture-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(s_nCounter++) + ".tmp";
        const std::filesystem::path candidate = m_target.parent_path() / name;
        const HANDLE hFile =
            CreateFileW(candidate.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (hFile != INVALID_HANDLE_VALUE) {
            CloseHandle(hFile);
            m_temporary = candidate;
            return ERROR_SUCCESS;
        }
        nError = GetLastError();
    }
    return nError;
}

DWORD Replacement::Commit() {
    if (MoveFileExW(m_temporary.c_str(), m_target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == FALSE) {
        return GetLastError();
    }
    m_temporary.clear();
    return ERROR_SUCCESS;
}

SaveResult SaveBitmapFile(const std::filesystem::path& path, const SourceBlock& source) {
    SetLastError(ERROR_SUCCESS);
    std::FILE* const pFile = _wfopen(path.c_str(), L"wb");
    if (pFile == nullptr) {
        return SystemFault(GetLastError());
    }
    const bool bWritten = SaveBmp(pFile, source).empty();
    const DWORD nError = GetLastError();
    if (std::fclose(pFile) != 0 && bWritten) {
        return SystemFault(GetLastError());
    }
    return bWritten ? kDone : SystemFault(nError);
}

/// The component's answer as a fault: the system's own errors keep their number.
SaveResult FaultOf(HRESULT nResult) noexcept {
    if (SUCCEEDED(nResult)) {
        return kDone;
    }
    if (nResult == E_OUTOFMEMORY) {
        return {SaveFault::Memory, 0};
    }
    if (nResult == STG_E_MEDIUMFULL) {
        return {SaveFault::System, ERROR_DISK_FULL};
    }
    return HRESULT_FACILITY(nResult) == FACILITY_WIN32 ? SystemFault(static_cast<DWORD>(HRESULT_CODE(nResult)))
                                                       : SaveResult{SaveFault::Component, 0};
}

struct CloseFile {
    void operator()(std::FILE* pFile) const { std::fclose(pFile); }
};

/// Gives a TIFF picture's colour table its 16-bit values. Some versions of the component leave their low bytes 0, and other
/// programs then read colours that are one level too dark. Both bytes are alike, so the byte order does not matter.
SaveResult StoreTiffColours(const std::filesystem::path& path, const DibView& view) {
    const std::unique_ptr<std::FILE, CloseFile> pFile(_wfopen(path.c_str(), L"r+b"));
    std::error_code error;
    const auto nBytes = std::filesystem::file_size(path, error);
    std::vector<std::byte> file(error ? 0 : static_cast<std::size_t>(nBytes));
    if (pFile == nullptr || error || std::fread(file.data(), 1, file.size(), pFile.get()) != file.size()) {
        return SystemFault(GetLastError());
    }
    const TiffTable table = FindTiffTable(file);
    if (table.nColours == 0) {
        return kDone;  // grey levels
    }
    const std::array<Colour, 256> colours = view.Palette();
    std::vector<std::uint8_t> values;
    for (const auto part : {&Colour::red, &Colour::green, &Colour::blue}) {
        for (std::size_t i = 0; i < table.nColours; ++i) {
            values.insert(values.end(), 2, i < colours.size() ? colours[i].*part : std::uint8_t{0});
        }
    }
    const bool bStored = _fseeki64(pFile.get(), static_cast<std::int64_t>(table.nOffset), SEEK_SET) == 0 &&
                         std::fwrite(values.data(), 1, values.size(), pFile.get()) == values.size() &&
                         std::fflush(pFile.get()) == 0;
    return bStored ? kDone : SystemFault(GetLastError());
}

SaveResult SaveChecked(const std::filesystem::path& path, const SourceBlock& source, WicFile kind, const WicStyle& style) {
    const ComScope scope;
    Replacement replacement(path);
    if (const DWORD nError = replacement.Create(); nError != ERROR_SUCCESS) {
        return SystemFault(nError);
    }
    SaveResult result = kind == WicFile::Bmp ? SaveBitmapFile(replacement.Path(), source)
                                             : FaultOf(SaveWic(replacement.Path(), source, kind, style));
    if (result.fault == SaveFault::None && kind == WicFile::Tiff && source.view.BitCount() <= 8) {
        result = StoreTiffColours(replacement.Path(), source.view);
    }
    if (result.fault != SaveFault::None) {
        return result;
    }
    const DWORD nError = replacement.Commit();
    return nError == ERROR_SUCCESS ? kDone : SystemFault(nError);
}

}  // namespace

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
        return SaveChecked(path, {block, *view}, kind, style);
    } catch (const std::exception&) {
        return {SaveFault::Memory, 0};
    }
}

}  // namespace width
