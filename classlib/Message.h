// Message tables: which member function takes which window message, with its arguments unpacked.
//
// A window class lists its messages in OnWndMsg, in one constexpr table, and hands on what it does not take:
//
//     bool CMyView::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& lResult) {
//         static constexpr MsgEntry kTable[] = {
//             Msg<WM_LBUTTONDOWN, &CMyView::OnLButtonDown>(),
//             Notify<TTN_NEEDTEXTW, &CMyView::OnToolTipText>(),
//         };
//         return Dispatch(kTable, message, wParam, lParam, lResult) ||
//                CScrollView::OnWndMsg(message, wParam, lParam, lResult);
//     }
//
// MsgSignature gives the form of the handler for each message; another form, or a message without one, doesn't
// compile. A handler that wants the system's own handling too calls CWnd::Default(), one that wants the base class's
// calls the base's handler of the same name. Tested by: tests/win/ClasslibTest.cpp.
#pragma once

#include "classlib/Command.h"
#include "classlib/Gdi.h"

class CWnd;

constexpr UINT WM_SIZEPARENT = 0x0361;        ///< frame to bar: take your strip off the rectangle
constexpr UINT WM_SETMESSAGESTRING = 0x0362;  ///< to a frame: show a text in the status bar
constexpr UINT WM_IDLEUPDATECMDUI = 0x0363;   ///< thread to all windows: bring the state of your items up to date
constexpr UINT WM_INITIALUPDATE = 0x0364;     ///< frame to all its windows: everything exists now

/// One row of a message table. pfnCall runs the handler and says whether the message is dealt with.
struct MsgEntry {
    UINT nMsg;
    UINT nCode;  ///< with WM_NOTIFY the notification code, else 0
    bool (*pfnCall)(CWnd&, WPARAM, LPARAM, LRESULT&);
};

/// The general form, for private messages (WM_USER and up): LRESULT OnName(WPARAM, LPARAM).
template <UINT nMsg>
struct MsgSignature {
    static_assert(nMsg >= WM_USER, "this message has no handler form yet: add its MsgSignature");
    template <class C>
    using Handler = LRESULT (C::*)(WPARAM, LPARAM);
    template <class C>
    static bool Call(C& wnd, Handler<C> pfn, WPARAM wParam, LPARAM lParam, LRESULT& lResult) {
        lResult = (wnd.*pfn)(wParam, lParam);
        return true;
    }
};

namespace classlib_detail {

/// void OnName()
struct PlainSignature {
    template <class C>
    using Handler = void (C::*)();
    template <class C>
    static bool Call(C& wnd, Handler<C> pfn, WPARAM, LPARAM, LRESULT&) {
        (wnd.*pfn)();
        return true;
    }
};

/// void OnName(UINT nFlags, POINT point): MK_ flags, client coordinates
struct MouseSignature {
    template <class C>
    using Handler = void (C::*)(UINT, POINT);
    template <class C>
    static bool Call(C& wnd, Handler<C> pfn, WPARAM wParam, LPARAM lParam, LRESULT&) {
        (wnd.*pfn)(static_cast<UINT>(wParam), PointFromLParam(lParam));
        return true;
    }
};

/// bool OnName(UINT nFlags, short zDelta, POINT point): screen coordinates; false passes the message on
struct WheelSignature {
    template <class C>
    using Handler = bool (C::*)(UINT, short, POINT);
    template <class C>
    static bool Call(C& wnd, Handler<C> pfn, WPARAM wParam, LPARAM lParam, LRESULT&) {
        return (wnd.*pfn)(LOWORD(wParam), static_cast<short>(HIWORD(wParam)), PointFromLParam(lParam));
    }
};

/// void OnName(UINT nSBCode, int nPos, HWND hScrollBar): nPos has 16 bits only; null bar: the window's own
struct ScrollSignature {
    template <class C>
    using Handler = void (C::*)(UINT, int, HWND);
    template <class C>
    static bool Call(C& wnd, Handler<C> pfn, WPARAM wParam, LPARAM lParam, LRESULT&) {
        (wnd.*pfn)(LOWORD(wParam), HIWORD(wParam), reinterpret_cast<HWND>(lParam));
        return true;
    }
};

/// void OnName(HWND hOther): the window that has or had the focus or the capture
struct OtherWindowSignature {
    template <class C>
    using Handler = void (C::*)(HWND);
    template <class C, class Param>
    static bool CallWith(C& wnd, Handler<C> pfn, Param param) {
        (wnd.*pfn)(reinterpret_cast<HWND>(param));
        return true;
    }
};

template <UINT nMsg, auto Handler>
bool CallHandler(CWnd& wnd, WPARAM wParam, LPARAM lParam, LRESULT& lResult) {
    using C = typename MemberOf<std::remove_const_t<decltype(Handler)>>::Class;
    constexpr typename MsgSignature<nMsg>::template Handler<C> pfn = Handler;
    return MsgSignature<nMsg>::Call(static_cast<C&>(wnd), pfn, wParam, lParam, lResult);
}

template <auto Handler>
bool CallNotify(CWnd& wnd, WPARAM wParam, LPARAM lParam, LRESULT& lResult) {
    using C = typename MemberOf<std::remove_const_t<decltype(Handler)>>::Class;
    constexpr bool (C::*pfn)(UINT, NMHDR*, LRESULT*) = Handler;
    return (static_cast<C&>(wnd).*pfn)(static_cast<UINT>(wParam), reinterpret_cast<NMHDR*>(lParam), &lResult);
}

}  // namespace classlib_detail

