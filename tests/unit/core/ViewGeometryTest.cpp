#include "core/ViewGeometry.h"

#include <gtest/gtest.h>

#include <ostream>

static bool operator==(const POINT& a, const POINT& b) {
    return a.x == b.x && a.y == b.y;
}
static std::ostream& operator<<(std::ostream& out, const POINT& pt) {
    return out << '(' << pt.x << ", " << pt.y << ')';
}

namespace width {
namespace {

POINT Point(std::int32_t x, std::int32_t y) {
    return POINT{x, y};
}

void ExpectRect(const RECT& rc, std::int32_t left, std::int32_t top, std::int32_t right, std::int32_t bottom) {
    EXPECT_TRUE(rc.left == left && rc.top == top && rc.right == right && rc.bottom == bottom)
        << rc.left << ' ' << rc.top << ' ' << rc.right << ' ' << rc.bottom;
}

TEST(ViewGeometry, SmallPicturesAreCentredOnEachAxisAlone) {
    ExpectRect(GetImageRect({101, 80, 0, 0, 50, 200, 1, 1}), 25, 0, 75, 200);
    ExpectRect(GetImageRect({50, 300, 0, 30, 50, 200, 1, 1}), 0, 50, 50, 250);
    ExpectRect(GetImageRect({101, 80, 5, 5, 0, 0, 1, 1}), 0, 0, 0, 0);
    ExpectRect(GetImageRect({10, 10, 0, 0, 100, 100, 2, 3}), 0, 0, 67, 67);
}

TEST(ViewGeometry, ClientToImageRoundsAndDoesNotClamp) {
    const ViewGeometry sixteen{64, 64, 0, 0, 100, 100, 16, 1};
    EXPECT_EQ(ClientToImage(Point(7, 8), sixteen), Point(0, 1));
    const ViewGeometry centred{101, 101, 0, 0, 50, 50, 1, 1};
    EXPECT_EQ(ClientToImage(Point(25, 75), centred), Point(0, 50));
    EXPECT_EQ(ClientToImage(Point(20, 100), centred), Point(-5, 75));
    const ViewGeometry equal{50, 50, 0, 0, 50, 50, 1, 1};
    EXPECT_EQ(ClientToImage(Point(3, 4), equal), Point(3, 4));
    const ViewGeometry scrolled{40, 40, 60, 80, 100, 100, 2, 1};
    EXPECT_EQ(ClientToImage(Point(10, 11), scrolled), Point(35, 46)) << "70 / 2 and 91 / 2, halves up";
}

TEST(ViewGeometry, ImageToClientTruncatesThroughSingleScale) {
    const ViewGeometry third{20, 60, 3, 0, 100, 100, 1, 3};
    EXPECT_EQ(ImageToClient(Point(50, 50), third), Point(16 - 3, 16 + 13));
    const ViewGeometry negative{100, 100, 0, 0, 10, 10, 2, 1};
    EXPECT_EQ(ImageToClient(Point(-1, 9), negative), Point(38, 58));
    // The factor is 67/100 in single precision; 100 * 0.67F comes out as 67 and not below.
    const ViewGeometry twoThirds{20, 20, 0, 0, 100, 100, 2, 3};
    EXPECT_EQ(ImageToClient(Point(100, 3), twoThirds), Point(67, 2));
}

TEST(ViewGeometry, CentreIsFoundOnlyOnThePicture) {
    EXPECT_FALSE(GetCentreImagePoint({100, 100, 0, 0, 1, 100, 1, 1})) << "the centre falls on the excluded right edge";
    EXPECT_FALSE(GetCentreImagePoint({100, 100, 0, 0, 0, 0, 1, 1}));
    EXPECT_EQ(*GetCentreImagePoint({100, 100, 150, 50, 400, 300, 1, 1}), Point(200, 100));
    EXPECT_EQ(*GetCentreImagePoint({100, 100, 0, 0, 9, 9, 3, 1}), Point(4, 4));
}

TEST(ViewGeometry, ScrollTargetCentresOnlyWherePictureIsLarger) {
    EXPECT_EQ(ScrollTargetForCentre(Point(200, 100), {100, 400, 0, 0, 400, 300, 1, 1}), Point(150, 0));
    EXPECT_EQ(ScrollTargetForCentre(Point(10, 290), {100, 100, 0, 0, 400, 300, 2, 1}), Point(-30, 530));
}

TEST(ViewGeometry, UnitGeometryIsTheIdentity) {
    const ViewGeometry unit = UnitGeometry(640, 480);
    EXPECT_EQ(ClientToImage(Point(639, 0), unit), Point(639, 0));
    EXPECT_EQ(ImageToClient(Point(17, 479), unit), Point(17, 479));
}

}  // namespace
}  // namespace width
