// CLabelDlg: the user chooses the overlays' colours, the labels' font, and what goes into the bitmap with them.
// Tested by: tests/e2e/SettingsTest.cpp
#pragma once

#include "dialogs/DllDlg.h"

namespace width {

/// Works on copies: set the values before DoModal and read them after it gave IDOK.
class CLabelDlg : public CDllDlg {
public:
    CLabelDlg();

    COLORREF m_clrSkeletonEdit = 0;
    COLORREF m_clrLabelEdit = 0;
    COLORREF m_clrLineEdit = 0;
    LOGFONTW m_logFont{};
    int m_bSaveLine = 1;
    int m_bSaveSkeleton = 0;

protected:
    bool OnInitDialog() override;
    void OnControl(UINT nID, UINT nCode) override;
    void OnDrawItem(const DRAWITEMSTRUCT& item) override;
    HBRUSH OnCtlColor(HDC hdc, HWND hControl, UINT nCtlColor) override;

private:
    COLORREF* ColourOf(UINT nID);
    void PickColour(UINT nID);
    void PickFont();
};

}  // namespace width
