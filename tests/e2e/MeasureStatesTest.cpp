// Measuring in unusual orders: what happens between the clicks, while a box is open, or a few hundred times.
#include <gtest/gtest.h>
#include <malloc.h>

#include "res/resource.h"
#include "tests/e2e/PluginJob.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

using test::AnswerBox;
using test::PixelAt;
using test::WaitFor;

constexpr std::int32_t kWidth = 300, kHeight = 200;
constexpr COLORREF kWhite = RGB(255, 255, 255), kBlue = RGB(0, 0, 255), kRed = RGB(255, 0, 0), kGreen = RGB(0, 255, 0);

// Level bars at picture rows 50 and 100, a leaning one from (30, 190) up to (270, 130); all dark on white.
std::vector<std::byte> ThreeBars() {
    test::DibBuilder builder(kWidth, kHeight, 24);
    for (std::int32_t i = 0; i < kWidth * kHeight; ++i) {
        const std::int32_t x = i % kWidth;
        const std::int32_t y = kHeight - 1 - i / kWidth;
        const bool bLevel = x >= 20 && x < 280 && ((y >= 48 && y < 53) || (y >= 98 && y < 103));
        const bool bLeaning = x >= 30 && x < 270 && y + x / 4 >= 194 && y + x / 4 < 201;
        builder.SetPixel(x, i / kWidth, bLevel || bLeaning ? Colour{} : Colour{255, 255, 255});
    }
    return builder.Block();
}

