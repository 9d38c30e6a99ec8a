// The dialogs for line conditions and for the label pattern, driven by ids, and what they change.
#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>

#include "res/resource.h"
#include "tests/e2e/PluginJob.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

using test::AnswerBox;
using test::WaitFor;

constexpr std::int32_t kWidth = 200, kHeight = 120;
constexpr COLORREF kGreen = RGB(0, 255, 0), kRed = RGB(255, 0, 0), kBlue = RGB(0, 0, 255), kOwn = RGB(120, 0, 130);
constexpr int kRed706 = 706, kGreen707 = 707, kBlue708 = 708;  // edit fields of the system's colour dialog

// Two level bars, 100 pixels long, on white.
std::vector<std::byte> Bars() {
    test::DibBuilder builder(kWidth, kHeight, 24);
    for (std::int32_t i = 0; i < kWidth * kHeight; ++i) {
        const std::int32_t x = i % kWidth, y = kHeight - 1 - i / kWidth;
        const bool bDark = x >= 50 && x < 150 && ((y >= 28 && y < 33) || (y >= 88 && y < 93));
        builder.SetPixel(x, i / kWidth, bDark ? Colour{} : Colour{255, 255, 255});
    }
    return builder.Block();
}

class Settings : public testing::TestWithParam<WORD> {
protected:
    void SetUp() override {
        ASSERT_NE(job.Start(Bars()), nullptr);
        ASSERT_TRUE(job.WaitForPane(1, L"200 x 120"));
    }
    bool IsChinese() const { return GetParam() == 0x0804; }

    void Open(UINT nCommand, const wchar_t* english, const wchar_t* chinese) {
        ::PostMessageW(job.Frame(), WM_COMMAND, nCommand, 0);
        m_hDlg = test::WaitForWindow(0, L"#32770", IsChinese() ? chinese : english);
        ASSERT_NE(m_hDlg, nullptr);
    }
    void OpenLines() { Open(ID_LINE_SETTING, L"Line Standard Setting", L"\u76f4\u7ebf\u7504\u522b\u6807\u51c6\u8bbe\u7f6e"); }
    void OpenLabels() { Open(ID_LABEL_SETTING, L"Color and Font Setting", L"\u989c\u8272\u548c\u5b57\u4f53\u8bbe\u7f6e"); }
    HWND Item(int nId) const { return ::GetDlgItem(m_hDlg, nId); }
    void Type(int nId, const wchar_t* text) const { ::SendMessageW(Item(nId), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)); }
    bool IsChecked(int nId) const { return ::IsDlgButtonChecked(m_hDlg, nId) == BST_CHECKED; }
    void Close(UINT nId) {
        test::PostCommand(m_hDlg, nId);
        ASSERT_TRUE(WaitFor([&] { return ::IsWindow(m_hDlg) == FALSE; }));
    }
    /// A dialog that is open over the present one.
    HWND Upper() const {
        HWND hFound = nullptr;
        WaitFor([&] {
            hFound = test::FindTopWindow(0, L"#32770");
            return hFound != nullptr && hFound != m_hDlg;
        });
        return hFound;
    }
    /// Presses OK and gives the text of the box that refuses it.
    std::wstring Refusal() const {
        test::PostCommand(m_hDlg, IDOK);
        const HWND hBox = Upper();
        const std::wstring text = test::MessageBoxText(hBox);
        test::PostCommand(hBox, IDOK);
        WaitFor([&] { return ::IsWindow(hBox) == FALSE; });
        return text;
    }
    std::wstring Lines() const {
        return test::TextOf(Item(IDC_LINE_LENGTH)) + L"|" + test::TextOf(Item(IDC_LINE_ANGLE)) + L"|" +
               test::TextOf(Item(IDC_RECT_WIDTH)) + (IsChecked(IDC_RECT_ALGORITHM) ? L"|x" : L"|.");
    }
    /// Picks a colour for a swatch in the system's dialog, or leaves that without one.
    void Pick(int nSwatch, COLORREF clr, UINT nEnd) const {
        ::PostMessageW(Item(nSwatch), BM_CLICK, 0, 0);
        const HWND hColours = Upper();
        ::SetDlgItemInt(hColours, kRed706, GetRValue(clr), FALSE);
        ::SetDlgItemInt(hColours, kGreen707, GetGValue(clr), FALSE);
        ::SetDlgItemInt(hColours, kBlue708, GetBValue(clr), FALSE);
        test::PostCommand(hColours, nEnd);
        WaitFor([&] { return ::IsWindow(hColours) == FALSE; });
    }
    /// Colours of a swatch's frame, ring and middle.
    std::vector<COLORREF> Swatch(int nId) const {
        ::RedrawWindow(Item(nId), nullptr, nullptr, RDW_UPDATENOW);
        ::SendMessageW(m_hDlg, WM_NULL, 0, 0);
        return {test::PixelAt(Item(nId), {0, 0}), test::PixelAt(Item(nId), {1, 1}), test::PixelAt(Item(nId), {5, 5})};
    }
    POINT Client(std::int32_t x, std::int32_t y) const {
        const RECT rc = test::ClientRect(job.View());
        return {(rc.right - kWidth) / 2 + x, (rc.bottom - kHeight) / 2 + y};
    }
    void Click(std::int32_t x, std::int32_t y) const {
        const POINT pt = Client(x, y);
        job.Send(job.View(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(pt.x, pt.y));
    }
    COLORREF At(std::int32_t x, std::int32_t y) const {
        job.Paint();
        return test::PixelAt(job.View(), Client(x, y));
    }
    void MakeSkeleton() const {
        ::PostMessageW(job.Frame(), WM_COMMAND, ID_BINARY_SETTING, 0);
        AnswerBox();
        job.Command(ID_SKELETONIZE);
        job.Command(ID_TOOL_LINE_DETECT);
    }
    void MeasureBars() const {
        job.Command(ID_TOOL_WIDTH_LABEL);
        for (const auto& [x, y] : {std::pair{147, 30}, {53, 30}, {147, 90}, {53, 90}, {100, 60}}) {
            Click(x, y);
        }
    }
    /// How far the label's turned text reaches to the right of its arrow, in pixels; edges of letters may be shaded.
    int TextHeight() const {
        int nReach = 0;
        for (std::int32_t i = 0; i < 45 * 50; ++i) {
            if (At(102 + i % 45, 35 + i / 45) != RGB(255, 255, 255)) {
                nReach = std::max(nReach, i % 45);
            }
        }
        return nReach;
    }

    test::PluginJob job{GetParam()};
    HWND m_hDlg = nullptr;
};

