// Two scans, then both once more: the first clears every 2 x 2 block down to its first cell, the second gives back the
// cells that join a neighbour. Each works in place, row after row and cell after cell, and needs only rows near by; so
// the four follow each other a few rows apart, and all that is under way stays in the cache.
//
// Why whole words give what single cells give:
// - A block that is cleared takes its right neighbour's chance away and no other's in this row: of a run of cells in which
//   a block could begin, the first, third, fifth ... become blocks. What a block clears in the next row is seen there.
// - A cell that is given back lies at most one column right of its block; the tests of a later block of the row look
//   further right in the rows where that could be. So all tests of a row can be made before any cell is given back.
// Tested by: tests/unit/analysis/SkeletonRunTest.cpp
#include "analysis/fast/BlockBits.h"

#include <algorithm>
#include <thread>

namespace width::fast {

namespace {

// Bits of the columns one and two to the right, and one to the left, of each column of a word.
std::uint64_t Right1(const std::uint64_t* p) noexcept {
    return (p[0] >> 1) | (p[1] << 63);
}
std::uint64_t Right2(const std::uint64_t* p) noexcept {
    return (p[0] >> 2) | (p[1] << 62);
}
std::uint64_t Left1(const std::uint64_t* p) noexcept {
    return (p[0] << 1) | (p[-1] >> 63);
}

// Of each run of ones the first, third, fifth ... bit. Adding the first bit of a run to it moves a one past its end and
// clears it; runs that begin at even places are told from the others that way.
std::uint64_t EveryOther(std::uint64_t runs) noexcept {
    constexpr std::uint64_t kEven = 0x5555555555555555;
    const std::uint64_t evenStarts = runs & ~(runs << 1) & kEven;
    const std::uint64_t evenRuns = runs & ~(runs + evenStarts);
    return (evenRuns & kEven) | (runs & ~evenRuns & ~kEven);
}

// Clears the blocks that begin in a row; cleared gets their first cells. Returns whether there are any.
bool ClearBlocks(std::uint64_t* pRow, std::uint64_t* pNext, std::uint64_t* pCleared, std::ptrdiff_t nWords) noexcept {
    std::uint64_t any = 0;
    for (std::ptrdiff_t w = 0; w < nWords; ++w) {
        const std::uint64_t begins = pRow[w] & Right1(pRow + w) & pNext[w] & Right1(pNext + w);
        pCleared[w] = 0;
        if (begins != 0) {
            const std::uint64_t first = EveryOther(begins);
            pCleared[w] = first;
            pRow[w] &= ~(first << 1);
            pNext[w] &= ~(first | (first << 1));
            pRow[w + 1] &= ~(first >> 63);
            pNext[w + 1] &= ~(first >> 63);
            any |= first;
        }
    }
    return any != 0;
}

// Gives back what joins a neighbour, for the blocks that begin in row pRows[1]; pRows[0] is the row before.
void GiveBack(const std::uint64_t* pCleared, std::uint64_t* const (&pRows)[4], std::ptrdiff_t nWords) noexcept {
    for (std::ptrdiff_t w = 0; w < nWords; ++w) {
        const std::uint64_t blocks = pCleared[w];
        if (blocks == 0) {
            continue;
        }
        const std::uint64_t* pBefore = pRows[0] + w;
        std::uint64_t* pRow = pRows[1] + w;
        std::uint64_t* pNext = pRows[2] + w;
        const std::uint64_t* pNext2 = pRows[3] + w;
        const std::uint64_t diagonal = blocks & (Right2(pNext) | Right2(pNext2) | Right1(pNext2));
        const std::uint64_t under = blocks & (*pNext2 | Left1(pNext2));
        const std::uint64_t beside = blocks & (Right2(pBefore) | Right2(pRow));
        pNext[0] |= (diagonal << 1) | under;
        pNext[1] |= diagonal >> 63;
        pRow[0] |= beside << 1;
        pRow[1] |= beside >> 63;
    }
}

// A row of ridges with the cells of all plateaus that reach into it.
void JoinMarks(const BitRows& ridges, const BitRows& plateaus, std::ptrdiff_t s, std::uint64_t* pOut) noexcept {
    if (s >= ridges.nHeight) {
        std::fill_n(pOut, ridges.nWords, std::uint64_t{0});
        return;
    }
    const std::uint64_t* pRidge = ridges.Row(s);
    const std::uint64_t* pHere = plateaus.Row(s);
    const std::uint64_t* pBefore = plateaus.Row(s > 0 ? s - 1 : 0);
    std::uint64_t carry = 0;
    for (std::ptrdiff_t w = 0; w < ridges.nWords; ++w) {
        const std::uint64_t plateau = pHere[w] | pBefore[w];
        pOut[w] = pRidge[w] | plateau | (plateau << 1) | carry;
        carry = plateau >> 63;
    }
}

}  // namespace

BlockScans::BlockScans(std::ptrdiff_t nWords) : m_nWords(nWords), m_words(static_cast<std::size_t>(2 * kRows * (nWords + 2))) {}

void BlockScans::Step(std::ptrdiff_t s) noexcept {
    AnyCleared(s - 1) = ClearBlocks(Row(s - 1), Row(s), Cleared(s - 1), m_nWords);
    if (AnyCleared(s - kLag)) {
        std::uint64_t* const pRows[4] = {Row(s - kLag - 1), Row(s - kLag), Row(s - kLag + 1), Row(s - kLag + 2)};
        GiveBack(Cleared(s - kLag), pRows, m_nWords);
    }
}

BlockReduction::BlockReduction(const BitRows& ridges, const BitRows& plateaus)
    : m_ridges(ridges), m_plateaus(plateaus), m_first(ridges.nWords), m_again(ridges.nWords) {}

void BlockReduction::StepFirst(std::ptrdiff_t s) noexcept {
    JoinMarks(m_ridges, m_plateaus, s, m_first.Row(s));
    StepAndStore(m_first, s);
}

void BlockReduction::StepAgain(std::ptrdiff_t s) noexcept {
    if (s < m_ridges.nHeight) {
        std::copy_n(m_ridges.Row(s), m_ridges.nWords, m_again.Row(s));
    } else {
        std::fill_n(m_again.Row(s), m_ridges.nWords, std::uint64_t{0});
    }
    StepAndStore(m_again, s);
}

void BlockReduction::StepAndStore(BlockScans& scans, std::ptrdiff_t s) noexcept {
    scans.Step(s);
    if (s >= BlockScans::kLag) {
        std::copy_n(scans.Row(s - BlockScans::kLag), m_ridges.nWords, m_ridges.Row(s - BlockScans::kLag));
    }
}

void BlockReduction::Run() noexcept {
    constexpr std::ptrdiff_t kBehind = BlockScans::kLag + 1;
    for (std::ptrdiff_t s = 0; s < Steps() + kBehind; ++s) {
        if (s < Steps()) {
            StepFirst(s);
        }
        if (s >= kBehind) {
            StepAgain(s - kBehind);
        }
    }
}

void BlockReduction::RunFirst() noexcept {
    for (std::ptrdiff_t s = 0; s < Steps(); ++s) {
        StepFirst(s);
        m_rowsOfFirst.Tell(s, Steps());
    }
}

void BlockReduction::RunAgain() noexcept {
    for (std::ptrdiff_t s = 0; s < Steps(); ++s) {
        m_rowsOfFirst.WaitFor(std::min(s + 1, m_ridges.nHeight));
        StepAgain(s);
        m_rowsDone.Tell(s, Steps());
    }
}

void BlockReduction::WaitForRows(std::ptrdiff_t nRows) noexcept {
    m_rowsDone.WaitFor(nRows);
}

// Telling costs the other thread's cache a line, so it is done only now and then.
void BlockReduction::Progress::Tell(std::ptrdiff_t s, std::ptrdiff_t nSteps) noexcept {
    constexpr std::ptrdiff_t kRowsAtATime = 32;
    if (s % kRowsAtATime == 0 || s + 1 == nSteps) {
        m_nRows.store(s + 1 - BlockScans::kLag, std::memory_order_release);
    }
}

void BlockReduction::Progress::WaitFor(std::ptrdiff_t nRows) noexcept {
    while (m_nRows.load(std::memory_order_acquire) < nRows) {
        std::this_thread::yield();
    }
}

}  // namespace width::fast
