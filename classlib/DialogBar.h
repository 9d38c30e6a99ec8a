// CDialogBar: a bar along a frame's edge whose controls come from a dialog template.
// Tested by: tests/win/ClasslibPreviewTest.cpp
#pragma once

#include <vector>

#include "classlib/ControlBar.h"

/// Its buttons give commands to the frame around, and are enabled as the frame's update handlers say. Tab, arrow keys and
/// access keys work while the focus is inside. A row of controls that is too long for the frame is broken into several.
class CDialogBar : public CControlBar {
public:
    bool m_bAutoDelete = false;  ///< made with new: the object deletes itself when its window is gone

    /// The template comes from AfxGetResourceHandle(), has the style WS_CHILD, a font, and its controls in one row, from left to
    /// right. nStyle: CBRS_ style. The bar is visible. False
    /// on failure; the object is still there.
    bool Create(CWnd* pParentWnd, UINT nIDTemplate, UINT nStyle, UINT nID);

    /// The template's height for each row.
    int LayOutItems(int cx) override;
    void OnDpiChanged(int nDpi) override;
    void OnUpdateCmdUI(CCmdTarget& target, bool bDisableIfNoHandler) override;
    bool OnCmdMsg(UINT nID, int nCode, CCmdUI* pCmdUI, CCmdTarget** ppHandler) override;
    bool PreTranslateMessage(MSG* pMsg) override;

protected:
    void PostNcDestroy() override;

private:
    /// A control as the template places it.
    struct Item {
        HWND hWnd;
        RECT rc;
    };
    void Remember();
    int Rescaled(LONG nLength) const { return ::MulDiv(nLength, m_nDpi, m_nFirstDpi); }

    // As the system laid out the template, for the resolution that the frame had then.
    std::vector<Item> m_items;
    int m_nHeight = 0;
    int m_nFirstDpi = kDefaultDpi;
    LOGFONTW m_logFont{};
    CFont m_font;  // its font at another resolution
};
