// The tool bar over the system's control. Tested by: tests/win/ClasslibTest.cpp.
#include "classlib/ToolBar.h"

#include <vector>

#include "classlib/Thread.h"

namespace {

/// What a tool bar resource holds, and the ids behind it.
struct ToolBarHead {
    WORD wVersion;
    WORD wWidth;
    WORD wHeight;
    WORD wItemCount;
};
static_assert(sizeof(ToolBarHead) == 8);

/// The state of one button. Only a change reaches the control, which repaints the button each time.
class CToolCmdUI : public CCmdUI {
public:
    CToolCmdUI(UINT nID, CToolBar& bar) : CCmdUI(nID), m_bar(bar) {}
    void SetCheck(int nCheck) override { SetState(TBSTATE_CHECKED, nCheck != 0); }

protected:
    void DoEnable(bool bOn) override { SetState(TBSTATE_ENABLED, bOn); }

private:
    void SetState(int nBit, bool bOn) {
        const int nOld = static_cast<int>(m_bar.SendMessage(TB_GETSTATE, m_nID));
        const int nNew = bOn ? nOld | nBit : nOld & ~nBit;
        if (nNew != nOld) {
            m_bar.SendMessage(TB_SETSTATE, m_nID, MAKELPARAM(nNew, 0));
        }
    }

    CToolBar& m_bar;
};

/// The words of the resource; empty if it is missing or shorter than it says.
std::span<const WORD> FindWords(HINSTANCE hInstance, UINT nIDResource) {
    const HRSRC hResource = ::FindResourceW(hInstance, MAKEINTRESOURCEW(nIDResource), MAKEINTRESOURCEW(RT_TOOLBAR_RESOURCE));
    const HGLOBAL hData = hResource != nullptr ? ::LoadResource(hInstance, hResource) : nullptr;
    const auto* const pWords = hData != nullptr ? static_cast<const WORD*>(::LockResource(hData)) : nullptr;
    const std::size_t nWords = pWords != nullptr ? ::SizeofResource(hInstance, hResource) / sizeof(WORD) : 0;
    const bool bWhole = nWords >= 4 && nWords - 4 >= pWords[3];
    return bWhole ? std::span(pWords, std::size_t{4} + pWords[3]) : std::span<const WORD>();
}

}  // namespace

bool CToolBar::CreateEx(CWnd* pParentWnd, DWORD dwCtrlStyle, DWORD dwStyle, UINT nID) {
    const DWORD dwTips = (dwStyle & CBRS_TOOLTIPS) != 0 ? TBSTYLE_TOOLTIPS : 0;
    if (!CreateControl(pParentWnd, TOOLBARCLASSNAMEW, dwCtrlStyle | dwTips, dwStyle, nID)) {
        return false;
    }
    SendMessage(TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON));
    return true;
}

bool CToolBar::LoadToolBar(UINT nIDResource) {
    const HINSTANCE hInstance = AfxGetResourceHandle();
    const std::span<const WORD> words = FindWords(hInstance, nIDResource);
    CBitmap images;
    if (m_hWnd == nullptr || words.empty() || !images.LoadSysColorBitmap(hInstance, nIDResource)) {
        return false;
    }
    const ToolBarHead head{words[0], words[1], words[2], words[3]};
    m_bmpImages = std::move(images);
    SendMessage(TB_SETBITMAPSIZE, 0, MAKELPARAM(head.wWidth, head.wHeight));
    SendMessage(TB_SETBUTTONSIZE, 0, MAKELPARAM(head.wWidth + 7, head.wHeight + 6));
    AddButtons(words.subspan(4));
    return true;
}

void CToolBar::AddButtons(std::span<const WORD> ids) {
    std::vector<TBBUTTON> buttons;
    int nImage = 0;
    for (const WORD nID : ids) {
        TBBUTTON button{};
        button.idCommand = nID;
        button.iBitmap = nID != 0 ? nImage++ : 0;
        button.fsState = TBSTATE_ENABLED;
        button.fsStyle = nID != 0 ? BTNS_BUTTON : BTNS_SEP;
        buttons.push_back(button);
    }
    const TBADDBITMAP bitmap{nullptr, reinterpret_cast<UINT_PTR>(m_bmpImages.GetSafeHandle())};
    SendMessage(TB_ADDBITMAP, static_cast<WPARAM>(nImage), reinterpret_cast<LPARAM>(&bitmap));
    SendMessage(TB_ADDBUTTONSW, buttons.size(), reinterpret_cast<LPARAM>(buttons.data()));
}

int CToolBar::CalcFixedHeight() const {
    return m_hWnd != nullptr ? HIWORD(::SendMessageW(m_hWnd, TB_GETBUTTONSIZE, 0, 0)) + 6 : 0;
}

void CToolBar::OnUpdateCmdUI(CCmdTarget& target, bool bDisableIfNoHandler) {
    const auto nCount = static_cast<WPARAM>(SendMessage(TB_BUTTONCOUNT));
    for (WPARAM i = 0; i < nCount; ++i) {
        TBBUTTON button{};
        SendMessage(TB_GETBUTTON, i, reinterpret_cast<LPARAM>(&button));
        if ((button.fsStyle & BTNS_SEP) == 0) {
            CToolCmdUI state(static_cast<UINT>(button.idCommand), *this);
            state.DoUpdate(target, bDisableIfNoHandler);
        }
    }
}

bool CToolBar::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) {
    static constexpr MsgEntry kTable[] = {Msg<WM_ERASEBKGND, &CToolBar::OnEraseBkgnd>()};
    return Dispatch(kTable, message, wParam, lParam, lResult) || CControlBar::OnWndMsg(message, wParam, lParam, lResult);
}

// A flat bar leaves its background to whoever lies behind it; nobody paints there but the bar itself.
bool CToolBar::OnEraseBkgnd(CDC* pDC) {
    pDC->FillRect(GetClientRect(), ::GetSysColorBrush(COLOR_BTNFACE));
    return true;
}
