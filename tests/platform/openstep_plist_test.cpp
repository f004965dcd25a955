// SPDX-License-Identifier: MIT
#include "platform/plist/openstep_plist.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <random>
#include <sstream>

namespace plyra {
namespace {

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

void appendJsonCodeUnit(std::string& out, unsigned unit)
{
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "\\u%04x", unit);
    out += buffer;
}

// Decodes well-formed UTF-8 (the parser guarantees it) for the \u escapes below.
char32_t nextCodePoint(const std::string& text, std::size_t& pos)
{
    const auto lead = static_cast<unsigned char>(text[pos]);
    const int length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    char32_t c = length == 1 ? lead : lead & (0x3F >> (length - 1));
    for (int i = 1; i < length; ++i)
        c = (c << 6) | (static_cast<unsigned char>(text[pos + static_cast<std::size_t>(i)]) & 0x3F);
    pos += static_cast<std::size_t>(length);
    return c;
}

// The canonical JSON of the fixtures: ASCII only, ", " and ": " separators, sorted keys,
// data as {"$data": "<hex>"}.
std::string jsonString(const std::string& text)
{
    std::string out = "\"";
    for (std::size_t pos = 0; pos < text.size();) {
        const char32_t c = nextCodePoint(text, pos);
        switch (c) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        case '\b': out += "\\b"; break;
        case '\f': out += "\\f"; break;
        default:
            if (c >= 0x20 && c < 0x7F) {
                out += static_cast<char>(c);
            } else if (c >= 0x10000) {
                appendJsonCodeUnit(out, 0xD800 + ((c - 0x10000) >> 10));
                appendJsonCodeUnit(out, 0xDC00 + ((c - 0x10000) & 0x3FF));
            } else {
                appendJsonCodeUnit(out, c);
            }
        }
    }
    return out + "\"";
}

std::string canonicalJson(const PropertyList& value)
{
    switch (value.type()) {
    case PropertyList::Type::Array: {
        std::string out = "[";
        for (const PropertyList& element : *value.array())
            out += (out.size() > 1 ? ", " : "") + canonicalJson(element);
        return out + "]";
    }
    case PropertyList::Type::Dictionary: {
        std::string out = "{";
        for (const auto& [key, element] : *value.dictionary())
            out += (out.size() > 1 ? ", " : "") + jsonString(key) + ": " + canonicalJson(element);
        return out + "}";
    }
    case PropertyList::Type::Data: {
        std::string hex;
        char buffer[4];
        for (const std::uint8_t byte : *value.data()) {
            std::snprintf(buffer, sizeof buffer, "%02x", byte);
            hex += buffer;
        }
        return "{\"$data\": \"" + hex + "\"}";
    }
    case PropertyList::Type::String:
        return jsonString(*value.string());
    default:
        return "<not a text property-list leaf>";
    }
}

PropertyList parseOrFail(std::string_view text)
{
    std::string error;
    auto value = parseOpenStepPropertyList(text, &error);
    EXPECT_TRUE(value) << "text: " << text << "\nerror: " << error;
    return value.value_or(PropertyList("<failed>"));
}

std::string parseError(std::string_view text)
{
    std::string error;
    const auto value = parseOpenStepPropertyList(text, &error);
    EXPECT_FALSE(value) << "accepted: " << text;
    EXPECT_FALSE(error.empty());
    return error;
}

std::string fixtureTestName(const testing::TestParamInfo<std::string>& info)
{
    std::string name = info.param.substr(0, info.param.find('.'));
    for (char& c : name)
        c = c == '-' ? '_' : c;
    return name;
}

PropertyList dict(PropertyList::Dictionary entries)
{
    return PropertyList(std::move(entries));
}

PropertyList array(PropertyList::Array elements)
{
    return PropertyList(std::move(elements));
}

// ---- Fixtures -------------------------------------------------------------------------

class OpenStepFixture : public testing::TestWithParam<std::string> { };

TEST_P(OpenStepFixture, MatchesExpectedJson)
{
    const std::string name = GetParam();
    const PropertyList value = parseOrFail(readFixture(name + ".txt"));
    EXPECT_EQ(canonicalJson(value), withoutFinalNewline(readFixture(name + ".json")));
}

TEST_P(OpenStepFixture, WriterOutputParsesBackToTheSameValue)
{
    const PropertyList value = parseOrFail(readFixture(GetParam() + ".txt"));
    EXPECT_EQ(parseOrFail(writeOpenStepPropertyList(value)), value);
}

