// The file header: "BM", the file's size (32 bits), two unread 16-bit words, and the offset of the
// rows (bfOffBits, 32 bits). All numbers are little-endian, as is the processor.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#include "imageio/PlainBmp.h"

#include <sys/stat.h>

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

namespace width {

namespace {

static_assert(std::endian::native == std::endian::little);

constexpr std::size_t kFileHeader = 14;
constexpr std::size_t kInfoHeader = sizeof(BITMAPINFOHEADER);
constexpr std::uint32_t kOldInfoHeader = 12;      // the first kind: 16-bit sizes, no resolution
constexpr std::uint64_t kPixelsPerRunByte = 128;  // a run of at most 255 pixels takes two bytes
constexpr const char* kDamaged = "the BMP picture is damaged";

template <class Value>
Value ValueAt(std::span<const std::byte> bytes, std::size_t nOffset) {
    Value value;
    std::memcpy(&value, bytes.data() + nOffset, sizeof value);
    return value;
}

bool IsRunLength(const BmpHead& head) {
    return head.info.biSize >= kInfoHeader && (head.info.biCompression == 1 || head.info.biCompression == 2);
}

bool ReadAt(std::FILE* pFile, std::uint64_t nOffset, std::span<std::byte> target) {
    return fseeko(pFile, static_cast<off_t>(nOffset), SEEK_SET) == 0 &&
           std::fread(target.data(), 1, target.size(), pFile) == target.size();
}

// Whether the file can hold the rows that its header promises, judged before memory is taken for
// them. Run lengths that skip most of a picture are not believed.
bool HasRows(const BmpHead& head) {
    const std::uint64_t nWidth = static_cast<std::uint32_t>(head.info.biWidth);
    const std::uint64_t nHeight = static_cast<std::uint64_t>(std::abs(std::int64_t{head.info.biHeight}));
    if (IsRunLength(head)) {
        return nWidth * nHeight / kPixelsPerRunByte <= head.nFileBytes;
    }
    const std::uint64_t nStride = (nWidth * head.info.biBitCount + 31) / 32 * 4;
    return head.nBitsOffset <= head.nFileBytes && nStride <= (head.nFileBytes - head.nBitsOffset) / nHeight;
}

// Whether a table longer than a pixel can name is really there.
bool HasLongTable(const BmpHead& head) {
    const std::uint64_t nTable = std::uint64_t{4} * head.info.biClrUsed;
    return kFileHeader + kInfoHeader + nTable <= head.nBitsOffset;
}

}  // namespace

// The first bytes of the file, zeros where it is shorter.
BmpHead ReadBmpHead(std::FILE* pFile) {
    std::array<std::byte, kFileHeader + kInfoHeader + 12> bytes{};
    [[maybe_unused]] const std::size_t nRead = std::fread(bytes.data(), 1, bytes.size(), pFile);
    BmpHead head;
    head.nFileBytes = FileBytes(pFile);
    head.nBitsOffset = ValueAt<std::uint32_t>(bytes, 10);
    head.info = ValueAt<BITMAPINFOHEADER>(bytes, kFileHeader);
    head.masks = ValueAt<std::array<std::uint32_t, 3>>(bytes, kFileHeader + kInfoHeader);
    if (head.info.biSize == kOldInfoHeader) {
        head.info = {};
        head.info.biSize = kOldInfoHeader;
        head.info.biWidth = ValueAt<std::uint16_t>(bytes, 18);
        head.info.biHeight = ValueAt<std::uint16_t>(bytes, 20);
        head.info.biBitCount = ValueAt<std::uint16_t>(bytes, 24);
    } else if (head.info.biSize < kInfoHeader) {
        head.info.biXPelsPerMeter = 0;
        head.info.biYPelsPerMeter = 0;
    }
    return head;
}

std::string RefusalOf(const BmpHead& head) {
    if (head.nFileBytes < kFileHeader + kOldInfoHeader) {
        return WithDetail(kDamaged, "it ends within its header");
    }
    if (head.info.biWidth <= 0 || head.info.biHeight == 0) {
        return WithDetail(kDamaged, "its width or height is not positive");
    }
    if (!HasRows(head)) {
        return WithDetail(kDamaged, kEndsEarly);
    }
    return {};
}

bool IsPlain(const BmpHead& head) {
    return head.info.biSize == kInfoHeader && head.info.biCompression == 0 && head.info.biHeight > 0;
}

// A table that runs into the rows ends there; its other entries are black.
LoadedPicture LoadPlainBmp(std::FILE* pFile, const BmpHead& head) {
    if (head.nBitsOffset < kFileHeader + kInfoHeader) {
        return Failed(WithDetail(kDamaged, "its rows lie within its header"));
    }
    if (head.info.biBitCount <= 8 && head.info.biClrUsed > 256 && !HasLongTable(head)) {
        return Failed(WithDetail(kDamaged, "its colour table has impossibly many entries"));
    }
    DibBuilder builder;
    if (std::string error = builder.Create(head.info); !error.empty()) {
        return Failed(std::move(error));
    }
    const std::size_t nTable = std::min<std::size_t>(builder.Table().size(), head.nBitsOffset - kFileHeader - kInfoHeader);
    const bool bRead = ReadAt(pFile, kFileHeader + kInfoHeader, builder.Table().first(nTable)) &&
                       ReadAt(pFile, head.nBitsOffset, builder.Bits());
    return bRead ? builder.Finish() : Failed(kDamaged);
}

std::string SaveBmp(std::FILE* pFile, const SourceBlock& source) {
    const DibFigures& figures = source.view.Figures();
    const std::uint64_t nFileBytes = kFileHeader + std::uint64_t{figures.nBytes};
    if (nFileBytes > std::numeric_limits<std::uint32_t>::max()) {
        return "the picture is too large for a BMP file";
    }
    auto info = ValueAt<BITMAPINFOHEADER>(source.block, 0);
    info.biPlanes = 1;  // a block's reader ignores these two, a file's reader goes by them
    info.biCompression = 0;
    const auto nSize = static_cast<std::uint32_t>(nFileBytes);
    const auto nOffset = static_cast<std::uint32_t>(kFileHeader + figures.nBitsOffset);
    std::array<std::byte, kFileHeader + kInfoHeader> head{std::byte{'B'}, std::byte{'M'}};
    std::memcpy(head.data() + 2, &nSize, sizeof nSize);
    std::memcpy(head.data() + 10, &nOffset, sizeof nOffset);
    std::memcpy(head.data() + kFileHeader, &info, sizeof info);
    const auto rest = source.block.subspan(kInfoHeader, figures.nBytes - kInfoHeader);
    const bool bDone = std::fwrite(head.data(), 1, head.size(), pFile) == head.size() &&
                       std::fwrite(rest.data(), 1, rest.size(), pFile) == rest.size();
    return bDone ? std::string() : "the BMP picture cannot be written";
}

}  // namespace width
