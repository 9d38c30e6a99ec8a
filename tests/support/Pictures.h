// Pictures and maps for tests: drawn as text, filled by a rule, or from a seeded generator.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "core/PackedDib.h"
#include "core/SkeletonMap.h"

namespace width::test {

/// A number from 0 to n - 1.
inline std::int32_t Below(std::mt19937& random, std::int32_t n) {
    return static_cast<std::int32_t>(random() % static_cast<std::uint32_t>(n));
}

/// A packed bitmap under construction, and the block that it becomes.
class DibBuilder {
public:
    /// All pixels 0. nClrUsed as in the header: 0 stands for a full table.
    DibBuilder(std::int32_t nWidth, std::int32_t nHeight, std::uint16_t nBitCount, std::uint32_t nClrUsed = 0);

    DibBuilder& SetColour(std::size_t nIndex, Colour colour);
    DibBuilder& GreyTable();  ///< 256 levels at 8 bits, 16 at 4, black and white at 1
    DibBuilder& SetIndex(std::int32_t x, std::int32_t nRow, std::uint32_t nIndex);
    DibBuilder& SetPixel(std::int32_t x, std::int32_t nRow, Colour colour);  ///< 24 and 32 bits
    DibBuilder& SetResolution(std::int32_t nX, std::int32_t nY);
    DibBuilder& Fill(const std::function<std::uint32_t(std::int32_t x, std::int32_t nRow)>& index);

    BITMAPINFOHEADER& Header() { return m_header; }
    std::vector<std::byte> Block() const;  ///< header, table and rows as they stand now

private:
    BITMAPINFOHEADER m_header{};
    std::size_t m_nEntries;
    std::size_t m_nStride;
    std::vector<std::uint8_t> m_table;
    std::vector<std::uint8_t> m_rows;
};

/// 8-bit grey picture from a drawing, top row first: '#' is black (0), anything else white (255).
std::vector<std::byte> DrawnDib(std::initializer_list<std::string_view> rows);

/// Map from a drawing of a picture, top row first: '#' is 1, a digit its value, anything else 0.
SkeletonMap DrawnMap(const std::vector<std::string>& rows);
inline SkeletonMap DrawnMap(std::initializer_list<std::string_view> rows) {
    return DrawnMap(std::vector<std::string>(rows.begin(), rows.end()));
}

/// The drawing of a map, top row first: '.' for 0, '#' for 1, '2'..'9' and 'x' for more.
std::string Drawing(const SkeletonMap& map);

/// What a random picture looks like.
enum class Texture { Noise, SparseNoise, Strokes, DeepBlocks };

/// A seeded picture of any readable depth. DeepBlocks has structures deeper than 255 pixels where
/// the size allows it.
std::vector<std::byte> RandomDib(std::mt19937& random, std::int32_t nWidth, std::int32_t nHeight, std::uint16_t nBitCount,
                                 Texture texture);

}  // namespace width::test
