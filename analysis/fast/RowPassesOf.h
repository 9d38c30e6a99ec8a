// The row passes as templates over the instruction set. Included once by the source of each set.
// Tested by: tests/unit/analysis/SkeletonRunTest.cpp
#pragma once

#include "analysis/fast/RowPasses.h"
#include "analysis/fast/Vectors.h"

namespace width::fast {

template <class V>
struct RowPassesOf {
    using Bytes = typename V::Bytes;
    static constexpr std::ptrdiff_t kVectors = kWordColumns / V::kWidth;  // in a word
    static constexpr std::ptrdiff_t kLine = 64;                           // of the cache
    static constexpr std::uint64_t kAll = ~std::uint64_t{0};

    // How a row that is not a strip is read and written: in whole vectors, and its end by way of a vector on the stack, so
    // that nothing behind the row is touched.
    struct Whole {
        static Bytes Load(const std::uint8_t* p) noexcept { return V::Load(p); }
        static void Store(std::uint8_t* p, Bytes v) noexcept { V::Store(p, v); }
    };
    struct Part {
        std::size_t nBytes;
        Bytes Load(const std::uint8_t* p) const noexcept {
            Bytes v{};
            std::memcpy(&v, p, nBytes);
            return v;
        }
        void Store(std::uint8_t* p, Bytes v) const noexcept { std::memcpy(p, &v, nBytes); }
    };

    // Calls work(column, how) for each vector of a row.
    template <class Work>
    static void EachVector(std::ptrdiff_t nWidth, Work work) noexcept {
        std::ptrdiff_t c = 0;
        for (; c + V::kWidth <= nWidth; c += V::kWidth) {
            work(c, Whole{});
        }
        if (c < nWidth) {
            work(c, Part{static_cast<std::size_t>(nWidth - c)});
        }
    }

    static std::uint64_t BitsOfColumns(std::ptrdiff_t n) noexcept {
        return n >= kWordColumns ? kAll : (std::uint64_t{1} << n) - 1;
    }

    static void ForegroundOfIndices(const std::uint8_t* pIndices, std::ptrdiff_t nWidth, std::ptrdiff_t nAhead,
                                    const IndexRange& range, std::uint8_t* pMask, std::uint64_t* pBits) noexcept {
        const Bytes first = Splat<V>(range.nFirst);
        const Bytes span = Splat<V>(range.nSpan);
        const auto inside = [&](Bytes v) { return Verdict<V>(v - first <= span); };
        const std::ptrdiff_t nFull = nWidth / kWordColumns;
        for (std::ptrdiff_t w = 0; w < nFull; ++w) {
            std::uint64_t bits = 0;
            __builtin_prefetch(pIndices + w * kWordColumns + nAhead);
            for (std::ptrdiff_t i = 0; i < kVectors; ++i) {
                const std::ptrdiff_t c = w * kWordColumns + i * V::kWidth;
                const Bytes mask = inside(V::Load(pIndices + c));
                V::Store(pMask + c, mask);
                bits |= V::HighBits(mask) << (i * V::kWidth);
            }
            pBits[w] = bits;
        }
        const std::ptrdiff_t nRest = nWidth - nFull * kWordColumns;
        if (nRest == 0) {
            return;
        }
        std::uint8_t* pMaskEnd = pMask + nFull * kWordColumns;
        std::memset(pMaskEnd, 0, kWordColumns);
        std::uint64_t bits = 0;
        EachVector(nRest, [&](std::ptrdiff_t c, auto how) {
            const Bytes mask = inside(how.Load(pIndices + nFull * kWordColumns + c));
            how.Store(pMaskEnd + c, mask);
            bits |= V::HighBits(mask) << c;
        });
        pBits[nFull] = bits & BitsOfColumns(nRest);
    }

    static void UnpackHalfBytes(const std::uint8_t* pRow, std::ptrdiff_t nWidth, std::ptrdiff_t nAhead,
                                std::uint8_t* pIndices) noexcept {
        EachVector((nWidth + 1) / 2, [&](std::ptrdiff_t i, auto how) {
            __builtin_prefetch(pRow + i + nAhead);
            const Bytes pairs = how.Load(pRow + i);
            V::StoreInTurn(pIndices + 2 * i, pairs >> 4, pairs & 15);
        });
    }

