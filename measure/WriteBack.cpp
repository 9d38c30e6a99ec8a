// Tested by: tests/unit/measure/WriteBackTest.cpp
#include "measure/WriteBack.h"

#include <unordered_map>

namespace width {

namespace {

// Remembers what the search said of each colour; most pixels have the colour of the one before.
class RememberedIndex {
public:
    explicit RememberedIndex(const NearestIndex& nearest) : m_nearest(nearest) { m_indices.reserve(1024); }

    std::uint32_t Of(std::uint32_t nPixel) {
        if (nPixel != m_nLastPixel) {
            m_nLastIndex = Look(nPixel);
            m_nLastPixel = nPixel;
        }
        return m_nLastIndex;
    }

private:
    std::uint32_t Look(std::uint32_t nPixel) {
        const auto [it, bNew] = m_indices.try_emplace(nPixel, 0);
        if (bNew) {
            const std::uint32_t nRed = nPixel >> 16 & 255;
            const std::uint32_t nGreen = nPixel >> 8 & 255;
            it->second = m_nearest(nRed | nGreen << 8 | (nPixel & 255) << 16);
        }
        return it->second;
    }

    const NearestIndex& m_nearest;
    std::unordered_map<std::uint32_t, std::uint32_t> m_indices;
    std::uint32_t m_nLastPixel = 0xFFFFFFFF;  // no pixel has this value
    std::uint32_t m_nLastIndex = 0;
};

// Pixel x of a row takes nBits bits, leftmost pixel highest; the other bits of its byte stay.
void StoreIndex(std::uint8_t* pRow, std::size_t x, std::uint32_t nBits, std::uint32_t nIndex) noexcept {
    const std::size_t nBit = x * nBits;
    const auto nShift = static_cast<std::uint32_t>(8 - nBits - nBit % 8);
    const std::uint32_t nMask = ((1U << nBits) - 1U) << nShift;
    std::uint8_t& byte = pRow[nBit / 8];
    byte = static_cast<std::uint8_t>((nIndex << nShift & nMask) | (byte & ~nMask));
}

void StoreColours(std::uint8_t* pRow, const std::uint32_t* pPixels, std::size_t nWidth, std::size_t nStride) noexcept {
    std::uint8_t* const pEnd = pRow + nStride;
    for (std::size_t x = 0; x < nWidth; ++x, pRow += 3) {
        pRow[0] = static_cast<std::uint8_t>(pPixels[x]);
        pRow[1] = static_cast<std::uint8_t>(pPixels[x] >> 8);
        pRow[2] = static_cast<std::uint8_t>(pPixels[x] >> 16);
    }
    while (pRow < pEnd) {
        *pRow++ = 0;
    }
}

}  // namespace

void StorePixels(const DibFigures& figures, std::uint8_t* pBits, const std::uint32_t* pPixels, const NearestIndex& nearest) {
    const auto nWidth = static_cast<std::size_t>(figures.nWidth);
    const std::uint32_t nBits = figures.nBitCount;
    const bool bIndexed = nBits == 1 || nBits == 4 || nBits == 8;
    if (!bIndexed && nBits != 24) {
        return;
    }
    RememberedIndex index(nearest);
    for (std::int32_t s = 0; s < figures.nHeight; ++s, pBits += figures.nStride, pPixels += nWidth) {
        if (!bIndexed) {
            StoreColours(pBits, pPixels, nWidth, figures.nStride);
            continue;
        }
        for (std::size_t x = 0; x < nWidth; ++x) {
            StoreIndex(pBits, x, nBits, index.Of(pPixels[x] & 0xFFFFFFU));
        }
    }
}

}  // namespace width
