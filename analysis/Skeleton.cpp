// The order of the passes, and how two threads share them. The passes over a row are in fast/RowPasses.h.
//
// A seam divides the rows into two bands. In the first sweep each band's rows are done from the picture's edge to the
// seam, by the two one-sided passes that come from that edge: half distances, which go into the result's own cells. The
// seam is where the two meet: a processor that has less time for one of them gives it fewer rows. In the second sweep each
// band goes back from the seam to the edge; the passes that come over the seam go on from where the other band left them,
// so that every row gets both halves, and the marks of ridges and plateaus follow a row or two behind. Nothing is done
// twice, whoever does it: with one thread the seam is the bottom edge, and one of the bands has no rows. Marks are bits; block
// reduction turns them into the skeleton's bits, and these become cells. Block reduction goes upwards only, so its two turns are
// what two threads share.
//
// Beyond the picture a run touches a byte a pixel for the result, two bits for marks, and a few rows.
// Tested by: tests/unit/analysis/SkeletonRunTest.cpp
#include "analysis/Skeleton.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <new>
#include <thread>
#include <utility>
#include <vector>

#include "analysis/fast/BlockBits.h"
#include "analysis/fast/Foreground.h"
#include "analysis/fast/HalfDistance.h"
#include "analysis/fast/SkeletonRun.h"
#include "analysis/fast/Strips.h"
#include "analysis/fast/ThreadPair.h"

namespace width {

namespace fast {

namespace {

// The marks beside the seam depend on the distances of so many rows on either side of it.
constexpr std::ptrdiff_t kSeamRowsOfBand = Bands::kFewestRows;

// Rows on one side of the seam, and room for one thread's work on them.
struct Band {
    Band(const RowPasses& passes, std::ptrdiff_t nWidth) : strips(8, nWidth), half(passes, nWidth) {}

    std::uint8_t* Mask() noexcept { return strips.At(0); }
    std::uint8_t* Scratch() noexcept { return strips.At(1); }
    std::uint8_t* Nothing() noexcept { return strips.At(2); }                             // a row of zeros
    std::uint8_t* Distance(std::ptrdiff_t s) noexcept { return strips.At(4 + (s & 3)); }  // of the last four rows

    Strips strips;
    HalfDistance half;
    std::ptrdiff_t nOuter = 0;    // row at the picture's edge
    std::ptrdiff_t nInner = 0;    // row at the seam, once the first sweep is done
    std::ptrdiff_t nOut = 1;      // from the seam to the edge: +1 or -1
    std::ptrdiff_t nOwnRows = 0;  // at the edge, that are left to nobody else
};

class SkeletonRun {
public:
    SkeletonRun(const DibView& dib, GreyWindow window, InstructionSet set, Bands bands)
        : m_passes(RowPassesFor(set)),
          m_foreground(dib, window, m_passes),
          m_map(SkeletonMap::ForOverwriting(dib.Height(), dib.Width())),
          m_nHeight(dib.Height()),
          m_nWidth(dib.Width()),
          m_nWords(WordsFor(dib.Width())),
          m_words(std::make_unique_for_overwrite<std::uint64_t[]>(static_cast<std::size_t>(2 * m_nWords * m_nHeight))),
          m_ridges{m_words.get(), m_nWords, m_nHeight},
          m_plateaus{m_words.get() + m_nWords * m_nHeight, m_nWords, m_nHeight},
          m_inner(static_cast<std::size_t>(m_nWords)),
          m_reduction(m_ridges, m_plateaus),
          m_seamRows(2 * kSeamRowsOfBand, m_nWidth),
          m_lower(m_passes, m_nWidth),
          m_upper(m_passes, m_nWidth),
          m_nRowsToShare(m_nHeight - bands.nLowerRows - bands.nUpperRows),
          m_threads(bands.nLowerRows > 0) {
        m_lower.nOut = -1;
        m_lower.nOwnRows = bands.nLowerRows;
        m_upper.nOuter = m_nHeight - 1;
        m_upper.nOwnRows = bands.nUpperRows;
        for (std::ptrdiff_t x = 1; x + 2 < m_nWidth; ++x) {
            m_inner[static_cast<std::size_t>(x / kWordColumns)] |= std::uint64_t{1} << (x % kWordColumns);
        }
    }

    SkeletonMap Run() noexcept {
        Share([this](Band& band) { SweepInwards(band); });
        m_nSeam = m_upper.nInner;
        const bool bMayWrap = m_lower.half.MayWrap() || m_upper.half.MayWrap();
        ExchangeStates(bMayWrap);
        Share([&](Band& band) { SweepOutwards(band, bMayWrap); });
        if (m_nSeam > 0) {
            MarkSeam();
        }
        FillBorderRows();
        ReduceAndFill();
        return std::move(m_map);
    }

private:
    // Does the same with both bands at a time, or with the only one that has rows.
    template <class Work>
    void Share(Work work) noexcept {
        if (m_lower.nOwnRows == 0) {
            return work(m_upper);
        }
        m_threads.RunBoth([&] { work(m_lower); }, [&] { work(m_upper); });
    }

