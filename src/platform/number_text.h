// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace plyra {

// Number texts in files never depend on the user's locale (a decimal comma would make
// documents unreadable elsewhere), so these use the C++ character conversions.

/// printf "%.<precision>g" of value, always with a decimal point.
std::string numberToText(double value, int precision);

/// The shortest decimal text that reads back as exactly this float ("0.6", "1e-05").
std::string shortestFloatText(float value);

/// Reads a decimal number at the start of text (an optional sign, digits, a fraction,
/// an exponent). Returns the number of characters read, 0 when text does not start
/// with a number; infinities and not-a-number ("inf", "-nan", "+INF") are not numbers.
std::size_t readLeadingNumber(std::string_view text, double& value);

} // namespace plyra