INSTANTIATE_TEST_SUITE_P(Languages, Settings, testing::Values(WORD{0x0409}, WORD{0x0804}));

TEST_P(Settings, LineConditionsAreShownCheckedAndKept) {
    OpenLines();
    EXPECT_EQ(Lines(), L"30|0.01745|3|x");
    Close(IDOK);
    OpenLines();
    EXPECT_EQ(Lines(), L"30|0.01745|3|x") << "confirming at once changes nothing";
    Type(IDC_LINE_LENGTH, L"1000");
    Type(IDC_LINE_ANGLE, L" 12.5e1 ");
    Type(IDC_RECT_WIDTH, L"0");
    Close(IDCANCEL);
    OpenLines();
    EXPECT_EQ(Lines(), L"30|0.01745|3|x") << "the close box changes nothing";
    Type(IDC_LINE_LENGTH, L"1000");
    Type(IDC_LINE_ANGLE, L" 12.5e1 ");
    Type(IDC_RECT_WIDTH, L"0");
    Close(IDOK);
    EXPECT_TRUE(job.Close());
    ASSERT_NE(job.Start(Bars()), nullptr);
    OpenLines();
    EXPECT_EQ(Lines(), L"1000|125|0|x") << "kept for the next job";
    Close(IDCANCEL);
}

