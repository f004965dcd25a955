// SPDX-License-Identifier: MIT
#include "platform/plist/xml_plist.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>

namespace plyra {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;
using Array = PropertyList::Array;
using Data = PropertyList::Data;
using Dictionary = PropertyList::Dictionary;

// Written by another property-list implementation: blob = <0001feff>, count = 42, empty = {}, flag = true,
// list = (a, 1, ()), name = "café <&>", neg = -7, off = false, ratio = 0.25, when = 2001-01-01 00:01:40.
const Bytes binarySample = {
    0x62, 0x70, 0x6c, 0x69, 0x73, 0x74, 0x30, 0x30, 0xda, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0a, 0x0b, 0x0c, 0x0d, 0x0e, 0x0f,
    0x13, 0x14, 0x15, 0x16, 0x17, 0x54, 0x62, 0x6c, 0x6f, 0x62, 0x55, 0x63, 0x6f, 0x75, 0x6e, 0x74, 0x55, 0x65, 0x6d, 0x70, 0x74, 0x79, 0x54, 0x66,
    0x6c, 0x61, 0x67, 0x54, 0x6c, 0x69, 0x73, 0x74, 0x54, 0x6e, 0x61, 0x6d, 0x65, 0x53, 0x6e, 0x65, 0x67, 0x53, 0x6f, 0x66, 0x66, 0x55, 0x72, 0x61,
    0x74, 0x69, 0x6f, 0x54, 0x77, 0x68, 0x65, 0x6e, 0x44, 0x00, 0x01, 0xfe, 0xff, 0x10, 0x2a, 0xd0, 0x09, 0xa3, 0x10, 0x11, 0x12, 0x51, 0x61, 0x10,
    0x01, 0xa0, 0x68, 0x00, 0x63, 0x00, 0x61, 0x00, 0x66, 0x00, 0xe9, 0x00, 0x20, 0x00, 0x3c, 0x00, 0x26, 0x00, 0x3e, 0x13, 0xff, 0xff, 0xff, 0xff,
    0xff, 0xff, 0xff, 0xf9, 0x08, 0x23, 0x3f, 0xd0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x33, 0x40, 0x59, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x08,
    0x1d, 0x22, 0x28, 0x2e, 0x33, 0x38, 0x3d, 0x41, 0x45, 0x4b, 0x50, 0x55, 0x57, 0x58, 0x59, 0x5d, 0x5f, 0x61, 0x62, 0x73, 0x7c, 0x7d, 0x86, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x18, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x8f,
};

Bytes bytesOf(std::string_view text) { return Bytes(text.begin(), text.end()); }

PropertyList parseOrFail(const Bytes& bytes)
{
    std::string error;
    auto value = parsePropertyListData(bytes, &error);
    EXPECT_TRUE(value) << error;
    return value.value_or(PropertyList("<failed>"));
}

/// The reason a refused input gives; the reader must also refuse it without an error string.
std::string parseError(const Bytes& bytes)
{
    std::string error;
    EXPECT_FALSE(parsePropertyListData(bytes, &error));
    EXPECT_FALSE(parsePropertyListData(bytes));
    EXPECT_FALSE(error.empty());
    return error;
}

Bytes xmlDocument(std::string_view body)
{
    return bytesOf("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n" + std::string(body)
        + "\n</plist>\n");
}

std::string repeated(std::string_view piece, int count)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += piece;
    return text;
}

TEST(XmlPropertyList, EveryTypeRoundTrips)
{
    Data all(256);
    for (std::size_t i = 0; i < all.size(); ++i)
        all[i] = static_cast<std::uint8_t>(i);
    std::vector<PropertyList> values = { PropertyList(true), PropertyList(false), PropertyList(Data {}), PropertyList(all),
        PropertyList(Dictionary { { "morphLines", PropertyList(Array { PropertyList(Dictionary { { "k", PropertyList(0.5) } }) }) },
            { "empty array", PropertyList(Array {}) }, { "empty dict", PropertyList(Dictionary {}) },
            { "<&> key", PropertyList(true) }, { "", PropertyList("empty key") } }) };
    for (const char* text : { "", "plain", "<tag> & \"quotes\" 'apostrophe'", "caf\xC3\xA9 \xE2\x98\xBA \xF0\x9F\x98\x80",
             "line 1\nline 2\ttab", "  leading and trailing  ", "]]>" })
        values.emplace_back(text);
    for (const std::int64_t i : { std::int64_t { 0 }, std::int64_t { -123456789012 }, std::numeric_limits<std::int64_t>::max(),
             std::numeric_limits<std::int64_t>::min() })
        values.emplace_back(i);
    for (const double d : { 0.0, 0.5, -2.25, 0.1, 1.0 / 3.0, 640.7, 1e300, -1e-300, 5e-324,
             std::numeric_limits<double>::max(), std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity() })
        values.emplace_back(d);
    for (const PropertyList& value : values)
        EXPECT_EQ(parseOrFail(bytesOf(writeXmlPropertyList(value))), value) << writeXmlPropertyList(value);
    EXPECT_TRUE(std::isnan(parseOrFail(bytesOf(writeXmlPropertyList(PropertyList(std::nan(""))))).doubleValue()));
}

