// Name and type rules of the save dialog, as tables.
#include "save/FileTypes.h"

#include <gtest/gtest.h>

namespace width {
namespace {

const FormatTable kTable{{L"bmp", 0}, {L"Abc", 4}, {L"x1", 7}, {L"ABD", 4}, {L"bmp", 9}};
const std::vector<std::wstring> kTypes{L"*.BMP", L"*.ABC;*.ABD", L"*.X1"};

TEST(FileTypes, AFormatShowsItsExtensionsAsTheLibrarySpellsThem) {
    EXPECT_EQ(PatternsOf(kTable, 4), L"*.Abc;*.ABD");
    EXPECT_EQ(PatternsOf(kTable, 0), L"*.bmp");
    EXPECT_EQ(PatternsOf(kTable, 1), L"");
    EXPECT_EQ(DisplayOf(L"Some Format", L"*.Abc;*.ABD"), L"Some Format (*.Abc;*.ABD)");
    EXPECT_EQ(DisplayOf(std::wstring(300, L'n'), L"*.a"), std::wstring(255, L'n'));
    EXPECT_EQ(PatternsOf({{std::wstring(300, L'e'), 3}, {L"f", 3}}, 3), L"*." + std::wstring(253, L'e') + L";*.f");
    EXPECT_EQ(ToUpper(L"*.Abc;*.\u00e9z9"), L"*.ABC;*.\u00e9Z9");
}

TEST(FileTypes, TheFilterIsADoubleList) {
    EXPECT_EQ(FilterOf({{L"A (*.a)", L"*.a"}, {L"B", L"*.b"}}), std::wstring(L"A (*.a)\0*.a\0B\0*.b\0\0", 19));
    EXPECT_EQ(FilterOf({}), std::wstring(1, L'\0'));
}

TEST(FileTypes, TheInitialNameFollowsTheLastBackslash) {
    EXPECT_EQ(InitialFileName(L"C:\\a.b\\name.abc"), L"name.abc");
    EXPECT_EQ(InitialFileName(L"C:\\folder\\"), L"");
    EXPECT_EQ(InitialFileName(L"name.abc"), L"");
    EXPECT_EQ(InitialFileName(L""), L"");
}

TEST(FileTypes, TheInitialTypeHasTheNamesExtension) {
    const struct {
        const wchar_t* name;
        std::int32_t nType;
    } cases[] = {{L"a.x1", 3}, {L"  a.X1 \t", 3}, {L"a.b.abd", 2}, {L"a.abc", 2}, {L"a.bmp", 1}, {L"a.jpg", 1},
                 {L"a", 1},    {L"", 1},          {L"   ", 1},     {L".x1", 1},   {L"a.", 1},    {L" .x1", 1},
                 {L"x1", 1},   {L"a.abc ", 2},    {L"a.abcd", 1},  {L"a.ab", 1},  {L"..x1", 3},  {L"a.x1.", 1}};
    for (const auto& [name, nType] : cases) {
        EXPECT_EQ(InitialType(name, kTypes), nType) << '"' << std::string(name, name + std::wcslen(name)) << '"';
    }
    EXPECT_EQ(InitialType(L"a.x1", {}), 1);
}

TEST(FileTypes, ExtensionsAreFoundPieceByPiece) {
    const struct {
        const wchar_t* extension;
        const wchar_t* patterns;
        bool bFound;
    } cases[] = {{L"abc", L"*.ABC;*.ABD", true},
                 {L"aBd", L"*.ABC;*.ABD", true},
                 {L"ab", L"*.ABC", false},
                 {L"abcd", L"*.ABC", false},
                 {L"", L"", false},
                 {L"", L"*.ABC", false},
                 {L"", L"*.", true},
                 {L"", L";*.ABC", true},
                 {L"abc", L";*.ABC", true},
                 {L"", L"*.ABC;", false},
                 {L"gz", L"*.TAR.GZ", false},
                 {L"tar.gz", L"*.TAR.GZ", true},
                 {L"abc", L"ABC", true},
                 {L"*", L"*", true}};
    for (const auto& [extension, patterns, bFound] : cases) {
        EXPECT_EQ(ExtInPatterns(extension, patterns), bFound) << std::string(patterns, patterns + std::wcslen(patterns));
    }
}

TEST(FileTypes, ATypeStandsForTheFormatOfItsFirstExtension) {
    EXPECT_EQ(ExtToFormat(L"abd", kTable), 4);
    EXPECT_EQ(ExtToFormat(L"BMP", kTable), 0) << "the first of two entries";
    EXPECT_EQ(ExtToFormat(L"none", kTable), 0);
    EXPECT_EQ(ExtToFormat(L"", kTable), 0);
    EXPECT_EQ(FormatOfType(1, kTypes, kTable), 4);
    EXPECT_EQ(FormatOfType(2, kTypes, kTable), 7);
    EXPECT_EQ(FormatOfType(-1, kTypes, kTable), 0);
    EXPECT_EQ(FormatOfType(3, kTypes, kTable), 0);
    EXPECT_EQ(FormatOfType(0, {L""}, kTable), 0);
    EXPECT_EQ(FormatOfType(0, {L"X1"}, kTable), 0) << "no full stop";
}

TEST(FileTypes, TheNameFollowsTheType) {
    const struct {
        const wchar_t* name;
        const wchar_t* patterns;
        const wchar_t* fitting;
    } cases[] = {{L"a.abd", L"*.ABC;*.ABD", L"a.abd"},
                 {L"a.ABC", L"*.ABC;*.ABD", L"a.ABC"},
                 {L"a.bmp", L"*.ABC;*.ABD", L"a.abc"},
                 {L"a", L"*.X1", L"a.x1"},
                 {L"a.b.bmp", L"*.X1", L"a.b.x1"},
                 {L"a.", L"*.X1", L"a.x1"},
                 {L"C:\\d.e\\a", L"*.X1", L"a.x1"},
                 {L"", L"*.X1", L""},
                 {L"C:\\d\\", L"*.X1", L""},
                 {L".bmp", L"*.X1", L".x1"},
                 {L"a.bmp", L"", L"a.bmp"}};
    for (const auto& [name, patterns, fitting] : cases) {
        EXPECT_EQ(FileNameForType(name, patterns), fitting) << std::string(name, name + std::wcslen(name));
    }
}

}  // namespace
}  // namespace width
