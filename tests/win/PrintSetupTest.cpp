// Print Setup, which needs an application object: the plug-in's frame in a program that has none, and in one that has.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "classlib/ControlBar.h"
#include "classlib/Print.h"
#include "module/ModuleState.h"
#include "res/resource.h"
#include "shell/Plugin_win.h"
#include "tests/support/Pictures.h"
#include "tests/support/TestPrinter.h"
#include "tests/support/WinDriver.h"

namespace width {
namespace {

using test::WaitFor;

constexpr int kLandscape = 1057;  // the dialog's button

/// A job without a DLL: the entry functions are called where they are linked.
class LinkedJob {
public:
    LinkedJob() {
        g_hModule = ::GetModuleHandleW(nullptr);
        pi_table table{};
        InitPlugin(&table, 0x0409);
        const std::vector<std::byte> block = test::DibBuilder(96, 48, 24).Block();
        void* const pDib = malloc(block.size());
        std::memcpy(pDib, block.data(), block.size());
        table.pfnStart(
            pDib, nullptr, [](void* pEnded, int32_t, void*, void*) { *static_cast<bool*>(pEnded) = true; }, &m_bEnded);
        hFrame = test::WaitForWindow(0);
        const HWND hBar = ::GetDlgItem(hFrame, AFX_IDW_STATUS_BAR);
        WaitFor([&] {
            wchar_t size[300] = {};
            ::SendMessageW(hBar, SB_GETTEXTW, 1, reinterpret_cast<LPARAM>(size));
            return std::wstring(size) == L"96 x 48";
        });
        m_hThread = ::OpenThread(SYNCHRONIZE, FALSE, ::GetWindowThreadProcessId(hFrame, nullptr));
    }
    LinkedJob(const LinkedJob&) = delete;
    LinkedJob& operator=(const LinkedJob&) = delete;
    ~LinkedJob() {
        ::PostMessageW(hFrame, WM_CLOSE, 0, 0);
        EXPECT_TRUE(test::WaitForThread(m_hThread));
        EXPECT_TRUE(m_bEnded);
        ::CloseHandle(m_hThread);
    }

    void Command(UINT nId) const { ::SendMessageW(hFrame, WM_COMMAND, nId, 0); }

    /// The sheet that a preview shows now, width and height.
    SIZE PreviewedSheet() const {
        Command(ID_FILE_PRINT_PREVIEW);
        const HWND hView = ::GetDlgItem(hFrame, AFX_IDW_PANE_FIRST);
        ::UpdateWindow(hView);
        ::SendMessageW(hFrame, WM_NULL, 0, 0);
        const RECT rc = test::ClientRaster(hView).Box([](COLORREF clr) { return clr == RGB(255, 255, 255); });
        ::SendMessageW(hFrame, WM_CLOSE, 0, 0);
        return {rc.right - rc.left, rc.bottom - rc.top};
    }

    HWND hFrame = nullptr;

private:
    bool m_bEnded = false;
    HANDLE m_hThread = nullptr;
};

TEST(PrintSetup, WithoutAnApplicationObjectNothingHappens) {
    const test::TestPrinter printer;
    const LinkedJob job;
    job.Command(ID_FILE_PRINT_SETUP);
    EXPECT_EQ(test::FindTopWindow(0, L"#32770"), nullptr);
    EXPECT_NE(::IsWindowEnabled(job.hFrame), FALSE);
}

TEST(PrintSetup, ApplicationObjectShowsTheDialogAndRemembersTheChoice) {
    const test::TestPrinter printer;
    ASSERT_TRUE(printer.IsReady());
    CWinApp app;
    {
        const LinkedJob job;
        const SIZE sizeBefore = job.PreviewedSheet();
        EXPECT_LT(sizeBefore.cx, sizeBefore.cy);
        ::PostMessageW(job.hFrame, WM_COMMAND, ID_FILE_PRINT_SETUP, 0);
        const HWND hDlg = test::WaitForWindow(0, L"#32770");
        ASSERT_NE(hDlg, nullptr);
        ASSERT_NE(::GetDlgItem(hDlg, kLandscape), nullptr);
        ::SendMessageW(::GetDlgItem(hDlg, kLandscape), BM_CLICK, 0, 0);
        test::PostCommand(hDlg, IDOK);
        ASSERT_TRUE(WaitFor([&] { return ::IsWindow(hDlg) == FALSE && ::IsWindowEnabled(job.hFrame) != FALSE; }));
        const SIZE sizeAfter = job.PreviewedSheet();
        EXPECT_GT(sizeAfter.cx, sizeAfter.cy) << "the preview goes by what was set up";
    }
    const LinkedJob next;
    const SIZE size = next.PreviewedSheet();
    EXPECT_GT(size.cx, size.cy) << "a later job finds it again";
}

/// Answers every dialog with OK, and with a printer that there is not.
struct AppWithoutDevice : CWinApp {
    INT_PTR DoPrintDialog(CPrintDialog* /*pPD*/) override { return IDOK; }
};

TEST(PrintSetup, RunThatCannotBeginSaysSo) {
    const test::TestPrinter printer;
    AppWithoutDevice app;
    const LinkedJob job;
    ::PostMessageW(job.hFrame, WM_COMMAND, ID_FILE_PRINT, 0);
    HWND hBox = nullptr;
    ASSERT_TRUE(WaitFor([&] { return !test::MessageBoxText(hBox = test::FindTopWindow(0, L"#32770")).empty(); }));
    EXPECT_EQ(test::MessageBoxText(hBox), L"Printing failed.");
    test::PostCommand(hBox, IDOK);
    EXPECT_TRUE(WaitFor([&] { return ::IsWindow(hBox) == FALSE && ::IsWindowEnabled(job.hFrame) != FALSE; }));
}

TEST(PrintSetup, WithoutAPrinterTheUserIsTold) {
    test::TestPrinter::Remove();
    CWinApp app;
    const LinkedJob job;
    for (const UINT nId : {ID_FILE_PRINT_SETUP, ID_FILE_PRINT_PREVIEW}) {
        ::PostMessageW(job.hFrame, WM_COMMAND, nId, 0);
        HWND hBox = nullptr;
        ASSERT_TRUE(WaitFor([&] { return !test::MessageBoxText(hBox = test::FindTopWindow(0, L"#32770")).empty(); }));
        EXPECT_EQ(test::MessageBoxText(hBox), L"There is no printer. Please install one first.");
        test::PostCommand(hBox, IDOK);
        EXPECT_TRUE(WaitFor([&] {
            return ::IsWindow(hBox) == FALSE && test::FindTopWindow(0, L"#32770") == nullptr &&
                   ::IsWindowEnabled(job.hFrame) != FALSE && ::GetMenu(job.hFrame) != nullptr;
        }));
    }
}

}  // namespace
}  // namespace width
