// Tested by: tests/e2e/SaveDialogTest.cpp
#include "save/SaveDlg_win.h"

#include <io.h>

#include <array>

#include "classlib/FrameWnd.h"
#include "classlib/Thread.h"
#include "module/ModuleState.h"
#include "res/resource.h"
#include "save/SaveFlow_win.h"

namespace width {

namespace {

// The system's own controls.
constexpr UINT kTypeCombo = 1136;
constexpr UINT kNameCombo = 1148;
constexpr UINT kNameEdit = 1152;

RECT WindowRect(HWND hWnd) {
    RECT rc{};
    ::GetWindowRect(hWnd, &rc);
    return rc;
}

std::wstring ReplaceQuestion(const std::wstring& path) {
    return g_bChinese != 0 ? path + L" 已存在。\n要替换它吗?" : path + L" already exists.\nDo you want to replace it?";
}

}  // namespace

FormatTable LibraryFormats() {
    FormatTable table;
    for (const KestrixExtension* pEntry = Kestrix_ExtFmt(); pEntry != nullptr && pEntry->pszExtension != nullptr; ++pEntry) {
        table.push_back({Widen(pEntry->pszExtension), pEntry->nFormat});
    }
    return table;
}

CSaveDlg::CSaveDlg(LPCWSTR pszFileName)
    : CFileDialog(pszFileName, OFN_HIDEREADONLY, g_pMainFrame != nullptr ? g_pMainFrame->m_hWnd : nullptr) {
    m_ofn.Flags |= OFN_EXPLORER | OFN_ENABLETEMPLATE;
    m_ofn.Flags &= ~static_cast<DWORD>(OFN_ENABLESIZING);
    m_ofn.hInstance = g_hModule;
    m_ofn.lpTemplateName = MAKEINTRESOURCEW(g_bChinese != 0 ? IDD_SAVE_ZH : IDD_SAVE_EN);
}

// nMaxCustFilter counts the types; without a custom filter the system does not look at it.
void CSaveDlg::SetTypes(const std::vector<FileType>& types, LPCWSTR pszInitialName) {
    m_filter = FilterOf(types);
    m_ofn.lpstrFilter = m_filter.c_str();
    m_ofn.nMaxCustFilter = static_cast<DWORD>(types.size());
    m_pFilterExts.clear();
    for (const FileType& type : types) {
        m_pFilterExts.push_back(ToUpper(type.patterns));
    }
    m_ofn.nFilterIndex = static_cast<DWORD>(InitialType(pszInitialName != nullptr ? pszInitialName : L"", m_pFilterExts));
}

void CSaveDlg::DoDataExchange(CDataExchange* pDX) {
    CFileDialog::DoDataExchange(pDX);
    m_btnOption = GetDlgItem(IDC_SAVE_OPTION);
}

/// The selection of the list of types, counted from 0; -1 if there is none.
std::int32_t CSaveDlg::GetSelectedType() const {
    const LRESULT nSelected = ::SendDlgItemMessageW(Platform(), kTypeCombo, CB_GETCURSEL, 0, 0);
    return nSelected >= 0 && nSelected < static_cast<LRESULT>(m_ofn.nMaxCustFilter) ? static_cast<std::int32_t>(nSelected) : -1;
}

std::uint32_t CSaveDlg::GetSelectedFormat() const {
    return static_cast<std::uint32_t>(FormatOfType(GetSelectedType(), m_pFilterExts, LibraryFormats()));
}

/// The id of the control that holds the name.
UINT CSaveDlg::NameControl() const {
    return ::GetDlgItem(Platform(), kNameCombo) != nullptr ? kNameCombo : kNameEdit;
}

std::wstring CSaveDlg::FileNameForType() const {
    std::array<wchar_t, 1024> text{};
    ::GetDlgItemTextW(Platform(), static_cast<int>(NameControl()), text.data(), static_cast<int>(text.size()));
    const std::size_t nType = m_ofn.nFilterIndex;
    const bool bListed = nType >= 1 && nType <= m_pFilterExts.size();
    return width::FileNameForType(text.data(), bListed ? m_pFilterExts[nType - 1] : L"");
}

void CSaveDlg::OnTypeChange() {
    m_nFormat = GetSelectedFormat();
    ::EnableWindow(m_btnOption, iopt_bDlg(static_cast<std::int32_t>(m_nFormat)) != 0 ? TRUE : FALSE);
    m_options = iopt_get_default(static_cast<std::int32_t>(m_nFormat));
    SetControlText(NameControl(), FileNameForType());
    if (const std::int32_t nType = GetSelectedType(); nType >= 0) {
        const std::wstring extension = FirstExtension(m_pFilterExts[static_cast<std::size_t>(nType)]);
        if (!extension.empty()) {
            SetDefExt(ToLower(extension));
        }
    }
}

// The option button stands under Cancel, as far from it as Cancel is from OK.
void CSaveDlg::PlaceOptionButton() const {
    const HWND hPlatform = Platform();
    const RECT rcDialog = WindowRect(hPlatform);
    const RECT rcTemplate = WindowRect(m_hWnd);
    ::SetWindowPos(m_hWnd, nullptr, 0, 0, rcDialog.right - rcDialog.left, rcTemplate.bottom - rcTemplate.top,
                   SWP_NOZORDER | SWP_NOACTIVATE);
    const RECT rcOk = WindowRect(::GetDlgItem(hPlatform, IDOK));
    const RECT rcCancel = WindowRect(::GetDlgItem(hPlatform, IDCANCEL));
    POINT pt{rcOk.left, rcCancel.bottom + (rcCancel.top - rcOk.bottom)};
    ::ScreenToClient(m_hWnd, &pt);
    ::SetWindowPos(m_btnOption, nullptr, pt.x, pt.y, rcOk.right - rcOk.left, rcOk.bottom - rcOk.top,
                   SWP_NOZORDER | SWP_NOACTIVATE);
}

void CSaveDlg::OnInitDone() {
    const LRESULT hFont = ::SendMessageW(Platform(), WM_GETFONT, 0, 0);
    ::SendMessageW(m_hWnd, WM_SETFONT, static_cast<WPARAM>(hFont), TRUE);
    ::SendMessageW(m_btnOption, WM_SETFONT, static_cast<WPARAM>(hFont), TRUE);
    PlaceOptionButton();
    OnTypeChange();
    CFileDialog::OnInitDone();
}

void CSaveDlg::OnControl(UINT nID, UINT nCode) {
    if (nID == IDC_SAVE_OPTION && nCode == BN_CLICKED) {
        OnOption();
    }
}

// The library's dialog belongs to the frame, so it would leave this one open to clicks.
void CSaveDlg::OnOption() {
    const HWND hFrame = g_pMainFrame != nullptr ? g_pMainFrame->m_hWnd : nullptr;
    ::EnableWindow(Platform(), FALSE);
    m_options = iopt_Dlg(g_bChinese, static_cast<std::int32_t>(m_nFormat), hFrame);
    ::EnableWindow(Platform(), TRUE);
    ::SetForegroundWindow(Platform());  // its owner was no window to go back to
}

// A name that the library can't be told is refused here, where the user can still choose another.
bool CSaveDlg::OnFileNameOK() {
    const std::wstring path = GetPathName();
    if (NarrowPath(path).empty()) {
        TellSaveFailed(path, L"");
        return true;
    }
    if ((m_ofn.Flags & OFN_OVERWRITEPROMPT) != 0 || m_options.bOption1 != 0) {
        return false;
    }
    if (::_waccess(path.c_str(), 0) != 0) {
        return false;
    }
    return AfxMessageBox(ReplaceQuestion(path).c_str(), MB_ICONEXCLAMATION | MB_YESNO) != IDYES;
}

}  // namespace width
