// What the Linux sources of picture files can do beyond the others: kinds of files that not every platform reads, tables
// and densities kept to the last entry and digit, links.
#include "imageio/Formats.h"
#include "tests/unit/imageio/Blocks.h"

namespace width {
namespace {

using ::testing::ElementsAre;

using NativeImageIo = ImageIo;

TEST_F(NativeImageIo, TiffKindsThatNotEveryPlatformReads) {
    EXPECT_THAT(Pixels(Load(Shipped("planes.tif"))), ElementsAre(5, 5, 5, 6, 6, 6));
    const Bytes twoBits = Load(Shipped("two-bit-grey.tif"));
    EXPECT_EQ(ViewOf(twoBits).BitCount(), 4);
    EXPECT_THAT(Reds(twoBits), ElementsAre(0, 85, 170, 255));
    EXPECT_THAT(ViewOf(Load(Shipped("white-is-zero.tif"))).Row(0).first(1), ElementsAre(0xa0));
}

TEST_F(NativeImageIo, TablesKeepTheirSize) {
    for (const int nDepth : {1, 4, 8}) {
        EXPECT_EQ(ViewOf(Trip(Block(7, 5, nDepth), ".gif")).BitCount(), nDepth);
    }
    const Bytes runs = LoadBytes(RunLengthFile()).block;
    EXPECT_EQ(ViewOf(runs).BitCount(), 8);
    EXPECT_EQ(ViewOf(runs).Figures().nPalEntries, 3U);
}

TEST_F(NativeImageIo, ResolutionOfOneAxisAndTheCloserDensityAreKept) {
    Bytes block = GreyBlock();
    Put(block, 24, std::int32_t{3900});
    Put(block, 28, std::int32_t{7800});
    const Bytes back = Trip(block, ".jpg");
    EXPECT_EQ(ViewOf(back).Figures().nXPelsPerMeter, 3900);
    EXPECT_EQ(ViewOf(back).Figures().nYPelsPerMeter, 7800);
    Put(block, 28, std::int32_t{0});
    EXPECT_EQ(ViewOf(Trip(block, ".tif")).Figures().nXPelsPerMeter, 3900);
    EXPECT_EQ(ViewOf(Trip(block, ".tif")).Figures().nYPelsPerMeter, 0);
    ExpectNear(Trip(Block(33, 17, 24), ".jpg"), Block(33, 17, 24));
}

TEST_F(NativeImageIo, HugePicturesInTinyFilesAreRefusedForTheirSize) {
    Bytes gif = BytesOf({'G', 'I', 'F', '8', '9', 'a', 1, 0, 1, 0, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0x2c, 0, 0, 0, 0}) +
                BytesOf({0xff, 0xff, 0xff, 0xff, 0, 2, 1, 0, 0});
    EXPECT_EQ(LoadBytes(gif).error, "the GIF picture is damaged: it ends before its rows do");
    gif.resize(0x110000);
    EXPECT_EQ(LoadBytes(gif).error, "the picture is too large");
}

TEST_F(NativeImageIo, AFileThatLostBytesUnseenNeverTakesItsPlace) {
    NewFile file(Path("a.bmp"));
    ASSERT_TRUE(file.Create() && file.Write("whole", 5));
    fs::resize_file(file.Path(), 4);
    EXPECT_FALSE(file.Finish() || file.Commit());
    EXPECT_FALSE(fs::exists(Path("a.bmp")));
}

TEST_F(NativeImageIo, AWriterThatClaimsToHaveDoneItsWorkIsNotBelieved) {
    std::ofstream(Path("a")) << "old";
    const Bytes block = Block(40, 30, 8);
    const auto save = [&](Saver saver) { return SaveBy(Path("a"), {block, ViewOf(block)}, saver); };
    const Saver nothing = [](NewFile&, const SourceBlock&) { return std::string(); };
    const Saver lessRows = [](NewFile& file, const SourceBlock& source) {
        SavePng(file, source);
        file.Resize(file.Size() / 2);
        return std::string();
    };
    const Saver another = [](NewFile& file, const SourceBlock&) {
        const Bytes other = Block(40, 29, 8);
        return SaveTiff(file, {other, ViewOf(other)});
    };
    for (const Saver saver : {nothing, lessRows, another}) {
        EXPECT_NE(save(saver), "");
        EXPECT_EQ(ReadAll(Path("a")), BytesOf({'o', 'l', 'd'}));
        EXPECT_EQ(std::distance(fs::directory_iterator(m_folder), {}), 1);
    }
    EXPECT_EQ(save(SavePng), "");
    EXPECT_EQ(Load(Path("a")), block);
}

TEST_F(NativeImageIo, SavingThroughALinkReplacesTheFileBehindIt) {
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
