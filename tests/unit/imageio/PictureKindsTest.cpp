// Kinds of picture files in which the same pixels can stand, on every platform: what is hidden is laid on white, every
// header of a bitmap file leads to the same picture, and rows stay where they are stored.
#include "tests/unit/imageio/Files.h"

namespace width {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

using PictureKinds = ImageIo;

std::vector<std::uint8_t> FirstBytes(const Bytes& block, std::size_t n) {
    const auto row = ViewOf(block).Row(ViewOf(block).Height() - 1);
    return {row.begin(), row.begin() + static_cast<std::ptrdiff_t>(n)};
}

// Four entries: hidden, less than half seen, seen, and one without a value of its own, which is seen.
const Bytes kTable = PngChunk("PLTE", BytesOf({0, 0, 0, 10, 20, 30, 40, 50, 60, 70, 80, 90}));
const Bytes kAlphas = PngChunk("tRNS", BytesOf({0, 100, 255}));

TEST_F(PictureKinds, EntriesOfAPngTableAreLaidOnWhiteAndKeepTheirPlaces) {
    const std::vector<int> expected{255, 255, 255, 159, 163, 167, 40, 50, 60, 70, 80, 90};
    struct Depth {
        int nFile, nBlock;
        Bytes row;
        std::vector<std::uint8_t> indices;
    };
    for (const Depth& depth : {Depth{2, 4, BytesOf({0, 0x1b}), {0x01, 0x23}}, Depth{4, 4, BytesOf({0, 0x01, 0x23}), {0x01, 0x23}},
                               Depth{8, 8, BytesOf({0, 0, 1, 2, 3}), {0, 1, 2, 3}}}) {
        SCOPED_TRACE(depth.nFile);
        const Bytes block = LoadBytes(PngFile(4, 1, depth.nFile, 3, kTable + kAlphas, depth.row)).block;
        EXPECT_EQ(ViewOf(block).BitCount(), depth.nBlock);
        EXPECT_EQ(ViewOf(block).Figures().nPalEntries, 4U);
        EXPECT_EQ(FirstBytes(block, depth.indices.size()), depth.indices);
        EXPECT_EQ(Pixels(block), expected);
    }
    const Bytes two = PngChunk("PLTE", BytesOf({0, 0, 0, 0, 0, 0})) + PngChunk("tRNS", BytesOf({255, 0}));
    const Bytes bars = LoadBytes(PngFile(8, 1, 1, 3, two, BytesOf({0, 0x5a}))).block;
    EXPECT_EQ(ViewOf(bars).BitCount(), 1);
    EXPECT_THAT(Reds(bars), ElementsAre(0, 255, 0, 255, 255, 0, 255, 0)) << "black bars on hidden black";
}

TEST_F(PictureKinds, AGreyLevelThatAPngFileHidesIsWhite) {
    const auto levels = [&](int nDepth, int nHidden, int nBlockDepth, const Bytes& row) {
        const Bytes key = PngChunk("tRNS", BytesOf({nHidden >> 8, nHidden & 255}));
        const Bytes block = LoadBytes(PngFile(4, 1, nDepth, 0, key, BytesOf({0}) + row)).block;
        EXPECT_EQ(ViewOf(block).BitCount(), nBlockDepth) << nDepth;
        return Reds(block);
    };
    EXPECT_THAT(levels(1, 0, 1, BytesOf({0x50})), ElementsAre(255, 255, 255, 255));
    EXPECT_THAT(levels(1, 1, 1, BytesOf({0x50})), ElementsAre(0, 255, 0, 255));
    EXPECT_THAT(levels(2, 1, 4, BytesOf({0x1b})), ElementsAre(0, 255, 170, 255));
    EXPECT_THAT(levels(4, 3, 4, BytesOf({0x03, 0x47})), ElementsAre(0, 255, 68, 119));
    EXPECT_THAT(levels(8, 200, 8, BytesOf({0, 200, 100, 199})), ElementsAre(0, 255, 100, 199));
    EXPECT_THAT(levels(16, 0x6401, 8, BytesOf({0x64, 0, 0x64, 1, 0x64, 2, 1, 0x64})), ElementsAre(100, 255, 100, 1))
        << "all sixteen bits count";
}

TEST_F(PictureKinds, AColourThatAPngFileHidesIsWhite) {
    const Bytes key = PngChunk("tRNS", BytesOf({0, 1, 0, 2, 0, 3}));
    const Bytes block = LoadBytes(PngFile(3, 1, 8, 2, key, BytesOf({0, 1, 2, 3, 1, 2, 4, 0, 0, 0}))).block;
    EXPECT_EQ(ViewOf(block).BitCount(), 24);
    EXPECT_THAT(Pixels(block), ElementsAre(255, 255, 255, 1, 2, 4, 0, 0, 0));
    const Bytes deepKey = PngChunk("tRNS", BytesOf({1, 1, 2, 2, 3, 3}));
    const Bytes deep = LoadBytes(PngFile(2, 1, 16, 2, deepKey, BytesOf({0, 1, 1, 2, 2, 3, 3, 1, 1, 2, 2, 3, 4}))).block;
    EXPECT_THAT(Pixels(deep), ElementsAre(255, 255, 255, 1, 2, 3)) << "all sixteen bits count";
}

TEST_F(PictureKinds, TheEntryThatAGifPictureHidesIsWhite) {
    const auto gif = [&](const Bytes& control) {
        const Bytes table = BytesOf({0, 0, 0, 10, 20, 30, 40, 50, 60, 70, 80, 90});
        const Bytes block = LoadBytes(BytesOf("GIF89a") + BytesOf({4, 0, 1, 0, 0x91, 0, 0}) + table + control +
                                      BytesOf({0x2c, 0, 0, 0, 0, 4, 0, 1, 0, 0, 2, 3, 0x44, 0xa8, 0x15, 0, 0x3b}))
                                .block;
        EXPECT_EQ(ViewOf(block).BitCount(), 4);
        EXPECT_EQ(FirstBytes(block, 2), (std::vector<std::uint8_t>{0x01, 0x23}));
        return Reds(block);
    };
    EXPECT_THAT(gif({}), ElementsAre(0, 10, 40, 70));
    EXPECT_THAT(gif(BytesOf({0x21, 0xf9, 4, 1, 0, 0, 0, 0})), ElementsAre(255, 10, 40, 70));
    EXPECT_THAT(gif(BytesOf({0x21, 0xf9, 4, 1, 0, 0, 2, 0})), ElementsAre(0, 10, 255, 70));
    EXPECT_THAT(gif(BytesOf({0x21, 0xf9, 4, 0, 0, 0, 2, 0})), ElementsAre(0, 10, 40, 70)) << "an entry without its flag";
    EXPECT_THAT(gif(BytesOf({0x21, 0xf9, 4, 1, 0, 0, 9, 0})), ElementsAre(0, 10, 40, 70)) << "no such entry";
}

// The header of a bitmap file in another length: shorter ones without what lies behind, longer ones with fields of their
// own there, which for the kind of 64 bytes are no colours and no masks.
Bytes WithLength(const Bytes& header, std::uint32_t nLength) {
    Bytes other = header;
    other.resize(nLength, std::byte{0x37});
    Put(other, 0, nLength);
    if (nLength == 12) {
        std::int32_t nSide = 0;
        for (const std::size_t i : {0U, 1U}) {
            std::memcpy(&nSide, header.data() + 4 + 4 * i, sizeof nSide);
            Put(other, 4 + 2 * i, static_cast<std::uint16_t>(nSide));
        }
        std::copy_n(header.begin() + 12, 4, other.begin() + 8);
    }
    if (nLength >= 52 && nLength != 64) {
        Put(other, 40, std::uint32_t{0xff0000});
        Put(other, 44, std::uint32_t{0xff00});
        Put(other, 48, std::uint32_t{0xff});
    }
    return other;
}

Bytes WithoutFourthBytes(const Bytes& table) {
    Bytes other;
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (i % 4 != 3) {
            other.push_back(table[i]);
        }
    }
    return other;
}

