// Tested by: tests/e2e/ScreenTest.cpp
#include "classlib/FitTexts.h"

#include <algorithm>
#include <string>

#include "classlib/Dpi.h"
#include "classlib/Gdi.h"

namespace {

constexpr int kBoxAndGap = 17;  // in front of the text of a check box or radio button, pixels at 96 dots per inch
constexpr int kGap = 2;         // that is left to the next control

bool IsOfClass(HWND hWnd, const wchar_t* pszClass) {
    wchar_t name[16] = {};
    return ::GetClassNameW(hWnd, name, 16) > 0 && ::lstrcmpiW(name, pszClass) == 0;
}

UINT TypeOf(HWND hWnd, UINT nMask) {
    return static_cast<UINT>(::GetWindowLongPtrW(hWnd, GWL_STYLE)) & nMask;
}

bool IsGroup(HWND hWnd) {
    return IsOfClass(hWnd, L"Button") && TypeOf(hWnd, BS_TYPEMASK) == BS_GROUPBOX;
}

bool IsLabel(HWND hWnd) {
    const UINT nType = TypeOf(hWnd, SS_TYPEMASK);
    return IsOfClass(hWnd, L"Static") && (nType == SS_LEFT || nType == SS_LEFTNOWORDWRAP);
}

bool IsBox(HWND hWnd) {
    const UINT nType = TypeOf(hWnd, BS_TYPEMASK);
    return IsOfClass(hWnd, L"Button") &&
           (nType == BS_CHECKBOX || nType == BS_AUTOCHECKBOX || nType == BS_RADIOBUTTON || nType == BS_AUTORADIOBUTTON);
}

/// A control's rectangle in its dialog.
RECT PlaceOf(HWND hWnd) {
    RECT rc{};
    ::GetWindowRect(hWnd, &rc);
    ::MapWindowPoints(nullptr, ::GetParent(hWnd), reinterpret_cast<POINT*>(&rc), 2);
    return rc;
}

/// The width that a control needs for its text.
int WidthNeeded(HWND hWnd) {
    std::wstring text(static_cast<std::size_t>(::GetWindowTextLengthW(hWnd)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(::GetWindowTextW(hWnd, text.data(), static_cast<int>(text.size()))));
    CDC dc;
    dc.CreateCompatibleDC(nullptr);
    const CSelectGuard font(dc, reinterpret_cast<HFONT>(::SendMessageW(hWnd, WM_GETFONT, 0, 0)));
    RECT rc{};
    ::DrawTextW(dc, text.c_str(), -1, &rc, DT_CALCRECT | DT_SINGLELINE);
    return static_cast<int>(rc.right) + (IsBox(hWnd) ? ScaleToDpi(kBoxAndGap, DpiOf(hWnd)) : 0);
}

/// How far to the right a control may reach: to the next one, or to the edge of the group or dialog round it.
LONG RoomUpTo(HWND hDlg, HWND hWnd, const RECT& rc) {
    RECT rcClient{};
    ::GetClientRect(hDlg, &rcClient);
    LONG nRoom = rcClient.right;
    for (HWND hOther = ::GetWindow(hDlg, GW_CHILD); hOther != nullptr; hOther = ::GetWindow(hOther, GW_HWNDNEXT)) {
        const RECT rcOther = PlaceOf(hOther);
        const bool bSameRow = rcOther.top < rc.bottom && rcOther.bottom > rc.top;
        if (hOther == hWnd || !bSameRow) {
            continue;
        }
        const LONG nEdge = IsGroup(hOther) && rcOther.left <= rc.left ? rcOther.right : rcOther.left;
        if (nEdge >= rc.right) {
            nRoom = std::min(nRoom, nEdge);
        }
    }
    return nRoom - ScaleToDpi(kGap, DpiOf(hDlg));
}

}  // namespace

void FitTexts(HWND hDlg) {
    for (HWND hWnd = ::GetWindow(hDlg, GW_CHILD); hWnd != nullptr; hWnd = ::GetWindow(hWnd, GW_HWNDNEXT)) {
        if (!IsLabel(hWnd) && !IsBox(hWnd)) {
            continue;
        }
        const RECT rc = PlaceOf(hWnd);
        const LONG nRight = std::min<LONG>(rc.left + WidthNeeded(hWnd), RoomUpTo(hDlg, hWnd, rc));
        if (nRight > rc.right) {
            ::SetWindowPos(hWnd, nullptr, 0, 0, nRight - rc.left, rc.bottom - rc.top, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
        }
    }
}
