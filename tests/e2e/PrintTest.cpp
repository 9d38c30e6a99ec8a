// Printing and print preview of a running job: a page on paper, as another program sees it, and the page on the screen.
#include <gtest/gtest.h>

#include <cmath>

#include "res/resource.h"
#include "tests/e2e/PluginJob.h"
#include "tests/e2e/TestPrinter.h"
#include "tests/support/Pictures.h"

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
constexpr UINT kPane = 59648, kPreviewBar = 59394, kStatusBar = 59393, kToolBar = 59392;
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

class PrintTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_printer.IsReady()); }

    /// Gives the print command and answers the dialog.
    static void PrintWithDialog(const PluginJob& job, UINT nAnswer = IDOK) {
        ::PostMessageW(job.Frame(), WM_COMMAND, ID_FILE_PRINT, 0);
        const HWND hDlg = test::WaitForWindow(0, L"#32770");
        ASSERT_NE(hDlg, nullptr);
        test::PostCommand(hDlg, nAnswer);
        ASSERT_TRUE(WaitFor([&] { return ::IsWindow(hDlg) == FALSE; }));
    }

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
        ASSERT_NE(job.Start(block), nullptr);
        PrintWithDialog(job);
        ASSERT_TRUE(m_printer.WaitForDocument());
        EXPECT_TRUE(WaitFor([&] { return ::IsWindowEnabled(job.Frame()) != FALSE; }));
        const auto page = m_printer.RenderPage();
        ASSERT_TRUE(page.has_value());
        ExpectPictureOnPaper(*page, dib);
    }
}

}  // namespace
}  // namespace width
