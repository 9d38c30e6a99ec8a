// Printing and print preview of a running job: a page on paper, as another program sees it, and the page on the screen.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <functional>
#include <string>
#include <utility>

#include "res/resource.h"
#include "tests/e2e/PluginJob.h"
#include "tests/support/Pictures.h"
#include "tests/support/TestPrinter.h"

namespace width {
namespace {

using test::ClientRaster;
using test::DibBuilder;
using test::PluginJob;
using test::Raster;
using test::TestPrinter;
using test::WaitFor;

constexpr WORD kEnglish = 0x0409;
constexpr WORD kChinese = 0x0804;
constexpr UINT_PTR kPane = 59648;
constexpr UINT kPreviewBar = 59394, kStatusBar = 59393;
constexpr int kPaneSize = 1, kPaneZoom = 2;
constexpr COLORREF kWhite = RGB(255, 255, 255);

bool IsInk(COLORREF clr) {
    return clr != kWhite;
}

COLORREF At(const DibView& dib, std::int32_t x, std::int32_t y) {
    const Colour colour = dib.PixelAt(x, dib.Height() - 1 - y);
    return RGB(colour.red, colour.green, colour.blue);
}

/// A picture without white, of which no row and no column is like its neighbour.
std::vector<std::byte> Patchwork(std::int32_t nWidth, std::int32_t nHeight, std::uint16_t nBits = 24) {
    DibBuilder builder(nWidth, nHeight, nBits);
    for (std::int32_t s = 0; s < nHeight; ++s) {
        for (std::int32_t x = 0; x < nWidth; ++x) {
            builder.SetPixel(x, s,
                             {static_cast<std::uint8_t>(x * 37 % 200), static_cast<std::uint8_t>(s * 53 % 200),
                              static_cast<std::uint8_t>((x + s) % 2 * 150)});
        }
    }
    return builder.Block();
}

std::vector<std::byte> FiveColours() {
    DibBuilder builder(40, 30, 4, 5);
    constexpr Colour kColours[] = {{0, 0, 0}, {200, 0, 0}, {0, 200, 0}, {0, 0, 200}, {120, 130, 140}};
    for (std::size_t i = 0; i < std::size(kColours); ++i) {
        builder.SetColour(i, kColours[i]);
    }
    return builder.Fill([](std::int32_t x, std::int32_t s) { return static_cast<std::uint32_t>((x + 2 * s) % 5); }).Block();
}

/// Where a picture has to lie on the paper of the test printer.
RECT ExpectedOnPaper(const DibView& dib) {
    const HDC hdc = ::GetDC(nullptr);
    const int nScreen = ::GetDeviceCaps(hdc, LOGPIXELSX);
    ::ReleaseDC(nullptr, hdc);
    const RECT& rcPage = TestPrinter::kPrintable;
    const int cxPage = rcPage.right - rcPage.left, cyPage = rcPage.bottom - rcPage.top;
    const int cxFull = ::MulDiv(dib.Width(), TestPrinter::kDpi, nScreen),
              cyFull = ::MulDiv(dib.Height(), TestPrinter::kDpi, nScreen);
    const double dScale = std::min({1.0, static_cast<double>(cxPage) / cxFull, static_cast<double>(cyPage) / cyFull});
    const int cx = static_cast<int>(cxFull * dScale), cy = static_cast<int>(cyFull * dScale);
    const LONG x = rcPage.left + (cxPage - cx) / 2, y = rcPage.top + (cyPage - cy) / 2;
    return {x, y, x + cx, y + cy};
}

/// Starts a job and waits until its picture has arrived.
bool StartWith(PluginJob& job, const std::vector<std::byte>& block) {
    const DibView dib = *DibView::Open(block);
    const std::wstring size = std::to_wstring(dib.Width()) + L" x " + std::to_wstring(dib.Height());
    return job.Start(block) != nullptr && job.WaitForPane(kPaneSize, size);
}

/// Gives the print command and answers the dialog.
void PrintWithDialog(const PluginJob& job, UINT nAnswer = IDOK) {
    ::PostMessageW(job.Frame(), WM_COMMAND, ID_FILE_PRINT, 0);
    const HWND hDlg = test::WaitForWindow(0, L"#32770");
    ASSERT_NE(hDlg, nullptr);
    test::PostCommand(hDlg, nAnswer);
    ASSERT_TRUE(WaitFor([&] { return ::IsWindow(hDlg) == FALSE; }));
}

/// Looks at what happens to windows of a job's thread, on that thread, at the moment it happens.
class WindowHook {
public:
    /// onCreate gets each window before it is there and may refuse it; onActivate each one that becomes active.
    explicit WindowHook(const PluginJob& job, std::function<bool(const CREATESTRUCTW&)> onCreate,
                        std::function<void(HWND)> onActivate = nullptr) {
        s_onCreate = std::move(onCreate);
        s_onActivate = std::move(onActivate);
        m_hHook = ::SetWindowsHookExW(WH_CBT, Procedure, nullptr, ::GetWindowThreadProcessId(job.Frame(), nullptr));
    }
    WindowHook(const WindowHook&) = delete;
    WindowHook& operator=(const WindowHook&) = delete;
    ~WindowHook() { ::UnhookWindowsHookEx(m_hHook); }

private:
    static LRESULT CALLBACK Procedure(int nCode, WPARAM wParam, LPARAM lParam) {
        if (nCode == HCBT_CREATEWND && s_onCreate && !s_onCreate(*reinterpret_cast<const CBT_CREATEWNDW*>(lParam)->lpcs)) {
            return 1;
        }
        if (nCode == HCBT_ACTIVATE && s_onActivate) {
            s_onActivate(reinterpret_cast<HWND>(wParam));
        }
        return ::CallNextHookEx(nullptr, nCode, wParam, lParam);
    }
    inline static std::function<bool(const CREATESTRUCTW&)> s_onCreate;
    inline static std::function<void(HWND)> s_onActivate;
    HHOOK m_hHook = nullptr;
};

/// What the box of a print run says, taken when it comes up; a message is then posted to a window.
struct BoxAnswer {
    std::atomic<int> nSeen{0};
    std::wstring title, document, printer, cancel;
    bool bFrameEnabled = true;