TEST_F(PictureKinds, EveryHeaderOfABitmapFileGivesTheSamePicture) {
    for (const int nDepth : {1, 4, 8, 24, 32}) {
        const Bytes block = Block(9, 5, nDepth);
        const auto nRows = static_cast<std::ptrdiff_t>(ViewOf(block).Figures().nBitsOffset);
        const Bytes header(block.begin(), block.begin() + 40);
        const Bytes table(block.begin() + 40, block.begin() + nRows);
        const Bytes rows(block.begin() + nRows, block.end());
        for (const std::uint32_t nLength : {12U, 16U, 40U, 52U, 56U, 64U, 108U, 124U}) {
            SCOPED_TRACE(std::to_string(nDepth) + " bits, header of " + std::to_string(nLength));
            const LoadedPicture picture =
                LoadBytes(BmpFile(WithLength(header, nLength), nLength == 12 ? WithoutFourthBytes(table) : table, rows));
            ASSERT_EQ(picture.error, "");
            EXPECT_EQ(ViewOf(picture.block).BitCount(), nDepth);
            EXPECT_EQ(Pixels(picture.block), Pixels(block));
            EXPECT_EQ(ViewOf(picture.block).Palette(), ViewOf(block).Palette());
            EXPECT_EQ(ViewOf(picture.block).Figures().nYPelsPerMeter, nLength < 40 ? 0 : 11811);
        }
    }
}

