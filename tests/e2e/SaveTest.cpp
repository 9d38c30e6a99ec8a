// What a save does to the job, over the recording library: calls, records, the block, messages, the modified flag.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "res/resource.h"
#include "tests/e2e/SaveJob.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

using test::SaveDialog;

class Save : public testing::TestWithParam<WORD> {
protected:
    bool IsChinese() const { return GetParam() == 0x0804; }
    void Start(std::uint16_t nBits) {
        block = test::DibBuilder(20, 10, nBits).Block();
        SetColoursUsed(0, nBits);
        ASSERT_NE(job.Start(block), nullptr);
        ASSERT_TRUE(job.WaitForPane(1, L"20 x 10"));
    }
    void SetColoursUsed(std::uint32_t nUsed, std::uint16_t nBits) {
        if (nBits <= 8) {
            BITMAPINFOHEADER header;
            std::memcpy(&header, block.data(), sizeof header);
            ASSERT_EQ(block.size(), sizeof header + (4U << nBits) + header.biHeight * ((20U * nBits + 31) / 32 * 4));
            header.biClrUsed = nUsed;
            std::memcpy(block.data(), &header, sizeof header);
        }
    }
    /// biClrUsed of the picture that the host gets.
    std::uint32_t ColoursUsed() {
        job.Command(ID_SEND_IMAGE);
        BITMAPINFOHEADER header{};
        const auto events = job.Events();
        if (!events.empty()) {
            std::memcpy(&header, events.back().block.data(), sizeof header);
        }
        return header.biClrUsed;
    }
    void SaveAs(const std::wstring& name) const {
        const SaveDialog dlg(job, ID_FILE_SAVE_AS_PICTURE);
        dlg.Type(folder + L"\\" + name);
        EXPECT_TRUE(dlg.Close(IDOK));
    }
    std::wstring FailureText(const std::wstring& path) const {
        return IsChinese() ? L"保存文件 “" + path + L"” 出错。" : L"Failed to save file \"" + path + L"\".";
    }

    test::PluginJob job{GetParam()};
    RecorderState& state = test::FreshRecorder();
    std::wstring folder = test::FreshFolder(L"width.save");
    std::vector<std::byte> block;
};

INSTANTIATE_TEST_SUITE_P(Languages, Save, testing::Values(WORD{0x0409}, WORD{0x0804}));

TEST_P(Save, ASavedPictureHasAPathAndNothingToSave) {
    Start(8);
    EXPECT_TRUE(job.IsEnabled(ID_FILE_SAVE));
    EXPECT_EQ(ColoursUsed(), 0U) << "sending changes nothing";
    {
        const SaveDialog dlg(job, ID_FILE_SAVE);
        dlg.ChooseType(1);
        dlg.Type(folder + L"\\a.three");
        EXPECT_TRUE(dlg.Close(IDOK));
    }
    EXPECT_TRUE(job.WaitForPane(0, folder + L"\\a.three"));
    EXPECT_TRUE(test::WaitFor([&] { return !job.IsEnabled(ID_FILE_SAVE); }));
    EXPECT_TRUE(job.IsEnabled(ID_FILE_SAVE_AS_PICTURE));
    SaveOptions expected{};
    expected.nFormat = 3;
    EXPECT_EQ(std::memcmp(&state.saved, &expected, sizeof expected), 0) << "format 3 has no options";
    EXPECT_EQ(ColoursUsed(), 256U);
    EXPECT_EQ(job.Events().back().pParam, state.pDib) << "the library and the host see the same block";

    ::PostMessageW(job.Frame(), WM_COMMAND, ID_WRITE_TO_BITMAP, 0);
    test::AnswerBox();
    EXPECT_FALSE(job.IsEnabled(ID_FILE_SAVE)) << "as is known of labels that are written after a save";

    const SaveDialog dlg(job, ID_FILE_SAVE_AS_PICTURE);
    EXPECT_EQ(dlg.Name(), L"a.three");
    EXPECT_EQ(dlg.SelectedType(), 1);
    EXPECT_TRUE(dlg.Close(IDCANCEL));
    EXPECT_TRUE(job.WaitForPane(0, folder + L"\\a.three"));
}

TEST_P(Save, AFailureIsToldAndKeepsPathAndFlag) {
    Start(4);
    state.nSaved = 0;
    SaveAs(L"a.one");
    EXPECT_EQ(test::AnswerBox(), FailureText(folder + L"\\a.one"));
    EXPECT_TRUE(job.WaitForPane(0, L""));
    EXPECT_TRUE(job.IsEnabled(ID_FILE_SAVE));
    EXPECT_EQ(ColoursUsed(), 16U) << "filled in also for a save that failed";

    state.nSaved = 1;
    SaveAs(L"good.one");
    EXPECT_TRUE(job.WaitForPane(0, folder + L"\\good.one"));
    state.nSaved = 0;
    std::fill(std::begin(state.szError), std::end(state.szError), 'e');  // as long as can be, without an end
    SaveAs(L"b.uno");
    EXPECT_EQ(test::AnswerBox(), FailureText(folder + L"\\b.uno") + L"\n" + std::wstring(256, L'e'));
    EXPECT_TRUE(job.WaitForPane(0, folder + L"\\good.one")) << "the last good one";
    const SaveDialog dlg(job, ID_FILE_SAVE_AS_PICTURE);
    EXPECT_EQ(dlg.Name(), L"good.one");
    EXPECT_TRUE(dlg.Close(IDCANCEL));
}

TEST_P(Save, OnlyDepthsWithAColourTableGetTheirColoursCounted) {
    for (const auto& [nBits, nColours] : {std::pair<std::uint16_t, std::uint32_t>{1, 2}, {24, 0}, {32, 0}}) {
        Start(nBits);
        SaveAs(L"a.one");
        EXPECT_TRUE(job.WaitForPane(0, folder + L"\\a.one"));
        EXPECT_EQ(ColoursUsed(), nColours) << nBits;
        EXPECT_TRUE(job.Close());
    }
}

TEST_P(Save, AFullStopInAFolderIsEnough) {
    Start(8);
    state.nCanSave = 0;
    SaveAs(L"name");
    EXPECT_TRUE(job.WaitForPane(0, folder + L"\\name"));
    EXPECT_EQ(state.saved.nFormat, 0U);
}

TEST_P(Save, ClosingTheJobClosesItsDialogsFirst) {
    Start(8);
    const SaveDialog dlg(job, ID_FILE_SAVE_AS_PICTURE);
    EXPECT_TRUE(job.Close());
    EXPECT_FALSE(dlg.IsOpen());

    Start(8);
    test::MakeFile(folder + L"\\old.one");
    const SaveDialog asking(job, ID_FILE_SAVE_AS_PICTURE);
    asking.Type(folder + L"\\old.one");
    test::PostCommand(asking.m_hDlg, IDOK);
    EXPECT_TRUE(test::WaitFor([&] { return test::FindTopWindow(0, L"#32770") != asking.m_hDlg; }));
    ::PostMessageW(job.Frame(), WM_CLOSE, 0, 0);
    test::PostCommand(test::FindTopWindow(0, L"#32770"), IDNO);
    EXPECT_TRUE(job.WaitForEnd()) << "a question that must be answered holds the frame until it is";
}

}  // namespace
}  // namespace width
