// Pictures made for the tests: blocks by hand, files by the format's own library, in kinds that
// SavePicture never writes. Writing them cannot fail for a reason a test should report.
#pragma once

#include <cstdio>
// libjpeg's header leans on <cstdio>.
#include <gif_lib.h>
#include <jpeglib.h>
#include <png.h>
#include <tiffio.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <iterator>
#include <utility>
#include <vector>

#include "core/PackedDib.h"

namespace width {

using Bytes = std::vector<std::byte>;

template <class Value>
void Put(Bytes& bytes, std::size_t nOffset, Value value) {
    bytes.resize(std::max(bytes.size(), nOffset + sizeof value));
    std::memcpy(bytes.data() + nOffset, &value, sizeof value);
}

inline Bytes BytesOf(std::initializer_list<int> values) {
    Bytes bytes;
    std::transform(values.begin(), values.end(), std::back_inserter(bytes), [](int value) { return std::byte(value); });
    return bytes;
}

inline Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

// A 40-byte header.
inline Bytes Header(std::int32_t nWidth, std::int32_t nHeight, int nDepth, std::uint32_t nColours,
                    std::uint32_t nCompression = 0) {
    Bytes bytes(40);
    Put(bytes, 0, std::uint32_t{40});
    Put(bytes, 4, nWidth);
    Put(bytes, 8, nHeight);
    Put(bytes, 12, std::uint16_t{1});
    Put(bytes, 14, static_cast<std::uint16_t>(nDepth));
    Put(bytes, 16, nCompression);
    Put(bytes, 24, std::int32_t{3937});
    Put(bytes, 28, std::int32_t{11811});
    Put(bytes, 32, nColours);
    return bytes;
}

// A block of smoothly varying pixels with clean padding; its table has duplicates, and no order.
inline Bytes Block(std::int32_t nWidth, std::int32_t nHeight, int nDepth, std::uint32_t nColours = 0) {
    Bytes block = Header(nWidth, nHeight, nDepth, nColours);
    const std::uint32_t nEntries = nDepth > 8 ? 0 : (nColours != 0 ? nColours : 1U << nDepth);
    for (std::uint32_t i = 0; i < nEntries; ++i) {
        block = block + BytesOf({static_cast<int>(i * 37 % 256), static_cast<int>(200 - i / 3), i % 2 == 0 ? 10 : 250, 0});
    }
    const std::size_t nStart = block.size();
    const std::size_t nStride = DibStride(static_cast<std::uint32_t>(nDepth), static_cast<std::uint32_t>(nWidth));
    block.resize(nStart + nStride * static_cast<std::size_t>(nHeight));
    for (int y = 0; y < nHeight; ++y) {
        for (int i = 0; i < nWidth * nDepth; ++i) {
            const int nPixel = i / nDepth;
            const std::uint32_t nValue = nDepth > 8 ? static_cast<std::uint32_t>(i / 8 % 3 * 60 + nPixel * 2 + y * 3)
                                                    : static_cast<std::uint32_t>(nPixel + 2 * y) % nEntries;
            const int nBit = nDepth > 8 ? 7 - i % 8 : nDepth - 1 - i % nDepth;
            const bool bSet = (nValue >> nBit & 1U) != 0 && !(nDepth == 32 && i % 32 >= 24);
            auto& target = block[nStart + nStride * static_cast<std::size_t>(y) + static_cast<std::size_t>(i / 8)];
            target |= bSet ? std::byte(0x80 >> i % 8) : std::byte{0};
        }
    }
    return block;
}

// A bitmap file around a header, a table and rows.
inline Bytes BmpFile(const Bytes& head, const Bytes& table, const Bytes& rows) {
    Bytes bytes = BytesOf({'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}) + head + table + rows;
    Put(bytes, 2, static_cast<std::uint32_t>(bytes.size()));
    Put(bytes, 10, static_cast<std::uint32_t>(bytes.size() - rows.size()));
    return bytes;
}

// A file of run lengths: 4 x 2 pixels, three colours of reds 10, 20, 30, rows 2 1 0 1 and 1 1 1 2.
inline Bytes RunLengthFile() {
    const Bytes rows = BytesOf({3, 1, 1, 2, 0, 0, 0, 4, 2, 1, 0, 1, 0, 1});
    Bytes head = Header(4, 2, 8, 3, 1);
    Put(head, 20, static_cast<std::uint32_t>(rows.size()));
    return BmpFile(head, BytesOf({1, 1, 10, 0, 2, 2, 20, 0, 3, 3, 30, 0}), rows);
}

// A PNG picture of one row that is repeated.
inline void WritePng(const std::filesystem::path& path, std::uint32_t nWidth, std::uint32_t nHeight, int nDepth, int nType,
                     std::vector<png_byte> row) {
    std::FILE* pFile = std::fopen(path.c_str(), "wb");
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, pFile);
    png_set_IHDR(png, info, nWidth, nHeight, nDepth, nType, PNG_INTERLACE_ADAM7, 0, 0);
    png_set_gAMA(png, info, 0.45455);
    const std::array<png_color, 3> table{{{9, 8, 7}, {9, 8, 7}, {1, 2, 3}}};
    if (nType == PNG_COLOR_TYPE_PALETTE) {
        png_set_PLTE(png, info, table.data(), 3);
        png_set_tRNS(png, info, row.data(), 1, nullptr);
    }
    png_write_info(png, info);
    std::vector<png_bytep> rows(nHeight, row.data());
    png_write_image(png, rows.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    std::fclose(pFile);
}

struct TiffKind {
    int nDepth, nSamples, nPhotometric;
    std::uint32_t nTile = 0;  // side of a tile, 0: strips
    int nPlanar = PLANARCONFIG_CONTIG, nOrientation = ORIENTATION_TOPLEFT, nUnit = RESUNIT_INCH;
};

// A TIFF picture whose strip, tiles or planes are all the same bytes, and a second one behind it.
inline void WriteTiff(const std::filesystem::path& path, std::uint32_t nWidth, std::uint32_t nHeight, const TiffKind& kind,
                      std::vector<std::uint8_t> data) {
    TIFF* pTiff = TIFFOpen(path.c_str(), "w");
    for (int nPage = 0; nPage < 2; ++nPage) {
        TIFFSetField(pTiff, TIFFTAG_IMAGEWIDTH, nPage == 0 ? nWidth : 8 * nWidth);
        TIFFSetField(pTiff, TIFFTAG_IMAGELENGTH, nHeight);
        TIFFSetField(pTiff, TIFFTAG_BITSPERSAMPLE, kind.nDepth);
        TIFFSetField(pTiff, TIFFTAG_SAMPLESPERPIXEL, kind.nSamples);
        TIFFSetField(pTiff, TIFFTAG_PHOTOMETRIC, kind.nPhotometric);
        TIFFSetField(pTiff, TIFFTAG_PLANARCONFIG, kind.nPlanar);
        TIFFSetField(pTiff, TIFFTAG_ORIENTATION, kind.nOrientation);
        TIFFSetField(pTiff, TIFFTAG_RESOLUTIONUNIT, kind.nUnit);
        TIFFSetField(pTiff, TIFFTAG_XRESOLUTION, 300.0);
        TIFFSetField(pTiff, TIFFTAG_YRESOLUTION, 72.0);
        if (kind.nTile != 0) {
            TIFFSetField(pTiff, TIFFTAG_TILEWIDTH, kind.nTile);
            TIFFSetField(pTiff, TIFFTAG_TILELENGTH, kind.nTile);
            for (std::uint32_t i = 0; i < TIFFNumberOfTiles(pTiff); ++i) {
                data[0] = static_cast<std::uint8_t>(0x80 + i);
                TIFFWriteEncodedTile(pTiff, i, data.data(), static_cast<tmsize_t>(data.size()));
            }
        } else {
            TIFFSetField(pTiff, TIFFTAG_ROWSPERSTRIP, nHeight);
            for (std::uint32_t i = 0; i < TIFFNumberOfStrips(pTiff); ++i) {
                TIFFWriteEncodedStrip(pTiff, i, data.data(), static_cast<tmsize_t>(data.size()));
            }
        }
        TIFFWriteDirectory(pTiff);
    }
    TIFFClose(pTiff);
}

// Two interlaced pictures of 2 x 5 pixels on a larger screen, the first with a table of its own.
inline void WriteGif(const std::filesystem::path& path) {
    GifFileType* pGif = EGifOpenFileName(path.c_str(), false, nullptr);
    ColorMapObject* pWide = GifMakeMapObject(64, nullptr);
    ColorMapObject* pOwn = GifMakeMapObject(4, nullptr);
    std::fill_n(&pOwn->Colors[0], 4, GifColorType{5, 6, 7});
    EGifPutScreenDesc(pGif, 20, 20, 8, 0, pWide);
    EGifPutComment(pGif, "two pictures");
    for (const bool bFirst : {true, false}) {
        EGifPutImageDesc(pGif, 1, 1, 2, 5, bFirst, bFirst ? pOwn : nullptr);
        for (const std::uint8_t pixel :
             std::to_array<std::uint8_t>({0, 3, 2, 1, 3})) {  // in the order of the passes: rows 0, 4, 2, 1, 3
            std::array<GifPixelType, 2> row{pixel, 1};
            EGifPutLine(pGif, row.data(), 2);
        }
        GifFreeMapObject(std::exchange(pGif->Image.ColorMap, nullptr));  // the library keeps only the last one
    }
    EGifCloseFile(pGif, nullptr);
    GifFreeMapObject(pWide);
    GifFreeMapObject(pOwn);
}

// One row of inks, stored inverted as the Adobe marker has it.
inline void WriteInkJpeg(const std::filesystem::path& path, std::vector<std::uint8_t> row) {
    std::FILE* pFile = std::fopen(path.c_str(), "wb");
    jpeg_compress_struct codec{};
    jpeg_error_mgr errors{};
    codec.err = jpeg_std_error(&errors);
    jpeg_create_compress(&codec);
    jpeg_stdio_dest(&codec, pFile);
    codec.image_width = static_cast<JDIMENSION>(row.size() / 4);
    codec.image_height = 1;
    codec.input_components = 4;
    codec.in_color_space = JCS_CMYK;
    jpeg_set_defaults(&codec);
    jpeg_set_quality(&codec, 100, TRUE);
    jpeg_start_compress(&codec, TRUE);
    JSAMPROW pRow = row.data();
    jpeg_write_scanlines(&codec, &pRow, 1);
    jpeg_finish_compress(&codec);
    jpeg_destroy_compress(&codec);
    std::fclose(pFile);
}

}  // namespace width
