// Tested by: tests/e2e/DialogTest.cpp
#include "classlib/Dialog.h"

#include <algorithm>
#include <optional>
#include <string>

#include "classlib/FitTexts.h"
#include "classlib/NumberText.h"

namespace {

std::wstring ControlText(HWND hControl) {
    std::wstring text(static_cast<std::size_t>(::GetWindowTextLengthW(hControl)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(::GetWindowTextW(hControl, text.data(), static_cast<int>(text.size()))));
    return text;
}

}  // namespace

// The state is final before the box opens: the dialog stays as it is.
void CDataExchange::Fail(const std::wstring& text) {
    m_bFailed = true;
    const HWND hControl = m_hWndLastControl;
    wchar_t caption[200] = {};
    ::GetWindowTextW(m_pDlg->m_hWnd, caption, 200);
    ::MessageBoxW(m_pDlg->m_hWnd, text.c_str(), caption, MB_OK | MB_ICONEXCLAMATION);
    if (::IsWindow(hControl) != FALSE) {
        ::SetFocus(hControl);
        ::SendMessageW(hControl, EM_SETSEL, 0, -1);
    }
}

void DDX_Text(CDataExchange* pDX, UINT nID, int& value) {
    if (pDX->m_bFailed) {
        return;
    }
    pDX->m_hWndLastControl = pDX->m_pDlg->GetDlgItem(nID);
    if (!pDX->m_bSaveAndValidate) {
        ::SetWindowTextW(pDX->m_hWndLastControl, std::to_wstring(value).c_str());
        return;
    }
    const std::wstring text = ControlText(pDX->m_hWndLastControl);
    if (const std::optional<std::int32_t> parsed = ParseInteger(text)) {
        value = *parsed;
    } else {
        pDX->Fail(pDX->m_pDlg->NoIntegerText());
    }
}

void DDX_Text(CDataExchange* pDX, UINT nID, float& value) {
    if (pDX->m_bFailed) {
        return;
    }
    pDX->m_hWndLastControl = pDX->m_pDlg->GetDlgItem(nID);
    if (!pDX->m_bSaveAndValidate) {
        ::SetWindowTextW(pDX->m_hWndLastControl, NumberText(value).c_str());
        return;
    }
    const std::wstring text = ControlText(pDX->m_hWndLastControl);
    if (const std::optional<float> parsed = ParseNumber(text)) {
        value = *parsed;
    } else {
        pDX->Fail(pDX->m_pDlg->NoNumberText());
    }
}

void DDX_Check(CDataExchange* pDX, UINT nID, int& value) {
    if (pDX->m_bFailed) {
        return;
    }
    pDX->m_hWndLastControl = pDX->m_pDlg->GetDlgItem(nID);
    if (pDX->m_bSaveAndValidate) {
        value = ::SendMessageW(pDX->m_hWndLastControl, BM_GETCHECK, 0, 0) == BST_CHECKED ? 1 : 0;
    } else {
        ::SendMessageW(pDX->m_hWndLastControl, BM_SETCHECK, value != 0 ? BST_CHECKED : BST_UNCHECKED, 0);
    }
}

void DDV_MinMaxInt(CDataExchange* pDX, int value, int nMin, int nMax) {
    if (pDX->m_bSaveAndValidate && !pDX->m_bFailed && (value < nMin || value > nMax)) {
        pDX->Fail(pDX->m_pDlg->RangeText(nMin, nMax));
    }
}

void DDV_MinMaxFloat(CDataExchange* pDX, float value, float fMin, float fMax) {
    if (pDX->m_bSaveAndValidate && !pDX->m_bFailed && !(value >= fMin && value <= fMax)) {
        pDX->Fail(pDX->m_pDlg->NumberRangeText(fMin, fMax));
    }
}

std::wstring CDialog::NumberRangeText(float fMin, float fMax) const {
    return L"Please enter a number between " + NumberText(fMin) + L" and " + NumberText(fMax) + L".";
}

std::wstring CDialog::RangeText(int nMin, int nMax) const {
    return L"Please enter an integer between " + std::to_wstring(nMin) + L" and " + std::to_wstring(nMax) + L".";
}

INT_PTR CDialog::DoModal(HINSTANCE hInstance, UINT nTemplate, HWND hParent) {
    const INT_PTR nResult =
        ::DialogBoxParamW(hInstance, MAKEINTRESOURCEW(nTemplate), hParent, DlgProc, reinterpret_cast<LPARAM>(this));
    m_hWnd = nullptr;
    return nResult;
}

void CDialog::CenterWindow(HWND hDlg) {
    RECT rcDlg{};
    RECT rcOwner{};
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    const HWND hOwner = ::GetWindow(hDlg, GW_OWNER);
    ::GetWindowRect(hDlg, &rcDlg);
    ::GetMonitorInfoW(::MonitorFromWindow(hOwner != nullptr ? hOwner : hDlg, MONITOR_DEFAULTTONEAREST), &monitor);
    if (hOwner == nullptr || ::IsIconic(hOwner) != FALSE || ::GetWindowRect(hOwner, &rcOwner) == FALSE) {
        rcOwner = monitor.rcWork;
    }
    const int nWidth = rcDlg.right - rcDlg.left;
    const int nHeight = rcDlg.bottom - rcDlg.top;
    const int xMost = std::max<int>(monitor.rcWork.right - nWidth, monitor.rcWork.left);
    const int yMost = std::max<int>(monitor.rcWork.bottom - nHeight, monitor.rcWork.top);
    const int x = std::clamp<int>((rcOwner.left + rcOwner.right - nWidth) / 2, monitor.rcWork.left, xMost);
    const int y = std::clamp<int>((rcOwner.top + rcOwner.bottom - nHeight) / 2, monitor.rcWork.top, yMost);
    ::SetWindowPos(hDlg, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

bool CDialog::UpdateData(bool bSaveAndValidate) {
    CDataExchange dx(this, bSaveAndValidate);
    DoDataExchange(&dx);
    return !dx.m_bFailed;
}

bool CDialog::OnInitDialog() {
    UpdateData(false);
    return true;
}

void CDialog::OnOK() {
    if (UpdateData(true)) {
        ::EndDialog(m_hWnd, IDOK);
    }
}

void CDialog::OnCancel() {
    ::EndDialog(m_hWnd, IDCANCEL);
}

HBRUSH CDialog::OnCtlColor(HDC hdc, HWND hControl, UINT nCtlColor) {
    return reinterpret_cast<HBRUSH>(::DefWindowProcW(m_hWnd, WM_CTLCOLORMSGBOX + nCtlColor, reinterpret_cast<WPARAM>(hdc),
                                                     reinterpret_cast<LPARAM>(hControl)));
}

void CDialog::OnCommand(UINT nID, UINT nCode) {
    if (nID == IDOK) {
        OnOK();
    } else if (nID == IDCANCEL) {
        OnCancel();
    } else {
        OnControl(nID, nCode);
    }
}

// A flat dispatch: one line a message.
INT_PTR CDialog::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG:
            FitTexts(m_hWnd);
            CenterWindow(m_hWnd);
            return OnInitDialog() ? TRUE : FALSE;
        case WM_COMMAND:
            OnCommand(LOWORD(wParam), HIWORD(wParam));
            return TRUE;
        case WM_DRAWITEM:
            OnDrawItem(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
            return TRUE;
        case WM_CTLCOLORBTN:
        case WM_CTLCOLORSTATIC:
        case WM_CTLCOLOREDIT:
        case WM_CTLCOLORDLG:
            return reinterpret_cast<INT_PTR>(
                OnCtlColor(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam), message - WM_CTLCOLORMSGBOX));
        default:
            return FALSE;
    }
}

// No exception goes through the system's code: one that gets here ends the dialog as if it could not be shown.
INT_PTR CALLBACK CDialog::DlgProc(HWND hDlg, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        ::SetWindowLongPtrW(hDlg, DWLP_USER, lParam);
        reinterpret_cast<CDialog*>(lParam)->m_hWnd = hDlg;
    }
    auto* const pThis = reinterpret_cast<CDialog*>(::GetWindowLongPtrW(hDlg, DWLP_USER));
    if (pThis == nullptr) {
        return FALSE;
    }
    try {
        return pThis->OnMessage(message, wParam, lParam);
    } catch (...) {
        ::EndDialog(hDlg, -1);
        return TRUE;
    }
}
