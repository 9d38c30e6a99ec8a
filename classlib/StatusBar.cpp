// The status bar over the system's control. Tested by: tests/win/ClasslibTest.cpp.
#include "classlib/StatusBar.h"

#include <algorithm>
#include <utility>

#include "classlib/Thread.h"

namespace {

// Pixels at 96 dots per inch.
constexpr int kPaneBorder = 6;  // what a pane is wider than its text
constexpr int kHeightMore = 7;  // what the bar is higher: the panes' borders and the gap above them

/// One pane's text and look.
class CStatusCmdUI : public CCmdUI {
public:
    CStatusCmdUI(UINT nID, CStatusBar& bar, std::size_t nIndex) : CCmdUI(nID), m_bar(bar), m_nIndex(nIndex) {}
    void SetText(LPCWSTR lpszText) override { m_bar.SetPaneText(m_nIndex, lpszText); }
    void SetCheck(int nCheck) override { SetStyle(SBPS_POPOUT, nCheck != 0); }

protected:
    void DoEnable(bool bOn) override { SetStyle(SBPS_DISABLED, !bOn); }

private:
    void SetStyle(UINT nBit, bool bOn) {
        const UINT nOld = m_bar.GetPaneStyle(m_nIndex);
        m_bar.SetPaneStyle(m_nIndex, bOn ? nOld | nBit : nOld & ~nBit);
    }

    CStatusBar& m_bar;
    std::size_t m_nIndex;
};

}  // namespace

bool CStatusBar::Create(CWnd* pParentWnd, DWORD dwStyle, UINT nID) {
    const bool bGrip = (dwStyle & CBRS_ALIGN_BOTTOM) != 0 && (pParentWnd->GetStyle() & WS_THICKFRAME) != 0;
    if (!CreateControl(pParentWnd, STATUSCLASSNAMEW, bGrip ? SBARS_SIZEGRIP : 0, dwStyle, nID)) {
        return false;
    }
    MakeFont();
    return true;
}

// The system tells its fonts for the resolution of the screen that the session began with.
void CStatusBar::MakeFont() {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof metrics;
    if (::SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0) == FALSE) {
        return;
    }
    metrics.lfStatusFont.lfHeight = ::MulDiv(metrics.lfStatusFont.lfHeight, m_nDpi, CClientDC(nullptr).GetDeviceCaps(LOGPIXELSY));
    CFont font;
    if (font.CreateFontIndirect(metrics.lfStatusFont)) {
        SendMessage(WM_SETFONT, reinterpret_cast<WPARAM>(font.GetSafeHandle()), FALSE);
        m_font = std::move(font);
    }
}

void CStatusBar::OnDpiChanged(int nDpi) {
    CControlBar::OnDpiChanged(nDpi);
    MakeFont();
    LayOutPanes();
}

bool CStatusBar::SetIndicators(std::span<const UINT> ids) {
    if (m_hWnd == nullptr) {
        return false;
    }
    m_panes.clear();
    for (const UINT nID : ids) {
        std::wstring text = nID != 0 ? AfxLoadString(nID) : std::wstring();
        const bool bFirst = m_panes.empty();
        const int cxText = ::MulDiv(TextWidth(text), kDefaultDpi, m_nDpi);
        m_panes.push_back({nID, bFirst ? SBPS_STRETCH | SBPS_NOBORDERS : SBPS_NORMAL, cxText, std::move(text)});
    }
    LayOutPanes();
    return true;
}

int CStatusBar::TextWidth(const std::wstring& text) const {
    const CClientDC dc(this);
    const CSelectGuard font(dc, reinterpret_cast<HFONT>(::SendMessageW(m_hWnd, WM_GETFONT, 0, 0)));
    return dc.GetTextExtent(text.c_str(), static_cast<int>(text.size())).cx;
}

void CStatusBar::SetPaneInfo(std::size_t nIndex, UINT nID, UINT nStyle, int cxWidth) {
    if (nIndex < m_panes.size()) {
        m_panes[nIndex].nID = nID;
        m_panes[nIndex].nStyle = nStyle;
        m_panes[nIndex].cxText = cxWidth;
        LayOutPanes();
    }
}

