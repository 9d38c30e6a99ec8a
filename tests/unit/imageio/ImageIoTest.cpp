// Picture files to blocks and back: what each format keeps, what becomes of kinds a block cannot
// hold, and that no damage to a file, whichever, does more than give an error.
#include "imageio/ImageIo.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <fstream>
#include <random>
#include <sstream>

#include "core/PackedDib.h"
#include "tests/unit/imageio/MadePictures.h"

namespace width {
namespace {

namespace fs = std::filesystem;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

DibView ViewOf(const Bytes& block) {
    const auto view = DibView::Open(block);
    if (!view.has_value()) {
        throw std::runtime_error(DibStatusText(CheckPackedDib(block).status));
    }
    return *view;
}

// Red, green and blue of all pixels, top row first.
std::vector<int> Pixels(const Bytes& block) {
    const DibView view = ViewOf(block);
    std::vector<int> values;
    for (std::int32_t y = view.Height() - 1; y >= 0; --y) {
        for (std::int32_t x = 0; x < view.Width(); ++x) {
            const Colour colour = view.PixelAt(x, y);
            values.insert(values.end(), {colour.red, colour.green, colour.blue});
        }
    }
    return values;
}

// The reds alone, for grey pictures and tables whose reds tell enough.
std::vector<int> Reds(const Bytes& block) {
    std::vector<int> values = Pixels(block);
    std::vector<int> reds;
    for (std::size_t i = 0; i < values.size(); i += 3) {
        reds.push_back(values[i]);
    }
    return reds;
}

Bytes ReadAll(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    const std::string content = text.str();
    const auto bytes = std::as_bytes(std::span(content));
    return {bytes.begin(), bytes.end()};
}

class ImageIo : public ::testing::Test {
protected:
    ImageIo() : m_folder(fs::temp_directory_path() / ("imageio-test-" + std::to_string(getpid()))) {
        fs::create_directories(m_folder);
    }
    ~ImageIo() override {
        std::error_code ignored;
        fs::remove_all(m_folder, ignored);
    }

    fs::path Path(const std::string& name) const { return m_folder / name; }