TEST_P(Settings, NumbersDoNotDependOnTheHostsLocale) {
    ASSERT_NE(std::setlocale(LC_NUMERIC, "German"), nullptr);  // the C library is the plug-in's too
    OpenLines();
    EXPECT_EQ(Lines(), L"30|0.01745|3|x");
    Type(IDC_LINE_ANGLE, L"0.5");
    Type(IDC_LINE_LENGTH, std::wstring(70, L'0').append(L"40").c_str());
    Close(IDOK);
    OpenLines();
    EXPECT_EQ(Lines(), L"40|0.5|3|x");
    Close(IDCANCEL);
    std::setlocale(LC_NUMERIC, "C");
}

TEST_P(Settings, LineConditionsOutOfRangeStopTheOkInTheirOrder) {
    const std::wstring number = IsChinese() ? L"\u8bf7\u8f93\u5165\u4e00\u4e2a\u6570\u3002" : L"Please enter a number.";
    const std::wstring range = IsChinese() ? L"\u8bf7\u8f93\u5165\u4e00\u4e2a\u5728 0 \u548c 1000 \u4e4b\u95f4\u7684\u6570\u3002"
                                           : L"Please enter a number between 0 and 1000.";
    const std::wstring whole = IsChinese()
                                   ? L"\u8bf7\u8f93\u5165\u4e00\u4e2a\u5728 0 \u548c 1000 \u4e4b\u95f4\u7684\u6574\u6570\u3002"
                                   : L"Please enter an integer between 0 and 1000.";
    OpenLines();
    Type(IDC_RECT_WIDTH, L"1001");
    Type(IDC_LINE_LENGTH, L"1001");
    for (const wchar_t* text : {L"", L"inf", L"0x10", L"1.5 m", L"+-1", L"-"}) {
        Type(IDC_LINE_ANGLE, text);
        EXPECT_EQ(Refusal(), number) << text;
    }
    for (const wchar_t* text : {L"1000.1", L"-0.01", L"1e39", L"1e999", L"-1e39"}) {
        Type(IDC_LINE_ANGLE, text);
        EXPECT_EQ(Refusal(), range) << text;
    }
    Type(IDC_LINE_ANGLE, L"\t1000\t");
    for (const wchar_t* text : {L"1001", L"99999999999", L"-99999999999"}) {
        Type(IDC_LINE_LENGTH, text);
        EXPECT_EQ(Refusal(), whole) << "the length " << text;
    }
    Type(IDC_LINE_LENGTH, L"\t-0 ");
    ::SendMessageW(Item(IDC_RECT_ALGORITHM), BM_CLICK, 0, 0);
    EXPECT_FALSE(::IsWindowEnabled(Item(IDC_RECT_WIDTH)));
    EXPECT_EQ(Refusal(), whole) << "the width, also when its field is off";
    Type(IDC_RECT_WIDTH, L"7");
    Close(IDOK);
    OpenLines();
    EXPECT_EQ(Lines(), L"0|1000|7|.");
    Type(IDC_LINE_ANGLE, L"-0");
    Close(IDOK);
    OpenLines();
    EXPECT_EQ(Lines(), L"0|0|7|.") << "and not \"-0\"";
    Type(IDC_LINE_ANGLE, L"1000");
    EXPECT_TRUE(::IsWindowEnabled(Item(IDC_RECT_WIDTH))) << "on at every opening";
    ::SendMessageW(Item(IDC_RECT_ALGORITHM), BM_CLICK, 0, 0);
    EXPECT_TRUE(::IsWindowEnabled(Item(IDC_RECT_WIDTH)));
    ::SendMessageW(Item(IDC_RECT_ALGORITHM), BM_CLICK, 0, 0);
    EXPECT_FALSE(::IsWindowEnabled(Item(IDC_RECT_WIDTH)));
    Close(IDCANCEL);
}

TEST_P(Settings, ANewLengthHoldsFromTheNextDetectionOn) {
    MakeSkeleton();
    Click(100, 30);
    EXPECT_EQ(At(100, 30), kRed);
    OpenLines();
    Type(IDC_LINE_LENGTH, L"150");
    ::SendMessageW(Item(IDC_RECT_ALGORITHM), BM_CLICK, 0, 0);
    Close(IDOK);
    Click(100, 90);
    EXPECT_EQ(At(100, 90), kGreen) << "too short now";
    EXPECT_EQ(At(100, 30), kRed) << "what was detected stays";
}

