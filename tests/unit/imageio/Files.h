// Picture files made by hand, byte by byte, for kinds that the project itself never writes.
#pragma once

#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "tests/unit/imageio/Blocks.h"

namespace width {

// Values of 16 bits under a TIFF picture's tag.
struct TiffField {
    int nTag;
    std::vector<int> values;
};

// Little-endian, with the rows in one strip behind the file header.
// fields  what is there beside size and strip
inline Bytes TiffFile(int nWidth, int nHeight, std::vector<TiffField> fields, const Bytes& rows) {
    const auto shorts = [](const std::vector<int>& values) {
        Bytes bytes;
        for (const int nValue : values) {
            bytes.push_back(std::byte(nValue & 255));
            bytes.push_back(std::byte(nValue >> 8));
        }
        return bytes;
    };
    fields.insert(fields.end(),
                  {{256, {nWidth}}, {257, {nHeight}}, {273, {8}}, {278, {nHeight}}, {279, {static_cast<int>(rows.size())}}});
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

}  // namespace width
