// Writing TIFF, by libtiff: packed by LZW, with a resolution in pixels per centimetre.
// Tested by: tests/unit/imageio/ImageIoTest.cpp
#include <tiffio.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <memory>
#include <vector>

#include "imageio/Formats.h"

namespace width {

namespace {

struct CloseTiff {
    void operator()(TIFF* pTiff) const { TIFFClose(pTiff); }
};
using TiffHandle = std::unique_ptr<TIFF, CloseTiff>;

NewFile& FileOf(thandle_t pFile) {
    return *static_cast<NewFile*>(pFile);
}

tmsize_t Read(thandle_t pFile, void* pBytes, tmsize_t nBytes) {
    return static_cast<tmsize_t>(FileOf(pFile).Read(pBytes, static_cast<std::size_t>(nBytes)));
}

tmsize_t Write(thandle_t pFile, void* pBytes, tmsize_t nBytes) {
    return FileOf(pFile).Write(pBytes, static_cast<std::size_t>(nBytes)) ? nBytes : -1;
}

toff_t Seek(thandle_t pFile, toff_t nOffset, int nFrom) {
    NewFile& file = FileOf(pFile);
    const toff_t nStart = nFrom == SEEK_SET ? 0 : (nFrom == SEEK_CUR ? file.Position() : file.Size());
    file.Seek(nStart + nOffset);
    return file.Position();
}

toff_t Size(thandle_t pFile) {
    return FileOf(pFile).Size();
}

int Close(thandle_t) {
    return 0;
}

int SayNothing(TIFF*, void*, const char*, const char*, va_list) {
    return 1;
}

TiffHandle CreateTiff(NewFile& file) {
    const std::unique_ptr<TIFFOpenOptions, void (*)(TIFFOpenOptions*)> pOptions(TIFFOpenOptionsAlloc(), TIFFOpenOptionsFree);
    if (pOptions == nullptr) {
        return nullptr;
    }
    TIFFOpenOptionsSetErrorHandlerExtR(pOptions.get(), SayNothing, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(pOptions.get(), SayNothing, nullptr);
    return TiffHandle(
        TIFFClientOpenExt("picture", "wm", &file, Read, Write, Seek, Close, Size, nullptr, nullptr, pOptions.get()));
}

// Sets the fields in front of the rows. false when the library refuses one.
bool WriteFields(TIFF* pTiff, const DibView& view, int nPhotometric) {
    const bool bColour = nPhotometric == PHOTOMETRIC_RGB;
    return TIFFSetField(pTiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(view.Width())) != 0 &&
           TIFFSetField(pTiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(view.Height())) != 0 &&
           TIFFSetField(pTiff, TIFFTAG_BITSPERSAMPLE, bColour ? 8 : static_cast<int>(view.BitCount())) != 0 &&
           TIFFSetField(pTiff, TIFFTAG_SAMPLESPERPIXEL, bColour ? 3 : 1) != 0 &&
           TIFFSetField(pTiff, TIFFTAG_PHOTOMETRIC, nPhotometric) != 0 &&
           TIFFSetField(pTiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW) != 0 &&
           TIFFSetField(pTiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) != 0 &&
           TIFFSetField(pTiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) != 0 &&
           TIFFSetField(pTiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(pTiff, 0)) != 0;
}

void WriteResolution(TIFF* pTiff, const DibFigures& figures) {
    const std::int32_t nX = std::max(figures.nXPelsPerMeter, 0);
    const std::int32_t nY = std::max(figures.nYPelsPerMeter, 0);
    if (nX > 0 || nY > 0) {
        TIFFSetField(pTiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_CENTIMETER);
        TIFFSetField(pTiff, TIFFTAG_XRESOLUTION, nX / kCentimetersPerMeter);
        TIFFSetField(pTiff, TIFFTAG_YRESOLUTION, nY / kCentimetersPerMeter);
    }
}

bool WriteColourMap(TIFF* pTiff, const DibView& view) {
    const std::array<Colour, 256> colours = view.Palette();
    std::array<std::array<std::uint16_t, 256>, 3> maps{};
    for (std::size_t i = 0; i < colours.size(); ++i) {
        maps[0][i] = static_cast<std::uint16_t>(colours[i].red * 257);
        maps[1][i] = static_cast<std::uint16_t>(colours[i].green * 257);
        maps[2][i] = static_cast<std::uint16_t>(colours[i].blue * 257);
    }
    return TIFFSetField(pTiff, TIFFTAG_COLORMAP, maps[0].data(), maps[1].data(), maps[2].data()) != 0;
}

int PhotometricFor(const DibView& view) {
    if (view.BitCount() > 8) {
        return PHOTOMETRIC_RGB;
    }
    if (HasGreyTable(view, false)) {
        return PHOTOMETRIC_MINISBLACK;
    }
    return HasGreyTable(view, true) ? PHOTOMETRIC_MINISWHITE : PHOTOMETRIC_PALETTE;
}

bool WriteRows(TIFF* pTiff, const DibView& view) {
    std::vector<std::uint8_t> row(view.Figures().nStride);
    for (std::uint32_t y = 0; y < static_cast<std::uint32_t>(view.Height()); ++y) {
        if (view.BitCount() > 8) {
            CopyRgbRow(view, y, row.data());
        } else {
            std::ranges::copy(PictureRow(view, y), row.begin());
        }
        if (TIFFWriteScanline(pTiff, row.data(), y, 0) < 0) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::string SaveTiff(NewFile& file, const SourceBlock& source) {
    const TiffHandle pTiff = CreateTiff(file);
    const int nPhotometric = PhotometricFor(source.view);
    bool bDone = pTiff != nullptr && WriteFields(pTiff.get(), source.view, nPhotometric);
    if (bDone) {
        WriteResolution(pTiff.get(), source.view.Figures());
        bDone = (nPhotometric != PHOTOMETRIC_PALETTE || WriteColourMap(pTiff.get(), source.view)) &&
                WriteRows(pTiff.get(), source.view) && TIFFWriteDirectory(pTiff.get()) != 0;
    }
    return bDone ? std::string() : "the TIFF picture cannot be written";
}

}  // namespace width
