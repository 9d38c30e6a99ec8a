// Tested by: tests/unit/shell/TipTextTest.cpp
#include "shell/HelpPath.h"

namespace width {

namespace {

std::wstring FourDigits(std::uint16_t n) {
    static constexpr std::wstring_view kDigits = L"0123456789abcdef";
    std::wstring text;
    for (int nShift = 12; nShift >= 0; nShift -= 4) {
        text += kDigits[static_cast<std::size_t>((n >> nShift) & 15)];
    }
    return text;
}

}  // namespace

std::optional<HelpPaths> FindHelpPaths(std::wstring_view executable, std::wstring_view module, std::uint16_t nLangId) {
    const std::size_t nFolderEnd = executable.rfind(L'\\');
    const std::size_t nNameBegin = module.rfind(L'\\');
    if (nFolderEnd == std::wstring_view::npos || nNameBegin == std::wstring_view::npos) {
        return std::nullopt;
    }
    std::wstring_view name = module.substr(nNameBegin + 1);
    name = name.substr(0, name.rfind(L'.'));
    const auto path = [&](const std::wstring& language) {
        return std::wstring(executable.substr(0, nFolderEnd)) + L"\\plugin\\help\\" + language + L"\\" + std::wstring(name) +
               L"\\index.html";
    };
    return HelpPaths{path(FourDigits(nLangId)), path(L"0000")};
}

}  // namespace width
