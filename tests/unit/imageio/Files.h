// Picture files made by hand, byte by byte, for kinds that the project itself never writes.
#pragma once

#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "tests/unit/imageio/Blocks.h"

namespace width {

inline Bytes BytesOf(const std::string& text) {
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

inline Bytes BigEndian(std::uint32_t nValue) {
    return BytesOf({static_cast<int>(nValue >> 24), static_cast<int>(nValue >> 16 & 255), static_cast<int>(nValue >> 8 & 255),
                    static_cast<int>(nValue & 255)});
}

inline Bytes PngChunk(const std::string& name, const Bytes& content) {
    const Bytes body = BytesOf(name) + content;
    std::uint32_t nCrc = 0xffffffff;
    for (const std::byte b : body) {
        nCrc ^= std::to_integer<std::uint32_t>(b);
        for (int i = 0; i < 8; ++i) {
            nCrc = nCrc >> 1 ^ ((nCrc & 1) != 0 ? 0xedb88320 : 0);
        }
    }
    return BigEndian(static_cast<std::uint32_t>(content.size())) + body + BigEndian(~nCrc);
}

// chunks  PLTE, tRNS and the like, made by PngChunk
// rows    with their filter bytes, fewer than 65,536 bytes in all; they are stored without packing
inline Bytes PngFile(int nWidth, int nHeight, int nDepth, int nColourType, const Bytes& chunks, const Bytes& rows) {
    std::uint32_t nLow = 1;
    std::uint32_t nHigh = 0;
    for (const std::byte b : rows) {
        nLow = (nLow + std::to_integer<std::uint32_t>(b)) % 65521;
        nHigh = (nHigh + nLow) % 65521;
    }
    const auto nBytes = static_cast<int>(rows.size());
    const Bytes stored = BytesOf({0x78, 1, 1, nBytes & 255, nBytes >> 8, ~nBytes & 255, ~nBytes >> 8 & 255});
    return BytesOf({0x89, 'P', 'N', 'G', 13, 10, 26, 10}) +
           PngChunk("IHDR", BytesOf({0, 0, 0, nWidth, 0, 0, 0, nHeight, nDepth, nColourType, 0, 0, 0})) + chunks +
           PngChunk("IDAT", stored + rows + BigEndian(nHigh << 16 | nLow)) + PngChunk("IEND", {});
}

// Values of 16 bits under a TIFF picture's tag.
struct TiffField {
    int nTag;
    std::vector<int> values;
};

// Little-endian, with the rows behind the file header, from byte 8 on.
inline Bytes TiffOf(std::vector<TiffField> fields, const Bytes& rows) {
    const auto shorts = [](const std::vector<int>& values) {
        Bytes bytes;
        for (const int nValue : values) {
            bytes.push_back(std::byte(nValue & 255));
            bytes.push_back(std::byte(nValue >> 8));
        }
        return bytes;
    };
    std::ranges::sort(fields, {}, &TiffField::nTag);
    Bytes file = BytesOf({'I', 'I', 42, 0, 0, 0, 0, 0}) + rows + Bytes(rows.size() % 2);
    Bytes directory = shorts({static_cast<int>(fields.size())});
    for (const TiffField& field : fields) {
        const bool bFits = field.values.size() <= 2;
        directory = directory + shorts({field.nTag, 3, static_cast<int>(field.values.size()), 0});
        directory = directory + (bFits ? shorts(field.values) : shorts({static_cast<int>(file.size()), 0}));
        directory.resize((directory.size() + 1) / 4 * 4 + 2);
        file = file + (bFits ? Bytes() : shorts(field.values));
    }
    Put(file, 4, static_cast<std::uint32_t>(file.size()));
    return file + directory + Bytes(4);
}

// fields  what is there beside the size and the one strip
inline Bytes TiffFile(int nWidth, int nHeight, std::vector<TiffField> fields, const Bytes& rows) {
    fields.insert(fields.end(),
                  {{256, {nWidth}}, {257, {nHeight}}, {273, {8}}, {278, {nHeight}}, {279, {static_cast<int>(rows.size())}}});
    return TiffOf(std::move(fields), rows);
}

}  // namespace width
