// The host's window under test, and who deals with the dialogs and boxes that it opens. The plug-in is
// tests/e2e/FakePlugin.cpp.
#pragma once

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <utility>

#include "core/PackedDib.h"
// after core/PackedDib.h, which brings the platform in
#include <commctrl.h>

#include "imageio/ImageIo.h"
#include "standins/host/HostWindow.h"
#include "standins/host/resource.h"
#include "tests/unit/imageio/Blocks.h"

namespace width::host {

constexpr auto kPatience = std::chrono::seconds(60);

// Answers the boxes of this or another process that open while it lives, and keeps their texts.
class Answerer {
public:
    Answerer(int nAnswer, DWORD nProcess) : m_nAnswer(nAnswer), m_nProcess(nProcess), m_thread([this] { Run(); }) {}
    explicit Answerer(int nAnswer) : Answerer(nAnswer, GetCurrentProcessId()) {}
    ~Answerer() { Stop(); }
    Answerer(const Answerer&) = delete;
    Answerer& operator=(const Answerer&) = delete;

    // Everything that the boxes said.
    std::wstring Stop() {
        m_bStop = true;
        if (m_thread.joinable()) {
            m_thread.join();
        }
        return m_text;
    }

private:
    void Run() {
        while (!m_bStop) {
            EnumWindows(OnWindow, reinterpret_cast<LPARAM>(this));
            Sleep(10);
        }
    }
    static BOOL CALLBACK OnWindow(HWND hWnd, LPARAM lParam) {
        auto* pThis = reinterpret_cast<Answerer*>(lParam);
        std::array<wchar_t, 600> text{};
        DWORD nProcess = 0;
        GetWindowThreadProcessId(hWnd, &nProcess);
        GetClassNameW(hWnd, text.data(), 100);
        const bool bBox =
            nProcess == pThis->m_nProcess && text.data() == std::wstring(L"#32770") && IsWindowVisible(hWnd) != FALSE;
        if (bBox && GetDlgItemTextW(hWnd, 0xFFFF, text.data(), static_cast<int>(text.size())) != 0) {
            pThis->m_text += text.data();
            SendMessageTimeoutW(hWnd, WM_COMMAND, static_cast<WPARAM>(pThis->m_nAnswer), 0, SMTO_NORMAL, 1000, nullptr);
        }
        return TRUE;
    }

    int m_nAnswer;
    DWORD m_nProcess;
    std::wstring m_text;
    std::atomic<bool> m_bStop{false};
    std::thread m_thread;
};

// Handles messages until a condition holds.
inline bool PumpUntil(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!condition() && std::chrono::steady_clock::now() < end) {
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
            DispatchMessageW(&message);
        }
        Sleep(5);
    }
    return condition();
}

