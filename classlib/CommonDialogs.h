// The system's dialogs for a colour and a font.
// Tested by: tests/e2e/SettingsTest.cpp
#pragma once

#include "classlib/Win.h"

/// Lives on the stack of the call that shows it.
class CColorDialog {
public:
    /// Starts with a colour.
    explicit CColorDialog(COLORREF clrInit) : m_clr(clrInit) {}
    /// Shows the dialog over hOwner. IDOK, or another value when the user chose nothing.
    INT_PTR DoModal(HWND hOwner);
    /// The colour chosen.
    COLORREF GetColor() const { return m_clr; }

private:
    COLORREF m_clr;
};

/// Lives on the stack of the call that shows it.
class CFontDialog {
public:
    /// Starts with a font. dwFlags  CF_... beside those that this needs
    CFontDialog(const LOGFONTW& logFont, DWORD dwFlags) : m_logFont(logFont), m_dwFlags(dwFlags) {}
    /// Shows the dialog over hOwner. IDOK, or another value when the user chose nothing.
    INT_PTR DoModal(HWND hOwner);
    /// The font chosen.
    const LOGFONTW& GetCurrentFont() const { return m_logFont; }

private:
    LOGFONTW m_logFont;
    DWORD m_dwFlags;
};
