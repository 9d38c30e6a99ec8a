// A width measured with the mouse: grey window, skeleton, two lines, four picks, a label, the bitmap sent back.
#include <gtest/gtest.h>

#include "res/resource.h"
#include "tests/e2e/PluginJob.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

using test::AnswerBox;
using test::PixelAt;
using test::WaitFor;

constexpr std::int32_t kWidth = 300, kHeight = 200;
constexpr COLORREF kWhite = RGB(255, 255, 255), kBlue = RGB(0, 0, 255), kRed = RGB(255, 0, 0);

// Two black bars five pixels thick on white, their middles at picture rows 137 and 87.
std::vector<std::byte> TwoBars() {
    test::DibBuilder builder(kWidth, kHeight, 24);
    for (std::int32_t i = 0; i < kWidth * kHeight; ++i) {
        const std::int32_t x = i % kWidth;
        const std::int32_t s = i / kWidth;
        const bool bDark = x >= 20 && x < 280 && ((s >= 60 && s < 65) || (s >= 110 && s < 115));
        builder.SetPixel(x, s, bDark ? Colour{} : Colour{255, 255, 255});
    }
    return builder.Block();
}

class Measure : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(job.Start(TwoBars()), nullptr);
        ASSERT_TRUE(job.WaitForPane(1, L"300 x 200"));
        ::PostMessageW(job.Frame(), WM_COMMAND, ID_BINARY_SETTING, 0);
        AnswerBox();
        job.Command(ID_SKELETONIZE);
        job.Command(ID_TOOL_LINE_DETECT);
        Click(150, 137);
        Click(150, 87);
        job.Command(ID_TOOL_WIDTH_LABEL);
        job.Paint();  // a paint that is still to come would wipe what is drawn straight on the window
    }

    POINT Client(std::int32_t x, std::int32_t y) const {
        const RECT rc = test::ClientRect(job.View());
        return {(rc.right - kWidth) / 2 + x, (rc.bottom - kHeight) / 2 + y};
    }
    LPARAM Param(std::int32_t x, std::int32_t y) const {
        const POINT pt = Client(x, y);
        return MAKELPARAM(pt.x, pt.y);
    }
    void Click(std::int32_t x, std::int32_t y) { job.Send(job.View(), WM_LBUTTONDOWN, MK_LBUTTON, Param(x, y)); }
    void Move(std::int32_t x, std::int32_t y) { job.Send(job.View(), WM_MOUSEMOVE, 0, Param(x, y)); }
    COLORREF At(std::int32_t x, std::int32_t y) const {
        job.Paint();
        return PixelAt(job.View(), Client(x, y));
    }
    void PickBothLines() {
        for (const auto& [x, y] : {std::pair{277, 137}, {22, 137}, {277, 87}, {22, 87}}) {
            Click(x, y);
        }
    }

    test::PluginJob job{0x0409};
};

TEST_F(Measure, TheRoadToALabelInTheBitmap) {
    Click(277, 137);
    EXPECT_EQ(At(277, 131), kRed) << "the mark's circle";
    Click(22, 137);
    Click(277, 87);
    Click(22, 87);
    Move(150, 110);
    EXPECT_EQ(At(150, 100), kBlue) << "the rubber label";
    Move(200, 110);
    EXPECT_EQ(At(150, 100), kWhite) << "wiped";
    EXPECT_EQ(At(200, 100), kBlue);
    Click(200, 110);
    EXPECT_EQ(At(200, 100), kBlue) << "stored and painted at once";
    EXPECT_TRUE(WaitFor([&] { return job.IsEnabled(ID_EDIT_UNDO); }));
    job.Command(ID_EDIT_UNDO);
    EXPECT_EQ(At(200, 100), kWhite);
    EXPECT_TRUE(WaitFor([&] { return job.IsEnabled(ID_EDIT_REDO) && !job.IsEnabled(ID_EDIT_UNDO); }));
    job.Command(ID_EDIT_REDO);
    ::PostMessageW(job.Frame(), WM_COMMAND, ID_WRITE_TO_BITMAP, 0);
    EXPECT_EQ(AnswerBox(), L"Labels have been written to the bitmap");
    job.Command(ID_SEND_IMAGE);
    const auto events = job.Events();
    ASSERT_EQ(events.size(), 1U);
    const DibView dib = *DibView::Open(events[0].block);
    EXPECT_EQ(dib.PixelAt(200, kHeight - 1 - 100), (Colour{0, 0, 255})) << "the arrow's shaft";
    EXPECT_EQ(dib.PixelAt(100, kHeight - 1 - 137), (Colour{255, 0, 0})) << "a line";
    EXPECT_EQ(dib.PixelAt(20, kHeight - 1 - 135), (Colour{0, 0, 0})) << "the skeleton is not written unless asked for";
    EXPECT_EQ(dib.PixelAt(5, 5), (Colour{255, 255, 255}));
}

