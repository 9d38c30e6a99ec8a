#include "tests/support/Pictures.h"

#include <algorithm>
#include <cstring>

namespace width::test {

DibBuilder::DibBuilder(std::int32_t nWidth, std::int32_t nHeight, std::uint16_t nBitCount, std::uint32_t nClrUsed)
    : m_nEntries(nBitCount > 8 ? 0 : (nClrUsed != 0 ? nClrUsed : std::size_t{1} << nBitCount)),
      m_nStride(DibStride(nBitCount, static_cast<std::uint32_t>(nWidth))),
      m_table(4 * m_nEntries),
      m_rows(m_nStride * static_cast<std::size_t>(nHeight)) {
    m_header.biSize = 40;
    m_header.biWidth = nWidth;
    m_header.biHeight = nHeight;
    m_header.biPlanes = 1;
    m_header.biBitCount = nBitCount;
    m_header.biClrUsed = nClrUsed;
}

DibBuilder& DibBuilder::SetColour(std::size_t nIndex, Colour colour) {
    const std::uint8_t entry[4] = {colour.blue, colour.green, colour.red, 0};
    std::memcpy(&m_table.at(4 * nIndex), entry, 4);
    return *this;
}

DibBuilder& DibBuilder::GreyTable() {
    for (std::size_t i = 0; i < m_nEntries; ++i) {
        const auto level = static_cast<std::uint8_t>(i * 255 / std::max<std::size_t>(m_nEntries - 1, 1));
        SetColour(i, {level, level, level});
    }
    return *this;
}

DibBuilder& DibBuilder::SetIndex(std::int32_t x, std::int32_t nRow, std::uint32_t nIndex) {
    const std::size_t nBits = m_header.biBitCount;
    const std::size_t nBit = static_cast<std::size_t>(x) * nBits;
    std::uint8_t& byte = m_rows.at(static_cast<std::size_t>(nRow) * m_nStride + nBit / 8);
    const std::size_t nShift = 8 - nBits - nBit % 8;
    const std::uint32_t nMask = ((1U << nBits) - 1U) << nShift;
    byte = static_cast<std::uint8_t>((byte & ~nMask) | ((nIndex << nShift) & nMask));
    return *this;
}

DibBuilder& DibBuilder::SetPixel(std::int32_t x, std::int32_t nRow, Colour colour) {
    std::uint8_t* p =
        &m_rows.at(static_cast<std::size_t>(nRow) * m_nStride + static_cast<std::size_t>(x) * m_header.biBitCount / 8);
    p[0] = colour.blue;
    p[1] = colour.green;
    p[2] = colour.red;
    return *this;
}

DibBuilder& DibBuilder::SetResolution(std::int32_t nX, std::int32_t nY) {
    m_header.biXPelsPerMeter = nX;
    m_header.biYPelsPerMeter = nY;
    return *this;
}

DibBuilder& DibBuilder::Fill(const std::function<std::uint32_t(std::int32_t, std::int32_t)>& index) {
    for (std::int32_t s = 0; s < m_header.biHeight; ++s) {
        for (std::int32_t x = 0; x < m_header.biWidth; ++x) {
            SetIndex(x, s, index(x, s));
        }
    }
    return *this;
}

std::vector<std::byte> DibBuilder::Block() const {
    std::vector<std::byte> block(sizeof m_header + m_table.size() + m_rows.size());
    std::memcpy(block.data(), &m_header, sizeof m_header);
    std::ranges::transform(m_table, block.begin() + sizeof m_header, [](std::uint8_t b) { return std::byte{b}; });
    std::ranges::transform(m_rows, block.end() - static_cast<std::ptrdiff_t>(m_rows.size()),
                           [](std::uint8_t b) { return std::byte{b}; });
    return block;
}

std::vector<std::byte> DrawnDib(std::initializer_list<std::string_view> rows) {
    const auto nHeight = static_cast<std::int32_t>(rows.size());
    DibBuilder builder(static_cast<std::int32_t>(rows.begin()->size()), nHeight, 8);
    return builder.GreyTable()
        .Fill([&](std::int32_t x, std::int32_t nRow) {
            return rows.begin()[nHeight - 1 - nRow][static_cast<std::size_t>(x)] == '#' ? 0U : 255U;
        })
        .Block();
}

SkeletonMap DrawnMap(const std::vector<std::string>& rows) {
    const auto nHeight = static_cast<std::int32_t>(rows.size());
    SkeletonMap map(nHeight, static_cast<std::int32_t>(rows.front().size()));
    for (std::int32_t y = 0; y < nHeight; ++y) {
        for (std::int32_t x = 0; x < map.Width(); ++x) {
            const char mark = rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
            const int value = mark == '#' ? 1 : (mark >= '0' && mark <= '9' ? mark - '0' : 0);
            map.Set({nHeight + 1 - y, x + 2}, static_cast<std::uint8_t>(value));
        }
    }
    return map;
}

std::string Drawing(const SkeletonMap& map) {
    static constexpr std::string_view kMarks = ".#23456789";
    std::string text = "\n";
    for (std::int32_t r = map.Height() + 1; r >= SkeletonMap::kBorder; --r) {
        for (std::int32_t c = SkeletonMap::kBorder; c < map.Width() + SkeletonMap::kBorder; ++c) {
            const std::uint8_t value = map.At({r, c});
            text += value < kMarks.size() ? kMarks[value] : 'x';
        }
        text += '\n';
    }
    return text;
}

namespace {

using Pixels = std::vector<std::uint8_t>;  // 1: inside

void DrawBlock(std::mt19937& random, Pixels& pixels, std::int32_t nWidth, std::int32_t nHeight, std::int32_t nMost) {
    const auto pick = [&](std::int32_t n) {
        return static_cast<std::int32_t>(random() % static_cast<std::uint32_t>(std::max(n, 1)));
    };
    const std::int32_t w = 1 + pick(std::min(nMost, nWidth));
    const std::int32_t h = 1 + pick(std::min(nMost, nHeight));
    const std::int32_t x0 = pick(nWidth - w + 1);
    const std::int32_t y0 = pick(nHeight - h + 1);
    const std::uint8_t value = random() % 4 == 0 ? 0 : 1;
    for (std::int32_t y = y0; y < y0 + h; ++y) {
        std::fill_n(pixels.begin() + std::ptrdiff_t{y} * nWidth + x0, w, value);
    }
}

Pixels DrawTexture(std::mt19937& random, std::int32_t nWidth, std::int32_t nHeight, Texture texture) {
    Pixels pixels(static_cast<std::size_t>(nWidth) * static_cast<std::size_t>(nHeight));
    switch (texture) {
        case Texture::Noise:
            std::ranges::generate(pixels, [&] { return static_cast<std::uint8_t>(random() % 2); });
            break;
        case Texture::SparseNoise:
            std::ranges::generate(pixels, [&] { return static_cast<std::uint8_t>(random() % 8 != 0); });
            break;
        case Texture::Strokes:
            for (int i = 0; i < 12; ++i) {
                DrawBlock(random, pixels, nWidth, nHeight, 24);
            }
            break;
        case Texture::DeepBlocks:
            std::ranges::fill(pixels, std::uint8_t{1});
            for (int i = 0; i < 6; ++i) {
                pixels[random() % pixels.size()] = 0;
                DrawBlock(random, pixels, nWidth, nHeight, nWidth);
            }
            break;
    }
    return pixels;
}

}  // namespace

std::vector<std::byte> RandomDib(std::mt19937& random, std::int32_t nWidth, std::int32_t nHeight, std::uint16_t nBitCount,
                                 Texture texture) {
    const Pixels pixels = DrawTexture(random, nWidth, nHeight, texture);
    const auto inside = [&](std::int32_t x, std::int32_t nRow) {
        return pixels[static_cast<std::size_t>(nRow * nWidth + x)] != 0;
    };
    DibBuilder builder(nWidth, nHeight, nBitCount);
    if (nBitCount <= 8) {
        const std::uint32_t nLevels = 1U << nBitCount;
        return builder.GreyTable()
            .Fill([&](std::int32_t x, std::int32_t nRow) {
                const auto nJitter = static_cast<std::uint32_t>(random() % (nLevels / 2));
                return inside(x, nRow) ? nJitter : nLevels / 2 + nJitter;
            })
            .Block();
    }
    for (std::int32_t s = 0; s < nHeight; ++s) {
        for (std::int32_t x = 0; x < nWidth; ++x) {
            const auto level = static_cast<std::uint8_t>((inside(x, s) ? 0 : 128) + random() % 128);
            builder.SetPixel(x, s, {level, static_cast<std::uint8_t>(level ^ (random() % 4)), level});
        }
    }
    return builder.Block();
}

}  // namespace width::test
