// SPDX-License-Identifier: MIT
#include "platform/plist/openstep_plist.h"

#include "platform/log.h"
#include "platform/plist/utf8_internal.h"

#include <algorithm>

namespace plyra {

namespace {

// Deep enough for any real document, shallow enough that the recursive descent (and the
// recursive destruction of the value) stays far from the end of a thread's stack.
constexpr int maxDepth = 512;

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}

bool isUnquotedCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')
        || c == '_' || c == '$' || c == '+' || c == '/' || c == ':' || c == '.' || c == '-';
}

int hexDigitValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

bool isHighSurrogate(char32_t c)
{
    return c >= 0xD800 && c <= 0xDBFF;
}

bool isLowSurrogate(char32_t c)
{
    return c >= 0xDC00 && c <= 0xDFFF;
}

/// Recursive-descent reader of one OpenStep text property list.
/// Threads: one parse on one thread; separate parsers are independent.
class OpenStepParser {
public:
    explicit OpenStepParser(std::string_view text) : m_text(text) { }

    std::optional<PropertyList> parse(std::string* error);

private:
    bool parseRoot(PropertyList& out);
    bool parseValue(PropertyList& out, int depth);
    bool parseDictionary(PropertyList& out, int depth);
    bool parseDictionaryEntry(PropertyList::Dictionary& dict, int depth);
    bool parseArray(PropertyList& out, int depth);
    bool parseString(std::string& out);
    bool parseQuoted(std::string& out);
    bool parseEscape(std::string& out);
    char32_t readOctalEscape();
    bool readUnicodeEscape(char32_t& codePoint);
    int readHexDigits(char32_t& value);
    void parseUnquoted(std::string& out);
    bool parseData(PropertyList& out);
    bool skipBlanksAndComments();

    bool atEnd() const { return m_pos >= m_text.size(); }
    char peek() const { return m_text[m_pos]; }
    bool startsWith(std::string_view prefix) const { return m_text.substr(m_pos).starts_with(prefix); }
    int lineAt(std::size_t pos) const;
    std::string describeHere() const;
    bool fail(std::size_t pos, const std::string& message);

    std::string_view m_text;
    std::size_t m_pos = 0;
    std::string m_error;
};

std::optional<PropertyList> OpenStepParser::parse(std::string* error)
{
    PropertyList result;
    if (parseRoot(result))
        return result;
    if (error)
        *error = m_error;
    return std::nullopt;
}

bool OpenStepParser::parseRoot(PropertyList& out)
{
    const std::size_t invalid = utf8::firstInvalidByte(m_text);
    if (invalid != std::string_view::npos)
        return fail(invalid, "the text is not valid UTF-8");
    if (startsWith("\xEF\xBB\xBF"))
        m_pos = 3;
    if (!skipBlanksAndComments())
        return false;
    if (atEnd())
        return fail(m_pos, "the text holds no property list");
    if (!parseValue(out, 0) || !skipBlanksAndComments())
        return false;
    if (!atEnd())
        return fail(m_pos, "unexpected " + describeHere() + " after the property list");
    return true;
}

bool OpenStepParser::parseValue(PropertyList& out, int depth)
{
    if (atEnd())
        return fail(m_pos, "unexpected end of text where a value was expected");
    const char c = peek();
    if (c == '{' || c == '(') {
        if (depth >= maxDepth)
            return fail(m_pos, formatString("containers nested deeper than %d levels", maxDepth));
        return c == '{' ? parseDictionary(out, depth + 1) : parseArray(out, depth + 1);
    }
    if (c == '<')
        return parseData(out);
    std::string text;
    if (!parseString(text))
        return false;
    out = PropertyList(std::move(text));
    return true;
}

bool OpenStepParser::parseDictionary(PropertyList& out, int depth)
{
    const std::size_t open = m_pos++;
    PropertyList::Dictionary dict;
    for (;;) {
        if (!skipBlanksAndComments())
            return false;
        if (atEnd())
            return fail(m_pos, formatString("missing '}' to close the dictionary begun on line %d", lineAt(open)));
        if (peek() == '}')
            break;
        if (!parseDictionaryEntry(dict, depth))
            return false;
    }
    ++m_pos;
    out = PropertyList(std::move(dict));
    return true;
}

