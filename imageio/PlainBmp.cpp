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
constexpr std::uint32_t kOldInfoHeader = 12;  // the first kind: 16-bit sizes, colours of three bytes, no more
constexpr std::uint32_t kShortestOtherHeader = 16;
constexpr std::uint32_t kOtherSystemHeader = 64;  // with packings of its own
constexpr std::uint32_t kBitFields = 3;
constexpr std::uint32_t kBitFieldsWithAlpha = 6;
constexpr std::uint64_t kPixelsPerRunByte = 128;  // a run of at most 255 pixels takes two bytes
constexpr const char* kDamaged = "the BMP picture is damaged";

template <class Value>
Value ValueAt(std::span<const std::byte> bytes, std::size_t nOffset) {
    Value value;
    std::memcpy(&value, bytes.data() + nOffset, sizeof value);
    return value;
}

bool IsRunLength(const BmpHead& head) {
    return head.info.biCompression == 1 || head.info.biCompression == 2;
}

// Whether there is somebody here who reads such pixels.
bool IsKnownKind(const BmpHead& head) {
    const std::uint16_t nBits = head.info.biBitCount;
    switch (head.info.biCompression) {
        case 0:
            return IsReadableDepth(nBits) || nBits == 16;
        case 1:
            return nBits == 8;
        case 2:
            return nBits == 4;
        case kBitFields:
            return (nBits == 16 || nBits == 32) && head.nHeaderBytes != kOtherSystemHeader;
        default:
            return false;
    }
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
    if (head.nBitsOffset > head.nFileBytes) {
        return false;
    }
    if (IsRunLength(head)) {
        return nWidth * nHeight / kPixelsPerRunByte <= head.nFileBytes;
    }
    const std::uint64_t nStride = (nWidth * head.info.biBitCount + 31) / 32 * 4;
    return nStride <= (head.nFileBytes - head.nBitsOffset) / nHeight;
}

std::uint64_t TableOffset(const BmpHead& head) {
    return kFileHeader + std::uint64_t{head.nHeaderBytes};
}

// Of a colour in the file's table.
std::size_t EntryBytes(const BmpHead& head) {
    return head.nHeaderBytes == kOldInfoHeader ? 3 : 4;
}

// Whether a table longer than a pixel can name is really there.
bool HasLongTable(const BmpHead& head) {
    return TableOffset(head) + std::uint64_t{EntryBytes(head)} * head.info.biClrUsed <= head.nBitsOffset;
}

// Fills a table of entries of four bytes. One that runs into the rows ends there; its other entries are black.
bool ReadTable(std::FILE* pFile, const BmpHead& head, std::span<std::byte> target) {
    const std::size_t nEntryBytes = EntryBytes(head);
    const std::size_t nInFile =
        std::min<std::size_t>(target.size() / 4 * nEntryBytes, static_cast<std::size_t>(head.nBitsOffset - TableOffset(head)));
    std::vector<std::byte> table(nInFile);
    if (!ReadAt(pFile, TableOffset(head), table)) {
        return false;
    }
    for (std::size_t i = 0; i < nInFile; ++i) {
        target[i / nEntryBytes * 4 + i % nEntryBytes] = table[i];
    }
    return true;
}

void TakeOldHeader(std::span<const std::byte> bytes, BmpHead& head) {
    head.info.biWidth = ValueAt<std::uint16_t>(bytes, 18);
    head.info.biHeight = ValueAt<std::uint16_t>(bytes, 20);
    head.info.biPlanes = ValueAt<std::uint16_t>(bytes, 22);
    head.info.biBitCount = ValueAt<std::uint16_t>(bytes, 24);
}

// Masks stand behind a header of 40 bytes or within a longer one, which is the same place. Those of a pixel of bytes in
// their usual order say nothing.
void TakeMasks(std::span<const std::byte> bytes, BmpHead& head) {
    constexpr std::array<std::uint32_t, 3> kBytes{0xff0000, 0xff00, 0xff};
    head.masks = ValueAt<std::array<std::uint32_t, 3>>(bytes, kFileHeader + kInfoHeader);
    const bool bBytes = head.info.biBitCount == 32 && head.masks == kBytes;
    head.info.biCompression = bBytes ? 0 : kBitFields;
}

}  // namespace

