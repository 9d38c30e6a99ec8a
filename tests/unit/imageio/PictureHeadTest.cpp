// What a file says beside its pixels: units, byte orders, end marks, and heads that lead nowhere.
#include "imageio/PictureHead.h"

#include "tests/unit/imageio/Files.h"

namespace width {
namespace {

using Head = PictureHead (*)(std::span<const std::byte>) noexcept;

Bytes Jpeg(int nUnit, const Bytes& scan) {
    const Bytes jfif = BytesOf("JFIF") + BytesOf({0, 1, 1, nUnit, 0, 100, 1, 44, 0, 0});
    return BytesOf({0xff, 0xd8, 0xff, 0xff, 0xe1, 0, 4, 0xff, 0xd9, 0xff, 0xe0, 0, 16}) + jfif + BytesOf({0xff, 0xda}) + scan;
}

TEST(PictureHead, JpegDensityHasAUnitAndScansHaveAnEnd) {
    const Bytes scan = BytesOf({0, 3, 0, 1, 2, 0xff, 0, 3, 0xff, 0xd9});
    EXPECT_EQ(ReadJpegHead(Jpeg(1, scan)).nXPelsPerMeter, 3937);
    EXPECT_EQ(ReadJpegHead(Jpeg(1, scan)).nYPelsPerMeter, 11811);
    EXPECT_EQ(ReadJpegHead(Jpeg(2, scan)).nXPelsPerMeter, 10000);
    EXPECT_EQ(ReadJpegHead(Jpeg(0, scan)).nXPelsPerMeter, 0);
    EXPECT_TRUE(ReadJpegHead(Jpeg(1, scan)).bWhole);
    EXPECT_FALSE(ReadJpegHead(Jpeg(1, {scan.begin(), scan.end() - 1})).bWhole);
}

TEST(PictureHead, PngChunksTellUnitKindAndEnd) {
    const auto png = [&](int nColourType, int nUnit) {
        return BytesOf({0x89, 'P', 'N', 'G', 13, 10, 26, 10}) +
               PngChunk("IHDR", BytesOf({0, 0, 0, 1, 0, 0, 0, 1, 8, nColourType, 0, 0, 0})) +
               PngChunk("pHYs", BytesOf({0, 0, 0x2e, 0x23, 0, 0, 0, 7, nUnit})) + PngChunk("IEND", {});
    };
    EXPECT_EQ(ReadPngHead(png(2, 1)).nXPelsPerMeter, 11811);
    EXPECT_EQ(ReadPngHead(png(2, 1)).nYPelsPerMeter, 7);
    EXPECT_EQ(ReadPngHead(png(2, 0)).nXPelsPerMeter, 0);
    EXPECT_TRUE(ReadPngHead(png(0, 1)).bGrey && ReadPngHead(png(4, 1)).bGrey);
    EXPECT_FALSE(ReadPngHead(png(2, 1)).bGrey || ReadPngHead(png(3, 1)).bGrey || ReadPngHead(png(6, 1)).bGrey);
    EXPECT_TRUE(ReadPngHead(png(2, 1)).bWhole);
    Bytes cut = png(2, 1);
    cut.resize(40);
    EXPECT_FALSE(ReadPngHead(cut).bWhole);
}

TEST(PictureHead, TiffFieldsOfEitherByteOrder) {
    const Bytes little = BytesOf({'I', 'I', 42, 0, 8, 0, 0, 0, 3, 0}) + BytesOf({0x12, 1, 3, 0, 1, 0, 0, 0, 4, 0, 0, 0}) +
                         BytesOf({0x1a, 1, 5, 0, 1, 0, 0, 0, 46, 0, 0, 0}) + BytesOf({0x28, 1, 3, 0, 1, 0, 0, 0, 3, 0, 0, 0}) +
                         BytesOf({0xe8, 3, 0, 0, 2, 0, 0, 0});
    EXPECT_EQ(ReadTiffHead(little).nXPelsPerMeter, 50000);
    EXPECT_EQ(ReadTiffHead(little).nYPelsPerMeter, 0);
    const Bytes big = BytesOf({'M', 'M', 0, 42, 0, 0, 0, 8, 0, 1}) + BytesOf({1, 0x1b, 0, 5, 0, 0, 0, 1, 0, 0, 0, 22}) +
                      BytesOf({0, 0, 0, 72, 0, 0, 0, 1});
    EXPECT_EQ(ReadTiffHead(big).nYPelsPerMeter, 2835);
    EXPECT_EQ(ReadTiffHead(Bytes(big.begin(), big.end() - 3)).nYPelsPerMeter, 0);
}

// Places and lengths of strips and tiles, in the entry itself or elsewhere in the file.
TEST(PictureHead, ATiffPictureIsWholeWhereAllItsRowsAre) {
    const auto file = [](int nPlaces, int nLengths, std::vector<int> places, std::vector<int> lengths) {
        return TiffOf({{nPlaces, std::move(places)}, {nLengths, std::move(lengths)}}, Bytes(100));
    };
    const auto isWhole = [](const Bytes& bytes) { return ReadTiffHead(bytes).bWhole; };
    EXPECT_TRUE(isWhole(file(273, 279, {8, 50, 90}, {42, 40, 10})));
    EXPECT_TRUE(isWhole(file(324, 325, {8}, {100})));
    EXPECT_TRUE(isWhole(file(273, 280, {8}, {1}))) << "lengths are not told";
    EXPECT_FALSE(isWhole(file(273, 279, {8, 50, 9000}, {42, 40, 10})));
    EXPECT_FALSE(isWhole(file(324, 325, {8, 50}, {42, 9000})));
    EXPECT_FALSE(isWhole(file(273, 279, {8, 50, 90}, {42, 40}))) << "a length is missing";
    EXPECT_FALSE(isWhole(file(280, 279, {8}, {1}))) << "there are no rows";
    const Bytes whole = file(273, 279, {8, 50, 90}, {42, 40, 10});
    EXPECT_FALSE(isWhole(Bytes(whole.begin(), whole.begin() + 115))) << "cut";
}

TEST(PictureHead, ATiffColourTableLiesInItsFile) {
    const auto file = [](int nType, int nNumbers, int nOffset) {
        return BytesOf({'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0}) + BytesOf({0x40, 1, nType, 0, nNumbers, 0, 0, 0, nOffset, 0, 0, 0}) +
               BytesOf({0, 0, 0, 0}) + Bytes(12);
    };
    EXPECT_EQ(FindTiffTable(file(3, 6, 26)).nOffset, 26U);
    EXPECT_EQ(FindTiffTable(file(3, 6, 26)).nColours, 2U);
    EXPECT_EQ(FindTiffTable(file(3, 6, 27)).nColours, 0U) << "one byte too far";
    EXPECT_EQ(FindTiffTable(file(4, 6, 26)).nColours, 0U);
    EXPECT_EQ(FindTiffTable({}).nColours, 0U);
}

TEST(PictureHead, NoBytesLeadBeyondTheFileOrInCircles) {
    std::mt19937 random(7);
    for (const auto& entry : fs::directory_iterator(fs::path(WIDTH_TEST_DATA) / "pictures")) {
        const Bytes whole = ReadAll(entry.path());
        for (const Head head : {ReadPngHead, ReadJpegHead, ReadTiffHead}) {
            for (std::size_t n = 0; n < 400; ++n) {
                Bytes damaged(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(random() % (whole.size() + 1)));
                for (std::size_t k = 0; k < n % 4 && !damaged.empty(); ++k) {
                    damaged[random() % std::min<std::size_t>(damaged.size(), 200)] = std::byte(random() % 256);
                }
                EXPECT_GE(head(damaged).nXPelsPerMeter, 0);
            }
        }
    }
}

}  // namespace
}  // namespace width
