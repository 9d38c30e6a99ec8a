// The About dialog.
// Tested by: tests/e2e/PluginTest.cpp
#pragma once

#include "classlib/Win.h"

namespace width {

/// Shows the About dialog modally on the calling thread, in the language of the module.
/// hParent  disabled meanwhile; null: none
/// returns  IDOK, another closing command, or -1 if the dialog could not be shown
INT_PTR RunAboutDialog(HWND hParent);

}  // namespace width
