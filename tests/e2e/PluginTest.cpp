// A job of the plug-in from start to end, by real messages and named ids.
#include "tests/e2e/PluginJob.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstring>
#include <memory>

#include "res/resource.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

using test::AnswerBox;
using test::ClientRect;
using test::DibBuilder;
using test::PixelAt;
using test::PluginJob;
using test::WaitFor;

constexpr WORD kEnglish = 0x0409;
constexpr WORD kChinese = 0x0804;
constexpr UINT kPaneSize = 1, kPaneZoom = 2, kPaneDepth = 3;

// A picture of four quarters in different colours with a black frame of one pixel.
std::vector<std::byte> Quarters(std::int32_t nWidth, std::int32_t nHeight, std::uint16_t nBits = 24) {
    DibBuilder builder(nWidth, nHeight, nBits);
    builder.SetResolution(500, 600);
    for (std::int32_t s = 0; s < nHeight; ++s) {
        for (std::int32_t x = 0; x < nWidth; ++x) {
            const bool bEdge = x == 0 || s == 0 || x == nWidth - 1 || s == nHeight - 1;
            const auto shade = [](bool b) { return static_cast<std::uint8_t>(b ? 200 : 60); };
            builder.SetPixel(x, s, bEdge ? Colour{} : Colour{shade(x < nWidth / 2), shade(s < nHeight / 2), 128});
        }
    }
    return builder.Block();
}

// A dark bar across a white picture.
std::vector<std::byte> Bar(std::int32_t nWidth = 300, std::int32_t nHeight = 200) {
    DibBuilder builder(nWidth, nHeight, 8);
    return builder.GreyTable()
        .Fill([&](std::int32_t x, std::int32_t s) { return x > 20 && x < nWidth - 20 && s > 98 && s < 104 ? 0U : 255U; })
        .Block();
}

TEST(Plugin, FillsItsTwoEntriesAndNothingElse) {
    PluginJob job(kEnglish);
    pi_table table;
    std::memset(&table, 0x5A, sizeof table);
    const HMODULE hPlugin = ::GetModuleHandleW(L"width.dll");
    const auto pfnInit = reinterpret_cast<pi_init_fn>(reinterpret_cast<void*>(::GetProcAddress(hPlugin, PI_INIT_NAME)));
    EXPECT_EQ(pfnInit(&table, kEnglish), 1);
    EXPECT_EQ(table.nHead, 1);
    EXPECT_NE(table.pfnStart, nullptr);
    EXPECT_NE(table.pfnAbout, nullptr);
    for (const std::uint8_t byte : table.unused4)
        EXPECT_EQ(byte, 0x5A);
    for (const std::uint8_t byte : table.unused16)
        EXPECT_EQ(byte, 0x5A);
}

TEST(Plugin, AJobRunsFromStartToCodeFour) {
    PluginJob job(kEnglish);
    ASSERT_NE(job.Start(Quarters(64, 48)), nullptr);
    EXPECT_EQ(test::TextOf(job.Frame()), L"Width");
    EXPECT_TRUE(job.WaitForPane(kPaneSize, L"64 x 48"));
    EXPECT_TRUE(job.WaitForPane(kPaneZoom, L"Zoom: 100%"));
    EXPECT_TRUE(job.WaitForPane(kPaneDepth, L"BPP: 24, Resolution: 500 600"));
    EXPECT_EQ(job.Pane(0), L"");
    const DWORD nThread = ::GetWindowThreadProcessId(job.Frame(), nullptr);
    EXPECT_NE(nThread, ::GetCurrentThreadId());
    job.Command(ID_SEND_IMAGE);
    ASSERT_EQ(job.Events().size(), 1U);
    EXPECT_EQ(job.Events()[0].nCode, PI_CODE_IMAGE);
    EXPECT_EQ(job.Events()[0].nThreadId, nThread);
    EXPECT_TRUE(job.Close());
    ASSERT_EQ(job.Events().size(), 2U);
    EXPECT_EQ(job.Events()[1].nCode, PI_CODE_END);
    EXPECT_EQ(job.Events()[1].pParam, nullptr);
    EXPECT_EQ(job.Events()[1].nThreadId, nThread);
}

