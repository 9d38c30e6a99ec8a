// The order of the skeleton's passes, and the ridge and block passes.
// Tested by: tests/unit/analysis/SkeletonTest.cpp (against a literal version, on all small maps)
#include "analysis/Skeleton.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

#include "analysis/SkeletonPasses.h"
#include "analysis/fast/FastSkeleton.h"

namespace width {

namespace {

constexpr std::ptrdiff_t kBorder = SkeletonMap::kBorder;

// The four rows of distances that the marks of one row depend on.
struct RowWindow {
    const std::uint8_t* pUp;
    const std::uint8_t* pHere;
    const std::uint8_t* pDown;
    const std::uint8_t* pDown2;
};

// Higher than both neighbours on at least one of the four axes.
inline std::uint8_t IsRidge(const RowWindow& d, std::ptrdiff_t c) noexcept {
    const std::uint8_t v = d.pHere[c];
    const auto above = [v](std::uint8_t a, std::uint8_t b) { return static_cast<std::uint8_t>(v > std::max(a, b)); };
    return static_cast<std::uint8_t>(above(d.pHere[c - 1], d.pHere[c + 1]) | above(d.pUp[c], d.pDown[c]) |
                                     above(d.pUp[c - 1], d.pDown[c + 1]) | above(d.pDown[c - 1], d.pUp[c + 1]));
}

// Part of a 2 x 2 block of equal, non-zero distances. The border's 0 equals no such distance, so
// blocks never reach into it.
inline std::uint8_t IsPlateau(const RowWindow& d, std::ptrdiff_t c) noexcept {
    const std::uint8_t v = d.pHere[c];
    const auto same = [v](std::uint8_t a) { return static_cast<std::uint8_t>(a == v); };
    const int left = same(d.pHere[c - 1]);
    const int right = same(d.pHere[c + 1]);
    const int up = same(d.pUp[c]) & ((left & same(d.pUp[c - 1])) | (right & same(d.pUp[c + 1])));
    const int down = same(d.pDown[c]) & ((left & same(d.pDown[c - 1])) | (right & same(d.pDown[c + 1])));
    return static_cast<std::uint8_t>((up | down) & static_cast<int>(v != 0));
}

// First crest cell of four in a line with the distances p, p + 1, p + 1, p. Compared as plain
// integers: a crest of 0 has no p below it.
inline std::uint8_t IsFirstOfCrest(std::uint8_t before, std::uint8_t first, std::uint8_t second, std::uint8_t after) noexcept {
    return static_cast<std::uint8_t>(static_cast<int>(before == after) & static_cast<int>(first == second) &
                                     static_cast<int>(before + 1 == first));
}

bool IsAllZero(const std::uint8_t* p, std::ptrdiff_t n) noexcept {
    std::uint64_t any = 0;
    std::ptrdiff_t i = 0;
    for (; i + 8 <= n; i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, p + i, sizeof word);
        any |= word;
    }
    for (; i < n; ++i) {
        any |= p[i];
    }
    return any == 0;
}

// Ridges and plateaus of the columns [c0, c1) of one row. Only cells of non-zero distance can be
// marked, here and by the crest rules.
void MarkRidgesAndPlateaus(const RowWindow& d, std::uint8_t* pOut, std::ptrdiff_t c0, std::ptrdiff_t c1) noexcept {
    for (std::ptrdiff_t c = c0; c < c1; ++c) {
        pOut[c] = static_cast<std::uint8_t>(IsRidge(d, c) | IsPlateau(d, c));
    }
}

// Crests along the row: both ends of the four cells must be pixels, so the outermost pixel on the
// left and the two on the right are never a first crest cell.
void MarkCrestsAlongRow(const std::uint8_t* pHere, std::uint8_t* pOut, std::ptrdiff_t c0, std::ptrdiff_t c1) noexcept {
    for (std::ptrdiff_t c = c0; c < c1; ++c) {
        pOut[c] = static_cast<std::uint8_t>(pOut[c] | IsFirstOfCrest(pHere[c - 1], pHere[c], pHere[c + 1], pHere[c + 2]));
    }
}

void MarkCrestsDownColumn(const RowWindow& d, std::uint8_t* pOut, std::ptrdiff_t c0, std::ptrdiff_t c1) noexcept {
    for (std::ptrdiff_t c = c0; c < c1; ++c) {
        pOut[c] = static_cast<std::uint8_t>(pOut[c] | IsFirstOfCrest(d.pUp[c], d.pHere[c], d.pDown[c], d.pDown2[c]));
    }
}

}  // namespace

double SkeletonGrey(Colour colour) noexcept {
    return (0.299 * colour.red + 0.587 * colour.green) + 0.114 * colour.blue;
}

std::optional<SkeletonMap> MakeSkeleton(const DibView& dib, GreyWindow window) noexcept {
    try {
        return fast::MakeSkeleton(dib, window, fast::BestInstructionSet(), fast::ThreadsFor(dib));
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

SkeletonMap MakeSkeletonPlainly(const DibView& dib, GreyWindow window) {
    SkeletonMap map(dib.Height(), dib.Width());  // the foreground first, then the ridge, in the end the skeleton
    SkeletonMap distance(dib.Height(), dib.Width());
    Binarise(dib, window, map);
    MeasureDistance(map, distance);
    MarkRidges(distance, map);
    ReduceBlocks(map);
    return map;
}

void MarkRidges(const SkeletonMap& distance, SkeletonMap& ridge) noexcept {
    constexpr std::ptrdiff_t kStep = 256;  // columns looked at together, so that empty stretches are skipped
    const std::int32_t nHeight = distance.Height();
    const std::ptrdiff_t nEnd = distance.Width() + kBorder;
    for (std::int32_t r = kBorder; r < nHeight + kBorder; ++r) {
        const RowWindow d{distance.Row(r - 1), distance.Row(r), distance.Row(r + 1), distance.Row(r + 2)};
        std::uint8_t* pOut = ridge.Row(r);
        const bool bColumnCrests = r > kBorder && r < nHeight;
        for (std::ptrdiff_t c0 = kBorder; c0 < nEnd; c0 += kStep) {
            const std::ptrdiff_t c1 = std::min(c0 + kStep, nEnd);
            if (IsAllZero(d.pHere + c0, c1 - c0)) {
                std::memset(pOut + c0, 0, static_cast<std::size_t>(c1 - c0));
                continue;
            }
            MarkRidgesAndPlateaus(d, pOut, c0, c1);
            MarkCrestsAlongRow(d.pHere, pOut, std::max(c0, kBorder + 1), std::min(c1, nEnd - 2));
            if (bColumnCrests) {
                MarkCrestsDownColumn(d, pOut, c0, c1);
            }
        }
    }
}

}  // namespace width
