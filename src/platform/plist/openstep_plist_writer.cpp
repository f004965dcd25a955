// SPDX-License-Identifier: MIT
#include "platform/plist/openstep_plist.h"

#include "platform/log.h"
#include "platform/plist/utf8_internal.h"

#include <charconv>
#include <cmath>

namespace plyra {

namespace {

/// Writes values in the layout of a dictionary's description.
/// Threads: one writer per thread.
class OpenStepWriter {
public:
    std::string take() { return std::move(m_out); }
    void write(const PropertyList& value, int level);

private:
    void writeArray(const PropertyList::Array& array, int level);
    void writeDictionary(const PropertyList::Dictionary& dict, int level);
    void writeData(const PropertyList::Data& data);
    void writeString(std::string_view text);
    void writeEscaped(std::string_view text);
    void writeEscapedCodePoint(char32_t c);
    void indent(int level) { m_out.append(static_cast<std::size_t>(level) * 4, ' '); }

    std::string m_out;
};

std::string realText(double value)
{
    if (std::isnan(value))
        return "nan";
    if (std::isinf(value))
        return value < 0 ? "-inf" : "inf";
    // The shortest text that reads back as the same double.
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

// Only letters and digits go unquoted: a dictionary's description quotes "0.5",
// "file_name" and "faces/left.png" even though a reader would take them bare.
bool needsQuotes(std::string_view text)
{
    if (text.empty())
        return true;
    for (const char c : text) {
        const bool alphanumeric = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (!alphanumeric)
            return true;
    }
    return false;
}

void OpenStepWriter::write(const PropertyList& value, int level)
{
    switch (value.type()) {
    case PropertyList::Type::String:
        writeString(*value.string());
        break;
    case PropertyList::Type::Integer:
        writeString(std::to_string(value.integerValue()));
        break;
    case PropertyList::Type::Real:
        writeString(realText(value.doubleValue()));
        break;
    case PropertyList::Type::Boolean:
        writeString(*value.boolValue() ? "1" : "0");
        break;
    case PropertyList::Type::Data:
        writeData(*value.data());
        break;
    case PropertyList::Type::Array:
        writeArray(*value.array(), level);
        break;
    case PropertyList::Type::Dictionary:
        writeDictionary(*value.dictionary(), level);
        break;
    }
}

// A nested container starts with its own indentation even though it follows "key = " or
// the element's indentation on the same line; this is where `key =     (` comes from.
void OpenStepWriter::writeArray(const PropertyList::Array& array, int level)
{
    indent(level);
    m_out += "(\n";
    for (std::size_t i = 0; i < array.size(); ++i) {
        indent(level + 1);
        write(array[i], level + 1);
        m_out += i + 1 < array.size() ? ",\n" : "\n";
    }
    indent(level);
    m_out += ')';
}

void OpenStepWriter::writeDictionary(const PropertyList::Dictionary& dict, int level)
{
    indent(level);
    m_out += "{\n";
    for (const auto& [key, value] : dict) {
        indent(level + 1);
        writeString(key);
        m_out += " = ";
        write(value, level + 1);
        m_out += ";\n";
    }
    indent(level);
    m_out += '}';
}

void OpenStepWriter::writeData(const PropertyList::Data& data)
{
    static constexpr char digits[] = "0123456789abcdef";
    m_out += '<';
    for (std::size_t i = 0; i < data.size(); ++i) {
        if (i > 0 && i % 4 == 0)
            m_out += ' ';
        m_out += digits[data[i] >> 4];
        m_out += digits[data[i] & 0x0F];
    }
    m_out += '>';
}

void OpenStepWriter::writeString(std::string_view text)
{
    if (!needsQuotes(text)) {
        m_out += text;
        return;
    }
    m_out += '"';
    writeEscaped(text);
    m_out += '"';
}

void OpenStepWriter::writeEscaped(std::string_view text)
{
    std::size_t pos = 0;
    while (pos < text.size()) {
        const char c = text[pos];
        switch (c) {
        case '"': m_out += "\\\""; ++pos; continue;
        case '\\': m_out += "\\\\"; ++pos; continue;
        case '\a': m_out += "\\a"; ++pos; continue;
        case '\b': m_out += "\\b"; ++pos; continue;
        case '\f': m_out += "\\f"; ++pos; continue;
        case '\n': m_out += "\\n"; ++pos; continue;
        case '\r': m_out += "\\r"; ++pos; continue;
        case '\t': m_out += "\\t"; ++pos; continue;
        case '\v': m_out += "\\v"; ++pos; continue;
        default: break;
        }
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7F) {
            m_out += c;
            ++pos;
        } else {
            // Control characters and everything past ASCII as \U escapes, so the text
            // stays plain ASCII; bytes that are not UTF-8 come out as U+FFFD.
            writeEscapedCodePoint(utf8::decode(text, pos));
        }
    }
}

void OpenStepWriter::writeEscapedCodePoint(char32_t c)
{
    if (c >= 0x10000) {
        c -= 0x10000;
        writeEscapedCodePoint(0xD800 + (c >> 10));
        writeEscapedCodePoint(0xDC00 + (c & 0x3FF));
        return;
    }
    m_out += formatString("\\U%04x", static_cast<unsigned>(c));
}

} // namespace

std::string writeOpenStepPropertyList(const PropertyList& value)
{
    OpenStepWriter writer;
    writer.write(value, 0);
    return writer.take();
}

} // namespace plyra