class MeasureStates : public testing::TestWithParam<WORD> {
protected:
    void SetUp() override {
        ASSERT_NE(job.Start(ThreeBars()), nullptr);
        ASSERT_TRUE(job.WaitForPane(1, L"300 x 200"));
        ChooseGreyWindow();
        job.Command(ID_SKELETONIZE);
        Detect();
        job.Command(ID_TOOL_WIDTH_LABEL);
        job.Paint();
    }
    void ChooseGreyWindow() {
        ::PostMessageW(job.Frame(), WM_COMMAND, ID_BINARY_SETTING, 0);
        AnswerBox();
    }
    void Detect() {
        job.Command(ID_TOOL_LINE_DETECT);
        Click(150, 50);
        Click(150, 100);
        Click(150, 160);
    }
    POINT Client(std::int32_t x, std::int32_t y) const {
        const RECT rc = test::ClientRect(job.View());
        return {(rc.right - kWidth) / 2 + x, (rc.bottom - kHeight) / 2 + y};
    }
    LPARAM Param(std::int32_t x, std::int32_t y) const {
        const POINT pt = Client(x, y);
        return MAKELPARAM(pt.x, pt.y);
    }
    void Click(std::int32_t x, std::int32_t y) const { job.Send(job.View(), WM_LBUTTONDOWN, MK_LBUTTON, Param(x, y)); }
    void PostClick(std::int32_t x, std::int32_t y) const { ::PostMessageW(job.View(), WM_LBUTTONDOWN, MK_LBUTTON, Param(x, y)); }
    void Move(std::int32_t x, std::int32_t y) const { job.Send(job.View(), WM_MOUSEMOVE, 0, Param(x, y)); }
    COLORREF At(std::int32_t x, std::int32_t y) const {
        job.Paint();
        return PixelAt(job.View(), Client(x, y));
    }
    void PickLevelBars() const {
        for (const auto& [x, y] : {std::pair{277, 50}, {22, 50}, {277, 100}, {22, 100}}) {
            Click(x, y);
        }
    }
    /// The view as it is on the screen.
    std::vector<std::uint32_t> Screen() const {
        job.Paint();
        const RECT rc = test::ClientRect(job.View());
        BITMAPINFO info{};
        info.bmiHeader = {sizeof info.bmiHeader, rc.right, rc.bottom, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        const HDC hdc = ::GetDC(job.View());
        const HDC hdcMemory = ::CreateCompatibleDC(hdc);
        void* pBits = nullptr;
        const HBITMAP hBitmap = ::CreateDIBSection(hdc, &info, DIB_RGB_COLORS, &pBits, nullptr, 0);
        const HGDIOBJ hOld = ::SelectObject(hdcMemory, hBitmap);
        ::BitBlt(hdcMemory, 0, 0, rc.right, rc.bottom, hdc, 0, 0, SRCCOPY);
        ::GdiFlush();
        const auto* const pPixels = static_cast<const std::uint32_t*>(pBits);
        std::vector<std::uint32_t> pixels(pPixels, pPixels + rc.right * rc.bottom);
        ::SelectObject(hdcMemory, hOld);
        ::DeleteObject(hBitmap);
        ::DeleteDC(hdcMemory);
        ::ReleaseDC(job.View(), hdc);
        return pixels;
    }
    bool HasLabels(bool bExpected) const {
        return WaitFor([&] { return job.IsEnabled(ID_EDIT_UNDO) == bExpected; });
    }

    test::PluginJob job{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Languages, MeasureStates, testing::Values(WORD{0x0409}, WORD{0x0804}));

TEST_P(MeasureStates, LinesThatLeanApartAreRefusedInTheUsersLanguage) {
    Click(277, 50);
    Click(22, 50);
    Click(266, 131);
    PostClick(33, 189);
    EXPECT_EQ(AnswerBox(), GetParam() == 0x0804 ? L"\u8be5\u7ebf\u5bf9\u4e0d\u5e73\u884c,\u8bf7\u91cd\u65b0\u9009\u53d6"
                                                : L"The line pair is not paralleled,please reselect");
    EXPECT_EQ(At(277, 44), kWhite) << "the marks are gone";
    PickLevelBars();
    Click(150, 75);
    EXPECT_TRUE(HasLabels(true)) << "picking began anew";
}

TEST_P(MeasureStates, OneLineTwiceEndsWithoutAWord) {
    for (const auto& [x, y] : {std::pair{277, 50}, {22, 50}, {277, 50}, {22, 50}}) {
        Click(x, y);
    }
    EXPECT_EQ(PixelAt(job.View(), Client(22, 44)), kRed) << "the fourth mark stays until the next paint";
    Click(150, 75);
    EXPECT_TRUE(HasLabels(false));
}

TEST_P(MeasureStates, SquareAndRubberLabelRestoreEveryPixel) {
    const auto before = Screen();
    Move(60, 60);
    Move(150, 150);
    EXPECT_NE(Screen(), before);
    job.Send(job.View(), WM_MOUSEMOVE, 0, MAKELPARAM(-5, 5));  // out of the window
    EXPECT_EQ(Screen(), before);
    PickLevelBars();
    Move(90, 75);
    const auto one = Screen();
    Move(200, 10);
    Move(130, 199);
    EXPECT_NE(Screen(), one);
    Move(90, 75);
    EXPECT_EQ(Screen(), one);
    job.Send(job.View(), WM_RBUTTONDOWN, MK_RBUTTON, Param(5, 5));
    EXPECT_EQ(Screen(), before) << "repainted, the label still to be placed";
    Click(150, 75);
    EXPECT_TRUE(HasLabels(true));
}

TEST_P(MeasureStates, ANewSkeletonKeepsPicksButNotTheIds) {
    Click(277, 50);
    Click(22, 50);
    ChooseGreyWindow();
    EXPECT_EQ(At(150, 50), RGB(0, 0, 0)) << "neither line nor skeleton are shown";
    Click(277, 100);  // the map is still there, with its ids
    job.Command(ID_SKELETONIZE);
    EXPECT_EQ(At(150, 50), kGreen);
    Detect();
    job.Command(ID_TOOL_WIDTH_LABEL);
    // The third pick was of the second line's old id; the new lines have other ids.
    PostClick(22, 100);
    EXPECT_FALSE(AnswerBox().empty());
    Click(277, 100);
    Click(22, 100);
    Click(150, 75);
    EXPECT_TRUE(HasLabels(true)) << "the first line's picks went on";
    EXPECT_EQ(At(150, 75), kBlue);
}

TEST_P(MeasureStates, ZoomsWhileALabelWaitsLeaveItsPlaceOnTheScreen) {
    PickLevelBars();
    const POINT ptPlace = Client(150, 75);
    job.Command(ID_TOOL_ZOOM);
    Click(150, 75);
    ASSERT_TRUE(job.WaitForPane(2, GetParam() == 0x0804 ? L"\u7f29\u653e: 150%" : L"Zoom: 150%"));
    job.Command(ID_TOOL_WIDTH_LABEL);
    job.Paint();
    job.Send(job.View(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(ptPlace.x, ptPlace.y));
    job.Paint();
    EXPECT_EQ(PixelAt(job.View(), {ptPlace.x, ptPlace.y + 10}), kBlue);
    job.Command(ID_VIEW_ACTUAL_SIZE);
    EXPECT_EQ(At(20, 50), RGB(0, 0, 0)) << "at the line's old place nothing is drawn";
    EXPECT_TRUE(HasLabels(true));
}

TEST_P(MeasureStates, CommandsWhileAMessageIsOpenDoWhatTheyAlwaysDo) {
    Click(277, 50);
    PostClick(277, 100);
    const HWND hBox = test::WaitForWindow(0, L"#32770");
    ASSERT_NE(hBox, nullptr);
    job.Command(ID_SKELETONIZE);
    job.Command(ID_EDIT_UNDO);
    job.Command(ID_EDIT_REDO);
    Click(277, 50);
    Click(22, 50);
    job.Command(ID_VIEW_BEST_FIT);
    job.Command(ID_VIEW_ACTUAL_SIZE);
    test::PostCommand(hBox, IDOK);
    ASSERT_TRUE(WaitFor([&] { return ::IsWindow(hBox) == FALSE; }));
    EXPECT_TRUE(HasLabels(false));
    Click(277, 50);  // the first line was picked meanwhile, so this is the third end
    PostClick(277, 100);
    const HWND hNext = test::WaitForWindow(0, L"#32770");
    EXPECT_NE(hNext, nullptr);
    EXPECT_TRUE(job.Close()) << "with a box open";
}

TEST_P(MeasureStates, HundredsOfLinesWrapTheirIdsAndLabelsUndoInOrder) {
    job.Command(ID_TOOL_LINE_DETECT);
    for (int i = 0; i < 300; ++i) {
        Click(150 + i % 7, i % 2 == 0 ? 50 : 100);
    }
    job.Command(ID_TOOL_WIDTH_LABEL);
    for (const std::int32_t x : {60, 120, 180}) {
        PickLevelBars();
        Click(x, 75);
    }
    const auto shown = [&] {
        std::wstring text;
        for (const std::int32_t x : {60, 120, 180, 240}) {
            text += At(x, 60) == kBlue ? L'x' : L'.';
        }
        return text;
    };
    EXPECT_EQ(shown(), L"xxx.");
    job.Command(ID_EDIT_UNDO);
    job.Command(ID_EDIT_UNDO);
    EXPECT_EQ(shown(), L"x...");
    job.Command(ID_EDIT_REDO);
    EXPECT_EQ(shown(), L"xx..");
    PickLevelBars();
    Click(240, 75);
    EXPECT_EQ(shown(), L"xx.x") << "the third is gone for good";
    EXPECT_TRUE(WaitFor([&] { return job.IsEnabled(ID_EDIT_UNDO) && !job.IsEnabled(ID_EDIT_REDO); }));
}

TEST_P(MeasureStates, TheSameAgainLeavesNothingBehind) {
    const auto once = [&] {
        Detect();
        job.Command(ID_TOOL_WIDTH_LABEL);
        PickLevelBars();
        Move(100, 70);
        Click(150, 75);
        job.Command(ID_EDIT_UNDO);  // a label in the picture would join the bars
        ::PostMessageW(job.Frame(), WM_COMMAND, ID_WRITE_TO_BITMAP, 0);
        AnswerBox();
        ChooseGreyWindow();
        job.Command(ID_SKELETONIZE);
        job.Paint();
    };
    once();
    once();  // the system's own objects of a first time are there
    const std::size_t nObjects = test::CountGdiObjects();
    for (int i = 0; i < 12; ++i) {
        once();
    }
    EXPECT_LE(test::CountGdiObjects(), nObjects + 5) << "less than one each time";
    EXPECT_EQ(_heapchk(), _HEAPOK);
}

}  // namespace
}  // namespace width
