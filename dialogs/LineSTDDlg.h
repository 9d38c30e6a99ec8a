// CLineSTDDlg: the user chooses what counts as a line.
// Tested by: tests/e2e/SettingsTest.cpp
#pragma once

#include "dialogs/DllDlg.h"

namespace width {

/// Set the values before DoModal and read them after it gave IDOK; all are then within their ranges.
class CLineSTDDlg : public CDllDlg {
public:
    CLineSTDDlg();

    float m_fAngle = 0;    ///< 0 to 1000; shown as the number that it is
    int m_nLength = 0;     ///< 0 to 1000 pixels
    int m_nRectWidth = 0;  ///< 0 to 1000 pixels
    int m_bRect = 0;       ///< 1: the rectangular algorithm is used

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    void OnControl(UINT nID, UINT nCode) override;

private:
    void OnRectCheck();
};

}  // namespace width