    void Answer(HWND hWnd, HWND hFrame, UINT message) {
        if (::GetDlgItem(hWnd, IDC_PRINT_PRINTER) == nullptr || nSeen > 0) {
            return;
        }
        title = test::TextOf(hWnd);
        document = test::TextOf(::GetDlgItem(hWnd, IDC_PRINT_DOCUMENT));
        printer = test::TextOf(::GetDlgItem(hWnd, IDC_PRINT_PRINTER));
        cancel = test::TextOf(::GetDlgItem(hWnd, IDCANCEL));
        bFrameEnabled = ::IsWindowEnabled(hFrame) != FALSE;
        ::PostMessageW(message == WM_COMMAND ? hWnd : hFrame, message, IDCANCEL, 0);
        ++nSeen;
    }
};

/// A message box; other dialogs may come and go before it.
HWND WaitForMessage() {
    HWND hBox = nullptr;
    WaitFor([&] {
        hBox = test::FindTopWindow(0, L"#32770");
        return hBox != nullptr && ::GetDlgItem(hBox, IDC_PRINT_PRINTER) == nullptr && !test::MessageBoxText(hBox).empty();
    });
    return hBox;
}

HWND FocusOf(const PluginJob& job) {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    ::GetGUIThreadInfo(::GetWindowThreadProcessId(job.Frame(), nullptr), &info);
    return info.hwndFocus;
}

class PrintTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_printer.IsReady()); }

    TestPrinter m_printer;
};

// The picture's rectangle and the middle of each of its pixels.
void ExpectPictureOnPaper(const Raster& page, const DibView& dib) {
    ASSERT_EQ(page.nWidth, TestPrinter::kPaper.cx);
    ASSERT_EQ(page.nHeight, TestPrinter::kPaper.cy);
    const RECT rc = page.Box(IsInk);
    const RECT rcExpected = ExpectedOnPaper(dib);
    EXPECT_EQ(rc.left, rcExpected.left);
    EXPECT_EQ(rc.top, rcExpected.top);
    EXPECT_EQ(rc.right, rcExpected.right);
    EXPECT_EQ(rc.bottom, rcExpected.bottom);
    const double cx = static_cast<double>(rcExpected.right - rcExpected.left) / dib.Width();
    const double cy = static_cast<double>(rcExpected.bottom - rcExpected.top) / dib.Height();
    if (cx < 1 || cy < 1) {
        return;  // which pixels of a reduced picture are kept is the renderer's business
    }
    for (std::int32_t y = 0; y < dib.Height(); ++y) {
        for (std::int32_t x = 0; x < dib.Width(); ++x) {
            const int xPaper = rcExpected.left + static_cast<int>((x + 0.5) * cx);
            const int yPaper = rcExpected.top + static_cast<int>((y + 0.5) * cy);
            ASSERT_EQ(page.At(xPaper, yPaper), At(dib, x, y)) << x << ',' << y;
        }
    }
}

