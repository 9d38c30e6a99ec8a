// The waits that every test of a window stands on.
#include "tests/support/WinDriver.h"

#include <gmock/gmock.h>

#include <atomic>
#include <string>
#include <thread>

namespace width::test {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

constexpr UINT kPosted = WM_APP + 1;  // word parameter not 0: posts itself once more with one less
constexpr UINT kDialog = WM_APP + 2;  // shows a message box, and sets m_bTakenOver once it is back

// A window on a thread of its own. Its handlers take their time.
class Served {
public:
    Served()
        : m_thread([this] {
              m_hWnd = ::CreateWindowExW(0, L"STATIC", L"Served", WS_POPUP | WS_VISIBLE, 0, 0, 200, 100, nullptr, nullptr,
                                         nullptr, nullptr);
              ::SetWindowLongPtrW(m_hWnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
              ::SetWindowLongPtrW(m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&WndProc));
              m_nThreadId = ::GetCurrentThreadId();
              MSG msg;
              while (::GetMessageW(&msg, nullptr, 0, 0) > 0) {
                  ::DispatchMessageW(&msg);
              }
          }) {
        WaitFor([this] { return m_nThreadId != 0; });
    }
    ~Served() {
        ::PostThreadMessageW(m_nThreadId, WM_QUIT, 0, 0);
        m_thread.join();
    }
    Served(const Served&) = delete;
    Served& operator=(const Served&) = delete;

    std::atomic<HWND> m_hWnd{nullptr};
    std::atomic<DWORD> m_nThreadId{0};
    std::atomic<int> m_nPosted{0};
    std::atomic<int> m_nKeys{0};
    std::atomic<bool> m_bTakenOver{false};

private:
    static LRESULT CALLBACK WndProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
        auto& served = *reinterpret_cast<Served*>(::GetWindowLongPtrW(hWnd, GWLP_USERDATA));
        if (message == kPosted) {
            ::Sleep(20);
            ++served.m_nPosted;
            if (wParam != 0) {
                ::PostMessageW(hWnd, kPosted, wParam - 1, 0);
            }
        } else if (message == WM_KEYDOWN) {
            ::Sleep(20);
            ++served.m_nKeys;
        } else if (message == kDialog) {
            ::MessageBoxW(hWnd, L"a question", L"Served", MB_OK);
            ::Sleep(20);
            served.m_bTakenOver = true;
        }
        return ::DefWindowProcW(hWnd, message, wParam, lParam);
    }

    std::thread m_thread;
};

TEST(WinDriver, AServedThreadHasDealtWithMessagesAndInput) {
    Served served;
    ::PostMessageW(served.m_hWnd, kPosted, 3, 0);
    EXPECT_TRUE(WaitUntilServed(served.m_nThreadId));
    EXPECT_EQ(served.m_nPosted, 4);

    ::SetForegroundWindow(served.m_hWnd);
    ASSERT_TRUE(WaitFor([&] { return ::GetForegroundWindow() == served.m_hWnd; }));
    INPUT keys[6]{};
    for (std::size_t i = 0; i < std::size(keys); ++i) {
        keys[i].type = INPUT_KEYBOARD;
        keys[i].ki.wVk = 'A';
        keys[i].ki.dwFlags = i % 2 != 0 ? KEYEVENTF_KEYUP : 0;
    }
    ::SendInput(static_cast<UINT>(std::size(keys)), keys, sizeof(INPUT));
    EXPECT_TRUE(WaitUntilServed(served.m_nThreadId));
    EXPECT_EQ(served.m_nKeys, 3);
}

TEST(WinDriver, AClosedDialogHasBeenTakenOver) {
    Served served;
    for (int i = 0; i < 20; ++i) {
        served.m_bTakenOver = false;
        ::PostMessageW(served.m_hWnd, kDialog, 0, 0);
        const HWND hBox = WaitForWindow(served.m_nThreadId, L"#32770");
        EXPECT_TRUE(WaitUntilServed(served.m_nThreadId));  // by the box's own loop
        EXPECT_FALSE(served.m_bTakenOver);
        PostCommand(hBox, IDOK);
        EXPECT_TRUE(WaitUntilClosed(hBox));
        ASSERT_TRUE(served.m_bTakenOver);
    }
}

TEST(WinDriver, AWaitInVainTellsWhereAndWhatIsOpen) {
    Served served;
    ::PostMessageW(served.m_hWnd, kDialog, 0, 0);
    const HWND hBox = WaitForWindow(served.m_nThreadId, L"#32770");
    ::testing::internal::CaptureStderr();
    EXPECT_FALSE(WaitFor([] { return false; }, 10));
    EXPECT_THAT(::testing::internal::GetCapturedStderr(),
                AllOf(HasSubstr("WinDriverTest.cpp:"), HasSubstr("waited 10 ms in vain"),
                      HasSubstr("#32770 \"Served\" a question"), HasSubstr("\"Served\" (disabled)")));
    PostCommand(hBox, IDOK);
    EXPECT_TRUE(WaitUntilClosed(hBox));
}

TEST(WinDriver, AThreadThatEndsIsNotServed) {
    DWORD nThreadId = 0;
    {
        Served served;
        nThreadId = served.m_nThreadId;
        ::PostMessageW(served.m_hWnd, kPosted, 0, 0);
        ::PostThreadMessageW(nThreadId, WM_QUIT, 0, 0);
        EXPECT_FALSE(WaitUntilServed(nThreadId));
    }
    EXPECT_FALSE(WaitUntilServed(nThreadId));
}

}  // namespace
}  // namespace width::test
