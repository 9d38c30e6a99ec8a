// Tested by: tests/unit/save/FileTypesTest.cpp
#include "save/FileTypes.h"

#include <algorithm>
#include <cstddef>

namespace width {

namespace {

constexpr std::size_t kMaxPiece = 255;  // characters of a display string, and of one pattern
constexpr auto kNone = std::wstring_view::npos;

constexpr wchar_t UpperOf(wchar_t c) noexcept {
    return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
}

constexpr wchar_t LowerOf(wchar_t c) noexcept {
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

bool EqualNoCase(std::wstring_view a, std::wstring_view b) noexcept {
    return std::ranges::equal(a, b, {}, UpperOf, UpperOf);
}

std::wstring_view BehindLast(std::wstring_view text, wchar_t c) noexcept {
    const std::size_t n = text.rfind(c);
    return n == kNone ? text : text.substr(n + 1);
}

std::wstring_view Trimmed(std::wstring_view text) noexcept {
    constexpr std::wstring_view kBlanks = L" \t\n\v\f\r";
    const std::size_t nFirst = text.find_first_not_of(kBlanks);
    return nFirst == kNone ? std::wstring_view() : text.substr(nFirst, text.find_last_not_of(kBlanks) - nFirst + 1);
}

}  // namespace

std::wstring ToUpper(std::wstring_view text) {
    std::wstring result(text);
    std::ranges::transform(result, result.begin(), UpperOf);
    return result;
}

std::wstring ToLower(std::wstring_view text) {
    std::wstring result(text);
    std::ranges::transform(result, result.begin(), LowerOf);
    return result;
}

std::wstring PatternsOf(const FormatTable& table, std::int32_t nFormat) {
    std::wstring patterns;
    for (const FormatExtension& entry : table) {
        if (entry.nFormat == nFormat) {
            patterns += (patterns.empty() ? L"" : L";") + (L"*." + entry.extension).substr(0, kMaxPiece);
        }
    }
    return patterns;
}

std::wstring DisplayOf(std::wstring_view name, std::wstring_view patterns) {
    return std::wstring(name).append(L" (").append(patterns).append(L")").substr(0, kMaxPiece);
}

std::wstring FilterOf(const std::vector<FileType>& types) {
    std::wstring filter;
    for (const FileType& type : types) {
        filter.append(type.display).push_back(L'\0');
        filter.append(type.patterns).push_back(L'\0');
    }
    filter.push_back(L'\0');
    return filter;
}

std::wstring InitialFileName(std::wstring_view path) {
    const std::size_t n = path.rfind(L'\\');
    return n == kNone ? std::wstring() : std::wstring(path.substr(n + 1));
}

std::int32_t InitialType(std::wstring_view fileName, const std::vector<std::wstring>& patterns) {
    const std::wstring_view name = Trimmed(fileName);
    const std::size_t nStop = name.rfind(L'.');
    if (nStop == kNone || nStop == 0 || nStop + 1 == name.size()) {
        return 1;
    }
    const auto has = [&](const std::wstring& type) { return ExtInPatterns(name.substr(nStop + 1), type); };
    const auto found = std::ranges::find_if(patterns, has);
    return found == patterns.end() ? 1 : static_cast<std::int32_t>(found - patterns.begin()) + 1;
}

bool ExtInPatterns(std::wstring_view extension, std::wstring_view patterns) {
    while (!patterns.empty()) {
        const std::size_t nEnd = patterns.find(L';');
        std::wstring_view piece = patterns.substr(0, nEnd);
        if (const std::size_t nStop = piece.find(L'.'); nStop != kNone) {
            piece.remove_prefix(nStop + 1);
        }
        if (EqualNoCase(piece, extension)) {
            return true;
        }
        patterns.remove_prefix(nEnd == kNone ? patterns.size() : nEnd + 1);
    }
    return false;
}

std::int32_t ExtToFormat(std::wstring_view extension, const FormatTable& table) {
    const auto found =
        std::ranges::find_if(table, [&](const FormatExtension& entry) { return EqualNoCase(entry.extension, extension); });
    return found == table.end() ? 0 : found->nFormat;
}

std::wstring FirstExtension(std::wstring_view patterns) {
    const std::size_t nStop = patterns.find(L'.');
    if (nStop == kNone) {
        return {};
    }
    const std::wstring_view behind = patterns.substr(nStop + 1);
    return std::wstring(behind.substr(0, behind.find(L';')));
}

std::int32_t FormatOfType(std::int32_t nPosition, const std::vector<std::wstring>& patterns, const FormatTable& table) {
    if (nPosition < 0 || static_cast<std::size_t>(nPosition) >= patterns.size()) {
        return 0;
    }
    const std::wstring& type = patterns[static_cast<std::size_t>(nPosition)];
    return type.find(L'.') == kNone ? 0 : ExtToFormat(FirstExtension(type), table);
}

std::wstring FileNameForType(std::wstring_view text, std::wstring_view patterns) {
    const std::wstring_view name = BehindLast(text, L'\\');
    const std::size_t nStop = name.rfind(L'.');
    const std::wstring_view extension = nStop == kNone ? std::wstring_view() : name.substr(nStop + 1);
    if (name.empty() || patterns.find(L'.') == kNone || ExtInPatterns(extension, patterns)) {
        return std::wstring(name);
    }
    return std::wstring(name.substr(0, nStop)) + L'.' + ToLower(FirstExtension(patterns));
}

}  // namespace width
