// The skeleton of a picture as a byte map with a border.
//
// Cell (r, c) of a picture of H rows and W columns: r in 0..H + 3, c in 0..W + 3. The pixel in block
// row s, column x lies at cell (s + 2, x + 2), so the map runs bottom-up like the bitmap; the image
// point (x, y), y from the top, lies at cell (H + 1 - y, x + 2). The two outermost cells on every
// side are the border: 0 for the map's whole life, so that neighbours can be read without a test.
//
//   0        no skeleton here
//   1        skeleton
//   2..255   skeleton, and the end pixel of the detected line with this id
//
// Tested by: tests/unit/core/SkeletonMapTest.cpp
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace width {

/// One pixel of a map in map coordinates: border included, rows from the bottom.
struct MapCell {
    std::int32_t row = 0;
    std::int32_t column = 0;
    friend constexpr bool operator==(const MapCell&, const MapCell&) = default;
};

/// Owns its cells in one block, rows following each other without a gap. Copying copies all cells.
class SkeletonMap {
public:
    static constexpr std::int32_t kBorder = 2;

    /// A map of no picture: no cells.
    SkeletonMap() = default;

    /// All cells 0. Height and width are the picture's, each 1 or more.
    /// Throws std::bad_alloc; the callers that make maps turn that into a plain result.
    SkeletonMap(std::int32_t nHeight, std::int32_t nWidth) : SkeletonMap(ForOverwriting(nHeight, nWidth)) {
        std::fill_n(m_cells.get(), CellCount(), std::uint8_t{0});
    }

    /// A map whose cells hold anything, for a maker that writes all of them, the border too. Otherwise as the constructor.
    static SkeletonMap ForOverwriting(std::int32_t nHeight, std::int32_t nWidth) {
        SkeletonMap map;
        map.m_nHeight = nHeight;
        map.m_nWidth = nWidth;
        map.m_cells = std::make_unique_for_overwrite<std::uint8_t[]>(map.Offset(nHeight + 2 * kBorder, 0));
        return map;
    }

    SkeletonMap(const SkeletonMap& other) : m_nHeight(other.m_nHeight), m_nWidth(other.m_nWidth) {
        if (other.m_cells) {
            m_cells = std::make_unique_for_overwrite<std::uint8_t[]>(other.CellCount());
            std::copy_n(other.m_cells.get(), other.CellCount(), m_cells.get());
        }
    }
    SkeletonMap& operator=(const SkeletonMap& other) {
        if (this != &other) {
            *this = SkeletonMap(other);
        }
        return *this;
    }
    SkeletonMap(SkeletonMap&&) noexcept = default;
    SkeletonMap& operator=(SkeletonMap&&) noexcept = default;
    ~SkeletonMap() = default;

    std::int32_t Height() const noexcept { return m_nHeight; }  ///< rows of the picture
    std::int32_t Width() const noexcept { return m_nWidth; }    ///< columns of the picture
    std::int32_t Rows() const noexcept { return m_cells == nullptr ? 0 : m_nHeight + 2 * kBorder; }
    std::int32_t Columns() const noexcept { return m_cells == nullptr ? 0 : m_nWidth + 2 * kBorder; }

    /// First cell of map row r; Columns() cells follow.
    const std::uint8_t* Row(std::int32_t r) const noexcept { return m_cells.get() + Offset(r, 0); }
    std::uint8_t* Row(std::int32_t r) noexcept { return m_cells.get() + Offset(r, 0); }

    std::uint8_t At(MapCell cell) const noexcept { return m_cells[Offset(cell.row, cell.column)]; }
    void Set(MapCell cell, std::uint8_t value) noexcept { m_cells[Offset(cell.row, cell.column)] = value; }

    /// Whether a cell lies in the map, border included.
    bool Holds(MapCell cell) const noexcept {
        return cell.row >= 0 && cell.row < Rows() && cell.column >= 0 && cell.column < Columns();
    }

    friend bool operator==(const SkeletonMap& a, const SkeletonMap& b) noexcept {
        return a.Rows() == b.Rows() && a.Columns() == b.Columns() &&
               std::equal(a.m_cells.get(), a.m_cells.get() + a.CellCount(), b.m_cells.get());
    }

private:
    std::size_t CellCount() const noexcept { return m_cells == nullptr ? 0 : Offset(m_nHeight + 2 * kBorder, 0); }

    std::size_t Offset(std::int32_t r, std::int32_t c) const noexcept {
        return static_cast<std::size_t>(r) * static_cast<std::size_t>(m_nWidth + 2 * kBorder) + static_cast<std::size_t>(c);
    }

    std::int32_t m_nHeight = 0;
    std::int32_t m_nWidth = 0;
    std::unique_ptr<std::uint8_t[]> m_cells;
};

}  // namespace width
