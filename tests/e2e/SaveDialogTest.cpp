// The save dialog over the recording library: what it lists, how name, type and options keep in step, what it asks.
#include <gtest/gtest.h>

#include "res/resource.h"
#include "tests/e2e/SaveJob.h"
#include "tests/support/Pictures.h"

namespace width {
namespace {

using test::SaveDialog;

constexpr FormatOptions kDefaultOne{11, 0, 12, 0, 0, 0, 0, {}};
constexpr FormatOptions kDefaultSix{0x61626364, 0, 62, 63, 0, 0, 0, {}};
constexpr FormatOptions kChosen{0xfedcba98, 0, 2, 3, 4, 5, 6, {7, 8}};

class SaveDialogs : public testing::TestWithParam<WORD> {
protected:
    void SetUp() override {
        ASSERT_NE(job.Start(test::DibBuilder(20, 10, 8).Block()), nullptr);
        ASSERT_TRUE(job.WaitForPane(1, L"20 x 10"));
        state.defaults[1] = kDefaultOne;
        state.defaults[6] = kDefaultSix;
        state.chosen = kChosen;
    }
    bool IsChinese() const { return GetParam() == 0x0804; }
    /// The save comes after the dialog has gone. Its path is what the library writes down last.
    bool HasSaved() const {
        return test::WaitFor([&] { return state.szPath[0] != '\0'; });
    }

