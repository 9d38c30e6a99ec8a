// BMP. A plain file (40-byte header, uncompressed, bottom-up) is a packed bitmap behind a 14-byte
// file header and becomes the block as it stands. All other kinds (run lengths, bit fields, other
// headers, top-down) are unpacked by GraphicsMagick; of those, 32-bit files stay 32 bits.
//
// The file header: "BM", the file's size (32 bits), two unread 16-bit words, and the offset of the
// rows (bfOffBits, 32 bits). All numbers are little-endian, as is the processor.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#include <magick/api.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "imageio/Formats.h"

namespace width {

namespace {

static_assert(std::endian::native == std::endian::little);

constexpr std::size_t kFileHeader = 14;
constexpr std::size_t kInfoHeader = sizeof(BITMAPINFOHEADER);
constexpr std::uint32_t kOldInfoHeader = 12;      // the first kind: 16-bit sizes, no resolution
constexpr std::uint64_t kPixelsPerRunByte = 128;  // a run of at most 255 pixels takes two bytes
constexpr const char* kDamaged = "the BMP picture is damaged";

struct BmpHead {
    std::uint64_t nFileBytes = 0;
    std::uint32_t nBitsOffset = 0;         // bfOffBits
    BITMAPINFOHEADER info{};               // as far as the file has it, sizes filled in for the old kind too
    std::array<std::uint32_t, 3> masks{};  // of red, green and blue; only bit-field files have them
};

template <class Value>
Value ValueAt(std::span<const std::byte> bytes, std::size_t nOffset) {
    Value value;
    std::memcpy(&value, bytes.data() + nOffset, sizeof value);
    return value;
}

// The first bytes of the file, zeros where it is shorter.
BmpHead ReadHead(std::FILE* pFile) {
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

bool IsPlain(const BmpHead& head) {
    return head.info.biSize == kInfoHeader && head.info.biCompression == 0 && head.info.biHeight > 0;
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

// A table that runs into the rows ends there; its other entries are black.
LoadedPicture LoadPlain(std::FILE* pFile, const BmpHead& head) {
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

// GraphicsMagick's state for the life of the program: no signal handlers, no temporary files.
class Magick {
public:
    static void Start() { static const Magick magick; }
    Magick(const Magick&) = delete;
    Magick& operator=(const Magick&) = delete;

private:
    Magick() {
        ExceptionInfo exception;
        GetExceptionInfo(&exception);
        InitializeMagickEx(nullptr, MAGICK_OPT_NO_SIGNAL_HANDER, &exception);
        DestroyExceptionInfo(&exception);
        SetMagickResourceLimit(DiskResource, 0);
        SetMagickResourceLimit(MapResource, 0);
    }
    ~Magick() { DestroyMagick(); }
};

// What a call of GraphicsMagick has to say.
class MagickException {
public:
    MagickException() { GetExceptionInfo(&m_info); }
    ~MagickException() { DestroyExceptionInfo(&m_info); }
    MagickException(const MagickException&) = delete;
    MagickException& operator=(const MagickException&) = delete;

    ExceptionInfo* Get() noexcept { return &m_info; }
    bool IsError() const noexcept { return m_info.severity != UndefinedException; }
    LoadedPicture Failure() const { return Failed(WithDetail(kDamaged, m_info.reason != nullptr ? m_info.reason : "")); }

private:
    ExceptionInfo m_info{};
};

struct FreeImages {
    void operator()(Image* pImage) const { DestroyImageList(pImage); }
};
using MagickImage = std::unique_ptr<Image, FreeImages>;

struct FreeInfo {
    void operator()(ImageInfo* pInfo) const { DestroyImageInfo(pInfo); }
};

MagickImage Unpack(const std::vector<std::byte>& file, ExceptionInfo* pException) {
    const std::unique_ptr<ImageInfo, FreeInfo> pInfo(CloneImageInfo(nullptr));
    std::strncpy(pInfo->magick, "BMP", MaxTextExtent - 1);
    std::strncpy(pInfo->filename, "BMP:", MaxTextExtent - 1);
    return MagickImage(BlobToImage(pInfo.get(), file.data(), file.size(), pException));
}

// A level that the file holds in nBits bits. The library shifts those up without filling the bits
// below, so that full light would fall short of 255; only the file's own bits count.
std::uint8_t ToByte(Quantum quantum, std::uint32_t nBits = QuantumDepth) {
    const std::uint64_t nMax = (std::uint64_t{1} << nBits) - 1;
    return static_cast<std::uint8_t>(((std::uint64_t{quantum} >> (QuantumDepth - nBits)) * 255 + nMax / 2) / nMax);
}

// Bits of red, green and blue in a pixel of the file.
using ChannelBits = std::array<std::uint32_t, 3>;

ChannelBits ChannelBitsOf(const BmpHead& head) {
    constexpr std::uint32_t kBitFields = 3;
    constexpr std::uint32_t kAlphaBitFields = 6;
    ChannelBits bits{QuantumDepth, QuantumDepth, QuantumDepth};
    if (head.info.biCompression == kBitFields || head.info.biCompression == kAlphaBitFields) {
        for (std::size_t i = 0; i < bits.size(); ++i) {
            bits[i] = std::clamp<std::uint32_t>(static_cast<std::uint32_t>(std::popcount(head.masks[i])), 1, QuantumDepth);
        }
    } else if (head.info.biBitCount == 16) {
        bits.fill(5);
    }
    return bits;
}

void PlaceColours(const PixelPacket* pPixels, std::uint32_t nWidth, const ChannelBits& bits, std::size_t nStep,
                  std::uint8_t* pTarget) {
    for (std::uint32_t x = 0; x < nWidth; ++x, pTarget += nStep) {
        pTarget[0] = ToByte(pPixels[x].blue, bits[2]);
        pTarget[1] = ToByte(pPixels[x].green, bits[1]);
        pTarget[2] = ToByte(pPixels[x].red, bits[0]);
    }
}

std::uint16_t DepthOf(const Image& image, std::uint16_t nFileBits) {
    const bool bIndexed = image.storage_class == PseudoClass && nFileBits <= 8;
    if (bIndexed) {
        return static_cast<std::uint16_t>(nFileBits > 4 ? 8 : (nFileBits > 1 ? 4 : 1));
    }
    return nFileBits == 32 ? 32 : 24;
}

void FillTable(const Image& image, DibBuilder& builder) {
    for (std::uint32_t i = 0; i < image.colors && i < 256; ++i) {
        const PixelPacket& colour = image.colormap[i];
        builder.SetColour(i, ToByte(colour.red), ToByte(colour.green), ToByte(colour.blue));
    }
}

bool FillRows(const Image& image, std::uint16_t nBits, const ChannelBits& bits, DibBuilder& builder, ExceptionInfo* pException) {
    for (std::uint32_t y = 0; y < builder.Height(); ++y) {
        const PixelPacket* pPixels = AcquireImagePixels(&image, 0, static_cast<int>(y), image.columns, 1, pException);
        const IndexPacket* pIndices = nBits <= 8 ? AccessImmutableIndexes(&image) : nullptr;
        if (pPixels == nullptr || (nBits <= 8 && pIndices == nullptr)) {
            return false;
        }
        if (nBits <= 8) {
            PackIndexRow(pIndices, builder.Width(), nBits, builder.Row(y));
        } else {
            PlaceColours(pPixels, builder.Width(), bits, nBits / 8U, builder.Row(y));
        }
    }
    return true;
}

// The library keeps eight bytes a pixel and all of the file.
bool IsTooLargeForLibrary(const BmpHead& head) {
    const std::int64_t nPixels = std::int64_t{head.info.biWidth} * std::abs(std::int64_t{head.info.biHeight});
    return nPixels > static_cast<std::int64_t>(kMaxBlockBytes / 8) || head.nFileBytes > kMaxBlockBytes;
}

LoadedPicture LoadOther(std::FILE* pFile, const BmpHead& head) {
    if (IsTooLargeForLibrary(head)) {
        return Failed("the picture is too large");
    }
    std::vector<std::byte> file(static_cast<std::size_t>(head.nFileBytes));
    if (!ReadAt(pFile, 0, file)) {
        return Failed(kDamaged);
    }
    Magick::Start();
    MagickException exception;
    const MagickImage pImage = Unpack(file, exception.Get());
    if (pImage == nullptr || exception.IsError()) {
        return exception.Failure();
    }
    const std::uint16_t nBits = DepthOf(*pImage, head.info.biBitCount);
    DibBuilder builder;
    std::string error = builder.Create(pImage->columns, pImage->rows, nBits, static_cast<std::uint32_t>(pImage->colors));
    if (!error.empty()) {
        return Failed(std::move(error));
    }
    FillTable(*pImage, builder);
    builder.SetResolution(std::max(head.info.biXPelsPerMeter, 0), std::max(head.info.biYPelsPerMeter, 0));
    const bool bRows = FillRows(*pImage, nBits, ChannelBitsOf(head), builder, exception.Get());
    return bRows ? builder.Finish() : exception.Failure();
}

}  // namespace

LoadedPicture LoadBmp(std::FILE* pFile) {
    const BmpHead head = ReadHead(pFile);
    if (head.nFileBytes < kFileHeader + kOldInfoHeader) {
        return Failed(WithDetail(kDamaged, "it ends within its header"));
    }
    if (head.info.biWidth <= 0 || head.info.biHeight == 0) {
        return Failed(WithDetail(kDamaged, "its width or height is not positive"));
    }
    if (!HasRows(head)) {
        return Failed(WithDetail(kDamaged, kEndsEarly));
    }
    return IsPlain(head) ? LoadPlain(pFile, head) : LoadOther(pFile, head);
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