TEST(Plugin, OnlyOneJobAtATime) {
    PluginJob job(kEnglish);
    job.m_pfnOnEvent = [](PluginJob& self, int32_t nCode) {
        if (nCode == PI_CODE_END)
            self.StartOnly(Quarters(8, 8));  // still refused, silently
    };
    ASSERT_NE(job.Start(Quarters(64, 48)), nullptr);
    ASSERT_TRUE(job.WaitForPane(kPaneSize, L"64 x 48"));
    job.StartOnly(Quarters(9, 9));
    EXPECT_EQ(job.Pane(kPaneSize), L"64 x 48");
    EXPECT_TRUE(job.Close());
    EXPECT_EQ(job.Events().size(), 1U);
    EXPECT_EQ(test::FindTopWindow(0), nullptr);
    job.m_pfnOnEvent = nullptr;
    ASSERT_NE(job.Start(Quarters(33, 22)), nullptr) << "idle again";
    EXPECT_TRUE(job.WaitForPane(kPaneSize, L"33 x 22"));
}

TEST(Plugin, NullArgumentsLeaveTheBlockToTheCaller) {
    PluginJob job(kEnglish);
    void* pDib = malloc(100);
    std::memset(pDib, 1, 100);
    job.Table().pfnStart(pDib, nullptr, nullptr, &job);
    job.Table().pfnStart(
        pDib, nullptr, [](void*, int32_t, void*, void*) {}, nullptr);
    job.Table().pfnStart(
        nullptr, nullptr, [](void*, int32_t, void*, void*) {}, &job);
    EXPECT_EQ(_msize(pDib), 100U);
    free(pDib);
    EXPECT_EQ(test::FindTopWindow(0), nullptr);
}

TEST(Plugin, BlocksThatLieOpenAJobWithoutAPicture) {
    const auto withHeader = [](void (*change)(BITMAPINFOHEADER&)) {
        DibBuilder builder(20, 10, 8);
        change(builder.Header());
        return builder.Block();
    };
    const std::vector<std::byte> blocks[] = {withHeader([](BITMAPINFOHEADER& h) { h.biHeight = 4000; }),
                                             withHeader([](BITMAPINFOHEADER& h) { h.biWidth = -20; }),
                                             withHeader([](BITMAPINFOHEADER& h) { h.biClrUsed = 0x7FFFFFFF; }),
                                             withHeader([](BITMAPINFOHEADER& h) { h.biSize = 124; }),
                                             withHeader([](BITMAPINFOHEADER& h) { h.biBitCount = 0; }),
                                             std::vector<std::byte>(10)};
    PluginJob job(kEnglish);
    for (const std::vector<std::byte>& block : blocks) {
        ASSERT_NE(job.Start(block), nullptr);
        EXPECT_TRUE(job.WaitForPane(kPaneSize, L""));
        EXPECT_FALSE(job.IsEnabled(ID_TOOL_TRACK));
        EXPECT_FALSE(job.IsEnabled(ID_FILE_SAVE));
        const RECT rc = ClientRect(job.View());
        EXPECT_TRUE(WaitFor([&] { return PixelAt(job.View(), {rc.right / 2, rc.bottom / 2}) == ::GetSysColor(COLOR_BTNFACE); }));
        EXPECT_TRUE(job.Close());
    }
}

TEST(Plugin, CompressionIsNeverRead) {
    std::vector<std::byte> block = Quarters(40, 30);
    const std::uint32_t nRle = BI_RLE8;
    std::memcpy(block.data() + 16, &nRle, 4);
    PluginJob job(kEnglish);
    ASSERT_NE(job.Start(block), nullptr);
    ASSERT_TRUE(job.WaitForPane(kPaneSize, L"40 x 30"));
    const RECT rc = ClientRect(job.View());
    const POINT pt{(rc.right - 40) / 2 + 5, (rc.bottom - 30) / 2 + 25};
    EXPECT_TRUE(WaitFor([&] { return PixelAt(job.View(), pt) == RGB(200, 200, 128); }));
}

