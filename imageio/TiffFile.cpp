// Reading TIFF, by libtiff. Grey, palette and colour pictures with their samples side by side are read row
// by row, or tile by tile, and keep their depth; every other kind (planes, inks, chroma, alpha, odd
// depths) is left to the library's own conversion and becomes 24 bits over white. Rows stay in the
// order in which they are stored, whatever the orientation mark says. The first picture of a file counts.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#include <tiffio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <utility>
#include <vector>

#include "imageio/Formats.h"

namespace width {

namespace {

constexpr const char* kOtherKind = "the TIFF picture is of a kind that can't be read here";

// Keeps the first error of the library; warnings are dropped. Nothing is printed.
class Complaints {
public:
    [[gnu::format(printf, 4, 0)]] static int OnError(TIFF*, void* pSelf, const char*, const char* pFormat, va_list arguments) {
        auto& self = *static_cast<Complaints*>(pSelf);
        if (self.m_text[0] == '\0') {
            std::vsnprintf(self.m_text.data(), self.m_text.size(), pFormat, arguments);
            self.m_bAny = true;
        }
        return 1;
    }
    static int OnWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }

    bool Any() const noexcept { return m_bAny; }
    std::string Text() const { return m_text.data(); }

private:
    std::array<char, 200> m_text{};
    bool m_bAny = false;
};

struct CloseTiff {
    void operator()(TIFF* pTiff) const { TIFFClose(pTiff); }
};
using TiffHandle = std::unique_ptr<TIFF, CloseTiff>;

// Opens over a duplicate of the file's descriptor, which the library closes; unmapped, since the file may shrink
// meanwhile. Null on failure.
TiffHandle OpenTiff(std::FILE* pFile, Complaints& complaints) {
    const std::unique_ptr<TIFFOpenOptions, void (*)(TIFFOpenOptions*)> pOptions(TIFFOpenOptionsAlloc(), TIFFOpenOptionsFree);
    if (pOptions == nullptr) {
        return nullptr;
    }
    TIFFOpenOptionsSetMaxSingleMemAlloc(pOptions.get(), static_cast<tmsize_t>(kMaxBlockBytes));
    TIFFOpenOptionsSetErrorHandlerExtR(pOptions.get(), Complaints::OnError, &complaints);
    TIFFOpenOptionsSetWarningHandlerExtR(pOptions.get(), Complaints::OnWarning, nullptr);
    const int nDescriptor = dup(fileno(pFile));
    if (nDescriptor < 0) {
        return nullptr;
    }
    lseek(nDescriptor, 0, SEEK_SET);  // the stream may have read ahead
    TiffHandle pTiff(TIFFFdOpenExt(nDescriptor, "picture", "rm", pOptions.get()));
    if (pTiff == nullptr) {
        close(nDescriptor);
    }
    return pTiff;
}

template <class Value>
Value FieldOr(TIFF* pTiff, std::uint32_t nTag, Value fallback) {
    Value value{};
    return TIFFGetFieldDefaulted(pTiff, nTag, &value) != 0 ? value : fallback;
}

// What decides how the rows are read.
struct TiffLayout {
    std::uint32_t nWidth = 0;
    std::uint32_t nHeight = 0;
    std::uint16_t nBitsPerSample = 1;
    std::uint16_t nSamples = 1;
    std::uint16_t nPhotometric = 0;
    bool bPlainSamples = true;  // unsigned, those of a pixel side by side
    bool bTiled = false;
    std::uint32_t nTileWidth = 0;
    std::uint32_t nTileHeight = 0;
};

TiffLayout LayoutOf(TIFF* pTiff) {
    TiffLayout layout;
    layout.nWidth = FieldOr<std::uint32_t>(pTiff, TIFFTAG_IMAGEWIDTH, 0);
    layout.nHeight = FieldOr<std::uint32_t>(pTiff, TIFFTAG_IMAGELENGTH, 0);
    layout.nBitsPerSample = FieldOr<std::uint16_t>(pTiff, TIFFTAG_BITSPERSAMPLE, 1);
    layout.nSamples = FieldOr<std::uint16_t>(pTiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    layout.nPhotometric = FieldOr<std::uint16_t>(pTiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MASK);
    const auto nPlanes = FieldOr<std::uint16_t>(pTiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    layout.bPlainSamples = (layout.nSamples == 1 || nPlanes == PLANARCONFIG_CONTIG) &&
                           FieldOr<std::uint16_t>(pTiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT) == SAMPLEFORMAT_UINT;
    layout.bTiled = TIFFIsTiled(pTiff) != 0;
    layout.nTileWidth = FieldOr<std::uint32_t>(pTiff, TIFFTAG_TILEWIDTH, 0);
    layout.nTileHeight = FieldOr<std::uint32_t>(pTiff, TIFFTAG_TILELENGTH, 0);
    return layout;
}

std::uint64_t RowBytes(const TiffLayout& layout, std::uint64_t nPixels) {
    return (nPixels * layout.nBitsPerSample * layout.nSamples + 7) / 8;
}

bool IsGrey(const TiffLayout& layout) {
    return layout.nPhotometric == PHOTOMETRIC_MINISBLACK || layout.nPhotometric == PHOTOMETRIC_MINISWHITE;
}

// Whether the rows can be taken as they are.
bool KeepsDepth(const TiffLayout& layout) {
    const auto isOneOf = [](std::uint16_t nBits, std::initializer_list<std::uint16_t> depths) {
        return std::find(depths.begin(), depths.end(), nBits) != depths.end();
    };
    if (!layout.bPlainSamples) {
        return false;
    }
    if (std::uint64_t{layout.nTileWidth} * layout.nBitsPerSample * layout.nSamples % 8 != 0) {
        return false;  // the next tile would begin within a byte
    }
    if (layout.nPhotometric == PHOTOMETRIC_RGB) {
        return layout.nSamples == 3 && isOneOf(layout.nBitsPerSample, {8, 16});
    }
    if (layout.nPhotometric == PHOTOMETRIC_PALETTE) {
        return layout.nSamples == 1 && isOneOf(layout.nBitsPerSample, {1, 2, 4, 8});
    }
    return IsGrey(layout) && layout.nSamples == 1 && isOneOf(layout.nBitsPerSample, {1, 2, 4, 8, 16});
}

// Many tiles may share one small piece of the file, and a tile may be far larger than the picture:
// what all of them unpack to is limited too.
bool IsTilingReasonable(TIFF* pTiff) {
    const std::uint64_t nTileBytes = TIFFTileSize64(pTiff);
    return nTileBytes > 0 && nTileBytes <= kMaxBlockBytes && TIFFNumberOfTiles(pTiff) <= 4 * kMaxBlockBytes / nTileBytes;
}

void FillResolution(TIFF* pTiff, DibBuilder& builder) {
    const auto nUnit = FieldOr<std::uint16_t>(pTiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    if (nUnit != RESUNIT_INCH && nUnit != RESUNIT_CENTIMETER) {
        return;
    }
    const double fPerMeter = nUnit == RESUNIT_INCH ? kInchesPerMeter : kCentimetersPerMeter;
    const auto fX = FieldOr<float>(pTiff, TIFFTAG_XRESOLUTION, 0.0F);
    const auto fY = FieldOr<float>(pTiff, TIFFTAG_YRESOLUTION, 0.0F);
    builder.SetResolution(RoundedPelsPerMeter(static_cast<double>(fX) * fPerMeter),
                          RoundedPelsPerMeter(static_cast<double>(fY) * fPerMeter));
}

// The colour map has 16-bit values; some writers left them at 8 bits.
bool FillColourMap(TIFF* pTiff, const TiffLayout& layout, DibBuilder& builder) {
    std::array<const std::uint16_t*, 3> maps{};
    if (TIFFGetField(pTiff, TIFFTAG_COLORMAP, &maps[0], &maps[1], &maps[2]) == 0) {
        return false;
    }
    const std::uint32_t nEntries = 1U << layout.nBitsPerSample;
    const bool bEightBits = std::all_of(maps.begin(), maps.end(), [nEntries](const std::uint16_t* pMap) {
        return std::all_of(pMap, pMap + nEntries, [](std::uint16_t value) { return value < 256; });
    });
    const int nShift = bEightBits ? 0 : 8;
    const auto level = [&](std::size_t nMap, std::uint32_t i) { return static_cast<std::uint8_t>(maps[nMap][i] >> nShift); };
    for (std::uint32_t i = 0; i < nEntries; ++i) {
        builder.SetColour(i, level(0, i), level(1, i), level(2, i));
    }
    return true;
}

void HighBytes(const std::uint8_t* pSource, std::size_t nSamples, std::uint8_t* pTarget) {
    for (std::size_t i = 0; i < nSamples; ++i) {
        std::uint16_t nSample = 0;
        std::memcpy(&nSample, pSource + 2 * i, sizeof nSample);
        pTarget[i] = static_cast<std::uint8_t>(nSample >> 8);
    }
}

// Turns a row of the file into the block's row.
void PlaceRow(const TiffLayout& layout, const std::uint8_t* pSource, std::uint8_t* pTarget) {
    if (layout.nBitsPerSample == 2) {
        WidenTwoBitRow(pSource, layout.nWidth, pTarget);
    } else if (layout.nBitsPerSample == 16) {
        HighBytes(pSource, std::size_t{layout.nWidth} * layout.nSamples, pTarget);
    } else {
        std::memcpy(pTarget, pSource, static_cast<std::size_t>(RowBytes(layout, layout.nWidth)));
    }
    if (layout.nSamples == 3) {
        SwapRedAndBlue(pTarget, layout.nWidth);
    }
}

bool ReadStrips(TIFF* pTiff, const TiffLayout& layout, DibBuilder& builder) {
    const std::uint64_t nScanline = TIFFScanlineSize64(pTiff);
    if (nScanline < RowBytes(layout, layout.nWidth) || nScanline > kMaxBlockBytes) {
        return false;
    }
    std::vector<std::uint8_t> row(static_cast<std::size_t>(nScanline));
    for (std::uint32_t y = 0; y < layout.nHeight; ++y) {
        if (TIFFReadScanline(pTiff, row.data(), y, 0) < 0) {
            return false;
        }
        PlaceRow(layout, row.data(), builder.Row(y));
    }
    return true;
}

// Reads the tiles from row nTop on into full rows of nRowBytes bytes.
bool ReadBand(TIFF* pTiff, const TiffLayout& layout, std::uint32_t nTop, std::vector<std::uint8_t>& tile,
              std::vector<std::uint8_t>& band) {
    const auto nRowBytes = static_cast<std::size_t>(RowBytes(layout, layout.nWidth));
    const auto nTileRowBytes = static_cast<std::size_t>(RowBytes(layout, layout.nTileWidth));
    const std::uint32_t nRows = std::min(layout.nTileHeight, layout.nHeight - nTop);
    for (std::uint64_t nLeft = 0; nLeft < layout.nWidth; nLeft += layout.nTileWidth) {
        if (TIFFReadTile(pTiff, tile.data(), static_cast<std::uint32_t>(nLeft), nTop, 0, 0) < 0) {
            return false;
        }
        const auto nOffset = static_cast<std::size_t>(RowBytes(layout, nLeft));
        const std::size_t nBytes = std::min(nTileRowBytes, nRowBytes - nOffset);
        for (std::size_t r = 0; r < nRows; ++r) {
            std::memcpy(band.data() + r * nRowBytes + nOffset, tile.data() + r * nTileRowBytes, nBytes);
        }
    }
    return true;
}

bool ReadTiles(TIFF* pTiff, const TiffLayout& layout, DibBuilder& builder) {
    const auto nRowBytes = static_cast<std::size_t>(RowBytes(layout, layout.nWidth));
    const std::uint64_t nTileBytes = TIFFTileSize64(pTiff);
    if (nTileBytes < RowBytes(layout, layout.nTileWidth) * layout.nTileHeight) {
        return false;
    }
    std::vector<std::uint8_t> tile(static_cast<std::size_t>(nTileBytes));
    std::vector<std::uint8_t> band(nRowBytes * std::min(layout.nTileHeight, layout.nHeight));
    for (std::uint32_t y = 0; y < layout.nHeight; ++y) {
        const std::uint32_t nInBand = y % layout.nTileHeight;
        if (nInBand == 0 && !ReadBand(pTiff, layout, y, tile, band)) {
            return false;
        }
        PlaceRow(layout, band.data() + nInBand * nRowBytes, builder.Row(y));
    }
    return true;
}

LoadedPicture Damaged(const Complaints& complaints) {
    return Failed(WithDetail("the TIFF picture is damaged", complaints.Text()));
}

LoadedPicture ReadKeepingDepth(TIFF* pTiff, const TiffLayout& layout, const Complaints& complaints) {
    const std::uint32_t nBits = std::min<std::uint32_t>(layout.nBitsPerSample, 8);
    const auto nDepth = static_cast<std::uint16_t>(layout.nSamples == 3 ? 24 : (nBits == 2 ? 4 : nBits));
    DibBuilder builder;
    std::string error = builder.Create(layout.nWidth, layout.nHeight, nDepth, 1U << nBits);
    if (!error.empty()) {
        return Failed(std::move(error));
    }
    if (IsGrey(layout)) {
        builder.SetGreyTable(nBits, layout.nPhotometric == PHOTOMETRIC_MINISWHITE);
    } else if (layout.nPhotometric == PHOTOMETRIC_PALETTE && !FillColourMap(pTiff, layout, builder)) {
        return Failed("the TIFF picture has no colour table");
    }
    FillResolution(pTiff, builder);
    const bool bRows = layout.bTiled ? ReadTiles(pTiff, layout, builder) : ReadStrips(pTiff, layout, builder);
    return bRows && !complaints.Any() ? builder.Finish() : Damaged(complaints);
}

// Colours come multiplied by their alpha, so white shows through by what is missing of it.
void PlaceOverWhite(const std::uint32_t* pSource, std::uint32_t nWidth, std::uint8_t* pTarget) {
    for (std::uint32_t x = 0; x < nWidth; ++x, pTarget += 3) {
        const std::uint32_t nPixel = pSource[x];
        const std::uint32_t nWhite = 255U - TIFFGetA(nPixel);
        pTarget[0] = static_cast<std::uint8_t>(std::min(TIFFGetB(nPixel) + nWhite, 255U));
        pTarget[1] = static_cast<std::uint8_t>(std::min(TIFFGetG(nPixel) + nWhite, 255U));
        pTarget[2] = static_cast<std::uint8_t>(std::min(TIFFGetR(nPixel) + nWhite, 255U));
    }
}

LoadedPicture ReadConverted(TIFF* pTiff, const TiffLayout& layout, const Complaints& complaints) {
    std::array<char, 1024> reason{};
    if (TIFFRGBAImageOK(pTiff, reason.data()) == 0) {
        return Failed(WithDetail(kOtherKind, reason.data()));
    }
    const std::uint64_t nPixels = std::uint64_t{layout.nWidth} * layout.nHeight;
    if (nPixels > kMaxBlockBytes / sizeof(std::uint32_t)) {
        return Failed("the picture is too large");
    }
    DibBuilder builder;
    if (std::string error = builder.Create(layout.nWidth, layout.nHeight, 24); !error.empty()) {
        return Failed(std::move(error));
    }
    std::vector<std::uint32_t> raster(static_cast<std::size_t>(nPixels));
    const int nAsStored = FieldOr<std::uint16_t>(pTiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    const int nDone = TIFFReadRGBAImageOriented(pTiff, layout.nWidth, layout.nHeight, raster.data(), nAsStored, 1);
    if (nDone == 0 || complaints.Any()) {
        return Damaged(complaints);
    }
    for (std::uint32_t y = 0; y < layout.nHeight; ++y) {
        PlaceOverWhite(raster.data() + std::size_t{layout.nWidth} * y, layout.nWidth, builder.Row(y));
    }
    FillResolution(pTiff, builder);
    return builder.Finish();
}

}  // namespace

LoadedPicture LoadTiff(std::FILE* pFile) {
    Complaints complaints;
    const TiffHandle pTiff = OpenTiff(pFile, complaints);
    if (pTiff == nullptr) {
        return Damaged(complaints);
    }
    if (TIFFIsCODECConfigured(FieldOr<std::uint16_t>(pTiff.get(), TIFFTAG_COMPRESSION, COMPRESSION_NONE)) == 0) {
        return Failed(kOtherKind);
    }
    const TiffLayout layout = LayoutOf(pTiff.get());
    if (layout.bTiled && !IsTilingReasonable(pTiff.get())) {
        return Failed("the TIFF picture has unusable tiles");
    }
    return KeepsDepth(layout) ? ReadKeepingDepth(pTiff.get(), layout, complaints)
                              : ReadConverted(pTiff.get(), layout, complaints);
}

}  // namespace width