    // Cells of a picture's row in the result, without the border's.
    std::uint8_t* Cells(std::ptrdiff_t s) noexcept {
        return m_map.Row(static_cast<std::int32_t>(s) + SkeletonMap::kBorder) + SkeletonMap::kBorder;
    }

    // Half distances of a band, up to where the other one is; the foreground stays behind where ridges will be.
    void SweepInwards(Band& band) noexcept {
        std::ptrdiff_t s = band.nOuter;
        for (std::ptrdiff_t nRows = band.nOwnRows; nRows > 0; nRows = TakeRows()) {
            for (; nRows > 0; --nRows, s -= band.nOut) {
                const bool bAtOtherEdge = s == m_nHeight - 1 - band.nOuter;  // only where one band does all rows
                const std::ptrdiff_t nRowsAhead = bAtOtherEdge ? 0 : -band.nOut;
                m_foreground.Read(s, nRowsAhead, band.Scratch(), band.Mask(), m_ridges.Row(s));
                band.half.Step(band.Mask(), m_ridges.Row(s), nRowsAhead * m_map.Columns(), Cells(s));
                band.nInner = s;
            }
        }
    }

    // How many more rows the band that asks may do.
    std::ptrdiff_t TakeRows() noexcept {
        constexpr std::ptrdiff_t kRowsAtATime = 16;
        return std::clamp(m_nRowsToShare.fetch_sub(kRowsAtATime, std::memory_order_relaxed), std::ptrdiff_t{0}, kRowsAtATime);
    }

    // Each band's second sweep goes on from the other's first. Where nothing wraps, the smaller of two passes is enough.
    void ExchangeStates(bool bMayWrap) noexcept {
        if (bMayWrap) {
            m_lower.half.SwapWith(m_upper.half);
            return;
        }
        m_lower.half.Smaller(m_upper.Distance(m_upper.nInner - 1));
        m_upper.half.Smaller(m_lower.Distance(m_lower.nInner + 1));
    }

    void SweepOutwards(Band& band, bool bMayWrap) noexcept {
        for (std::ptrdiff_t s = band.nInner;; s += band.nOut) {
            MeasureRow(band, s, bMayWrap);
            if (m_nSeam > 0 && s >= m_nSeam - kSeamRowsOfBand && s < m_nSeam + kSeamRowsOfBand) {
                std::memcpy(SeamRow(s), band.Distance(s), static_cast<std::size_t>(m_nWords * kWordColumns));
            }
            MarkBehind(band, s);
            if (s == band.nOuter) {
                break;
            }
        }
    }

    void MeasureRow(Band& band, std::ptrdiff_t s, bool bMayWrap) noexcept {
        const std::ptrdiff_t nAhead = s == band.nOuter ? 0 : band.nOut * m_map.Columns();
        if (bMayWrap) {
            m_passes.expandBits(m_ridges.Row(s), m_nWords * kWordColumns, 255, band.Mask());
            band.half.Step(band.Mask(), m_ridges.Row(s), 0, band.Scratch());
            m_passes.joinHalves(Cells(s), band.Scratch(), m_nWidth, nAhead, band.Distance(s));
        } else {
            m_passes.stepDistance(band.Distance(s - band.nOut), Cells(s), m_nWidth, nAhead, band.Distance(s));
        }
    }

    // Marks the rows whose neighbours are all known once row s is.
    void MarkBehind(Band& band, std::ptrdiff_t s) noexcept {
        const auto distance = [&](std::ptrdiff_t t) { return t < 0 || t >= m_nHeight ? band.Nothing() : band.Distance(t); };
        if (band.nOut < 0) {
            if (s + 3 < m_nSeam) {
                MarkRow(s + 1, distance);
            }
            if (s == 0) {
                MarkRow(0, distance);
            }
            return;
        }
        const std::ptrdiff_t nFirst = m_nSeam == 0 ? 0 : m_nSeam + 1;
        const std::ptrdiff_t nLast = s == m_nHeight - 1 ? s : s - 2;
        for (std::ptrdiff_t t = s - 2; t <= nLast; ++t) {
            if (t >= nFirst) {
                MarkRow(t, distance);
            }
        }
    }

    void MarkSeam() noexcept {
        for (std::ptrdiff_t t = m_nSeam - 2; t <= m_nSeam; ++t) {
            MarkRow(t, [this](std::ptrdiff_t s) { return SeamRow(s); });
        }
    }