TEST_F(PrintTest, APageComesOutWithThePictureInItsPlace) {
    for (const std::vector<std::byte>& block :
         {Patchwork(96, 61), FiveColours(), Patchwork(1100, 60), Patchwork(30, 1500), Patchwork(64, 64, 32)}) {
        const DibView dib = *DibView::Open(block);
        SCOPED_TRACE(std::to_string(dib.Width()) + " x " + std::to_string(dib.Height()));
        m_printer.DeleteOutput();
        PluginJob job(kEnglish);
        ASSERT_TRUE(StartWith(job, block));
        PrintWithDialog(job);
        ASSERT_TRUE(m_printer.WaitForDocument());
        EXPECT_TRUE(WaitFor([&] { return ::IsWindowEnabled(job.Frame()) != FALSE; }));
        const auto page = m_printer.RenderPage();
        ASSERT_TRUE(page.has_value());
        ExpectPictureOnPaper(*page, dib);
    }
}

TEST_F(PrintTest, BoxEndsTheRunAndCancelledDialogPrintsNothing) {
    for (const WORD nLang : {kEnglish, kChinese}) {
        const bool bChinese = nLang == kChinese;
        PluginJob job(nLang);
        ASSERT_TRUE(StartWith(job, Patchwork(300, 300)));
        PrintWithDialog(job, IDCANCEL);
        EXPECT_TRUE(WaitFor([&] { return ::IsWindowEnabled(job.Frame()) != FALSE; }));
        EXPECT_EQ(m_printer.Output(), "");

        BoxAnswer box;
        const WindowHook hook(job, nullptr, [&](HWND hWnd) { box.Answer(hWnd, job.Frame(), WM_COMMAND); });
        PrintWithDialog(job);
        ASSERT_TRUE(WaitFor([&] { return box.nSeen > 0; }));
        EXPECT_TRUE(
            WaitFor([&] { return ::IsWindowEnabled(job.Frame()) != FALSE && test::FindTopWindow(0, L"#32770") == nullptr; }));
        EXPECT_FALSE(box.bFrameEnabled);
        EXPECT_EQ(box.title, bChinese ? L"打印" : L"Print");
        EXPECT_EQ(box.document, bChinese ? L"宽度" : L"Width");
        EXPECT_EQ(box.printer, L"Width test");
        EXPECT_EQ(box.cancel, bChinese ? L"取消" : L"Cancel");
        EXPECT_EQ(m_printer.Output().find("%%EOF"), std::string::npos);
        EXPECT_TRUE(job.Close());
    }
}

TEST_F(PrintTest, ClosingWhileThePageIsPrintedEndsTheJob) {
    PluginJob job(kEnglish);
    ASSERT_TRUE(StartWith(job, Patchwork(300, 300)));
    BoxAnswer box;
    const WindowHook hook(job, nullptr, [&](HWND hWnd) { box.Answer(hWnd, job.Frame(), WM_CLOSE); });
    PrintWithDialog(job);
    EXPECT_TRUE(job.WaitForEnd());
    EXPECT_EQ(box.nSeen, 1);
}

// The preview as the frame's children show it.
struct Preview {
    explicit Preview(const PluginJob& job) : m_job(job) { job.Command(ID_FILE_PRINT_PREVIEW); }
    HWND View() const { return m_job.View(); }
    HWND Bar() const { return ::GetDlgItem(m_job.Frame(), kPreviewBar); }
    void Press(UINT nId) const {
        m_job.Send(Bar(), WM_COMMAND, MAKEWPARAM(nId, BN_CLICKED),
                   reinterpret_cast<LPARAM>(::GetDlgItem(Bar(), static_cast<int>(nId))));
    }
    bool IsEnabled(UINT nId) const { return ::IsWindowEnabled(::GetDlgItem(Bar(), static_cast<int>(nId))) != FALSE; }
    Raster Shown() const {
        m_job.Paint();
        return ClientRaster(View());
    }

private:
    const PluginJob& m_job;
};