TEST_F(Measure, TheSearchSquareFollowsTheMouseAndLeavesNoTrace) {
    Move(60, 40);
    EXPECT_NE(At(50, 40), kWhite);
    Move(100, 30);
    EXPECT_EQ(At(50, 40), kWhite);
    EXPECT_NE(At(90, 30), kWhite);
    job.Send(job.View(), WM_RBUTTONDOWN, MK_RBUTTON, Param(100, 30));
    EXPECT_EQ(At(90, 30), kWhite);
}

TEST_F(Measure, ScrollingLeavesNoTraceOfTheSearchSquare) {
    job.Command(ID_TOOL_ZOOM);
    const RECT rc = test::ClientRect(job.View());
    const POINT ptMiddle{rc.right / 2, rc.bottom / 2};
    for (int i = 0; i < 7; ++i) {
        job.Send(job.View(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(ptMiddle.x, ptMiddle.y));
    }
    ASSERT_NE(::GetWindowLongPtrW(job.View(), GWL_STYLE) & WS_VSCROLL, 0) << "larger than the window";
    job.Command(ID_TOOL_WIDTH_LABEL);
    job.Paint();
    const auto hasTrace = [&] {
        job.Paint();
        bool bTrace = false;
        for (LONG y = ptMiddle.y - 20; y < ptMiddle.y + 40; ++y) {
            bTrace = bTrace || PixelAt(job.View(), {ptMiddle.x - 10, y}) != kWhite;
        }
        return bTrace;
    };
    const auto move = [&](LONG nAcross) {
        job.Send(job.View(), WM_MOUSEMOVE, 0, MAKELPARAM(ptMiddle.x + nAcross, ptMiddle.y + 10));
    };
    EXPECT_FALSE(hasTrace());
    move(0);
    EXPECT_TRUE(hasTrace());
    job.Send(job.View(), WM_VSCROLL, SB_LINEDOWN);
    EXPECT_FALSE(hasTrace()) << "neither where it was nor where its pixels went";
    move(60);
    EXPECT_FALSE(hasTrace());
}

TEST_F(Measure, EndsOfDifferentLinesAreRefused) {
    Click(277, 137);
    ::PostMessageW(job.View(), WM_LBUTTONDOWN, MK_LBUTTON, Param(277, 87));
    EXPECT_EQ(AnswerBox(),
              L"\u4e24\u70b9\u4e0d\u5728\u4e00\u6761\u76f4\u7ebf\u4e0a\uff0c\u8bf7\u91cd\u65b0\u5f00\u59cb\u9009\u62e9\u3002");
    job.Paint();
    PickBothLines();
    Move(150, 110);
    EXPECT_EQ(At(150, 100), kBlue) << "picking began anew";
}

TEST_F(Measure, APendingLabelOutlivesToolsAndTheRightButton) {
    PickBothLines();
    job.Command(ID_TOOL_TRACK);
    job.Command(ID_TOOL_WIDTH_LABEL);
    job.Send(job.View(), WM_RBUTTONDOWN, MK_RBUTTON, Param(9, 9));
    job.Paint();
    Click(120, 110);
    EXPECT_EQ(At(120, 100), kBlue);
    EXPECT_TRUE(WaitFor([&] { return job.IsEnabled(ID_EDIT_UNDO); }));
}

}  // namespace
}  // namespace width