/// A window message and its handler.
template <UINT nMsg, auto Handler>
constexpr MsgEntry Msg() {
    return {nMsg, 0, classlib_detail::CallHandler<nMsg, Handler>};
}

/// A notification from any control: bool OnName(UINT nID, NMHDR*, LRESULT* pResult); false passes it on.
template <UINT nCode, auto Handler>
constexpr MsgEntry Notify() {
    return {WM_NOTIFY, nCode, classlib_detail::CallNotify<Handler>};
}

template <>
struct MsgSignature<WM_DESTROY> : classlib_detail::PlainSignature {};
template <>
struct MsgSignature<WM_CLOSE> : classlib_detail::PlainSignature {};
template <>
struct MsgSignature<WM_PAINT> : classlib_detail::PlainSignature {};
template <>
struct MsgSignature<WM_INITIALUPDATE> : classlib_detail::PlainSignature {};
template <>
struct MsgSignature<WM_IDLEUPDATECMDUI> : classlib_detail::PlainSignature {};
template <>
struct MsgSignature<WM_LBUTTONDOWN> : classlib_detail::MouseSignature {};
template <>
struct MsgSignature<WM_LBUTTONDBLCLK> : classlib_detail::MouseSignature {};
template <>
struct MsgSignature<WM_RBUTTONDOWN> : classlib_detail::MouseSignature {};
template <>
struct MsgSignature<WM_MOUSEMOVE> : classlib_detail::MouseSignature {};
template <>
struct MsgSignature<WM_MOUSEWHEEL> : classlib_detail::WheelSignature {};
template <>
struct MsgSignature<WM_MOUSEHWHEEL> : classlib_detail::WheelSignature {};
template <>
struct MsgSignature<WM_HSCROLL> : classlib_detail::ScrollSignature {};
template <>
struct MsgSignature<WM_VSCROLL> : classlib_detail::ScrollSignature {};

/// void OnSetFocus(HWND hOldWnd), void OnKillFocus(HWND hNewWnd)
struct FocusSignature : classlib_detail::OtherWindowSignature {
    template <class C>
    static bool Call(C& wnd, Handler<C> pfn, WPARAM wParam, LPARAM, LRESULT&) {
        return CallWith(wnd, pfn, wParam);
    }
};
template <>
struct MsgSignature<WM_SETFOCUS> : FocusSignature {};
template <>
struct MsgSignature<WM_KILLFOCUS> : FocusSignature {};