    template <class Distance>
    void MarkRow(std::ptrdiff_t t, Distance distance) noexcept {
        const DistanceRows rows = {distance(t - 1), distance(t), distance(t + 1), distance(t + 2)};
        m_passes.markRow(rows, m_nWords, m_inner.data(), t >= 1 && t + 2 < m_nHeight, m_ridges.Row(t), m_plateaus.Row(t));
    }

    std::uint8_t* SeamRow(std::ptrdiff_t s) noexcept { return m_seamRows.At(s - (m_nSeam - kSeamRowsOfBand)); }

    void FillBorderRows() noexcept {
        const auto nCells = static_cast<std::size_t>(m_nWidth) + std::size_t{2} * SkeletonMap::kBorder;
        for (const std::ptrdiff_t s : {std::ptrdiff_t{-2}, std::ptrdiff_t{-1}, m_nHeight, m_nHeight + 1}) {
            std::memset(Cells(s) - SkeletonMap::kBorder, 0, nCells);
        }
    }

    // With two threads, whichever has nothing left to reduce fills the cells of rows that are done.
    void ReduceAndFill() noexcept {
        if (m_threads.AreTwo()) {
            m_threads.RunBoth(
                [this] {
                    m_reduction.RunFirst();
                    FillReducedRows();
                },
                [this] {
                    m_reduction.RunAgain();
                    FillReducedRows();
                });
        } else {
            m_reduction.Run();
            FillRows(0, m_nHeight);
        }
    }

    void FillReducedRows() noexcept {
        constexpr std::ptrdiff_t kRowsAtATime = 64;
        for (;;) {
            const std::ptrdiff_t nFirst = m_nRowsTaken.fetch_add(kRowsAtATime, std::memory_order_relaxed);
            if (nFirst >= m_nHeight) {
                return;
            }
            const std::ptrdiff_t nEnd = std::min(nFirst + kRowsAtATime, m_nHeight);
            m_reduction.WaitForRows(nEnd);
            FillRows(nFirst, nEnd);
        }
    }

    // The cells of rows from their bits, with the border's at both ends.
    void FillRows(std::ptrdiff_t nFirst, std::ptrdiff_t nEnd) noexcept {
        for (std::ptrdiff_t s = nFirst; s < nEnd; ++s) {
            std::uint8_t* pCells = Cells(s);
            std::memset(pCells - SkeletonMap::kBorder, 0, SkeletonMap::kBorder);
            m_passes.expandBits(m_ridges.Row(s), m_nWidth, 1, pCells);
            std::memset(pCells + m_nWidth, 0, SkeletonMap::kBorder);
        }
    }

    const RowPasses& m_passes;
    ForegroundReader m_foreground;
    SkeletonMap m_map;
    std::ptrdiff_t m_nHeight;
    std::ptrdiff_t m_nWidth;
    std::ptrdiff_t m_nWords;
    std::ptrdiff_t m_nSeam = 0;  // first row of the upper band, once the first sweep is done
    std::unique_ptr<std::uint64_t[]> m_words;
    BitRows m_ridges;
    BitRows m_plateaus;
    std::vector<std::uint64_t> m_inner;
    BlockReduction m_reduction;
    std::atomic<std::ptrdiff_t> m_nRowsTaken = 0;  // whose cells are filled or being filled
    Strips m_seamRows;
    Band m_lower;
    Band m_upper;
    std::atomic<std::ptrdiff_t> m_nRowsToShare;  // that neither band has taken yet
    ThreadPair<> m_threads;                      // ends before what it works on goes
};

}  // namespace

Bands BandsFor(const DibView& dib, int nThreads) noexcept {
    const bool bTwo = nThreads > 1 && dib.Height() >= 2 * Bands::kFewestRows;
    return bTwo ? Bands{Bands::kFewestRows, Bands::kFewestRows} : Bands{0, dib.Height()};
}

int ThreadsFor(const DibView& dib) noexcept {
    constexpr std::int64_t kWorthAThread = 1 << 20;  // pixels; making a thread takes about as long as 100,000 of them
    return std::int64_t{dib.Width()} * dib.Height() >= kWorthAThread && std::thread::hardware_concurrency() > 1 ? 2 : 1;
}

SkeletonMap MakeSkeleton(const DibView& dib, GreyWindow window, InstructionSet set, Bands bands) {
    return IsReadableDepth(dib.BitCount()) ? SkeletonRun(dib, window, set, bands).Run() : SkeletonMap(dib.Height(), dib.Width());
}

}  // namespace fast

double SkeletonGrey(Colour colour) noexcept {
    return (0.299 * colour.red + 0.587 * colour.green) + 0.114 * colour.blue;
}

std::optional<SkeletonMap> MakeSkeleton(const DibView& dib, GreyWindow window) noexcept {
    try {
        return fast::MakeSkeleton(dib, window, fast::BestInstructionSet(), fast::BandsFor(dib, fast::ThreadsFor(dib)));
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

}  // namespace width
