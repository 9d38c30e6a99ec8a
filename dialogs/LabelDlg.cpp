// The three colours are shown by owner-drawn buttons that the dialog itself paints: a frame and a filled middle.
// Tested by: tests/e2e/SettingsTest.cpp
#include "dialogs/LabelDlg.h"

#include <commdlg.h>

#include "classlib/CommonDialogs.h"
#include "classlib/Gdi.h"
#include "res/resource.h"

namespace width {

CLabelDlg::CLabelDlg() : CDllDlg(IDD_LABEL_EN, IDD_LABEL_ZH) {}

/// The colour behind a swatch; null for other controls.
COLORREF* CLabelDlg::ColourOf(UINT nID) {
    switch (nID) {
        case IDC_LABEL_COLOUR:
            return &m_clrLabelEdit;
        case IDC_SKELETON_COLOUR:
            return &m_clrSkeletonEdit;
        case IDC_LINE_COLOUR:
            return &m_clrLineEdit;
        default:
            return nullptr;
    }
}

bool CLabelDlg::OnInitDialog() {
    CDllDlg::OnInitDialog();
    for (const UINT nID : {IDC_LABEL_COLOUR, IDC_SKELETON_COLOUR, IDC_LINE_COLOUR}) {
        ::SendMessageW(GetDlgItem(nID), BM_SETSTYLE, BS_OWNERDRAW, TRUE);
    }
    ::SendMessageW(GetDlgItem(IDC_SAVE_LINE), BM_SETCHECK, m_bSaveLine != 0 ? BST_CHECKED : BST_UNCHECKED, 0);
    ::SendMessageW(GetDlgItem(IDC_SAVE_SKELETON), BM_SETCHECK, m_bSaveSkeleton != 0 ? BST_CHECKED : BST_UNCHECKED, 0);
    return true;
}

void CLabelDlg::OnControl(UINT nID, UINT nCode) {
    if (nCode != BN_CLICKED) {
        return;
    }
    if (nID == IDC_LABEL_FONT) {
        PickFont();
    } else if (nID == IDC_SAVE_LINE) {
        m_bSaveLine = m_bSaveLine == 0 ? 1 : 0;
    } else if (nID == IDC_SAVE_SKELETON) {
        m_bSaveSkeleton = m_bSaveSkeleton == 0 ? 1 : 0;
    } else {
        PickColour(nID);
    }
}

void CLabelDlg::PickColour(UINT nID) {
    COLORREF* const pColour = ColourOf(nID);
    if (pColour == nullptr) {
        return;
    }
    CColorDialog dlg(*pColour);
    if (dlg.DoModal(m_hWnd) == IDOK) {
        *pColour = dlg.GetColor();
        ::InvalidateRect(GetDlgItem(nID), nullptr, TRUE);
    }
}

// The colour that the font dialog offers too is the labels' own matter.
void CLabelDlg::PickFont() {
    CFontDialog dlg(m_logFont, CF_SCREENFONTS | CF_EFFECTS);
    if (dlg.DoModal(m_hWnd) == IDOK) {
        m_logFont = dlg.GetCurrentFont();
    }
}

void CLabelDlg::OnDrawItem(const DRAWITEMSTRUCT& item) {
    const COLORREF* const pColour = ColourOf(item.CtlID);
    if (pColour == nullptr || item.itemAction != ODA_DRAWENTIRE) {
        return;
    }
    CBorrowedDC dc(item.hDC);
    RECT rc = item.rcItem;
    dc.FillSolidRect({rc.left, rc.top, rc.right, rc.top + 1}, *pColour);
    dc.FillSolidRect({rc.left, rc.bottom - 1, rc.right, rc.bottom}, *pColour);
    dc.FillSolidRect({rc.left, rc.top, rc.left + 1, rc.bottom}, *pColour);
    dc.FillSolidRect({rc.right - 1, rc.top, rc.right, rc.bottom}, *pColour);
    ::InflateRect(&rc, -2, -2);
    dc.FillSolidRect(rc, *pColour);
}

HBRUSH CLabelDlg::OnCtlColor(HDC hdc, HWND hControl, UINT nCtlColor) {
    const HBRUSH hBrush = CDllDlg::OnCtlColor(hdc, hControl, nCtlColor);
    const COLORREF* const pColour = ColourOf(static_cast<UINT>(::GetDlgCtrlID(hControl)));
    if (nCtlColor == CTLCOLOR_BTN && pColour != nullptr) {
        RECT rc{};
        ::GetClientRect(hControl, &rc);
        CBorrowedDC dc(hdc);
        dc.FillSolidRect(rc, *pColour);
    }
    return hBrush;
}

}  // namespace width
