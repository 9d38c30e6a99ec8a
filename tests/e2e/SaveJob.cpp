#include "tests/e2e/SaveJob.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "res/resource.h"

namespace width::test {

namespace {

constexpr int kTypeCombo = 1136, kNameCombo = 1148;
constexpr UINT kSelEndOk = 9, kSelChange = 1;  // CBN_...

BOOL CALLBACK FindOption(HWND hWnd, LPARAM lParam) {
    if (::GetDlgCtrlID(hWnd) == IDC_SAVE_OPTION) {
        *reinterpret_cast<HWND*>(lParam) = hWnd;
        return FALSE;
    }
    return TRUE;
}

}  // namespace

RecorderState& Recorder() {
    const HMODULE hLibrary = ::GetModuleHandleW(L"kestrix.dll");
    const auto pfn = reinterpret_cast<recorder_state_fn>(reinterpret_cast<void*>(::GetProcAddress(hLibrary, "recorder_state")));
    return *pfn();
}

RecorderState& FreshRecorder() {
    static constexpr KestrixExtension kTable[] = {{"one", 1}, {"Three", 3}, {"uno", 1}, {"six", 6}, {"nine", 9}, {nullptr, 0}};
    RecorderState& state = Recorder();
    state = {};
    state.pTable = kTable;
    state.pszNames[1] = "One";
    state.pszNames[3] = "Three";
    state.pszNames[6] = "Six";
    state.pszNames[9] = "Nine";
    state.nCanSave = 1U << 1 | 1U << 2 | 1U << 3 | 1U << 6;  // 2 has no information
    state.nHasDialog = 1U << 6;
    state.nSaved = 1;
    state.bProbesZeroed = 1;
    return state;
}

std::wstring FreshFolder(const wchar_t* pszName) {
    wchar_t temp[MAX_PATH] = {};
    ::GetTempPathW(MAX_PATH, temp);
    const std::filesystem::path folder = std::filesystem::path(temp) / pszName;
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    return folder.wstring();
}

void MakeFile(const std::wstring& path) {
    std::ofstream(std::filesystem::path(path)) << "old";
}

SaveDialog::SaveDialog(const PluginJob& job, UINT nCommand) : SaveDialog(job.Frame(), nCommand) {
    WaitFor([&] { return OptionButton() != nullptr; });
}

SaveDialog::SaveDialog(HWND hFrame, UINT nCommand) {
    ::PostMessageW(hFrame, WM_COMMAND, nCommand, 0);
    WaitFor([&] {
        m_hDlg = FindTopWindow(0, L"#32770");
        return m_hDlg != nullptr && ::GetDlgItem(m_hDlg, kTypeCombo) != nullptr;
    });
}

std::wstring SaveDialog::Name() const {
    wchar_t text[400] = {};
    ::GetDlgItemTextW(m_hDlg, kNameCombo, text, 400);
    return text;
}

void SaveDialog::Type(const std::wstring& name) const {
    ::SendMessageW(::GetDlgItem(m_hDlg, kNameCombo), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(name.c_str()));
}

std::vector<std::wstring> SaveDialog::Types() const {
    const HWND hCombo = ::GetDlgItem(m_hDlg, kTypeCombo);
    std::vector<std::wstring> types;
    for (LRESULT i = 0; i < ::SendMessageW(hCombo, CB_GETCOUNT, 0, 0); ++i) {
        wchar_t text[400] = {};
        ::SendMessageW(hCombo, CB_GETLBTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text));
        types.emplace_back(text);
    }
    return types;
}

int SaveDialog::SelectedType() const {
    return static_cast<int>(::SendDlgItemMessageW(m_hDlg, kTypeCombo, CB_GETCURSEL, 0, 0));
}

void SaveDialog::ChooseType(int nType) const {
    const HWND hCombo = ::GetDlgItem(m_hDlg, kTypeCombo);
    ::SendMessageW(hCombo, CB_SETCURSEL, static_cast<WPARAM>(nType), 0);
    for (const UINT nCode : {kSelEndOk, kSelChange}) {
        ::SendMessageW(m_hDlg, WM_COMMAND, MAKEWPARAM(kTypeCombo, nCode), reinterpret_cast<LPARAM>(hCombo));
    }
}

HWND SaveDialog::OptionButton() const {
    HWND hFound = nullptr;
    ::EnumChildWindows(m_hDlg, FindOption, reinterpret_cast<LPARAM>(&hFound));
    return hFound;
}

void SaveDialog::PressOption() const {
    ::SendMessageW(OptionButton(), BM_CLICK, 0, 0);
}

bool SaveDialog::Close(UINT nId) const {
    PostCommand(m_hDlg, nId);
    return WaitFor([&] { return !IsOpen(); });
}

std::wstring SaveDialog::Confirm(UINT nAnswer) const {
    PostCommand(m_hDlg, IDOK);
    HWND hBox = nullptr;
    WaitFor([&] {
        hBox = FindTopWindow(0, L"#32770");
        return hBox != nullptr && hBox != m_hDlg;
    });
    const std::wstring text = MessageBoxText(hBox);
    PostCommand(hBox, nAnswer);
    WaitFor([&] { return ::IsWindow(hBox) == FALSE; });
    return text;
}

}  // namespace width::test
