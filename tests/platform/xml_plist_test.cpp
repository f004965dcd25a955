// SPDX-License-Identifier: MIT
#include "platform/plist/xml_plist.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>

namespace plyra {
namespace {

namespace fs = std::filesystem;

// Written by another property-list implementation in the binary form: a dictionary with
// blob = <0001feff>, count = 42, empty = {}, flag = true, list = (a, 1, ()),
// name = "café <&>", neg = -7, off = false, ratio = 0.25, when = 2001-01-01 00:01:40.
const std::vector<std::uint8_t> binarySample = {
    0x62, 0x70, 0x6c, 0x69, 0x73, 0x74, 0x30, 0x30, 0xda, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07,
    0x08, 0x09, 0x0a, 0x0b, 0x0c, 0x0d, 0x0e, 0x0f, 0x13, 0x14, 0x15, 0x16, 0x17, 0x54, 0x62, 0x6c,
    0x6f, 0x62, 0x55, 0x63, 0x6f, 0x75, 0x6e, 0x74, 0x55, 0x65, 0x6d, 0x70, 0x74, 0x79, 0x54, 0x66,
    0x6c, 0x61, 0x67, 0x54, 0x6c, 0x69, 0x73, 0x74, 0x54, 0x6e, 0x61, 0x6d, 0x65, 0x53, 0x6e, 0x65,
    0x67, 0x53, 0x6f, 0x66, 0x66, 0x55, 0x72, 0x61, 0x74, 0x69, 0x6f, 0x54, 0x77, 0x68, 0x65, 0x6e,
    0x44, 0x00, 0x01, 0xfe, 0xff, 0x10, 0x2a, 0xd0, 0x09, 0xa3, 0x10, 0x11, 0x12, 0x51, 0x61, 0x10,
    0x01, 0xa0, 0x68, 0x00, 0x63, 0x00, 0x61, 0x00, 0x66, 0x00, 0xe9, 0x00, 0x20, 0x00, 0x3c, 0x00,
    0x26, 0x00, 0x3e, 0x13, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xf9, 0x08, 0x23, 0x3f, 0xd0,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x33, 0x40, 0x59, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x08,
    0x1d, 0x22, 0x28, 0x2e, 0x33, 0x38, 0x3d, 0x41, 0x45, 0x4b, 0x50, 0x55, 0x57, 0x58, 0x59, 0x5d,
    0x5f, 0x61, 0x62, 0x73, 0x7c, 0x7d, 0x86, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x01, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x18, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x8f,
};

std::vector<std::uint8_t> bytesOf(std::string_view text)
{
    return std::vector<std::uint8_t>(text.begin(), text.end());
}

PropertyList parseOrFail(const std::vector<std::uint8_t>& bytes)
{
    std::string error;
    auto value = parsePropertyListData(bytes, &error);
    EXPECT_TRUE(value) << error;
    return value.value_or(PropertyList("<failed>"));
}

std::string parseError(const std::vector<std::uint8_t>& bytes)
{
    std::string error;
    const auto value = parsePropertyListData(bytes, &error);
    EXPECT_FALSE(value);
    EXPECT_FALSE(error.empty());
    return error;
}

PropertyList roundTrip(const PropertyList& value)
{
    return parseOrFail(bytesOf(writeXmlPropertyList(value)));
}

std::string xmlDocument(std::string_view body)
{
    return std::string("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n") + std::string(body)
        + "\n</plist>\n";
}

/// A scratch directory of each test's own under the build tree (tests run in parallel
/// processes), removed afterwards.
class XmlPropertyListFile : public testing::Test {
protected:
    void SetUp() override
    {
        const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
        m_dir = fs::path(PLYRA_BINARY_DIR) / "test-output" / (std::string("xml_plist-") + test->name());
        fs::remove_all(m_dir);
        fs::create_directories(m_dir);
    }
    void TearDown() override { fs::remove_all(m_dir); }
    std::string path(const std::string& name) const { return (m_dir / name).string(); }

