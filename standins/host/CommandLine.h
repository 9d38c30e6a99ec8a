// What the host may be told when it is started: host.exe [--lang en|zh] [--measure] [picture].
// Tested by: tests/win/host/HostTest.cpp
#pragma once

#include <optional>
#include <span>
#include <string>

#include "core/Platform.h"

namespace width::host {

constexpr WORD kEnglish = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US);
constexpr WORD kChinese = MAKELANGID(LANG_CHINESE, SUBLANG_CHINESE_SIMPLIFIED);

struct CommandLine {
    WORD nLangId = kEnglish;  ///< language of the plug-in
    bool bMeasure = false;    ///< start the plug-in at once; only together with a picture
    std::wstring picture;     ///< file to open; empty: none
};

/// Reads the arguments behind the program's name. Nothing when they are wrong.
std::optional<CommandLine> ParseCommandLine(std::span<const std::wstring> arguments);

/// How the program is called, for a message box.
extern const wchar_t* const kUsage;

}  // namespace width::host
