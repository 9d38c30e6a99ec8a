// What a person sees of another program: its windows, the colours on the screen, pictures of the screen.
// Run by scripts/demo, and by ./test through it.
#pragma once

#include <functional>
#include <string>

#include "core/Platform.h"

namespace width::user {

/// Asks until the condition holds. Throws std::runtime_error with the name when it still doesn't after half a minute.
void Until(const std::string& name, const std::function<bool()>& condition);

std::string ToUtf8(const std::wstring& text);

/// A visible top-level window of a process, topmost first, for which the test holds; null if there is none.
HWND FindTopWindow(DWORD nProcessId, const std::function<bool(HWND)>& test);
bool IsOfClass(HWND hWnd, const wchar_t* name);
std::wstring TitleOf(HWND hWnd);

/// What can be read in a window: its title and the texts in it, joined by " | ".
std::wstring TextsIn(HWND hWnd);

/// Whether a pixel of the colour lies within nReach pixels of a point of the screen.
bool IsColourNear(POINT ptScreen, COLORREF clr, int nReach);

/// Writes what is on the screen as a picture file. Throws std::runtime_error.
void SaveScreenNow(const std::wstring& path);

/// The same once the screen no longer changes.
void SaveScreen(const std::wstring& path);

/// Whether a picture file of 24 bits carries a text written upwards or downwards in a colour: every dot of the letters has it,
/// and nothing between the letters. The text is drawn for comparison in a font of that face and height (as in LOGFONT).
bool CarriesText(const std::wstring& path, const std::wstring& text, const wchar_t* face, int nHeight, COLORREF clr);

}  // namespace width::user
