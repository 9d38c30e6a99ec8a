// The row passes as templates over the instruction set. Included once by the source of each set.
// Tested by: tests/unit/analysis/FastSkeletonTest.cpp
#pragma once

#include "analysis/fast/RowPasses.h"
#include "analysis/fast/Vectors.h"

namespace width::fast {

template <class V>
struct RowPassesOf {
    using Bytes = typename V::Bytes;
    static constexpr std::ptrdiff_t kVectors = kWordColumns / V::kWidth;  // in a word
    static constexpr std::uint64_t kAll = ~std::uint64_t{0};

    // Whole vectors, and the rest by way of a vector of zeros, so that nothing behind the row is touched.
    static Bytes LoadSome(const std::uint8_t* p, std::ptrdiff_t n) noexcept {
        if (n >= V::kWidth) {
            return V::Load(p);
        }
        Bytes v{};
        if (n > 0) {
            std::memcpy(&v, p, static_cast<std::size_t>(n));
        }
        return v;
    }
    static void StoreSome(std::uint8_t* p, std::ptrdiff_t n, Bytes v) noexcept {
        if (n >= V::kWidth) {
            V::Store(p, v);
        } else if (n > 0) {
            std::memcpy(p, &v, static_cast<std::size_t>(n));
        }
    }

    static std::uint64_t BitsOfColumns(std::ptrdiff_t n) noexcept {
        return n >= kWordColumns ? kAll : (std::uint64_t{1} << n) - 1;
    }

    static void ForegroundOfIndices(const std::uint8_t* pIndices, std::ptrdiff_t nWidth, std::uint8_t nFirst, std::uint8_t nSpan,
                                    std::uint8_t* pMask, std::uint64_t* pBits) noexcept {
        const Bytes first = Splat<V>(nFirst);
        const Bytes span = Splat<V>(nSpan);
        const std::ptrdiff_t nWords = WordsFor(nWidth);
        for (std::ptrdiff_t w = 0; w < nWords; ++w) {
            const std::ptrdiff_t nColumn = w * kWordColumns;
            std::uint64_t bits = 0;
            for (std::ptrdiff_t i = 0; i < kVectors; ++i) {
                const std::ptrdiff_t c = nColumn + i * V::kWidth;
                const Bytes inside = Verdict<V>(LoadSome(pIndices + c, nWidth - c) - first <= span);
                V::Store(pMask + c, inside);
                bits |= V::HighBits(inside) << (i * V::kWidth);
            }
            pBits[w] = bits & BitsOfColumns(nWidth - nColumn);
        }
        std::memset(pMask + nWidth, 0, static_cast<std::size_t>(nWords * kWordColumns - nWidth));
    }

    static void UnpackHalfBytes(const std::uint8_t* pRow, std::ptrdiff_t nWidth, std::uint8_t* pIndices) noexcept {
        for (std::ptrdiff_t i = 0; i < (nWidth + 1) / 2; ++i) {
            pIndices[2 * i] = static_cast<std::uint8_t>(pRow[i] >> 4);
            pIndices[2 * i + 1] = static_cast<std::uint8_t>(pRow[i] & 15);
        }
    }

    static void ExpandBits(const std::uint64_t* pBits, std::ptrdiff_t nWidth, std::uint8_t value, std::uint8_t* pOut) noexcept {
        Bytes ownBit{};
        for (int i = 0; i < static_cast<int>(V::kWidth); ++i) {
            ownBit[i] = static_cast<std::uint8_t>(1 << (i % 8));
        }
        const Bytes ones = Splat<V>(value);
        for (std::ptrdiff_t c = 0; c < nWidth; c += V::kWidth) {
            const std::uint64_t word = pBits[c / kWordColumns] >> (c % kWordColumns);
            StoreSome(pOut + c, nWidth - c, Verdict<V>((V::SpreadBits(word) & ownBit) == ownBit) & ones);
        }
    }

