// What each pass takes of the skeleton in one thread. The passes are called row by row in the order of
// analysis/Skeleton.cpp, so that they find their rows in the cache as they do there; a clock is read between them,
// and what that costs is taken off again. The counters of a case are the milliseconds of each pass, and of the skeleton as a
// whole. The results are compared, so that the order here can't fall behind the one there.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <memory>

#include "analysis/fast/BlockBits.h"
#include "analysis/fast/Foreground.h"
#include "analysis/fast/HalfDistance.h"
#include "analysis/fast/SkeletonRun.h"
#include "analysis/fast/Strips.h"
#include "bench/Cases.h"
#include "bench/PictureCases.h"

namespace width::bench {

namespace {

enum class Pass : std::uint8_t { Foreground, Runs, OneSided, OneSidedWrapping, Mask, Distance, Marks, Blocks, Cells, Count };

constexpr auto kPasses = static_cast<std::size_t>(Pass::Count);
constexpr std::array<const char*, kPasses> kPassNames = {
    "foreground", "runs", "one-sided", "one-sided, wrapping", "mask, wrapping", "distance", "marks", "block reduction", "cells"};

// Time since the lap before goes to the pass that a lap names.
class Laps {
public:
    void Start() noexcept { m_last = Clock::now(); }
    void Lap(Pass pass) noexcept {
        const Clock::time_point now = Clock::now();
        m_times[static_cast<std::size_t>(pass)] += now - m_last;
        ++m_laps[static_cast<std::size_t>(pass)];
        m_last = now;
    }
    double Milliseconds(std::size_t i, double fPerLap) const noexcept {
        return std::chrono::duration<double, std::milli>(m_times[i]).count() - static_cast<double>(m_laps[i]) * fPerLap;
    }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point m_last;
    std::array<Clock::duration, kPasses> m_times{};
    std::array<std::int64_t, kPasses> m_laps{};
};

Laps g_laps;

// Milliseconds that a lap itself takes.
double MillisecondsPerLap() {
    constexpr int kLaps = 100'000;
    Laps laps;
    laps.Start();
    for (int i = 0; i < kLaps; ++i) {
        laps.Lap(Pass::Runs);
    }
    return laps.Milliseconds(static_cast<std::size_t>(Pass::Runs), 0.0) / kLaps;
}

const fast::RowPasses& BestPasses() {
    return fast::RowPassesFor(fast::BestInstructionSet());
}

void MeasureRunsWithLap(const std::uint8_t* pMask, const std::uint64_t* pBits, std::ptrdiff_t nWords, std::uint8_t* pRunsLeft,
                        std::uint8_t* pRunsRight) noexcept {
    BestPasses().measureRuns(pMask, pBits, nWords, pRunsLeft, pRunsRight);
    g_laps.Lap(Pass::Runs);
}

// The best row passes, with a lap behind the one that HalfDistance calls along with another.
fast::RowPasses PassesWithLap() {
    fast::RowPasses passes = BestPasses();
    passes.measureRuns = MeasureRunsWithLap;
    return passes;
}

// One skeleton.
class PassRun {
public:
    explicit PassRun(const DibView& dib)
        : m_passes(PassesWithLap()),
          m_foreground(dib, kDark, m_passes),
          m_map(SkeletonMap::ForOverwriting(dib.Height(), dib.Width())),
          m_nHeight(dib.Height()),
          m_nWidth(dib.Width()),
          m_nWords(fast::WordsFor(dib.Width())),
          m_words(std::make_unique_for_overwrite<std::uint64_t[]>(static_cast<std::size_t>(2 * m_nWords * m_nHeight))),
          m_ridges{m_words.get(), m_nWords, m_nHeight},
          m_plateaus{m_words.get() + m_nWords * m_nHeight, m_nWords, m_nHeight},
          m_inner(static_cast<std::size_t>(m_nWords)),
          m_reduction(m_ridges, m_plateaus),
          m_strips(8, m_nWidth),
          m_pMask(m_strips.At(0)),
          m_pScratch(m_strips.At(1)),
          m_half(m_passes, m_nWidth),
          m_beyond(m_passes, m_nWidth) {
        for (std::ptrdiff_t x = 1; x + 2 < m_nWidth; ++x) {
            m_inner[static_cast<std::size_t>(x / fast::kWordColumns)] |= std::uint64_t{1} << (x % fast::kWordColumns);
        }
    }

    SkeletonMap Run() noexcept {
        g_laps.Start();
        SweepDown();
        SweepUp();
        m_reduction.Run();
        g_laps.Lap(Pass::Blocks);
        FillCells();
        g_laps.Lap(Pass::Cells);
        return std::move(m_map);
    }

private:
    std::uint8_t* Cells(std::ptrdiff_t s) noexcept {
        return m_map.Row(static_cast<std::int32_t>(s) + SkeletonMap::kBorder) + SkeletonMap::kBorder;
    }

    // Distances of one of the last four rows, or zeros beyond the picture.
    std::uint8_t* Distance(std::ptrdiff_t s) noexcept { return m_strips.At(s < 0 || s >= m_nHeight ? 2 : 4 + (s & 3)); }

    void StepHalf(std::ptrdiff_t s, std::ptrdiff_t nAhead, std::uint8_t* pHalf) noexcept {
        const Pass pass = m_half.MayWrap() ? Pass::OneSidedWrapping : Pass::OneSided;
        m_half.Step(m_pMask, m_ridges.Row(s), nAhead, pHalf);
        g_laps.Lap(pass);
    }

