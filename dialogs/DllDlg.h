// CDllDlg: the base of the plug-in's modal dialogs, which come from the plug-in's own module and speak its language; and
// CAboutDlg, the plainest of them.
// Tested by: tests/e2e/DialogTest.cpp
#pragma once

#include "classlib/Dialog.h"

namespace width {

/// Lives on the stack of the call that shows it.
class CDllDlg : public CDialog {
public:
    /// The templates of the two languages, in the plug-in's module. hParent null: the thread's main window, if any.
    CDllDlg(UINT nEnglish, UINT nChinese, HWND hParent = nullptr)
        : m_nEnglish(nEnglish), m_nChinese(nChinese), m_hParent(hParent) {}

    /// Shows the dialog in the module's language. Returns IDOK, another closing command, or -1 if it could not be shown.
    INT_PTR DoModal();

    std::wstring NoIntegerText() const override;
    std::wstring RangeText(int nMin, int nMax) const override;
    std::wstring NoNumberText() const override;
    std::wstring NumberRangeText(float fMin, float fMax) const override;

private:
    UINT m_nEnglish;
    UINT m_nChinese;
    HWND m_hParent;
};

class CAboutDlg : public CDllDlg {
public:
    explicit CAboutDlg(HWND hParent);
};

}  // namespace width
