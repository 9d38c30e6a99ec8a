// Block reduction on rows of bits.
// Tested by: tests/unit/analysis/FastSkeletonTest.cpp
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace width::fast {

/// Marks of a whole picture as bits: nHeight rows of nWords words, 64 columns a word, the first in bit 0.
struct BitRows {
    std::uint64_t* pWords = nullptr;
    std::ptrdiff_t nWords = 0;
    std::ptrdiff_t nHeight = 0;
    std::uint64_t* Row(std::ptrdiff_t s) const noexcept { return pWords + s * nWords; }
};

/// Room for the rows that ReduceBlocks has under way.
class BlockRing {
public:
    /// Throws std::bad_alloc.
    explicit BlockRing(std::ptrdiff_t nWords);

    static constexpr std::ptrdiff_t kRows = 16;
    std::uint64_t* Skeleton(std::ptrdiff_t s) noexcept { return Row(0, s); }
    std::uint64_t* Cleared(std::ptrdiff_t s, bool bSecondTime) noexcept { return Row(bSecondTime ? 2 : 1, s); }
    std::ptrdiff_t Words() const noexcept { return m_nWords; }

private:
    std::uint64_t* Row(std::ptrdiff_t nKind, std::ptrdiff_t s) noexcept {
        return m_words.data() + (nKind * kRows + (s & (kRows - 1))) * (m_nWords + 2) + 1;  // a word of 0 on either side
    }
    std::ptrdiff_t m_nWords;
    std::vector<std::uint64_t> m_words;
};

/// Joins ridges and plateaus and reduces their 2 x 2 blocks; the skeleton replaces the ridges.
/// plateaus  first cells of the 2 x 2 plateaus
/// ring      as wide as the rows; used once
void ReduceBlocks(const BitRows& ridges, const BitRows& plateaus, BlockRing& ring) noexcept;

}  // namespace width::fast
