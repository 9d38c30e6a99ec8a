// The host program: what it takes and shows, how it deals with a plug-in that works, one that is missing and one that is
// none, and a whole run of host.exe. The plug-in is tests/e2e/FakePlugin.cpp.
#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>

#include "core/PackedDib.h"
// after core/PackedDib.h, which brings the platform in
#include <commctrl.h>

#include "imageio/ImageIo.h"
#include "standins/host/CommandLine.h"
#include "standins/host/HostWindow.h"
#include "standins/host/PictureTexts.h"
#include "standins/host/resource.h"
#include "tests/unit/imageio/Blocks.h"

namespace width::host {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr auto kPatience = std::chrono::seconds(20);

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
bool PumpUntil(const std::function<bool()>& condition) {
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

TEST(HostCommandLine, TakesLanguageMeasureAndOnePicture) {
    const auto parse = [](std::vector<std::wstring> arguments) { return ParseCommandLine(arguments); };
    const auto all = parse({L"--measure", L"a b.png", L"--lang", L"zh"});
    ASSERT_TRUE(all.has_value());
    EXPECT_EQ(all->nLangId, 0x0804);
    EXPECT_TRUE(all->bMeasure);
    EXPECT_EQ(all->picture, L"a b.png");
    EXPECT_EQ(parse({})->nLangId, 0x0409);
    EXPECT_EQ(parse({L"--lang", L"en"})->nLangId, 0x0409);
    for (const auto& wrong : std::vector<std::vector<std::wstring>>{
             {L"--lang"}, {L"--lang", L"fr"}, {L"--other"}, {L"a.png", L"b.png"}, {L"--measure"}, {L""}}) {
        EXPECT_FALSE(parse(wrong).has_value());
    }
}

TEST_F(Host, OpensEveryFormatAndTellsItsFigures) {
    HostWindow window(kEnglish, L"nowhere.dll");
    ASSERT_TRUE(Show(window));
    EXPECT_FALSE(IsOffered(window, IDM_MEASURE));
    EXPECT_FALSE(IsOffered(window, IDM_SAVE));
    for (const std::string name : {"a.bmp", "b.png", "c.tif", "d.jpg", "e.gif"}) {
        window.OpenPicture(Saved(Block(65, 40, 8), name));
        EXPECT_EQ(StatusText(window, 1), L"65 x 40 pixels") << name;
        EXPECT_EQ(StatusText(window, 2), name == "d.jpg" ? L"24 bits per pixel" : L"8 bits per pixel") << name;
        EXPECT_EQ(StatusText(window, 3), name == "e.gif" ? L"no resolution" : L"100 x 300 dpi") << name;
        EXPECT_EQ(Title(window), fs::path(name).wstring() + L" - Picture Host");
    }
    EXPECT_TRUE(IsOffered(window, IDM_MEASURE));
    Answerer ok(IDOK);
    window.OpenPicture(Path("missing.png").wstring());
    EXPECT_THAT(ok.Stop(), HasSubstr(L"cannot be opened"));
    EXPECT_EQ(Title(window), L"e.gif - Picture Host");
}

TEST_F(Host, ShowsThePictureInFullSizeAndFitted) {
    HostWindow window(kEnglish, L"nowhere.dll");
    ASSERT_TRUE(Show(window));
    Bytes block = Block(3000, 2000, 24);
    std::fill(block.begin() + 40, block.end(), std::byte{255});
    Put(block, 40 + 9000 * 1999, std::uint32_t{0xff0000ff});  // top left: blue 255, green and red 0
    window.OpenPicture(Saved(block, "big.bmp"));
    const HWND hView = window.View().Window();
    const auto range = [hView](int nBar) {
        int nMin = 0;
        int nMax = 0;
        GetScrollRange(hView, nBar, &nMin, &nMax);
        return nMax;
    };
    EXPECT_TRUE(window.View().IsFit());
    EXPECT_EQ(range(SB_HORZ), 0);
    Command(window, IDM_ACTUAL);
    EXPECT_EQ(range(SB_HORZ), 2999);
    EXPECT_EQ(range(SB_VERT), 1999);
    UpdateWindow(hView);
    const HDC hdc = GetDC(hView);
    EXPECT_EQ(GetPixel(hdc, 0, 0), RGB(0, 0, 255));
    EXPECT_EQ(GetPixel(hdc, 5, 5), RGB(255, 255, 255));
    SendMessageW(hView, WM_HSCROLL, SB_LINEDOWN, 0);
    UpdateWindow(hView);
    EXPECT_EQ(GetPixel(hdc, 0, 0), RGB(255, 255, 255));
    ReleaseDC(hView, hdc);
    SendMessageW(hView, WM_KEYDOWN, VK_END, 0);
    RECT rcClient{};
    GetClientRect(hView, &rcClient);
    EXPECT_EQ(GetScrollPos(hView, SB_VERT), 2000 - rcClient.bottom);
}

TEST_F(Host, RunsAJobTakesThePictureBackAndChangesTheLanguageBetweenJobs) {
    const Bytes block = Block(20, 10, 8);
    HostWindow window(kEnglish, fs::absolute(WIDTH_FAKE_PLUGIN).wstring());
    ASSERT_TRUE(Show(window));
    window.OpenPicture(Saved(block, "a.bmp"));
    Command(window, IDM_MEASURE);
    EXPECT_TRUE(window.IsJobRunning());
    EXPECT_FALSE(IsOffered(window, IDM_MEASURE));
    EXPECT_FALSE(IsOffered(window, IDM_CHINESE));
    Command(window, IDM_MEASURE);
    Command(window, IDM_CHINESE);
    EXPECT_EQ(StatusText(window, 0), L"Plug-in is open (English)");
    ASSERT_TRUE(PumpUntil([&] { return Title(window).front() == L'*'; }));
    EXPECT_EQ(Shown(window), Inverted(block));
    EXPECT_TRUE(window.IsJobRunning());
    ASSERT_TRUE(WaitForEnd(window));
    EXPECT_EQ(Calls(), "init 1033\nstart 20 10 8\nimage sent\nend sent\n");
    Command(window, IDM_CHINESE);
    Command(window, IDM_ABOUT);
    EXPECT_NE(IsWindowEnabled(window.Window()), FALSE);
    Command(window, IDM_MEASURE);
    ASSERT_TRUE(PumpUntil([&] { return Shown(window) == block; }));
    ASSERT_TRUE(WaitForEnd(window));
    EXPECT_THAT(Calls(), ::testing::EndsWith("init 2052\nabout\nstart 20 10 8\nimage sent\nend sent\n"));
}

TEST_F(Host, AsksBeforeAResultIsLost) {
    HostWindow window(kEnglish, fs::absolute(WIDTH_FAKE_PLUGIN).wstring());
    ASSERT_TRUE(Show(window));
    const Bytes block = Block(20, 10, 24);
    window.OpenPicture(Saved(block, "a.bmp"));
    window.Measure();
    ASSERT_TRUE(PumpUntil([&] { return Shown(window) == Inverted(block); }));
    {
        Answerer no(IDNO);
        Command(window, IDM_EXIT);
        EXPECT_THAT(no.Stop(), HasSubstr(L"still open"));
    }
    ASSERT_TRUE(WaitForEnd(window));
    for (const int nAnswer : {IDCANCEL, IDNO}) {
        EXPECT_NE(IsWindow(window.Window()), FALSE);
        Answerer answer(nAnswer);
        Command(window, IDM_EXIT);
        EXPECT_THAT(answer.Stop(), HasSubstr(L"Save the result"));
    }
    EXPECT_EQ(window.Window(), nullptr);
}

TEST_F(Host, GoesOnWithoutAWorkingPlugin) {
    const auto complaint = [&](const std::wstring& plugin) {
        HostWindow window(kEnglish, plugin);
        EXPECT_TRUE(Show(window));
        window.OpenPicture(Saved(Block(5, 5, 8), "a.bmp"));
        Answerer ok(IDOK);
        Command(window, IDM_MEASURE);
        Command(window, IDM_ABOUT);
        EXPECT_FALSE(window.IsJobRunning());
        EXPECT_TRUE(IsOffered(window, IDM_MEASURE));
        return ok.Stop();
    };
    EXPECT_THAT(complaint(Path("width.dll").wstring()), HasSubstr(L"is not there"));
    std::ofstream(Path("broken.dll")) << "no library";
    EXPECT_THAT(complaint(Path("broken.dll").wstring()), HasSubstr(L"cannot be loaded"));
    EXPECT_THAT(complaint(L"C:\\windows\\system32\\version.dll"), HasSubstr(L"not a plug-in"));
}

// A started program, ended with the object.
class Program {
public:
    explicit Program(std::wstring commandLine) {
        STARTUPINFOW start{};
        start.cb = sizeof start;
        CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &m_process);
    }
    ~Program() {
        TerminateProcess(m_process.hProcess, 99);
        CloseHandle(m_process.hProcess);
        CloseHandle(m_process.hThread);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    DWORD Id() const { return m_process.dwProcessId; }
    DWORD ExitCode() const {
        WaitForSingleObject(m_process.hProcess, 20000);
        DWORD nCode = 0;
        GetExitCodeProcess(m_process.hProcess, &nCode);
        return nCode;
    }

private:
    PROCESS_INFORMATION m_process{};
};

TEST_F(Host, ProgramMeasuresAtOnceAndEnds) {
    const std::wstring picture = Saved(Block(20, 10, 4), "a picture.png");
    const Program program(L"\"" + fs::absolute(WIDTH_HOST_PROGRAM).wstring() + L"\" --lang zh --measure \"" + picture + L"\"");
    ASSERT_TRUE(PumpUntil([&] { return Calls() == "init 2052\nstart 20 10 4\nimage sent\n"; })) << Calls();
    EndJobOf(program.Id());
    ASSERT_TRUE(PumpUntil([&] { return Calls().ends_with("end sent\n"); }));
    const HWND hWnd = FindWindowW(L"WidthHost", L"*a picture.png - Picture Host");
    ASSERT_NE(hWnd, nullptr);
    Answerer no(IDNO, program.Id());
    PostMessageW(hWnd, WM_CLOSE, 0, 0);
    EXPECT_EQ(program.ExitCode(), 0U);
    EXPECT_THAT(no.Stop(), HasSubstr(L"Save the result"));
}

}  // namespace
}  // namespace width::host
