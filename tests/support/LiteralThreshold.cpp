#include "tests/support/LiteralThreshold.h"

#include <array>
#include <cstdlib>

namespace width::test {

namespace {

int GreyOf(const DibView& dib, const std::array<Colour, 256>& palette, const std::uint8_t* pRow, std::size_t x) {
    static constexpr std::uint8_t kBits[8] = {0x80, 0x40, 0x20, 0x10, 0x08, 0x04, 0x02, 0x01};
    static constexpr std::uint8_t kHalves[2] = {0xF0, 0x0F};
    Colour colour;
    switch (dib.BitCount()) {
        case 1:
            colour = palette[static_cast<std::size_t>((pRow[x / 8] & kBits[x % 8]) >> (7 - x % 8))];
            break;
        case 4:
            colour = palette[static_cast<std::size_t>((pRow[x / 2] & kHalves[x % 2]) >> (4 * (1 - x % 2)))];
            break;
        case 8:
            colour = palette[pRow[x]];
            break;
        default: {
            const std::uint8_t* pPixel = pRow + x * (dib.BitCount() / 8U);
            colour = {pPixel[2], pPixel[1], pPixel[0]};
        }
    }
    return static_cast<int>(0.3 * colour.red + 0.59 * colour.green + 0.11 * colour.blue);
}

}  // namespace

std::int32_t LiteralThreshold(const DibView& dib) {
    std::array<std::int32_t, 256> hist{};
    std::array<std::int32_t, 256> cum{};
    const auto palette = dib.Palette();
    for (std::int32_t s = 0; s < dib.Height(); ++s) {
        const std::uint8_t* pRow = dib.Row(s).data();
        for (std::int32_t x = 0; x < dib.Width(); ++x) {
            ++hist[static_cast<std::size_t>(GreyOf(dib, palette, pRow, static_cast<std::size_t>(x)))];
        }
    }
    const std::int32_t half = dib.Width() * dib.Height() / 2;
    cum[0] = hist[0];
    std::size_t t = 0;
    for (std::size_t k = 1; k < 256; ++k) {
        cum[k] = cum[k - 1] + hist[k];
        t = k;
        if (cum[k] > half) {
            break;
        }
    }
    const std::int32_t below = half - cum[t - 1];
    const std::int32_t above = cum[t] - half;
    const bool bUpper = dib.BitCount() <= 8 ? below >= above : std::abs(below) >= std::abs(above);
    return static_cast<std::int32_t>(bUpper ? t : t - 1);
}

}  // namespace width::test
