// From the user's wish to a file: the file dialog over the library's formats, and the call that writes.
// Tested by: tests/e2e/SaveTest.cpp
#pragma once

#include <string>

#include "api/Kestrix.h"

namespace width {

/// Room for a path in the records of the view, its ending zero included.
constexpr std::size_t kPathBytes = 260;

/// Asks for a file and a type. On the thread of the window.
/// pDib     the image that is to be saved; which types are offered depends on it
/// szPath   proposes a path; receives the chosen one
/// options  receives the chosen format and its options, zero elsewhere
/// returns  1 if the user confirmed, else 0; szPath is then as it was
int RunSaveDialog(const void* pDib, char (&szPath)[kPathBytes], SaveOptions& options);

/// Has the library write the image, and tells the user if it could not. On the thread of the window.
/// pDib     a block that CheckPackedDib accepts; its biClrUsed is filled in if it is 0 and the depth has a colour table
/// options  szError empty; receives the library's words when it fails
/// returns  1 on success, else 0; a path without a full stop fails without a word
int SaveToFile(const char* pszPath, void* pDib, SaveOptions& options);

/// A narrow text of the library or of a record, in the process's code page.
std::wstring Widen(const char* pszText);

/// A path as the library takes it: in the process's code page, below kPathBytes bytes. Empty if that can't hold it.
std::string NarrowPath(const std::wstring& path);

/// "Failed to save file", with the library's words if there are any.
void TellSaveFailed(const std::wstring& path, const std::wstring& why);

}  // namespace width