/// int OnCreate(CREATESTRUCTW*): -1 gives the window up
template <>
struct MsgSignature<WM_CREATE> {
    template <class C>
    using Handler = int (C::*)(CREATESTRUCTW*);
    template <class C>
    static bool Call(C& wnd, Handler<C> pfn, WPARAM, LPARAM lParam, LRESULT& lResult) {
        lResult = (wnd.*pfn)(reinterpret_cast<CREATESTRUCTW*>(lParam));
        return true;
    }
};

/// void OnEnable(bool bEnable)
template <>
struct MsgSignature<WM_ENABLE> {
    template <class C>
    using Handler = void (C::*)(bool);
    template <class C>
    static bool Call(C& wnd, Handler<C> pfn, WPARAM wParam, LPARAM, LRESULT&) {
        (wnd.*pfn)(wParam != FALSE);
        return true;
    }
};

/// void OnSize(UINT nType, int cx, int cy): SIZE_ code, new size of the client area
template <>
struct MsgSignature<WM_SIZE> {
    template <class C>
    using Handler = void (C::*)(UINT, int, int);
    template <class C>
    static bool Call(C& wnd, Handler<C> pfn, WPARAM wParam, LPARAM lParam, LRESULT&) {
        (wnd.*pfn)(static_cast<UINT>(wParam), LOWORD(lParam), HIWORD(lParam));
        return true;
    }
};

/// bool OnEraseBkgnd(CDC*): true when the background needs no more work
template <>
struct MsgSignature<WM_ERASEBKGND> {
    template <class C>
    using Handler = bool (C::*)(CDC*);
    template <class C>
    static bool Call(C& wnd, Handler<C> pfn, WPARAM wParam, LPARAM, LRESULT& lResult) {
        CBorrowedDC dc(reinterpret_cast<HDC>(wParam));
        lResult = (wnd.*pfn)(&dc) ? TRUE : FALSE;
        return true;
    }
};

/// bool OnSetCursor(HWND hWnd, UINT nHitTest, UINT message): true when a cursor has been set
template <>
struct MsgSignature<WM_SETCURSOR> {
    template <class C>
    using Handler = bool (C::*)(HWND, UINT, UINT);
    template <class C>
    static bool Call(C& wnd, Handler<C> pfn, WPARAM wParam, LPARAM lParam, LRESULT& lResult) {
        lResult = (wnd.*pfn)(reinterpret_cast<HWND>(wParam), LOWORD(lParam), HIWORD(lParam)) ? TRUE : FALSE;
        return true;
    }
};

/// void OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags)
template <>
struct MsgSignature<WM_KEYDOWN> {
    template <class C>
    using Handler = void (C::*)(UINT, UINT, UINT);
    template <class C>
    static bool Call(C& wnd, Handler<C> pfn, WPARAM wParam, LPARAM lParam, LRESULT&) {
        (wnd.*pfn)(static_cast<UINT>(wParam), LOWORD(lParam), HIWORD(lParam));
        return true;
    }
};

/// void OnDpiChanged(int nDpi, const RECT& rcSuggested): dots per inch of the monitor that the window has come to
template <>
struct MsgSignature<WM_DPICHANGED> {
    template <class C>
    using Handler = void (C::*)(int, const RECT&);
    template <class C>
    static bool Call(C& wnd, Handler<C> pfn, WPARAM wParam, LPARAM lParam, LRESULT&) {
        (wnd.*pfn)(LOWORD(wParam), *reinterpret_cast<const RECT*>(lParam));
        return true;
    }
};

/// LRESULT OnSetMessageString(WPARAM, LPARAM): a string's id, or a text
template <>
struct MsgSignature<WM_SETMESSAGESTRING> : MsgSignature<WM_USER> {};

/// void OnInitMenuPopup(HMENU hMenu, UINT nIndex, bool bSysMenu)
template <>
struct MsgSignature<WM_INITMENUPOPUP> {
    template <class C>
    using Handler = void (C::*)(HMENU, UINT, bool);
    template <class C>
    static bool Call(C& wnd, Handler<C> pfn, WPARAM wParam, LPARAM lParam, LRESULT&) {
        (wnd.*pfn)(reinterpret_cast<HMENU>(wParam), LOWORD(lParam), HIWORD(lParam) != 0);
        return true;
    }
};
