// Handles, threads, frames and commands of classlib, on real windows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/WinDriver.h"
#include "tests/win/ClasslibWindows.h"

namespace width::test {

using ::testing::ElementsAre;

TEST(Gdi, OwnersReleaseWhatTheyMakeAndGuardsPutBack) {
    const CClientDC screen(nullptr);
    const auto drawOnce = [&] {
        CDC dc;
        dc.CreateCompatibleDC(screen);
        CBitmap bitmap;
        bitmap.CreateCompatibleBitmap(screen, 20, 20);
        const CSelectGuard inBitmap(dc, bitmap);
        const HGDIOBJ hPenBefore = ::GetCurrentObject(dc, OBJ_PEN);
        {
            const CPen pen(PS_SOLID, 1, RGB(255, 0, 0));
            const CSelectGuard inPen(dc, pen);
            const CSaveDC modes(dc);
            dc.SetROP2(R2_NOTXORPEN);
            dc.MoveTo(2, 3);
            dc.LineTo(9, 3);
        }
        EXPECT_EQ(::GetCurrentObject(dc, OBJ_PEN), hPenBefore);
        EXPECT_EQ(::GetROP2(dc), R2_COPYPEN);
        CFont font;
        EXPECT_TRUE(font.CreatePointFont(100, L"Times New Roman"));
        CFont moved(std::move(font));
        moved = CFont();
        const LOGPALETTE black{0x300, 1, {{0, 0, 0, 0}}};
        CPalette palette;
        EXPECT_TRUE(palette.CreatePalette(&black));
        EXPECT_EQ(palette.GetNearestPaletteIndex(RGB(9, 9, 9)), 0U);
    };
    drawOnce();
    const std::size_t nBefore = CountGdiObjects();
    for (int i = 0; i < 500; ++i) {
        drawOnce();
    }
    EXPECT_EQ(CountGdiObjects(), nBefore);
}

TEST(Gdi, PointFontHasItsHeightInPixelsOfTheScreen) {
    CFont font;
    ASSERT_TRUE(font.CreatePointFont(100, L"Times New Roman"));
    LOGFONTW logFont{};
    ASSERT_TRUE(font.GetLogFont(&logFont));
    EXPECT_EQ(logFont.lfHeight, -::MulDiv(100, CClientDC(nullptr).GetDeviceCaps(LOGPIXELSY), 720));
    EXPECT_STREQ(logFont.lfFaceName, L"Times New Roman");
}

TEST(Thread, EndsInOrderWhenTheMainWindowCloses) {
    TestApp app;
    ASSERT_NE(app.hView, nullptr);
    EXPECT_EQ(TextOf(app.hFrame), L"宽度 Frame");
    EXPECT_TRUE(app.Close());
    EXPECT_THAT(app.log.All(), ElementsAre("init", "initial update", "shown", "frame gone", "view gone", "exit", "thread gone"));
}

TEST(Thread, FailedStartsStillExitAndLeaveNoWindow) {
    StartOptions noMenu;
    noMenu.nIDResource = kBadFrame;
    StartOptions throwsInCreate;
    throwsInCreate.bThrowInCreate = true;
    for (const StartOptions& options : {noMenu, throwsInCreate}) {
        const TestApp app(options);
        EXPECT_TRUE(app.WaitForEnd());
        EXPECT_THAT(app.log.All(), ElementsAre("init", "frame gone", "view gone", "exit", "thread gone"));
        EXPECT_EQ(app.hFrame, nullptr);
    }
    StartOptions throwsInInit;
    throwsInInit.bThrowInInit = true;
    const TestApp app(throwsInInit);
    EXPECT_TRUE(app.WaitForEnd());
    EXPECT_THAT(app.log.All(), ElementsAre("init", "initial update", "frame gone", "view gone", "exit", "thread gone"));
}

// The system makes some objects of its own once, when they are first painted with; what a run leaves behind comes with every run.
TEST(Thread, RepeatedRunsLeaveNothingBehind) {
    constexpr std::size_t kRuns = 10;
    { const TestApp warmUp; }
    const std::size_t nGdi = CountGdiObjects();
    const std::size_t nUser = CountUserObjects();
    for (std::size_t i = 0; i < kRuns; ++i) {
        const TestApp app;
        EXPECT_NE(app.hFrame, nullptr);
    }
    EXPECT_LT(CountGdiObjects(), nGdi + kRuns);
    EXPECT_TRUE(WaitFor([&] { return CountUserObjects() < nUser + kRuns; })) << "others on the desktop have theirs too";
}

TEST(Frame, LaysOutBarsAndPaneAndSwapsThemForAPreview) {
    const TestApp app;
    const auto topAndBottom = [&](HWND hWnd) {
        RECT rc{};
        ::GetWindowRect(hWnd, &rc);
        ::MapWindowPoints(nullptr, app.hFrame, reinterpret_cast<POINT*>(&rc), 2);
        return std::pair(rc.top, rc.bottom);
    };
    RECT rcFrame{};
    ::GetClientRect(app.hFrame, &rcFrame);
    EXPECT_EQ(topAndBottom(app.hToolBar), std::pair(0L, 28L));
    EXPECT_EQ(topAndBottom(app.hStatusBar), std::pair(rcFrame.bottom - 20, rcFrame.bottom));
    EXPECT_EQ(topAndBottom(app.hView), std::pair(28L, rcFrame.bottom - 20));

    CPrintPreviewState state;
    app.Run([&](TestFrame& frame, TestView&) {
        frame.OnSetPreviewMode(true, &state);
        EXPECT_EQ(frame.GetDlgItem(AFX_IDW_PANE_FIRST), nullptr);
        EXPECT_EQ(::GetMenu(frame), nullptr);
        frame.OnSetPreviewMode(false, &state);
        frame.m_wndToolBar.ShowWindow(SW_HIDE);
        frame.RecalcLayout();
    });
    EXPECT_NE(::GetMenu(app.hFrame), nullptr);
    ::GetClientRect(app.hFrame, &rcFrame);
    EXPECT_EQ(topAndBottom(app.hView), std::pair(0L, rcFrame.bottom - 20));
    EXPECT_TRUE(::IsWindowVisible(app.hStatusBar));
}

TEST(Frame, ObjectOutlivesAHandlerThatClosesIt) {
    const TestApp app;
    PostCommand(app.hFrame, kCloseInside);
    ASSERT_TRUE(app.WaitForEnd());
    const auto events = app.log.All();
    ASSERT_GE(events.size(), 4U);
    EXPECT_THAT(std::vector(events.begin() + 3, events.end()),
                ElementsAre("still valid", "frame gone", "view gone", "exit", "thread gone"));
}

TEST(Frame, ExceptionsEndAtTheWindowProcedure) {
    const TestApp app;
    PostCommand(app.hFrame, kThrow);
    app.Run([](TestFrame&, TestView& view) {
        view.m_bThrowInPaint = true;
        view.m_nPaints = 0;
        view.Invalidate();
    });
    int nPaints = 0;
    EXPECT_TRUE(WaitFor([&] {
        app.Run([&](TestFrame&, TestView& view) { nPaints = view.m_nPaints; });
        return nPaints > 0;
    }));
    PostCommand(app.hFrame, kView);
    EXPECT_TRUE(app.IdleUntil([&] { return app.log.Has("view's"); }));
    app.Run([&](TestFrame&, TestView& view) { nPaints = view.m_nPaints; });
    EXPECT_EQ(nPaints, 1) << "a paint that threw comes again";
}

TEST(Wnd, ObjectAndWindowAreBoundPerThreadAndPart) {
    const TestApp app;
    EXPECT_EQ(CWnd::FromHandle(app.hView), nullptr) << "another thread's window";
    app.Run([](TestFrame& frame, TestView& view) {
        EXPECT_EQ(CWnd::FromHandle(view), &view);
        EXPECT_EQ(view.GetParentFrame(), &frame);
        const HWND hBar = frame.m_wndToolBar.UnsubclassWindow();
        EXPECT_EQ(CWnd::FromHandle(hBar), nullptr);
        EXPECT_TRUE(frame.m_wndToolBar.SubclassWindow(hBar));
        EXPECT_FALSE(frame.m_wndStatusBar.SubclassWindow(hBar)) << "a window has one object";
    });
    CToolBar without;
    EXPECT_FALSE(without.PostMessage(WM_NULL));
    EXPECT_FALSE(without.LoadToolBar(1));
    EXPECT_EQ(CClientDC(&without).m_hDC, nullptr) << "must not become the screen";
}

TEST(Commands, MenuShowsStateAndOnlyEnabledOnesRun) {
    const TestApp app;
    const HMENU hMenu = ::GetSubMenu(::GetMenu(app.hFrame), 0);
    ::SendMessageW(app.hFrame, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(hMenu), 0);
    const auto state = [&](UINT nID) { return ::GetMenuState(hMenu, nID, MF_BYCOMMAND); };
    EXPECT_EQ(state(kView), 0U);
    EXPECT_EQ(state(kDisabled), static_cast<UINT>(MF_GRAYED)) << "the view says no, the frame behind it is not asked";
    EXPECT_EQ(state(kNobody), static_cast<UINT>(MF_GRAYED));
    EXPECT_EQ(state(kMarked), static_cast<UINT>(MF_CHECKED));
    wchar_t szText[64]{};
    ::GetMenuStringW(hMenu, kRenamed, szText, 64, MF_BYCOMMAND);
    EXPECT_STREQ(szText, L"New name");

    for (const UINT nID : {kDisabled, kNobody, kBoth, kView}) {
        PostCommand(app.hFrame, nID);
    }
    EXPECT_TRUE(WaitFor([&] { return app.log.Has("view's"); }));
    EXPECT_TRUE(app.log.Has("both's in view"));
    EXPECT_FALSE(app.log.Has("both's in frame"));
    EXPECT_FALSE(app.log.Has("disabled ran"));
}

TEST(Commands, IdleTimeBringsButtonsAndPanesUpToDate) {
    const TestApp app;
    const auto buttonState = [&](UINT nID) { return ::SendMessageW(app.hToolBar, TB_GETSTATE, nID, 0); };
    EXPECT_TRUE(app.IdleUntil([&] { return buttonState(kMarked) == (TBSTATE_ENABLED | TBSTATE_CHECKED); }));
    EXPECT_EQ(buttonState(kView), TBSTATE_ENABLED);
    EXPECT_EQ(buttonState(kDisabled), 0);
    EXPECT_EQ(buttonState(kNobody), 0);
    EXPECT_EQ(::SendMessageW(app.hToolBar, TB_BUTTONCOUNT, 0, 0), 5);

    const auto paneText = [&](WPARAM nPane) {
        wchar_t szText[128]{};
        ::SendMessageW(app.hStatusBar, SB_GETTEXTW, nPane, reinterpret_cast<LPARAM>(szText));
        return std::wstring(szText);
    };
    EXPECT_TRUE(app.IdleUntil([&] { return paneText(0) == L"first" && paneText(1) == L"second"; }));
    app.Run([](TestFrame&, TestView& view) { view.m_paneText = L"路径"; });
    EXPECT_TRUE(app.IdleUntil([&] { return paneText(0) == L"路径"; }));
}

TEST(Commands, PanesFillTheBarAndTheFirstStretches) {
    const TestApp app;
    const auto edges = [&] {
        int right[2]{};
        ::SendMessageW(app.hStatusBar, SB_GETPARTS, 2, reinterpret_cast<LPARAM>(right));
        return std::pair(right[0], right[1]);
    };
    const auto before = edges();
    EXPECT_GT(before.second - before.first, 150);
    ::SetWindowPos(app.hFrame, nullptr, 0, 0, 700, 400, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_EQ(edges(), std::pair(before.first + 100, before.second + 100));
    EXPECT_EQ(::GetWindowLongPtrW(app.hStatusBar, GWL_STYLE) & SBARS_SIZEGRIP, SBARS_SIZEGRIP);
}

TEST(Commands, TipsAreAskedForInBothForms) {
    const TestApp app;
    const auto hTips = reinterpret_cast<HWND>(::SendMessageW(app.hToolBar, TB_GETTOOLTIPS, 0, 0));
    ASSERT_NE(hTips, nullptr);
    wchar_t szText[80]{};
    TTTOOLINFOW tool{};
    tool.cbSize = sizeof tool;
    tool.hwnd = app.hToolBar;
    tool.uId = kView;
    tool.lpszText = szText;
    ::SendMessageW(hTips, TTM_GETTEXTW, 80, reinterpret_cast<LPARAM>(&tool));
    EXPECT_STREQ(szText, L"First");

    NMTTDISPINFOA narrow{};
    narrow.hdr.code = TTN_NEEDTEXTA;
    narrow.hdr.idFrom = kView;
    ::SendMessageW(app.hFrame, WM_NOTIFY, kView, reinterpret_cast<LPARAM>(&narrow));
    EXPECT_STREQ(narrow.szText, "narrow");
    narrow.szText[0] = '\0';
    ::SendMessageW(app.hFrame, WM_NOTIFY, kNobody, reinterpret_cast<LPARAM>(&narrow));
    EXPECT_STREQ(narrow.szText, "") << "not handled, goes on to the system";
}

TEST(Driver, ScreenshotShowsTheWindowsOnTheScreen) {
    const TestApp app;
    const std::wstring path = L"classlib_test.bmp";
    ASSERT_TRUE(SaveScreenshot(path));
    const HANDLE hImage = ::LoadImageW(nullptr, path.c_str(), IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE | LR_CREATEDIBSECTION);
    CBitmap picture;
    ASSERT_TRUE(picture.Attach(static_cast<HBITMAP>(hImage)));
    CDC dc;
    dc.CreateCompatibleDC(nullptr);
    const CSelectGuard selected(dc, picture);
    POINT ptTool{300, 10};  // right of the buttons, in the tool bar's own colour
    ::ClientToScreen(app.hToolBar, &ptTool);
    EXPECT_EQ(dc.GetPixel(ptTool.x, ptTool.y), ::GetSysColor(COLOR_BTNFACE));
    ::DeleteFileW(path.c_str());
}

}  // namespace width::test