    // Run lengths are a scan: a cell's is that of its neighbour plus 1, and 0 in the background. With 255 minus the length
    // it is a maximum of values that fall by 1 a cell, for which the zeros that a shift brings in are neutral: four steps
    // of shift, subtract and maximum within 16 cells, one for the upper 16 and one for what comes from the vector before.
    // Words without or full of foreground, which most are, need none of this.
    static Bytes ScanUp(Bytes g) noexcept {
        g = Max<V>(g, V::SubSaturated(V::template Up<1>(g), Splat<V>(1)));
        g = Max<V>(g, V::SubSaturated(V::template Up<2>(g), Splat<V>(2)));
        g = Max<V>(g, V::SubSaturated(V::template Up<4>(g), Splat<V>(4)));
        g = Max<V>(g, V::SubSaturated(V::template Up<8>(g), Splat<V>(8)));
        return Max<V>(g, V::SubSaturated(V::LowerLast(g), Ladder<V, 1, 1, 16>()));
    }
    static Bytes ScanDown(Bytes g) noexcept {
        g = Max<V>(g, V::SubSaturated(V::template Down<1>(g), Splat<V>(1)));
        g = Max<V>(g, V::SubSaturated(V::template Down<2>(g), Splat<V>(2)));
        g = Max<V>(g, V::SubSaturated(V::template Down<4>(g), Splat<V>(4)));
        g = Max<V>(g, V::SubSaturated(V::template Down<8>(g), Splat<V>(8)));
        return Max<V>(g, V::SubSaturated(V::UpperFirst(g), Ladder<V, 16, -1, 16>()));
    }

    static void MeasureRunsLeft(const std::uint8_t* pMask, const std::uint64_t* pBits, std::ptrdiff_t nWords,
                                std::uint8_t* pRuns) noexcept {
        const Bytes ladder = Ladder<V, 1, 1>();
        Bytes carry = Splat<V>(255);
        for (std::ptrdiff_t w = 0; w < nWords; ++w) {
            const std::uint64_t bits = pBits[w];
            for (std::ptrdiff_t c = w * kWordColumns; c < (w + 1) * kWordColumns; c += V::kWidth) {
                if (bits == 0) {
                    V::Store(pRuns + c, Bytes{});
                    carry = Splat<V>(255);
                } else if (bits == kAll) {
                    V::Store(pRuns + c, ~V::SubSaturated(carry, ladder));
                    carry = V::SubSaturated(carry, Splat<V>(V::kWidth));
                } else {
                    const Bytes g = Max<V>(ScanUp(~V::Load(pMask + c)), V::SubSaturated(carry, ladder));
                    V::Store(pRuns + c, ~g);
                    carry = V::SpreadLast(g);
                }
            }
        }
    }
    static void MeasureRunsRight(const std::uint8_t* pMask, const std::uint64_t* pBits, std::ptrdiff_t nWords,
                                 std::uint8_t* pRuns) noexcept {
        const Bytes ladder = Ladder<V, static_cast<int>(V::kWidth), -1>();
        Bytes carry = Splat<V>(255);
        for (std::ptrdiff_t w = nWords; w-- > 0;) {
            const std::uint64_t bits = pBits[w];
            for (std::ptrdiff_t c = (w + 1) * kWordColumns - V::kWidth; c >= w * kWordColumns; c -= V::kWidth) {
                if (bits == 0) {
                    V::Store(pRuns + c, Bytes{});
                    carry = Splat<V>(255);
                } else if (bits == kAll) {
                    V::Store(pRuns + c, ~V::SubSaturated(carry, ladder));
                    carry = V::SubSaturated(carry, Splat<V>(V::kWidth));
                } else {
                    const Bytes g = Max<V>(ScanDown(~V::Load(pMask + c)), V::SubSaturated(carry, ladder));
                    V::Store(pRuns + c, ~g);
                    carry = V::SpreadFirst(g);
                }
            }
        }
    }
    static void MeasureRuns(const std::uint8_t* pMask, const std::uint64_t* pBits, std::ptrdiff_t nWords, std::uint8_t* pRunsLeft,
                            std::uint8_t* pRunsRight) noexcept {
        MeasureRunsLeft(pMask, pBits, nWords, pRunsLeft);
        MeasureRunsRight(pMask, pBits, nWords, pRunsRight);
    }

