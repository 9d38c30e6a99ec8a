// The road of a measurement by mouse, and the block that comes back, compared byte for byte with one that is made here from the
// core's results and plain system calls.
#include <gtest/gtest.h>

#include <cstring>

#include "analysis/LineStore.h"
#include "analysis/Skeleton.h"
#include "measure/Picking.h"
#include "res/resource.h"
#include "tests/e2e/PluginJob.h"
#include "tests/support/Pictures.h"
#include "tests/win/LiteralLabel.h"

namespace width {
namespace {

using Block = std::vector<std::byte>;

constexpr std::int32_t kWidth = 333, kHeight = 260;
constexpr COLORREF kBlue = RGB(0, 0, 255), kRed = RGB(255, 0, 0);

// Two level bars, two that lean by one in three, all dark; y from the top.
bool IsDark(std::int32_t x, std::int32_t y) {
    const bool bLevel = x >= 20 && x < 300 && ((y >= 20 && y < 25) || (y >= 70 && y < 75));
    const std::int32_t nLean = y - x / 3;
    return bLevel || (x >= 40 && x < 280 && ((nLean >= 80 && nLean < 87) || (nLean >= 130 && nLean < 137)));
}

struct Kind {
    std::uint16_t nBits;
    std::uint32_t nClrUsed;  // 0: all
};

std::vector<Colour> TableOf(const Kind& kind) {
    static const std::vector<Colour> kColours{{20, 30, 40}, {240, 230, 200}, {200, 40, 30}, {240, 230, 200}, {10, 20, 160}};
    std::vector<Colour> table;
    for (std::uint32_t i = 0; i < (kind.nClrUsed != 0 ? kind.nClrUsed : 1U << kind.nBits); ++i) {
        const auto n = static_cast<std::uint8_t>(i);
        table.push_back(i < kColours.size() ? kColours[i] : Colour{n, static_cast<std::uint8_t>(255 - n), 90});
    }
    return table;
}

// Dark is the first colour, light the second; what is behind the pixels of a row is set.
Block Picture(const Kind& kind) {
    test::DibBuilder builder(kWidth, kHeight, kind.nBits, kind.nClrUsed);
    builder.SetResolution(2000, 1000);
    const std::vector<Colour> table = kind.nBits <= 8 ? TableOf(kind) : std::vector<Colour>{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        builder.SetColour(i, table[i]);
    }
    for (std::int32_t i = 0; i < kWidth * kHeight; ++i) {
        const std::int32_t x = i % kWidth, s = i / kWidth;
        const bool bDark = IsDark(x, kHeight - 1 - s);
        if (kind.nBits <= 8) {
            builder.SetIndex(x, s, bDark ? 0 : 1);
        } else {
            builder.SetPixel(x, s, bDark ? Colour{20, 30, 40} : Colour{240, 230, 200});
        }
    }
    Block block = builder.Block();
    const DibFigures figures = CheckPackedDib(block).figures;
    for (std::int32_t s = 0; s < kHeight; ++s) {
        std::byte* const pRow = block.data() + figures.nBitsOffset + std::size_t{figures.nStride} * static_cast<std::size_t>(s);
        const std::size_t nFullBytes = static_cast<std::size_t>(kWidth) * kind.nBits / 8;
        for (std::size_t i = nFullBytes + 1; i < figures.nStride; ++i) {
            pRow[i] = std::byte{0xA5};
        }
    }
    return block;
}

// The same clicks, done on the core.
class Model {
public:
    Model(const Block& block, SIZE client) : m_dib(*DibView::Open(block)), m_map(*MakeSkeleton(m_dib, {0, 100})) {
        m_geometry = UnitGeometry(kWidth, kHeight);
        m_geometry.nClientWidth = client.cx;
        m_geometry.nClientHeight = client.cy;
    }
    void Detect(POINT ptClient) { DetectLine(m_map, ClientToImage(ptClient, m_geometry), {}, m_store); }
    void Pick(POINT ptClient) { m_picker.Click(ptClient, &m_map, m_geometry, m_labels); }
    POINT Client(POINT ptImage) const { return ImageToClient(ptImage, m_geometry); }
    std::vector<POINT> Ends(std::size_t nLine) const {
        const DetectedLine& line = m_store.m_Lines.at(nLine);
        return {{line.ptFirst.x, kHeight - 1 - line.ptFirst.y}, {line.ptLast.x, kHeight - 1 - line.ptLast.y}};
    }

