// CBinaryDlg: the user chooses the grey window, automatic or self set.
// Tested by: tests/e2e/DialogTest.cpp
#pragma once

#include "dialogs/DllDlg.h"

namespace width {

/// The values of the edit fields are module-wide: set g_nAutoMinGrey and its three siblings before DoModal, read them after
/// it gave IDOK. All four are then within 0..255; nothing compares them with each other.
class CBinaryDlg : public CDllDlg {
public:
    CBinaryDlg();

    int m_bAutoMode = 1;  ///< 1: the automatic group counts, 0: the self-set one

protected:
    bool OnInitDialog() override;
    void DoDataExchange(CDataExchange* pDX) override;
    void OnControl(UINT nID, UINT nCode) override;

private:
    void ShowMode();
};

}  // namespace width