INSTANTIATE_TEST_SUITE_P(OpenStepPropertyList, OpenStepFixture,
    testing::Values("line-modern-description", "line-legacy-compact", "quoting-description", "parser-stress"),
    fixtureTestName);

class OpenStepBadFixture : public testing::TestWithParam<std::string> { };

TEST_P(OpenStepBadFixture, IsRejectedWithLineNumber)
{
    const std::string error = parseError(readFixture(GetParam()));
    EXPECT_THAT(error, testing::MatchesRegex("line [0-9]+: .+"));
}

INSTANTIATE_TEST_SUITE_P(OpenStepPropertyList, OpenStepBadFixture,
    testing::Values("bad-junk-after.txt", "bad-missing-semicolon.txt", "bad-odd-hex.txt",
        "bad-unclosed-array.txt", "bad-unclosed-dict.txt", "bad-unterminated-string.txt"),
    fixtureTestName);

TEST(OpenStepPropertyList, BadFixturesSayWhatIsWrong)
{
    EXPECT_EQ(parseError(readFixture("bad-missing-semicolon.txt")),
        "line 1: missing ';' after the dictionary entry \"dissolveEndTime\", found 'e'");
    EXPECT_EQ(parseError(readFixture("bad-junk-after.txt")), "line 1: unexpected '}' after the property list");
    EXPECT_EQ(parseError(readFixture("bad-odd-hex.txt")), "line 1: odd number of hexadecimal digits in data");
    EXPECT_EQ(parseError(readFixture("bad-unterminated-string.txt")), "line 1: unterminated quoted string");
    EXPECT_EQ(parseError(readFixture("bad-unclosed-dict.txt")),
        "line 2: missing '}' to close the dictionary begun on line 1");
    EXPECT_EQ(parseError(readFixture("bad-unclosed-array.txt")),
        "line 1: expected ',' or ')' in the array begun on line 1, found ';'");
}

// ---- Reader ---------------------------------------------------------------------------

TEST(OpenStepPropertyList, EveryLeafIsAString)
{
    EXPECT_EQ(parseOrFail("{ a = 1; b = 0.5; c = YES; }"),
        dict({ { "a", PropertyList("1") }, { "b", PropertyList("0.5") }, { "c", PropertyList("YES") } }));
}

TEST(OpenStepPropertyList, RootMayBeAnyValue)
{
    EXPECT_EQ(parseOrFail("word"), PropertyList("word"));
    EXPECT_EQ(parseOrFail("  \"quoted\"  "), PropertyList("quoted"));
    EXPECT_EQ(parseOrFail("(a)"), array({ PropertyList("a") }));
    EXPECT_EQ(parseOrFail("<00ff>"), PropertyList(PropertyList::Data { 0x00, 0xff }));
}

TEST(OpenStepPropertyList, SimpleEscapes)
{
    EXPECT_EQ(parseOrFail(R"("\\ \" \n \t \r \a \b \f \v")"), PropertyList("\\ \" \n \t \r \a \b \f \v"));
}

