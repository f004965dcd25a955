// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace plyra::utf8 {

inline constexpr char32_t replacementCharacter = 0xFFFD;

/// Appends the UTF-8 form of a code point; surrogates and values past U+10FFFF
/// become U+FFFD, so the result is always valid UTF-8.
void append(std::string& out, char32_t codePoint);

/// Decodes the code point that starts at pos and moves pos past it. A malformed,
/// overlong or truncated sequence yields U+FFFD and moves pos by one byte.
char32_t decode(std::string_view text, std::size_t& pos);

/// Offset of the first byte that is not part of well-formed UTF-8, or npos.
std::size_t firstInvalidByte(std::string_view text);

} // namespace plyra::utf8
