// Where the help pages are looked for.
// Tested by: tests/unit/shell/TipTextTest.cpp
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace width {

struct HelpPaths {
    std::wstring language;  ///< the page in the host's language
    std::wstring fallback;  ///< the page in folder 0000, for every other language
};

/// Paths of the help pages: beside the host's executable, plugin\help\<language in four hexadecimal digits>\<base name of
/// the module>\index.html. Nothing if a path has no backslash.
/// executable, module  full paths of the host's executable and of the plug-in
std::optional<HelpPaths> FindHelpPaths(std::wstring_view executable, std::wstring_view module, std::uint16_t nLangId);

}  // namespace width