TEST(XmlPropertyList, ReadsHandWrittenXmlAndBinary)
{
    const Dictionary expected = {
        { "blob", PropertyList(Data { 0x00, 0x01, 0xfe, 0xff }) }, { "count", PropertyList(42) },
        { "empty", PropertyList(Dictionary {}) }, { "flag", PropertyList(true) },
        { "list", PropertyList(Array { PropertyList("a"), PropertyList(1), PropertyList(Array {}) }) },
        { "name", PropertyList("caf\xC3\xA9 <&>") }, { "neg", PropertyList(-7) }, { "off", PropertyList(false) },
        { "ratio", PropertyList(0.25) }, { "when", PropertyList(100.0) } };
    EXPECT_EQ(parseOrFail(binarySample), PropertyList(expected));
    // A date reads as seconds since 2001-01-01 00:00 UTC.
    EXPECT_EQ(parseOrFail(xmlDocument("<dict><key>blob</key><data>AAH+/w==</data><key>count</key><integer>42</integer>"
                                      "<key>empty</key><dict/><key>flag</key><true/><key>list</key><array><string>a</string>"
                                      "<integer>1</integer><array/></array><key>name</key><string>caf\xC3\xA9 &lt;&amp;&gt;</string>"
                                      "<key>neg</key><integer>-7</integer><key>off</key><false/><key>ratio</key><real>0.25</real>"
                                      "<key>when</key><date>2001-01-01T00:01:40Z</date></dict>")),
        PropertyList(expected));
    EXPECT_EQ(parseOrFail(xmlDocument("<string>just text</string>")), PropertyList("just text"));
}

TEST(XmlPropertyList, DamagedInputIsRefusedWithItsReason)
{
    const std::string xml = writeXmlPropertyList(PropertyList(Dictionary {
        { "a", PropertyList(Array { PropertyList("x"), PropertyList(1) }) } }));
    const auto cutXml = [&](std::size_t length) { return bytesOf(std::string_view(xml).substr(0, length)); };
    const auto cutBinary = [](std::size_t length) { return Bytes(binarySample.begin(), binarySample.begin() + static_cast<std::ptrdiff_t>(length)); };
    const std::string deep = "containers nested deeper than 512 levels";
    // An empty reason only asks that there is one.
    const std::string shortBinary = "the binary property list is too short", trailer = "the binary property list's trailer is damaged";
    const std::vector<std::pair<Bytes, std::string>> rows = {
        { {}, "the property list is empty" }, { cutXml(6), "" }, { cutXml(60), "" }, { cutXml(xml.find("<array>") + 3), "" },
        { cutXml(xml.find("</array>")), "" }, { xmlDocument("<unknown>1</unknown>"), "" },
        { xmlDocument("<dict><key>a</key><integer>1</dict>"), "the XML property list is damaged or incomplete" },
        { xmlDocument("<array><string>x</array>"), "" }, { bytesOf("<?xml version=\"1.0\"?>"), "" }, { bytesOf("<plist>"), "" },
        { xmlDocument(std::string("<string>a\0b</string>", 20)), "the XML property list contains a NUL byte" },
        { cutBinary(6), shortBinary }, { cutBinary(40), shortBinary }, { cutBinary(120), trailer },
        { cutBinary(binarySample.size() - 1), trailer },
        { { 0x00, 0x01, 0x02, 0xff }, "" }, { bytesOf("{{{{"), "" }, { bytesOf("\x89PNG\r\n\x1a\n"), "" },
        { bytesOf("{ a = b }"), "line 1: missing ';' after the dictionary entry \"a\", found '}'" },
        { xmlDocument(repeated("<array>", 600) + repeated("</array>", 600)), deep },
        // Deep enough to exhaust the stack of a recursive reader.
        { xmlDocument(repeated("<dict><key>k</key>", 300000)), deep },
    };
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const std::string error = parseError(rows[i].first);
        EXPECT_EQ(rows[i].second.empty() ? "" : error, rows[i].second) << "row " << i;
    }
}

/// Assembles a binary property list from encoded objects whose references have referenceSize bytes.
Bytes bplist(const std::vector<Bytes>& objects, std::uint64_t root = 0, unsigned offsetSize = 1, unsigned referenceSize = 1)
{
    Bytes out = bytesOf("bplist00");
    std::vector<std::size_t> offsets;
    for (const Bytes& object : objects) {
        offsets.push_back(out.size());
        out.insert(out.end(), object.begin(), object.end());
    }
    const std::uint64_t table = out.size();
    for (const std::size_t offset : offsets)
        for (unsigned i = offsetSize; i-- > 0;)
            out.push_back(static_cast<std::uint8_t>(offset >> (8 * i)));
    out.insert(out.end(), 6, 0);
    out.push_back(static_cast<std::uint8_t>(offsetSize));
    out.push_back(static_cast<std::uint8_t>(referenceSize));
    for (const std::uint64_t field : { static_cast<std::uint64_t>(objects.size()), root, table })
        for (int i = 7; i >= 0; --i)
            out.push_back(static_cast<std::uint8_t>(field >> (8 * i)));
    return out;
}

