// The host program's dialogs: what comes while one is open, files that are dropped, and whole runs of host.exe.
#include <fstream>

#include "tests/win/host/HostFixture.h"
// after the fixture, which brings the platform in
#include <shlobj.h>

namespace width::host {
namespace {

using ::testing::HasSubstr;

TEST_F(Host, AResultBearsTheNameOfThePictureThatItWasMadeFrom) {
    HostWindow window(kEnglish, fs::absolute(WIDTH_FAKE_PLUGIN).wstring());
    ASSERT_TRUE(Show(window));
    window.OpenPicture(Saved(Block(20, 10, 8), "a.bmp"));
    window.Measure();
    ASSERT_TRUE(WaitForCall("image sent"));  // its message waits to be taken
    window.OpenPicture(Saved(Block(7, 7, 24), "b.png"));
    EXPECT_EQ(Title(window), L"b.png - Picture Host");
    ASSERT_TRUE(PumpUntil([&] { return Title(window).front() == L'*'; }));
    EXPECT_EQ(Title(window), L"*a.bmp - Picture Host");
    EXPECT_EQ(Shown(window), Inverted(Block(20, 10, 8)));
    std::array<wchar_t, 300> proposal{};
    {
        const Visitor visitor(kFileName, [&](HWND hDialog) {
            GetDlgItemTextW(hDialog, kFileName, proposal.data(), static_cast<int>(proposal.size()));
            PostMessageW(hDialog, WM_COMMAND, IDCANCEL, 0);
        });
        Command(window, IDM_SAVE);
    }
    EXPECT_EQ(proposal.data(), std::wstring(L"a-result.bmp"));
    ASSERT_TRUE(WaitForEnd(window));
}

TEST_F(Host, SavesWhatWasShownWhenTheDialogOpened) {
    HostWindow window(kEnglish, fs::absolute(WIDTH_FAKE_PLUGIN).wstring());
    ASSERT_TRUE(Show(window));
    const Bytes block = Block(20, 10, 8);
    window.OpenPicture(Saved(block, "a.bmp"));
    window.Measure();
    ASSERT_TRUE(WaitForCall("image sent"));  // its message waits for the dialog's loop
    {
        const Visitor visitor(kFileName, [&](HWND hDialog) {
            while (Shown(window) == block) {
                SendMessageW(window.Window(), WM_NULL, 0, 0);
            }
            SetFileName(hDialog, Path("saved.bmp").wstring());
            PostMessageW(hDialog, WM_COMMAND, IDOK, 0);
        });
        Command(window, IDM_SAVE);
    }
    EXPECT_EQ(Load(Path("saved.bmp")), block);
    EXPECT_EQ(Title(window), L"*a.bmp - Picture Host") << "the result is in no file yet";
    ASSERT_TRUE(WaitForEnd(window));
}

// What a shell hands over: a list of names behind a head, in memory that the receiver frees.
HDROP DroppedFiles(const std::vector<std::wstring>& files, bool bWide) {
    std::wstring names;
    for (const std::wstring& file : files) {
        names += file + L'\0';
    }
    names += L'\0';
    const std::string narrow(names.begin(), names.end());
    const DROPFILES head{sizeof(DROPFILES), {5, 5}, FALSE, bWide ? TRUE : FALSE};
    const std::size_t nNames = bWide ? names.size() * sizeof(wchar_t) : narrow.size();
    const HGLOBAL hGlobal = GlobalAlloc(GHND, sizeof head + nNames);
    auto* pBytes = static_cast<std::byte*>(GlobalLock(hGlobal));
    std::memcpy(pBytes, &head, sizeof head);
    std::memcpy(pBytes + sizeof head, bWide ? static_cast<const void*>(names.data()) : narrow.data(), nNames);
    GlobalUnlock(hGlobal);
    return static_cast<HDROP>(hGlobal);
}

bool IsFreed(HDROP hDrop) {
    return (GlobalFlags(hDrop) & GMEM_INVALID_HANDLE) != 0;
}

TEST_F(Host, OpensTheFirstOfTheFilesThatAreDropped) {
    HostWindow window(kEnglish, L"nowhere.dll");
    ASSERT_TRUE(Show(window));
    EXPECT_NE(GetWindowLongPtrW(window.Window(), GWL_EXSTYLE) & WS_EX_ACCEPTFILES, 0);
    const std::wstring first = (m_folder / L"\u7ebf a.bmp").wstring();
    fs::rename(Saved(Block(20, 10, 8), "a.bmp"), first);
    const std::wstring second = Saved(Block(7, 7, 24), "b.png");
    const auto drop = [&](const std::vector<std::wstring>& files, bool bWide) {
        const HDROP hDrop = DroppedFiles(files, bWide);
        PostMessageW(window.Window(), WM_DROPFILES, reinterpret_cast<WPARAM>(hDrop), 0);
        EXPECT_TRUE(PumpUntil([&] { return IsFreed(hDrop); }));
    };
    drop({first, second}, true);
    EXPECT_EQ(Title(window), L"\u7ebf a.bmp - Picture Host");
    drop({second}, false);
    EXPECT_EQ(Title(window), L"b.png - Picture Host");
    drop({}, true);
    EXPECT_EQ(Title(window), L"b.png - Picture Host");
    Answerer ok(IDOK);
    drop({m_folder.wstring()}, true);
    EXPECT_THAT(ok.Stop(), HasSubstr(L"cannot be opened: it is a folder"));
    EXPECT_EQ(Title(window), L"b.png - Picture Host");
}

TEST_F(Host, BeginsNothingElseWhileADialogIsOpen) {
    HostWindow window(kEnglish, L"nowhere.dll");
    ASSERT_TRUE(Show(window));
    window.OpenPicture(Saved(Block(20, 10, 8), "a.bmp"));
    const HDROP hDrop = DroppedFiles({Saved(Block(7, 7, 24), "b.png")}, true);
    {
        const Visitor visitor(kFileName, [&](HWND hDialog) {
            SendMessageW(window.Window(), WM_DROPFILES, reinterpret_cast<WPARAM>(hDrop), 0);
            SendMessageW(window.Window(), WM_COMMAND, IDM_ACTUAL, 0);
            PostMessageW(hDialog, WM_COMMAND, IDCANCEL, 0);
        });
        Command(window, IDM_OPEN);
    }
    EXPECT_TRUE(IsFreed(hDrop));
    EXPECT_EQ(Title(window), L"a.bmp - Picture Host");
    EXPECT_TRUE(window.View().IsFit());
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
        WaitForSingleObject(m_process.hProcess, 60000);
        DWORD nCode = 0;
        GetExitCodeProcess(m_process.hProcess, &nCode);
        return nCode;
    }

private:
    PROCESS_INFORMATION m_process{};
};

TEST_F(Host, ProgramClosesUnderAFileDialogAndItsQuestion) {
    const std::wstring picture = Saved(Block(20, 10, 8), "a.bmp");
    const Bytes before = ReadAll(picture);
    const Program program(L"\"" + fs::absolute(WIDTH_HOST_PROGRAM).wstring() + L"\" \"" + picture + L"\"");
    const auto find = [](const wchar_t* pTitle) { return FindWindowW(L"WidthHost", pTitle); };
    ASSERT_TRUE(PumpUntil([&] { return find(L"a.bmp - Picture Host") != nullptr; }));
    const HWND hWnd = find(L"a.bmp - Picture Host");
    PostMessageW(hWnd, WM_COMMAND, IDM_SAVE, 0);
    ASSERT_TRUE(PumpUntil([&] { return FindDialog(program.Id(), kFileName) != nullptr; }));
    const HWND hDialog = FindDialog(program.Id(), kFileName);
    SetFileName(hDialog, picture);
    PostMessageW(hDialog, WM_COMMAND, IDOK, 0);
    ASSERT_TRUE(PumpUntil([&] { return FindDialog(program.Id(), kBoxText) != nullptr; }));
    PostMessageW(hWnd, WM_CLOSE, 0, 0);
    SendMessageW(hWnd, WM_NULL, 0, 0);  // the program has dealt with it
    PostMessageW(FindDialog(program.Id(), kBoxText), WM_COMMAND, IDNO, 0);
    EXPECT_EQ(program.ExitCode(), 0U);
    EXPECT_EQ(ReadAll(picture), before);
}

TEST_F(Host, ProgramClosesUnderADialogOrABoxAlone) {
    for (const bool bBox : {true, false}) {
        const std::wstring picture = bBox ? Path("none.png").wstring() : Saved(Block(20, 10, 8), "a.bmp");
        const Program program(L"\"" + fs::absolute(WIDTH_HOST_PROGRAM).wstring() + L"\" \"" + picture + L"\"");
        HWND hWnd = nullptr;
        const wchar_t* pTitle = bBox ? L"Picture Host" : L"a.bmp - Picture Host";
        ASSERT_TRUE(PumpUntil([&] { return (hWnd = FindWindowW(L"WidthHost", pTitle)) != nullptr; }));
        PostMessageW(hWnd, WM_COMMAND, bBox ? 0 : IDM_OPEN, 0);
        ASSERT_TRUE(PumpUntil([&] { return FindDialog(program.Id(), bBox ? kBoxText : kFileName) != nullptr; }));
        PostMessageW(hWnd, WM_CLOSE, 0, 0);
        EXPECT_EQ(program.ExitCode(), 0U) << bBox;
    }
}

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
