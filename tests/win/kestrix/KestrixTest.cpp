// The image library by its contract: tables, what it takes, options and their dialog, failures that leave old files whole.
#include <gtest/gtest.h>

#include <fstream>
#include <future>
#include <sstream>

#include "imageio/ImageIo.h"
#include "imageio/PictureSaver_win.h"
#include "standins/kestrix/resource.h"
#include "tests/support/WinDriver.h"
#include "tests/win/kestrix/Library.h"

namespace width {
namespace {

using test::SaveTo;
using test::TestPicture;
using test::TheLibrary;

constexpr std::int32_t kBmp = 0, kPng = 1, kJpeg = 2, kTiff = 3, kGif = 4;

std::string Contents(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::wstring Wide(const char* pszText) {
    wchar_t text[300] = {};
    MultiByteToWideChar(CP_ACP, 0, pszText, -1, text, 300);
    return text;
}

class KestrixLibrary : public testing::Test {
protected:
    void SetUp() override {
        wchar_t temp[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, temp);
        folder = std::filesystem::path(temp) / L"width.kestrix";
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
    }
    /// Names in the folder.
    std::vector<std::wstring> Names() const {
        std::vector<std::wstring> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            names.push_back(entry.path().filename().wstring());
        }
        return names;
    }
    /// What a save that fails says, with an old file there that must stay as it is, and nothing else beside it.
    std::wstring FailureOver(const std::filesystem::path& target) {
        const std::string before = Contents(target);
        const auto names = Names();
        SaveOptions options{};
        EXPECT_FALSE(SaveTo(target, TestPicture(40, 30, 8, false), kPng, &options)) << target;
        EXPECT_EQ(Contents(target), before);
        EXPECT_EQ(Names(), names) << "nothing is left beside it";
        return Wide(options.szError);
    }

    std::filesystem::path folder;
};

TEST_F(KestrixLibrary, TellsItsFormats) {
    std::string table;
    for (const KestrixExtension* p = TheLibrary().ExtFmt(); p->pszExtension != nullptr; ++p) {
        table += p->pszExtension + std::to_string(p->nFormat) + " ";
    }
    EXPECT_EQ(table, "bmp0 dib0 png1 jpg2 jpeg2 tif3 tiff3 gif4 ");
    EXPECT_STREQ(TheLibrary().GetFmtInfo(kTiff)->pszName, "TIFF");
    EXPECT_EQ(TheLibrary().GetFmtInfo(5), nullptr);
    EXPECT_EQ(TheLibrary().GetFmtInfo(-1), nullptr);
    std::string dialogs;
    for (std::int32_t n = -1; n < KESTRIX_FORMATS; ++n) {
        dialogs += TheLibrary().HasDialog(n) != 0 ? 'x' : '.';
        EXPECT_EQ(TheLibrary().Defaults(n).bOption1, 0) << "the user is asked before a file is replaced";
    }
    EXPECT_EQ(dialogs, "..xxx............");
}

TEST_F(KestrixLibrary, TakesWhatAFormatHoldsWithoutLoss) {
    const auto taken = [](const std::vector<std::byte>& block) {
        std::string formats;
        for (std::uint32_t n = 0; n < KESTRIX_FORMATS; ++n) {
            SaveOptions probe{};
            probe.nFormat = n;
            formats += TheLibrary().CanSave(block.data(), &probe) != 0 ? std::to_string(n) : "";
        }
        return formats;
    };
    EXPECT_EQ(taken(TestPicture(9, 5, 1, true)), "0134");
    EXPECT_EQ(taken(TestPicture(9, 5, 4, false)), "0134");
    EXPECT_EQ(taken(TestPicture(9, 5, 8, false)), "0134");
    EXPECT_EQ(taken(TestPicture(9, 5, 8, true)), "01234") << "grey levels";
    EXPECT_EQ(taken(TestPicture(9, 5, 24, false)), "0123");
    EXPECT_EQ(taken(TestPicture(9, 5, 32, false)), "0123");
    EXPECT_EQ(taken(TestPicture(70000, 1, 8, true)), "013") << "too wide for two of them";
    EXPECT_EQ(taken(std::vector<std::byte>(40)), "") << "no picture";
    SaveOptions options{};
    EXPECT_FALSE(SaveTo(folder / L"a.gif", TestPicture(9, 5, 24, false), kGif, &options));
    EXPECT_STRNE(options.szError, "");
    EXPECT_FALSE(SaveTo(folder / L"a.xyz", TestPicture(9, 5, 24, false), 7, &options));
    EXPECT_TRUE(Names().empty());
}

TEST_F(KestrixLibrary, TheFormatCountsAndNotTheName) {
    ASSERT_TRUE(SaveTo(folder / L"a.txt", TestPicture(9, 5, 8, false), kPng));
    EXPECT_EQ(Contents(folder / L"a.txt").substr(1, 3), "PNG");
}

TEST_F(KestrixLibrary, ReplacesAFileByAWholeOne) {
    const bool bInCodePage = GetACP() == 936;
    const auto path = bInCodePage ? folder / L"线宽.png" : folder / L"\u00e4.png";
    ASSERT_TRUE(SaveTo(path, TestPicture(9, 5, 8, false), kPng));
    const std::string before = Contents(path);
    ASSERT_TRUE(SaveTo(path, TestPicture(90, 50, 8, false), kPng));
    EXPECT_NE(Contents(path), before);
    EXPECT_EQ(Names(), std::vector<std::wstring>{path.filename().wstring()});
    EXPECT_EQ(DibView::Open(LoadPicture(path).block)->Width(), 90);
}

TEST_F(KestrixLibrary, FailuresSayWhyAndLeaveOldFilesWhole) {
    const bool bChinese = PRIMARYLANGID(GetUserDefaultUILanguage()) == LANG_CHINESE;
    const auto words = [&](const wchar_t* english, const wchar_t* chinese) { return std::wstring(bChinese ? chinese : english); };
    EXPECT_EQ(FailureOver(folder / L"gone" / L"a.png"), words(L"The folder does not exist.", L"文件夹不存在。"));
    const auto old = folder / L"old.png";
    ASSERT_TRUE(SaveTo(old, TestPicture(9, 5, 8, false), kPng));
    SetFileAttributesW(old.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(FailureOver(old), words(L"You may not write there.", L"没有写入权限。"));
    SetFileAttributesW(old.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(FailureOver(folder), words(L"You may not write there.", L"没有写入权限。")) << "a folder";
    const HANDLE hUser = CreateFileW(old.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    const std::wstring inUse = FailureOver(old);
    EXPECT_TRUE(inUse == words(L"Another program is using the file.", L"文件正被另一程序使用。") ||
                inUse == words(L"You may not write there.", L"没有写入权限。"));
    CloseHandle(hUser);
    EXPECT_TRUE(SaveTo(old, TestPicture(40, 30, 8, false), kPng)) << "given free again";
}

TEST_F(KestrixLibrary, AnEncoderThatClaimsToHaveDoneItsWorkIsNotBelieved) {
    const auto block = TestPicture(40, 30, 8, true), other = TestPicture(40, 29, 8, true);
    const DibView view = *DibView::Open(block);
    const auto target = folder / L"a";
    const std::pair<WicFile, std::int32_t> kinds[] = {
        {WicFile::Bmp, kBmp}, {WicFile::Png, kPng}, {WicFile::Jpeg, kJpeg}, {WicFile::Tiff, kTiff}, {WicFile::Gif, kGif}};
    for (const auto& [kind, nFormat] : kinds) {
        ASSERT_TRUE(SaveTo(target, other, nFormat));
        const std::string old = Contents(target);
        ASSERT_TRUE(SaveTo(folder / L"whole", block, nFormat));
        const std::string whole = Contents(folder / L"whole");
        std::filesystem::remove(folder / L"whole");
        const auto fault = [&, kind = kind](const std::string& written) {
            const Encoder encode = [&](NewFile& file) {
                file.Write(written.data(), written.size());
                return SaveResult{};
            };
            return SaveBy(target, view, kind, encode).fault;
        };
        for (const std::string& written : {std::string(), whole.substr(0, whole.size() / 2), old}) {
            EXPECT_NE(fault(written), SaveFault::None) << nFormat << ", " << written.size() << " bytes";
            EXPECT_EQ(Contents(target), old);
            EXPECT_EQ(Names(), std::vector<std::wstring>{L"a"});
        }
        EXPECT_EQ(fault(whole), SaveFault::None) << nFormat;
        EXPECT_EQ(Contents(target), whole);
    }
}

TEST_F(KestrixLibrary, TheOptionsDialogKeepsWhatWasChosen) {
    const auto ask = [](std::int32_t bChinese, std::int32_t nFormat) {
        return std::async(std::launch::async, [=] { return TheLibrary().Dialog(bChinese, nFormat, nullptr); });
    };
    TheLibrary().Defaults(kJpeg);
    auto quality = ask(0, kJpeg);
    HWND hDlg = test::WaitForWindow(0, L"#32770", L"JPEG options");
    ASSERT_NE(hDlg, nullptr);
    EXPECT_EQ(test::TextOf(GetDlgItem(hDlg, IDC_QUALITY)), L"95");
    SetDlgItemTextW(hDlg, IDC_QUALITY, L"101");
    test::PostCommand(hDlg, IDOK);
    EXPECT_TRUE(test::WaitFor([&] { return test::TextOf(GetDlgItem(hDlg, IDC_QUALITY)) == L"100"; })) << "brought into range";
    SetDlgItemTextW(hDlg, IDC_QUALITY, L"50");
    test::PostCommand(hDlg, IDOK);
    EXPECT_EQ(quality.get().nOption0, 50U);
    quality = ask(1, kJpeg);
    hDlg = test::WaitForWindow(0, L"#32770", L"JPEG 选项");
    ASSERT_NE(hDlg, nullptr);
    SetDlgItemTextW(hDlg, IDC_QUALITY, L"7");
    test::PostCommand(hDlg, IDCANCEL);
    EXPECT_EQ(quality.get().nOption0, 50U) << "cancelled";
    EXPECT_EQ(TheLibrary().Defaults(kJpeg).nOption0, 95U);

    auto packing = ask(0, kTiff);
    hDlg = test::WaitForWindow(0, L"#32770", L"TIFF options");
    EXPECT_EQ(IsDlgButtonChecked(hDlg, IDC_PACK_LZW), BST_CHECKED + 0U);
    SendMessageW(GetDlgItem(hDlg, IDC_PACK_ZIP), BM_CLICK, 0, 0);
    test::PostCommand(hDlg, IDOK);
    EXPECT_EQ(packing.get().nOption0, 2U);
    auto interlace = ask(1, kPng);
    hDlg = test::WaitForWindow(0, L"#32770", L"PNG 选项");
    SendMessageW(GetDlgItem(hDlg, IDC_INTERLACED), BM_CLICK, 0, 0);
    test::PostCommand(hDlg, IDOK);
    const FormatOptions chosen = interlace.get();
    EXPECT_EQ(chosen.bOption2, 1);
    EXPECT_EQ(chosen.bOption1, 0);
    EXPECT_EQ(TheLibrary().Dialog(0, kBmp, nullptr).nOption0, 0U) << "no dialog, no options";
}

TEST_F(KestrixLibrary, InterlacingReachesTheFile) {
    SaveOptions options{};
    options.bOption2 = 1;
    ASSERT_TRUE(SaveTo(folder / L"a.png", TestPicture(40, 30, 8, false), kPng, &options));
    options.bOption2 = 0;
    ASSERT_TRUE(SaveTo(folder / L"b.png", TestPicture(40, 30, 8, false), kPng, &options));
    constexpr std::size_t kInterlaceByte = 28;
    EXPECT_EQ(Contents(folder / L"a.png")[kInterlaceByte], 1);
    EXPECT_EQ(Contents(folder / L"b.png")[kInterlaceByte], 0);
}

}  // namespace
}  // namespace width
