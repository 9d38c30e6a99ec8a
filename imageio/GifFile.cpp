// GIF, by giflib. The first picture is taken with its own size and colour table; a transparent
// entry becomes white. A table has 2, 4, 8, ... 256 entries, so up to 2 become 1 bit per pixel,
// up to 16 become 4 and more become 8. The format has no resolution.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#include <gif_lib.h>

#include <array>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "imageio/Formats.h"

namespace width {

namespace {

constexpr std::uint64_t kPixelsPerByte = 4096;  // a code of 12 bits stands for 4096 pixels at most

struct CloseReader {
    void operator()(GifFileType* pGif) const { DGifCloseFile(pGif, nullptr); }
};
using GifReader = std::unique_ptr<GifFileType, CloseReader>;

LoadedPicture Damaged(int nError) {
    const char* pText = GifErrorString(nError);
    return Failed(WithDetail("the GIF picture is damaged", pText != nullptr ? pText : ""));
}

int ReadBytes(GifFileType* pGif, GifByteType* pTarget, int nBytes) {
    return static_cast<int>(std::fread(pTarget, 1, static_cast<std::size_t>(nBytes), static_cast<std::FILE*>(pGif->UserData)));
}

int WriteBytes(GifFileType* pGif, const GifByteType* pSource, int nBytes) {
    return static_cast<NewFile*>(pGif->UserData)->Write(pSource, static_cast<std::size_t>(nBytes)) ? nBytes : 0;
}

// Reads an extension, for the entry that the next picture hides.
bool ReadExtension(GifFileType* pGif, int& nHidden) {
    int nCode = 0;
    GifByteType* pBytes = nullptr;
    if (DGifGetExtension(pGif, &nCode, &pBytes) != GIF_OK) {
        return false;
    }
    GraphicsControlBlock control{};
    if (nCode == GRAPHICS_EXT_FUNC_CODE && pBytes != nullptr && DGifExtensionToGCB(pBytes[0], pBytes + 1, &control) == GIF_OK) {
        nHidden = control.TransparentColor;
    }
    while (pBytes != nullptr) {
        if (DGifGetExtensionNext(pGif, &pBytes) != GIF_OK) {
            return false;
        }
    }
    return true;
}

// Moves to the first picture's descriptor. false: there is none, or the file is damaged.
// nHidden  gets the number of the entry that is transparent, or stays as it is
bool FindPicture(GifFileType* pGif, int& nHidden) {
    GifRecordType type = UNDEFINED_RECORD_TYPE;
    while (DGifGetRecordType(pGif, &type) == GIF_OK) {
        if (type == IMAGE_DESC_RECORD_TYPE) {
            return DGifGetImageDesc(pGif) == GIF_OK;
        }
        if (type != EXTENSION_RECORD_TYPE || !ReadExtension(pGif, nHidden)) {
            return false;
        }
    }
    return false;
}

std::uint16_t DepthFor(std::uint32_t nEntries) {
    if (nEntries <= 2) {
        return 1;
    }
    return nEntries <= 16 ? 4 : 8;
}

// The rows of an interlaced picture come in four passes.
std::vector<std::uint32_t> RowOrder(std::uint32_t nHeight, bool bInterlaced) {
    struct Pass {
        std::uint32_t nFirst, nStep;
    };
    const std::vector<Pass> passes = bInterlaced ? std::vector<Pass>{{0, 8}, {4, 8}, {2, 4}, {1, 2}} : std::vector<Pass>{{0, 1}};
    std::vector<std::uint32_t> order;
    order.reserve(nHeight);
    for (const Pass& pass : passes) {
        for (std::uint32_t y = pass.nFirst; y < nHeight; y += pass.nStep) {
            order.push_back(y);
        }
    }
    return order;
}

bool ReadRows(GifFileType* pGif, std::uint32_t nBits, DibBuilder& builder) {
    std::vector<GifPixelType> indices(builder.Width());
    for (const std::uint32_t y : RowOrder(builder.Height(), pGif->Image.Interlace)) {
        if (DGifGetLine(pGif, indices.data(), static_cast<int>(indices.size())) != GIF_OK) {
            return false;
        }
        PackIndexRow(indices.data(), builder.Width(), nBits, builder.Row(y));
    }
    return true;
}

LoadedPicture ReadPicture(GifFileType* pGif, int nHidden) {
    const std::uint64_t nPixels = static_cast<std::uint64_t>(pGif->Image.Width) * static_cast<std::uint64_t>(pGif->Image.Height);
    if (!CanUnpackTo(static_cast<std::FILE*>(pGif->UserData), nPixels, kPixelsPerByte)) {
        return Failed(WithDetail("the GIF picture is damaged", kEndsEarly));
    }
    const ColorMapObject* pMap = pGif->Image.ColorMap != nullptr ? pGif->Image.ColorMap : pGif->SColorMap;
    if (pMap == nullptr) {
        return Failed("the GIF picture has no colour table");
    }
    const auto nEntries = static_cast<std::uint32_t>(pMap->ColorCount);
    const std::uint16_t nBits = DepthFor(nEntries);
    DibBuilder builder;
    std::string error = builder.Create(static_cast<std::uint32_t>(pGif->Image.Width),
                                       static_cast<std::uint32_t>(pGif->Image.Height), nBits, nEntries);
    if (!error.empty()) {
        return Failed(std::move(error));
    }
    for (std::uint32_t i = 0; i < nEntries; ++i) {
        builder.SetColour(i, pMap->Colors[i].Red, pMap->Colors[i].Green, pMap->Colors[i].Blue,
                          static_cast<int>(i) == nHidden ? 0 : 255);
    }
    return ReadRows(pGif, nBits, builder) ? builder.Finish() : Damaged(pGif->Error);
}

// Owns the file being written; Close tells whether its last bytes went out.
class GifWriter {
public:
    explicit GifWriter(NewFile& file) : m_pGif(EGifOpen(&file, WriteBytes, &m_nError)) {}
    ~GifWriter() { Close(); }
    GifWriter(const GifWriter&) = delete;
    GifWriter& operator=(const GifWriter&) = delete;

