#include "view/BaseDib_win.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstring>

#include "tests/support/Pictures.h"

namespace width {
namespace {

using test::DibBuilder;

struct FreeBlock {
    void operator()(void* p) const { free(p); }
};
using Block = std::unique_ptr<void, FreeBlock>;

Block Allocated(const std::vector<std::byte>& bytes) {
    Block block(malloc(bytes.size()));
    std::memcpy(block.get(), bytes.data(), bytes.size());
    return block;
}

TEST(BaseDib, TakesTheFiguresOfItsBlock) {
    const Block indexed = Allocated(DibBuilder(33, 7, 1).Block());
    CBaseDib dib;
    dib.Attach(indexed.get());
    EXPECT_EQ(dib.m_nColors, 2U);
    EXPECT_EQ(dib.m_nPalEntries, 2U);
    EXPECT_EQ(dib.m_nStride, 8U);
    EXPECT_EQ(dib.Bits(), static_cast<std::uint8_t*>(indexed.get()) + 48);
    DibBuilder builder(5, 3, 24);
    builder.Header().biClrUsed = 9;
    const Block colour = Allocated(builder.Block());
    CBaseDib trueColour;
    trueColour.Attach(colour.get());
    EXPECT_EQ(trueColour.m_nColors, 9U);
    EXPECT_EQ(trueColour.m_nPalEntries, 0U);
    EXPECT_EQ(trueColour.MakePalette(), nullptr);
    const std::uint8_t* pScratch = trueColour.Scratch();
    EXPECT_TRUE(std::all_of(pScratch, pScratch + 40 + 3 * 16, [](std::uint8_t b) { return b == 0; }));
}

TEST(BaseDib, DrawsTheStateOfTheAttach) {
    DibBuilder builder(4, 2, 8, 5);
    builder.SetColour(3, {10, 20, 30}).SetIndex(1, 0, 3);
    const Block block = Allocated(builder.Block());
    CBaseDib dib;
    dib.Attach(block.get());
    dib.Bits()[1] = 0;  // changes the image, not the copy
    CDC dc;
    ASSERT_TRUE(dc.CreateCompatibleDC(nullptr));
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, 4, 2, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    CBitmap bitmap;
    void* pBits = nullptr;
    ASSERT_TRUE(bitmap.CreateDIBSection(&info, &pBits));
    const CSelectGuard selected(dc, bitmap);
    dib.Draw(dc);
    EXPECT_EQ(dc.GetPixel(1, 1), RGB(10, 20, 30));
    EXPECT_EQ(dc.GetPixel(0, 1), RGB(0, 0, 0));
}

TEST(BaseDib, PaletteHasTheTablesColours) {
    const Block block = Allocated(DibBuilder(2, 2, 4, 3).SetColour(2, {200, 100, 50}).Block());
    CBaseDib dib;
    dib.Attach(block.get());
    CPalette palette;
    ASSERT_TRUE(palette.Attach(dib.MakePalette()));
    PALETTEENTRY entries[16]{};
    EXPECT_EQ(::GetPaletteEntries(palette, 0, 16, entries), 3U);
    EXPECT_EQ(entries[2].peRed, 200);
    EXPECT_EQ(entries[2].peBlue, 50);
}

}  // namespace
}  // namespace width
