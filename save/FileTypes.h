// The rules that bind a file's name, its type and the image library's formats. The save dialog asks, these answer.
//
// A type is what the dialog's list shows; a pattern string is its extensions as the platform's file dialog wants them:
// "*.abc;*.abd". Letters are compared without regard to case as far as they are ASCII.
// Tested by: tests/unit/save/FileTypesTest.cpp
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace width {

/// One entry of the library's format table: an extension without a dot, and the format it stands for.
struct FormatExtension {
    std::wstring extension;
    std::int32_t nFormat = 0;
};
using FormatTable = std::vector<FormatExtension>;

/// One type of the dialog's list.
struct FileType {
    std::wstring display;   ///< "NAME (PATTERNS)"
    std::wstring patterns;  ///< as the library spells the extensions, in table order
};

/// ASCII letters to upper or lower case; everything else stays.
std::wstring ToUpper(std::wstring_view text);
std::wstring ToLower(std::wstring_view text);

/// The pattern string of a format: "*.EXT" for each of its extensions, joined by semicolons, in table order. Empty if it has
/// none.
std::wstring PatternsOf(const FormatTable& table, std::int32_t nFormat);

/// The list's entry for a format of that name, cut to 255 characters.
std::wstring DisplayOf(std::wstring_view name, std::wstring_view patterns);

/// The dialog's filter: display and pattern string of each type, each ended by a zero, and a zero behind the last.
std::wstring FilterOf(const std::vector<FileType>& types);

/// The initial file name for a proposed path: what follows the last backslash, nothing for a path without one.
std::wstring InitialFileName(std::wstring_view path);

/// The position, counted from 1, of the first pattern string that has the name's extension; 1 if none has, or the name has
/// none. Blanks around the name do not count, nor does an extension that is the whole name.
std::int32_t InitialType(std::wstring_view fileName, const std::vector<std::wstring>& patterns);

/// Whether a pattern string has the extension (without a dot). A string with no extension between two semicolons has the
/// empty one; an empty string has none.
bool ExtInPatterns(std::wstring_view extension, std::wstring_view patterns);

/// The format of an extension without a dot: that of its first entry in the table, 0 if it has none.
std::int32_t ExtToFormat(std::wstring_view extension, const FormatTable& table);

/// The first extension of a pattern string: what stands between its first full stop and the semicolon behind it. Empty without a
/// full stop.
std::wstring FirstExtension(std::wstring_view patterns);

/// The format of the type at a position of the list, counted from 0; 0 for a position outside it.
std::int32_t FormatOfType(std::int32_t nPosition, const std::vector<std::wstring>& patterns, const FormatTable& table);

/// The file name that fits a type: the name itself, without folders, if it has one of the type's extensions; else with the
/// type's first extension, in lower case, in place of its own or behind it. An empty name stays empty, and a type without
/// an extension leaves every name as it is.
std::wstring FileNameForType(std::wstring_view text, std::wstring_view patterns);

}  // namespace width