// The sheet on the screen: the picture's rectangle and colours, reduced from paper to sheet.
void ExpectPictureOnSheet(const Raster& shown, const DibView& dib) {
    const COLORREF clrGround = ::GetSysColor(COLOR_APPWORKSPACE);
    const RECT rcSheet = shown.Box([](COLORREF clr) { return clr == kWhite; });
    ASSERT_GT(rcSheet.right - rcSheet.left, 200);
    const double dScale = static_cast<double>(rcSheet.right - rcSheet.left) / TestPrinter::kPaper.cx;
    EXPECT_NEAR(rcSheet.bottom - rcSheet.top, TestPrinter::kPaper.cy * dScale, 1.5);
    EXPECT_EQ(shown.At(rcSheet.left - 1, rcSheet.top - 1), RGB(0, 0, 0)) << "the sheet's edge";
    EXPECT_EQ(shown.At(rcSheet.left - 3, rcSheet.top - 3), clrGround);
    const RECT rcPaper = ExpectedOnPaper(dib);
    const auto onSheet = [&](double x, double y) {
        return POINT{rcSheet.left + static_cast<LONG>(std::lround(x * dScale)),
                     rcSheet.top + static_cast<LONG>(std::lround(y * dScale))};
    };
    const POINT ptFirst = onSheet(rcPaper.left, rcPaper.top), ptLast = onSheet(rcPaper.right, rcPaper.bottom);
    const RECT rc = [&] {
        Raster sheet = shown;
        for (int y = 0; y < shown.nHeight; ++y) {
            for (int x = 0; x < shown.nWidth; ++x) {
                if (!::PtInRect(&rcSheet, {x, y})) {
                    sheet.pixels[static_cast<std::size_t>(y * shown.nWidth + x)] = kWhite;
                }
            }
        }
        return sheet.Box(IsInk);
    }();
    EXPECT_NEAR(rc.left, ptFirst.x, 1);
    EXPECT_NEAR(rc.top, ptFirst.y, 1);
    EXPECT_NEAR(rc.right, ptLast.x, 1);
    EXPECT_NEAR(rc.bottom, ptLast.y, 1);
}

TEST_F(PrintTest, PreviewTakesTheFrameAndGivesItBack) {
    PluginJob job(kEnglish);
    ASSERT_TRUE(StartWith(job, Patchwork(300, 200)));
    job.Command(ID_TOOL_ZOOM);
    job.Send(job.View(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));
    const HWND hOwnView = job.View();
    const HMENU hMenu = ::GetMenu(job.Frame());
    const RECT rcOwnView = test::ClientRect(hOwnView);
    {
        const Preview preview(job);
        ASSERT_NE(preview.Bar(), nullptr);
        EXPECT_NE(preview.View(), hOwnView);
        EXPECT_EQ(FocusOf(job), preview.View());
        EXPECT_TRUE(::IsWindowVisible(preview.View()));
        EXPECT_TRUE(::IsWindowVisible(preview.Bar()));
        EXPECT_TRUE(::IsWindowVisible(::GetDlgItem(job.Frame(), kStatusBar)));
        EXPECT_FALSE(::IsWindowVisible(hOwnView));
        EXPECT_FALSE(::IsWindowVisible(job.ToolBar()));
        EXPECT_EQ(::GetMenu(job.Frame()), nullptr);
        EXPECT_TRUE(job.WaitForPane(kPaneZoom, L"Zoom: 150%"));
        job.Paint();
        const RECT rcText =
            ClientRaster(::GetDlgItem(job.Frame(), kStatusBar)).Box([](COLORREF clr) { return clr == RGB(0, 0, 0); });
        EXPECT_GT(rcText.right - rcText.left, 200) << "the panes' texts";
        preview.Press(ID_PREVIEW_CLOSE);
        EXPECT_EQ(preview.Bar(), nullptr);
    }
    EXPECT_EQ(job.View(), hOwnView);
    EXPECT_EQ(FocusOf(job), hOwnView);
    EXPECT_TRUE(::IsWindowVisible(hOwnView));
    EXPECT_TRUE(::IsWindowVisible(job.ToolBar()));
    EXPECT_EQ(::GetMenu(job.Frame()), hMenu);
    const RECT rcAfter = test::ClientRect(hOwnView);
    EXPECT_TRUE(::EqualRect(&rcAfter, &rcOwnView));
    EXPECT_TRUE(job.IsMarked(ID_TOOL_ZOOM));
    EXPECT_EQ(job.Pane(kPaneZoom), L"Zoom: 150%");
    job.Paint();
    EXPECT_EQ(test::PixelAt(hOwnView, {rcAfter.right / 2 - 224, rcAfter.bottom / 2 - 149}), RGB(0, 147, 150));
    EXPECT_TRUE(job.Close());
}

