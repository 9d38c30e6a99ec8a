// Which part of a command's string is its tool tip.
// Tested by: tests/unit/shell/TipTextTest.cpp
#pragma once

#include <string>
#include <string_view>

namespace width {

/// The tip of a command: the second line of its string. A line that begins with a percent sign holds both languages,
/// "%Save%保存": English up to the next percent sign, Chinese behind it; without a second sign all of it is the tip in
/// both. Any other line is the tip as it stands. Empty if there is no second line.
std::wstring_view TipText(std::wstring_view string, bool bChinese) noexcept;

}  // namespace width
