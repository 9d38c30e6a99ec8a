// What is on the screen, at the resolution of the system that the test runs on: nothing is cut, and everything can be reached in
// a narrow window too. scripts/check-screens runs it at several resolutions, and has it leave screenshots.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>
#include <string>
#include <utility>

#include "res/resource.h"
#include "tests/e2e/PluginJob.h"
#include "tests/support/Pictures.h"
#include "tests/support/TestPrinter.h"

namespace width {
namespace {

using test::ClientRect;
using test::PluginJob;
using test::WaitFor;

constexpr int kPreviewBar = 59394, kStatusBar = 59393;

int ScreenDpi() {
    const HDC hdc = ::GetDC(nullptr);
    const int nDpi = ::GetDeviceCaps(hdc, LOGPIXELSX);
    ::ReleaseDC(nullptr, hdc);
    return nDpi;
}

int Scaled(int n, int nDpi = ScreenDpi()) {
    return ::MulDiv(n, nDpi, 96);
}

/// Two bars at 300 dots per inch.
std::vector<std::byte> Bars() {
    test::DibBuilder builder(400, 300, 24);
    builder.SetResolution(11811, 11811);
    for (std::int32_t i = 0; i < 400 * 300; ++i) {
        const std::int32_t x = i % 400, y = i / 400;
        const bool bDark = x >= 60 && x < 340 && ((y >= 90 && y < 100) || (y >= 200 && y < 210));
        builder.SetPixel(x, y, bDark ? Colour{40, 40, 40} : Colour{235, 235, 235});
    }
    return builder.Block();
}

/// The room that a text takes in a control's font, access keys left out.
SIZE TextSize(HWND hWnd, const std::wstring& text) {
    const HDC hdc = ::GetDC(hWnd);
    const HGDIOBJ hOld = ::SelectObject(hdc, reinterpret_cast<HFONT>(::SendMessageW(hWnd, WM_GETFONT, 0, 0)));
    RECT rc{};
    ::DrawTextW(hdc, text.c_str(), -1, &rc, DT_CALCRECT | DT_SINGLELINE);
    ::SelectObject(hdc, hOld);
    ::ReleaseDC(hWnd, hdc);
    return {rc.right, rc.bottom};
}

std::wstring ClassOf(HWND hWnd) {
    wchar_t name[64] = {};
    ::GetClassNameW(hWnd, name, 64);
    return name;
}

/// What a button of a type needs beside its text, at 96 dots per inch: the box and its gap, or the edges.
int ButtonExtra(HWND hButton) {
    switch (::GetWindowLongPtrW(hButton, GWL_STYLE) & BS_TYPEMASK) {
        case BS_AUTOCHECKBOX:
        case BS_AUTORADIOBUTTON:
            return 17;
        case BS_GROUPBOX:
            return 18;
        default:
            return 6;
    }
}

/// Expects that the texts of all labels and buttons of a window fit into them, and those into the window.
void ExpectTextsFit(HWND hParent) {
    for (HWND hWnd = ::GetWindow(hParent, GW_CHILD); hWnd != nullptr; hWnd = ::GetWindow(hWnd, GW_HWNDNEXT)) {
        const std::wstring text = test::TextOf(hWnd);
        const bool bButton = ClassOf(hWnd) == L"Button";
        if (text.empty() || (!bButton && ClassOf(hWnd) != L"Static")) {
            continue;
        }
        const SIZE size = TextSize(hWnd, text);
        RECT rc{};
        ::GetWindowRect(hWnd, &rc);
        EXPECT_LE(size.cx + (bButton ? Scaled(ButtonExtra(hWnd)) : 0), rc.right - rc.left) << text;
        EXPECT_LE(size.cy, rc.bottom - rc.top) << text;
        RECT rcParent{};
        ::GetWindowRect(hParent, &rcParent);
        EXPECT_TRUE(::PtInRect(&rcParent, {rc.left, rc.top}) && rc.right <= rcParent.right && rc.bottom <= rcParent.bottom)
            << text;
    }
}

/// Expects that no two controls of a dialog lie on each other, groups left out.
void ExpectNoneOverlap(HWND hParent) {
    for (HWND hWnd = ::GetWindow(hParent, GW_CHILD); hWnd != nullptr; hWnd = ::GetWindow(hWnd, GW_HWNDNEXT)) {
        for (HWND hOther = ::GetWindow(hWnd, GW_HWNDNEXT); hOther != nullptr; hOther = ::GetWindow(hOther, GW_HWNDNEXT)) {
            const auto isGroup = [](HWND h) {
                return ClassOf(h) == L"Button" && (::GetWindowLongPtrW(h, GWL_STYLE) & BS_TYPEMASK) == BS_GROUPBOX;
            };
            RECT rc{}, rcOther{}, rcBoth{};
            ::GetWindowRect(hWnd, &rc);
            ::GetWindowRect(hOther, &rcOther);
            EXPECT_TRUE(isGroup(hWnd) || isGroup(hOther) || !::IntersectRect(&rcBoth, &rc, &rcOther))
                << test::TextOf(hWnd) << " on " << test::TextOf(hOther);
        }
    }
}

class Screen : public testing::TestWithParam<WORD> {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_printer.IsReady());
        ASSERT_NE(job.Start(Bars()), nullptr);
        ASSERT_TRUE(job.WaitForPane(1, L"400 x 300"));
    }
    bool IsChinese() const { return GetParam() == 0x0804; }

