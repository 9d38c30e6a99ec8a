// Tested by: tests/e2e/DialogTest.cpp
#include "dialogs/BinaryDlg.h"

#include "module/ModuleState.h"
#include "res/resource.h"

namespace width {

CBinaryDlg::CBinaryDlg() : CDllDlg(IDD_BINARY_EN, IDD_BINARY_ZH) {}

bool CBinaryDlg::OnInitDialog() {
    CDllDlg::OnInitDialog();
    ShowMode();
    return true;
}

// All four are read and checked, whichever group is enabled.
void CBinaryDlg::DoDataExchange(CDataExchange* pDX) {
    DDX_Text(pDX, IDC_AUTO_MIN_GREY, g_nAutoMinGrey);
    DDV_MinMaxInt(pDX, g_nAutoMinGrey, 0, 255);
    DDX_Text(pDX, IDC_AUTO_MAX_GREY, g_nAutoMaxGrey);
    DDV_MinMaxInt(pDX, g_nAutoMaxGrey, 0, 255);
    DDX_Text(pDX, IDC_SELF_MIN_GREY, g_nSelfMinGrey);
    DDV_MinMaxInt(pDX, g_nSelfMinGrey, 0, 255);
    DDX_Text(pDX, IDC_SELF_MAX_GREY, g_nSelfMaxGrey);
    DDV_MinMaxInt(pDX, g_nSelfMaxGrey, 0, 255);
}

void CBinaryDlg::OnControl(UINT nID, UINT nCode) {
    if (nCode == BN_CLICKED && (nID == IDC_AUTO_MODE || nID == IDC_SELF_MODE)) {
        m_bAutoMode = nID == IDC_AUTO_MODE ? 1 : 0;
        ShowMode();
    }
}

void CBinaryDlg::ShowMode() {
    const bool bAuto = m_bAutoMode != 0;
    ::CheckRadioButton(m_hWnd, IDC_SELF_MODE, IDC_AUTO_MODE, bAuto ? IDC_AUTO_MODE : IDC_SELF_MODE);
    EnableItem(IDC_AUTO_MIN_GREY, bAuto);
    EnableItem(IDC_AUTO_MAX_GREY, bAuto);
    EnableItem(IDC_SELF_MIN_GREY, !bAuto);
    EnableItem(IDC_SELF_MAX_GREY, !bAuto);
}

}  // namespace width
