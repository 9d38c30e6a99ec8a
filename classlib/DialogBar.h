// CDialogBar: a bar along a frame's edge whose controls come from a dialog template.
// Tested by: tests/win/ClasslibPreviewTest.cpp
#pragma once

#include "classlib/ControlBar.h"

/// Its buttons give commands to the frame around, and are enabled as the frame's update handlers say. Tab, arrow keys and
/// access keys work while the focus is inside.
class CDialogBar : public CControlBar {
public:
    bool m_bAutoDelete = false;  ///< made with new: the object deletes itself when its window is gone

    /// The template comes from AfxGetResourceHandle() and has the style WS_CHILD. nStyle: CBRS_ style. The bar is visible. False
    /// on failure; the object is still there.
    bool Create(CWnd* pParentWnd, UINT nIDTemplate, UINT nStyle, UINT nID);

    /// The template's height.
    int CalcFixedHeight() const override { return m_nHeight; }
    void OnUpdateCmdUI(CCmdTarget& target, bool bDisableIfNoHandler) override;
    bool OnCmdMsg(UINT nID, int nCode, CCmdUI* pCmdUI, CCmdTarget** ppHandler) override;
    bool PreTranslateMessage(MSG* pMsg) override;

protected:
    void PostNcDestroy() override;

private:
    int m_nHeight = 0;
};