    /// Leaves a screenshot, if the caller of the program wants them.
    void Shoot(const char* pszName) const {
        const wchar_t* const pszFolder = ::_wgetenv(L"WIDTH_SHOTS");
        if (pszFolder != nullptr) {
            job.Paint();
            const std::string name(pszName);
            EXPECT_TRUE(test::SaveScreenshot(std::wstring(pszFolder) + L"\\screen-" + std::to_wstring(ScreenDpi()) +
                                             (IsChinese() ? L"-zh-" : L"-en-") + std::wstring(name.begin(), name.end()) +
                                             L".bmp"));
        }
    }
    /// A window with a client area this many pixels wide, as at 96 dots per inch.
    void MakeNarrow(int cx) const {
        ::ShowWindow(job.Frame(), SW_RESTORE);
        RECT rc{0, 0, Scaled(cx), Scaled(340)};
        ::AdjustWindowRectEx(&rc, static_cast<DWORD>(::GetWindowLongPtrW(job.Frame(), GWL_STYLE)), TRUE, 0);
        ::SetWindowPos(job.Frame(), nullptr, 0, 0, rc.right - rc.left, rc.bottom - rc.top, SWP_NOZORDER);
        job.Paint();
    }
    /// A child's rectangle in the frame's client area.
    RECT Place(HWND hWnd) const {
        RECT rc{};
        ::GetWindowRect(hWnd, &rc);
        ::MapWindowPoints(nullptr, job.Frame(), reinterpret_cast<POINT*>(&rc), 2);
        return rc;
    }
    std::vector<std::pair<UINT, RECT>> Buttons() const {
        std::vector<std::pair<UINT, RECT>> buttons;
        const auto nCount = static_cast<WPARAM>(::SendMessageW(job.ToolBar(), TB_BUTTONCOUNT, 0, 0));
        for (WPARAM i = 0; i < nCount; ++i) {
            TBBUTTON button{};
            RECT rc{};
            ::SendMessageW(job.ToolBar(), TB_GETBUTTON, i, reinterpret_cast<LPARAM>(&button));
            ::SendMessageW(job.ToolBar(), TB_GETITEMRECT, i, reinterpret_cast<LPARAM>(&rc));
            if ((button.fsStyle & BTNS_SEP) == 0) {
                buttons.emplace_back(static_cast<UINT>(button.idCommand), rc);
            }
        }
        return buttons;
    }
    void ExpectButtonsInTheirBar() const {
        const RECT rcBar = ClientRect(job.ToolBar());
        const auto buttons = Buttons();
        EXPECT_EQ(buttons.size(), 14U);
        for (const auto& [nId, rc] : buttons) {
            EXPECT_TRUE(rc.left >= 0 && rc.top >= 0 && rc.right <= rcBar.right && rc.bottom <= rcBar.bottom)
                << nId << ": " << rc.left << ',' << rc.top << ',' << rc.right << ',' << rc.bottom << " in a bar of "
                << rcBar.right << " x " << rcBar.bottom;
        }
        EXPECT_EQ(Place(job.ToolBar()).bottom, Place(job.View()).top);
        EXPECT_EQ(Place(job.ToolBar()).right, ClientRect(job.Frame()).right);
    }
    void ExpectPanesAt(int nDpi) const {
        const HWND hBar = ::GetDlgItem(job.Frame(), kStatusBar);
        ::UpdateWindow(hBar);  // which is when the control works out its panes' heights
        int edges[4] = {};
        ASSERT_EQ(::SendMessageW(hBar, SB_GETPARTS, 4, reinterpret_cast<LPARAM>(edges)), 4);
        EXPECT_NEAR(edges[1] - edges[0], Scaled(150, nDpi), Scaled(9, nDpi));
        EXPECT_NEAR(edges[2] - edges[1], Scaled(130, nDpi), Scaled(9, nDpi));
        EXPECT_NEAR(edges[3] - edges[2], Scaled(180, nDpi), Scaled(9, nDpi));
        const RECT rcBar = ClientRect(hBar);
        for (const auto& [nPane, text] :
             {std::pair<WPARAM, std::wstring>{1, L"60000 x 60000"},
              {2, IsChinese() ? L"缩放: 1600%" : L"Zoom: 1600%"},
              {3, IsChinese() ? L"BPP: 24, 分辨率: 11811 11811" : L"BPP: 24, Resolution: 11811 11811"}}) {
            RECT rc{};
            ::SendMessageW(hBar, SB_GETRECT, nPane, reinterpret_cast<LPARAM>(&rc));
            const SIZE size = TextSize(hBar, text);
            EXPECT_LE(size.cx + Scaled(4, nDpi), rc.right - rc.left) << text;
            EXPECT_LE(size.cy, rc.bottom - rc.top) << text;
            EXPECT_LE(rc.right, rcBar.right) << text;
            EXPECT_LE(rc.bottom, rcBar.bottom) << text;
        }
        EXPECT_EQ(job.Pane(3), IsChinese() ? L"BPP: 24, 分辨率: 11811 11811" : L"BPP: 24, Resolution: 11811 11811");
    }
    /// The pictures on the tool bar, square, in pixels.
    int PictureSize() const {
        int cx = 0, cy = 0;
        const auto hImages = reinterpret_cast<HIMAGELIST>(::SendMessageW(job.ToolBar(), TB_GETIMAGELIST, 0, 0));
        ::ImageList_GetIconSize(hImages, &cx, &cy);
        EXPECT_EQ(cx, cy);
        return cx;
    }
    HWND OpenDialog(UINT nCommand) const {
        ::PostMessageW(job.Frame(), WM_COMMAND, nCommand, 0);
        return test::WaitForWindow(0, L"#32770");
    }
    void CloseDialog(HWND hDlg) const {
        test::PostCommand(hDlg, IDCANCEL);
        EXPECT_TRUE(WaitFor([&] { return ::IsWindow(hDlg) == FALSE && ::IsWindowEnabled(job.Frame()) != FALSE; }));
    }