TEST_F(PrintTest, PreviewShowsThePageAtEveryZoom) {
    const std::vector<std::byte> block = Patchwork(300, 200);
    const DibView dib = *DibView::Open(block);
    PluginJob job(kEnglish);
    ASSERT_TRUE(StartWith(job, block));
    const Preview preview(job);
    ExpectPictureOnSheet(preview.Shown(), dib);
    EXPECT_TRUE(WaitFor([&] { return preview.IsEnabled(ID_PREVIEW_ZOOM_IN) && !preview.IsEnabled(ID_PREVIEW_ZOOM_OUT); }));

    const auto hasBars = [&] { return (::GetWindowLongPtrW(preview.View(), GWL_STYLE) & (WS_HSCROLL | WS_VSCROLL)) != 0; };
    EXPECT_FALSE(hasBars());
    const auto inkWidth = [&] {
        const RECT rc = preview.Shown().Box([&](COLORREF clr) {
            return IsInk(clr) && clr != RGB(0, 0, 0) && clr != ::GetSysColor(COLOR_APPWORKSPACE) &&
                   clr != ::GetSysColor(COLOR_3DDKSHADOW);
        });
        return rc.right - rc.left;
    };
    const LONG nWhole = inkWidth();
    preview.Press(ID_PREVIEW_ZOOM_IN);
    const LONG nBetween = inkWidth();
    preview.Press(ID_PREVIEW_ZOOM_IN);
    EXPECT_TRUE(hasBars());
    EXPECT_NEAR(inkWidth(), std::max<LONG>(300, 2 * nWhole), 2) << "true size, unless that is no enlargement";
    EXPECT_NEAR(2 * nBetween, inkWidth() + nWhole, 4);
    EXPECT_TRUE(WaitFor([&] { return !preview.IsEnabled(ID_PREVIEW_ZOOM_IN) && preview.IsEnabled(ID_PREVIEW_ZOOM_OUT); }));
    // The middle of the page has stayed in the middle of the window.
    const Raster close = preview.Shown();
    EXPECT_TRUE(IsInk(close.At(close.nWidth / 2, close.nHeight / 2)));
    preview.Press(ID_PREVIEW_ZOOM_OUT);
    EXPECT_EQ(inkWidth(), nBetween);
    preview.Press(ID_PREVIEW_ZOOM_OUT);
    EXPECT_EQ(inkWidth(), nWhole);
    EXPECT_FALSE(hasBars());
    preview.Press(ID_PREVIEW_CLOSE);
    EXPECT_TRUE(job.Close());
}

TEST_F(PrintTest, PreviewWithoutAPictureIsAnEmptyPageAndPrintDoesNothing) {
    PluginJob job(kEnglish);
    ASSERT_NE(job.Start(std::vector<std::byte>(50)), nullptr);
    job.Command(ID_FILE_PRINT);
    EXPECT_EQ(test::FindTopWindow(0, L"#32770"), nullptr);
    const Preview preview(job);
    const Raster shown = preview.Shown();
    const RECT rcSheet = shown.Box([](COLORREF clr) { return clr == kWhite; });
    ASSERT_GT(rcSheet.right - rcSheet.left, 200);
    for (LONG y = rcSheet.top; y < rcSheet.bottom; ++y) {
        for (LONG x = rcSheet.left; x < rcSheet.right; ++x) {
            ASSERT_EQ(shown.At(static_cast<int>(x), static_cast<int>(y)), kWhite);
        }
    }
    preview.Press(ID_PREVIEW_PRINT);
    EXPECT_EQ(preview.Bar(), nullptr);
    EXPECT_TRUE(job.Close());
}