    test::PluginJob job{GetParam()};
    RecorderState& state = test::FreshRecorder();
    std::wstring folder = test::FreshFolder(L"width-save-dialog");
};

INSTANTIATE_TEST_SUITE_P(Languages, SaveDialogs, testing::Values(WORD{0x0409}, WORD{0x0804}));

TEST_P(SaveDialogs, ListsWhatTheLibraryCanHold) {
    const SaveDialog dlg(job, ID_FILE_SAVE_AS_PICTURE);
    EXPECT_EQ(dlg.Types(), (std::vector<std::wstring>{L"One (*.one;*.uno)", L"Three (*.Three)", L"Six (*.six)"}));
    EXPECT_EQ(dlg.SelectedType(), 0);
    EXPECT_EQ(dlg.Name(), L"");
    EXPECT_FALSE(dlg.HasOptions());
    EXPECT_EQ(test::TextOf(dlg.OptionButton()), IsChinese() ? L"选项(&O)" : L"&Option");
    EXPECT_TRUE(dlg.Close(IDCANCEL));
    const std::string calls(state.szCalls);
    EXPECT_TRUE(
        calls.starts_with("CanSave0 CanSave1 ExtFmt GetFmtInfo1 CanSave2 ExtFmt GetFmtInfo2 CanSave3 ExtFmt GetFmtInfo3 "
                          "CanSave4 CanSave5 CanSave6 ExtFmt GetFmtInfo6 CanSave7 "))
        << calls;
    EXPECT_TRUE(calls.ends_with("CanSave15 ExtFmt bDlg1 get_default1 ")) << calls;
    EXPECT_TRUE(state.bProbesZeroed);
    EXPECT_TRUE(job.IsEnabled(ID_FILE_SAVE)) << "nothing was saved";
}

TEST_P(SaveDialogs, NameTypeAndOptionsKeepInStep) {
    const SaveDialog dlg(job, ID_FILE_SAVE_AS_PICTURE);
    dlg.Type(L"track");
    dlg.ChooseType(2);
    EXPECT_EQ(dlg.Name(), L"track.six");
    EXPECT_TRUE(dlg.HasOptions());
    dlg.ChooseType(1);
    EXPECT_EQ(dlg.Name(), L"track.three");
    EXPECT_FALSE(dlg.HasOptions());
    dlg.Type(folder + L"\\a.b.UNO");
    dlg.ChooseType(0);
    EXPECT_EQ(dlg.Name(), L"a.b.UNO") << "one of the type's own, without the folder";
    dlg.ChooseType(2);
    EXPECT_EQ(dlg.Name(), L"a.b.six");
    dlg.PressOption();
    EXPECT_EQ(state.hOwner, job.Frame());
    dlg.Type(folder + L"\\plain");
    EXPECT_TRUE(dlg.Close(IDOK));
    EXPECT_TRUE(HasSaved());
    EXPECT_TRUE(std::string(state.szCalls).ends_with(IsChinese() ? "DlgZh6 Save6 " : "DlgEn6 Save6 ")) << state.szCalls;
    EXPECT_STREQ(state.szPath, (std::string(folder.begin(), folder.end()) + "\\plain.six").c_str())
        << "a name without an extension gets the type's";
    const SaveOptions& saved = state.saved;
    EXPECT_EQ(saved.nFormat, 6U);
    EXPECT_EQ(saved.nOption0, kChosen.nOption0);
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&saved);
    EXPECT_EQ(std::vector<int>(bytes + 8, bytes + 16), (std::vector<int>{0, 2, 0, 3, 4, 5, 6, 0}));
}

TEST_P(SaveDialogs, AnotherTypeDropsChosenOptions) {
    const SaveDialog dlg(job, ID_FILE_SAVE_AS_PICTURE);
    dlg.ChooseType(2);
    dlg.PressOption();
    dlg.ChooseType(0);
    dlg.ChooseType(2);
    dlg.Type(folder + L"\\a.six");
    EXPECT_TRUE(dlg.Close(IDOK));
    EXPECT_TRUE(HasSaved());
    EXPECT_EQ(state.saved.nOption0, kDefaultSix.nOption0);
    EXPECT_EQ(state.saved.bOption2, kDefaultSix.bOption2);
    EXPECT_EQ(state.saved.bOption3, kDefaultSix.bOption3);
}

TEST_P(SaveDialogs, AsksBeforeItReplacesAFile) {
    const std::wstring path = folder + L"\\old.one";
    test::MakeFile(path);
    const std::wstring question =
        path + (IsChinese() ? L" 已存在。\n要替换它吗?" : L" already exists.\nDo you want to replace it?");
    const SaveDialog dlg(job, ID_FILE_SAVE_AS_PICTURE);
    dlg.Type(folder + L"\\old");
    EXPECT_EQ(dlg.Confirm(IDNO), question);
    EXPECT_TRUE(dlg.IsOpen());
    EXPECT_EQ(dlg.Confirm(IDYES), question);
    EXPECT_TRUE(test::WaitFor([&] { return !dlg.IsOpen(); }));
    EXPECT_TRUE(job.WaitForPane(0, path));

    state.defaults[1].bOption1 = 1;
    state.szPath[0] = '\0';
    const SaveDialog again(job, ID_FILE_SAVE_AS_PICTURE);
    EXPECT_EQ(again.Name(), L"old.one");
    EXPECT_TRUE(again.Close(IDOK)) << "an option of the library's that says: do not ask";
    EXPECT_TRUE(HasSaved());
    EXPECT_EQ(state.saved.bOption1, 1);
}

TEST_P(SaveDialogs, ANameThatTheLibraryCannotBeToldIsRefused) {
    const SaveDialog dlg(job, ID_FILE_SAVE_AS_PICTURE);
    const std::wstring path = folder + L"\\\u0e01\u05d0.one";  // no code page has both letters
    dlg.Type(path);
    EXPECT_EQ(dlg.Confirm(IDOK), IsChinese() ? L"保存文件 “" + path + L"” 出错。" : L"Failed to save file \"" + path + L"\".");
    EXPECT_TRUE(dlg.IsOpen());
    EXPECT_TRUE(dlg.Close(IDCANCEL));
    EXPECT_STREQ(state.szPath, "");
}

TEST_P(SaveDialogs, WithoutTypesTheNameIsTheUsersAlone) {
    state.nCanSave = 0;
    state.nSaved = 0;
    const SaveDialog dlg(job, ID_FILE_SAVE_AS_PICTURE);
    EXPECT_EQ(dlg.Types(), std::vector<std::wstring>());
    dlg.Type(folder + L"\\name");
    EXPECT_TRUE(dlg.Close(IDOK));
    EXPECT_TRUE(job.WaitForPane(0, L""));
    EXPECT_STREQ(state.szPath, "") << "no full stop anywhere: the library is not asked, and nobody is told";
    EXPECT_TRUE(job.IsEnabled(ID_FILE_SAVE));
}

}  // namespace
}  // namespace width
