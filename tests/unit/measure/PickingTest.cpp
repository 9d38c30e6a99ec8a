#include "measure/Picking.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/LiteralMeasure.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

constexpr std::int32_t kSize = 100;

// A picture of 100 x 100 at zoom 1/1 with line ends at block points, and a picker at work on it.
class Table {
public:
    Table() : m_map(kSize, kSize), m_geometry(UnitGeometry(kSize, kSize)) {}

    void End(std::int32_t x, std::int32_t y, std::uint8_t nId) { m_map.Set({y + 2, x + 2}, nId); }

    /// What a click near a block point brings out, as a text: marks as their number, L label
    /// placed, W wrong line, N not parallel, R rubber label, d default handling.
    std::string Click(std::int32_t x, std::int32_t y) { return ClickAt({x, kSize - 1 - y}); }
    std::string ClickAt(POINT ptClient) {
        std::string text;
        for (const PickEvent& event : picker.Click(ptClient, &m_map, m_geometry, labels)) {
            switch (event.kind) {
                case PickEventKind::LabelPlaced:
                    text += 'L';
                    break;
                case PickEventKind::Mark:
                    text += std::to_string(event.nNumber);
                    break;
                case PickEventKind::WrongLine:
                    text += 'W';
                    break;
                case PickEventKind::NotParallel:
                    text += 'N';
                    break;
                case PickEventKind::RubberLabel:
                    text += 'R';
                    break;
                case PickEventKind::DefaultHandling:
                    text += 'd';
                    break;
            }
        }
        return text;
    }
    std::string State() const {
        return std::to_string(picker.m_bPick1Done) + std::to_string(picker.m_bPick2Done) + std::to_string(picker.m_bPick3Done) +
               std::to_string(picker.m_nClickCount) + std::to_string(picker.m_bLabelPending);
    }

    LinePairPicker picker;
    LabelList labels;

private:
    SkeletonMap m_map;
    ViewGeometry m_geometry;
};

// Two horizontal lines 50 apart, ids 2 and 3, and a steep one, id 4.
Table WithLines() {
    Table table;
    table.End(20, 20, 2);
    table.End(80, 20, 2);
    table.End(20, 70, 3);
    table.End(80, 70, 3);
    table.End(50, 5, 4);
    table.End(50, 95, 4);
    return table;
}

TEST(Picking, AWholeMeasurement) {
    Table table = WithLines();
    EXPECT_EQ(table.Click(20, 20), "1d");
    EXPECT_EQ(table.State(), "10010");
    EXPECT_EQ(table.Click(80, 20), "2d");
    EXPECT_EQ(table.State(), "11020");
    EXPECT_EQ(table.Click(20, 70), "3d");
    EXPECT_EQ(table.State(), "11130");
    EXPECT_EQ(table.Click(80, 70), "4Rd");
    EXPECT_EQ(table.State(), "00001");
    EXPECT_EQ(table.picker.m_ptPick[3].y, 29) << "client coordinates from acceptance on";
    EXPECT_EQ(table.picker.m_ptFoot1.x, 80);
    EXPECT_EQ(table.Click(40, 40), "Ld");
    ASSERT_EQ(table.labels.m_nCurLabel, 1);
    EXPECT_EQ(FormatLabelText(1, table.labels.m_Labels[1].ptA, table.labels.m_Labels[1].ptB, {}), "1#: 50");
    EXPECT_EQ(table.State(), "00000");
}

TEST(Picking, TheWindowReachesTenLeftAndBelowNineRightAndAbove) {
    const auto finds = [](std::int32_t cx, std::int32_t cy) {
        Table table;
        table.End(50, 10, 7);
        return table.ClickAt({cx, cy}) == "1d";
    };
    for (std::int32_t cx = 35; cx < 66; ++cx) {
        EXPECT_EQ(finds(cx, 89), cx >= 41 && cx <= 60) << cx;
    }
    for (std::int32_t cy = 73; cy < 100; ++cy) {
        EXPECT_EQ(finds(50, cy), cy >= 79 && cy <= 98) << cy;
    }
    EXPECT_FALSE(finds(INT32_MAX, 89));
    EXPECT_FALSE(finds(50, INT32_MIN));
}

// Ends of one line only, so that none is refused: what is marked are the ends in the window, in their order, until a pair is
// complete. Clicks on the picture, beside it, and far beside it.
TEST(Picking, EndsArePickedInTheOrderOfTheLiteralScan) {
    std::mt19937 random(61);
    int nMarks = 0;
    for (int i = 0; i < 10'000; ++i) {
        const std::int32_t w = 1 + test::Below(random, 60);
        const std::int32_t h = 1 + test::Below(random, 60);
        SkeletonMap map(h, w);
        for (std::int32_t n = test::Below(random, 30); n > 0; --n) {
            map.Set({2 + test::Below(random, h), 2 + test::Below(random, w)},
                    static_cast<std::uint8_t>(n % 4 == 0 ? 255 : n % 2));
        }
        const POINT ptClick{test::Below(random, w + 30) - 15, test::Below(random, h + 30) - 15};
        const std::vector<test::LiteralEnd> ends = test::EndsNear(map, ptClick.x, ptClick.y);
        LinePairPicker picker;
        LabelList labels;
        std::size_t nMarked = 0;
        for (const PickEvent& event : picker.Click(ptClick, &map, UnitGeometry(w, h), labels)) {
            if (event.kind == PickEventKind::Mark) {
                ASSERT_LT(nMarked, ends.size());
                ASSERT_EQ(event.ptClient.x, ends[nMarked].ptBlock.x) << i;
                ASSERT_EQ(event.ptClient.y, h - 1 - ends[nMarked].ptBlock.y) << i;
                ++nMarked;
            }
        }
        ASSERT_TRUE(nMarked == ends.size() || picker.m_bLabelPending != 0) << i;
        nMarks += static_cast<int>(nMarked);
    }
    EXPECT_GT(nMarks, 3000);
}

