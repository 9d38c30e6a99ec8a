// CStatusBar: a row of text panes whose texts the update handlers give. Tested by: tests/win/ClasslibTest.cpp.
#pragma once

#include <string>
#include <vector>

#include "classlib/ControlBar.h"

constexpr UINT SBPS_NORMAL = 0;
constexpr UINT SBPS_NOBORDERS = 0x0100;
constexpr UINT SBPS_POPOUT = 0x0200;         ///< raised instead of sunken; what SetCheck switches
constexpr UINT SBPS_DISABLED = 0x0400'0000;  ///< the text is not shown; what Enable switches
constexpr UINT SBPS_STRETCH = 0x0800'0000;   ///< takes the room that the others leave

class CStatusBar : public CControlBar {
public:
    /// dwStyle: window style and CBRS_ style. A bar at the bottom of a frame with a sizing border gets a size grip.
    bool Create(CWnd* pParentWnd, DWORD dwStyle = WS_CHILD | WS_VISIBLE | CBRS_BOTTOM, UINT nID = AFX_IDW_STATUS_BAR);
    /// Replaces the panes by one for each id, its text the string of that id (from AfxGetResourceHandle()), as wide as
    /// that text; a pane of id 0 is empty. The first pane stretches and has no border. False without a window.
    bool SetIndicators(std::span<const UINT> ids);
    /// Changes a pane; SBPS_ style; cxWidth in pixels at 96 dots per inch, without borders. Does nothing beyond the last pane.
    void SetPaneInfo(std::size_t nIndex, UINT nID, UINT nStyle, int cxWidth);
    /// The first pane of an id; the number of panes if there is none.
    std::size_t CommandToIndex(UINT nID) const;
    /// False beyond the last pane. Setting the same text again costs nothing.
    bool SetPaneText(std::size_t nIndex, LPCWSTR lpszText);
    void SetPaneStyle(std::size_t nIndex, UINT nStyle);
    UINT GetPaneStyle(std::size_t nIndex) const { return m_panes.at(nIndex).nStyle; }
    std::wstring GetPaneText(std::size_t nIndex) const { return m_panes.at(nIndex).text; }

    int LayOutItems(int cx) override;
    void OnDpiChanged(int nDpi) override;
    void OnUpdateCmdUI(CCmdTarget& target, bool bDisableIfNoHandler) override;

protected:
    bool OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) override;

private:
    struct Pane {
        UINT nID = 0;
        UINT nStyle = SBPS_NORMAL;
        int cxText = 0;  // at 96 dots per inch
        std::wstring text;
    };
    void OnSize(UINT nType, int cx, int cy);
    void MakeFont();
    void LayOutPanes();
    void ShowText(std::size_t nIndex);
    int TextWidth(const std::wstring& text) const;

    std::vector<Pane> m_panes;
    CFont m_font;  // the system's for status bars, at the bar's resolution
};
