#include "view/DibPalette_win.h"

#include <gtest/gtest.h>

#include "classlib/Gdi.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

using test::DibBuilder;

TEST(DibPalette, HasTheTablesColours) {
    const auto block = DibBuilder(2, 2, 4, 3).SetColour(2, {200, 100, 50}).Block();
    CPalette palette;
    ASSERT_TRUE(palette.Attach(MakePalette(*DibView::Open(block))));
    PALETTEENTRY entries[16]{};
    EXPECT_EQ(::GetPaletteEntries(palette, 0, 16, entries), 3U);
    EXPECT_EQ(entries[2].peRed, 200);
    EXPECT_EQ(entries[2].peGreen, 100);
    EXPECT_EQ(entries[2].peBlue, 50);
}

TEST(DibPalette, TrueColoursHaveNone) {
    DibBuilder builder(5, 3, 24);
    builder.Header().biClrUsed = 9;
    const auto block = builder.Block();
    EXPECT_EQ(MakePalette(*DibView::Open(block)), nullptr);
}

}  // namespace
}  // namespace width
