// Tested by: tests/unit/shell/TipTextTest.cpp
#include "shell/TipText.h"

namespace width {

std::wstring_view TipText(std::wstring_view string, bool bChinese) noexcept {
    const std::size_t nBreak = string.find(L'\n');
    if (nBreak == std::wstring_view::npos) {
        return {};
    }
    std::wstring_view line = string.substr(nBreak + 1);
    line = line.substr(0, line.find(L'\n'));
    if (!line.starts_with(L'%')) {
        return line;
    }
    line.remove_prefix(1);
    const std::size_t nSign = line.find(L'%');
    if (nSign == std::wstring_view::npos) {
        return line;
    }
    return bChinese ? line.substr(nSign + 1) : line.substr(0, nSign);
}

}  // namespace width