    DibView m_dib;
    SkeletonMap m_map;
    ViewGeometry m_geometry;
    LineStore m_store;
    LinePairPicker m_picker;
    LabelList m_labels;
};

// A picture of 24 bits with lines and labels drawn on it by the system, rows from the bottom.
class Drawing {
public:
    explicit Drawing(const Model& model) {
        BITMAPINFO info{};
        info.bmiHeader = {sizeof info.bmiHeader, kWidth, kHeight, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
        const HDC hdc = ::CreateCompatibleDC(nullptr);
        void* pBits = nullptr;
        const HBITMAP hBitmap = ::CreateDIBSection(hdc, &info, DIB_RGB_COLORS, &pBits, nullptr, 0);
        const HGDIOBJ hOld = ::SelectObject(hdc, hBitmap);
        for (std::int32_t i = 0; i < kWidth * kHeight; ++i) {
            const Colour colour = model.m_dib.PixelAt(i % kWidth, i / kWidth);
            ::SetPixelV(hdc, i % kWidth, kHeight - 1 - i / kWidth, RGB(colour.red, colour.green, colour.blue));
        }
        const HPEN hPen = ::CreatePen(PS_SOLID, 1, kRed);
        const HGDIOBJ hOldPen = ::SelectObject(hdc, hPen);
        for (const DetectedLine& line : model.m_store.m_Lines) {
            ::MoveToEx(hdc, line.ptFirst.x, kHeight - 1 - line.ptFirst.y, nullptr);
            ::LineTo(hdc, line.ptLast.x, kHeight - 1 - line.ptLast.y);
        }
        ::DeleteObject(::SelectObject(hdc, hOldPen));
        LOGFONTW font{};
        font.lfHeight = -13;
        font.lfCharSet = DEFAULT_CHARSET;
        std::wcscpy(font.lfFaceName, L"Times New Roman");
        test::DrawLabelsLiterally(hdc, model.m_labels, kBlue, font, {2000, 1000});
        ::GdiFlush();
        m_rows.assign(static_cast<std::uint8_t*>(pBits), static_cast<std::uint8_t*>(pBits) + kStride * kHeight);
        ::SelectObject(hdc, hOld);
        ::DeleteObject(hBitmap);
        ::DeleteDC(hdc);
    }
    const std::uint8_t* At(std::int32_t x, std::int32_t s) const {
        return m_rows.data() + kStride * static_cast<std::size_t>(s) + 3 * static_cast<std::size_t>(x);
    }
    static constexpr std::size_t kStride = (kWidth * 24 + 31) / 32 * 4;

private:
    std::vector<std::uint8_t> m_rows;
};

HPALETTE PaletteOf(const std::vector<Colour>& table) {
    std::vector<std::uint32_t> words(1 + table.size());
    words[0] = static_cast<std::uint32_t>(table.size()) << 16 | 0x300;  // version and count
    for (std::size_t i = 0; i < table.size(); ++i) {
        words[i + 1] = RGB(table[i].red, table[i].green, table[i].blue);
    }
    return ::CreatePalette(reinterpret_cast<const LOGPALETTE*>(words.data()));
}

// The block with the drawing stored in it, a pixel at a time.
Block Stored(const Block& block, const Kind& kind, const Drawing& drawing) {
    Block stored = block;
    const DibFigures figures = CheckPackedDib(block).figures;
    auto* const pBits = reinterpret_cast<std::uint8_t*>(stored.data()) + figures.nBitsOffset;
    if (kind.nBits == 24) {
        std::memcpy(pBits, drawing.At(0, 0), Drawing::kStride * kHeight);
    }
    if (kind.nBits > 8) {
        return stored;
    }
    const HPALETTE hPalette = PaletteOf(TableOf(kind));
    for (std::int32_t i = 0; i < kWidth * kHeight; ++i) {
        const auto x = static_cast<std::size_t>(i % kWidth);
        const std::uint8_t* const pColour = drawing.At(i % kWidth, i / kWidth);
        const UINT nIndex = ::GetNearestPaletteIndex(hPalette, RGB(pColour[2], pColour[1], pColour[0]));
        std::uint8_t& byte = pBits[figures.nStride * static_cast<std::size_t>(i / kWidth) + x * kind.nBits / 8];
        const std::size_t nPerByte = 8U / kind.nBits;
        const auto nShift = static_cast<unsigned>(8 - kind.nBits * (x % nPerByte + 1));
        const unsigned nMask = ((1U << kind.nBits) - 1) << nShift;
        byte = static_cast<std::uint8_t>((nIndex << nShift & nMask) | (byte & ~nMask));
    }
    ::DeleteObject(hPalette);
    return stored;
}

class WriteToBitmap : public testing::TestWithParam<Kind> {
protected:
    void ChooseGreyWindow() {
        ::PostMessageW(job.Frame(), WM_COMMAND, ID_BINARY_SETTING, 0);
        const HWND hDlg = test::WaitForWindow(0, L"#32770");
        ::SendDlgItemMessageW(hDlg, IDC_AUTO_MAX_GREY, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"100"));
        test::PostCommand(hDlg, IDOK);
        test::WaitFor([&] { return ::IsWindow(hDlg) == FALSE; });
    }
    void Press(POINT ptClient) { job.Send(job.View(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(ptClient.x, ptClient.y)); }
    void Detect(Model& model, POINT ptImage) {
        Press(model.Client(ptImage));
        model.Detect(model.Client(ptImage));
    }
    void Measure(Model& model, std::size_t nLine1, std::size_t nLine2, POINT ptPlace) {
        std::vector<POINT> clicks = model.Ends(nLine1);
        for (const POINT pt : model.Ends(nLine2)) {
            clicks.push_back(pt);
        }
        clicks.push_back(ptPlace);
        for (const POINT pt : clicks) {
            Press(model.Client(pt));
            model.Pick(model.Client(pt));
        }
    }
    Block Written() {
        ::PostMessageW(job.Frame(), WM_COMMAND, ID_WRITE_TO_BITMAP, 0);
        EXPECT_EQ(test::AnswerBox(), L"Labels have been written to the bitmap");
        job.Command(ID_SEND_IMAGE);
        return job.Events().back().block;
    }

    test::PluginJob job{0x0409};
};

TEST_P(WriteToBitmap, TheBlockIsTheDrawingInItsOwnPixels) {
    const Block block = Picture(GetParam());
    ASSERT_NE(job.Start(block), nullptr);
    ASSERT_TRUE(job.WaitForPane(1, L"333 x 260"));
    ChooseGreyWindow();
    job.Command(ID_SKELETONIZE);
    job.Command(ID_TOOL_LINE_DETECT);
    const RECT rc = test::ClientRect(job.View());
    Model model(block, {rc.right, rc.bottom});
    for (const POINT pt : {POINT{150, 22}, POINT{150, 72}, POINT{150, 133}, POINT{150, 183}}) {
        Detect(model, pt);
    }
    ASSERT_EQ(model.m_store.m_Lines.size(), 4U);
    job.Command(ID_TOOL_WIDTH_LABEL);
    Measure(model, 0, 1, {200, 40});
    Measure(model, 2, 3, {90, 150});
    Measure(model, 3, 2, {320, 190});
    ASSERT_EQ(model.m_labels.m_nCurLabel, 3);
    job.Command(ID_EDIT_UNDO);  // what is undone is not written
    model.m_labels.Undo();

    const Block expected = Stored(block, GetParam(), Drawing(model));
    const Block written = Written();
    EXPECT_TRUE(written == expected) << "first byte that differs: "
                                     << std::mismatch(written.begin(), written.end(), expected.begin(), expected.end()).first -
                                            written.begin();
    EXPECT_EQ(written == block, GetParam().nBits == 32) << "32 bits are not written";
    EXPECT_TRUE(Written() == expected) << "the same once more";
}

INSTANTIATE_TEST_SUITE_P(Depths, WriteToBitmap,
                         testing::Values(Kind{1, 0}, Kind{1, 2}, Kind{4, 0}, Kind{4, 5}, Kind{8, 0}, Kind{8, 3}, Kind{24, 0},
                                         Kind{32, 0}),
                         [](const testing::TestParamInfo<Kind>& kind) {
                             return std::to_string(kind.param.nBits) + "bits" + std::to_string(kind.param.nClrUsed);
                         });

}  // namespace
}  // namespace width