// Goes by the first bytes of the file, zeros where it is shorter.
BmpHead ReadBmpHead(std::FILE* pFile) {
    std::array<std::byte, kFileHeader + kInfoHeader + 12> bytes{};
    [[maybe_unused]] const std::size_t nRead = std::fread(bytes.data(), 1, bytes.size(), pFile);
    BmpHead head;
    head.nFileBytes = FileBytes(pFile);
    head.nBitsOffset = ValueAt<std::uint32_t>(bytes, 10);
    head.nHeaderBytes = ValueAt<std::uint32_t>(bytes, kFileHeader);
    if (head.nHeaderBytes == kOldInfoHeader) {
        TakeOldHeader(bytes, head);
    } else {
        std::memcpy(&head.info, bytes.data() + kFileHeader, std::min<std::size_t>(head.nHeaderBytes, kInfoHeader));
    }
    head.info.biSize = kInfoHeader;
    if (head.info.biCompression == kBitFields || head.info.biCompression == kBitFieldsWithAlpha) {
        TakeMasks(bytes, head);
    }
    return head;
}

std::string RefusalOf(const BmpHead& head) {
    if (head.nFileBytes < kFileHeader + kOldInfoHeader) {
        return WithDetail(kDamaged, "it ends within its header");
    }
    if (head.nHeaderBytes < kShortestOtherHeader && head.nHeaderBytes != kOldInfoHeader) {
        return WithDetail(kDamaged, "its header has an impossible length");
    }
    if (head.info.biWidth <= 0 || head.info.biHeight == 0) {
        return WithDetail(kDamaged, "its width or height is not positive");
    }
    if (!IsKnownKind(head)) {
        return "the BMP picture is of a kind that can't be read here";
    }
    if (head.nBitsOffset < TableOffset(head)) {
        return WithDetail(kDamaged, "its rows lie within its header");
    }
    return HasRows(head) ? std::string() : WithDetail(kDamaged, kEndsEarly);
}

bool IsPlain(const BmpHead& head) {
    return head.info.biCompression == 0 && head.info.biHeight > 0 && IsReadableDepth(head.info.biBitCount);
}

LoadedPicture LoadPlainBmp(std::FILE* pFile, const BmpHead& head) {
    if (head.info.biBitCount <= 8 && head.info.biClrUsed > 256 && !HasLongTable(head)) {
        return Failed(WithDetail(kDamaged, "its colour table has impossibly many entries"));
    }
    DibBuilder builder;
    if (std::string error = builder.Create(head.info); !error.empty()) {
        return Failed(std::move(error));
    }
    const bool bRead = ReadTable(pFile, head, builder.Table()) && ReadAt(pFile, head.nBitsOffset, builder.Bits());
    return bRead ? builder.Finish() : Failed(kDamaged);
}

std::optional<std::vector<std::byte>> ReadWithOrdinaryHeader(std::FILE* pFile, const BmpHead& head) {
    BITMAPINFOHEADER info = head.info;
    const std::uint32_t nAll = info.biBitCount <= 8 ? 1U << info.biBitCount : 0;
    info.biClrUsed = info.biClrUsed != 0 ? std::min<std::uint32_t>(info.biClrUsed, nAll) : nAll;
    const std::size_t nMasks = info.biCompression == kBitFields ? sizeof head.masks : 0;
    const std::size_t nTable = kFileHeader + kInfoHeader + nMasks;
    const std::size_t nBits = nTable + std::size_t{4} * info.biClrUsed;
    std::vector<std::byte> file(nBits + static_cast<std::size_t>(head.nFileBytes - head.nBitsOffset));
    const auto nFileBytes = static_cast<std::uint32_t>(file.size());
    const auto nOffset = static_cast<std::uint32_t>(nBits);
    file[0] = std::byte{'B'};
    file[1] = std::byte{'M'};
    std::memcpy(file.data() + 2, &nFileBytes, sizeof nFileBytes);
    std::memcpy(file.data() + 10, &nOffset, sizeof nOffset);
    std::memcpy(file.data() + kFileHeader, &info, sizeof info);
    std::memcpy(file.data() + kFileHeader + kInfoHeader, head.masks.data(), nMasks);
    const std::span bytes(file);
    const bool bRead =
        ReadTable(pFile, head, bytes.subspan(nTable, nBits - nTable)) && ReadAt(pFile, head.nBitsOffset, bytes.subspan(nBits));
    return bRead ? std::optional(std::move(file)) : std::nullopt;
}

std::string SaveBmp(NewFile& file, const SourceBlock& source) {
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
    const bool bDone = file.Write(head.data(), head.size()) && file.Write(rest.data(), rest.size());
    return bDone ? std::string() : "the BMP picture cannot be written";
}

}  // namespace width