    fs::path m_dir;
};

// ---- Round trips of every type --------------------------------------------------------

TEST(XmlPropertyList, StringsRoundTrip)
{
    for (const char* text : { "", "plain", "<tag> & \"quotes\" 'apostrophe'", "caf\xC3\xA9 \xE2\x98\xBA \xF0\x9F\x98\x80",
             "line 1\nline 2\ttab", "  leading and trailing  ", "]]>" })
        EXPECT_EQ(roundTrip(PropertyList(text)), PropertyList(text)) << text;
}

TEST(XmlPropertyList, IntegersRoundTrip)
{
    for (const std::int64_t i : { std::int64_t { 0 }, std::int64_t { 1 }, std::int64_t { -1 }, std::int64_t { 768 },
             std::int64_t { -123456789012 }, std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min() })
        EXPECT_EQ(roundTrip(PropertyList(i)), PropertyList(i)) << i;
}

TEST(XmlPropertyList, RealsRoundTripExactly)
{
    for (const double d : { 0.0, 0.5, -2.25, 0.1, 1.0 / 3.0, 640.7, 1e300, -1e-300, 5e-324,
             std::numeric_limits<double>::max() })
        EXPECT_EQ(roundTrip(PropertyList(d)), PropertyList(d)) << d;
}

TEST(XmlPropertyList, NonFiniteRealsRoundTrip)
{
    EXPECT_EQ(roundTrip(PropertyList(std::numeric_limits<double>::infinity())).doubleValue(),
        std::numeric_limits<double>::infinity());
    EXPECT_EQ(roundTrip(PropertyList(-std::numeric_limits<double>::infinity())).doubleValue(),
        -std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(roundTrip(PropertyList(std::nan(""))).doubleValue()));
}

TEST(XmlPropertyList, BooleansRoundTrip)
{
    EXPECT_EQ(roundTrip(PropertyList(true)), PropertyList(true));
    EXPECT_EQ(roundTrip(PropertyList(false)), PropertyList(false));
}

TEST(XmlPropertyList, DataRoundTrips)
{
    PropertyList::Data all(256);
    for (std::size_t i = 0; i < all.size(); ++i)
        all[i] = static_cast<std::uint8_t>(i);
    for (const PropertyList::Data& data : { PropertyList::Data {}, PropertyList::Data { 0 }, PropertyList::Data { 1, 2, 3 }, all })
        EXPECT_EQ(roundTrip(PropertyList(data)), PropertyList(data)) << data.size();
}

TEST(XmlPropertyList, ContainersRoundTrip)
{
    const PropertyList value(PropertyList::Dictionary {
        { "morphLines", PropertyList(PropertyList::Array {
                            PropertyList(PropertyList::Dictionary { { "startPoints", PropertyList(PropertyList::Array { PropertyList("{0.1, 0.2}"), PropertyList("{0.3, 0.4}") }) } }),
                            PropertyList("{ dissolveEndTime = 1; }") }) },
        { "frameWidth", PropertyList(640.0) },
        { "codecQuality", PropertyList(768) },
        { "lineColorData", PropertyList(PropertyList::Data { 4, 11, 't', 'y', 'p' }) },
        { "empty array", PropertyList(PropertyList::Array {}) },
        { "empty dict", PropertyList(PropertyList::Dictionary {}) },
        { "<&> key", PropertyList(true) },
        { "", PropertyList("empty key") },
    });
    EXPECT_EQ(roundTrip(value), value);
}

// ---- The XML form ---------------------------------------------------------------------

TEST(XmlPropertyList, WritesTheStandardXmlForm)
{
    const std::string xml = writeXmlPropertyList(PropertyList(PropertyList::Dictionary {
        { "b", PropertyList(1.5) }, { "a", PropertyList("x<y") }, { "c", PropertyList(2) }, { "d", PropertyList(true) } }));
    EXPECT_EQ(xml.rfind("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n", 0), 0u) << xml;
    EXPECT_THAT(xml, testing::HasSubstr("<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\""));
    EXPECT_THAT(xml, testing::HasSubstr("<plist version=\"1.0\">"));
    EXPECT_THAT(xml, testing::HasSubstr("<key>a</key>\n\t<string>x&lt;y</string>\n\t<key>b</key>\n\t<real>1.5</real>"
                                        "\n\t<key>c</key>\n\t<integer>2</integer>\n\t<key>d</key>\n\t<true/>"));
}

TEST(XmlPropertyList, ReadsHandWrittenXml)
{
    const PropertyList value = parseOrFail(bytesOf(xmlDocument(
        "<dict><key>frameWidth</key><real>640.7</real><key>codecFormat</key><string>mp4v</string>"
        "<key>codecQuality</key><integer>512</integer><key>on</key><true/><key>off</key><false/>"
        "<key>bytes</key><data>AAH+/w==</data><key>list</key><array><string>a</string><integer>-3</integer></array>"
        "<key>when</key><date>2001-01-01T00:01:40Z</date></dict>")));
    EXPECT_EQ(value.find("frameWidth")->integerValue(), 640);
    EXPECT_EQ(*value.find("codecFormat")->string(), "mp4v");
    EXPECT_EQ(*value.find("codecQuality"), PropertyList(512));
    EXPECT_EQ(*value.find("on"), PropertyList(true));
    EXPECT_EQ(*value.find("off"), PropertyList(false));
    EXPECT_EQ(*value.find("bytes"), PropertyList(PropertyList::Data { 0x00, 0x01, 0xfe, 0xff }));
    EXPECT_EQ(*value.find("list"), PropertyList(PropertyList::Array { PropertyList("a"), PropertyList(-3) }));
    // A date reads as seconds since 2001-01-01 00:00 UTC.
    EXPECT_EQ(*value.find("when"), PropertyList(100.0));
}

TEST(XmlPropertyList, AnyRootTypeIsReturned)
{
    EXPECT_EQ(parseOrFail(bytesOf(xmlDocument("<string>just text</string>"))), PropertyList("just text"));
    EXPECT_EQ(parseOrFail(bytesOf(xmlDocument("<integer>5</integer>"))), PropertyList(5));
    EXPECT_EQ(parseOrFail(bytesOf(xmlDocument("<array/>"))), PropertyList(PropertyList::Array {}));
}

TEST(XmlPropertyList, ReadsTheBinaryForm)
{
    const PropertyList value = parseOrFail(binarySample);
    const PropertyList expected(PropertyList::Dictionary {
        { "blob", PropertyList(PropertyList::Data { 0x00, 0x01, 0xfe, 0xff }) },
        { "count", PropertyList(42) },
        { "empty", PropertyList(PropertyList::Dictionary {}) },
        { "flag", PropertyList(true) },
        { "list", PropertyList(PropertyList::Array { PropertyList("a"), PropertyList(1), PropertyList(PropertyList::Array {}) }) },
        { "name", PropertyList("caf\xC3\xA9 <&>") },
        { "neg", PropertyList(-7) },
        { "off", PropertyList(false) },
        { "ratio", PropertyList(0.25) },
        { "when", PropertyList(100.0) },
    });
    EXPECT_EQ(value, expected);
}

TEST(XmlPropertyList, ReadsTheOpenStepTextForm)
{
    EXPECT_EQ(parseOrFail(bytesOf("{ a = (b, \"c d\"); e = <0fbd>; }")),
        PropertyList(PropertyList::Dictionary {
            { "a", PropertyList(PropertyList::Array { PropertyList("b"), PropertyList("c d") }) },
            { "e", PropertyList(PropertyList::Data { 0x0f, 0xbd }) } }));
    EXPECT_EQ(parseError(bytesOf("{ a = b }")), "line 1: missing ';' after the dictionary entry \"a\", found '}'");
}

// ---- Bad input ------------------------------------------------------------------------

TEST(XmlPropertyList, EmptyInputFails)
{
    EXPECT_EQ(parseError({}), "the property list is empty");
    EXPECT_FALSE(parsePropertyListData({}));
}

TEST(XmlPropertyList, TruncatedXmlFails)
{
    const std::string xml = writeXmlPropertyList(PropertyList(PropertyList::Dictionary {
        { "a", PropertyList(PropertyList::Array { PropertyList("x"), PropertyList(1) }) } }));
    for (const std::size_t length : { std::size_t { 6 }, std::size_t { 60 }, xml.find("<array>") + 3, xml.find("</array>") })
        EXPECT_FALSE(parsePropertyListData(bytesOf(std::string_view(xml).substr(0, length)))) << length;
}

TEST(XmlPropertyList, MalformedXmlFails)
{
    EXPECT_EQ(parseError(bytesOf(xmlDocument("<dict><key>a</key><integer>1</dict>"))),
        "the XML property list is damaged or incomplete");
    parseError(bytesOf(xmlDocument("<unknown>1</unknown>")));
    parseError(bytesOf(xmlDocument("<array><string>x</array>")));
    parseError(bytesOf("<?xml version=\"1.0\"?>"));
    parseError(bytesOf("<plist>"));
}

TEST(XmlPropertyList, DamagedBinaryFails)
{
    const auto cut = [](std::size_t length) {
        return std::vector<std::uint8_t>(binarySample.begin(), binarySample.begin() + static_cast<std::ptrdiff_t>(length));
    };
    EXPECT_EQ(parseError(cut(6)), "the binary property list is too short");
    EXPECT_EQ(parseError(cut(40)), "the binary property list is too short");
    EXPECT_EQ(parseError(cut(binarySample.size() - 1)), "the binary property list's trailer is damaged");
    EXPECT_EQ(parseError(cut(120)), "the binary property list's trailer is damaged");
}

TEST(XmlPropertyList, GarbageFails)
{
    parseError({ 0x00, 0x01, 0x02, 0xff });
    parseError(bytesOf("{{{{"));
    parseError(bytesOf("\x89PNG\r\n\x1a\n"));
}

TEST(XmlPropertyList, DeepXmlNestingFailsCleanly)
{
    std::string body;
    for (int i = 0; i < 600; ++i)
        body += "<array>";
    for (int i = 0; i < 600; ++i)
        body += "</array>";
    EXPECT_EQ(parseError(bytesOf(xmlDocument(body))), "containers nested deeper than 512 levels");
    // Deep enough to exhaust the stack of a recursive reader; refused before any parsing.
    std::string deep;
    for (int i = 0; i < 300000; ++i)
        deep += "<dict><key>k</key>";
    EXPECT_EQ(parseError(bytesOf(xmlDocument(deep))), "containers nested deeper than 512 levels");
}

TEST(XmlPropertyList, EmptyContainerTagsDoNotNest)
{
    std::string body = "<array>";
    for (int i = 0; i < 1000; ++i)
        body += "<array/><dict/>";
    body += "</array>";
    const PropertyList value = parseOrFail(bytesOf(xmlDocument(body)));
    ASSERT_TRUE(value.array());
    EXPECT_EQ(value.array()->size(), 2000u);
}

TEST(XmlPropertyList, NulByteInXmlFails)
{
    EXPECT_EQ(parseError(bytesOf(xmlDocument(std::string("<string>a\0b</string>", 20)))),
        "the XML property list contains a NUL byte");
}

// ---- Binary form ----------------------------------------------------------------------

/// Assembles a binary property list from encoded objects, the root at index root. The
/// objects' references must have referenceSize bytes.
std::vector<std::uint8_t> bplist(const std::vector<std::vector<std::uint8_t>>& objects, std::uint64_t root = 0,
    unsigned offsetSize = 1, unsigned referenceSize = 1)
{
    std::vector<std::uint8_t> out = bytesOf("bplist00");
    std::vector<std::size_t> offsets;
    for (const auto& object : objects) {
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

std::vector<std::uint8_t> ascii(std::string_view text)
{
    std::vector<std::uint8_t> object { static_cast<std::uint8_t>(0x50 | text.size()) };
    object.insert(object.end(), text.begin(), text.end());
    return object;
}

TEST(BinaryPropertyList, IntegersOfEverySize)
{
    EXPECT_EQ(parseOrFail(bplist({ { 0x10, 0xff } })), PropertyList(255));
    EXPECT_EQ(parseOrFail(bplist({ { 0x11, 0xff, 0xfe } })), PropertyList(65534));
    EXPECT_EQ(parseOrFail(bplist({ { 0x12, 0xff, 0xff, 0xff, 0xff } })), PropertyList(std::int64_t { 0xffffffff }));
    EXPECT_EQ(parseOrFail(bplist({ { 0x13, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xfe } })), PropertyList(-2));
    EXPECT_EQ(parseOrFail(bplist({ { 0x14, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x01, 0x00 } })), PropertyList(256));
    EXPECT_EQ(parseError(bplist({ { 0x15, 0 } })), "damaged integer in the binary property list");
    EXPECT_EQ(parseError(bplist({ { 0x13, 0, 0 } })), "an object in the binary property list runs past the end of the objects");
}

TEST(BinaryPropertyList, RealsDatesAndUids)
{
    EXPECT_EQ(parseOrFail(bplist({ { 0x22, 0x3f, 0xc0, 0x00, 0x00 } })), PropertyList(1.5));
    EXPECT_EQ(parseOrFail(bplist({ { 0x23, 0xc0, 0x04, 0, 0, 0, 0, 0, 0 } })), PropertyList(-2.5));
    EXPECT_EQ(parseOrFail(bplist({ { 0x33, 0x40, 0x59, 0, 0, 0, 0, 0, 0 } })), PropertyList(100.0));
    EXPECT_EQ(parseOrFail(bplist({ { 0x81, 0x01, 0x02 } })), PropertyList(258));
    EXPECT_EQ(parseError(bplist({ { 0x21, 0, 0 } })), "damaged real number in the binary property list");
    EXPECT_EQ(parseError(bplist({ { 0x32, 0, 0, 0, 0 } })), "damaged date in the binary property list");
}

TEST(BinaryPropertyList, Strings)
{
    EXPECT_EQ(parseOrFail(bplist({ ascii("hello") })), PropertyList("hello"));
    // Bytes past ASCII read as Latin-1; a NUL is kept.
    EXPECT_EQ(parseOrFail(bplist({ { 0x53, 'a', 0xe9, 0x00 } })), PropertyList(std::string("a\xC3\xA9\0", 4)));
    EXPECT_EQ(parseOrFail(bplist({ { 0x63, 0x00, 0x41, 0xd8, 0x3d, 0xde, 0x00 } })), PropertyList("A\xF0\x9F\x98\x80"));
    EXPECT_EQ(parseOrFail(bplist({ { 0x62, 0xdc, 0x00, 0x00, 0x42 } })), PropertyList("\xEF\xBF\xBD" "B"));
    EXPECT_EQ(parseError(bplist({ { 0x65, 0x00, 0x41 } })), "an object in the binary property list runs past the end of the objects");
}

TEST(BinaryPropertyList, LongLengthsFollowTheMarker)
{
    const std::string text(20, 'x');
    std::vector<std::uint8_t> object { 0x5f, 0x10, 20 };
    object.insert(object.end(), text.begin(), text.end());
    EXPECT_EQ(parseOrFail(bplist({ object })), PropertyList(text));
    EXPECT_EQ(parseOrFail(bplist({ { 0x4f, 0x10, 0x02, 0xab, 0xcd } })), PropertyList(PropertyList::Data { 0xab, 0xcd }));
    EXPECT_EQ(parseError(bplist({ { 0x4f, 0x50, 0x02 } })), "damaged length in the binary property list");
    EXPECT_EQ(parseError(bplist({ { 0x4f, 0x13, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff } })),
        "an object in the binary property list runs past the end of the objects");
}

TEST(BinaryPropertyList, ContainersAndSets)
{
    EXPECT_EQ(parseOrFail(bplist({ { 0xd2, 1, 2, 3, 4 }, ascii("k"), ascii("a"), { 0x09 }, { 0xa2, 5, 6 }, { 0x08 }, { 0xc1, 1 } })),
        PropertyList(PropertyList::Dictionary { { "a", PropertyList(PropertyList::Array { PropertyList(false), PropertyList(PropertyList::Array { PropertyList("k") }) }) },
            { "k", PropertyList(true) } }));
    EXPECT_EQ(parseOrFail(bplist({ { 0xa0 } })), PropertyList(PropertyList::Array {}));
    EXPECT_EQ(parseOrFail(bplist({ { 0xd0 } }, 0, 2)), PropertyList(PropertyList::Dictionary {}));
}

TEST(BinaryPropertyList, BadStructureFails)
{
    EXPECT_EQ(parseError(bplist({ { 0xd1, 1, 2 }, { 0x10, 1 }, ascii("v") })),
        "a dictionary key in the binary property list is not a string");
    EXPECT_EQ(parseError(bplist({ { 0xa1, 9 } })), "an object reference in the binary property list points past its objects");
    EXPECT_EQ(parseError(bplist({ { 0x00 } })), "unsupported value (marker 0x00)");
    EXPECT_EQ(parseError(bplist({ { 0x70 } })), "unsupported value (marker 0x70)");
    EXPECT_EQ(parseError(bplist({ ascii("a") }, 1)), "the binary property list's offset table is damaged");
    std::vector<std::uint8_t> version = bplist({ ascii("a") });
    version[7] = '1';
    EXPECT_EQ(parseError(version), "unsupported binary property list version");
    std::vector<std::uint8_t> offset = bplist({ ascii("a") });
    offset[10] = 0xf0; // the only offset, now past the objects
    EXPECT_EQ(parseError(offset), "an object offset in the binary property list points outside its objects");
}

TEST(BinaryPropertyList, CyclesFail)
{
    EXPECT_EQ(parseError(bplist({ { 0xa1, 0 } })), "the binary property list contains itself");
    EXPECT_EQ(parseError(bplist({ { 0xd1, 1, 2 }, ascii("k"), { 0xa1, 0 } })), "the binary property list contains itself");
}

TEST(BinaryPropertyList, SharedLeavesAreCopied)
{
    const PropertyList value = parseOrFail(bplist({ { 0xa3, 1, 1, 1 }, ascii("zero") }));
    EXPECT_EQ(value, PropertyList(PropertyList::Array { PropertyList("zero"), PropertyList("zero"), PropertyList("zero") }));
}

TEST(BinaryPropertyList, ExponentialSharingFailsQuickly)
{
    // Forty arrays, each holding the next one twice: 2^40 values if expanded.
    std::vector<std::vector<std::uint8_t>> objects;
    for (std::uint8_t i = 0; i < 40; ++i)
        objects.push_back({ 0xa2, static_cast<std::uint8_t>(i + 1), static_cast<std::uint8_t>(i + 1) });
    objects.push_back(ascii("x"));
    EXPECT_EQ(parseError(bplist(objects)), "the binary property list shares its values too often to be expanded");
}

TEST(BinaryPropertyList, DeepNestingFailsCleanly)
{
    std::vector<std::vector<std::uint8_t>> objects;
    for (unsigned i = 0; i < 600; ++i)
        objects.push_back({ 0xa1, static_cast<std::uint8_t>((i + 1) >> 8), static_cast<std::uint8_t>(i + 1) });
    objects.push_back({ 0xa0 });
    // Two-byte references and offsets for 601 objects.
    const std::vector<std::uint8_t> bytes = bplist(objects, 0, 2, 2);
    EXPECT_EQ(parseError(bytes), "containers nested deeper than 512 levels");
}

// ---- Files ----------------------------------------------------------------------------

TEST_F(XmlPropertyListFile, WritesAndReadsBack)
{
    const PropertyList value(PropertyList::Dictionary { { "firstImagePath", PropertyList("Image_0.tiff") },
        { "frameHeight", PropertyList(480.0) } });
    std::string error;
    ASSERT_TRUE(writeXmlPropertyListFile(value, path("info.plist"), &error)) << error;
    EXPECT_EQ(readPropertyListFile(path("info.plist"), &error), value) << error;
    EXPECT_EQ(fs::status(path("info.plist")).permissions() & fs::perms::owner_read, fs::perms::owner_read);
    EXPECT_EQ(fs::status(path("info.plist")).permissions() & fs::perms::others_read, fs::perms::others_read);
}

TEST_F(XmlPropertyListFile, ReplacesAnExistingFileAndLeavesNoScratch)
{
    ASSERT_TRUE(writeXmlPropertyListFile(PropertyList("old"), path("info.plist")));
    ASSERT_TRUE(writeXmlPropertyListFile(PropertyList("new"), path("info.plist")));
    EXPECT_EQ(readPropertyListFile(path("info.plist")), PropertyList("new"));
    EXPECT_EQ(std::distance(fs::directory_iterator(m_dir), fs::directory_iterator()), 1);
}

TEST_F(XmlPropertyListFile, WriteIntoAMissingFolderFails)
{
    std::string error;
    EXPECT_FALSE(writeXmlPropertyListFile(PropertyList("x"), path("no/such/folder/info.plist"), &error));
    EXPECT_THAT(error, testing::StartsWith("cannot write " + path("no/such/folder/info.plist") + ": "));
}

TEST_F(XmlPropertyListFile, MissingFileFails)
{
    std::string error;
    EXPECT_FALSE(readPropertyListFile(path("absent.plist"), &error));
    EXPECT_EQ(error, "cannot open " + path("absent.plist") + ": No such file or directory");
}

TEST_F(XmlPropertyListFile, EmptyFileFails)
{
    std::ofstream(path("empty.plist")).close();
    std::string error;
    EXPECT_FALSE(readPropertyListFile(path("empty.plist"), &error));
    EXPECT_EQ(error, path("empty.plist") + ": the property list is empty");
}

TEST_F(XmlPropertyListFile, DirectoryFails)
{
    std::string error;
    EXPECT_FALSE(readPropertyListFile(m_dir.string(), &error));
    EXPECT_THAT(error, testing::HasSubstr(m_dir.string()));
}

TEST_F(XmlPropertyListFile, DamagedFileNamesFileAndReason)
{
    std::ofstream(path("bad.plist"), std::ios::binary) << xmlDocument("<dict><key>a</key>");
    std::string error;
    EXPECT_FALSE(readPropertyListFile(path("bad.plist"), &error));
    EXPECT_EQ(error, path("bad.plist") + ": the XML property list is damaged or incomplete");
}

} // namespace
} // namespace plyra
