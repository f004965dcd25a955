// SPDX-License-Identifier: MIT
#include "platform/plist/openstep_plist.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <random>
#include <sstream>

namespace plyra {
namespace {

using Array = PropertyList::Array;
using Data = PropertyList::Data;
using Dictionary = PropertyList::Dictionary;

std::string readFixture(const std::string& name)
{
    std::ifstream in(std::string(PLYRA_TEST_DATA) + "/openstep/" + name, std::ios::binary);
    EXPECT_TRUE(in) << name;
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string withoutFinalNewline(std::string text)
{
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.pop_back();
    return text;
}

std::string hexUnit(unsigned unit, const char* format)
{
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, format, unit);
    return buffer;
}

// The fixtures' canonical JSON string: ASCII only, UTF-8 (which the parser guarantees)
// decoded into \u escapes.
std::string jsonString(const std::string& text)
{
    static const std::map<char32_t, std::string> named = {
        { '"', "\\\"" }, { '\\', "\\\\" }, { '\n', "\\n" }, { '\r', "\\r" }, { '\t', "\\t" }, { '\b', "\\b" }, { '\f', "\\f" } };
    std::string out = "\"";
    for (std::size_t pos = 0; pos < text.size();) {
        const auto lead = static_cast<unsigned char>(text[pos]);
        const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        char32_t c = length == 1 ? lead : lead & (0x3F >> (length - 1));
        for (std::size_t i = 1; i < length; ++i)
            c = (c << 6) | (static_cast<unsigned char>(text[pos + i]) & 0x3F);
        pos += length;
        if (named.count(c))
            out += named.at(c);
        else if (c >= 0x20 && c < 0x7F)
            out += static_cast<char>(c);
        else if (c >= 0x10000)
            out += hexUnit(0xD800 + ((c - 0x10000) >> 10), "\\u%04x") + hexUnit(0xDC00 + ((c - 0x10000) & 0x3FF), "\\u%04x");
        else
            out += hexUnit(c, "\\u%04x");
    }
    return out + "\"";
}

// ", " and ": " separators, sorted keys, data as {"$data": "<hex>"}.
std::string canonicalJson(const PropertyList& value)
{
    std::string out;
    if (const Array* elements = value.array()) {
        for (const PropertyList& element : *elements)
            out += (out.empty() ? "" : ", ") + canonicalJson(element);
        return "[" + out + "]";
    }
    if (const Dictionary* entries = value.dictionary()) {
        for (const auto& [key, element] : *entries)
            out += (out.empty() ? "" : ", ") + jsonString(key) + ": " + canonicalJson(element);
        return "{" + out + "}";
    }
    if (const Data* bytes = value.data()) {
        for (const std::uint8_t byte : *bytes)
            out += hexUnit(byte, "%02x");
        return "{\"$data\": \"" + out + "\"}";
    }
    return value.string() ? jsonString(*value.string()) : "<not a text property-list leaf>";
}

PropertyList parseOrFail(std::string_view text)
{
    std::string error;
    auto value = parseOpenStepPropertyList(text, &error);
    EXPECT_TRUE(value) << "text: " << text << "\nerror: " << error;
    return value.value_or(PropertyList("<failed>"));
}

/// The reason a refused text gives; the reader must also refuse it without an error string.
std::string parseError(std::string_view text)
{
    std::string error;
    EXPECT_FALSE(parseOpenStepPropertyList(text, &error)) << "accepted: " << text;
    EXPECT_FALSE(parseOpenStepPropertyList(text));
    return error;
}

TEST(OpenStepPropertyList, FixturesMatchTheirJsonAndSurviveTheWriter)
{
    for (const std::string name : { "line-modern-description", "line-legacy-compact", "quoting-description", "parser-stress" }) {
        const PropertyList value = parseOrFail(readFixture(name + ".txt"));
        EXPECT_EQ(canonicalJson(value), withoutFinalNewline(readFixture(name + ".json"))) << name;
        EXPECT_EQ(parseOrFail(writeOpenStepPropertyList(value)), value) << name;
    }
}

TEST(OpenStepPropertyList, BadFixturesSayWhatIsWrongAndWhere)
{
    const std::vector<std::pair<std::string, std::string>> rows = {
        { "bad-missing-semicolon.txt", "line 1: missing ';' after the dictionary entry \"dissolveEndTime\", found 'e'" },
        { "bad-junk-after.txt", "line 1: unexpected '}' after the property list" },
        { "bad-odd-hex.txt", "line 1: odd number of hexadecimal digits in data" },
        { "bad-unterminated-string.txt", "line 1: unterminated quoted string" },
        { "bad-unclosed-dict.txt", "line 2: missing '}' to close the dictionary begun on line 1" },
        { "bad-unclosed-array.txt", "line 1: expected ',' or ')' in the array begun on line 1, found ';'" },
    };
    for (const auto& [file, error] : rows)
        EXPECT_EQ(parseError(readFixture(file)), error);
}

TEST(OpenStepPropertyList, ReadsEveryNotation)
{
    const auto dict = [](const std::string& key, const char* value) { return PropertyList(Dictionary { { key, PropertyList(value) } }); };
    const std::vector<std::pair<std::string_view, PropertyList>> rows = {
        { "{ a = 1; b = 0.5; c = YES; }", PropertyList(Dictionary { { "a", PropertyList("1") }, { "b", PropertyList("0.5") }, { "c", PropertyList("YES") } }) },
        { "  \"quoted\"  ", PropertyList("quoted") },
        { "<00ff>", PropertyList(Data { 0x00, 0xff }) },
        { R"("\\ \" \n \t \r \a \b \f \v")", PropertyList("\\ \" \n \t \r \a \b \f \v") },
        { R"("\q\'\/")", PropertyList("q'/") }, { "'it\\'s'", PropertyList("it's") },
        { R"("\101\102\103")", PropertyList("ABC") }, { R"("\1011")", PropertyList("A1") }, { R"("\7x")", PropertyList("\ax") },
        { R"("\351")", PropertyList("\xC3\xA9") }, { R"("a\0b")", PropertyList(std::string("a\0b", 3)) },
        { R"("caf\U00e9")", PropertyList("caf\xC3\xA9") }, { R"("\U263A")", PropertyList("\xE2\x98\xBA") },
        { R"("\U41x")", PropertyList("Ax") }, { R"("\U00411")", PropertyList("A1") },
        { R"("\Ud83d\Ude00")", PropertyList("\xF0\x9F\x98\x80") },
        // A surrogate without its partner cannot be UTF-8 and becomes U+FFFD.
        { R"("\Ud83dx")", PropertyList("\xEF\xBF\xBDx") }, { R"("\Ude00")", PropertyList("\xEF\xBF\xBD") },
        { R"("\Ud83d\U0041")", PropertyList("\xEF\xBF\xBD" "A") },
        { "{ \"caf\xC3\xA9\" = \"\xE2\x98\xBA\"; }", dict("caf\xC3\xA9", "\xE2\x98\xBA") },
        { "\xEF\xBB\xBF{ a = b; }", dict("a", "b") },
        // Slashes inside a bare word belong to it, they do not start a comment.
        { "AZaz09_$+/:.-", PropertyList("AZaz09_$+/:.-") }, { "(a//b)", PropertyList(Array { PropertyList("a//b") }) },
        { "// head\n{ /* inner */ a /**/ = // note\n b ; } /* tail */ // end", dict("a", "b") },
        { "(a, b, )", PropertyList(Array { PropertyList("a"), PropertyList("b") }) }, { "( )", PropertyList(Array {}) },
        { "< 0F bd\n77\t7C >", PropertyList(Data { 0x0f, 0xbd, 0x77, 0x7c }) }, { "<>", PropertyList(Data {}) },
        { "{ a = 1; a = 2; }", dict("a", "2") }, { "{}", PropertyList(Dictionary {}) },
        { "\"x\ny\"", PropertyList("x\ny") },
    };
    for (const auto& [text, expected] : rows)
        EXPECT_EQ(parseOrFail(text), expected) << text;
}

TEST(OpenStepPropertyList, RefusesDamageWithTheLineOfTheFault)
{
    const std::vector<std::pair<std::string_view, std::string>> rows = {
        { R"("\Uzz")", "line 1: \\U escape without hexadecimal digits" },
        { "{\n a = \"\xC3\"; }", "line 2: the text is not valid UTF-8" },
        { "\xFF", "line 1: the text is not valid UTF-8" },
        { "\"\xC0\xAF\"", "line 1: the text is not valid UTF-8" }, // overlong '/'
        { "\"\xED\xA0\x80\"", "line 1: the text is not valid UTF-8" }, // encoded surrogate
        { "{ a = b; } /* open", "line 1: unterminated /* comment" },
        { "(a,,)", "line 1: unexpected ',' where a value was expected" },
        { "(,)", "line 1: unexpected ',' where a value was expected" },
        { "(a b)", "line 1: expected ',' or ')' in the array begun on line 1, found 'b'" },
        { "<0g>", "line 1: unexpected 'g' in data" }, { "<00", "line 1: unterminated data: missing '>'" },
        { "{ (a) = b; }", "line 1: a dictionary key must be a string" },
        { "{ a b; }", "line 1: missing '=' after the dictionary key \"a\", found 'b'" },
        { "{ a = ; }", "line 1: unexpected ';' where a value was expected" },
        { "{ a =", "line 1: unexpected end of text where a value was expected" },
        { "{\n  a = b;\n  c = d\n}", "line 4: missing ';' after the dictionary entry \"c\", found '}'" },
        // A string is reported where it opens, even when it runs over several lines.
        { "{\n a = \"x\ny\nz", "line 2: unterminated quoted string" },
        { "", "line 1: the text holds no property list" },
        { " \n// only a comment\n", "line 3: the text holds no property list" },
        { "a b", "line 1: unexpected 'b' after the property list" },
        { std::string_view("a\0", 2), "line 1: unexpected character 0x00 after the property list" },
        { "\x01", "line 1: unexpected character 0x01 where a value was expected" },
    };
    for (const auto& [text, error] : rows)
        EXPECT_EQ(parseError(text), error) << text;
}

TEST(OpenStepPropertyList, NestingIsLimitedTo512Levels)
{
    const PropertyList value = parseOrFail(std::string(512, '(') + std::string(512, ')'));
    int depth = 0;
    for (const PropertyList* level = &value; level && level->array(); ++depth)
        level = level->array()->empty() ? nullptr : &level->array()->front();
    EXPECT_EQ(depth, 512);
    EXPECT_EQ(parseError(std::string(513, '(') + std::string(513, ')')), "line 1: containers nested deeper than 512 levels");
    // Far past the limit: must fail without exhausting the stack.
    std::string deep;
    for (int i = 0; i < 200000; ++i)
        deep += "{a=";
    EXPECT_EQ(parseError(deep), "line 1: containers nested deeper than 512 levels");
}

TEST(OpenStepWriter, ReproducesTheDescriptionLayout)
{
    for (const char* name : { "line-modern-description.txt", "quoting-description.txt" }) {
        const std::string text = readFixture(name);
        EXPECT_EQ(writeOpenStepPropertyList(parseOrFail(text)), withoutFinalNewline(text)) << name;
    }
    const PropertyList nested(Dictionary {
        { "list", PropertyList(Array { PropertyList(Dictionary { { "k", PropertyList("v") } }), PropertyList(Array {}), PropertyList("x") }) },
        { "map", PropertyList(Dictionary {}) } });
    EXPECT_EQ(writeOpenStepPropertyList(nested),
        "{\n    list =     (\n                {\n            k = v;\n        },\n                (\n        ),\n        x\n    );\n"
        "    map =     {\n    };\n}");
}

TEST(OpenStepWriter, QuotesEscapesAndWritesNumbersAsText)
{
    const std::vector<std::pair<PropertyList, std::string>> rows = {
        { PropertyList("abcXYZ019"), "abcXYZ019" }, { PropertyList("0.5"), "\"0.5\"" }, { PropertyList("a_b"), "\"a_b\"" },
        { PropertyList("a/b"), "\"a/b\"" }, { PropertyList("a-b"), "\"a-b\"" }, { PropertyList("a b"), "\"a b\"" },
        { PropertyList("a$b"), "\"a$b\"" }, { PropertyList(""), "\"\"" },
        { PropertyList("\"\\\n\t\r\a\b\f\v'"), R"("\"\\\n\t\r\a\b\f\v'")" },
        { PropertyList(std::string("\x01\x7f\0", 3)), R"("\U0001\U007f\U0000")" },
        { PropertyList("caf\xC3\xA9"), R"("caf\U00e9")" }, { PropertyList("\xF0\x9F\x98\x80"), R"("\Ud83d\Ude00")" },
        // Bytes that are not UTF-8 cannot be told apart from anything; they become U+FFFD.
        { PropertyList("a\xFF"), R"("a\Ufffd")" },
        { PropertyList(2), "2" }, { PropertyList(-2), "\"-2\"" }, { PropertyList(0.5), "\"0.5\"" }, { PropertyList(1.0), "1" },
        { PropertyList(0.1), "\"0.1\"" }, { PropertyList(true), "1" }, { PropertyList(false), "0" },
        { PropertyList(Data { 0x0f, 0xbd, 0x77, 0x7c, 0x1c }), "<0fbd777c 1c>" }, { PropertyList(Data {}), "<>" },
    };
    for (const auto& [value, text] : rows)
        EXPECT_EQ(writeOpenStepPropertyList(value), text);
    EXPECT_EQ(parseOrFail(writeOpenStepPropertyList(PropertyList(1.0 / 3.0))).doubleValue(), 1.0 / 3.0);
}

PropertyList randomString(std::mt19937& random)
{
    static const std::vector<std::string> pieces = { "a", "Z", "9", " ", "_", "\"", "\\", "'", "\n", "\t",
        "\x01", "/", "*", "//", "/*", ";", "=", "(", "{", "<", "\xC3\xA9", "\xE2\x98\xBA", "\xF0\x9F\x98\x80",
        std::string(1, '\0') };
    std::string text;
    for (unsigned i = random() % 6; i > 0; --i)
        text += pieces[random() % pieces.size()];
    return PropertyList(std::move(text));
}

/// A string, data, array or dictionary; containers hold up to three values, five levels deep.
PropertyList randomValue(std::mt19937& random, int depth)
{
    const unsigned kind = depth > 4 ? 0 : random() % 4;
    const unsigned count = kind == 1 ? random() % 7 : random() % 4;
    Data data;
    Array elements;
    Dictionary entries;
    for (unsigned i = 0; i < count; ++i) {
        if (kind == 1)
            data.push_back(static_cast<std::uint8_t>(random()));
        else if (kind == 2)
            elements.push_back(randomValue(random, depth + 1));
        else if (kind == 3)
            entries[*randomString(random).string()] = randomValue(random, depth + 1);
    }
    return kind == 0 ? randomString(random) : kind == 1 ? PropertyList(data) : kind == 2 ? PropertyList(elements) : PropertyList(entries);
}

TEST(OpenStepWriter, RandomValuesRoundTrip)
{
    std::mt19937 random(20240601);
    for (int i = 0; i < 500; ++i) {
        const PropertyList value = randomValue(random, 0);
        const std::string text = writeOpenStepPropertyList(value);
        ASSERT_EQ(parseOrFail(text), value) << text;
    }
}

} // namespace
} // namespace plyra
