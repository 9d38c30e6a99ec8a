// BMP: plain files as PlainBmp.h has them; all other kinds (run lengths, bit fields, 16 bits, top-down) are unpacked by
// GraphicsMagick, and of those, 32-bit files stay 32 bits.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#include <magick/api.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "imageio/PlainBmp.h"

namespace width {

namespace {

constexpr const char* kDamaged = "the BMP picture is damaged";

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
    ChannelBits bits{QuantumDepth, QuantumDepth, QuantumDepth};
    if (head.info.biCompression == kBitFields) {
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
    const auto file = ReadWithOrdinaryHeader(pFile, head);
    if (!file.has_value()) {
        return Failed(kDamaged);
    }
    Magick::Start();
    MagickException exception;
    const MagickImage pImage = Unpack(*file, exception.Get());
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
    const BmpHead head = ReadBmpHead(pFile);
    if (std::string refusal = RefusalOf(head); !refusal.empty()) {
        return Failed(std::move(refusal));
    }
    return IsPlain(head) ? LoadPlainBmp(pFile, head) : LoadOther(pFile, head);
}

}  // namespace width