struct Enabling {
    UINT nId;
    bool bWithoutImage;
    bool bWithImage;
};
constexpr Enabling kEnabling[] = {
    {ID_TOOL_TRACK, false, true},
    {ID_TOOL_ZOOM, false, true},
    {ID_TOOL_LINE_DETECT, false, true},
    {ID_TOOL_WIDTH_LABEL, false, true},
    {ID_VIEW_BEST_FIT, false, true},
    {ID_VIEW_ACTUAL_SIZE, false, false},
    {ID_SEND_IMAGE, false, true},
    {ID_SKELETONIZE, true, true},
    {ID_WRITE_TO_BITMAP, true, true},
    {ID_EDIT_UNDO, false, false},
    {ID_EDIT_REDO, false, false},
    {ID_FILE_SAVE, false, true},
    {ID_FILE_SAVE_AS_PICTURE, false, true},
    {ID_FILE_PRINT, true, true},
    {ID_FILE_PRINT_PREVIEW, true, true},
    {ID_BINARY_SETTING, true, true},
    {ID_LABEL_SETTING, true, true},
    {ID_LINE_SETTING, true, true},
    {ID_FILE_PRINT_SETUP, true, true},
    {ID_HELP_CONTENTS, true, true},
    {ID_ABOUT, true, true},
    {ID_EXIT, true, true},
};

TEST(Plugin, CommandsAreEnabledAsStated) {
    PluginJob job(kEnglish);
    ASSERT_NE(job.Start(std::vector<std::byte>(50)), nullptr);
    for (const Enabling& row : kEnabling) {
        EXPECT_TRUE(WaitFor([&] { return job.IsEnabled(row.nId) == row.bWithoutImage; })) << row.nId;
    }
    job.Close();
    ASSERT_NE(job.Start(Quarters(64, 48)), nullptr);
    ASSERT_TRUE(job.WaitForPane(kPaneSize, L"64 x 48"));
    for (const Enabling& row : kEnabling) {
        EXPECT_TRUE(WaitFor([&] { return job.IsEnabled(row.nId) == row.bWithImage; })) << row.nId;
    }
}

TEST(Plugin, ToolsAreMarkedAndOutliveTheJob) {
    PluginJob job(kEnglish);
    ASSERT_NE(job.Start(Quarters(64, 48)), nullptr);
    ASSERT_TRUE(job.WaitForPane(kPaneSize, L"64 x 48"));
    EXPECT_TRUE(WaitFor([&] { return job.IsMarked(ID_TOOL_TRACK); })) << "the tool of a fresh module";
    for (const UINT nTool : {ID_TOOL_LINE_DETECT, ID_TOOL_WIDTH_LABEL, ID_TOOL_TRACK, ID_TOOL_ZOOM}) {
        job.Command(nTool);
        for (const UINT nOther : {ID_TOOL_LINE_DETECT, ID_TOOL_WIDTH_LABEL, ID_TOOL_TRACK, ID_TOOL_ZOOM}) {
            EXPECT_TRUE(WaitFor([&] { return job.IsMarked(nOther) == (nOther == nTool); })) << nTool << ' ' << nOther;
        }
    }
    job.Close();
    ASSERT_NE(job.Start(Quarters(64, 48)), nullptr);
    EXPECT_TRUE(WaitFor([&] { return job.IsMarked(ID_TOOL_ZOOM); }));
}