    GifFileType* Get() const noexcept { return m_pGif; }
    bool Close() {
        GifFileType* pGif = std::exchange(m_pGif, nullptr);
        return pGif != nullptr && EGifCloseFile(pGif, &m_nError) == GIF_OK;
    }

private:
    int m_nError = 0;
    GifFileType* m_pGif;
};

struct FreeMap {
    void operator()(ColorMapObject* pMap) const { GifFreeMapObject(pMap); }
};

bool WriteHead(GifFileType* pGif, const DibView& view) {
    const int nEntries = 1 << view.BitCount();
    const std::unique_ptr<ColorMapObject, FreeMap> pMap(GifMakeMapObject(nEntries, nullptr));
    if (pMap == nullptr) {
        return false;
    }
    const std::array<Colour, 256> colours = view.Palette();
    for (std::size_t i = 0; i < static_cast<std::size_t>(nEntries); ++i) {
        pMap->Colors[i] = {colours[i].red, colours[i].green, colours[i].blue};
    }
    return EGifPutScreenDesc(pGif, view.Width(), view.Height(), 8, 0, pMap.get()) == GIF_OK &&
           EGifPutImageDesc(pGif, 0, 0, view.Width(), view.Height(), false, nullptr) == GIF_OK;
}

bool WriteRows(GifFileType* pGif, const DibView& view) {
    std::vector<GifPixelType> indices(static_cast<std::size_t>(view.Width()));
    for (std::uint32_t y = 0; y < static_cast<std::uint32_t>(view.Height()); ++y) {
        CopyIndexRow(view, y, indices.data());
        if (EGifPutLine(pGif, indices.data(), view.Width()) != GIF_OK) {
            return false;
        }
    }
    return true;
}

}  // namespace

LoadedPicture LoadGif(std::FILE* pFile) {
    int nError = 0;
    const GifReader pGif(DGifOpen(pFile, ReadBytes, &nError));
    if (pGif == nullptr) {
        return Damaged(nError);
    }
    int nHidden = NO_TRANSPARENT_COLOR;
    return FindPicture(pGif.get(), nHidden) ? ReadPicture(pGif.get(), nHidden) : Damaged(pGif->Error);
}

std::string SaveGif(NewFile& file, const SourceBlock& source) {
    constexpr std::int32_t kMaxSide = std::numeric_limits<std::uint16_t>::max();
    if (source.view.BitCount() > 8) {
        return "a GIF picture has at most 256 colours, this one has 24 or more bits per pixel";
    }
    if (source.view.Width() > kMaxSide || source.view.Height() > kMaxSide) {
        return "the picture is too large for a GIF file";
    }
    GifWriter writer(file);
    const bool bRows = writer.Get() != nullptr && WriteHead(writer.Get(), source.view) && WriteRows(writer.Get(), source.view);
    const bool bClosed = writer.Close();
    return bRows && bClosed ? std::string() : "the GIF picture cannot be written";
}

}  // namespace width