TEST(OpenStepPropertyList, UnknownEscapeStandsForItself)
{
    EXPECT_EQ(parseOrFail(R"("\q\'\/")"), PropertyList("q'/"));
    EXPECT_EQ(parseOrFail("'it\\'s'"), PropertyList("it's"));
}

TEST(OpenStepPropertyList, OctalEscapes)
{
    EXPECT_EQ(parseOrFail(R"("\101\102\103")"), PropertyList("ABC"));
    EXPECT_EQ(parseOrFail(R"("\1011")"), PropertyList("A1")); // three digits at most
    EXPECT_EQ(parseOrFail(R"("\7x")"), PropertyList("\ax"));
    EXPECT_EQ(parseOrFail(R"("\351")"), PropertyList("\xC3\xA9")); // U+00E9
    EXPECT_EQ(parseOrFail(R"("a\0b")"), PropertyList(std::string("a\0b", 3)));
}

TEST(OpenStepPropertyList, UnicodeEscapes)
{
    EXPECT_EQ(parseOrFail(R"("caf\U00e9")"), PropertyList("caf\xC3\xA9"));
    EXPECT_EQ(parseOrFail(R"("\U263A")"), PropertyList("\xE2\x98\xBA"));
    EXPECT_EQ(parseOrFail(R"("\U41x")"), PropertyList("Ax")); // fewer than four digits
    EXPECT_EQ(parseOrFail(R"("\U00411")"), PropertyList("A1")); // four digits at most
}

TEST(OpenStepPropertyList, SurrogatePairsCombine)
{
    EXPECT_EQ(parseOrFail(R"("\Ud83d\Ude00")"), PropertyList("\xF0\x9F\x98\x80"));
    // A surrogate without its partner cannot be UTF-8 and becomes U+FFFD.
    EXPECT_EQ(parseOrFail(R"("\Ud83dx")"), PropertyList("\xEF\xBF\xBDx"));
    EXPECT_EQ(parseOrFail(R"("\Ude00")"), PropertyList("\xEF\xBF\xBD"));
    EXPECT_EQ(parseOrFail(R"("\Ud83d\U0041")"), PropertyList("\xEF\xBF\xBD" "A"));
}

TEST(OpenStepPropertyList, UnicodeEscapeNeedsDigits)
{
    EXPECT_EQ(parseError(R"("\Uzz")"), "line 1: \\U escape without hexadecimal digits");
}

TEST(OpenStepPropertyList, RawUtf8PassesThrough)
{
    EXPECT_EQ(parseOrFail("{ \"caf\xC3\xA9\" = \"\xE2\x98\xBA\"; }"),
        dict({ { "caf\xC3\xA9", PropertyList("\xE2\x98\xBA") } }));
}

TEST(OpenStepPropertyList, InvalidUtf8IsRejected)
{
    EXPECT_EQ(parseError("{\n a = \"\xC3\"; }"), "line 2: the text is not valid UTF-8");
    parseError("\xFF");
    parseError("\"\xC0\xAF\""); // overlong '/'
    parseError("\"\xED\xA0\x80\""); // encoded surrogate
}

TEST(OpenStepPropertyList, ByteOrderMarkIsSkipped)
{
    EXPECT_EQ(parseOrFail("\xEF\xBB\xBF{ a = b; }"), dict({ { "a", PropertyList("b") } }));
}

TEST(OpenStepPropertyList, UnquotedCharacters)
{
    EXPECT_EQ(parseOrFail("AZaz09_$+/:.-"), PropertyList("AZaz09_$+/:.-"));
    // Slashes inside a bare word belong to it, they do not start a comment.
    EXPECT_EQ(parseOrFail("(a//b)"), array({ PropertyList("a//b") }));
}

TEST(OpenStepPropertyList, CommentsAreBlanks)
{
    EXPECT_EQ(parseOrFail("// head\n{ /* inner */ a /**/ = // note\n b ; } /* tail */ // end"),
        dict({ { "a", PropertyList("b") } }));
    EXPECT_EQ(parseError("{ a = b; } /* open"), "line 1: unterminated /* comment");
}

TEST(OpenStepPropertyList, ArraysAllowOneTrailingComma)
{
    EXPECT_EQ(parseOrFail("(a, b, )"), array({ PropertyList("a"), PropertyList("b") }));
    EXPECT_EQ(parseOrFail("( )"), array({}));
    EXPECT_EQ(parseError("(a,,)"), "line 1: unexpected ',' where a value was expected");
    EXPECT_EQ(parseError("(,)"), "line 1: unexpected ',' where a value was expected");
    EXPECT_EQ(parseError("(a b)"), "line 1: expected ',' or ')' in the array begun on line 1, found 'b'");
}

TEST(OpenStepPropertyList, DataAllowsBlanksAndBothCases)
{
    EXPECT_EQ(parseOrFail("< 0F bd\n77\t7C >"), PropertyList(PropertyList::Data { 0x0f, 0xbd, 0x77, 0x7c }));
    EXPECT_EQ(parseOrFail("<>"), PropertyList(PropertyList::Data {}));
    EXPECT_EQ(parseError("<0g>"), "line 1: unexpected 'g' in data");
    EXPECT_EQ(parseError("<00"), "line 1: unterminated data: missing '>'");
}

TEST(OpenStepPropertyList, DictionaryRules)
{
    EXPECT_EQ(parseOrFail("{ a = 1; a = 2; }"), dict({ { "a", PropertyList("2") } }));
    EXPECT_EQ(parseOrFail("{}"), dict({}));
    EXPECT_EQ(parseError("{ (a) = b; }"), "line 1: a dictionary key must be a string");
    EXPECT_EQ(parseError("{ a b; }"), "line 1: missing '=' after the dictionary key \"a\", found 'b'");
    EXPECT_EQ(parseError("{ a = b }"), "line 1: missing ';' after the dictionary entry \"a\", found '}'");
    EXPECT_EQ(parseError("{ a = ; }"), "line 1: unexpected ';' where a value was expected");
    EXPECT_EQ(parseError("{ a ="), "line 1: unexpected end of text where a value was expected");
}

TEST(OpenStepPropertyList, ErrorsGiveTheLineOfTheFault)
{
    EXPECT_EQ(parseError("{\n  a = b;\n  c = d\n}"), "line 4: missing ';' after the dictionary entry \"c\", found '}'");
    // A string is reported where it opens, even when it runs over several lines.
    EXPECT_EQ(parseError("{\n a = \"x\ny\nz"), "line 2: unterminated quoted string");
    EXPECT_EQ(parseOrFail("\"x\ny\"").string()->size(), 3u);
}

TEST(OpenStepPropertyList, EmptyAndJunkInputs)
{
    EXPECT_EQ(parseError(""), "line 1: the text holds no property list");
    EXPECT_EQ(parseError(" \n// only a comment\n"), "line 3: the text holds no property list");
    EXPECT_EQ(parseError("a b"), "line 1: unexpected 'b' after the property list");
    EXPECT_EQ(parseError(";"), "line 1: unexpected ';' where a value was expected");
    EXPECT_EQ(parseError(std::string_view("a\0", 2)), "line 1: unexpected character 0x00 after the property list");
    EXPECT_EQ(parseError("\x01"), "line 1: unexpected character 0x01 where a value was expected");
}

TEST(OpenStepPropertyList, ErrorArgumentIsOptional)
{
    EXPECT_FALSE(parseOpenStepPropertyList("{"));
    EXPECT_TRUE(parseOpenStepPropertyList("{}"));
}

TEST(OpenStepPropertyList, NestingUpToTheLimitIsAccepted)
{
    const std::string text = std::string(512, '(') + std::string(512, ')');
    const PropertyList value = parseOrFail(text);
    int depth = 0;
    const PropertyList* level = &value;
    while (level && level->array()) {
        ++depth;
        level = level->array()->empty() ? nullptr : &level->array()->front();
    }
    EXPECT_EQ(depth, 512);
}

TEST(OpenStepPropertyList, DeeperNestingFailsCleanly)
{
    EXPECT_EQ(parseError(std::string(513, '(') + std::string(513, ')')),
        "line 1: containers nested deeper than 512 levels");
    // Far past the limit: must fail without exhausting the stack.
    std::string deep;
    for (int i = 0; i < 200000; ++i)
        deep += "{a=";
    EXPECT_EQ(parseError(deep), "line 1: containers nested deeper than 512 levels");
}

// ---- Writer ---------------------------------------------------------------------------

TEST(OpenStepWriter, ReproducesTheDescriptionLayout)
{
    for (const char* name : { "line-modern-description.txt", "quoting-description.txt" }) {
        const std::string text = readFixture(name);
        EXPECT_EQ(writeOpenStepPropertyList(parseOrFail(text)), withoutFinalNewline(text)) << name;
    }
}

TEST(OpenStepWriter, QuotesAllButLettersAndDigits)
{
    EXPECT_EQ(writeOpenStepPropertyList(PropertyList("abcXYZ019")), "abcXYZ019");
    for (const char* text : { "0.5", "a_b", "a/b", "a-b", "a b", "a$b", "" })
        EXPECT_EQ(writeOpenStepPropertyList(PropertyList(text)), std::string("\"") + text + "\"") << text;
}

TEST(OpenStepWriter, EscapesInsideQuotes)
{
    EXPECT_EQ(writeOpenStepPropertyList(PropertyList("\"\\\n\t\r\a\b\f\v'")), R"("\"\\\n\t\r\a\b\f\v'")");
    EXPECT_EQ(writeOpenStepPropertyList(PropertyList(std::string("\x01\x7f\0", 3))), R"("\U0001\U007f\U0000")");
    EXPECT_EQ(writeOpenStepPropertyList(PropertyList("caf\xC3\xA9")), R"("caf\U00e9")");
    EXPECT_EQ(writeOpenStepPropertyList(PropertyList("\xF0\x9F\x98\x80")), R"("\Ud83d\Ude00")");
    // Bytes that are not UTF-8 cannot be told apart from anything; they become U+FFFD.
    EXPECT_EQ(writeOpenStepPropertyList(PropertyList("a\xFF")), R"("a\Ufffd")");
}

TEST(OpenStepWriter, NumbersAndBooleansAsText)
{
    EXPECT_EQ(writeOpenStepPropertyList(PropertyList(2)), "2");
    EXPECT_EQ(writeOpenStepPropertyList(PropertyList(-2)), "\"-2\"");
    EXPECT_EQ(writeOpenStepPropertyList(PropertyList(0.5)), "\"0.5\"");
    EXPECT_EQ(writeOpenStepPropertyList(PropertyList(1.0)), "1");
    EXPECT_EQ(writeOpenStepPropertyList(PropertyList(0.1)), "\"0.1\"");
    EXPECT_EQ(writeOpenStepPropertyList(PropertyList(true)), "1");
    EXPECT_EQ(writeOpenStepPropertyList(PropertyList(false)), "0");
    const double third = 1.0 / 3.0;
    EXPECT_EQ(parseOrFail(writeOpenStepPropertyList(PropertyList(third))).doubleValue(), third);
}

TEST(OpenStepWriter, DataInGroupsOfFourBytes)
{
    EXPECT_EQ(writeOpenStepPropertyList(PropertyList(PropertyList::Data { 0x0f, 0xbd, 0x77, 0x7c, 0x1c })), "<0fbd777c 1c>");
    EXPECT_EQ(writeOpenStepPropertyList(PropertyList(PropertyList::Data {})), "<>");
}

TEST(OpenStepWriter, NestedContainersIndentLikeADescription)
{
    const PropertyList value = dict({
        { "list", array({ dict({ { "k", PropertyList("v") } }), array({}), PropertyList("x") }) },
        { "map", dict({}) },
    });
    EXPECT_EQ(writeOpenStepPropertyList(value),
        "{\n"
        "    list =     (\n"
        "                {\n"
        "            k = v;\n"
        "        },\n"
        "                (\n"
        "        ),\n"
        "        x\n"
        "    );\n"
        "    map =     {\n"
        "    };\n"
        "}");
    EXPECT_EQ(parseOrFail(writeOpenStepPropertyList(value)), value);
}

PropertyList randomString(std::mt19937& random)
{
    static const std::vector<std::string> pieces = { "a", "Z", "9", " ", "_", "\"", "\\", "'", "\n", "\t",
        "\x01", "/", "*", "//", "/*", ";", "=", "(", "{", "<", "\xC3\xA9", "\xE2\x98\xBA", "\xF0\x9F\x98\x80",
        std::string(1, '\0') };
    std::string text;
    const int length = static_cast<int>(random() % 6);
    for (int i = 0; i < length; ++i)
        text += pieces[random() % pieces.size()];
    return PropertyList(std::move(text));
}

PropertyList randomValue(std::mt19937& random, int depth)
{
    const unsigned kind = depth > 4 ? 0 : random() % 4;
    if (kind == 0)
        return randomString(random);
    if (kind == 1) {
        PropertyList::Data data(random() % 7);
        for (auto& byte : data)
            byte = static_cast<std::uint8_t>(random());
        return PropertyList(std::move(data));
    }
    const int count = static_cast<int>(random() % 4);
    if (kind == 2) {
        PropertyList::Array elements;
        for (int i = 0; i < count; ++i)
            elements.push_back(randomValue(random, depth + 1));
        return PropertyList(std::move(elements));
    }
    PropertyList::Dictionary entries;
    for (int i = 0; i < count; ++i)
        entries[*randomString(random).string()] = randomValue(random, depth + 1);
    return PropertyList(std::move(entries));
}

TEST(OpenStepWriter, RandomValuesRoundTrip)
{
    std::mt19937 random(20240601);
    for (int i = 0; i < 500; ++i) {
        const PropertyList value = randomValue(random, 0);
        const std::string text = writeOpenStepPropertyList(value);
        std::string error;
        const auto back = parseOpenStepPropertyList(text, &error);
        ASSERT_TRUE(back) << text << "\n" << error;
        ASSERT_EQ(*back, value) << text;
    }
}

} // namespace
} // namespace plyra