bool OpenStepParser::parseDictionaryEntry(PropertyList::Dictionary& dict, int depth)
{
    const char c = peek();
    if (c == '{' || c == '(' || c == '<')
        return fail(m_pos, "a dictionary key must be a string");
    std::string key;
    if (!parseString(key) || !skipBlanksAndComments())
        return false;
    if (atEnd() || peek() != '=')
        return fail(m_pos, "missing '=' after the dictionary key \"" + key + "\", found " + describeHere());
    ++m_pos;
    PropertyList value;
    if (!skipBlanksAndComments() || !parseValue(value, depth) || !skipBlanksAndComments())
        return false;
    if (atEnd() || peek() != ';')
        return fail(m_pos, "missing ';' after the dictionary entry \"" + key + "\", found " + describeHere());
    ++m_pos;
    // A repeated key keeps the last value, as later entries overwrite earlier ones.
    dict.insert_or_assign(std::move(key), std::move(value));
    return true;
}

bool OpenStepParser::parseArray(PropertyList& out, int depth)
{
    const std::size_t open = m_pos++;
    PropertyList::Array array;
    for (;;) {
        if (!skipBlanksAndComments())
            return false;
        if (atEnd())
            return fail(m_pos, formatString("missing ')' to close the array begun on line %d", lineAt(open)));
        if (peek() == ')')
            break;
        PropertyList element;
        if (!parseValue(element, depth) || !skipBlanksAndComments())
            return false;
        array.push_back(std::move(element));
        // A comma may follow the last element too.
        if (!atEnd() && peek() == ',')
            ++m_pos;
        else if (!atEnd() && peek() != ')')
            return fail(m_pos, formatString("expected ',' or ')' in the array begun on line %d, found ", lineAt(open))
                    + describeHere());
    }
    ++m_pos;
    out = PropertyList(std::move(array));
    return true;
}

bool OpenStepParser::parseString(std::string& out)
{
    const char c = peek();
    if (c == '"' || c == '\'')
        return parseQuoted(out);
    if (!isUnquotedCharacter(c))
        return fail(m_pos, "unexpected " + describeHere() + " where a value was expected");
    parseUnquoted(out);
    return true;
}

bool OpenStepParser::parseQuoted(std::string& out)
{
    const std::size_t open = m_pos;
    const char quote = m_text[m_pos++];
    while (!atEnd() && peek() != quote) {
        if (peek() == '\\') {
            ++m_pos;
            if (atEnd())
                break;
            if (!parseEscape(out))
                return false;
        } else {
            out += m_text[m_pos++];
        }
    }
    if (atEnd())
        return fail(open, "unterminated quoted string");
    ++m_pos;
    return true;
}

bool OpenStepParser::parseEscape(std::string& out)
{
    const char c = m_text[m_pos];
    if (c >= '0' && c <= '7') {
        utf8::append(out, readOctalEscape());
        return true;
    }
    if (c == 'U') {
        char32_t codePoint = 0;
        if (!readUnicodeEscape(codePoint))
            return false;
        utf8::append(out, codePoint);
        return true;
    }
    ++m_pos;
    switch (c) {
    case 'a': out += '\a'; break;
    case 'b': out += '\b'; break;
    case 'f': out += '\f'; break;
    case 'n': out += '\n'; break;
    case 'r': out += '\r'; break;
    case 't': out += '\t'; break;
    case 'v': out += '\v'; break;
    // Any other escaped character stands for itself: \" \' \\ and the rest.
    default: out += c; break;
    }
    return true;
}

char32_t OpenStepParser::readOctalEscape()
{
    // Up to three octal digits; the value is taken as a code point (so \351 is U+00E9),
    // which keeps every string valid UTF-8.
    char32_t value = 0;
    for (int digits = 0; digits < 3 && !atEnd() && peek() >= '0' && peek() <= '7'; ++digits)
        value = value * 8 + static_cast<char32_t>(m_text[m_pos++] - '0');
    return value;
}

