#include "shell/TipText.h"

#include <gtest/gtest.h>

#include "shell/HelpPath.h"

namespace width {
namespace {

TEST(TipText, TakesTheSecondLineInTheLanguage) {
    EXPECT_EQ(TipText(L"\n%Save%\u4fdd\u5b58", false), L"Save");
    EXPECT_EQ(TipText(L"\n%Save%\u4fdd\u5b58", true), L"\u4fdd\u5b58");
    EXPECT_EQ(TipText(L"status\nplain text\nmore", true), L"plain text");
    EXPECT_EQ(TipText(L"\n%one sign only", true), L"one sign only");
    EXPECT_EQ(TipText(L"\n%a%b%c", true), L"b%c");
    EXPECT_EQ(TipText(L"\n", false), L"");
    EXPECT_EQ(TipText(L"no second line", false), L"");
    EXPECT_EQ(TipText(L"\n%%", false), L"");
}

TEST(HelpPath, LiesBesideTheExecutable) {
    const auto paths = FindHelpPaths(L"C:\\image\\host.exe", L"C:\\image\\plugin\\wid.th.dll", 0x0804);
    ASSERT_TRUE(paths);
    EXPECT_EQ(paths->language, L"C:\\image\\plugin\\help\\0804\\wid.th\\index.html");
    EXPECT_EQ(paths->fallback, L"C:\\image\\plugin\\help\\0000\\wid.th\\index.html");
    EXPECT_EQ(FindHelpPaths(L"C:\\host.exe", L"C:\\width", 0xABCD)->language, L"C:\\plugin\\help\\abcd\\width\\index.html");
    EXPECT_FALSE(FindHelpPaths(L"host.exe", L"C:\\width.dll", 4));
    EXPECT_FALSE(FindHelpPaths(L"C:\\host.exe", L"width.dll", 4));
}

}  // namespace
}  // namespace width