TEST_P(Settings, ColoursAndWriteFlagsTakeEffectWithOk) {
    MakeSkeleton();
    Click(100, 30);
    Click(100, 90);
    MeasureBars();
    EXPECT_EQ(At(100, 45), kBlue);
    OpenLabels();
    EXPECT_TRUE(IsChecked(IDC_SAVE_LINE));
    EXPECT_FALSE(IsChecked(IDC_SAVE_SKELETON));
    EXPECT_EQ(Swatch(IDC_SKELETON_COLOUR), std::vector<COLORREF>(3, kGreen));
    EXPECT_EQ(Swatch(IDC_LABEL_COLOUR), std::vector<COLORREF>(3, kBlue));
    EXPECT_EQ(Swatch(IDC_LINE_COLOUR), std::vector<COLORREF>(3, kRed));
    Pick(IDC_LABEL_COLOUR, kOwn, IDCANCEL);
    EXPECT_EQ(Swatch(IDC_LABEL_COLOUR)[2], kBlue);
    Pick(IDC_LABEL_COLOUR, kOwn, IDOK);
    EXPECT_EQ(Swatch(IDC_LABEL_COLOUR), std::vector<COLORREF>(3, kOwn));
    Close(IDCANCEL);
    EXPECT_EQ(At(100, 45), kBlue) << "dropped with the close box";

    OpenLabels();
    Pick(IDC_LABEL_COLOUR, kOwn, IDOK);
    Pick(IDC_LINE_COLOUR, RGB(1, 2, 200), IDOK);
    Pick(IDC_SKELETON_COLOUR, RGB(0, 200, 190), IDOK);
    ::SendMessageW(Item(IDC_SAVE_SKELETON), BM_CLICK, 0, 0);
    ::SendMessageW(Item(IDC_SAVE_LINE), BM_CLICK, 0, 0);
    Close(IDOK);
    EXPECT_EQ(At(100, 45), kOwn) << "a label that was there";
    EXPECT_EQ(At(70, 30), RGB(1, 2, 200));
    ::PostMessageW(job.Frame(), WM_COMMAND, ID_WRITE_TO_BITMAP, 0);
    AnswerBox();
    job.Command(ID_SEND_IMAGE);
    const auto events = job.Events();
    ASSERT_FALSE(events.empty());
    const DibView dib = *DibView::Open(events.back().block);
    EXPECT_EQ(dib.PixelAt(90, kHeight - 1 - 30), (Colour{0, 200, 190})) << "the skeleton and not the line";
    EXPECT_EQ(dib.PixelAt(100, kHeight - 1 - 45), (Colour{120, 0, 130}));
    OpenLabels();
    EXPECT_FALSE(IsChecked(IDC_SAVE_LINE));
    EXPECT_TRUE(IsChecked(IDC_SAVE_SKELETON));
    Close(IDOK);
}

TEST_P(Settings, ALargerFontMakesTheTextsOfAllLabelsLarger) {
    constexpr int kSizeId = 1138;  // combo box of the system's font dialog
    MakeSkeleton();
    Click(100, 30);
    Click(100, 90);
    MeasureBars();
    const int nBefore = TextHeight();
    EXPECT_GT(nBefore, 5);
    OpenLabels();
    Close(IDOK);
    EXPECT_EQ(TextHeight(), nBefore) << "an equal font";
    OpenLabels();
    ::PostMessageW(Item(IDC_LABEL_FONT), BM_CLICK, 0, 0);
    const HWND hFonts = Upper();
    ASSERT_NE(::GetDlgItem(hFonts, kSizeId), nullptr);
    ::SetDlgItemTextW(hFonts, kSizeId, L"18");
    ::SendMessageW(hFonts, WM_COMMAND, MAKEWPARAM(kSizeId, CBN_EDITCHANGE), 0);
    test::PostCommand(hFonts, IDOK);
    WaitFor([&] { return ::IsWindow(hFonts) == FALSE; });
    Close(IDOK);
    EXPECT_GT(TextHeight(), nBefore * 13 / 10);
}

}  // namespace
}  // namespace width
