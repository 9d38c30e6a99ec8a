// The tool bar over the system's control. Tested by: tests/win/ClasslibTest.cpp.
#include "classlib/ToolBar.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "classlib/Thread.h"

namespace {

// Pixels at 96 dots per inch: what a button is larger than its picture, the width of a separator, and what the bar is higher than
// its rows.
constexpr SIZE kButtonMore{7, 6};
constexpr int kSeparator = 8;
constexpr int kHeightMore = 6;

constexpr int kLargeFrom = 144;  // dots per inch from which on the large pictures are shown
constexpr COLORREF kTransparent = RGB(192, 192, 192);

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

/// What a tool bar resource holds: version, picture width and height, count, and the ids behind it.
struct CToolBar::Description {
    SIZE sizePicture{};
    std::span<const WORD> ids;

    explicit Description(std::span<const WORD> words)
        : sizePicture(words.empty() ? SIZE{} : SIZE{words[1], words[2]}),
          ids(words.subspan(std::min<std::size_t>(words.size(), 4))) {}
    int PictureCount() const { return static_cast<int>(ids.size() - static_cast<std::size_t>(std::ranges::count(ids, WORD{0}))); }
};

bool CToolBar::CreateEx(CWnd* pParentWnd, DWORD dwCtrlStyle, DWORD dwStyle, UINT nID) {
    const DWORD dwTips = (dwStyle & CBRS_TOOLTIPS) != 0 ? TBSTYLE_TOOLTIPS : 0;
    if (!CreateControl(pParentWnd, TOOLBARCLASSNAMEW, dwCtrlStyle | dwTips | TBSTYLE_WRAPABLE, dwStyle, nID)) {
        return false;
    }
    SendMessage(TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON));
    return true;
}

bool CToolBar::LoadToolBar(UINT nIDResource, UINT nIDLarge) {
    const auto before = std::tuple(m_hInstance, m_nIDResource, m_nIDLarge);
    std::tie(m_hInstance, m_nIDResource, m_nIDLarge) = std::tuple(AfxGetResourceHandle(), nIDResource, nIDLarge);
    const bool bFilled = m_hWnd != nullptr && Fill();
    if (!bFilled) {
        std::tie(m_hInstance, m_nIDResource, m_nIDLarge) = before;
    }
    return bFilled;
}

/// The pictures nearest to the bar's resolution. Where that is higher still, each of their pixels becomes a square.
CToolBar::Images CToolBar::LoadPictures(const Description& description, SIZE& sizePicture) const {
    const bool bLarge = m_nIDLarge != 0 && m_nDpi >= kLargeFrom;
    const int nTimes = std::max(m_nDpi / (bLarge ? 2 * kDefaultDpi : kDefaultDpi), 1) * (bLarge ? 2 : 1);
    sizePicture = {description.sizePicture.cx * nTimes, description.sizePicture.cy * nTimes};
    CBitmap pictures;
    if (!pictures.LoadPicture(m_hInstance, bLarge ? m_nIDLarge : m_nIDResource,
                              {sizePicture.cx * description.PictureCount(), sizePicture.cy})) {
        return nullptr;
    }
    Images pImages(::ImageList_Create(sizePicture.cx, sizePicture.cy, ILC_COLOR24 | ILC_MASK, description.PictureCount(), 0));
    if (pImages && ::ImageList_AddMasked(pImages.get(), pictures, kTransparent) == -1) {
        pImages.reset();
    }
    return pImages;
}

bool CToolBar::Fill() {
    const Description description(FindWords(m_hInstance, m_nIDResource));
    if (description.ids.empty()) {
        return false;
    }
    SIZE sizePicture{};
    Images pImages = LoadPictures(description, sizePicture);
    if (!pImages) {
        return false;
    }
    while (SendMessage(TB_DELETEBUTTON, 0) != FALSE) {
    }
    SendMessage(TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(pImages.get()));
    m_pImages = std::move(pImages);
    SendMessage(TB_SETBUTTONSIZE, 0,
                MAKELPARAM(sizePicture.cx + Scaled(kButtonMore.cx), sizePicture.cy + Scaled(kButtonMore.cy)));
    AddButtons(description.ids);
    return true;
}

void CToolBar::AddButtons(std::span<const WORD> ids) {
    std::vector<TBBUTTON> buttons;
    int nImage = 0;
    for (const WORD nID : ids) {
        TBBUTTON button{};
        button.idCommand = nID;
        button.iBitmap = nID != 0 ? nImage++ : Scaled(kSeparator);
        button.fsState = TBSTATE_ENABLED;
        button.fsStyle = nID != 0 ? BTNS_BUTTON : BTNS_SEP;
        buttons.push_back(button);
    }
    SendMessage(TB_ADDBUTTONSW, buttons.size(), reinterpret_cast<LPARAM>(buttons.data()));
}

void CToolBar::OnDpiChanged(int nDpi) {
    CControlBar::OnDpiChanged(nDpi);
    Fill();
}

// The control breaks its rows when it learns its width.
int CToolBar::LayOutItems(int cx) {
    const auto nCount = static_cast<WPARAM>(SendMessage(TB_BUTTONCOUNT));
    if (m_hWnd == nullptr || nCount == 0) {
        return 0;
    }
    SetWindowPos(nullptr, 0, 0, cx, GetClientRect().bottom, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    SendMessage(TB_AUTOSIZE);
    RECT rcFirst{};
    RECT rcLast{};
    SendMessage(TB_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&rcFirst));
    SendMessage(TB_GETITEMRECT, nCount - 1, reinterpret_cast<LPARAM>(&rcLast));
    return static_cast<int>(rcLast.bottom - rcFirst.top) + Scaled(kHeightMore);
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
