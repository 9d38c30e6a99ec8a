// Any bytes as a packed bitmap: whatever the door accepts can be read, gives the threshold and, where
// it is small, the skeleton of the literal versions.
#include <algorithm>
#include <vector>

#include "analysis/GreyLevels.h"
#include "analysis/Skeleton.h"
#include "core/PackedDib.h"
#include "fuzz/FuzzInput.h"
#include "tests/support/LiteralSkeleton.h"
#include "tests/support/LiteralThreshold.h"

namespace width::fuzz {

namespace {

constexpr std::int64_t kMostPixels = 16384;  // what the literal versions do quickly

std::uint8_t g_nSink = 0;  // what was read ends here, so that the reading is not optimised away

void CheckFigures(const DibFigures& figures, std::size_t nBlock) {
    Require(figures.nWidth > 0 && figures.nHeight > 0, "sizes are positive");
    Require(figures.nBytes <= nBlock, "the block holds what its header promises");
    const std::size_t nRows = std::size_t{figures.nStride} * static_cast<std::size_t>(figures.nHeight);
    Require(figures.nBitsOffset + nRows == figures.nBytes, "the rows end with the block");
    Require(std::uint64_t{figures.nStride} * 8 >= std::uint64_t{figures.nBitCount} * static_cast<std::uint32_t>(figures.nWidth),
            "a row holds its pixels");
}

void ReadEdges(const DibView& dib) {
    for (const std::int32_t nRow : {0, dib.Height() / 2, dib.Height() - 1}) {
        for (const std::int32_t x : {0, dib.Width() / 2, dib.Width() - 1}) {
            g_nSink ^= dib.PixelAt(x, nRow).green;
        }
        g_nSink ^= dib.Row(nRow).back();
    }
}

void CheckThreshold(const DibView& dib) {
    const std::int32_t nThreshold = CalcAutoThreshold(&dib);
    const bool bReadable = IsReadableDepth(dib.BitCount());
    Require(nThreshold >= 0 && nThreshold <= 255, "the threshold is a grey level");
    Require(bReadable || nThreshold == 0, "an unreadable depth has threshold 0");
    Require(!bReadable || nThreshold == test::LiteralThreshold(dib), "the threshold is the literal one");
}

void CheckSkeleton(const DibView& dib, GreyWindow window) {
    const std::optional<SkeletonMap> map = MakeSkeleton(dib, window);
    Require(map.has_value(), "there is memory for a small skeleton");
    Require(map->Height() == dib.Height() && map->Width() == dib.Width(), "the skeleton is as large as the picture");
    Require(*map == test::LiteralSkeleton(dib, window), "the skeleton is the literal one");
}

}  // namespace

void TryBlock(std::span<const std::byte> block, GreyWindow window) {
    const std::optional<DibView> dib = DibView::Open(block);
    const DibCheck check = CheckPackedDib(block);
    Require(dib.has_value() == (check.status == DibStatus::Ok), "what is checked and what is opened agree");
    if (!dib) {
        return;
    }
    CheckFigures(check.figures, block.size());
    ReadEdges(*dib);
    if (std::int64_t{dib->Width()} * dib->Height() <= kMostPixels) {
        CheckThreshold(*dib);
        CheckSkeleton(*dib, window);
    }
}

}  // namespace width::fuzz

// The first two bytes are the grey window; the block behind them is not aligned.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t nSize) {
    if (nSize < 2 || pData[0] == pData[1]) {
        return 0;
    }
    const auto [nMin, nMax] = std::minmax(pData[0], pData[1]);
    width::fuzz::TryBlock(std::as_bytes(std::span(pData + 2, nSize - 2)), {nMin, nMax});
    return 0;
}
