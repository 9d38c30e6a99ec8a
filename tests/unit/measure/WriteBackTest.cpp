#include "measure/WriteBack.h"

#include <gtest/gtest.h>

#include "core/Expand.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

using test::DibBuilder;

// Nearest entry of a block's table by squared distance, first of equal ones.
NearestIndex NearestIn(const DibView& dib) {
    return [palette = dib.Palette(), nEntries = dib.Figures().nPalEntries](COLORREF clr) {
        std::uint32_t nBest = 0;
        int nLeast = 1 << 30;
        for (std::uint32_t i = 0; i < nEntries; ++i) {
            const int dr = palette[i].red - static_cast<int>(clr & 255);
            const int dg = palette[i].green - static_cast<int>(clr >> 8 & 255);
            const int db = palette[i].blue - static_cast<int>(clr >> 16 & 255);
            if (dr * dr + dg * dg + db * db < nLeast) {
                nLeast = dr * dr + dg * dg + db * db;
                nBest = i;
            }
        }
        return nBest;
    };
}

// Expands a block, paints one pixel red, stores it back, and gives the new block.
std::vector<std::byte> WithRedPixel(std::vector<std::byte> block, std::int32_t x, std::int32_t s, int* pnAsked = nullptr) {
    const DibView dib = *DibView::Open(block);
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(dib.Width() * dib.Height()));
    ExpandToWords(dib, pixels.data());
    pixels[static_cast<std::size_t>(s * dib.Width() + x)] = 0xFF0000;
    const NearestIndex nearest = NearestIn(dib);
    StorePixels(dib.Figures(), reinterpret_cast<std::uint8_t*>(block.data()) + dib.Figures().nBitsOffset, pixels.data(),
                [&](COLORREF clr) {
                    if (pnAsked != nullptr)
                        ++*pnAsked;
                    return nearest(clr);
                });
    return block;
}

TEST(WriteBack, ChangesThePixelAndNothingElseAtEveryDepth) {
    std::mt19937 random(3);
    for (const std::uint16_t nBits : std::array<std::uint16_t, 4>{1, 4, 8, 24}) {
        const std::vector<std::byte> before = test::RandomDib(random, 13, 5, nBits, test::Texture::Noise);
        const std::vector<std::byte> after = WithRedPixel(before, 6, 2);
        const DibView old = *DibView::Open(before);
        const DibView now = *DibView::Open(after);
        for (std::int32_t s = 0; s < 5; ++s) {
            for (std::int32_t x = 0; x < 13; ++x) {
                if (x != 6 || s != 2) {
                    ASSERT_EQ(now.PixelAt(x, s), old.PixelAt(x, s)) << nBits;
                }
            }
        }
        if (nBits == 24) {
            EXPECT_EQ(now.PixelAt(6, 2), (Colour{255, 0, 0}));
        }
    }
}

TEST(WriteBack, BitsBehindARowStayAndPaddingOfColourRowsIsCleared) {
    std::vector<std::byte> one = DibBuilder(3, 1, 1).GreyTable().Block();
    for (std::size_t i = 0; i < 4; ++i)
        one[48 + i] = std::byte{0xFF};
    const std::vector<std::byte> written = WithRedPixel(one, 0, 0);
    EXPECT_EQ(written[48], std::byte{0x7F}) << "red is nearer to black";
    EXPECT_EQ(written[49], std::byte{0xFF});
    std::vector<std::byte> colour = DibBuilder(1, 1, 24).Block();
    colour[43] = std::byte{0xAA};
    EXPECT_EQ(WithRedPixel(colour, 0, 0)[43], std::byte{0});
}

TEST(WriteBack, AsksOnceForEachColour) {
    std::mt19937 random(4);
    int nAsked = 0;
    WithRedPixel(test::RandomDib(random, 60, 40, 4, test::Texture::Noise), 1, 1, &nAsked);
    EXPECT_LE(nAsked, 17);
}

TEST(WriteBack, OtherDepthsStay) {
    std::mt19937 random(5);
    const std::vector<std::byte> block = test::RandomDib(random, 9, 4, 32, test::Texture::Noise);
    EXPECT_EQ(WithRedPixel(block, 3, 3), block);
}

}  // namespace
}  // namespace width