    void SweepDown() noexcept {
        for (std::ptrdiff_t s = m_nHeight - 1; s >= 0; --s) {
            const std::ptrdiff_t nRowsAhead = s == 0 ? 0 : -1;
            m_foreground.Read(s, nRowsAhead, m_pScratch, m_pMask, m_ridges.Row(s));
            g_laps.Lap(Pass::Foreground);
            StepHalf(s, nRowsAhead * m_map.Columns(), Cells(s));
        }
    }

    // Marks follow two rows behind.
    void SweepUp() noexcept {
        const bool bMayWrap = m_half.MayWrap();
        if (bMayWrap) {
            m_beyond.SwapWith(m_half);
        }
        for (std::ptrdiff_t s = 0; s < m_nHeight; ++s) {
            MeasureRow(s, bMayWrap);
            const std::ptrdiff_t nLast = s == m_nHeight - 1 ? s : s - 2;
            for (std::ptrdiff_t t = std::max(s - 2, std::ptrdiff_t{0}); t <= nLast; ++t) {
                MarkRow(t);
            }
        }
    }

    void MeasureRow(std::ptrdiff_t s, bool bMayWrap) noexcept {
        const std::ptrdiff_t nAhead = s == m_nHeight - 1 ? 0 : m_map.Columns();
        if (bMayWrap) {
            m_passes.expandBits(m_ridges.Row(s), m_nWords * fast::kWordColumns, 255, m_pMask);
            g_laps.Lap(Pass::Mask);
            StepHalf(s, 0, m_pScratch);
            m_passes.joinHalves(Cells(s), m_pScratch, m_nWidth, nAhead, Distance(s));
        } else {
            m_passes.stepDistance(Distance(s - 1), Cells(s), m_nWidth, nAhead, Distance(s));
        }
        g_laps.Lap(Pass::Distance);
    }

    void MarkRow(std::ptrdiff_t t) noexcept {
        const fast::DistanceRows rows = {Distance(t - 1), Distance(t), Distance(t + 1), Distance(t + 2)};
        m_passes.markRow(rows, m_nWords, m_inner.data(), t >= 1 && t + 2 < m_nHeight, m_ridges.Row(t), m_plateaus.Row(t));
        g_laps.Lap(Pass::Marks);
    }

    void FillCells() noexcept {
        constexpr std::ptrdiff_t kBorder = SkeletonMap::kBorder;
        for (std::ptrdiff_t s = -kBorder; s < m_nHeight + kBorder; ++s) {
            std::uint8_t* pCells = Cells(s);
            if (s < 0 || s >= m_nHeight) {
                std::memset(pCells - kBorder, 0, static_cast<std::size_t>(m_nWidth + 2 * kBorder));
                continue;
            }
            std::memset(pCells - kBorder, 0, kBorder);
            m_passes.expandBits(m_ridges.Row(s), m_nWidth, 1, pCells);
            std::memset(pCells + m_nWidth, 0, kBorder);
        }
    }

    fast::RowPasses m_passes;
    fast::ForegroundReader m_foreground;
    SkeletonMap m_map;
    std::ptrdiff_t m_nHeight;
    std::ptrdiff_t m_nWidth;
    std::ptrdiff_t m_nWords;
    std::unique_ptr<std::uint64_t[]> m_words;
    fast::BitRows m_ridges;
    fast::BitRows m_plateaus;
    std::vector<std::uint64_t> m_inner;
    fast::BlockReduction m_reduction;
    fast::Strips m_strips;
    std::uint8_t* m_pMask;
    std::uint8_t* m_pScratch;
    fast::HalfDistance m_half;    // of the sweep under way
    fast::HalfDistance m_beyond;  // of the edge that the second sweep begins at
};

SkeletonMap Whole(const DibView& dib) {
    return fast::MakeSkeleton(dib, kDark, fast::BestInstructionSet(), fast::BandsFor(dib, 1));
}

double WholeMilliseconds(const DibView& dib) {
    const auto begin = std::chrono::steady_clock::now();
    Whole(dib);
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

// The whole skeleton is timed by turns with the passes, so that both see the machine in the same state.
void MeasurePasses(benchmark::State& state, const DibView& dib) {
    const double fPerLap = MillisecondsPerLap();
    double fWhole = 0.0;
    g_laps = Laps();
    for (auto _ : state) {
        PassRun(dib).Run();
        fWhole += WholeMilliseconds(dib);
    }
    using benchmark::Counter;
    for (std::size_t i = 0; i < kPasses; ++i) {
        state.counters[kPassNames[i]] = Counter(g_laps.Milliseconds(i, fPerLap), Counter::kAvgIterations);
    }
    state.counters["whole"] = Counter(fWhole, Counter::kAvgIterations);
}

void AddPasses(Scene scene, std::uint16_t nBitCount) {
    constexpr std::int32_t kSize = 4096;
    AddCase(CaseName("passes", scene, kSize, nBitCount), [=](benchmark::State& state) {
        const std::optional<DibView> dib = DibView::Open(Picture(scene, kSize, nBitCount));
        if (PassRun(*dib).Run() == Whole(*dib)) {
            MeasurePasses(state, *dib);
        } else {
            state.SkipWithError("the passes in this order don't make the skeleton");
        }
    });
}

const bool g_bAdded = [] {
    for (const Scene scene : {Scene::LineArt, Scene::LineSpace, Scene::DeepAreas}) {
        AddPasses(scene, 8);
    }
    AddPasses(Scene::LineArt, 24);
    return true;
}();

}  // namespace

}  // namespace width::bench
