// Tested by: tests/e2e/SettingsTest.cpp
#include "dialogs/LineSTDDlg.h"

#include "res/resource.h"

namespace width {

namespace {

constexpr int kMost = 1000;

}  // namespace

CLineSTDDlg::CLineSTDDlg() : CDllDlg(IDD_LINE_EN, IDD_LINE_ZH) {}

// The width is read and checked also when its field is off.
void CLineSTDDlg::DoDataExchange(CDataExchange* pDX) {
    DDX_Text(pDX, IDC_LINE_ANGLE, m_fAngle);
    DDV_MinMaxFloat(pDX, m_fAngle, 0, kMost);
    DDX_Text(pDX, IDC_LINE_LENGTH, m_nLength);
    DDV_MinMaxInt(pDX, m_nLength, 0, kMost);
    DDX_Text(pDX, IDC_RECT_WIDTH, m_nRectWidth);
    DDV_MinMaxInt(pDX, m_nRectWidth, 0, kMost);
    DDX_Check(pDX, IDC_RECT_ALGORITHM, m_bRect);
}

void CLineSTDDlg::OnControl(UINT nID, UINT nCode) {
    if (nID == IDC_RECT_ALGORITHM && nCode == BN_CLICKED) {
        OnRectCheck();
    }
}

// The field is on when the dialog opens, whatever the box shows; from the first click on it goes with the box.
void CLineSTDDlg::OnRectCheck() {
    m_bRect = m_bRect == 0 ? 1 : 0;
    EnableItem(IDC_RECT_WIDTH, m_bRect != 0);
}

}  // namespace width