TEST_F(PrintTest, CommandsDuringAPreview) {
    PluginJob job(kEnglish);
    ASSERT_TRUE(StartWith(job, Patchwork(300, 200)));
    const HWND hOwnView = job.View();
    const Preview preview(job);
    const HWND hView = preview.View();
    const HWND hBar = preview.Bar();

    job.Command(ID_FILE_PRINT_PREVIEW);
    EXPECT_EQ(preview.View(), hView) << "one preview at a time";
    EXPECT_EQ(preview.Bar(), hBar);
    EXPECT_EQ(test::FindTopWindow(0, L"#32770"), nullptr);
    for (const UINT nId : {ID_TOOL_ZOOM, ID_VIEW_BEST_FIT, ID_TOOL_WIDTH_LABEL, ID_EDIT_UNDO}) {
        job.Command(nId);
    }
    job.Send(job.Frame(), WM_SETFOCUS, 0);
    EXPECT_EQ(FocusOf(job), hView) << "not the hidden view";
    const int nScroll = ::GetScrollPos(hOwnView, SB_VERT);
    job.Send(hView, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(512, 300));
    EXPECT_TRUE(WaitFor([&] { return preview.IsEnabled(ID_PREVIEW_ZOOM_OUT); })) << "a click on the sheet comes nearer";
    job.Send(hView, WM_KEYDOWN, VK_NEXT);
    EXPECT_GT(::GetScrollPos(hView, SB_VERT), 0);
    EXPECT_EQ(::GetScrollPos(hOwnView, SB_VERT), nScroll);
    ::SetWindowPos(job.Frame(), nullptr, 0, 0, 500, 300, SWP_NOZORDER);
    preview.Shown();
    job.Send(hView, WM_KEYDOWN, VK_ESCAPE);
    EXPECT_EQ(job.View(), hOwnView);
    EXPECT_FALSE(::IsWindow(hView));

    job.Command(ID_FILE_PRINT_PREVIEW);
    EXPECT_NE(job.View(), hOwnView);
    job.Send(job.Frame(), WM_CLOSE, 0);
    EXPECT_EQ(job.View(), hOwnView) << "closing the window leaves the preview first";

    job.Command(ID_FILE_PRINT_PREVIEW);
    ::PostMessageW(preview.Bar(), WM_COMMAND, ID_PREVIEW_PRINT, 0);
    const HWND hDlg = test::WaitForWindow(0, L"#32770");
    ASSERT_NE(hDlg, nullptr);
    EXPECT_EQ(job.View(), hOwnView) << "the preview is gone before the dialog comes";
    job.Command(ID_FILE_PRINT);  // the open dialog lets it through
    job.Command(ID_FILE_PRINT_PREVIEW);
    EXPECT_EQ(job.View(), hOwnView);
    test::PostCommand(hDlg, IDCANCEL);
    EXPECT_TRUE(WaitFor([&] { return test::FindTopWindow(0, L"#32770") == nullptr; }));
    EXPECT_TRUE(job.Close());
}

TEST_F(PrintTest, JobThatEndsDuringAPreviewEndsInOrder) {
    PluginJob job(kEnglish);
    ASSERT_TRUE(StartWith(job, Patchwork(300, 200)));
    const Preview preview(job);
    ASSERT_NE(preview.Bar(), nullptr);
    ::PostThreadMessageW(::GetWindowThreadProcessId(job.Frame(), nullptr), WM_QUIT, 0, 0);
    EXPECT_TRUE(job.WaitForEnd());
}

TEST_F(PrintTest, FiftyPreviewsLeaveNothingBehind) {
    PluginJob job(kEnglish);
    ASSERT_TRUE(StartWith(job, Patchwork(300, 200)));
    std::size_t nGdi = 0, nUser = 0;
    for (int i = 0; i <= 50; ++i) {
        const Preview preview(job);
        preview.Shown();
        for (const UINT nId : {ID_PREVIEW_ZOOM_IN, ID_PREVIEW_ZOOM_IN, ID_PREVIEW_ZOOM_OUT}) {
            preview.Press(nId);
            preview.Shown();
        }
        preview.Press(ID_PREVIEW_CLOSE);
        job.Paint();
        if (i == 0) {
            nGdi = test::CountGdiObjects();
            nUser = test::CountUserObjects();
        }
    }
    EXPECT_EQ(test::CountGdiObjects(), nGdi);
    EXPECT_EQ(test::CountUserObjects(), nUser);
}

TEST_F(PrintTest, BarSpeaksBothLanguages) {
    for (const WORD nLang : {kEnglish, kChinese}) {
        const bool bChinese = nLang == kChinese;
        PluginJob job(nLang);
        ASSERT_TRUE(StartWith(job, Patchwork(30, 20)));
        const Preview preview(job);
        const auto button = [&](int nId) { return test::TextOf(::GetDlgItem(preview.Bar(), nId)); };
        EXPECT_EQ(button(ID_PREVIEW_PRINT), bChinese ? L"打印(&P)..." : L"&Print...");
        EXPECT_EQ(button(ID_PREVIEW_ZOOM_IN), bChinese ? L"放大(&I)" : L"Zoom &In");
        EXPECT_EQ(button(ID_PREVIEW_ZOOM_OUT), bChinese ? L"缩小(&O)" : L"Zoom &Out");
        EXPECT_EQ(button(ID_PREVIEW_CLOSE), bChinese ? L"关闭(&C)" : L"&Close");
        preview.Press(ID_PREVIEW_CLOSE);
    }
}

