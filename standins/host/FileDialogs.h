// The boxes that ask for a picture's file name.
// Tested by: tests/win/host/HostTest.cpp
#pragma once

#include <string>

#include "core/Platform.h"

namespace width::host {

/// Asks for a file to open. An empty text when the user changed their mind.
std::wstring AskOpenName(HWND hParent);

/// Asks where to save; an existing file only after a question. An empty text when the user changed their mind.
/// name  the proposal, with an ending
std::wstring AskSaveName(HWND hParent, const std::wstring& name);

}  // namespace width::host