TEST(Plugin, TipsMenusAndPanesSpeakBothLanguages) {
    struct Tip {
        UINT nId;
        const wchar_t* english;
        const wchar_t* chinese;
    };
    constexpr Tip kTips[] = {{ID_FILE_SAVE, L"Save", L"\u4fdd\u5b58"},
                             {ID_WRITE_TO_BITMAP, L"Write to Bitmap", L"\u5199\u5165\u4f4d\u56fe"},
                             {ID_TOOL_TRACK, L"Track", L"\u8ffd\u8ff9"},
                             {ID_SEND_IMAGE, L"Send Image to Main App", L"\u5411\u4e3b\u7a0b\u5e8f\u53d1\u9001\u56fe\u50cf"},
                             {ID_LINE_SETTING, L"Line condition Setting", L"\u76f4\u7ebf\u7504\u522b\u8bbe\u7f6e"}};
    for (const WORD nLang : {kEnglish, kChinese}) {
        PluginJob job(nLang);
        ASSERT_NE(job.Start(Quarters(64, 48)), nullptr);
        EXPECT_EQ(test::TextOf(job.Frame()), nLang == kChinese ? L"\u5bbd\u5ea6" : L"Width");
        EXPECT_TRUE(job.WaitForPane(kPaneZoom, nLang == kChinese ? L"\u7f29\u653e: 100%" : L"Zoom: 100%"));
        wchar_t item[100] = {};
        ::GetMenuStringW(::GetMenu(job.Frame()), ID_SKELETONIZE, item, 100, MF_BYCOMMAND);
        EXPECT_STREQ(item, nLang == kChinese ? L"\u9aa8\u67b6\u62bd\u53d6" : L"&Skeletonization");
        for (const Tip& tip : kTips) {
            NMTTDISPINFOW record{};
            record.hdr = {reinterpret_cast<HWND>(::SendMessageW(job.ToolBar(), TB_GETTOOLTIPS, 0, 0)), tip.nId, TTN_NEEDTEXTW};
            record.lpszText = record.szText;
            ::SendMessageW(job.Frame(), WM_NOTIFY, tip.nId, reinterpret_cast<LPARAM>(&record));
            EXPECT_STREQ(record.szText, nLang == kChinese ? tip.chinese : tip.english);
        }
    }
}

// Every integer zoom, the centred picture and the strips round it, against the picture itself.
TEST(Plugin, PaintsEveryPixelWhereItBelongs) {
    constexpr std::int32_t kWidth = 40, kHeight = 30;
    const std::vector<std::byte> block = Quarters(kWidth, kHeight);
    const DibView dib = *DibView::Open(block);
    PluginJob job(kEnglish);
    ASSERT_NE(job.Start(block), nullptr);
    ASSERT_TRUE(job.WaitForPane(kPaneSize, L"40 x 30"));
    job.Command(ID_TOOL_ZOOM);
    for (std::int32_t nPercent = 100; nPercent <= 1600;) {
        if (nPercent % 100 == 0) {
            job.Paint();
            const RECT rc = ClientRect(job.View());
            const std::int32_t k = nPercent / 100;
            const POINT ptOrigin{(rc.right - kWidth * k) / 2, (rc.bottom - kHeight * k) / 2};
            for (std::int32_t y = -1; y <= kHeight; y += (y == 1 ? kHeight - 3 : 1)) {
                for (std::int32_t x = -1; x <= kWidth; ++x) {
                    const bool bInside = x >= 0 && x < kWidth && y >= 0 && y < kHeight;
                    const Colour pixel = bInside ? dib.PixelAt(x, kHeight - 1 - y) : Colour{};
                    const COLORREF clr = bInside ? RGB(pixel.red, pixel.green, pixel.blue) : ::GetSysColor(COLOR_BTNFACE);
                    const POINT pt{ptOrigin.x + x * k + (bInside ? k / 2 : k - 1),
                                   ptOrigin.y + y * k + (bInside ? k / 2 : k - 1)};
                    if (::PtInRect(&rc, pt) != FALSE && (x >= 0 || y >= 0)) {
                        ASSERT_EQ(PixelAt(job.View(), pt), clr) << k << "/1 at " << x << ',' << y;
                    }
                }
            }
        }
        const std::wstring before = job.Pane(kPaneZoom);
        job.Send(job.View(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));
        if (nPercent == 1600) {
            break;  // the last step: this click must change nothing
        }
        ASSERT_TRUE(WaitFor([&] { return job.Pane(kPaneZoom) != before; }));
        nPercent = std::stoi(job.Pane(kPaneZoom).substr(6));
    }
    EXPECT_EQ(job.Pane(kPaneZoom), L"Zoom: 1600%");
    job.Send(job.View(), WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(3, 3));
    EXPECT_TRUE(job.WaitForPane(kPaneZoom, L"Zoom: 1500%"));
    job.Command(ID_VIEW_ACTUAL_SIZE);
    EXPECT_TRUE(job.WaitForPane(kPaneZoom, L"Zoom: 100%"));
}

