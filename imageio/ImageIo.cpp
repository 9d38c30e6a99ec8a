// Chooses the format, by content for reading and by the name's ending for writing, and takes care
// of the file itself: what may be opened, and that a target is only ever replaced as a whole.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#include "imageio/ImageIo.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
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

std::string SystemText(int nError) {
    return std::generic_category().message(nError);
}

using Loader = LoadedPicture (*)(std::FILE*);
using Saver = std::string (*)(std::FILE*, const SourceBlock&);

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
        return Failed(SystemText(errno));
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
        return Failed(SystemText(errno));
    }
    const Loader load = LoaderFor({head.data(), nHead});
    if (load == nullptr) {
        return Failed(nHead == 0 ? "the file is empty" : "not a BMP, PNG, JPEG, TIFF or GIF picture");
    }
    std::rewind(pFile.get());
    return load(pFile.get());
}

// A new file beside a target, which takes the target's place when it is complete and vanishes when
// it is not.
class Replacement {
public:
    explicit Replacement(std::filesystem::path target) : m_target(std::move(target)) {}
    ~Replacement() {
        m_pFile.reset();
        if (!m_temporary.empty()) {
            unlink(m_temporary.c_str());
        }
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    std::string Open();
    std::string Commit();
    std::FILE* File() const noexcept { return m_pFile.get(); }

private:
    std::string CheckTarget();
    int Create();

    std::filesystem::path m_target;
    std::filesystem::path m_temporary;  // empty while there is none
    FileHandle m_pFile;
    mode_t m_mode = 0666;  // of the new file, less what the process masks out
    bool m_bKeepMode = false;
};

// Follows links, so that the file they lead to is replaced and not the link.
std::string Replacement::CheckTarget() {
    std::error_code error;
    if (std::filesystem::is_symlink(m_target, error)) {
        m_target = std::filesystem::weakly_canonical(m_target, error);
        if (error) {
            return error.message();
        }
    }
    struct stat status {};
    if (stat(m_target.c_str(), &status) != 0) {
        return {};
    }
    if (!S_ISREG(status.st_mode)) {
        return S_ISDIR(status.st_mode) ? SystemText(EISDIR) : "not a regular file";
    }
    m_mode = status.st_mode & 0777U;
    m_bKeepMode = true;
    return access(m_target.c_str(), W_OK) == 0 ? std::string() : SystemText(errno);
}

int Replacement::Create() {
    static std::atomic<unsigned> s_nCounter{0};
    constexpr int kAttempts = 100;
    int nDescriptor = -1;
    for (int i = 0; i < kAttempts && nDescriptor < 0; ++i) {
        const std::string name = ".picture-" + std::to_string(getpid()) + "-" + std::to_string(s_nCounter++) + ".tmp";
        const std::filesystem::path candidate = m_target.parent_path() / name;
        nDescriptor = open(candidate.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, m_mode);
        if (nDescriptor >= 0) {
            m_temporary = candidate;
        } else if (errno != EEXIST) {
            break;
        }
    }
    return nDescriptor;
}

std::string Replacement::Open() {
    if (std::string error = CheckTarget(); !error.empty()) {
        return error;
    }
    const int nDescriptor = Create();
    if (nDescriptor < 0) {
        return SystemText(errno);
    }
    if (m_bKeepMode) {
        fchmod(nDescriptor, m_mode);
    }
    m_pFile.reset(fdopen(nDescriptor, "w+b"));
    if (m_pFile == nullptr) {
        close(nDescriptor);
        return "not enough memory";
    }
    return {};
}

std::string Replacement::Commit() {
    if (std::ferror(m_pFile.get()) != 0 || std::fflush(m_pFile.get()) != 0 || fsync(fileno(m_pFile.get())) != 0) {
        return SystemText(errno);
    }
    if (std::fclose(m_pFile.release()) != 0 || std::rename(m_temporary.c_str(), m_target.c_str()) != 0) {
        return SystemText(errno);
    }
    m_temporary.clear();
    return {};
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
    Replacement replacement(path);
    std::string error = replacement.Open();
    if (error.empty()) {
        error = save(replacement.File(), SourceBlock{block, *view});
    }
    return error.empty() ? replacement.Commit() : error;
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
        return SaveChecked(path, block);
    } catch (const std::exception&) {
        return "not enough memory";
    }
}

}  // namespace width
