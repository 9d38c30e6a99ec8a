// Tested by: tests/e2e/PluginTest.cpp
#include "dialogs/AboutDlg.h"

#include "module/ModuleState.h"
#include "res/resource.h"

namespace width {

namespace {

INT_PTR CALLBACK AboutProc(HWND hDlg, UINT message, WPARAM wParam, LPARAM /*lParam*/) {
    if (message == WM_COMMAND && (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL)) {
        ::EndDialog(hDlg, LOWORD(wParam));
        return TRUE;
    }
    return message == WM_INITDIALOG ? TRUE : FALSE;
}

}  // namespace

INT_PTR RunAboutDialog(HWND hParent) {
    const UINT nTemplate = g_bChinese != 0 ? IDD_ABOUT_ZH : IDD_ABOUT_EN;
    return ::DialogBoxParamW(g_hModule, MAKEINTRESOURCEW(nTemplate), hParent, AboutProc, 0);
}

}  // namespace width
