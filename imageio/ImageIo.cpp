// Chooses the format, by content for reading and by the name's ending for writing, and takes care
// of the file itself: what may be opened, and that a target is only ever replaced as a whole.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#include "imageio/ImageIo.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <new>
#include <string_view>
#include <system_error>
#include <utility>

#include "imageio/Formats.h"

namespace width {

namespace {

struct CloseFile {
    void operator()(std::FILE* pFile) const { std::fclose(pFile); }
};
using FileHandle = std::unique_ptr<std::FILE, CloseFile>;

// A limit on the sizes of files, or on what a user may use, is a disk that is full for this program.
std::string SystemText(SystemError nError) {
    const std::string words = std::generic_category().message(static_cast<int>(nError));
    const bool bFull = nError == ENOSPC || nError == EDQUOT || nError == EFBIG;
    return bFull ? "the disk is full (" + words + ")" : words;
}

std::string SystemText() {
    return SystemText(static_cast<SystemError>(errno));
}

using Loader = LoadedPicture (*)(std::FILE*);

Loader LoaderFor(std::string_view head) {
    using namespace std::string_view_literals;
    struct Signature {
        std::string_view bytes;
        Loader load;
    };
    static constexpr std::array kSignatures{
        Signature{"BM"sv, LoadBmp},
        Signature{"\x89PNG\r\n\x1a\n"sv, LoadPng},
        Signature{"\xff\xd8\xff"sv, LoadJpeg},
        Signature{"II*\0"sv, LoadTiff},
        Signature{"MM\0*"sv, LoadTiff},
        Signature{"II+\0"sv, LoadTiff},
        Signature{"MM\0+"sv, LoadTiff},
        Signature{"GIF87a"sv, LoadGif},
        Signature{"GIF89a"sv, LoadGif},
    };
    const auto matches = [head](const Signature& signature) { return head.starts_with(signature.bytes); };
    const auto pFound = std::find_if(kSignatures.begin(), kSignatures.end(), matches);
    return pFound != kSignatures.end() ? pFound->load : nullptr;
}

Saver SaverFor(const std::filesystem::path& path) {
    static constexpr std::array<std::pair<std::string_view, Saver>, 7> kEndings{{
        {".bmp", SaveBmp},
        {".png", SavePng},
        {".tif", SaveTiff},
        {".tiff", SaveTiff},
        {".gif", SaveGif},
        {".jpg", SaveJpeg},
        {".jpeg", SaveJpeg},
    }};
    std::string ending = path.extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    const auto pFound = std::find_if(kEndings.begin(), kEndings.end(), [&](const auto& entry) { return entry.first == ending; });
    return pFound != kEndings.end() ? pFound->second : nullptr;
}

// Opens without waiting, as a pipe without a writer would have it, and takes regular files only.
LoadedPicture LoadOpened(const std::filesystem::path& path) {
    const int nDescriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (nDescriptor < 0) {
        return Failed(SystemText());
    }
    const FileHandle pFile(fdopen(nDescriptor, "rb"));
    if (pFile == nullptr) {
        close(nDescriptor);
        return Failed("not enough memory");
    }
    struct stat status {};
    if (fstat(nDescriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        return Failed(S_ISDIR(status.st_mode) ? SystemText(EISDIR) : "not a regular file");
    }
    std::array<char, 8> head{};
    const std::size_t nHead = std::fread(head.data(), 1, head.size(), pFile.get());
    if (std::ferror(pFile.get()) != 0) {
        return Failed(SystemText());
    }
    const Loader load = LoaderFor({head.data(), nHead});
    if (load == nullptr) {
        return Failed(nHead == 0 ? "the file is empty" : "not a BMP, PNG, JPEG, TIFF or GIF picture");
    }
    std::rewind(pFile.get());
    return load(pFile.get());
}

// Reads the finished file back: what a library says of its work is not proof enough to give up an old file.
std::string FaultOfFinished(const std::filesystem::path& path, const DibView& view) {
    LoadedPicture picture = LoadOpened(path);
    const std::optional<DibView> back = DibView::Open(picture.block);
    if (!back.has_value()) {
        return picture.error;
    }
    const bool bSameSize = back->Width() == view.Width() && back->Height() == view.Height();
    return bSameSize ? std::string() : "the picture has not arrived in the file";
}

std::string SaveChecked(const std::filesystem::path& path, std::span<const std::byte> block) {
    const Saver save = SaverFor(path);
    if (save == nullptr) {
        return "the name does not end in .bmp, .png, .tif, .tiff, .gif, .jpg or .jpeg";
    }
    const std::optional<DibView> view = DibView::Open(block);
    if (!view.has_value()) {
        return DibStatusText(CheckPackedDib(block).status);
    }
    if (!IsReadableDepth(view->BitCount())) {
        return "a picture of " + std::to_string(view->BitCount()) + " bits per pixel cannot be written";
    }
    return SaveBy(path, SourceBlock{block, *view}, save);
}

}  // namespace

std::string SaveBy(const std::filesystem::path& path, const SourceBlock& source, Saver save) {
    NewFile file(path);
    std::string error;
    if (file.Create()) {
        error = save(file, source);
    }
    if (error.empty() && file.Finish()) {
        error = FaultOfFinished(file.Path(), source.view);
    }
    if (error.empty()) {
        file.Commit();
    }
    return file.Error() != 0 ? SystemText(file.Error()) : error;  // a library's words say less
}

LoadedPicture LoadPicture(const std::filesystem::path& path) {
    try {
        return LoadOpened(path);
    } catch (const std::exception&) {
        return Failed("not enough memory");
    }
}

std::string SavePicture(const std::filesystem::path& path, std::span<const std::byte> block) {
    try {
        return SaveChecked(path, block);
    } catch (const std::exception&) {
        return "not enough memory";
    }
}

}  // namespace width
