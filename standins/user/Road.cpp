// Every wait is for something that a person would wait for too: a window, an entry of the menu that can be had, a colour on the
// screen. Run by scripts/demo, and by ./test through it.
#include "standins/user/Road.h"

#include <commctrl.h>

#include <filesystem>
#include <stdexcept>
#include <vector>

#include "core/PackedDib.h"
#include "imageio/ImageIo.h"
#include "res/resource.h"
#include "standins/host/resource.h"
#include "standins/user/Screen.h"

namespace width::user {

namespace {

constexpr COLORREF kRed = RGB(255, 0, 0), kGreen = RGB(0, 255, 0), kBlue = RGB(0, 0, 255);
constexpr int kViewId = 59648, kToolBarId = 59392;
constexpr int kFileNameId = 1148, kFileTypeId = 1136;  // of the system's file dialogs
constexpr int kPngType = 1;                            // the place of PNG in the plug-in's list of types
constexpr int kMarkRadius = 6;

// The host as a running program.
class Host {
public:
    explicit Host(const std::wstring& commandLine) {
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        std::vector<wchar_t> line(commandLine.begin(), commandLine.end());
        line.push_back(L'\0');
        if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &m_process) == FALSE) {
            throw std::runtime_error("the host can't be started");
        }
    }
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;
    ~Host() {
        if (IsRunning()) {
            TerminateProcess(m_process.hProcess, 1);
        }
        CloseHandle(m_process.hThread);
        CloseHandle(m_process.hProcess);
    }
    bool IsRunning() const { return WaitForSingleObject(m_process.hProcess, 0) == WAIT_TIMEOUT; }

    /// The window for which the test holds, as soon as it is there. A box that opens in its place ends the wait.
    HWND Window(const std::string& name, const std::function<bool(HWND)>& test) const {
        HWND hFound = nullptr;
        Until(name, [&] {
            hFound = FindTopWindow(m_process.dwProcessId, test);
            const HWND hBox = hFound == nullptr ? OpenBox() : nullptr;
            if (hBox != nullptr && !test(hBox)) {
                throw std::runtime_error("a box opened instead of " + name);
            }
            return hFound != nullptr;
        });
        return hFound;
    }
    HWND Dialog(const std::string& name) const {
        return Window(name, [](HWND hWnd) { return IsOfClass(hWnd, L"#32770"); });
    }

    /// The dialog or message box that is open, the topmost of several; null if there is none.
    HWND OpenBox() const {
        return FindTopWindow(m_process.dwProcessId, [](HWND hWnd) { return IsOfClass(hWnd, L"#32770"); });
    }

private:
    PROCESS_INFORMATION m_process{};
};

void Command(HWND hWnd, int nId) {
    PostMessageW(hWnd, WM_COMMAND, static_cast<WPARAM>(nId), 0);
}

