// The dialog in which the user changes a format's options.
// Tested by: tests/win/kestrix/KestrixTest.cpp
#pragma once

#include "standins/kestrix/Formats.h"

namespace width::kestrix {

/// Whether the format has one.
bool HasDialog(std::int32_t nFormat) noexcept;

/// Shows it with the options given. Returns what they are after OK, and the same after any other end.
FormatOptions AskOptions(bool bChinese, std::int32_t nFormat, HWND hOwner, const FormatOptions& options) noexcept;

}  // namespace width::kestrix
