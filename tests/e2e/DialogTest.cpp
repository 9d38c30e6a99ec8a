// The plug-in's dialogs, driven by ids.
#include <gtest/gtest.h>

#include "res/resource.h"
#include "tests/e2e/PluginJob.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

using test::WaitFor;

// Black, grey and white: the automatic threshold is 100.
std::vector<std::byte> Picture() {
    test::DibBuilder builder(40, 40, 8);
    return builder.GreyTable().Fill([](std::int32_t x, std::int32_t) { return x < 14 ? 0U : (x < 22 ? 100U : 255U); }).Block();
}

class BinaryDialog : public testing::Test {
protected:
    HWND Open(const wchar_t* title, test::PluginJob& job) {
        ::PostMessageW(job.Frame(), WM_COMMAND, ID_BINARY_SETTING, 0);
        return m_hDlg = test::WaitForWindow(0, L"#32770", title);
    }
    std::wstring Text(UINT nId) const { return test::TextOf(::GetDlgItem(m_hDlg, static_cast<int>(nId))); }
    void Type(UINT nId, const wchar_t* text) const {
        ::SendMessageW(::GetDlgItem(m_hDlg, static_cast<int>(nId)), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text));
    }
    void Press(UINT nId) const { ::SendMessageW(::GetDlgItem(m_hDlg, static_cast<int>(nId)), BM_CLICK, 0, 0); }
    /// Checked radio buttons and enabled fields as a text: "as|1100".
    std::wstring State() const {
        std::wstring state;
        for (const int nId : {IDC_AUTO_MODE, IDC_SELF_MODE}) {
            state += ::IsDlgButtonChecked(m_hDlg, static_cast<int>(nId)) == BST_CHECKED ? L'x' : L'.';
        }
        for (const int nId : {IDC_AUTO_MIN_GREY, IDC_AUTO_MAX_GREY, IDC_SELF_MIN_GREY, IDC_SELF_MAX_GREY}) {
            state += ::IsWindowEnabled(::GetDlgItem(m_hDlg, nId)) != FALSE ? L'1' : L'0';
        }
        return state;
    }
    bool WaitClosed() const {
        return WaitFor([&] { return ::IsWindow(m_hDlg) == FALSE; });
    }
    /// Presses OK and gives the text of the box that refuses it.
    std::wstring Refusal() const {
        test::PostCommand(m_hDlg, IDOK);
        HWND hBox = nullptr;
        WaitFor([&] {
            hBox = test::FindTopWindow(0, L"#32770");
            return hBox != nullptr && hBox != m_hDlg;
        });
        const std::wstring text = test::MessageBoxText(hBox);
        test::PostCommand(hBox, IDOK);
        WaitFor([&] { return ::IsWindow(hBox) == FALSE; });
        return text;
    }

    HWND m_hDlg = nullptr;
};

TEST_F(BinaryDialog, OpensInTheAutomaticModeAndSwitches) {
    for (const bool bChinese : {false, true}) {
        test::PluginJob job(bChinese ? 0x0804 : 0x0409);
        ASSERT_NE(job.Start(Picture()), nullptr);
        ASSERT_TRUE(job.WaitForPane(1, L"40 x 40"));
        ASSERT_NE(Open(bChinese ? L"\u4e8c\u503c\u5316\u8bbe\u7f6e" : L"Binary setting", job), nullptr);
        EXPECT_EQ(State(), L"x.1100");
        EXPECT_EQ(Text(IDC_AUTO_MIN_GREY) + L" " + Text(IDC_AUTO_MAX_GREY), L"0 100");
        EXPECT_EQ(Text(IDC_SELF_MIN_GREY) + L" " + Text(IDC_SELF_MAX_GREY), L"155 255");
        Press(IDC_SELF_MODE);
        EXPECT_EQ(State(), L".x0011");
        Press(IDC_AUTO_MODE);
        EXPECT_EQ(State(), L"x.1100");
        EXPECT_FALSE(::IsWindowEnabled(job.Frame()));
        test::PostCommand(m_hDlg, IDCANCEL);
        EXPECT_TRUE(WaitClosed());
        EXPECT_TRUE(WaitFor([&] { return ::IsWindowEnabled(job.Frame()) != FALSE; }));
    }
}

TEST_F(BinaryDialog, ValuesOutsideTheRangeStopTheOkInOrder) {
    test::PluginJob job(0x0409);
    ASSERT_NE(job.Start(Picture()), nullptr);
    ASSERT_TRUE(job.WaitForPane(1, L"40 x 40"));
    ASSERT_NE(Open(L"Binary setting", job), nullptr);
    Type(IDC_AUTO_MAX_GREY, L"300");
    Type(IDC_SELF_MIN_GREY, L"");
    Press(IDC_SELF_MODE);  // the check covers the disabled group too
    EXPECT_EQ(Refusal(), L"Please enter an integer between 0 and 255.");
    Type(IDC_AUTO_MAX_GREY, L"255");
    EXPECT_EQ(Refusal(), L"Please enter an integer.");
    Type(IDC_SELF_MIN_GREY, L"-5");
    EXPECT_EQ(Refusal(), L"Please enter an integer between 0 and 255.");
    Type(IDC_SELF_MIN_GREY, L"200");
    test::PostCommand(m_hDlg, IDOK);
    EXPECT_TRUE(WaitClosed());
    job.Command(ID_SKELETONIZE);
    EXPECT_FALSE(job.IsEnabled(ID_SKELETONIZE)) << "the window 200..255 was taken";
    ASSERT_NE(Open(L"Binary setting", job), nullptr);
    EXPECT_EQ(Text(IDC_SELF_MIN_GREY), L"155") << "nothing of the last time is offered again";
    test::PostCommand(m_hDlg, IDCANCEL);
    EXPECT_TRUE(WaitClosed());
    EXPECT_FALSE(job.IsEnabled(ID_SKELETONIZE)) << "the close box changes nothing";
    Open(L"Binary setting", job);
    test::PostCommand(m_hDlg, IDOK);
    EXPECT_TRUE(WaitClosed());
    EXPECT_TRUE(WaitFor([&] { return job.IsEnabled(ID_SKELETONIZE); })) << "every OK gives up the skeleton";
}

TEST_F(BinaryDialog, WithoutAnImageTheThresholdHasToBeCorrected) {
    test::PluginJob job(0x0409);
    ASSERT_NE(job.Start(std::vector<std::byte>(50)), nullptr);
    ASSERT_NE(Open(L"Binary setting", job), nullptr);
    EXPECT_EQ(Text(IDC_AUTO_MAX_GREY), L"-1");
    EXPECT_EQ(Refusal(), L"Please enter an integer between 0 and 255.");
    Type(IDC_AUTO_MAX_GREY, L"9");
    test::PostCommand(m_hDlg, IDOK);
    EXPECT_TRUE(WaitClosed());
}

TEST_F(BinaryDialog, ClosingTheJobWhileItIsOpenIsSafe) {
    test::PluginJob job(0x0409);
    ASSERT_NE(job.Start(Picture()), nullptr);
    ASSERT_TRUE(job.WaitForPane(1, L"40 x 40"));
    ASSERT_NE(Open(L"Binary setting", job), nullptr);
    EXPECT_TRUE(job.Close());
}

}  // namespace
}  // namespace width
