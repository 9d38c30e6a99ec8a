// The ids and styles that frame and bars agree on, and CControlBar, the base of all bars.
// Tested by: tests/win/ClasslibTest.cpp.
#pragma once

#include "classlib/Dpi.h"
#include "classlib/Wnd.h"

constexpr UINT AFX_IDW_PANE_FIRST = 0xE900;   ///< child that fills what the bars leave: 59648
constexpr UINT AFX_IDW_PANE_SAVE = 0xEA21;    ///< the same child while another stands in its place
constexpr UINT AFX_IDW_TOOLBAR = 0xE800;      ///< 59392
constexpr UINT AFX_IDW_STATUS_BAR = 0xE801;   ///< 59393
constexpr UINT AFX_IDW_PREVIEW_BAR = 0xE802;  ///< 59394

constexpr DWORD CBRS_SIZE_DYNAMIC = 0x0004;
constexpr DWORD CBRS_TOOLTIPS = 0x0010;
constexpr DWORD CBRS_BORDER_TOP = 0x0200;
constexpr DWORD CBRS_BORDER_BOTTOM = 0x0800;
constexpr DWORD CBRS_ALIGN_TOP = 0x2000;
constexpr DWORD CBRS_ALIGN_BOTTOM = 0x8000;
constexpr DWORD CBRS_TOP = CBRS_ALIGN_TOP | CBRS_BORDER_BOTTOM;
constexpr DWORD CBRS_BOTTOM = CBRS_ALIGN_BOTTOM | CBRS_BORDER_TOP;

/// A strip along the top or bottom edge of a frame. The object is a member of its frame, lives as long, or goes with
/// its window.
class CControlBar : public CWnd {
public:
    DWORD m_dwStyle = 0;  ///< CBRS_ style; the edge among it

    /// Arranges the items in a strip cx pixels wide, in several rows where it is narrow. Returns the height of the strip in
    /// pixels; 0 without a window.
    virtual int LayOutItems(int cx) = 0;
    /// The frame has come to a place of another resolution. A layout follows.
    virtual void OnDpiChanged(int nDpi) { m_nDpi = nDpi; }
    /// Brings the state of the bar's items up to date.
    virtual void OnUpdateCmdUI(CCmdTarget& target, bool bDisableIfNoHandler) = 0;

protected:
    /// Makes the control of the given class and puts the object in front of it. dwStyle holds window style (upper
    /// half) and CBRS_ style (lower half), dwCtrlStyle the control's own.
    bool CreateControl(CWnd* pParentWnd, LPCWSTR lpszClassName, DWORD dwCtrlStyle, DWORD dwStyle, UINT nID);
    bool OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) override;
    int Scaled(int nLength) const { return ScaleToDpi(nLength, m_nDpi); }

    int m_nDpi = kDefaultDpi;  // that the bar is drawn for

private:
    void OnIdleUpdateCmdUI();
    LRESULT OnSizeParent(WPARAM wParam, LPARAM lParam);
};

template <>
struct MsgSignature<WM_SIZEPARENT> : MsgSignature<WM_USER> {};
