// What the library says of a save that failed, in the user's language.
// Tested by: tests/win/kestrix/KestrixTest.cpp
#pragma once

#include "api/Kestrix.h"
#include "imageio/PictureSaver_win.h"

namespace width::kestrix {

/// Which language the texts have: that of the last options dialog, before one that of the system's own windows.
void SetChinese(bool bChinese) noexcept;

/// Puts the words for a failure into szError, in the process's code page, in English where that has no Chinese letters.
void TellFault(const SaveResult& result, SaveOptions& options) noexcept;

}  // namespace width::kestrix