TEST_F(PrintTest, PreviewThatCannotBeBuiltSaysSoAndLeavesTheFrameAsItWas) {
    for (const WORD nLang : {kEnglish, kChinese}) {
        PluginJob job(nLang);
        ASSERT_TRUE(StartWith(job, Patchwork(300, 200)));
        const HWND hOwnView = job.View();
        const RECT rcOwnView = test::ClientRect(hOwnView);
        for (const bool bRefuseBar : {true, false}) {
            const WindowHook hook(job, [&](const CREATESTRUCTW& create) {
                const bool bChild = (create.style & WS_CHILD) != 0 && create.hwndParent == job.Frame();
                const bool bView = create.hMenu == reinterpret_cast<HMENU>(kPane);
                return !bChild || bView == bRefuseBar;
            });
            ::PostMessageW(job.Frame(), WM_COMMAND, ID_FILE_PRINT_PREVIEW, 0);
            EXPECT_EQ(test::AnswerBox(), nLang == kChinese ? L"命令失败。" : L"Command failed.");
            EXPECT_TRUE(WaitFor([&] { return ::IsWindowEnabled(job.Frame()) != FALSE; }));
            EXPECT_EQ(job.View(), hOwnView);
            EXPECT_EQ(::GetDlgItem(job.Frame(), kPreviewBar), nullptr);
            EXPECT_TRUE(::IsWindowVisible(hOwnView));
            EXPECT_TRUE(::IsWindowVisible(job.ToolBar()));
            EXPECT_NE(::GetMenu(job.Frame()), nullptr);
            const RECT rcAfter = test::ClientRect(hOwnView);
            EXPECT_TRUE(::EqualRect(&rcAfter, &rcOwnView));
        }
        job.Command(ID_FILE_PRINT_PREVIEW);
        EXPECT_NE(job.View(), hOwnView) << "the next one works";
        job.Send(job.Frame(), WM_CLOSE, 0);
        EXPECT_TRUE(job.Close());
    }
}

/// The sheet that a preview shows, in pixels of the screen.
SIZE SheetOf(const Preview& preview) {
    const Raster shown = preview.Shown();
    const RECT rc = shown.Box([](COLORREF clr) { return clr == kWhite; });
    return {rc.right - rc.left, rc.bottom - rc.top};
}

/// Chooses an orientation in the dialog of Print Setup.
void ChooseSetUp(const PluginJob& job, int nOrientationButton, UINT nAnswer) {
    ::PostMessageW(job.Frame(), WM_COMMAND, ID_FILE_PRINT_SETUP, 0);
    const HWND hDlg = test::WaitForWindow(0, L"#32770");
    ASSERT_NE(hDlg, nullptr);
    ASSERT_NE(::GetDlgItem(hDlg, nOrientationButton), nullptr);
    ::SendMessageW(::GetDlgItem(hDlg, nOrientationButton), BM_CLICK, 0, 0);
    test::PostCommand(hDlg, nAnswer);
    ASSERT_TRUE(WaitFor([&] { return ::IsWindow(hDlg) == FALSE && ::IsWindowEnabled(job.Frame()) != FALSE; }));
}

constexpr int kPortrait = 1056, kLandscape = 1057;  // buttons of the system's dialog

TEST_F(PrintTest, SetUpHoldsForPreviewPrintAndLaterJobsOfTheModule) {
    const auto expectSheet = [](const PluginJob& job, bool bLandscape) {
        const Preview preview(job);
        const SIZE size = SheetOf(preview);
        EXPECT_EQ(size.cx > size.cy, bLandscape) << size.cx << " x " << size.cy;
        preview.Press(ID_PREVIEW_CLOSE);
    };
    {
        PluginJob job(kEnglish);
        ASSERT_TRUE(StartWith(job, Patchwork(1000, 300)));
        expectSheet(job, false);
        ChooseSetUp(job, kLandscape, IDCANCEL);
        expectSheet(job, false);
        ChooseSetUp(job, kLandscape, IDOK);
        expectSheet(job, true);

        PrintWithDialog(job);
        ASSERT_TRUE(m_printer.WaitForDocument());
        EXPECT_TRUE(WaitFor([&] { return ::IsWindowEnabled(job.Frame()) != FALSE; }));
        const auto page = m_printer.RenderPage();
        ASSERT_TRUE(page.has_value());
        const RECT rc = page->Box(IsInk);
        // 1000 pixels of a screen of 96 are 3125 dots: wider than the page is high, and reduced to that.
        EXPECT_EQ(std::max(rc.right - rc.left, rc.bottom - rc.top), TestPrinter::kPrintable.bottom - TestPrinter::kPrintable.top);
        EXPECT_TRUE(job.Close());

        ASSERT_TRUE(StartWith(job, Patchwork(100, 30)));
        expectSheet(job, true);
        ChooseSetUp(job, kPortrait, IDOK);
        expectSheet(job, false);
        ChooseSetUp(job, kLandscape, IDOK);
        EXPECT_TRUE(job.Close());
    }
    PluginJob anew(kEnglish);
    ASSERT_TRUE(StartWith(anew, Patchwork(100, 30)));
    expectSheet(anew, false);
}

