// Tested by: tests/e2e/SettingsTest.cpp
#include "classlib/CommonDialogs.h"

#include <commdlg.h>

#include <algorithm>
#include <array>

// The user's own colours are kept for the next time.
INT_PTR CColorDialog::DoModal(HWND hOwner) {
    static std::array<COLORREF, 16> s_ownColors = [] {
        std::array<COLORREF, 16> colors{};
        std::ranges::fill(colors, RGB(255, 255, 255));
        return colors;
    }();
    CHOOSECOLORW choice{};
    choice.lStructSize = sizeof choice;
    choice.hwndOwner = hOwner;
    choice.rgbResult = m_clr;
    choice.lpCustColors = s_ownColors.data();
    choice.Flags = CC_RGBINIT;
    if (::ChooseColorW(&choice) == FALSE) {
        return IDCANCEL;
    }
    m_clr = choice.rgbResult;
    return IDOK;
}

INT_PTR CFontDialog::DoModal(HWND hOwner) {
    LOGFONTW logFont = m_logFont;
    CHOOSEFONTW choice{};
    choice.lStructSize = sizeof choice;
    choice.hwndOwner = hOwner;
    choice.lpLogFont = &logFont;
    choice.Flags = m_dwFlags | CF_INITTOLOGFONTSTRUCT;
    if (::ChooseFontW(&choice) == FALSE) {
        return IDCANCEL;
    }
    m_logFont = logFont;
    return IDOK;
}