// A composition takes four bytes a pixel, and this one does not fit: the picture is seen all the same.
TEST(Plugin, APictureTooLargeToComposeIsStillSeen) {
    constexpr std::int32_t kWidth = 1'000'000, kHeight = 600;
    const std::vector<std::byte> block =
        test::DibBuilder(kWidth, kHeight, 1).SetColour(0, {10, 120, 230}).SetColour(1, {1, 2, 3}).Block();
    PluginJob job(kEnglish);
    ASSERT_NE(job.Start(block), nullptr);
    ASSERT_TRUE(job.WaitForPane(kPaneSize, L"1000000 x 600"));
    job.Command(ID_TOOL_ZOOM);
    for (const wchar_t* pZoom : {L"Zoom: 150%", L"Zoom: 200%"}) {
        job.Send(job.View(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));
        ASSERT_TRUE(job.WaitForPane(kPaneZoom, pZoom));
        job.Paint();
        EXPECT_EQ(PixelAt(job.View(), {100, 100}), RGB(10, 120, 230)) << pZoom;
    }
}

TEST(Plugin, CursorsTellToolAndZoom) {
    PluginJob job(kEnglish);
    ASSERT_NE(job.Start(Quarters(64, 48)), nullptr);
    ASSERT_TRUE(job.WaitForPane(kPaneSize, L"64 x 48"));
    const HMODULE hPlugin = ::GetModuleHandleW(L"width.dll");
    const DWORD nThread = ::GetWindowThreadProcessId(job.Frame(), nullptr);
    const auto cursor = [&] {
        ::AttachThreadInput(::GetCurrentThreadId(), nThread, TRUE);
        const HWND hView = job.View();
        job.Send(hView, WM_SETCURSOR, reinterpret_cast<WPARAM>(hView), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
        const HCURSOR hCursor = ::GetCursor();
        ::AttachThreadInput(::GetCurrentThreadId(), nThread, FALSE);
        return hCursor;
    };
    const auto own = [&](UINT nId) { return ::LoadCursorW(hPlugin, MAKEINTRESOURCEW(nId)); };
    EXPECT_EQ(cursor(), own(IDC_HAND_OPEN));
    job.Command(ID_TOOL_ZOOM);
    EXPECT_EQ(cursor(), own(IDC_ZOOM_BOTH));
    for (int i = 0; i < 30; ++i)
        job.Send(job.View(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));
    EXPECT_EQ(cursor(), own(IDC_ZOOM_OUT)) << "16/1 is the last step";
    for (int i = 0; i < 30; ++i)
        job.Send(job.View(), WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(3, 3));
    EXPECT_EQ(cursor(), own(IDC_ZOOM_IN));
    EXPECT_TRUE(job.WaitForPane(kPaneZoom, L"Zoom: 5%"));
    job.Command(ID_TOOL_WIDTH_LABEL);
    EXPECT_EQ(cursor(), ::LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW)));
    ICONINFO info{};
    ASSERT_NE(::GetIconInfo(own(IDC_ZOOM_IN), &info), FALSE);
    EXPECT_TRUE(info.xHotspot == 13 && info.yHotspot == 11);
    ::DeleteObject(info.hbmMask);
    ::DeleteObject(info.hbmColor);
}

// The middle of the window stays where it is through the steps, and a scroll repaints what it uncovers.
TEST(Plugin, ZoomKeepsTheMiddleAndScrollsRepaint) {
    PluginJob job(kEnglish);
    ASSERT_NE(job.Start(Quarters(3000, 2000)), nullptr);
    ASSERT_TRUE(job.WaitForPane(kPaneSize, L"3000 x 2000"));
    const HWND hView = job.View();
    job.Command(ID_TOOL_ZOOM);
    job.Send(hView, WM_HSCROLL, SB_RIGHT);
    job.Send(hView, WM_VSCROLL, SB_BOTTOM);
    const RECT rc = ClientRect(hView);
    const int x = ::GetScrollPos(hView, SB_HORZ);
    EXPECT_EQ(x, 3000 - rc.right);
    job.Paint();
    EXPECT_EQ(PixelAt(hView, {rc.right - 1, rc.bottom - 1}), RGB(0, 0, 0)) << "the frame of the picture";
    EXPECT_EQ(PixelAt(hView, {rc.right - 3, rc.bottom - 3}), RGB(60, 200, 128));
    job.Send(hView, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));  // 3/2
    EXPECT_EQ(::GetScrollPos(hView, SB_HORZ), (x + rc.right / 2) * 3 / 2 - rc.right / 2 + ((x + rc.right / 2) % 2));
    job.Paint();
    EXPECT_EQ(PixelAt(hView, {rc.right / 2, rc.bottom / 2}), RGB(60, 200, 128));
    job.Send(hView, WM_HSCROLL, SB_LEFT);
    job.Send(hView, WM_VSCROLL, SB_TOP);
    job.Paint();
    EXPECT_EQ(PixelAt(hView, {0, 0}), RGB(0, 0, 0));
    EXPECT_EQ(PixelAt(hView, {30, 30}), RGB(200, 60, 128));
}

