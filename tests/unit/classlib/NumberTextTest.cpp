// What counts as a number in a field.
#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <string>

#include "classlib/NumberText.h"

namespace {

constexpr const wchar_t* kNoNumbers[] = {L"",    L" ",    L"\t",  L"-",  L"+",      L"+-1", L"-+1",    L"--1", L"++1",
                                         L"1 2", L"0x10", L"inf", L"1a", L"\uFF11", L"1\n", L"\u4E00", L"nan", L"1e1e1"};

TEST(NumberText, IntegersWithWhatAPersonPutsRoundThem) {
    EXPECT_EQ(ParseInteger(L"0"), 0);
    EXPECT_EQ(ParseInteger(L"-0"), 0);
    EXPECT_EQ(ParseInteger(L"+7"), 7);
    EXPECT_EQ(ParseInteger(L"-7"), -7);
    EXPECT_EQ(ParseInteger(L"\t 42\t \u3000\u00A0"), 42);
    EXPECT_EQ(ParseInteger(std::wstring(70, L'0') + L"40"), 40);
    for (const wchar_t* const text : kNoNumbers) {
        EXPECT_EQ(ParseInteger(text), std::nullopt) << text;
    }
    EXPECT_EQ(ParseInteger(L"1.5"), std::nullopt);
    EXPECT_EQ(ParseInteger(L"1e3"), std::nullopt);
}

TEST(NumberText, IntegersBeyondTheirTypeAreItsLimits) {
    EXPECT_EQ(ParseInteger(L"2147483647"), INT_MAX);
    EXPECT_EQ(ParseInteger(L"2147483648"), INT_MAX);
    EXPECT_EQ(ParseInteger(L"99999999999"), INT_MAX);
    EXPECT_EQ(ParseInteger(L"-2147483648"), INT_MIN);
    EXPECT_EQ(ParseInteger(L"-99999999999999999999999999"), INT_MIN);
    EXPECT_EQ(ParseInteger(L"99999999999x"), std::nullopt);
}

TEST(NumberText, NumbersInAnyNotation) {
    EXPECT_EQ(ParseNumber(L"\t12.5e1 "), 125.0F);
    EXPECT_EQ(ParseNumber(L".5"), 0.5F);
    EXPECT_EQ(ParseNumber(L"5."), 5.0F);
    EXPECT_EQ(ParseNumber(L"+0.01745"), 0.01745F);
    EXPECT_EQ(ParseNumber(L"-3E-2"), -0.03F);
    EXPECT_EQ(ParseNumber(L"1e+2"), 100.0F);
    for (const wchar_t* const text : kNoNumbers) {
        EXPECT_EQ(ParseNumber(text), std::nullopt) << text;
    }
    for (const wchar_t* const text : {L".", L"e5", L"1,5", L"1e", L"1.2.3", L"1e999x", L"-"}) {
        EXPECT_EQ(ParseNumber(text), std::nullopt) << text;
    }
}

TEST(NumberText, NumbersBeyondTheirTypeAreItsLimits) {
    for (const std::wstring text : {L"1e39", L"1e999", L"1e99999999999999999999", L"0.001e400", L"4e38"}) {
        EXPECT_EQ(ParseNumber(text), FLT_MAX) << text;
        EXPECT_EQ(ParseNumber(L"-" + text), -FLT_MAX) << text;
    }
    EXPECT_EQ(ParseNumber(std::wstring(400, L'9')), FLT_MAX);
    EXPECT_EQ(ParseNumber(L"0." + std::wstring(400, L'0') + L"1e800"), FLT_MAX);
}

TEST(NumberText, NothingIsZeroWithASign) {
    const std::wstring nearly = L"0." + std::wstring(400, L'0') + L"1";
    for (const std::wstring& text : {std::wstring(L"0"), std::wstring(L"0e999"), std::wstring(L"1e-50"), std::wstring(L"1e-999"),
                                     std::wstring(L"1e-99999999999999999999"), std::wstring(L"123e-400"), nearly}) {
        for (const wchar_t* const sign : {L"", L"-", L"+"}) {
            const auto value = ParseNumber(sign + text);
            ASSERT_TRUE(value.has_value()) << text;
            EXPECT_EQ(*value, 0.0F) << text;
            EXPECT_FALSE(std::signbit(*value)) << sign << text;
        }
    }
    EXPECT_EQ(NumberText(*ParseNumber(L"-0")), L"0");
}

TEST(NumberText, SixDigitsAreShown) {
    EXPECT_EQ(NumberText(0.01745F), L"0.01745");
    EXPECT_EQ(NumberText(1000), L"1000");
    EXPECT_EQ(NumberText(1.0F / 3), L"0.333333");
}

}  // namespace
