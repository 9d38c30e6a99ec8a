// Tested by: tests/unit/classlib/NumberTextTest.cpp
#include "classlib/NumberText.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <charconv>
#include <limits>
#include <system_error>

namespace {

constexpr std::wstring_view kBlanks = L" \t\u00A0\u3000";  // the last is a full-width blank, as Chinese keyboards give it

/// What stands between the blanks, if it consists of ASCII characters that can stand in a number; else empty. A plus sign in
/// front is left out, unless another sign follows.
std::string NumberIn(std::wstring_view text) {
    const std::size_t nFirst = text.find_first_not_of(kBlanks);
    if (nFirst == std::wstring_view::npos) {
        return {};
    }
    text = text.substr(nFirst, text.find_last_not_of(kBlanks) + 1 - nFirst);
    if (text.find_first_not_of(L"0123456789+-.eE") != std::wstring_view::npos) {
        return {};
    }
    const bool bSkipPlus = text.starts_with(L'+') && !text.starts_with(L"+-");
    return {text.begin() + (bSkipPlus ? 1 : 0), text.end()};
}

/// Whether a number beyond the range of a double is too near to 0, rather than too large: whether its first digit that is not 0
/// has a weight below 1.
bool IsTiny(std::string_view number) {
    const std::size_t nMantissa = std::min(number.find_first_of("eE"), number.size());
    const std::size_t nPoint = std::min(number.find('.'), nMantissa);
    const auto nDigit = static_cast<std::int64_t>(number.find_first_of("123456789"));
    std::string_view exponent = number.substr(std::min(nMantissa + 1, number.size()));
    exponent.remove_prefix(exponent.starts_with('+') ? 1 : 0);
    std::int64_t nExponent = 0;
    const auto [pEnd, error] = std::from_chars(exponent.data(), exponent.data() + exponent.size(), nExponent);
    if (error == std::errc::result_out_of_range) {
        return exponent.starts_with('-');
    }
    return nExponent + static_cast<std::int64_t>(nPoint) - nDigit <= 0;
}

/// The number that the whole text writes, or the limit that stands for it; nothing if it writes none.
template <class T, class Limit>
std::optional<T> Parse(const std::string& number, Limit limit) {
    T value{};
    const char* const pEnd = number.data() + number.size();
    const auto [pStop, error] = std::from_chars(number.data(), pEnd, value);
    if (pStop != pEnd || number.empty() || error == std::errc::invalid_argument) {
        return std::nullopt;
    }
    return error == std::errc() ? value : limit();
}

}  // namespace

std::optional<std::int32_t> ParseInteger(std::wstring_view text) {
    using Limits = std::numeric_limits<std::int32_t>;
    const std::string number = NumberIn(text);
    return Parse<std::int32_t>(number, [&] { return number.starts_with('-') ? Limits::min() : Limits::max(); });
}

std::optional<float> ParseNumber(std::wstring_view text) {
    const std::string number = NumberIn(text);
    const double dMost = IsTiny(number) ? 0.0 : DBL_MAX;
    const auto value = Parse<double>(number, [&] { return number.starts_with('-') ? -dMost : dMost; });
    if (!value) {
        return std::nullopt;
    }
    return static_cast<float>(std::clamp<double>(*value, -FLT_MAX, FLT_MAX)) + 0.0F;  // the sum makes 0 of -0
}

std::wstring NumberText(float value) {
    std::array<char, 40> text{};
    const auto [pEnd, error] =
        std::to_chars(text.data(), text.data() + text.size(), static_cast<double>(value), std::chars_format::general, FLT_DIG);
    return {text.data(), pEnd};
}