TEST(Plugin, PanMovesThePictureWithTheHand) {
    PluginJob job(kEnglish);
    ASSERT_NE(job.Start(Quarters(3000, 2000)), nullptr);
    ASSERT_TRUE(job.WaitForPane(kPaneSize, L"3000 x 2000"));
    const HWND hView = job.View();
    test::PostMouse(hView, WM_LBUTTONDOWN, {400, 300}, MK_LBUTTON);
    test::PostMouse(hView, WM_MOUSEMOVE, {300, 250}, MK_LBUTTON);
    EXPECT_TRUE(WaitFor([&] { return ::GetScrollPos(hView, SB_HORZ) == 100 && ::GetScrollPos(hView, SB_VERT) == 50; }));
    test::PostMouse(hView, WM_MOUSEMOVE, {900, 260}, MK_LBUTTON);
    EXPECT_TRUE(WaitFor([&] { return ::GetScrollPos(hView, SB_HORZ) == 0 && ::GetScrollPos(hView, SB_VERT) == 40; }));
    test::PostMouse(hView, WM_LBUTTONUP, {900, 260});
    job.Command(ID_VIEW_BEST_FIT);
    EXPECT_TRUE(WaitFor([&] { return (::GetWindowLongPtrW(hView, GWL_STYLE) & (WS_HSCROLL | WS_VSCROLL)) == 0; }));
    test::PostMouse(hView, WM_LBUTTONDOWN, {400, 300}, MK_LBUTTON);
    test::PostMouse(hView, WM_LBUTTONUP, {400, 300});
    EXPECT_TRUE(job.Close());
}

TEST(Plugin, ClosingDuringAPanEndsTheJob) {
    PluginJob job(kEnglish);
    ASSERT_NE(job.Start(Quarters(3000, 2000)), nullptr);
    ASSERT_TRUE(job.WaitForPane(kPaneSize, L"3000 x 2000"));
    test::PostMouse(job.View(), WM_LBUTTONDOWN, {400, 300}, MK_LBUTTON);
    test::PostMouse(job.View(), WM_MOUSEMOVE, {300, 250}, MK_LBUTTON);
    EXPECT_TRUE(job.Close());
}