TEST_F(PictureKinds, EveryHeaderOfABitmapFileLeadsToRunsAndFieldsAndRowsFromTheTop) {
    const Bytes table = BytesOf({1, 1, 10, 0, 2, 2, 20, 0, 3, 3, 30, 0});
    Bytes runs = Header(4, 2, 8, 3, 1);
    Put(runs, 20, std::uint32_t{14});
    for (const std::uint32_t nLength : {40U, 52U, 56U, 64U, 108U, 124U}) {
        SCOPED_TRACE(nLength);
        const Bytes runRows = BytesOf({3, 1, 1, 2, 0, 0, 0, 4, 2, 1, 0, 1, 0, 1});
        EXPECT_THAT(Reds(LoadBytes(BmpFile(WithLength(runs, nLength), table, runRows)).block),
                    ElementsAre(30, 20, 10, 20, 20, 20, 20, 30));
        const Bytes topDown = WithLength(Header(3, -2, 4, 3), nLength);
        EXPECT_THAT(Reds(LoadBytes(BmpFile(topDown, table, BytesOf({0x01, 0x20, 0, 0, 0x22, 0x10, 0, 0}))).block),
                    ElementsAre(10, 20, 30, 30, 30, 20));
        const Bytes deep = LoadBytes(BmpFile(WithLength(Header(2, 1, 16, 0), nLength), {}, BytesOf({0, 0x7c, 0x1f, 0}))).block;
        EXPECT_EQ(ViewOf(deep).BitCount(), 24);
        EXPECT_THAT(Pixels(deep), ElementsAre(255, 0, 0, 0, 0, 255));
        if (nLength == 64) {
            continue;  // whose third packing is another one
        }
        Bytes fields = WithLength(Header(2, 1, 16, 0, 3), nLength);
        for (const std::uint32_t nMask : {0xf800U, 0x7e0U, 0x1fU}) {
            Put(fields, nMask == 0xf800U ? 40 : nMask == 0x7e0U ? 44 : 48, nMask);
        }
        EXPECT_THAT(Pixels(LoadBytes(BmpFile(fields, {}, BytesOf({0, 0xf8, 0x1f, 0}))).block), ElementsAre(255, 0, 0, 0, 0, 255));
        Bytes swapped = WithLength(Header(2, 1, 32, 0, 3), nLength);
        for (const std::uint32_t nMask : {0xffU, 0xff00U, 0xff0000U}) {
            Put(swapped, nMask == 0xffU ? 40 : nMask == 0xff00U ? 44 : 48, nMask);
        }
        EXPECT_THAT(Pixels(LoadBytes(BmpFile(swapped, {}, BytesOf({1, 2, 3, 0, 4, 5, 6, 0}))).block),
                    ElementsAre(1, 2, 3, 4, 5, 6));
    }
}

