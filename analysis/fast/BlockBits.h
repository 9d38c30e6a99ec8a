// Block reduction on rows of bits.
// Tested by: tests/unit/analysis/SkeletonRunTest.cpp
#pragma once

#include <array>
#include <atomic>
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

/// One turn of two scans, over rows that come one by one: a block is cleared as soon as its second row is there, and what
/// joins a neighbour given back when two more are.
class BlockScans {
public:
    static constexpr std::ptrdiff_t kLag = 3;  ///< rows behind the last one come that are done

    /// Throws std::bad_alloc.
    explicit BlockScans(std::ptrdiff_t nWords);

    /// Where row s goes before Step(s), and where row s - kLag is done after it.
    std::uint64_t* Row(std::ptrdiff_t s) noexcept { return m_words.data() + Offset(0, s); }

    /// For each row in rising order from 0 on; rows behind the picture are empty.
    void Step(std::ptrdiff_t s) noexcept;

private:
    static constexpr std::ptrdiff_t kRows = 8;  // kept, more than are under way

    std::ptrdiff_t Offset(std::ptrdiff_t nKind, std::ptrdiff_t s) const noexcept {  // a word of 0 on either side of each row
        return (nKind * kRows + (s & (kRows - 1))) * (m_nWords + 2) + 1;
    }
    std::uint64_t* Cleared(std::ptrdiff_t s) noexcept { return m_words.data() + Offset(1, s); }
    bool& AnyCleared(std::ptrdiff_t s) noexcept { return m_bCleared[static_cast<std::size_t>(s & (kRows - 1))]; }

    std::ptrdiff_t m_nWords;
    std::vector<std::uint64_t> m_words;
    std::array<bool, static_cast<std::size_t>(kRows)> m_bCleared{};
};

/// Joins ridges and plateaus and reduces their 2 x 2 blocks; the skeleton replaces the ridges. Used once: by Run, or by two
/// threads that call RunFirst and RunAgain at a time. The second turn then follows the first as closely as it can, and waits
/// where it must.
class BlockReduction {
public:
    /// plateaus  first cells of the 2 x 2 plateaus. Throws std::bad_alloc.
    BlockReduction(const BitRows& ridges, const BitRows& plateaus);

    void Run() noexcept;
    void RunFirst() noexcept;
    void RunAgain() noexcept;

    /// Waits until the first nRows rows are done, for a thread that follows RunAgain.
    void WaitForRows(std::ptrdiff_t nRows) noexcept;

private:
    // How many rows a turn has done.
    class Progress {
    public:
        /// Behind step s of nSteps.
        void Tell(std::ptrdiff_t s, std::ptrdiff_t nSteps) noexcept;
        void WaitFor(std::ptrdiff_t nRows) noexcept;

    private:
        std::atomic<std::ptrdiff_t> m_nRows = 0;
    };

    std::ptrdiff_t Steps() const noexcept { return m_ridges.nHeight + BlockScans::kLag; }
    void StepFirst(std::ptrdiff_t s) noexcept;
    void StepAgain(std::ptrdiff_t s) noexcept;
    void StepAndStore(BlockScans& scans, std::ptrdiff_t s) noexcept;

    BitRows m_ridges;
    BitRows m_plateaus;
    BlockScans m_first;
    BlockScans m_again;
    Progress m_rowsOfFirst;
    Progress m_rowsDone;
};

}  // namespace width::fast