TEST(Plugin, SkeletonAndLineAreDrawnOverTheImage) {
    PluginJob job(kEnglish);
    ASSERT_NE(job.Start(Bar()), nullptr);
    ASSERT_TRUE(job.WaitForPane(kPaneSize, L"300 x 200"));
    ::PostMessageW(job.Frame(), WM_COMMAND, ID_SKELETONIZE, 0);
    EXPECT_EQ(AnswerBox(), L"Please get the skeleton of the image first!") << "no grey window yet";
    ::PostMessageW(job.Frame(), WM_COMMAND, ID_BINARY_SETTING, 0);
    AnswerBox();
    job.Command(ID_SKELETONIZE);
    EXPECT_FALSE(job.IsEnabled(ID_SKELETONIZE));
    const RECT rc = ClientRect(job.View());
    const POINT ptOrigin{(rc.right - 300) / 2, (rc.bottom - 200) / 2};
    const POINT ptSkeleton{ptOrigin.x + 150, ptOrigin.y + 199 - 101};
    EXPECT_TRUE(WaitFor([&] { return PixelAt(job.View(), ptSkeleton) == RGB(0, 255, 0); }));
    job.Command(ID_TOOL_LINE_DETECT);
    job.Send(job.View(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(ptSkeleton.x, ptSkeleton.y));
    EXPECT_TRUE(WaitFor([&] { return PixelAt(job.View(), ptSkeleton) == RGB(255, 0, 0); }));
}

TEST(Plugin, AboutOpensWithAndWithoutAJob) {
    PluginJob job(kEnglish);
    const auto showAndClose = [&] {
        const HANDLE hThread = ::CreateThread(
            nullptr, 0,
            [](void* pfn) -> DWORD {
                reinterpret_cast<pi_about_fn>(pfn)();
                return 0;
            },
            reinterpret_cast<void*>(job.Table().pfnAbout), 0, nullptr);
        const HWND hDlg = test::WaitForWindow(0, L"#32770", L"About");
        EXPECT_NE(hDlg, nullptr);
        test::PostCommand(hDlg, IDOK);
        EXPECT_TRUE(test::WaitForThread(hThread));
        ::CloseHandle(hThread);
    };
    showAndClose();
    ASSERT_NE(job.Start(Quarters(64, 48)), nullptr);
    showAndClose();
    ::PostMessageW(job.Frame(), WM_COMMAND, ID_ABOUT, 0);
    const HWND hDlg = test::WaitForWindow(0, L"#32770", L"About");
    EXPECT_FALSE(::IsWindowEnabled(job.Frame()));
    test::PostCommand(hDlg, IDOK);
    EXPECT_TRUE(WaitFor([&] { return ::IsWindowEnabled(job.Frame()) != FALSE; }));
}

std::size_t BusyHeapBlocks() {
    const auto hHeap = reinterpret_cast<HANDLE>(_get_heap_handle());
    PROCESS_HEAP_ENTRY entry{};
    std::size_t n = 0;
    ::HeapLock(hHeap);
    while (::HeapWalk(hHeap, &entry) != FALSE) {
        n += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? 1U : 0U;
    }
    ::HeapUnlock(hHeap);
    return n;
}

TEST(Plugin, TwoHundredJobsLeaveNothingBehind) {
    PluginJob job(kEnglish);
    std::size_t nGdi = 0, nUser = 0, nHeap = 0;
    for (int i = 0; i <= 200; ++i) {
        ASSERT_NE(job.Start(Quarters(64, 48)), nullptr) << i;
        ASSERT_TRUE(job.Close()) << i;
        if (i == 20) {
            nGdi = test::CountGdiObjects();
            nUser = test::CountUserObjects();
            nHeap = BusyHeapBlocks();
        }
    }
    EXPECT_LE(test::CountGdiObjects(), nGdi);
    EXPECT_LE(test::CountUserObjects(), nUser + 2);
    EXPECT_LE(BusyHeapBlocks(), nHeap + 260) << "the events of 180 jobs and little else";
}

TEST(Plugin, TwoThousandPaintsZoomsAndScrollsLeaveNothingBehind) {
    PluginJob job(kEnglish);
    ASSERT_NE(job.Start(Quarters(700, 500)), nullptr);
    ASSERT_TRUE(job.WaitForPane(kPaneSize, L"700 x 500"));
    job.Command(ID_TOOL_ZOOM);
    std::size_t nGdi = 0, nHeap = 0;
    for (int i = 0; i <= 500; ++i) {  // two thousand operations
        const UINT message = (i / 20) % 2 == 0 ? WM_LBUTTONDOWN : WM_RBUTTONDOWN;
        ::SendMessageW(job.View(), message, 0, MAKELPARAM(9, 9));
        ::SendMessageW(job.View(), WM_HSCROLL, static_cast<WPARAM>(i % 2 == 0 ? SB_LINERIGHT : SB_PAGELEFT), 0);
        ::SendMessageW(job.View(), WM_VSCROLL, static_cast<WPARAM>(i % 3 == 0 ? SB_PAGEDOWN : SB_LINEUP), 0);
        ::RedrawWindow(job.View(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        if (i == 50) {
            nGdi = test::CountGdiObjects();
            nHeap = BusyHeapBlocks();
        }
    }
    EXPECT_LE(test::CountGdiObjects(), nGdi + 2);
    EXPECT_LE(BusyHeapBlocks(), nHeap + 20);
}

}  // namespace
}  // namespace width
