// CToolBar: a flat tool bar of small pictures, one for each command. Tested by: tests/win/ClasslibTest.cpp,
// tests/e2e/ScreenTest.cpp
#pragma once

#include <memory>
#include <type_traits>
#include <vector>

#include "classlib/ControlBar.h"

constexpr WORD RT_TOOLBAR_RESOURCE = 241;  ///< the resource type of tool bar descriptions

class CToolBar : public CControlBar {
public:
    /// dwCtrlStyle TBSTYLE_FLAT and the like; dwStyle window style and CBRS_ style, CBRS_TOOLTIPS for tips, which the
    /// frame is asked for with TTN_NEEDTEXTA or TTN_NEEDTEXTW. The bar is empty at first.
    bool CreateEx(CWnd* pParentWnd, DWORD dwCtrlStyle = TBSTYLE_FLAT, DWORD dwStyle = WS_CHILD | WS_VISIBLE | CBRS_TOP,
                  UINT nID = AFX_IDW_TOOLBAR);
    /// Fills the bar from two resources of AfxGetResourceHandle(), both named nIDResource. The description, type 241,
    /// is words: 1, picture width, picture height, count, then one command id for each button, 0 for a separator. The
    /// bitmap holds the pictures side by side, separators left out; its colour 192, 192, 192 is transparent.
    /// nIDLarge  a bitmap of the same pictures at twice the size, for screens of 144 dots per inch and more; 0: none
    /// returns   false if one is missing or too short; the bar then stays as it was
    bool LoadToolBar(UINT nIDResource, UINT nIDLarge = 0);

    int LayOutItems(int cx) override;
    void OnDpiChanged(int nDpi) override;
    void OnUpdateCmdUI(CCmdTarget& target, bool bDisableIfNoHandler) override;

protected:
    bool OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) override;

private:
    struct DestroyImages {
        void operator()(HIMAGELIST hImages) const { ::ImageList_Destroy(hImages); }
    };
    using Images = std::unique_ptr<std::remove_pointer_t<HIMAGELIST>, DestroyImages>;
    struct Description;

    bool OnEraseBkgnd(CDC* pDC);
    Images LoadPictures(const Description& description, SIZE& sizePicture) const;
    bool Fill();
    void AddButtons(std::span<const WORD> ids);

    HINSTANCE m_hInstance = nullptr;  // of the resources
    UINT m_nIDResource = 0;
    UINT m_nIDLarge = 0;
    Images m_pImages;  // the control goes on using them
};