    // One vector of verdicts, of kWidth pixels from p on. In 16-bit halves of an integer: blue and red, then green.
    template <std::ptrdiff_t nBytes>
    static Bytes JudgePixels(const std::uint8_t* p, const ScaledWindow& window, typename V::Ints& onLimits) noexcept {
        using Ints = typename V::Ints;
        constexpr std::ptrdiff_t kStep = V::kWidth / 4 * nBytes;
        Ints verdicts[4];
        for (std::ptrdiff_t i = 0; i < 4; ++i) {
            const Ints pixels = nBytes == 3 ? V::LoadTriples(p + i * kStep) : reinterpret_cast<Ints>(V::Load(p + i * kStep));
            const Ints grey = V::MultiplyAdd(pixels & 0x00FF00FF, Ints{} + ((299 << 16) | 114)) +
                              V::MultiplyAdd((pixels >> 8) & 255, Ints{} + 587);
            const Ints onLimit = (grey == window.nLow) | (grey == window.nHigh);
            onLimits |= onLimit;
            verdicts[i] = ((grey > window.nLow) & (grey < window.nHigh)) | (onLimit & kPixelOnLimit);
        }
        return V::Narrow(verdicts[0], verdicts[1], verdicts[2], verdicts[3]);
    }

    template <std::ptrdiff_t nBytes>
    static bool JudgeRow(const std::uint8_t* pRow, std::ptrdiff_t nWidth, std::ptrdiff_t nAhead, const ScaledWindow& window,
                         std::uint8_t* pVerdicts) noexcept {
        constexpr std::ptrdiff_t kOverrun = nBytes == 3 ? 2 : 0;  // pixels that a load reaches beyond those it is for
        typename V::Ints onLimits{};
        std::ptrdiff_t x = 0;
        for (; x + V::kWidth + kOverrun <= nWidth; x += V::kWidth) {
            for (std::ptrdiff_t i = 0; i < V::kWidth * nBytes; i += kLine) {
                __builtin_prefetch(pRow + x * nBytes + nAhead + i);
            }
            V::Store(pVerdicts + x, JudgePixels<nBytes>(pRow + x * nBytes, window, onLimits));
        }
        std::uint8_t rest[(2 * V::kWidth + kOverrun) * nBytes] = {};
        std::memcpy(rest, pRow + x * nBytes, static_cast<std::size_t>((nWidth - x) * nBytes));
        for (std::ptrdiff_t i = 0; x + i < nWidth; i += V::kWidth) {
            V::Store(pVerdicts + x + i, JudgePixels<nBytes>(rest + i * nBytes, window, onLimits));
        }
        return V::HighBits(reinterpret_cast<Bytes>(onLimits)) != 0;
    }

    static bool JudgeTrueColour(const std::uint8_t* pRow, std::ptrdiff_t nBytes, std::ptrdiff_t nWidth, std::ptrdiff_t nAhead,
                                const ScaledWindow& window, std::uint8_t* pVerdicts) noexcept {
        return nBytes == 3 ? JudgeRow<3>(pRow, nWidth, nAhead, window, pVerdicts)
                           : JudgeRow<4>(pRow, nWidth, nAhead, window, pVerdicts);
    }