bool OpenStepParser::readUnicodeEscape(char32_t& codePoint)
{
    const std::size_t start = m_pos - 1;
    ++m_pos; // the 'U'
    if (readHexDigits(codePoint) == 0)
        return fail(start, "\\U escape without hexadecimal digits");
    // Characters outside the basic plane are written as a UTF-16 surrogate pair of escapes;
    // a surrogate without its partner ends up as U+FFFD.
    if (isHighSurrogate(codePoint) && startsWith("\\U")) {
        const std::size_t save = m_pos;
        m_pos += 2;
        char32_t low = 0;
        if (readHexDigits(low) > 0 && isLowSurrogate(low)) {
            codePoint = 0x10000 + ((codePoint - 0xD800) << 10) + (low - 0xDC00);
            return true;
        }
        m_pos = save;
    }
    return true;
}

int OpenStepParser::readHexDigits(char32_t& value)
{
    int digits = 0;
    value = 0;
    for (; digits < 4 && !atEnd() && hexDigitValue(peek()) >= 0; ++digits)
        value = value * 16 + static_cast<char32_t>(hexDigitValue(m_text[m_pos++]));
    return digits;
}

void OpenStepParser::parseUnquoted(std::string& out)
{
    const std::size_t start = m_pos;
    while (!atEnd() && isUnquotedCharacter(peek()))
        ++m_pos;
    out.assign(m_text.substr(start, m_pos - start));
}

bool OpenStepParser::parseData(PropertyList& out)
{
    const std::size_t open = m_pos++;
    PropertyList::Data bytes;
    int pending = -1;
    for (;; ++m_pos) {
        if (atEnd())
            return fail(open, "unterminated data: missing '>'");
        const char c = peek();
        if (c == '>')
            break;
        if (isBlank(c))
            continue;
        const int digit = hexDigitValue(c);
        if (digit < 0)
            return fail(m_pos, "unexpected " + describeHere() + " in data");
        if (pending < 0) {
            pending = digit;
        } else {
            bytes.push_back(static_cast<std::uint8_t>(pending * 16 + digit));
            pending = -1;
        }
    }
    if (pending >= 0)
        return fail(open, "odd number of hexadecimal digits in data");
    ++m_pos;
    out = PropertyList(std::move(bytes));
    return true;
}

bool OpenStepParser::skipBlanksAndComments()
{
    while (!atEnd()) {
        if (isBlank(peek())) {
            ++m_pos;
        } else if (startsWith("//")) {
            const std::size_t end = m_text.find('\n', m_pos);
            m_pos = end == std::string_view::npos ? m_text.size() : end + 1;
        } else if (startsWith("/*")) {
            const std::size_t end = m_text.find("*/", m_pos + 2);
            if (end == std::string_view::npos)
                return fail(m_pos, "unterminated /* comment");
            m_pos = end + 2;
        } else {
            break;
        }
    }
    return true;
}

int OpenStepParser::lineAt(std::size_t pos) const
{
    const std::string_view before = m_text.substr(0, std::min(pos, m_text.size()));
    return 1 + static_cast<int>(std::count(before.begin(), before.end(), '\n'));
}

std::string OpenStepParser::describeHere() const
{
    if (atEnd())
        return "end of text";
    const auto c = static_cast<unsigned char>(peek());
    if (c > ' ' && c < 0x7F)
        return std::string("'") + static_cast<char>(c) + "'";
    return formatString("character 0x%02X", c);
}

bool OpenStepParser::fail(std::size_t pos, const std::string& message)
{
    m_error = formatString("line %d: ", lineAt(pos)) + message;
    return false;
}

} // namespace

std::optional<PropertyList> parseOpenStepPropertyList(std::string_view text, std::string* error)
{
    return OpenStepParser(text).parse(error);
}

} // namespace plyra
