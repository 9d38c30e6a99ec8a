#include "core/PackedDib.h"

#include <gtest/gtest.h>

#include "core/Expand.h"
#include "core/TrueColour.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

using test::DibBuilder;

std::size_t BitsOffsetOf(DibBuilder& builder) {
    return CheckPackedDib(builder.Block()).figures.nBitsOffset;
}

DibStatus StatusWith(const std::function<void(BITMAPINFOHEADER&)>& change, std::uint16_t nBitCount = 8) {
    DibBuilder builder(6, 4, nBitCount);
    change(builder.Header());
    return CheckPackedDib(builder.Block()).status;
}

TEST(PackedDib, StrideIsWholeWords) {
    EXPECT_EQ(DibStride(24, 1), 4U);
    EXPECT_EQ(DibStride(1, 33), 8U);
    EXPECT_EQ(DibStride(8, 5), 8U);
    EXPECT_EQ(DibStride(32, 3), 12U);
}

TEST(PackedDib, ColourTableHasTheEntriesOfTheHeader) {
    DibBuilder full1(3, 2, 1);
    DibBuilder full4(3, 2, 4);
    DibBuilder full8(3, 2, 8);
    DibBuilder odd(3, 2, 8, 5);
    DibBuilder more(3, 2, 4, 20);
    EXPECT_EQ(BitsOffsetOf(full1), 40U + 4 * 2);
    EXPECT_EQ(BitsOffsetOf(full4), 40U + 4 * 16);
    EXPECT_EQ(BitsOffsetOf(full8), 40U + 4 * 256);
    EXPECT_EQ(BitsOffsetOf(odd), 40U + 4 * 5);
    EXPECT_EQ(BitsOffsetOf(more), 40U + 4 * 20);
    DibBuilder colour(3, 2, 24);
    colour.Header().biClrUsed = 7;
    const DibCheck check = CheckPackedDib(colour.Block());
    EXPECT_EQ(check.figures.nBitsOffset, 40U) << "no table above 8 bits, whatever biClrUsed says";
    EXPECT_EQ(check.figures.nColors, 7U);
    EXPECT_EQ(check.figures.nPalEntries, 0U);
}

TEST(PackedDib, HeadersThatLieAreRefused) {
    EXPECT_EQ(CheckPackedDib({}).status, DibStatus::TooShort);
    EXPECT_EQ(StatusWith([](auto& h) { h.biSize = 124; }), DibStatus::BadHeaderSize);
    EXPECT_EQ(StatusWith([](auto& h) { h.biWidth = 0; }), DibStatus::BadSize);
    EXPECT_EQ(StatusWith([](auto& h) { h.biHeight = -4; }), DibStatus::BadSize);
    EXPECT_EQ(StatusWith([](auto& h) { h.biHeight = INT32_MIN; }), DibStatus::BadSize);
    EXPECT_EQ(StatusWith([](auto& h) { h.biBitCount = 0; }), DibStatus::BadDepth);
    EXPECT_EQ(StatusWith([](auto& h) { h.biBitCount = 264; }), DibStatus::BadDepth);
    EXPECT_EQ(StatusWith([](auto& h) { h.biWidth = INT32_MAX; }), DibStatus::TooLarge);
    EXPECT_EQ(StatusWith([](auto& h) { h.biWidth = h.biHeight = 65536; }), DibStatus::TooLarge);
    EXPECT_EQ(StatusWith(
                  [](auto& h) {
                      h.biWidth = 1 << 27;
                      h.biHeight = 1;
                  },
                  1),
              DibStatus::TooLarge)
        << "the 24-bit stride would not fit";
    EXPECT_EQ(StatusWith([](auto& h) { h.biHeight = 5; }), DibStatus::Truncated);
    EXPECT_EQ(StatusWith([](auto& h) { h.biClrUsed = 257; }), DibStatus::Truncated);
    EXPECT_EQ(StatusWith([](auto& h) { h.biClrUsed = 0xFFFFFFFF; }), DibStatus::Truncated);
    EXPECT_EQ(StatusWith([](auto& h) {
                  h.biPlanes = 9;
                  h.biCompression = 77;
                  h.biSizeImage = 1;
              }),
              DibStatus::Ok)
        << "never read";
}

