// Rows to work on: what RowPasses.h calls strips.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "analysis/fast/RowPasses.h"

namespace width::fast {

/// A number of strips for pictures of one width, all 0 at first.
class Strips {
public:
    /// Throws std::bad_alloc.
    Strips(std::size_t nStrips, std::ptrdiff_t nWidth)
        : m_nPitch(WordsFor(nWidth) * kWordColumns + 2 * kStripMargin), m_cells(nStrips * static_cast<std::size_t>(m_nPitch)) {}

    /// The first column's cell.
    std::uint8_t* At(std::ptrdiff_t i) noexcept { return m_cells.data() + i * m_nPitch + kStripMargin; }

private:
    std::ptrdiff_t m_nPitch;
    std::vector<std::uint8_t> m_cells;
};

}  // namespace width::fast