    LoadedPicture LoadBytes(const Bytes& bytes) const {
        fs::remove(Path("bytes"));  // some file systems write a truncated file through to the disk
        std::ofstream(Path("bytes"), std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return LoadPicture(Path("bytes"));
    }

    Bytes Load(const fs::path& path) const {
        const LoadedPicture picture = LoadPicture(path);
        EXPECT_EQ(picture.error, "") << path;
        return picture.block;
    }

    // The block after a trip through a file.
    Bytes Trip(const Bytes& block, const std::string& ending) const {
        EXPECT_EQ(SavePicture(Path("trip" + ending), block), "");
        return Load(Path("trip" + ending));
    }

    Bytes Png(std::uint32_t nWidth, std::uint32_t nHeight, int nDepth, int nType, std::vector<png_byte> row) const {
        WritePng(Path("made.png"), nWidth, nHeight, nDepth, nType, std::move(row));
        return Load(Path("made.png"));
    }

    Bytes Tiff(std::uint32_t nWidth, std::uint32_t nHeight, const TiffKind& kind, std::vector<std::uint8_t> data) const {
        WriteTiff(Path("made.tif"), nWidth, nHeight, kind, std::move(data));
        return Load(Path("made.tif"));
    }

    fs::path m_folder;
};

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
                EXPECT_EQ(view.BitCount(), ending != ".bmp" && nDepth == 32 ? 24 : nDepth);
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
        Put(block, 28, std::int32_t{0});
        EXPECT_EQ(ViewOf(Trip(block, ".tif")).Figures().nXPelsPerMeter, nPels);
        EXPECT_EQ(ViewOf(Trip(block, ".tif")).Figures().nYPelsPerMeter, 0);
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

TEST_F(ImageIo, JpegKeepsGreyOrColourAndTheCloserDensity) {
    Bytes grey = Block(64, 48, 8);
    for (std::size_t i = 0; i < 256; ++i) {
        Put(grey, 40 + 4 * i, static_cast<std::uint32_t>(0x010101 * i));
    }
    Put(grey, 24, std::int32_t{3900});
    Put(grey, 28, std::int32_t{7800});
    const auto expectNear = [](const Bytes& back, const Bytes& block) {
        const std::vector<int> got = Pixels(back);
        const std::vector<int> want = Pixels(block);
        ASSERT_EQ(got.size(), want.size());
        for (std::size_t i = 0; i < got.size(); ++i) {
            ASSERT_NEAR(got[i], want[i], 12) << i;
        }
    };
    const Bytes greyBack = Trip(grey, ".jpg");
    expectNear(greyBack, grey);
    EXPECT_EQ(ViewOf(greyBack).BitCount(), 8);
    EXPECT_EQ(ViewOf(greyBack).Figures().nXPelsPerMeter, 3900);
    EXPECT_EQ(ViewOf(greyBack).Figures().nYPelsPerMeter, 7800);
    for (const int nDepth : {24, 32}) {
        const Bytes back = Trip(Block(33, 17, nDepth), ".JPEG");
        expectNear(back, Block(33, 17, nDepth));
        EXPECT_EQ(ViewOf(back).BitCount(), 24);
        EXPECT_EQ(ViewOf(back).Figures().nXPelsPerMeter, 3937);
        EXPECT_EQ(ViewOf(back).Figures().nYPelsPerMeter, 11811);
    }
}

TEST_F(ImageIo, JpegInksBecomeColours) {
    std::vector<std::uint8_t> row;
    for (int i = 0; i < 64; ++i) {  // cyan, over half as much black
        row.insert(row.end(), {0, 255, 255, 128});
    }
    WriteInkJpeg(Path("made.jpg"), row);
    const std::vector<int> pixels = Pixels(Load(Path("made.jpg")));
    EXPECT_THAT(std::vector<int>(pixels.begin(), pixels.begin() + 3), ElementsAre(0, 128, 128));
}

TEST_F(ImageIo, PngKindsWithoutAPlaceInABlock) {
    const Bytes twoBits = Png(5, 9, 2, PNG_COLOR_TYPE_PALETTE, {0x1a, 0x40});  // 0 1 2 2 1
    EXPECT_EQ(ViewOf(twoBits).BitCount(), 4);
    EXPECT_EQ(ViewOf(twoBits).Figures().nPalEntries, 3U);
    EXPECT_THAT(ViewOf(twoBits).Row(8).first(3), ElementsAre(0x01, 0x22, 0x10));
    const Bytes twoGreys = Png(4, 1, 2, PNG_COLOR_TYPE_GRAY, {0x1b});
    EXPECT_THAT(Reds(twoGreys), ElementsAre(0, 85, 170, 255));
    const Bytes deepGrey = Png(2, 1, 16, PNG_COLOR_TYPE_GRAY, {0x12, 0xff, 0xfe, 0x00});
    EXPECT_EQ(ViewOf(deepGrey).BitCount(), 8);
    EXPECT_THAT(Reds(deepGrey), ElementsAre(0x12, 0xfe));
    const Bytes alpha = Png(3, 1, 8, PNG_COLOR_TYPE_RGB_ALPHA, {1, 2, 3, 255, 1, 2, 3, 0, 0, 100, 255, 51});
    EXPECT_EQ(ViewOf(alpha).BitCount(), 24);
    EXPECT_THAT(Pixels(alpha), ElementsAre(1, 2, 3, 255, 255, 255, 204, 224, 255));
    const Bytes greyAlpha = Png(2, 1, 16, PNG_COLOR_TYPE_GRAY_ALPHA, {0x40, 0, 0xff, 0xff, 0, 0, 0x33, 0x33});
    EXPECT_EQ(ViewOf(greyAlpha).BitCount(), 8);
    EXPECT_THAT(Reds(greyAlpha), ElementsAre(0x40, 204));
}

TEST_F(ImageIo, TiffKinds) {
    const Bytes white = Tiff(8, 1, {1, 1, PHOTOMETRIC_MINISWHITE}, {0xa0});
    EXPECT_EQ(ViewOf(white).BitCount(), 1);
    EXPECT_THAT(ViewOf(white).Row(0).first(1), ElementsAre(0xa0));
    EXPECT_THAT(Reds(white), ElementsAre(0, 255, 0, 255, 255, 255, 255, 255));
    EXPECT_EQ(ViewOf(white).Figures().nXPelsPerMeter, 11811);
    EXPECT_EQ(ViewOf(white).Figures().nYPelsPerMeter, 2835);
    TiffKind noUnit{2, 1, PHOTOMETRIC_MINISBLACK};
    noUnit.nUnit = RESUNIT_NONE;
    const Bytes twoBits = Tiff(4, 1, noUnit, {0x1b});
    EXPECT_EQ(ViewOf(twoBits).BitCount(), 4);
    EXPECT_THAT(Reds(twoBits), ElementsAre(0, 85, 170, 255));
    EXPECT_EQ(ViewOf(twoBits).Figures().nXPelsPerMeter, 0);
    EXPECT_THAT(Pixels(Tiff(1, 1, {16, 3, PHOTOMETRIC_RGB}, {0xff, 1, 0xff, 2, 0xff, 3})), ElementsAre(1, 2, 3));
    std::vector<std::uint8_t> tile(256, 7);
    const Bytes tiled = Tiff(20, 20, {8, 1, PHOTOMETRIC_MINISBLACK, 16}, tile);
    EXPECT_EQ(ViewOf(tiled).BitCount(), 8);
    std::vector<int> expected(400, 7);
    expected[0] = 0x80, expected[16] = 0x81, expected[16 * 20] = 0x82, expected[16 * 20 + 16] = 0x83;
    EXPECT_EQ(Reds(tiled), expected);
    TiffKind planes{8, 3, PHOTOMETRIC_RGB};
    planes.nPlanar = PLANARCONFIG_SEPARATE;
    EXPECT_THAT(Pixels(Tiff(2, 1, planes, {5, 6})), ElementsAre(5, 5, 5, 6, 6, 6));
    TiffKind flipped{8, 1, PHOTOMETRIC_MINISBLACK};
    flipped.nOrientation = ORIENTATION_BOTLEFT;
    EXPECT_THAT(Reds(Tiff(1, 3, flipped, {1, 2, 3})), ElementsAre(3, 2, 1));
}

TEST_F(ImageIo, GifTakesTheFirstPictureWithItsOwnTable) {
    WriteGif(Path("made.gif"));
    const Bytes block = Load(Path("made.gif"));
    EXPECT_EQ(ViewOf(block).BitCount(), 4);
    EXPECT_EQ(ViewOf(block).Figures().nPalEntries, 4U);
    EXPECT_THAT(Reds(block), Each(5));
    std::vector<int> indices;
    for (int nRow = 4; nRow >= 0; --nRow) {
        indices.push_back(ViewOf(block).Row(nRow)[0]);
    }
    EXPECT_THAT(indices, ElementsAre(0x01, 0x11, 0x21, 0x31, 0x31));
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
    EXPECT_EQ(LoadBytes(file(Block(9, 4, 16), 0, 3)).block, Block(9, 4, 16));
    EXPECT_EQ(LoadBytes(file(Block(9, 4, 32, 12), 0, 48)).block, Block(9, 4, 32, 12));
    Bytes cut = file(Block(9, 4, 4), 64, 0);
    cut.pop_back();
    EXPECT_THAT(LoadBytes(cut).block, IsEmpty());
}

TEST_F(ImageIo, OtherBitmapFilesAreUnpacked) {
    const Bytes table = BytesOf({1, 1, 10, 0, 2, 2, 20, 0, 3, 3, 30, 0});
    const Bytes runs = LoadBytes(RunLengthFile()).block;
    EXPECT_THAT(Reds(runs), ElementsAre(30, 20, 10, 20, 20, 20, 20, 30));
    EXPECT_EQ(ViewOf(runs).BitCount(), 8);
    EXPECT_EQ(ViewOf(runs).Figures().nPalEntries, 3U);
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
    WriteTiff(Path("tiles.tif"), 40, 40, {8, 1, PHOTOMETRIC_MINISBLACK, 16}, std::vector<std::uint8_t>(256, 7));
    files.push_back(ReadAll(Path("tiles.tif")));
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
    EXPECT_EQ(LoadBytes(gif).error, "the GIF picture is damaged: it ends before its rows do");
    gif.resize(0x110000);
    EXPECT_EQ(LoadBytes(gif).error, "the picture is too large");
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
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{1000, before.rlim_max};  // a disk that is soon full
    setrlimit(RLIMIT_FSIZE, &small);
    for (const std::string ending : {".bmp", ".png", ".tif", ".gif", ".jpg"}) {
        expectOld("full" + ending, Block(300, 300, 8));
    }
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_TRUE(fs::is_empty(m_folder));
}

TEST_F(ImageIo, SavingThroughALinkReplacesTheFileBehindIt) {
    std::ofstream(Path("real.bmp")) << "old";
    fs::permissions(Path("real.bmp"), fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink(Path("real.bmp"), Path("link.bmp"));
    ASSERT_EQ(SavePicture(Path("link.bmp"), Block(4, 4, 8)), "");
    EXPECT_TRUE(fs::is_symlink(Path("link.bmp")));
    EXPECT_EQ(Load(Path("real.bmp")), Block(4, 4, 8));
    EXPECT_EQ(fs::status(Path("real.bmp")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

}  // namespace
}  // namespace width