    // A pass gives each foreground cell the smaller of the cell before in its row and the cell of the row before, plus 1.
    // From one cell to the next in its direction a pass rises by 1 at most, in the row before too. So the row before
    // speaks for itself in each cell, and what the row brings in is the distance to its own background: the run before.
    static std::uint8_t StepPasses(const PassPair& passes, const RowRuns& row, std::ptrdiff_t nWidth,
                                   std::uint8_t* pHalf) noexcept {
        Bytes largest{};
        for (std::ptrdiff_t c = 0; c < nWidth; c += V::kWidth) {
            const Bytes mask = V::Load(row.pMask + c);
            const Bytes left = (Min<V>(V::Load(passes.pFromLeft + c), V::Load(row.pRunsLeft + c - 1)) + 1) & mask;
            const Bytes right = (Min<V>(V::Load(passes.pFromRight + c), V::Load(row.pRunsRight + c + 1)) + 1) & mask;
            V::Store(passes.pFromLeft + c, left);
            V::Store(passes.pFromRight + c, right);
            StoreSome(pHalf + c, nWidth - c, Min<V>(left, right));
            largest = Max<V>(largest, Max<V>(left, right));
        }
        std::uint8_t result = 0;
        for (int i = 0; i < static_cast<int>(V::kWidth); ++i) {
            result = largest[i] > result ? largest[i] : result;
        }
        return result;
    }

    static bool LowerToRuns(std::uint8_t* pDistance, const std::uint8_t* pRuns, std::ptrdiff_t nRunStart,
                            const std::uint8_t* pMask, std::ptrdiff_t nWords, std::uint64_t* pWrapping) noexcept {
        std::uint64_t any = 0;
        for (std::ptrdiff_t w = 0; w < nWords; ++w) {
            std::uint64_t wrapping = 0;
            for (std::ptrdiff_t i = 0; i < kVectors; ++i) {
                const std::ptrdiff_t c = w * kWordColumns + i * V::kWidth;
                const Bytes lowered = Min<V>(V::Load(pDistance + c), V::Load(pRuns + c + nRunStart));
                V::Store(pDistance + c, lowered);
                wrapping |= V::HighBits(Verdict<V>((lowered & V::Load(pMask + c)) == 255)) << (i * V::kWidth);
            }
            pWrapping[w] = wrapping;
            any |= wrapping;
        }
        return any != 0;
    }

    static void AddStep(const PassPair& passes, const std::uint8_t* pMask, std::ptrdiff_t nWidth, std::uint8_t* pHalf) noexcept {
        for (std::ptrdiff_t c = 0; c < nWidth; c += V::kWidth) {
            const Bytes mask = V::Load(pMask + c);
            const Bytes left = (V::Load(passes.pFromLeft + c) + 1) & mask;
            const Bytes right = (V::Load(passes.pFromRight + c) + 1) & mask;
            V::Store(passes.pFromLeft + c, left);
            V::Store(passes.pFromRight + c, right);
            StoreSome(pHalf + c, nWidth - c, Min<V>(left, right));
        }
    }

    static void StepDistance(const std::uint8_t* pBefore, const std::uint8_t* pHalf, std::ptrdiff_t nWidth,
                             std::uint8_t* pOut) noexcept {
        for (std::ptrdiff_t c = 0; c < nWidth; c += V::kWidth) {
            V::Store(pOut + c, Min<V>(V::AddSaturated(V::Load(pBefore + c), Splat<V>(1)), LoadSome(pHalf + c, nWidth - c)));
        }
    }

    static void JoinHalves(const std::uint8_t* pHalf, const std::uint8_t* pOther, std::ptrdiff_t nWidth,
                           std::uint8_t* pOut) noexcept {
        for (std::ptrdiff_t c = 0; c < nWidth; c += V::kWidth) {
            V::Store(pOut + c, Min<V>(LoadSome(pHalf + c, nWidth - c), V::Load(pOther + c)));
        }
    }

