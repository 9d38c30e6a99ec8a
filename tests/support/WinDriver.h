// Driving real windows from a test thread of the same process: wait for a condition, find windows, send input, count
// the system's objects, take a picture of everything on the screen. Nothing here waits for a time to pass, and every wait
// that is in vain says so on standard error: the line that waited, for how long, and which windows stand open.
//
// Linking it also puts a handler in place that ends a crashing test program with status 99 at once.
#pragma once

#include <cstddef>
#include <functional>
#include <source_location>
#include <string>

#include "classlib/Win.h"

namespace width::test {

using CallSite = std::source_location;

/// Far longer than anything takes, also on a machine that has other things to do.
constexpr int kLongestWaitMs = 60'000;

/// Asks until the condition holds; false when it still doesn't after nTimeoutMs.
bool WaitFor(const std::function<bool()>& condition, int nTimeoutMs = kLongestWaitMs, CallSite where = CallSite::current());
/// Waits until the thread behind the handle has ended.
bool WaitForThread(HANDLE hThread, int nTimeoutMs = kLongestWaitMs, CallSite where = CallSite::current());
/// Waits until a window of another thread has dealt with a message. False if it hasn't, or if the window is gone.
bool SendAndWait(HWND hWnd, UINT message, WPARAM wParam = 0, LPARAM lParam = 0, DWORD_PTR* pResult = nullptr,
                 CallSite where = CallSite::current());
/// Waits until another thread has dealt with all messages that were posted to it and all input that was sent to it before
/// this call, and asks for more. Should a handler of one of them run a loop of its own, as a modal dialog does, it is that
/// loop which asks. False if the thread has ended.
bool WaitUntilServed(DWORD nThreadId, CallSite where = CallSite::current());

/// A visible top-level window of this process, topmost first: of the thread (0: any), class and title (null: any).
/// Dialogs and message boxes have the class "#32770". Null if there is none at the moment.
HWND FindTopWindow(DWORD nThreadId, LPCWSTR lpszClass = nullptr, LPCWSTR lpszTitle = nullptr);
/// The same, waiting for it to come.
HWND WaitForWindow(DWORD nThreadId, LPCWSTR lpszClass = nullptr, LPCWSTR lpszTitle = nullptr,
                   CallSite where = CallSite::current());
/// Waits until a dialog has closed and the thread that showed it has taken over what was chosen: the window is gone, and the
/// thread asks for messages again.
bool WaitUntilClosed(HWND hDlg, CallSite where = CallSite::current());
std::wstring TextOf(HWND hWnd);
/// The text that a message box shows.
std::wstring MessageBoxText(HWND hBox);

/// A command as from a menu; also presses a dialog's button.
void PostCommand(HWND hWnd, UINT nID);
/// WM_LBUTTONDOWN, WM_MOUSEMOVE and so on at a client point; nFlags MK_ flags.
void PostMouse(HWND hWnd, UINT message, POINT point, WPARAM nFlags = 0);

/// Pens, brushes, fonts, bitmaps, palettes and contexts. Exact for one process under Wine and on Windows.
std::size_t CountGdiObjects();
/// Windows, menus and cursors; under Wine those of the whole desktop. Takes about a second there.
std::size_t CountUserObjects();

/// All visible top-level windows of the process as they lie on each other, as a 24-bit BMP file, after the repaints
/// that they still owe. False if it can't be written.
bool SaveScreenshot(const std::wstring& path);

}  // namespace width::test
