// Tested by: tests/win/kestrix/KestrixTest.cpp
#include "standins/kestrix/OptionsDialog.h"

#include <algorithm>

// after the platform's own header, which comes with Formats.h
#include <commctrl.h>

#include "standins/kestrix/resource.h"

namespace width::kestrix {

namespace {

struct State {
    std::int32_t nFormat;
    FormatOptions options;
};

HMODULE ThisModule() noexcept {
    HMODULE hModule = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&ThisModule), &hModule);
    return hModule;
}

UINT TemplateOf(std::int32_t nFormat, bool bChinese) noexcept {
    switch (nFormat) {
        case FORMAT_PNG:
            return bChinese ? IDD_PNG_ZH : IDD_PNG_EN;
        case FORMAT_JPEG:
            return bChinese ? IDD_JPEG_ZH : IDD_JPEG_EN;
        case FORMAT_TIFF:
            return bChinese ? IDD_TIFF_ZH : IDD_TIFF_EN;
        default:
            return 0;
    }
}

/// Controls that the format's dialog does not have are passed over by the system.
void Show(HWND hDlg, const State& state) noexcept {
    CheckDlgButton(hDlg, IDC_INTERLACED, state.options.bOption2 != 0 ? BST_CHECKED : BST_UNCHECKED);
    SendDlgItemMessageW(hDlg, IDC_QUALITY_SPIN, UDM_SETRANGE32, 1, kMaxQuality);
    SetDlgItemInt(hDlg, IDC_QUALITY, state.options.nOption0, FALSE);
    SendDlgItemMessageW(hDlg, IDC_QUALITY, EM_SETLIMITTEXT, 3, 0);
    const std::uint32_t nPacking = std::min<std::uint32_t>(state.options.nOption0, TIFF_PACK_ZIP);
    CheckRadioButton(hDlg, IDC_PACK_LZW, IDC_PACK_ZIP, IDC_PACK_LZW + static_cast<int>(nPacking));
}

/// False when the user has to correct something first.
bool Take(HWND hDlg, State& state) noexcept {
    if (state.nFormat == FORMAT_PNG) {
        state.options.bOption2 = IsDlgButtonChecked(hDlg, IDC_INTERLACED) == BST_CHECKED ? 1 : 0;
    } else if (state.nFormat == FORMAT_TIFF) {
        const bool bNone = IsDlgButtonChecked(hDlg, IDC_PACK_NONE) == BST_CHECKED;
        const bool bZip = IsDlgButtonChecked(hDlg, IDC_PACK_ZIP) == BST_CHECKED;
        state.options.nOption0 = bZip ? TIFF_PACK_ZIP : (bNone ? TIFF_PACK_NONE : TIFF_PACK_LZW);
    } else {
        const UINT nQuality = GetDlgItemInt(hDlg, IDC_QUALITY, nullptr, FALSE);
        if (nQuality < 1 || nQuality > kMaxQuality) {
            MessageBeep(MB_ICONEXCLAMATION);
            SetDlgItemInt(hDlg, IDC_QUALITY, std::clamp<UINT>(nQuality, 1, kMaxQuality), FALSE);
            SendMessageW(hDlg, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(GetDlgItem(hDlg, IDC_QUALITY)), TRUE);
            return false;
        }
        state.options.nOption0 = nQuality;
    }
    return true;
}

INT_PTR CALLBACK DialogProc(HWND hDlg, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(hDlg, DWLP_USER, lParam);
        Show(hDlg, *reinterpret_cast<const State*>(lParam));
        return TRUE;
    }
    if (message != WM_COMMAND) {
        return FALSE;
    }
    if (LOWORD(wParam) == IDOK && Take(hDlg, *reinterpret_cast<State*>(GetWindowLongPtrW(hDlg, DWLP_USER)))) {
        EndDialog(hDlg, IDOK);
    } else if (LOWORD(wParam) == IDCANCEL) {
        EndDialog(hDlg, IDCANCEL);
    }
    return TRUE;
}

}  // namespace

bool HasDialog(std::int32_t nFormat) noexcept {
    return TemplateOf(nFormat, false) != 0;
}

FormatOptions AskOptions(bool bChinese, std::int32_t nFormat, HWND hOwner, const FormatOptions& options) noexcept {
    if (!HasDialog(nFormat)) {
        return options;
    }
    const INITCOMMONCONTROLSEX init{sizeof init, ICC_UPDOWN_CLASS};
    InitCommonControlsEx(&init);
    State state{nFormat, options};
    const INT_PTR nEnd = DialogBoxParamW(ThisModule(), MAKEINTRESOURCEW(TemplateOf(nFormat, bChinese)), hOwner, DialogProc,
                                         reinterpret_cast<LPARAM>(&state));
    return nEnd == IDOK ? state.options : options;
}

}  // namespace width::kestrix
