#include "view/PagePlacement.h"

#include <gtest/gtest.h>

#include <ostream>

namespace width {

void PrintTo(const PagePlacement& place, std::ostream* out) {
    *out << place.nX << ',' << place.nY << ' ' << place.nWidth << " x " << place.nHeight;
}

namespace {

struct PlacementCase {
    const char* name;
    std::int32_t nImageWidth;
    std::int32_t nImageHeight;
    DotsPerInch screen;
    DotsPerInch printer;
    std::int32_t nPageWidth;
    std::int32_t nPageHeight;
    PagePlacement expected;
};

constexpr PlacementCase kCases[] = {
    {"an inch on the screen is an inch on paper", 96, 96, {96, 96}, {600, 600}, 4800, 6000, {2100, 2700, 600, 600}},
    {"as large as the page", 768, 960, {96, 96}, {600, 600}, 4800, 6000, {0, 0, 4800, 6000}},
    {"one pixel wider than the page", 769, 960, {96, 96}, {600, 600}, 4800, 6000, {0, 4, 4800, 5992}},
    {"wider only", 1000, 100, {96, 96}, {600, 600}, 4800, 6000, {0, 2760, 4800, 480}},
    {"higher only", 100, 2000, {96, 96}, {600, 600}, 4800, 6000, {2250, 0, 300, 6000}},
    {"wider and higher", 3000, 2000, {96, 96}, {600, 600}, 4800, 6000, {0, 1400, 4800, 3200}},
    {"dots narrower than high", 96, 96, {96, 96}, {1200, 600}, 9600, 6000, {4200, 2700, 1200, 600}},
    {"dots narrower than high, reduced", 960, 480, {96, 96}, {1200, 600}, 9600, 6000, {0, 1800, 9600, 2400}},
    {"pixels of the screen not square", 96, 96, {96, 72}, {600, 600}, 4800, 6000, {2100, 2600, 600, 800}},
    {"printer coarser than the screen", 5, 3, {144, 144}, {96, 96}, 816, 1056, {406, 527, 3, 2}},
    {"half a dot is rounded up", 100, 100, {96, 96}, {300, 300}, 2481, 3507, {1084, 1597, 313, 313}},
    {"the odd dot is left over on the far side", 101, 101, {96, 96}, {96, 96}, 816, 1055, {357, 477, 101, 101}},
    {"the product with the scale falls short of a whole dot", 1363, 100, {96, 96}, {600, 600}, 4800, 6000, {0, 2824, 4799, 352}},
    {"less than half a dot", 1, 1000, {600, 600}, {203, 203}, 800, 1200, {}},
    {"a page without room", 96, 96, {96, 96}, {600, 600}, 0, 6000, {0, 3000, 0, 0}},
    {"more dots than 32 bits hold", 0x7000'0000, 1, {96, 96}, {600, 600}, 4800, 6000, {}},
    {"a screen that tells no resolution", 96, 96, {0, 0}, {600, 600}, 4800, 6000, {}},
};

TEST(PagePlacement, KeepsTheSizeOfTheScreenReducesAndCentres) {
    for (const PlacementCase& row : kCases) {
        EXPECT_EQ(PlaceOnPage(row.nImageWidth, row.nImageHeight, row.screen, row.printer, row.nPageWidth, row.nPageHeight),
                  row.expected)
            << row.name;
    }
}

// Whatever the picture: inside the page, proportions kept to a dot, and a side that fills the page up to the dot that the
// cutting may take.
TEST(PagePlacement, ReducedPicturesFillThePage) {
    for (std::int32_t nWidth = 1; nWidth < 3000; nWidth += 7) {
        const PagePlacement place = PlaceOnPage(nWidth, 1500, {96, 96}, {600, 600}, 4800, 6000);
        ASSERT_TRUE(place.nX >= 0 && place.nY >= 0 && place.nX + place.nWidth <= 4800 && place.nY + place.nHeight <= 6000);
        ASSERT_TRUE(place.nWidth >= 4799 || place.nHeight >= 5999) << nWidth;
        ASSERT_NEAR(place.nWidth * 1500.0 / nWidth, place.nHeight, 1 + 1500.0 / nWidth) << nWidth;
    }
}

}  // namespace
}  // namespace width