// The visible and enabled dialog or box of a process with a control of that number; null if there is none.
inline HWND FindDialog(DWORD nProcess, int nControl) {
    struct Search {
        DWORD nProcess;
        int nControl;
        HWND hFound;
    } search{nProcess, nControl, nullptr};
    EnumWindows(
        [](HWND hWnd, LPARAM lParam) {
            auto* pSearch = reinterpret_cast<Search*>(lParam);
            std::array<wchar_t, 20> name{};
            DWORD nOwner = 0;
            GetWindowThreadProcessId(hWnd, &nOwner);
            GetClassNameW(hWnd, name.data(), static_cast<int>(name.size()));
            const bool bDialog = nOwner == pSearch->nProcess && name.data() == std::wstring(L"#32770");
            if (bDialog && IsWindowVisible(hWnd) != FALSE && IsWindowEnabled(hWnd) != FALSE &&
                GetDlgItem(hWnd, pSearch->nControl) != nullptr) {
                pSearch->hFound = hWnd;
            }
            return pSearch->hFound == nullptr ? TRUE : FALSE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.hFound;
}

constexpr int kBoxText = 0xFFFF;
constexpr int kFileName = 1148;

// Does something, on a thread of its own, with the dialog of this process that opens while it lives.
class Visitor {
public:
    Visitor(int nControl, std::function<void(HWND)> visit)
        : m_thread([nControl, visit = std::move(visit)] {
              const auto end = std::chrono::steady_clock::now() + kPatience;
              HWND hDialog = nullptr;
              while (hDialog == nullptr && std::chrono::steady_clock::now() < end) {
                  Sleep(10);
                  hDialog = FindDialog(GetCurrentProcessId(), nControl);
              }
              ASSERT_NE(hDialog, nullptr) << "no dialog has opened";
              visit(hDialog);
          }) {}
    ~Visitor() { m_thread.join(); }
    Visitor(const Visitor&) = delete;
    Visitor& operator=(const Visitor&) = delete;

private:
    std::thread m_thread;
};

inline void SetFileName(HWND hDialog, const std::wstring& name) {
    SendDlgItemMessageW(hDialog, kFileName, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name.c_str()));
}

class Host : public ImageIo {
protected:
    Host() {
        SetEnvironmentVariableW(L"WIDTH_FAKE_LOG", Path("calls.txt").c_str());
        const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_BAR_CLASSES};
        InitCommonControlsEx(&controls);
    }

    // A window that is gone has asked the thread's message loop to end; no box of the next one would stay open.
    static bool Show(HostWindow& window) {
        MSG message{};
        while (PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) != FALSE) {
        }
        return window.Create(SW_SHOW);
    }

    std::string Calls() const {
        const Bytes bytes = ReadAll(Path("calls.txt"));
        return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }

    std::wstring Saved(const Bytes& block, const std::string& name) const {
        EXPECT_EQ(SavePicture(Path(name), block), "");
        return Path(name).wstring();
    }

    static std::wstring StatusText(const HostWindow& window, int nPart) {
        std::array<wchar_t, 200> text{};
        SendMessageW(GetDlgItem(window.Window(), IDC_STATUS), SB_GETTEXTW, static_cast<WPARAM>(nPart),
                     reinterpret_cast<LPARAM>(text.data()));
        return text.data();
    }

    static std::wstring Title(const HostWindow& window) {
        std::array<wchar_t, 200> text{};
        GetWindowTextW(window.Window(), text.data(), static_cast<int>(text.size()));
        return text.data();
    }

    static bool IsOffered(const HostWindow& window, UINT nId) {
        const HMENU hMenu = GetMenu(window.Window());
        SendMessageW(window.Window(), WM_INITMENU, reinterpret_cast<WPARAM>(hMenu), 0);
        return (GetMenuState(hMenu, nId, MF_BYCOMMAND) & MF_GRAYED) == 0;
    }

    static void Command(const HostWindow& window, int nId) {
        SendMessageW(window.Window(), WM_COMMAND, static_cast<WPARAM>(nId), 0);
    }

    // Without handling messages.
    bool WaitForCall(const std::string& call) const {
        const auto end = std::chrono::steady_clock::now() + kPatience;
        while (Calls().find(call) == std::string::npos && std::chrono::steady_clock::now() < end) {
            Sleep(5);
        }
        return Calls().find(call) != std::string::npos;
    }

    static void EndJobOf(DWORD nProcess) {
        const std::wstring name = L"WIDTH_FAKE_GO" + std::to_wstring(nProcess);
        const HANDLE hGo = CreateEventW(nullptr, FALSE, FALSE, name.c_str());
        SetEvent(hGo);
        Sleep(100);  // the event lives as long as somebody has it open
        CloseHandle(hGo);
    }

    static bool WaitForEnd(const HostWindow& window) {
        EndJobOf(GetCurrentProcessId());
        return PumpUntil([&] { return !window.IsJobRunning(); });
    }

    static Bytes Inverted(Bytes block) {
        const std::size_t nStart = CheckPackedDib(block).figures.nBitsOffset;
        std::transform(block.begin() + static_cast<std::ptrdiff_t>(nStart), block.end(),
                       block.begin() + static_cast<std::ptrdiff_t>(nStart), [](std::byte b) { return ~b; });
        return block;
    }

    static Bytes Shown(const HostWindow& window) { return {window.Picture().begin(), window.Picture().end()}; }
};

}  // namespace width::host