    struct Marks {
        std::uint64_t ridge = 0;
        std::uint64_t rowCrest = 0;
        std::uint64_t plateau = 0;
    };

    // Ridge: greater than both neighbours on one of the four axes at least, that is, greater than the smallest of the
    // four larger neighbours. Plateau: first cell of a 2 x 2 block of equal, non-zero distances. Crest: first of two equal
    // cells between two that are equal and smaller by 1; a first cell of 0 has no such neighbours.
    static Marks MarkVector(const DistanceRows& rows, std::ptrdiff_t c, Bytes columnCrests) noexcept {
        const Bytes here = V::Load(rows.pHere + c);
        const Bytes left = V::Load(rows.pHere + c - 1);
        const Bytes right = V::Load(rows.pHere + c + 1);
        const Bytes before = V::Load(rows.pBefore + c);
        const Bytes next = V::Load(rows.pNext + c);
        const Bytes nextRight = V::Load(rows.pNext + c + 1);
        const Bytes straight = Min<V>(Max<V>(left, right), Max<V>(before, next));
        const Bytes diagonal = Min<V>(Max<V>(V::Load(rows.pBefore + c - 1), nextRight),
                                      Max<V>(V::Load(rows.pNext + c - 1), V::Load(rows.pBefore + c + 1)));
        const Bytes flat = Verdict<V>(here <= Min<V>(straight, diagonal));
        const Bytes background = Verdict<V>(here == 0);
        const Bytes below = here - 1;
        const Bytes sameRight = Verdict<V>(here == right);
        const Bytes sameNext = Verdict<V>(here == next);
        const Bytes rowCrest = sameRight & Verdict<V>(left == below) & Verdict<V>(V::Load(rows.pHere + c + 2) == below);
        const Bytes columnCrest =
            sameNext & Verdict<V>(before == below) & Verdict<V>(V::Load(rows.pNext2 + c) == below) & columnCrests;
        const Bytes plateau = sameRight & sameNext & Verdict<V>(here == nextRight);
        return {V::HighBits(~(flat & ~(columnCrest & ~background))), V::HighBits(rowCrest & ~background),
                V::HighBits(plateau & ~background)};
    }

    static bool IsWordEmpty(const std::uint8_t* p) noexcept {
        Bytes any = V::Load(p);
        for (std::ptrdiff_t i = 1; i < kVectors; ++i) {
            any |= V::Load(p + i * V::kWidth);
        }
        return V::HighBits(Verdict<V>(any == 0)) == BitsOfColumns(V::kWidth);
    }

    static void MarkRow(const DistanceRows& rows, std::ptrdiff_t nWords, const std::uint64_t* pInner, bool bColumnCrests,
                        std::uint64_t* pRidge, std::uint64_t* pPlateau) noexcept {
        const Bytes columnCrests = Splat<V>(bColumnCrests ? 255 : 0);
        for (std::ptrdiff_t w = 0; w < nWords; ++w) {
            Marks word;
            for (std::ptrdiff_t i = 0; i < kVectors && !IsWordEmpty(rows.pHere + w * kWordColumns); ++i) {
                const Marks marks = MarkVector(rows, w * kWordColumns + i * V::kWidth, columnCrests);
                word.ridge |= marks.ridge << (i * V::kWidth);
                word.rowCrest |= marks.rowCrest << (i * V::kWidth);
                word.plateau |= marks.plateau << (i * V::kWidth);
            }
            pRidge[w] = word.ridge | (word.rowCrest & pInner[w]);
            pPlateau[w] = word.plateau;
        }
    }

    static constexpr RowPasses kPasses = {ForegroundOfIndices, UnpackHalfBytes, ExpandBits,   MeasureRuns, StepPasses,
                                          LowerToRuns,         AddStep,         StepDistance, JoinHalves,  MarkRow};
};

}  // namespace width::fast
