// SPDX-License-Identifier: MIT
#include "platform/plist/utf8_internal.h"

namespace plyra::utf8 {

namespace {

bool isSurrogate(char32_t c)
{
    return c >= 0xD800 && c <= 0xDFFF;
}

bool isContinuation(unsigned char byte)
{
    return (byte & 0xC0) == 0x80;
}

/// What a lead byte announces: the sequence length (0 when it cannot start one),
/// its payload bits, and the smallest code point that needs this length.
struct LeadByte {
    std::size_t length = 0;
    char32_t bits = 0;
    char32_t minimum = 0;
};

LeadByte classify(unsigned char lead)
{
    if ((lead & 0xE0) == 0xC0)
        return { 2, static_cast<char32_t>(lead & 0x1F), 0x80 };
    if ((lead & 0xF0) == 0xE0)
        return { 3, static_cast<char32_t>(lead & 0x0F), 0x800 };
    if ((lead & 0xF8) == 0xF0)
        return { 4, static_cast<char32_t>(lead & 0x07), 0x10000 };
    return {};
}

} // namespace

void append(std::string& out, char32_t c)
{
    if (isSurrogate(c) || c > 0x10FFFF)
        c = replacementCharacter;
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

char32_t decode(std::string_view text, std::size_t& pos)
{
    const auto lead = static_cast<unsigned char>(text[pos]);
    if (lead < 0x80) {
        ++pos;
        return lead;
    }
    const LeadByte kind = classify(lead);
    if (kind.length == 0 || text.size() - pos < kind.length) {
        ++pos;
        return replacementCharacter;
    }
    char32_t c = kind.bits;
    for (std::size_t i = 1; i < kind.length; ++i) {
        const auto byte = static_cast<unsigned char>(text[pos + i]);
        if (!isContinuation(byte)) {
            ++pos;
            return replacementCharacter;
        }
        c = (c << 6) | (byte & 0x3F);
    }
    if (c < kind.minimum || c > 0x10FFFF || isSurrogate(c)) {
        ++pos;
        return replacementCharacter;
    }
    pos += kind.length;
    return c;
}

std::size_t firstInvalidByte(std::string_view text)
{
    std::size_t pos = 0;
    while (pos < text.size()) {
        const std::size_t start = pos;
        const bool wasReplacement = decode(text, pos) == replacementCharacter;
        // A genuine U+FFFD takes three bytes; a decoding failure advances by one.
        if (wasReplacement && pos - start == 1)
            return start;
    }
    return std::string_view::npos;
}

} // namespace plyra::utf8
