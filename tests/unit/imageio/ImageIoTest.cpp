// Picture files to blocks and back, on every platform: what each format keeps, what becomes of kinds a block cannot
// hold, and that no damage to a file, whichever, does more than give an error.
#include "imageio/ImageIo.h"

#include "tests/unit/imageio/Blocks.h"

namespace width {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(ImageIo, LosslessFormatsKeepDepthPixelsTableAndResolution) {
    for (const std::string ending : {".bmp", ".PNG", ".tif", ".tiff", ".gif"}) {
        for (const int nDepth : {1, 4, 8, 24, 32}) {
            for (const std::int32_t nWidth : {1, 7, 8, 65}) {
                if (ending == ".gif" && nDepth > 8) {
                    continue;
                }
                SCOPED_TRACE(ending + " " + std::to_string(nDepth) + " bits, width " + std::to_string(nWidth));
                const Bytes block = Block(nWidth, 5, nDepth);
                const Bytes back = Trip(block, ending);
                const DibView view = ViewOf(back);
                if (ending != ".gif") {  // whose writers may make the table larger
                    EXPECT_EQ(view.BitCount(), ending != ".bmp" && nDepth == 32 ? 24 : nDepth);
                }
                EXPECT_EQ(Pixels(back), Pixels(block));
                EXPECT_EQ(view.Palette(), ViewOf(block).Palette());
                EXPECT_EQ(view.Figures().nXPelsPerMeter, ending == ".gif" ? 0 : 3937);
                EXPECT_EQ(view.Figures().nYPelsPerMeter, ending == ".gif" ? 0 : 11811);
            }
        }
    }
}

TEST_F(ImageIo, ResolutionsOfAllOrdinarySizesSurviveTiff) {
    for (const std::int32_t nPels : {1, 2835, 3780, 5906, 7559, 39370, 94488, 1234567}) {
        Bytes block = Block(3, 3, 8);
        Put(block, 24, nPels);
        Put(block, 28, nPels);
        EXPECT_EQ(ViewOf(Trip(block, ".tif")).Figures().nXPelsPerMeter, nPels);
        EXPECT_EQ(ViewOf(Trip(block, ".tif")).Figures().nYPelsPerMeter, nPels);
    }
}

TEST_F(ImageIo, ShortTablesKeepTheirLengthAndPixelsBeyondThemStayBlack) {
    EXPECT_EQ(Trip(Block(65, 5, 8, 5), ".png"), Block(65, 5, 8, 5));
    EXPECT_EQ(Trip(Block(65, 5, 4, 3), ".png"), Block(65, 5, 4, 3));
    Bytes beyond = Block(65, 5, 8, 5);
    beyond.back() = beyond[40 + 20] = std::byte{200};
    for (const std::string ending : {".bmp", ".png", ".tif", ".gif", ".jpg"}) {
        SCOPED_TRACE(ending);
        const Bytes back = Trip(beyond, ending);
        EXPECT_LT(ViewOf(back).PixelAt(0, 0).green, ending == ".jpg" ? 60 : 1);
    }
}

TEST_F(ImageIo, PlainBitmapFilesBecomeTheBlockAsItStands) {
    const auto file = [](const Bytes& block, std::uint32_t nTable, std::size_t nGap) {
        Bytes head = BytesOf({'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0});
        Put(head, 10, static_cast<std::uint32_t>(54 + nTable + nGap));
        const auto nRows = static_cast<std::ptrdiff_t>(40 + nTable);
        return head + Bytes(block.begin(), block.begin() + nRows) + Bytes(nGap, std::byte{0xee}) +
               Bytes(block.begin() + nRows, block.end());
    };
    Bytes odd = Block(9, 4, 8, 300);
    Put(odd, 12, std::uint16_t{7});
    Put(odd, 20, std::uint32_t{12345});
    Put(odd, 36, std::uint32_t{99});
    EXPECT_EQ(LoadBytes(file(odd, 1200, 10)).block, odd);
    EXPECT_EQ(LoadBytes(file(Block(9, 4, 32, 12), 0, 48)).block, Block(9, 4, 32, 12));
    Bytes cut = file(Block(9, 4, 4), 64, 0);
    cut.pop_back();
    EXPECT_THAT(LoadBytes(cut).block, IsEmpty());
}

TEST_F(ImageIo, OtherBitmapFilesAreUnpacked) {
    const Bytes table = BytesOf({1, 1, 10, 0, 2, 2, 20, 0, 3, 3, 30, 0});
    const Bytes runs = LoadBytes(RunLengthFile()).block;
    EXPECT_THAT(Reds(runs), ElementsAre(30, 20, 10, 20, 20, 20, 20, 30));
    EXPECT_EQ(ViewOf(runs).Figures().nYPelsPerMeter, 11811);
    const Bytes topDown = LoadBytes(BmpFile(Header(3, -2, 4, 3), table, BytesOf({0x01, 0x20, 0, 0, 0x22, 0x10, 0, 0}))).block;
    EXPECT_THAT(Reds(topDown), ElementsAre(10, 20, 30, 30, 30, 20));
    EXPECT_EQ(ViewOf(topDown).BitCount(), 4);
    const Bytes masks = BytesOf({0, 0xf8, 0, 0, 0xe0, 7, 0, 0, 0x1f, 0, 0, 0});
    const Bytes fields = LoadBytes(BmpFile(Header(2, 1, 16, 0, 3), masks, BytesOf({0, 0xf8, 0x1f, 0}))).block;
    EXPECT_EQ(ViewOf(fields).BitCount(), 24);
    EXPECT_THAT(Pixels(fields), ElementsAre(255, 0, 0, 0, 0, 255));
    Bytes version5 = Header(1, 2, 32, 0);
    version5.resize(124);
    Put(version5, 0, std::uint32_t{124});
    const Bytes wide = LoadBytes(BmpFile(version5, {}, BytesOf({1, 2, 3, 0, 4, 5, 6, 0}))).block;
    EXPECT_EQ(ViewOf(wide).BitCount(), 32);
    EXPECT_THAT(Pixels(wide), ElementsAre(6, 5, 4, 3, 2, 1));
    const Bytes old =
        LoadBytes(BmpFile(BytesOf({12, 0, 0, 0, 3, 0, 1, 0, 1, 0, 1, 0}), BytesOf({9, 9, 9, 5, 5, 5}), BytesOf({0xa0, 0, 0, 0})))
            .block;
    EXPECT_EQ(ViewOf(old).BitCount(), 1);
    EXPECT_THAT(Reds(old), ElementsAre(5, 9, 5));
    Bytes cut = RunLengthFile();
    cut.resize(cut.size() - 10);
    EXPECT_THAT(LoadBytes(cut).error, ::testing::StartsWith("the BMP picture is damaged"));
}

TEST_F(ImageIo, CutAndDamagedFilesGiveAnErrorOrAUsableBlock) {
    std::vector<Bytes> files{RunLengthFile()};
    for (const std::string ending : {".bmp", ".png", ".tif", ".jpg", ".gif"}) {
        ASSERT_EQ(SavePicture(Path("whole" + ending), Block(40, 30, ending == ".jpg" ? 24 : 4)), "");
        files.push_back(ReadAll(Path("whole" + ending)));
    }
    files.push_back(ReadAll(Shipped("tiles.tif")));
    const auto expectEither = [](const LoadedPicture& picture) {
        EXPECT_EQ(picture.error.empty(), CheckPackedDib(picture.block).status == DibStatus::Ok) << picture.error;
        EXPECT_EQ(picture.error.find('\n'), std::string::npos);
    };
    std::mt19937 random(1);
    for (std::size_t i = 0; i < files.size(); ++i) {
        const Bytes& whole = files[i];
        for (std::size_t n = 0; n < whole.size(); n += 1 + whole.size() / 120) {
            const LoadedPicture picture = LoadBytes({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(n)});
            expectEither(picture);
            const bool bPng = i == 2, bJpeg = i == 4;
            EXPECT_TRUE(!picture.error.empty() || !(bPng || bJpeg)) << n << " of " << whole.size();
        }
        for (std::size_t n = 0; n < 300; ++n) {
            Bytes damaged = whole;
            for (std::size_t k = 0; k <= n % 3; ++k) {
                damaged[random() % std::min<std::size_t>(damaged.size(), n % 2 == 0 ? 80 : 100000)] = std::byte(random() % 256);
            }
            expectEither(LoadBytes(damaged));
        }
    }
}

TEST_F(ImageIo, WhatIsNoPictureIsRefused) {
    EXPECT_NE(LoadPicture(Path("missing.png")).error, "");
    EXPECT_NE(LoadPicture(m_folder).error, "");
    EXPECT_NE(LoadPicture("/dev/zero").error, "");
    EXPECT_NE(LoadBytes({}).error, "");
    EXPECT_NE(LoadBytes(BytesOf({'h', 'e', 'l', 'l', 'o'})).error, "");
    Bytes huge = BytesOf({'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0}) + Header(0x7fffffff, 0x7fffffff, 24, 0);
    EXPECT_NE(LoadBytes(huge).error, "");
    Put(huge, 22, std::int32_t{-0x7fffffff - 1});
    EXPECT_NE(LoadBytes(huge).error, "");
    Bytes gif = BytesOf({'G', 'I', 'F', '8', '9', 'a', 1, 0, 1, 0, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0x2c, 0, 0, 0, 0}) +
                BytesOf({0xff, 0xff, 0xff, 0xff, 0, 2, 1, 0, 0});
    EXPECT_NE(LoadBytes(gif).error, "");
    gif.resize(0x110000);
    EXPECT_NE(LoadBytes(gif).error, "");
}

TEST_F(ImageIo, AFailedSaveLeavesTheOldFileAndNothingElse) {
    const Bytes old = BytesOf({1, 2, 3});
    const auto expectOld = [&](const std::string& name, const Bytes& block) {
        std::ofstream(Path(name), std::ios::binary).write("\1\2\3", 3);
        EXPECT_NE(SavePicture(Path(name), block), "") << name;
        EXPECT_EQ(ReadAll(Path(name)), old) << name;
        fs::remove(Path(name));
    };
    expectOld("a.gif", Block(4, 4, 24));
    expectOld("a.xyz", Block(4, 4, 24));
    expectOld("a.png", Block(4, 4, 16));
    expectOld("a.tif", Header(4, 4, 8, 0));
    EXPECT_NE(SavePicture(Path("nowhere/a.png"), Block(4, 4, 8)), "");
    EXPECT_TRUE(fs::is_empty(m_folder));
}

TEST_F(ImageIo, PngKindsWithoutAPlaceInABlock) {
    const Bytes twoBits = Load(Shipped("two-bit-table.png"));
    EXPECT_EQ(ViewOf(twoBits).BitCount(), 4);
    EXPECT_EQ(ViewOf(twoBits).Figures().nPalEntries, 3U);
    EXPECT_THAT(ViewOf(twoBits).Row(8).first(3), ElementsAre(0x01, 0x22, 0x10));
    EXPECT_THAT(Reds(Load(Shipped("two-bit-grey.png"))), ElementsAre(0, 85, 170, 255));
    const Bytes deepGrey = Load(Shipped("deep-grey.png"));
    EXPECT_EQ(ViewOf(deepGrey).BitCount(), 8);
    EXPECT_THAT(Reds(deepGrey), ElementsAre(0x12, 0xfe));
    const Bytes alpha = Load(Shipped("alpha.png"));
    EXPECT_EQ(ViewOf(alpha).BitCount(), 24);
    EXPECT_THAT(Pixels(alpha), ElementsAre(1, 2, 3, 255, 255, 255, 204, 224, 255));
    const Bytes greyAlpha = Load(Shipped("deep-grey-alpha.png"));
    EXPECT_EQ(ViewOf(greyAlpha).BitCount(), 8);
    EXPECT_THAT(Reds(greyAlpha), ElementsAre(0x40, 204));
}

TEST_F(ImageIo, TiffKinds) {
    const Bytes white = Load(Shipped("white-is-zero.tif"));
    EXPECT_EQ(ViewOf(white).BitCount(), 1);
    EXPECT_THAT(Reds(white), ElementsAre(0, 255, 0, 255, 255, 255, 255, 255));
    EXPECT_EQ(ViewOf(white).Figures().nXPelsPerMeter, 11811);
    EXPECT_EQ(ViewOf(white).Figures().nYPelsPerMeter, 2835);
    const Bytes noUnit = Load(Shipped("no-unit.tif"));
    EXPECT_THAT(Reds(noUnit), ElementsAre(7, 8, 9));
    EXPECT_EQ(ViewOf(noUnit).Figures().nXPelsPerMeter, 0);
    EXPECT_THAT(Pixels(Load(Shipped("deep-colours.tif"))), ElementsAre(1, 2, 3));
    const Bytes tiled = Load(Shipped("tiles.tif"));
    std::vector<int> expected(400, 7);
    expected[0] = 0x80, expected[16] = 0x81, expected[16 * 20] = 0x82, expected[16 * 20 + 16] = 0x83;
    EXPECT_EQ(ViewOf(tiled).BitCount(), 8);
    EXPECT_EQ(Reds(tiled), expected);
    EXPECT_EQ(ViewOf(tiled).Figures().nYPelsPerMeter, 7200);
}

TEST_F(ImageIo, GifTakesTheFirstPictureWithItsOwnTable) {
    const Bytes block = Load(Shipped("two-pictures.gif"));
    EXPECT_EQ(ViewOf(block).BitCount(), 4);
    EXPECT_EQ(ViewOf(block).Figures().nPalEntries, 4U);
    EXPECT_THAT(Reds(block), Each(5));
    std::vector<int> indices;
    for (int nRow = 4; nRow >= 0; --nRow) {
        indices.push_back(ViewOf(block).Row(nRow)[0]);
    }
    EXPECT_THAT(indices, ElementsAre(0x01, 0x11, 0x21, 0x31, 0x31));
}

TEST_F(ImageIo, JpegKeepsGreyOrColourAndDensity) {
    const Bytes inks = Load(Shipped("inks.jpg"));
    EXPECT_EQ(ViewOf(inks).BitCount(), 24);
    EXPECT_EQ(ViewOf(inks).PixelAt(0, 0), (Colour{0, 128, 128}));
    for (const int nDepth : {24, 32}) {
        Bytes halves = Block(32, 16, nDepth);
        for (std::size_t i = 0; i < std::size_t{32} * 16; ++i) {
            const Bytes colour = i % 32 < 16 ? BytesOf({40, 30, 200}) : BytesOf({180, 60, 20});
            std::copy(colour.begin(), colour.end(),
                      halves.begin() + static_cast<std::ptrdiff_t>(40 + i * static_cast<std::size_t>(nDepth / 8)));
        }
        const Bytes back = Trip(halves, ".jpeg");
        EXPECT_EQ(ViewOf(back).BitCount(), 24);
        EXPECT_EQ(ViewOf(back).Figures().nXPelsPerMeter, 3937);
        EXPECT_EQ(ViewOf(back).Figures().nYPelsPerMeter, 11811);
        ExpectNear(back, halves);
    }
    const Bytes grey = Trip(GreyBlock(), ".jpg");
    EXPECT_EQ(ViewOf(grey).BitCount(), 8);
    ExpectNear(grey, GreyBlock());
}

}  // namespace
}  // namespace width
