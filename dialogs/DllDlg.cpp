// Tested by: tests/e2e/DialogTest.cpp
#include "dialogs/DllDlg.h"

#include "classlib/NumberText.h"
#include "classlib/Thread.h"
#include "classlib/Wnd.h"
#include "module/ModuleState.h"
#include "res/resource.h"

namespace width {

INT_PTR CDllDlg::DoModal() {
    HWND hParent = m_hParent;
    if (const CWnd* pMain = AfxGetMainWnd(); hParent == nullptr && pMain != nullptr) {
        hParent = pMain->m_hWnd;
    }
    return CDialog::DoModal(g_hModule, g_bChinese != 0 ? m_nChinese : m_nEnglish, hParent);
}

std::wstring CDllDlg::NoIntegerText() const {
    return g_bChinese != 0 ? L"请输入一个整数。" : CDialog::NoIntegerText();
}

std::wstring CDllDlg::RangeText(int nMin, int nMax) const {
    return g_bChinese != 0 ? L"请输入一个在 " + std::to_wstring(nMin) + L" 和 " + std::to_wstring(nMax) + L" 之间的整数。"
                           : CDialog::RangeText(nMin, nMax);
}

std::wstring CDllDlg::NoNumberText() const {
    return g_bChinese != 0 ? L"请输入一个数。" : CDialog::NoNumberText();
}

std::wstring CDllDlg::NumberRangeText(float fMin, float fMax) const {
    return g_bChinese != 0 ? L"请输入一个在 " + NumberText(fMin) + L" 和 " + NumberText(fMax) + L" 之间的数。"
                           : CDialog::NumberRangeText(fMin, fMax);
}

CAboutDlg::CAboutDlg(HWND hParent) : CDllDlg(IDD_ABOUT_EN, IDD_ABOUT_ZH, hParent) {}

}  // namespace width