// Dialogs, runs and previews let posted commands through.
TEST_F(PrintTest, SetUpAndPrintingDoNotGetIntoEachOther) {
    PluginJob job(kEnglish);
    ASSERT_TRUE(StartWith(job, Patchwork(300, 200)));
    const auto expectNoOther = [&](HWND hDlg) {
        for (const UINT nId : {ID_FILE_PRINT_SETUP, ID_FILE_PRINT, ID_FILE_PRINT_PREVIEW}) {
            job.Command(nId);
            EXPECT_EQ(test::FindTopWindow(0, L"#32770"), hDlg) << nId;
            EXPECT_EQ(::GetDlgItem(job.Frame(), kPreviewBar), nullptr) << nId;
        }
    };
    for (const UINT nId : {ID_FILE_PRINT_SETUP, ID_FILE_PRINT}) {
        ::PostMessageW(job.Frame(), WM_COMMAND, nId, 0);
        const HWND hDlg = test::WaitForWindow(0, L"#32770");
        ASSERT_NE(hDlg, nullptr);
        expectNoOther(hDlg);
        test::PostCommand(hDlg, IDCANCEL);
        ASSERT_TRUE(WaitFor([&] { return ::IsWindow(hDlg) == FALSE && ::IsWindowEnabled(job.Frame()) != FALSE; }));
    }
    const Preview preview(job);
    job.Command(ID_FILE_PRINT_SETUP);
    EXPECT_EQ(test::FindTopWindow(0, L"#32770"), nullptr);
    preview.Press(ID_PREVIEW_CLOSE);
    ChooseSetUp(job, kLandscape, IDOK);
    EXPECT_TRUE(job.Close());
}

TEST(PrintWithoutPath, RunThatFailsSaysSo) {
    const TestPrinter printer(L"C:\\no such folder\\page.ps");
    ASSERT_TRUE(printer.IsReady());
    for (const WORD nLang : {kEnglish, kChinese}) {
        PluginJob job(nLang);
        ASSERT_TRUE(StartWith(job, Patchwork(30, 20)));
        PrintWithDialog(job);
        const HWND hBox = WaitForMessage();
        ASSERT_NE(hBox, nullptr);
        EXPECT_EQ(test::MessageBoxText(hBox), nLang == kChinese ? L"打印失败。" : L"Printing failed.");
        test::PostCommand(hBox, IDOK);
        EXPECT_TRUE(WaitFor([&] { return ::IsWindowEnabled(job.Frame()) != FALSE; }));
    }
}

class WithoutPrinter : public ::testing::TestWithParam<WORD> {};

INSTANTIATE_TEST_SUITE_P(Languages, WithoutPrinter, ::testing::Values(kEnglish, kChinese));

TEST_P(WithoutPrinter, MessageSaysSoAndNothingElseHappens) {
    TestPrinter::Remove();
    PluginJob job(GetParam());
    ASSERT_TRUE(StartWith(job, Patchwork(300, 200)));
    const HWND hOwnView = job.View();
    for (const UINT nId : {ID_FILE_PRINT, ID_FILE_PRINT_PREVIEW, ID_FILE_PRINT_SETUP}) {
        ::PostMessageW(job.Frame(), WM_COMMAND, nId, 0);
        const HWND hBox = WaitForMessage();
        ASSERT_NE(hBox, nullptr);
        EXPECT_EQ(test::MessageBoxText(hBox), GetParam() == kChinese ? L"没有打印机。请先安装一台打印机。"
                                                                     : L"There is no printer. Please install one first.");
        EXPECT_EQ(test::TextOf(hBox), GetParam() == kChinese ? L"宽度" : L"Width");
        test::PostCommand(hBox, IDOK);
        EXPECT_TRUE(
            WaitFor([&] { return test::FindTopWindow(0, L"#32770") == nullptr && ::IsWindowEnabled(job.Frame()) != FALSE; }));
        EXPECT_TRUE(WaitFor([&] {
            return job.View() == hOwnView && ::IsWindowVisible(hOwnView) != FALSE && ::GetMenu(job.Frame()) != nullptr &&
                   ::GetDlgItem(job.Frame(), kPreviewBar) == nullptr;
        })) << "the frame is as it was";
    }
    // The frame can be asked to close while the half-made preview waits behind the message.
    ::PostMessageW(job.Frame(), WM_COMMAND, ID_FILE_PRINT_PREVIEW, 0);
    ASSERT_NE(WaitForMessage(), nullptr);
    EXPECT_TRUE(job.Close());
}

}  // namespace
}  // namespace width
