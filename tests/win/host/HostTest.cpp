// The host program's window: what it takes and shows, how it deals with a plug-in that works, one that is missing and one
// that is none.
#include "tests/win/host/HostFixture.h"

#include "standins/host/CommandLine.h"

namespace width::host {
namespace {

using ::testing::HasSubstr;

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

}  // namespace
}  // namespace width::host
