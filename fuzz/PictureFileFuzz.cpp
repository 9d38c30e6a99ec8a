// Any bytes as a picture file: it becomes a packed bitmap that the door accepts, or an error. Only a plain bitmap file,
// which becomes the block as it stands, may have a depth whose pixels nobody reads.
//
// A few bytes can promise a picture of a gigabyte, and clearing that much takes longer than trying a
// thousand files. So memory is short in this program: large requests fail, as on a full machine.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <new>
#include <random>
#include <string>

#include "core/PackedDib.h"
#include "fuzz/FuzzInput.h"
#include "imageio/ImageIo.h"

namespace width::fuzz {

bool g_bMemoryIsShort = false;  // only while a picture is read; the fuzzer itself needs much

namespace {

// A file that is written anew for each input, and removed when the program ends. It is overwritten and
// then cut to length: some file systems wait for the disk when a file that was emptied is closed.
class InputFile {
public:
    InputFile() : m_path(std::filesystem::temp_directory_path() / ("picture-" + std::to_string(std::random_device{}()))) {
        std::ofstream create(m_path);
    }
    ~InputFile() {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    const std::filesystem::path& Write(const std::uint8_t* pData, std::size_t nSize) {
        std::fstream file(m_path, std::ios::binary | std::ios::in | std::ios::out);
        file.write(reinterpret_cast<const char*>(pData), static_cast<std::streamsize>(nSize));
        file.close();
        std::error_code error;
        std::filesystem::resize_file(m_path, nSize, error);
        Require(file.good() && !error, "the input can be written to a file");
        return m_path;
    }

private:
    std::filesystem::path m_path;
};

}  // namespace

void TryFile(const std::uint8_t* pData, std::size_t nSize) {
    static InputFile s_file;
    const std::filesystem::path& path = s_file.Write(pData, nSize);
    g_bMemoryIsShort = true;
    const LoadedPicture picture = LoadPicture(path);
    g_bMemoryIsShort = false;
    Require(picture.block.empty() != picture.error.empty(), "there is a picture or an error");
    if (!picture.block.empty()) {
        const std::optional<DibView> dib = DibView::Open(picture.block);
        Require(dib.has_value(), "what was read is a packed bitmap");
        Require(IsReadableDepth(dib->BitCount()), "what was read has pixels");
    }
    Require(picture.error.find('\n') == std::string::npos, "an error is one line");
}

}  // namespace width::fuzz

void* operator new(std::size_t nBytes, const std::nothrow_t&) noexcept {
    constexpr std::size_t kMostBytes = std::size_t{16} << 20;
    return nBytes <= kMostBytes || !width::fuzz::g_bMemoryIsShort ? std::malloc(nBytes) : nullptr;
}

void* operator new(std::size_t nBytes) {
    void* p = operator new(nBytes, std::nothrow);
    if (p == nullptr) {
        throw std::bad_alloc();
    }
    return p;
}

void operator delete(void* p) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    width::fuzz::TryFile(pData, nSize);
    return 0;
}