void Type(HWND hDlg, int nId, const std::wstring& text) {
    SendDlgItemMessageW(hDlg, nId, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

void PressOk(HWND hDlg, const std::string& name) {
    Command(hDlg, IDOK);
    Until(name + " to close", [&] { return IsWindow(hDlg) == FALSE; });
}

void MoveTo(POINT ptScreen) {
    SetCursorPos(ptScreen.x, ptScreen.y);
}

void ClickAt(POINT ptScreen) {
    MoveTo(ptScreen);
    INPUT input[2]{};
    input[0].type = input[1].type = INPUT_MOUSE;
    input[0].mi.dwFlags = MOUSEEVENTF_LEFTDOWN;
    input[1].mi.dwFlags = MOUSEEVENTF_LEFTUP;
    SendInput(2, input, sizeof(INPUT));
}

class Walker {
public:
    explicit Walker(const Plan& plan)
        : m_plan(plan),
          m_host(L"\"" + plan.host + L"\" --lang " + (plan.bChinese ? L"zh" : L"en") + L" \"" + plan.picture + L"\"") {}

    void OpenPlugin();
    void ChooseGreyWindow();
    void MakeSkeleton();
    void DetectLines();
    void PickEnds();
    void PlaceLabel();
    void WriteToBitmap();
    void SaveAsPng();
    std::wstring FreshPath(const wchar_t* pName) const;
    void ExpectLabel(const std::wstring& path, const std::string& what) const;
    void SendBack();
    void SaveInHost();
    void Leave();

    /// What is told of a step that failed.
    std::string Report(const std::string& step, const std::string& what) const;

private:
    void Shot(const wchar_t* name) { SaveScreen(m_plan.prefix + std::to_wstring(++m_nShots) + L"-" + name + L".png"); }
    // The picture lies in the middle of the view, a pixel a pixel.
    POINT OnScreen(POINT ptImage) const {
        RECT rc{};
        GetClientRect(m_hView, &rc);
        POINT pt{(rc.right - m_nWidth) / 2 + ptImage.x, (rc.bottom - m_nHeight) / 2 + ptImage.y};
        ClientToScreen(m_hView, &pt);
        return pt;
    }
    bool IsOnToolBar(int nId, UINT message) const {
        return SendDlgItemMessageW(m_hFrame, kToolBarId, message, static_cast<WPARAM>(nId), 0) != 0;
    }
    void ChooseTool(int nId) {
        Command(m_hFrame, nId);
        Until("a tool", [&] { return IsOnToolBar(nId, TB_ISBUTTONCHECKED); });
    }
    void ReadPictureSize();

    const Plan& m_plan;
    Host m_host;
    HWND m_hHost = nullptr, m_hFrame = nullptr, m_hView = nullptr;
    int m_nWidth = 0, m_nHeight = 0;
    int m_nShots = 0;
};

void Walker::OpenPlugin() {
    m_hHost = m_host.Window("the host with the picture", [](HWND hWnd) {
        return IsOfClass(hWnd, L"WidthHost") && TitleOf(hWnd).find(L" - ") != std::wstring::npos;
    });
    Shot(L"host");
    Command(m_hHost, IDM_MEASURE);
    m_hFrame = m_host.Window("the plug-in's window", [](HWND hWnd) { return GetDlgItem(hWnd, kViewId) != nullptr; });
    m_hView = GetDlgItem(m_hFrame, kViewId);
    Until("the window to be as large as the screen", [&] { return IsZoomed(m_hFrame) != FALSE; });
    Until("the picture", [&] { return IsOnToolBar(ID_TOOL_LINE_DETECT, TB_ISBUTTONENABLED); });
    ReadPictureSize();
    Shot(L"window");
}

void Walker::ReadPictureSize() {
    const LoadedPicture picture = LoadPicture(m_plan.picture);
    const DibCheck check = CheckPackedDib(picture.block);
    if (check.status != DibStatus::Ok) {
        throw std::runtime_error("the picture can't be read: " + picture.error);
    }
    m_nWidth = check.figures.nWidth;
    m_nHeight = check.figures.nHeight;
}

void Walker::ChooseGreyWindow() {
    Command(m_hFrame, ID_BINARY_SETTING);
    const HWND hDlg = m_host.Dialog("the dialog of the grey window");
    Type(hDlg, IDC_AUTO_MAX_GREY, m_plan.maxGrey);
    Shot(L"grey-window");
    PressOk(hDlg, "the dialog of the grey window");
}

void Walker::MakeSkeleton() {
    Command(m_hFrame, ID_SKELETONIZE);
    Until("the skeleton", [&] { return IsColourNear(OnScreen(m_plan.lines[0]), kGreen, 3); });
    Shot(L"skeleton");
}

void Walker::DetectLines() {
    ChooseTool(ID_TOOL_LINE_DETECT);
    for (const POINT& pt : m_plan.lines) {
        ClickAt(OnScreen(pt));
        Until("a detected line", [&] { return IsColourNear(OnScreen(pt), kRed, 3); });
    }
    Shot(L"lines");
}

void Walker::PickEnds() {
    ChooseTool(ID_TOOL_WIDTH_LABEL);
    for (const POINT& pt : m_plan.ends) {
        ClickAt(OnScreen(pt));
        // The circle's top, above the line, where nothing else is red.
        Until("the mark at an end", [&] { return IsColourNear(OnScreen({pt.x, pt.y - kMarkRadius}), kRed, 0); });
    }
    MoveTo(OnScreen({m_plan.place.x - 20, m_plan.place.y}));
    MoveTo(OnScreen(m_plan.place));
    Until("the label at the mouse", [&] { return !IsColourNear(OnScreen(m_plan.place), kBlue, 0); });
    Shot(L"picks");
}

void Walker::PlaceLabel() {
    ClickAt(OnScreen(m_plan.place));
    Until("the label", [&] { return IsColourNear(OnScreen(m_plan.place), kBlue, 3); });
    Shot(L"label");
}

void Walker::WriteToBitmap() {
    Command(m_hFrame, ID_WRITE_TO_BITMAP);
    const HWND hBox = m_host.Dialog("the message that all is written");
    Shot(L"written");
    PressOk(hBox, "the message");
}

// A file of the walk's own, which is not there yet.
std::wstring Walker::FreshPath(const wchar_t* pName) const {
    const std::filesystem::path path = std::filesystem::absolute(m_plan.prefix + pName);
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    return path.wstring();
}

void Walker::ExpectLabel(const std::wstring& path, const std::string& what) const {
    if (!CarriesText(path, m_plan.text, L"Times New Roman", -13, kBlue)) {
        throw std::runtime_error(what + " does not carry the label's text");
    }
}

void Walker::SaveAsPng() {
    const std::wstring path = FreshPath(L"saved.png");
    Command(m_hFrame, ID_FILE_SAVE_AS_PICTURE);
    const HWND hDlg = m_host.Dialog("the save dialog");
    const HWND hTypes = GetDlgItem(hDlg, kFileTypeId);
    SendMessageW(hTypes, CB_SETCURSEL, kPngType, 0);
    SendMessageW(hDlg, WM_COMMAND, MAKEWPARAM(kFileTypeId, CBN_SELENDOK), reinterpret_cast<LPARAM>(hTypes));
    Type(hDlg, kFileNameId, path.substr(path.find_last_of(L"\\/") + 1));
    Shot(L"save-as");
    Type(hDlg, kFileNameId, path);
    PressOk(hDlg, "the save dialog");
    Until("the picture to be saved", [&] { return !IsOnToolBar(ID_FILE_SAVE, TB_ISBUTTONENABLED); });
    ExpectLabel(path, "the saved picture");
}

// The host gets the picture, then the window is closed.
void Walker::SendBack() {
    Command(m_hFrame, ID_SEND_IMAGE);
    Until("the picture sent back", [&] { return TitleOf(m_hHost).starts_with(L"*"); });
    PostMessageW(m_hFrame, WM_CLOSE, 0, 0);
    Until("the window to close", [&] { return IsWindow(m_hFrame) == FALSE; });
    Shot(L"sent-back");
}

void Walker::SaveInHost() {
    const std::wstring path = FreshPath(L"labelled.bmp");
    Command(m_hHost, IDM_SAVE);
    const HWND hDlg = m_host.Dialog("the host's save dialog");
    Type(hDlg, kFileNameId, path);
    PressOk(hDlg, "the host's save dialog");
    Until("the saved picture", [&] { return !TitleOf(m_hHost).starts_with(L"*"); });
    ExpectLabel(path, "the picture sent back");
}

void Walker::Leave() {
    PostMessageW(m_hHost, WM_CLOSE, 0, 0);
    Until("the host to end", [&] { return !m_host.IsRunning(); });
}

std::string Walker::Report(const std::string& step, const std::string& what) const {
    std::string report = step + ": " + what;
    if (const HWND hBox = m_host.OpenBox(); hBox != nullptr) {
        report += "; open is the box \"" + ToUtf8(TextsIn(hBox)) + "\"";
    }
    const std::wstring picture = m_plan.prefix + L"fault.png";
    try {
        SaveScreenNow(picture);
        report += "; the screen is in " + ToUtf8(picture);
    } catch (const std::exception& error) {
        report += std::string("; ") + error.what();
    }
    return report;
}

struct Step {
    const char* name;
    void (Walker::*take)();
};
constexpr Step kSteps[] = {
    {"opening the plug-in", &Walker::OpenPlugin},
    {"choosing the grey window", &Walker::ChooseGreyWindow},
    {"making the skeleton", &Walker::MakeSkeleton},
    {"detecting the lines", &Walker::DetectLines},
    {"picking the lines' ends", &Walker::PickEnds},
    {"placing the label", &Walker::PlaceLabel},
    {"writing into the picture", &Walker::WriteToBitmap},
    {"saving the picture", &Walker::SaveAsPng},
    {"sending the picture back", &Walker::SendBack},
    {"saving in the host", &Walker::SaveInHost},
    {"leaving", &Walker::Leave},
};

}  // namespace

void Walk(const Plan& plan) {
    Walker walker(plan);
    for (const Step& step : kSteps) {
        try {
            (walker.*step.take)();
        } catch (const std::exception& error) {
            throw std::runtime_error(walker.Report(step.name, error.what()));
        }
    }
}

}  // namespace width::user