Bytes ascii(std::string_view text)
{
    Bytes object { static_cast<std::uint8_t>(0x50 | text.size()) };
    object.insert(object.end(), text.begin(), text.end());
    return object;
}

TEST(BinaryPropertyList, DamagedStructureIsRefusedWithItsReason)
{
    const std::string pastEnd = "an object in the binary property list runs past the end of the objects";
    const auto patched = [](Bytes bytes, std::size_t at, std::uint8_t value) { bytes[at] = value; return bytes; };
    std::vector<Bytes> sharing; // forty arrays, each holding the next one twice: 2^40 values if expanded
    for (std::uint8_t i = 0; i < 40; ++i)
        sharing.push_back({ 0xa2, static_cast<std::uint8_t>(i + 1), static_cast<std::uint8_t>(i + 1) });
    sharing.push_back(ascii("x"));
    std::vector<Bytes> nested;
    for (unsigned i = 0; i < 600; ++i)
        nested.push_back({ 0xa1, static_cast<std::uint8_t>((i + 1) >> 8), static_cast<std::uint8_t>(i + 1) });
    nested.push_back({ 0xa0 });
    const std::vector<std::pair<Bytes, std::string>> rows = {
        { bplist({ { 0x15, 0 } }), "damaged integer in the binary property list" }, { bplist({ { 0x13, 0, 0 } }), pastEnd },
        { bplist({ { 0x21, 0, 0 } }), "damaged real number in the binary property list" },
        { bplist({ { 0x32, 0, 0, 0, 0 } }), "damaged date in the binary property list" }, { bplist({ { 0x65, 0x00, 0x41 } }), pastEnd },
        { bplist({ { 0x4f, 0x50, 0x02 } }), "damaged length in the binary property list" },
        { bplist({ { 0x4f, 0x13, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff } }), pastEnd },
        { bplist({ { 0xd1, 1, 2 }, { 0x10, 1 }, ascii("v") }), "a dictionary key in the binary property list is not a string" },
        { bplist({ { 0xa1, 9 } }), "an object reference in the binary property list points past its objects" },
        { bplist({ { 0x00 } }), "unsupported value (marker 0x00)" }, { bplist({ { 0x70 } }), "unsupported value (marker 0x70)" },
        { bplist({ ascii("a") }, 1), "the binary property list's offset table is damaged" },
        { patched(bplist({ ascii("a") }), 7, '1'), "unsupported binary property list version" },
        { patched(bplist({ ascii("a") }), 10, 0xf0), "an object offset in the binary property list points outside its objects" },
        { bplist({ { 0xa1, 0 } }), "the binary property list contains itself" },
        { bplist({ { 0xd1, 1, 2 }, ascii("k"), { 0xa1, 0 } }), "the binary property list contains itself" },
        { bplist(sharing), "the binary property list shares its values too often to be expanded" },
        { bplist(nested, 0, 2, 2), "containers nested deeper than 512 levels" },
    };
    for (std::size_t i = 0; i < rows.size(); ++i)
        EXPECT_EQ(parseError(rows[i].first), rows[i].second) << "row " << i;
}

TEST(XmlPropertyListFile, ReplacesAnExistingFileReadablyOrNamesTheFileAndReason)
{
    const fs::path dir = fs::path(PLYRA_BINARY_DIR) / "test-output" / "xml_plist-file"; // tests run in parallel processes
    fs::remove_all(dir);
    fs::create_directories(dir);
    const auto path = [&dir](const char* name) { return (dir / name).string(); };
    const PropertyList value(Dictionary { { "firstImagePath", PropertyList("Image_0.tiff") }, { "frameHeight", PropertyList(480.0) } });
    std::string error;
    ASSERT_TRUE(writeXmlPropertyListFile(PropertyList("old"), path("info.plist"), &error)) << error;
    ASSERT_TRUE(writeXmlPropertyListFile(value, path("info.plist"), &error)) << error;
    EXPECT_EQ(readPropertyListFile(path("info.plist"), &error), value) << error;
    EXPECT_EQ(fs::status(path("info.plist")).permissions() & fs::perms::others_read, fs::perms::others_read);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator()), 1);

    // Failures name the file and the reason.
    EXPECT_FALSE(writeXmlPropertyListFile(PropertyList("x"), path("no/such/folder/info.plist"), &error));
    EXPECT_EQ(error.rfind("cannot write " + path("no/such/folder/info.plist") + ": ", 0), 0u) << error;
    EXPECT_FALSE(readPropertyListFile(path("absent.plist"), &error));
    EXPECT_EQ(error, "cannot read " + path("absent.plist") + ": no such file");
    std::ofstream(path("empty.plist")).close();
    EXPECT_FALSE(readPropertyListFile(path("empty.plist"), &error));
    EXPECT_EQ(error, "cannot read " + path("empty.plist") + ": the file is empty");
    EXPECT_FALSE(readPropertyListFile(dir.string(), &error));
    EXPECT_NE(error.find(dir.string()), std::string::npos) << error;
    fs::remove_all(dir);
}

} // namespace
} // namespace plyra
