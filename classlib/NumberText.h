// Numbers as people type and read them in a dialog's fields.
//
// Blanks and tabs round a number count for nothing, and a full stop is the decimal point in every locale, whatever the host has
// set. A number that its type can't hold is still a number: the nearest one that the type holds stands for it, so that the
// field's own range says what is wrong. Tested by: tests/unit/classlib/NumberTextTest.cpp.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The whole text as a decimal integer with or without a sign. Beyond 32 bits: the largest or smallest of them. Nothing if the
/// text is anything else.
std::optional<std::int32_t> ParseInteger(std::wstring_view text);

/// The whole text as a decimal number with or without sign, fraction and exponent; neither hexadecimal nor a name such as "inf".
/// Beyond a float's range: the largest or smallest float; nearer to 0 than any float: 0. Never -0. Nothing if the text is
/// anything else.
std::optional<float> ParseNumber(std::wstring_view text);

/// A number with at most six significant digits.
std::wstring NumberText(float value);
