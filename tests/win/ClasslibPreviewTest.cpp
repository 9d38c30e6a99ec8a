// What a preview is made of: the size of its sheet, its context, and the bar above.
#include <gtest/gtest.h>

#include "classlib/PreviewView.h"
#include "tests/support/WinDriver.h"
#include "tests/win/ClasslibWindows.h"

namespace width::test {

TEST(Preview, SheetFitsTheRoomAndGrowsToItsTrueSizeOrTwofold) {
    const auto size = [](PreviewZoom zoom, SIZE sizeRoom, SIZE sizeTrue) {
        const SIZE sheet = PreviewSheetSize(zoom, sizeRoom, sizeTrue);
        return std::pair(sheet.cx, sheet.cy);
    };
    using Pair = std::pair<LONG, LONG>;
    constexpr SIZE kPortrait{800, 1000}, kLandscape{1000, 800};
    EXPECT_EQ(size(PreviewZoom::WholePage, {900, 250}, kPortrait), Pair(200, 250)) << "height decides";
    EXPECT_EQ(size(PreviewZoom::WholePage, {250, 900}, kLandscape), Pair(250, 200)) << "width decides";
    EXPECT_EQ(size(PreviewZoom::Between, {900, 250}, kPortrait), Pair(500, 625));
    EXPECT_EQ(size(PreviewZoom::Close, {900, 250}, kPortrait), Pair(800, 1000)) << "true size";
    EXPECT_EQ(size(PreviewZoom::Close, {900, 750}, kPortrait), Pair(1200, 1500)) << "twice the whole page";
    EXPECT_EQ(size(PreviewZoom::WholePage, {4000, 2000}, kPortrait), Pair(1600, 2000)) << "a large screen";
    EXPECT_EQ(size(PreviewZoom::WholePage, {-5, 0}, kPortrait), Pair(1, 1)) << "a window without room";
}

TEST(Preview, ContextAnswersForThePrinterAndDrawsOnTheSheet) {
    const CClientDC printer(nullptr);  // any device will do: the sheet is its surface
    const int cx = printer.GetDeviceCaps(HORZRES), cy = printer.GetDeviceCaps(VERTRES);
    const RECT rcSheet{10, 20, 10 + cx / 4, 20 + cy / 4};
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, cx, -cy, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* pBits = nullptr;
    CDC screen;
    CBitmap bitmap;
    screen.CreateCompatibleDC(nullptr);
    ASSERT_TRUE(bitmap.CreateDIBSection(&info, &pBits));
    const CSelectGuard selected(screen, bitmap);
    {
        CPreviewDC dc;
        dc.SetAttribDC(printer);
        dc.SetOutputDC(screen, rcSheet);
        EXPECT_TRUE(dc.IsPrinting());
        EXPECT_EQ(dc.GetDeviceCaps(HORZRES), cx);
        dc.FillSolidRect({400, 400, 800, 600}, RGB(255, 0, 0));
        dc.FillSolidRect({-100, -100, 40, 40}, RGB(0, 255, 0));  // only what lies on the printable area
    }
    ::SetMapMode(screen, MM_TEXT);
    screen.SetViewportOrg(0, 0);
    ::SetWindowOrgEx(screen, 0, 0, nullptr);
    ::SelectClipRgn(screen, nullptr);
    EXPECT_EQ(screen.GetPixel(10 + 100, 20 + 100), RGB(255, 0, 0));
    EXPECT_EQ(screen.GetPixel(10 + 199, 20 + 149), RGB(255, 0, 0));
    EXPECT_EQ(screen.GetPixel(10 + 99, 20 + 100), RGB(0, 0, 0));
    EXPECT_EQ(screen.GetPixel(10 + 200, 20 + 149), RGB(0, 0, 0));
    EXPECT_EQ(screen.GetPixel(10, 20), RGB(0, 255, 0));
    EXPECT_EQ(screen.GetPixel(9, 20), RGB(0, 0, 0));
    EXPECT_EQ(screen.GetPixel(10, 19), RGB(0, 0, 0));
}

TEST(DialogBar, TakesItsStripAndGivesCommandsToTheFrame) {
    const TestApp app;
    HWND hBar = nullptr;
    int nHeight = 0;
    app.Run([&](TestFrame& frame, TestView&) {
        auto* const pBar = new CDialogBar;
        pBar->m_bAutoDelete = true;
        EXPECT_FALSE(pBar->Create(&frame, 77, CBRS_TOP, AFX_IDW_PREVIEW_BAR)) << "no such template";
        ASSERT_TRUE(pBar->Create(&frame, 1, CBRS_TOP, AFX_IDW_PREVIEW_BAR));
        hBar = *pBar;
        nHeight = pBar->LayOutItems(1000);
        frame.RecalcLayout();
    });
    EXPECT_EQ(::GetDlgItem(app.hFrame, AFX_IDW_PREVIEW_BAR), hBar);
    RECT rcBar{}, rcView{}, rcTools{};
    ::GetWindowRect(hBar, &rcBar);
    ::GetWindowRect(app.hView, &rcView);
    ::GetWindowRect(app.hToolBar, &rcTools);
    EXPECT_GT(nHeight, 20);
    EXPECT_EQ(rcBar.bottom - rcBar.top, nHeight);
    EXPECT_EQ(rcBar.right - rcBar.left, rcView.right - rcView.left);
    EXPECT_EQ(rcView.top, std::max(rcBar.bottom, rcTools.bottom));

    const auto isEnabled = [&](int nID) { return ::IsWindowEnabled(::GetDlgItem(hBar, nID)) != FALSE; };
    EXPECT_TRUE(app.IdleUntil([&] { return isEnabled(kView) && !isEnabled(kDisabled) && !isEnabled(kNobody); }));
    EXPECT_TRUE(isEnabled(99)) << "a text is no command";
    ::PostMessageW(hBar, WM_COMMAND, MAKEWPARAM(kDisabled, BN_CLICKED), reinterpret_cast<LPARAM>(::GetDlgItem(hBar, kDisabled)));
    ::PostMessageW(::GetDlgItem(hBar, kView), BM_CLICK, 0, 0);
    EXPECT_TRUE(WaitFor([&] { return app.log.Has("view's"); }));
    EXPECT_FALSE(app.log.Has("disabled ran"));
}

TEST(Frame, MessageStringGoesToThePaneWithoutId) {
    const TestApp app;
    app.Run([&](TestFrame& frame, TestView&) {
        EXPECT_EQ(frame.SendMessage(WM_SETMESSAGESTRING, kView), 0) << "no pane takes it";
        constexpr UINT kIds[] = {0, 12};
        AfxSetResourceHandle(::GetModuleHandleW(nullptr));
        frame.m_wndStatusBar.SetIndicators(kIds);
        EXPECT_EQ(frame.SendMessage(WM_SETMESSAGESTRING, kView), static_cast<LRESULT>(kView));
        EXPECT_EQ(frame.m_wndStatusBar.GetPaneText(0), L"First");
        frame.SendMessage(WM_SETMESSAGESTRING, 0, reinterpret_cast<LPARAM>(L"text"));
        EXPECT_EQ(frame.m_wndStatusBar.GetPaneText(0), L"text");
        EXPECT_EQ(frame.m_wndStatusBar.GetPaneText(1), L"w");
    });
}

}  // namespace width::test
