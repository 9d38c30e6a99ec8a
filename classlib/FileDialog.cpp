// Tested by: tests/e2e/SaveDialogTest.cpp
#include "classlib/FileDialog.h"

#include <algorithm>
#include <exception>
#include <string_view>

namespace {

constexpr std::size_t kPathRoom = 4096;

}  // namespace

CFileDialog::CFileDialog(LPCWSTR pszFileName, DWORD dwFlags, HWND hParent) : m_path(kPathRoom) {
    const std::wstring_view name = pszFileName != nullptr ? pszFileName : L"";
    std::ranges::copy(name.substr(0, kPathRoom - 1), m_path.begin());
    m_ofn.lStructSize = sizeof m_ofn;
    m_ofn.hwndOwner = hParent;
    m_ofn.Flags = dwFlags | OFN_EXPLORER | OFN_ENABLEHOOK;
    m_ofn.lpfnHook = Hook;
}

INT_PTR CFileDialog::DoModal() {
    m_ofn.lpstrFile = m_path.data();
    m_ofn.nMaxFile = static_cast<DWORD>(m_path.size());
    m_ofn.lCustData = reinterpret_cast<LPARAM>(this);
    const BOOL bChosen = ::GetSaveFileNameW(&m_ofn);
    m_hWnd = nullptr;
    return bChosen != FALSE ? IDOK : IDCANCEL;
}

// Some systems do not act on the message by which the extension is set, so a name without one gets it here.
std::wstring CFileDialog::WithDefExt(std::wstring path) const {
    const std::size_t nName = path.find_last_of(L"\\/:") + 1;  // 0 where there is none
    if (!m_extension.empty() && nName < path.size() && path.find(L'.', nName) == std::wstring::npos) {
        path += L'.' + m_extension;
    }
    return path;
}

std::wstring CFileDialog::GetPathName() const {
    if (m_hWnd == nullptr || m_bConfirmed) {
        return WithDefExt(m_path.data());
    }
    std::vector<wchar_t> path(kPathRoom);
    const LRESULT nLength = ::SendMessageW(Platform(), CDM_GETFILEPATH, path.size() - 1, reinterpret_cast<LPARAM>(path.data()));
    return nLength > 0 ? WithDefExt(path.data()) : std::wstring();
}

std::wstring CFileDialog::GetFileName() const {
    const std::wstring path = GetPathName();
    return path.substr(path.find_last_of(L"\\/:") + 1);
}

void CFileDialog::SetControlText(UINT nID, const std::wstring& text) const {
    ::SendMessageW(Platform(), CDM_SETCONTROLTEXT, nID, reinterpret_cast<LPARAM>(text.c_str()));
}

void CFileDialog::SetDefExt(const std::wstring& extension) {
    m_extension = extension;
    ::SendMessageW(Platform(), CDM_SETDEFEXT, 0, reinterpret_cast<LPARAM>(m_extension.c_str()));
}

void CFileDialog::OnInitDone() {
    CenterWindow(Platform());
}

// The record of the notification has the path that will be chosen. Asked for it, some systems put a path that was typed
// behind the folder that they show.
bool CFileDialog::OnConfirmed(LPCWSTR pszPath) {
    const std::wstring path = pszPath;
    std::ranges::fill(m_path, L'\0');
    std::ranges::copy(path.substr(0, kPathRoom - 1), m_path.begin());
    m_bConfirmed = true;
    const bool bStay = OnFileNameOK();
    m_bConfirmed = false;
    return bStay;
}

bool CFileDialog::OnDialogNotify(const OFNOTIFYW& notify) {
    switch (notify.hdr.code) {
        case CDN_INITDONE:
            OnInitDone();
            return false;
        case CDN_TYPECHANGE:
            m_ofn.nFilterIndex = notify.lpOFN->nFilterIndex;
            OnTypeChange();
            return false;
        case CDN_FILEOK:
            return OnConfirmed(notify.lpOFN->lpstrFile);
        default:
            return false;
    }
}

UINT_PTR CFileDialog::OnHook(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            OnInitDialog();
            return TRUE;
        case WM_COMMAND:
            OnControl(LOWORD(wParam), HIWORD(wParam));
            return TRUE;
        case WM_NOTIFY:
            if (OnDialogNotify(*reinterpret_cast<const OFNOTIFYW*>(lParam))) {
                ::SetWindowLongPtrW(m_hWnd, DWLP_MSGRESULT, TRUE);
                return TRUE;
            }
            return FALSE;
        default:
            return FALSE;
    }
}

// No exception goes through the system's code: one that gets here closes the dialog as its Cancel button does.
UINT_PTR CALLBACK CFileDialog::Hook(HWND hDlg, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        auto* const pThis = reinterpret_cast<CFileDialog*>(reinterpret_cast<const OPENFILENAMEW*>(lParam)->lCustData);
        ::SetWindowLongPtrW(hDlg, DWLP_USER, reinterpret_cast<LONG_PTR>(pThis));
        pThis->m_hWnd = hDlg;
    }
    auto* const pThis = reinterpret_cast<CFileDialog*>(::GetWindowLongPtrW(hDlg, DWLP_USER));
    if (pThis == nullptr) {
        return FALSE;
    }
    try {
        return pThis->OnHook(message, wParam, lParam);
    } catch (const std::exception&) {
        ::PostMessageW(::GetParent(hDlg), WM_COMMAND, IDCANCEL, 0);
        return FALSE;
    }
}