TEST(PackedDib, EveryShorterBlockIsRefused) {
    const std::vector<std::byte> block = DibBuilder(5, 3, 4, 3).Block();
    EXPECT_EQ(CheckPackedDib(block).status, DibStatus::Ok);
    for (std::size_t n = 0; n < block.size(); ++n) {
        EXPECT_NE(CheckPackedDib(std::span(block).first(n)).status, DibStatus::Ok) << n;
    }
}

TEST(PackedDib, DepthsThatNobodyReadsAreAccepted) {
    DibBuilder builder(5, 3, 16);
    const std::vector<std::byte> block = builder.Block();
    const auto dib = DibView::Open(block);
    ASSERT_TRUE(dib);
    EXPECT_FALSE(IsReadableDepth(dib->BitCount()));
    EXPECT_EQ(dib->PixelAt(4, 2), Colour{});
}

TEST(PackedDib, PixelsComeFromTheirBits) {
    for (const std::uint16_t nBits : std::array<std::uint16_t, 3>{1, 4, 8}) {
        const auto nLast = static_cast<std::uint32_t>((1 << nBits) - 1);
        DibBuilder builder(9, 2, nBits);
        builder.SetColour(0, {1, 2, 3}).SetColour(nLast, {10, 20, 30});
        builder.SetIndex(7, 1, nLast).SetIndex(8, 0, nLast);
        const std::vector<std::byte> block = builder.Block();
        const auto dib = DibView::Open(block);
        ASSERT_TRUE(dib);
        EXPECT_EQ(dib->PixelAt(7, 1), (Colour{10, 20, 30})) << nBits;
        EXPECT_EQ(dib->PixelAt(8, 0), (Colour{10, 20, 30})) << nBits;
        EXPECT_EQ(dib->PixelAt(6, 1), (Colour{1, 2, 3})) << nBits;
    }
    for (const std::uint16_t nBits : std::array<std::uint16_t, 2>{24, 32}) {
        DibBuilder builder(3, 2, nBits);
        const std::vector<std::byte> block = builder.SetPixel(2, 1, {10, 20, 30}).Block();
        EXPECT_EQ(DibView::Open(block)->PixelAt(2, 1), (Colour{10, 20, 30})) << nBits;
    }
}

TEST(PackedDib, AnIndexBeyondTheTableIsBlack) {
    DibBuilder builder(2, 1, 8, 2);
    builder.SetColour(0, {9, 9, 9}).SetColour(1, {255, 255, 255}).SetIndex(0, 0, 1).SetIndex(1, 0, 200);
    const std::vector<std::byte> block = builder.Block();
    const auto dib = DibView::Open(block);
    EXPECT_EQ(dib->PixelAt(0, 0), (Colour{255, 255, 255}));
    EXPECT_EQ(dib->PixelAt(1, 0), (Colour{0, 0, 0}));
}

TEST(TrueColour, HasTheColoursOfEveryPixelAndTheResolution) {
    std::mt19937 random(2);
    for (const std::uint16_t nBits : std::array<std::uint16_t, 5>{1, 4, 8, 24, 32}) {
        std::vector<std::byte> block = test::RandomDib(random, 13, 7, nBits, test::Texture::Noise);
        const DibView dib = *DibView::Open(block);
        std::vector<std::byte> colour = ToTrueColour(dib);
        const DibView expanded = *DibView::Open(colour);
        std::vector<std::uint32_t> words(13 * 7);
        ExpandToWords(dib, words.data());
        for (std::int32_t s = 0; s < 7; ++s) {
            for (std::int32_t x = 0; x < 13; ++x) {
                const Colour pixel = dib.PixelAt(x, s);
                ASSERT_EQ(expanded.PixelAt(x, s), pixel) << nBits;
                ASSERT_EQ(words[static_cast<std::size_t>(13 * s + x)], pixel.red * 65536U + pixel.green * 256U + pixel.blue)
                    << nBits;
                ASSERT_EQ(TrueColourPixel(colour, dib.Figures(), x, 6 - s)[2], std::byte{dib.PixelAt(x, s).red});
            }
        }
    }
    const std::vector<std::byte> sixteen = DibBuilder(5, 3, 16).SetResolution(500, 700).Block();
    const std::vector<std::byte> black = ToTrueColour(*DibView::Open(sixteen));
    EXPECT_EQ(CheckPackedDib(black).figures.nYPelsPerMeter, 700);
}

}  // namespace
}  // namespace width