std::size_t CStatusBar::CommandToIndex(UINT nID) const {
    return static_cast<std::size_t>(std::ranges::find(m_panes, nID, &Pane::nID) - m_panes.begin());
}

bool CStatusBar::SetPaneText(std::size_t nIndex, LPCWSTR lpszText) {
    if (nIndex >= m_panes.size()) {
        return false;
    }
    if (m_panes[nIndex].text != lpszText) {
        m_panes[nIndex].text = lpszText;
        ShowText(nIndex);
    }
    return true;
}

void CStatusBar::SetPaneStyle(std::size_t nIndex, UINT nStyle) {
    if (nIndex < m_panes.size() && m_panes[nIndex].nStyle != nStyle) {
        m_panes[nIndex].nStyle = nStyle;
        ShowText(nIndex);
    }
}

void CStatusBar::ShowText(std::size_t nIndex) {
    const Pane& pane = m_panes[nIndex];
    const WPARAM nLook = (pane.nStyle & SBPS_POPOUT) != 0 ? SBT_POPOUT : (pane.nStyle & SBPS_NOBORDERS) != 0 ? SBT_NOBORDERS : 0;
    const wchar_t* const pText = (pane.nStyle & SBPS_DISABLED) != 0 ? L"" : pane.text.c_str();
    SendMessage(SB_SETTEXTW, nIndex | nLook, reinterpret_cast<LPARAM>(pText));
}

// Every pane gets its text's width and a border. What the bar is wider goes to the panes that stretch, and what it is narrower
// comes from them first.
void CStatusBar::LayOutPanes() {
    if (m_hWnd == nullptr || m_panes.empty()) {
        return;
    }
    int borders[3]{};  // horizontal, vertical, between panes
    SendMessage(SB_GETBORDERS, 0, reinterpret_cast<LPARAM>(borders));
    int cxSpare = static_cast<int>(GetClientRect().right) - borders[0] + borders[2];
    if ((GetStyle() & SBARS_SIZEGRIP) != 0) {
        cxSpare -= ::GetSystemMetrics(SM_CXVSCROLL);
    }
    int nStretching = 0;
    for (const Pane& pane : m_panes) {
        cxSpare -= Scaled(pane.cxText + kPaneBorder) + borders[2];
        nStretching += (pane.nStyle & SBPS_STRETCH) != 0 ? 1 : 0;
    }
    std::vector<int> edges;
    int nRight = borders[0];
    for (const Pane& pane : m_panes) {
        const int cxMore = (pane.nStyle & SBPS_STRETCH) != 0 ? cxSpare / nStretching : 0;
        nRight += std::max(Scaled(pane.cxText + kPaneBorder) + cxMore, 0);
        edges.push_back(nRight);
        nRight += borders[2];
    }
    SendMessage(SB_SETPARTS, edges.size(), reinterpret_cast<LPARAM>(edges.data()));
    for (std::size_t i = 0; i < m_panes.size(); ++i) {
        ShowText(i);
    }
}

int CStatusBar::LayOutItems(int /*cx*/) {
    if (m_hWnd == nullptr) {
        return 0;
    }
    const CClientDC dc(this);
    const CSelectGuard font(dc, reinterpret_cast<HFONT>(::SendMessageW(m_hWnd, WM_GETFONT, 0, 0)));
    TEXTMETRICW metrics{};
    ::GetTextMetricsW(dc, &metrics);
    return static_cast<int>(metrics.tmHeight) + Scaled(kHeightMore);
}

void CStatusBar::OnUpdateCmdUI(CCmdTarget& target, bool) {
    for (std::size_t i = 0; i < m_panes.size(); ++i) {
        CStatusCmdUI state(m_panes[i].nID, *this, i);
        state.DoUpdate(target, false);  // a pane that nobody knows keeps its text
    }
}

bool CStatusBar::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) {
    static constexpr MsgEntry kTable[] = {Msg<WM_SIZE, &CStatusBar::OnSize>()};
    return Dispatch(kTable, message, wParam, lParam, lResult) || CControlBar::OnWndMsg(message, wParam, lParam, lResult);
}

void CStatusBar::OnSize(UINT, int, int) {
    Default();
    LayOutPanes();
}
