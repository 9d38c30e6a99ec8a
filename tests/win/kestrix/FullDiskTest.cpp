// Saves to a disk that is too small: every format with every depth that it takes, through the plug-in over the image library,
// and through the host. Run by tests/support/full-disk.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "imageio/ImageIo.h"
#include "res/resource.h"
#include "standins/host/HostWindow.h"
#include "standins/host/resource.h"
#include "tests/e2e/SaveJob.h"
#include "tests/support/SmallDisk.h"
#include "tests/win/kestrix/Library.h"

namespace width {
namespace {

namespace fs = std::filesystem;
using test::SaveDialog;

const std::string kEndings[] = {".bmp", ".png", ".jpg", ".tif", ".gif"};  // in the order of the library's formats

bool IsChinese() {
    return PRIMARYLANGID(GetUserDefaultUILanguage()) == LANG_CHINESE;
}

class FullDisk : public testing::TestWithParam<std::uint16_t> {
protected:
    FullDisk() { test::TheLibrary(); }  // loaded by now, so that the plug-in gets this one
    bool CanSave(std::int32_t nFormat) const {
        SaveOptions options{};
        options.nFormat = static_cast<std::uint32_t>(nFormat);
        return test::TheLibrary().CanSave(block.data(), &options) != 0;
    }
    /// The size of the file that the library makes.
    std::uintmax_t Size(std::int32_t nFormat) const {
        const fs::path path = disk / "whole";
        EXPECT_TRUE(test::SaveTo(path, block, nFormat));
        const std::uintmax_t nBytes = fs::file_size(path);
        fs::remove(path);
        return nBytes;
    }
    /// Chooses a file that is there already, and waits for the dialog to go.
    static void ReplaceBy(const SaveDialog& dlg, const fs::path& path) {
        dlg.Type(path.wstring());
        dlg.Confirm(IDYES);
        EXPECT_TRUE(test::WaitFor([&] { return !dlg.IsOpen(); }));
    }

    const test::SmallDisk disk;
    const std::vector<std::byte> block = test::TestPicture(301, 203, GetParam(), true);
};

INSTANTIATE_TEST_SUITE_P(Depths, FullDisk, testing::Values<std::uint16_t>(1, 4, 8, 24, 32));

TEST_P(FullDisk, PluginTellsAndLeavesTheJobAsItWas) {
    test::PluginJob job(IsChinese() ? WORD{0x0804} : WORD{0x0409});
    ASSERT_NE(job.Start(block), nullptr);
    ASSERT_TRUE(job.WaitForPane(1, L"301 x 203"));
    const std::wstring full = IsChinese() ? L"磁盘已满" : L"The disk is full";
    fs::path path;
    for (std::int32_t n = 0, nType = 0; n < 5; nType += CanSave(n) ? 1 : 0, ++n) {
        if (!CanSave(n)) {
            continue;
        }
        path = disk / ("a" + kEndings[n]);
        disk.ExpectFullDisk(path, Size(n), [&](bool bReally) {
            const SaveDialog dlg(job, ID_FILE_SAVE_AS_PICTURE);
            dlg.ChooseType(nType);
            ReplaceBy(dlg, path);
            const std::wstring words = test::AnswerBox();
            const std::wstring failed = IsChinese() ? L"保存文件 “" + path.wstring() + L"” 出错。\n"
                                                    : L"Failed to save file \"" + path.wstring() + L"\".\n";
            EXPECT_TRUE(words.starts_with(failed + full + (bReally ? IsChinese() ? L"。" : L"." : L""))) << words;
            EXPECT_TRUE(job.WaitForPane(0, L"")) << "no path yet";
            EXPECT_TRUE(job.IsEnabled(ID_FILE_SAVE));
        });
    }
    const SaveDialog dlg(job, ID_FILE_SAVE_AS_PICTURE);
    dlg.Type(path.wstring());
    EXPECT_TRUE(dlg.Close(IDOK));
    EXPECT_TRUE(job.WaitForPane(0, path.wstring())) << "there is room again";
    EXPECT_FALSE(job.IsEnabled(ID_FILE_SAVE));
}

/// The host's window on a thread of its own, as in the program.
class RunningHost {
public:
    explicit RunningHost(const fs::path& picture) {
        m_thread = std::thread([this, picture] {
            host::HostWindow window(0x0409, L"nowhere.dll");
            window.Create(SW_SHOW);
            window.OpenPicture(picture.wstring());
            m_hWnd = window.Window();
            MSG message{};
            while (GetMessageW(&message, nullptr, 0, 0) > 0) {
                TranslateMessage(&message);
                DispatchMessageW(&message);
            }
        });
        test::WaitFor([this] { return m_hWnd.load() != nullptr; });
    }
    ~RunningHost() {
        PostMessageW(m_hWnd, WM_CLOSE, 0, 0);
        m_thread.join();
    }
    RunningHost(const RunningHost&) = delete;
    RunningHost& operator=(const RunningHost&) = delete;
    HWND Window() const { return m_hWnd; }

private:
    std::atomic<HWND> m_hWnd{nullptr};
    std::thread m_thread;
};

TEST_P(FullDisk, HostTells) {
    const fs::path picture = disk / "picture.bmp";
    ASSERT_EQ(SavePicture(picture, block), "");
    const RunningHost host(picture);
    for (const std::string& ending : kEndings) {
        const fs::path path = disk / ("a" + ending);
        if (!SavePicture(path, block).empty()) {
            continue;  // a depth that the format doesn't take
        }
        disk.ExpectFullDisk(path, fs::file_size(path), [&](bool bReally) {
            const SaveDialog dlg(host.Window(), IDM_SAVE);
            ReplaceBy(dlg, path);
            const std::wstring words = test::AnswerBox();
            const std::wstring full = L"\ncannot be saved: the disk is full";
            EXPECT_TRUE(words.starts_with(path.wstring() + full + (bReally ? L"." : L""))) << words;
        });
    }
}

}  // namespace
}  // namespace width