TEST_F(PictureKinds, BitmapFilesOfKindsThatNobodyUnpacksSaySo) {
    for (const Bytes& header : {Header(8, 1, 2, 0), Header(8, 1, 1, 0, 3), Header(8, 1, 16, 0, 3), Header(8, 1, 32, 0, 3),
                                Header(8, 1, 24, 0, 4), Header(8, 1, 8, 0, 9)}) {
        EXPECT_EQ(LoadBytes(BmpFile(WithLength(header, 64), Bytes(1024), Bytes(64))).error,
                  "the BMP picture is of a kind that can't be read here");
    }
}

TEST_F(PictureKinds, AWholeTiffPictureThatNobodyUnpacksIsNotCalledDamaged) {
    const std::string kind = "the TIFF picture is of a kind that can't be read here";
    const auto packed = [&](int nPacking) {
        return LoadBytes(TiffFile(4, 1, {{258, {8}}, {259, {nPacking}}, {262, {1}}, {277, {1}}}, BytesOf({1, 2, 3, 4})));
    };
    EXPECT_THAT(Reds(packed(1).block), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(packed(60000).error, StartsWith(kind));
    EXPECT_THAT(packed(5).error, StartsWith("the TIFF picture is damaged")) << "no sense in its packed bytes";
    EXPECT_THAT(LoadBytes(BytesOf({'I', 'I', 43, 0, 8, 0, 0, 0, 16, 0, 0, 0, 0, 0, 0, 0})).error, HasSubstr("TIFF"));
    for (const std::string name : {"planes.tif", "two-bit-grey.tif"}) {
        const LoadedPicture picture = LoadPicture(Shipped(name));
        EXPECT_EQ(picture.block.empty(), picture.error == kind) << name << picture.error;
    }
}

// Where the first row and column lie: 1 top left, 2 top right, 3 bottom right, 4 bottom left, 5 to 8 with rows and columns
// exchanged.
TEST_F(PictureKinds, OrientationMarksMoveNoPixel) {
    for (int nOrientation = 1; nOrientation <= 8; ++nOrientation) {
        SCOPED_TRACE(nOrientation);
        const TiffField turned{274, {nOrientation}};
        const Bytes grey =
            LoadBytes(TiffFile(3, 2, {{258, {8}}, {262, {1}}, turned, {277, {1}}}, BytesOf({1, 2, 3, 4, 5, 6}))).block;
        EXPECT_EQ(ViewOf(grey).BitCount(), 8);
        EXPECT_EQ(ViewOf(grey).Width(), 3);
        EXPECT_THAT(Reds(grey), ElementsAre(1, 2, 3, 4, 5, 6));
        const Bytes alpha = LoadBytes(TiffFile(2, 2, {{258, {8, 8, 8, 8}}, {262, {2}}, turned, {277, {4}}, {338, {2}}},
                                               BytesOf({1, 0, 0, 255, 2, 0, 0, 255, 3, 0, 0, 255, 4, 0, 0, 0})))
                                .block;
        EXPECT_THAT(Reds(alpha), ElementsAre(1, 2, 3, 255));
    }
}

}  // namespace
}  // namespace width
