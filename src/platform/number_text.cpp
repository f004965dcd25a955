// SPDX-License-Identifier: MIT
#include "platform/number_text.h"

#include <charconv>

namespace plyra {

std::string numberToText(double value, int precision)
{
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, precision);
    return std::string(buffer, result.ptr);
}

std::string shortestFloatText(float value)
{
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

std::size_t readLeadingNumber(std::string_view text, double& value)
{
    // The character conversion takes a minus sign but not a plus sign.
    const std::size_t start = !text.empty() && text[0] == '+' ? 1 : 0;
    const std::size_t first = !text.empty() && (text[0] == '+' || text[0] == '-') ? 1 : 0;
    if (first < text.size() && (text[first] == 'i' || text[first] == 'I' || text[first] == 'n' || text[first] == 'N'))
        return 0; // "inf" and "nan", signed or not, are not numbers in our texts
    const char* begin = text.data() + start;
    const auto result = std::from_chars(begin, text.data() + text.size(), value, std::chars_format::general);
    if (result.ec == std::errc::invalid_argument)
        return 0;
    if (result.ec == std::errc::result_out_of_range) {
        // Too large or too small: take the text read as far as it goes.
        return static_cast<std::size_t>(result.ptr - text.data());
    }
    return static_cast<std::size_t>(result.ptr - text.data());
}

} // namespace plyra