    static void ExpandBits(const std::uint64_t* pBits, std::ptrdiff_t nWidth, std::uint8_t value, std::uint8_t* pOut) noexcept {
        Bytes ownBit{};
        for (int i = 0; i < static_cast<int>(V::kWidth); ++i) {
            ownBit[i] = static_cast<std::uint8_t>(1 << (i % 8));
        }
        const Bytes ones = Splat<V>(value);
        EachVector(nWidth, [&](std::ptrdiff_t c, auto how) {
            const std::uint64_t word = pBits[c / kWordColumns] >> (c % kWordColumns);
            how.Store(pOut + c, Verdict<V>((V::SpreadBits(word) & ownBit) == ownBit) & ones);
        });
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
    static std::uint8_t StepPasses(const PassPair& passes, const RowRuns& row, std::ptrdiff_t nWidth, std::ptrdiff_t nAhead,
                                   std::uint8_t* pHalf) noexcept {
        Bytes largest{};
        EachVector(nWidth, [&](std::ptrdiff_t c, auto how) {
            const Bytes mask = V::Load(row.pMask + c);
            const Bytes left = (Min<V>(V::Load(passes.pFromLeft + c), V::Load(row.pRunsLeft + c - 1)) + 1) & mask;
            const Bytes right = (Min<V>(V::Load(passes.pFromRight + c), V::Load(row.pRunsRight + c + 1)) + 1) & mask;
            V::Store(passes.pFromLeft + c, left);
            V::Store(passes.pFromRight + c, right);
            __builtin_prefetch(pHalf + c + nAhead, 1);
            how.Store(pHalf + c, Min<V>(left, right));
            largest = Max<V>(largest, Max<V>(left, right));
        });
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

    static void LowerRight(std::uint8_t* pWrapped) noexcept {
        Bytes step = Ladder<V, 0, 1>();
        for (std::ptrdiff_t i = 0; i < 256; i += V::kWidth, step += static_cast<std::uint8_t>(V::kWidth)) {
            V::Store(pWrapped + 1 + i, Min<V>(V::Load(pWrapped + 1 + i), step));
        }
    }
    static void LowerLeft(std::uint8_t* pWrapped) noexcept {
        Bytes step = Ladder<V, 255, -1>();
        for (std::ptrdiff_t i = -256; i < 0; i += V::kWidth, step -= static_cast<std::uint8_t>(V::kWidth)) {
            V::Store(pWrapped + i, Min<V>(V::Load(pWrapped + i), step));
        }
    }

    static void AddStep(const PassPair& passes, const std::uint8_t* pMask, std::ptrdiff_t nWidth, std::ptrdiff_t nAhead,
                        std::uint8_t* pHalf) noexcept {
        EachVector(nWidth, [&](std::ptrdiff_t c, auto how) {
            const Bytes mask = V::Load(pMask + c);
            const Bytes left = (V::Load(passes.pFromLeft + c) + 1) & mask;
            const Bytes right = (V::Load(passes.pFromRight + c) + 1) & mask;
            V::Store(passes.pFromLeft + c, left);
            V::Store(passes.pFromRight + c, right);
            __builtin_prefetch(pHalf + c + nAhead, 1);
            how.Store(pHalf + c, Min<V>(left, right));
        });
    }

    static void StepDistance(const std::uint8_t* pBefore, const std::uint8_t* pHalf, std::ptrdiff_t nWidth, std::ptrdiff_t nAhead,
                             std::uint8_t* pOut) noexcept {
        EachVector(nWidth, [&](std::ptrdiff_t c, auto how) {
            __builtin_prefetch(pHalf + c + nAhead);
            V::Store(pOut + c, Min<V>(V::AddSaturated(V::Load(pBefore + c), Splat<V>(1)), how.Load(pHalf + c)));
        });
    }

    static void JoinHalves(const std::uint8_t* pHalf, const std::uint8_t* pOther, std::ptrdiff_t nWidth, std::ptrdiff_t nAhead,
                           std::uint8_t* pOut) noexcept {
        EachVector(nWidth, [&](std::ptrdiff_t c, auto how) {
            __builtin_prefetch(pHalf + c + nAhead);
            V::Store(pOut + c, Min<V>(how.Load(pHalf + c), V::Load(pOther + c)));
        });
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

    static constexpr RowPasses kPasses = {ForegroundOfIndices, UnpackHalfBytes, JudgeTrueColour, ExpandBits, MeasureRuns,
                                          StepPasses,          LowerToRuns,     LowerRight,      LowerLeft,  AddStep,
                                          StepDistance,        JoinHalves,      MarkRow};
};

}  // namespace width::fast
