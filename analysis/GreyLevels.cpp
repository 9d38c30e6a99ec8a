// Histogram and walk to the middle. Pictures with a colour table are counted by index, or by whole
// byte where a byte holds several pixels, and folded through the grey of each entry afterwards; the
// counters come out the same as pixel by pixel.
// Tested by: tests/unit/analysis/GreyLevelsTest.cpp (against a literal version)
#include "analysis/GreyLevels.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <functional>

#include "analysis/fast/GreyRows.h"
#include "core/Arithmetic.h"

namespace width {

namespace {

using Histogram = std::array<std::int32_t, 256>;

// Counters in several tables that take turns, so that bytes that are often equal don't wait for one counter.
class ByteCounter {
public:
    void Count(const std::uint8_t* p, std::size_t nBytes) noexcept {
        std::size_t i = 0;
        for (; i + 8 <= nBytes; i += 8) {
            std::uint64_t word = 0;
            std::memcpy(&word, p + i, sizeof word);
            if (word == std::rotl(word, 8)) {  // eight equal bytes
                m_tables[0][word & 255] += 8;
                continue;
            }
            for (std::size_t n = 0; n < 8; ++n) {
                ++m_tables[n % kTables][(word >> (8 * n)) & 255];
            }
        }
        for (; i < nBytes; ++i) {
            ++m_tables[0][p[i]];
        }
    }

    Histogram Sum() const noexcept {
        Histogram sum{};
        for (const Histogram& table : m_tables) {
            std::ranges::transform(sum, table, sum.begin(), std::plus<>());
        }
        return sum;
    }

private:
    static constexpr std::size_t kTables = 4;
    std::array<Histogram, kTables> m_tables{};
};

Histogram CountBytes(const DibView& dib, std::size_t nBytesPerRow) noexcept {
    ByteCounter counter;
    for (std::int32_t s = 0; s < dib.Height(); ++s) {
        counter.Count(dib.Row(s).data(), nBytesPerRow);
    }
    return counter.Sum();
}

// Index of the pixel at place nPlace (0: leftmost) of a byte that holds 8 / nBitCount pixels.
constexpr std::size_t IndexInByte(std::size_t nByte, std::size_t nPlace, std::size_t nBitCount) noexcept {
    return (nByte >> (8 - nBitCount * (nPlace + 1))) & ((std::size_t{1} << nBitCount) - 1);
}

// Counts colour-table indices of a picture of 1, 4 or 8 bits.
Histogram CountIndices(const DibView& dib) noexcept {
    const std::size_t nBitCount = dib.BitCount();
    const std::size_t nPerByte = 8 / nBitCount;
    const std::size_t nFullBytes = static_cast<std::size_t>(dib.Width()) / nPerByte;
    const std::size_t nRest = static_cast<std::size_t>(dib.Width()) % nPerByte;
    const Histogram bytes = CountBytes(dib, nFullBytes);
    Histogram indices{};
    for (std::size_t nByte = 0; nByte < 256; ++nByte) {
        for (std::size_t nPlace = 0; nPlace < nPerByte; ++nPlace) {
            indices[IndexInByte(nByte, nPlace, nBitCount)] += bytes[nByte];
        }
    }
    for (std::int32_t s = 0; nRest != 0 && s < dib.Height(); ++s) {
        for (std::size_t nPlace = 0; nPlace < nRest; ++nPlace) {
            ++indices[IndexInByte(dib.Row(s)[nFullBytes], nPlace, nBitCount)];
        }
    }
    return indices;
}

Histogram CountGreysThroughTable(const DibView& dib) noexcept {
    const Histogram indices = CountIndices(dib);
    const std::array<Colour, 256> palette = dib.Palette();
    Histogram greys{};
    for (std::size_t i = 0; i < 256; ++i) {
        greys[ThresholdGrey(palette[i])] += indices[i];
    }
    return greys;
}

// The levels of some pixels at a time, and then their counts.
Histogram CountGreysOfPixels(const DibView& dib, fast::GreyLevelsFunction greyLevels) noexcept {
    constexpr std::ptrdiff_t kAtATime = 1024;
    const std::ptrdiff_t nBytes = dib.BitCount() / 8;
    std::array<std::uint8_t, kAtATime> levels{};
    ByteCounter counter;
    for (std::int32_t s = 0; s < dib.Height(); ++s) {
        const std::uint8_t* pRow = dib.Row(s).data();
        for (std::ptrdiff_t x = 0; x < dib.Width(); x += kAtATime) {
            const std::ptrdiff_t nCount = std::min(dib.Width() - x, kAtATime);
            greyLevels(pRow + x * nBytes, nBytes, nCount, levels.data());
            counter.Count(levels.data(), static_cast<std::size_t>(nCount));
        }
    }
    return counter.Sum();
}

fast::GreyLevelsFunction GreyLevelsFor(fast::InstructionSet set) noexcept {
    return set == fast::InstructionSet::Avx2 ? fast::GreyLevelsAvx2 : fast::GreyLevelsSse2;
}

// The first level from 1 on at which the running total passes half of the pixels, or the one below.
// With a colour table an overfull level 0 always wins; without one magnitudes are compared, and it
// wins only where level 1 has pixels.
std::int32_t WalkToMiddle(const Histogram& greys, std::int32_t nTotal, bool bColourTable) noexcept {
    const std::int32_t nHalf = nTotal / 2;
    std::int32_t nBefore = 0;
    std::int32_t nSum = greys[0];
    std::int32_t t = 0;
    do {
        ++t;
        nBefore = nSum;
        nSum += greys[static_cast<std::size_t>(t)];
    } while (nSum <= nHalf && t < 255);
    const std::int32_t nBelow = nHalf - nBefore;
    const std::int32_t nAbove = nSum - nHalf;
    const bool bUpper = bColourTable ? nBelow >= nAbove : std::abs(nBelow) >= std::abs(nAbove);
    return bUpper ? t : t - 1;
}

}  // namespace

std::uint8_t ThresholdGrey(Colour colour) noexcept {
    const double grey = 0.3 * colour.red + 0.59 * colour.green + 0.11 * colour.blue;
    return static_cast<std::uint8_t>(grey);
}

std::int32_t CalcAutoThreshold(const DibView* pDib) noexcept {
    return CalcAutoThreshold(pDib, fast::BestInstructionSet());
}

std::int32_t CalcAutoThreshold(const DibView* pDib, fast::InstructionSet set) noexcept {
    if (pDib == nullptr) {
        return -1;
    }
    if (!IsReadableDepth(pDib->BitCount())) {
        return 0;
    }
    const bool bColourTable = pDib->BitCount() <= 8;
    const Histogram greys = bColourTable ? CountGreysThroughTable(*pDib) : CountGreysOfPixels(*pDib, GreyLevelsFor(set));
    return WalkToMiddle(greys, WrapMul(pDib->Width(), pDib->Height()), bColourTable);
}

}  // namespace width
