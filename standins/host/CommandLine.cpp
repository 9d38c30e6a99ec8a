// An argument that begins with two hyphens is an option; everything else is the one picture.
// Tested by: tests/win/host/HostTest.cpp
#include "standins/host/CommandLine.h"

namespace width::host {

namespace {

bool SetLanguage(const std::wstring& name, CommandLine& result) {
    result.nLangId = name == L"zh" ? kChinese : kEnglish;
    return name == L"zh" || name == L"en";
}

}  // namespace

const wchar_t* const kUsage =
    L"Usage:\n\nhost.exe [--lang en|zh] [--measure] [picture]\n\n"
    L"--lang\tlanguage of the plug-in: English or Chinese\n"
    L"--measure\tstart the plug-in at once on the picture";

std::optional<CommandLine> ParseCommandLine(std::span<const std::wstring> arguments) {
    CommandLine result;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::wstring& argument = arguments[i];
        if (argument == L"--measure") {
            result.bMeasure = true;
        } else if (argument == L"--lang") {
            if (++i == arguments.size() || !SetLanguage(arguments[i], result)) {
                return std::nullopt;
            }
        } else if (argument.starts_with(L"--") || argument.empty() || !result.picture.empty()) {
            return std::nullopt;
        } else {
            result.picture = argument;
        }
    }
    if (result.bMeasure && result.picture.empty()) {
        return std::nullopt;
    }
    return result;
}

}  // namespace width::host
