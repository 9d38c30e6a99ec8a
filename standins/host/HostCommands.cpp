// The commands of the host's menu, and when they are to be had.
// Tested by: tests/win/host/HostTest.cpp
#include <exception>
#include <filesystem>
#include <utility>

#include "imageio/ImageIo.h"
#include "standins/host/FileDialogs.h"
#include "standins/host/HostWindow.h"
#include "standins/host/PictureTexts.h"
#include "standins/host/resource.h"

namespace width::host {

namespace {

std::wstring Widen(const std::string& text) {
    return {text.begin(), text.end()};
}

// A result goes beside its picture under a name of its own, in a format without loss.
std::wstring ResultName(const std::wstring& name) {
    const std::filesystem::path path(name);
    const bool bBitmap = path.extension() == L".bmp" || path.extension() == L".BMP";
    return path.stem().wstring() + L"-result" + (bBitmap ? L".bmp" : L".png");
}

// The hourglass for as long as the object lives.
class WaitCursor {
public:
    WaitCursor() : m_hOld(SetCursor(LoadCursorW(nullptr, IDC_WAIT))) {}
    ~WaitCursor() { SetCursor(m_hOld); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

private:
    HCURSOR m_hOld;
};

}  // namespace

bool HostWindow::IsEnabled(int nId) const noexcept {
    switch (nId) {
        case IDM_SAVE:
            return !Picture().empty();
        case IDM_MEASURE:
            return !Picture().empty() && !IsJobRunning();
        case IDM_ENGLISH:
        case IDM_CHINESE:
            return !IsJobRunning();
        default:
            return true;
    }
}

// A flat dispatch: one line a command.
void HostWindow::OnCommand(int nId) {
    if (!IsEnabled(nId) || IsBusy()) {
        return;
    }
    switch (nId) {
        case IDM_OPEN:
            return Open();
        case IDM_SAVE:
            SaveAs();
            return;
        case IDM_EXIT:
            return OnClose();
        case IDM_FIT:
        case IDM_ACTUAL:
            return m_view.SetFit(nId == IDM_FIT);
        case IDM_MEASURE:
            return Measure();
        case IDM_ABOUT:
            return About();
        case IDM_ENGLISH:
        case IDM_CHINESE:
            return SetLanguage(nId == IDM_CHINESE ? kChinese : kEnglish);
        default:
            return;
    }
}

// A result that is in no file is not dropped without a question, nor one that arrives while that is asked.
bool HostWindow::MayDiscardResult() {
    Block pAsked;
    while (m_bUnsaved && m_pBlock != pAsked) {
        pAsked = m_pBlock;
        const int nAnswer = Say(L"Save the result of the plug-in?", MB_YESNOCANCEL | MB_ICONQUESTION);
        if (nAnswer == IDCANCEL || (nAnswer == IDYES && !SaveAs())) {
            return false;
        }
    }
    return true;
}

void HostWindow::OpenPicture(const std::wstring& path) {
    const Work work(*this);
    if (!MayDiscardResult()) {
        return;
    }
    LoadedPicture picture;
    {
        const WaitCursor wait;
        picture = LoadPicture(path);
    }
    if (!picture.error.empty()) {
        Say(path + L"\ncannot be opened: " + Widen(picture.error) + L".", MB_OK | MB_ICONERROR);
        return;
    }
    SetPicture(std::make_shared<std::vector<std::byte>>(std::move(picture.block)), FileTitle(path), false);
}

void HostWindow::Open() {
    if (const std::wstring path = AskOpenName(m_hWnd); !path.empty()) {
        OpenPicture(path);
    }
}

// Saves what was shown when the dialog opened; the plug-in may send another picture meanwhile.
bool HostWindow::SaveAs() {
    const Block pBlock = m_pBlock;
    const std::wstring path = AskSaveName(m_hWnd, ResultName(m_name));
    if (path.empty()) {
        return false;
    }
    std::string error;
    {
        const WaitCursor wait;
        error = SavePicture(path, *pBlock);
    }
    if (!error.empty()) {
        Say(path + L"\ncannot be saved: " + Widen(error) + L".", MB_OK | MB_ICONERROR);
        return false;
    }
    if (m_pBlock == pBlock) {
        m_name = FileTitle(path);
        m_bUnsaved = false;
        UpdateTitle();
        UpdateStatus();
    }
    return true;
}

bool HostWindow::LoadPlugin() {
    std::wstring error;
    {
        const WaitCursor wait;
        error = m_plugin.Load(m_pluginPath, m_nLangId);
    }
    if (!error.empty()) {
        Say(error, MB_OK | MB_ICONERROR);
    }
    return error.empty();
}

void HostWindow::Measure() {
    const Work work(*this);
    if (!IsEnabled(IDM_MEASURE) || !LoadPlugin()) {
        return;
    }
    m_pJob = std::make_unique<Job>(m_hWnd);
    m_jobName = m_name;
    if (!m_plugin.Start(Picture(), *m_pJob)) {
        m_pJob.reset();
        Say(L"There is not enough memory to hand the picture to the plug-in.", MB_OK | MB_ICONERROR);
    }
    UpdateStatus();
}

// The box has no parent window, so this one is held back by hand while it is open.
void HostWindow::About() {
    if (!LoadPlugin()) {
        return;
    }
    EnableWindow(m_hWnd, FALSE);
    m_plugin.About();
    EnableWindow(m_hWnd, TRUE);
    SetForegroundWindow(m_hWnd);
}

// The plug-in takes its language once, so it is loaded anew, the next time that it is needed.
void HostWindow::SetLanguage(WORD nLangId) {
    if (nLangId != m_nLangId) {
        m_plugin.Unload();
        m_nLangId = nLangId;
        UpdateStatus();
    }
}

}  // namespace width::host