TEST(Picking, WrongLinesAreRefusedOneStepBack) {
    Table table = WithLines();
    table.Click(20, 20);
    EXPECT_EQ(table.Click(20, 70), "W") << "no default handling";
    EXPECT_EQ(table.State(), "00000");
    EXPECT_EQ(table.picker.m_nPickId1, 0);
    table.Click(20, 20);
    table.Click(80, 20);
    table.Click(20, 70);
    EXPECT_EQ(table.Click(50, 95), "W");
    EXPECT_EQ(table.State(), "11020") << "the first line stays";
    EXPECT_EQ(table.Click(20, 70), "3d");
    EXPECT_EQ(table.Click(80, 70), "4Rd");
}

TEST(Picking, PairsThatCannotBeMeasured) {
    Table table = WithLines();
    table.Click(20, 20);
    table.Click(80, 20);
    table.Click(50, 5);
    EXPECT_EQ(table.Click(50, 95), "4Nd");
    EXPECT_EQ(table.State(), "00000");
    for (const char* text : {"1d", "2d", "3d", "4d"}) {  // one line as both: parallel, width 0, silent
        EXPECT_EQ(table.Click(text[0] % 2 == 1 ? 20 : 80, 20), text);
    }
    EXPECT_EQ(table.State(), "00000");
    table.Click(20, 20);
    EXPECT_EQ(table.Click(20, 20), "2d") << "the same end twice is of the same line";
    table.Click(20, 70);
    EXPECT_EQ(table.Click(80, 70), "4Nd");
}

TEST(Picking, SeveralEndsInOneWindowCountInScanOrder) {
    Table table;
    table.End(50, 52, 2);
    table.End(45, 50, 2);
    EXPECT_EQ(table.Click(50, 50), "12d");
    EXPECT_EQ(table.picker.m_ptPick[0].y, 50) << "lowest first";
    Table mixed;
    mixed.End(40, 50, 2);
    mixed.End(45, 50, 3);
    mixed.End(47, 50, 2);
    EXPECT_EQ(mixed.Click(45, 50), "1W") << "the rest of the window is not looked at";
}

TEST(Picking, EndsBehindACompletedPairMeanNothing) {
    Table table;
    for (std::int32_t i = 0; i < 4; ++i) {
        table.End(40 + 5 * (i % 2), 46 + 4 * (i / 2), static_cast<std::uint8_t>(2 + i / 2));
    }
    table.End(45, 55, 9);
    EXPECT_EQ(table.Click(45, 50), "1234Rd");
    EXPECT_EQ(table.State(), "00001");
    EXPECT_EQ(table.picker.m_ptPick[0].y, 53) << "slots stay those of the pending label";
}

TEST(Picking, AClickPlacesTheLabelAndGoesOnPicking) {
    Table table = WithLines();
    table.Click(20, 20);
    table.Click(80, 20);
    table.Click(20, 70);
    table.Click(80, 70);
    EXPECT_EQ(table.Click(20, 70), "L1d");
    EXPECT_EQ(table.State(), "10010");
    EXPECT_EQ(table.labels.m_nCurLabel, 1);
}

TEST(Picking, ResetTakesPicksBackButNotAPendingLabel) {
    Table table = WithLines();
    table.Click(20, 20);
    table.Click(80, 20);
    table.picker.Reset();
    EXPECT_EQ(table.State(), "00000");
    for (const auto& [x, y] : {std::pair{20, 20}, {80, 20}, {20, 70}, {80, 70}}) {
        table.Click(x, y);
    }
    table.picker.Reset();
    EXPECT_EQ(table.State(), "00001");
    EXPECT_EQ(table.Click(1, 99), "Ld");
}

TEST(Picking, WithoutASkeletonAClickIsIgnored) {
    LinePairPicker picker;
    LabelList labels;
    picker.m_bLabelPending = 1;
    EXPECT_TRUE(picker.Click({5, 5}, nullptr, UnitGeometry(9, 9), labels).empty());
    EXPECT_EQ(picker.m_bLabelPending, 1);
}

TEST(Picking, MarksAreDrawnWhereTheEndIsAtTheZoom) {
    SkeletonMap map(kSize, kSize);
    map.Set({12, 52}, 5);
    LinePairPicker picker;
    LabelList labels;
    const ViewGeometry geometry{300, 300, 40, 60, kSize, kSize, 4, 1};
    const auto events = picker.Click({160, 296}, &map, geometry, labels);
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].ptClient.x, 50 * 4 - 40);
    EXPECT_EQ(events[0].ptClient.y, 89 * 4 - 60);
}

}  // namespace
}  // namespace width