    test::TestPrinter m_printer;
    PluginJob job{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(In, Screen, testing::Values(WORD{0x0409}, WORD{0x0804}),
                         [](const auto& language) { return language.param == 0x0409 ? "en" : "zh"; });

TEST_P(Screen, BarsGoWithTheResolution) {
    ExpectPanesAt(ScreenDpi());
    ExpectButtonsInTheirBar();
    const int nPictures = PictureSize();
    EXPECT_EQ(nPictures, ScreenDpi() < 144 ? 16 : 32);
    const RECT rc = Buttons().front().second;
    EXPECT_EQ(rc.right - rc.left, nPictures + Scaled(7));
    EXPECT_EQ(rc.bottom - rc.top, nPictures + Scaled(6));
    Shoot("main");
}

TEST_P(Screen, NarrowWindowKeepsEveryCommand) {
    for (const int cx : {600, 330, 200, 130}) {
        SCOPED_TRACE(cx);
        MakeNarrow(cx);
        ExpectButtonsInTheirBar();
        if (cx == 200) {
            Shoot("narrow");
        }
    }
    for (const auto& [nId, rc] : Buttons()) {
        if (nId == ID_SEND_IMAGE) {
            job.Send(job.ToolBar(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM((rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2));
            job.Send(job.ToolBar(), WM_LBUTTONUP, 0, MAKELPARAM((rc.left + rc.right) / 2, (rc.top + rc.bottom) / 2));
        }
    }
    EXPECT_TRUE(WaitFor([&] { return !job.Events().empty(); })) << "Send Image is on the bar alone";
    MakeNarrow(900);
    EXPECT_EQ(Buttons().front().second.top, Buttons().back().second.top) << "one row again";
    ExpectButtonsInTheirBar();
}

TEST_P(Screen, PreviewBarKeepsItsButtonsInANarrowWindow) {
    job.Command(ID_FILE_PRINT_PREVIEW);
    const HWND hBar = ::GetDlgItem(job.Frame(), kPreviewBar);
    ASSERT_NE(hBar, nullptr);
    Shoot("preview");
    const auto top = [&](int nId) { return Place(::GetDlgItem(hBar, nId)).top; };
    EXPECT_EQ(top(ID_PREVIEW_PRINT), top(ID_PREVIEW_CLOSE));
    for (const int cx : {330, 250, 130}) {
        SCOPED_TRACE(cx);
        MakeNarrow(cx);
        ExpectTextsFit(hBar);
        ExpectNoneOverlap(hBar);
        EXPECT_EQ(Place(hBar).bottom, Place(job.View()).top);
        if (cx == 250) {
            Shoot("preview-narrow");
        }
    }
    EXPECT_LT(top(ID_PREVIEW_PRINT), top(ID_PREVIEW_CLOSE));
    MakeNarrow(600);
    EXPECT_EQ(top(ID_PREVIEW_PRINT), top(ID_PREVIEW_CLOSE)) << "one row again";
    job.Send(job.Frame(), WM_CLOSE, 0);
}

TEST_P(Screen, TextsOfAllDialogsFit) {
    for (const auto& [nCommand, pszName] :
         {std::pair{ID_BINARY_SETTING, "binary"}, {ID_LABEL_SETTING, "label"}, {ID_LINE_SETTING, "line"}, {ID_ABOUT, "about"}}) {
        SCOPED_TRACE(pszName);
        const HWND hDlg = OpenDialog(static_cast<UINT>(nCommand));
        ASSERT_NE(hDlg, nullptr);
        ExpectTextsFit(hDlg);
        ExpectNoneOverlap(hDlg);
        Shoot(pszName);
        CloseDialog(hDlg);
    }
}

// The box of a print run and what the plug-in adds to the save dialog, which come and go in others' hands.
TEST_P(Screen, TextsOfTheTemplatesForTheSystemsDialogsFit) {
    const HWND hParent = ::CreateWindowExW(0, L"Static", L"", WS_POPUP, 0, 0, 900, 700, nullptr, nullptr, nullptr, nullptr);
    for (const int nTemplate :
         IsChinese() ? std::array{IDD_PRINTING_ZH, IDD_SAVE_ZH} : std::array{IDD_PRINTING_EN, IDD_SAVE_EN}) {
        const auto procedure = [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; };
        const HWND hDlg =
            ::CreateDialogParamW(::GetModuleHandleW(L"width.dll"), MAKEINTRESOURCEW(nTemplate), hParent, procedure, 0);
        ASSERT_NE(hDlg, nullptr);
        ExpectTextsFit(hDlg);
        ExpectNoneOverlap(hDlg);
        ::DestroyWindow(hDlg);
    }
    ::DestroyWindow(hParent);
}

// As in a program whose windows follow the monitor that they are on.
TEST_P(Screen, WindowThatComesToAnotherMonitorTakesItsResolution) {
    for (const int nDpi : {192, 144, 96}) {
        SCOPED_TRACE(nDpi);
        const RECT rcSuggested{10, 20, 1010, 680};
        ::ShowWindow(job.Frame(), SW_RESTORE);
        job.Send(job.Frame(), WM_DPICHANGED, static_cast<WPARAM>(MAKELONG(nDpi, nDpi)), reinterpret_cast<LPARAM>(&rcSuggested));
        RECT rc{};
        ::GetWindowRect(job.Frame(), &rc);
        EXPECT_TRUE(::EqualRect(&rc, &rcSuggested));
        ExpectPanesAt(nDpi);
        ExpectButtonsInTheirBar();
        EXPECT_EQ(PictureSize(), nDpi < 144 ? 16 : 32);
        EXPECT_TRUE(WaitFor([&] { return !job.IsEnabled(ID_EDIT_UNDO) && job.IsEnabled(ID_SEND_IMAGE); }));
    }
}

}  // namespace
}  // namespace width
