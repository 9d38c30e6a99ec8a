// Blocks made by hand for the tests of picture files, bitmap files around them, and what a test says of them.
#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <random>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "core/PackedDib.h"
#include "imageio/ImageIo.h"

namespace width {

namespace fs = std::filesystem;

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
    std::copy(right.begin(), right.end(), std::back_inserter(left));
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

inline DibView ViewOf(const Bytes& block) {
    const auto view = DibView::Open(block);
    if (!view.has_value()) {
        throw std::runtime_error(DibStatusText(CheckPackedDib(block).status));
    }
    return *view;
}

// Red, green and blue of all pixels, top row first.
inline std::vector<int> Pixels(const Bytes& block) {
    const DibView view = ViewOf(block);
    std::vector<int> values;
    for (std::int32_t y = view.Height() - 1; y >= 0; --y) {
        for (std::int32_t x = 0; x < view.Width(); ++x) {
            const Colour colour = view.PixelAt(x, y);
            values.insert(values.end(), {colour.red, colour.green, colour.blue});
        }
    }
    return values;
}

// The reds alone, for grey pictures and tables whose reds tell enough.
inline std::vector<int> Reds(const Bytes& block) {
    std::vector<int> values = Pixels(block);
    std::vector<int> reds;
    for (std::size_t i = 0; i < values.size(); i += 3) {
        reds.push_back(values[i]);
    }
    return reds;
}

inline Bytes ReadAll(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    const std::string content = text.str();
    const auto bytes = std::as_bytes(std::span(content));
    return {bytes.begin(), bytes.end()};
}

// Whether two pictures have the same levels but for the loss of a good JPEG file.
inline void ExpectNear(const Bytes& got, const Bytes& want) {
    constexpr int kLoss = 12;
    const std::vector<int> gotPixels = Pixels(got);
    const std::vector<int> wantPixels = Pixels(want);
    ASSERT_EQ(gotPixels.size(), wantPixels.size());
    for (std::size_t i = 0; i < gotPixels.size(); ++i) {
        ASSERT_NEAR(gotPixels[i], wantPixels[i], kLoss) << i;
    }
}

// Grey levels in ascending order, smoothly varying pixels.
inline Bytes GreyBlock() {
    Bytes grey = Block(64, 48, 8);
    for (std::size_t i = 0; i < 256; ++i) {
        Put(grey, 40 + 4 * i, static_cast<std::uint32_t>(0x010101 * i));
    }
    return grey;
}

class ImageIo : public ::testing::Test {
protected:
    ImageIo() : m_folder(fs::temp_directory_path() / ("imageio-test-" + std::to_string(std::random_device{}()))) {
        fs::create_directories(m_folder);
    }
    ~ImageIo() override {
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }

    fs::path Path(const std::string& name) const { return m_folder / name; }
    // A file of tests/data/pictures, whose README says what is in it.
    static fs::path Shipped(const std::string& name) { return fs::path(WIDTH_TEST_DATA) / "pictures" / name; }

    LoadedPicture LoadBytes(const Bytes& bytes) const {
        fs::remove(Path("bytes"));  // some file systems write a truncated file through to the disk
        std::ofstream(Path("bytes"), std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return LoadPicture(Path("bytes"));
    }

    Bytes Load(const fs::path& path) const {
        const LoadedPicture picture = LoadPicture(path);
        EXPECT_EQ(picture.error, "") << path;
        return picture.block;
    }

    // The block after a trip through a file.
    Bytes Trip(const Bytes& block, const std::string& ending) const {
        EXPECT_EQ(SavePicture(Path("trip" + ending), block), "");
        return Load(Path("trip" + ending));
    }

    fs::path m_folder;
};

}  // namespace width
