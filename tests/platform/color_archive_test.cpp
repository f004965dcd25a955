// SPDX-License-Identifier: MIT
#include "platform/typedstream/color_archive.h"

#include <gtest/gtest.h>

#include <bit>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace plyra {
namespace {

using Bytes = std::vector<std::uint8_t>;

const std::string dataDir = std::string(PLYRA_TEST_DATA) + "/typedstream/";

Bytes readFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in) << "cannot open " << path;
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

Bytes hex(std::string_view text)
{
    Bytes bytes;
    std::string digits;
    for (char c : text) {
        if (std::isxdigit(static_cast<unsigned char>(c)))
            digits += c;
    }
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes.push_back(static_cast<std::uint8_t>(std::stoul(digits.substr(i, 2), nullptr, 16)));
    return bytes;
}

Bytes operator+(Bytes a, const Bytes& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

/// Length-prefixed text, as an unshared string.
Bytes text(std::string_view s)
{
    Bytes bytes { static_cast<std::uint8_t>(s.size()) };
    bytes.insert(bytes.end(), s.begin(), s.end());
    return bytes;
}

// Header, the "@" group and a new NSColor : NSObject object. Objects: 0 the colour,
// 1 NSColor, 2 NSObject. Shared strings: 0 "@", 1 "NSColor", 2 "NSObject".
const Bytes colorPrefix = hex("040b73747265616d747970656481e803 840140"
                              "848484074e53436f6c6f7200 8484084e534f626a65637400 85");

/// The "key: value" lines of a vector's description.
std::map<std::string, std::string> readDescription(const std::string& name)
{
    std::ifstream in(dataDir + name);
    EXPECT_TRUE(in) << "cannot open " << name;
    std::map<std::string, std::string> fields;
    std::string line;
    while (std::getline(in, line)) {
        const std::size_t colon = line.find(": ");
        if (colon != std::string::npos)
            fields[line.substr(0, colon)] = line.substr(colon + 2);
        else if (!line.empty() && line.back() == ':')
            fields[line.substr(0, line.size() - 1)] = "";
    }
    return fields;
}

struct IndexRow {
    std::string file;
    std::string origin;
    bool accept = false;
    std::size_t size = 0;
};

std::vector<IndexRow> readIndex()
{
    std::ifstream in(dataDir + "INDEX.tsv");
    EXPECT_TRUE(in);
    std::vector<IndexRow> rows;
    std::string line;
    std::getline(in, line); // column names
    while (std::getline(in, line)) {
        std::istringstream fields(line);
        IndexRow row;
        std::string expected;
        if (fields >> row.file >> row.origin >> expected >> row.size) {
            row.accept = expected == "accept";
            rows.push_back(row);
        }
    }
    return rows;
}

std::string baseName(const std::string& binFile)
{
    return binFile.substr(0, binFile.size() - 4);
}

std::vector<std::uint32_t> bitPatterns(const std::string& words)
{
    std::vector<std::uint32_t> bits;
    std::istringstream in(words);
    std::string word;
    while (in >> word)
        bits.push_back(static_cast<std::uint32_t>(std::stoul(word, nullptr, 16)));
    return bits;
}

void expectComponents(const ArchivedColor& color, int kind, const std::string& bitsText)
{
    EXPECT_EQ(static_cast<int>(color.kind), kind);
    const std::vector<std::uint32_t> bits = bitPatterns(bitsText);
    ASSERT_EQ(color.componentCount(), bits.size());
    for (std::size_t i = 0; i < bits.size(); ++i)
        EXPECT_EQ(std::bit_cast<std::uint32_t>(color.components[i]), bits[i]) << "component " << i;
}

void expectAccepted(const IndexRow& row, const Bytes& bytes)
{
    auto fields = readDescription(baseName(row.file) + ".txt");
    std::string error;
    const std::optional<ArchivedColor> color = readColorArchive(bytes, &error);
    ASSERT_TRUE(color) << error;
    const int kind = std::stoi(fields.at("kind"));
    if (kind != 6) {
        expectComponents(*color, kind, fields.at("float32_bits"));
        return;
    }
    EXPECT_EQ(color->kind, ColorSpaceKind::Named);
    EXPECT_EQ(color->catalog, fields.at("catalog"));
    EXPECT_EQ(color->name, fields.at("name"));
    ASSERT_TRUE(color->fallback);
    expectComponents(*color->fallback, std::stoi(fields.at("fallback_kind")),
                     fields.at("fallback_float32_bits"));
}

void expectRejected(const IndexRow& row, const Bytes& bytes)
{
    auto fields = readDescription(baseName(row.file) + ".txt");
    const std::string expected = fields.at("expected");
    const std::string marker = "our decoder: ";
    const std::size_t at = expected.find(marker);
    ASSERT_NE(at, std::string::npos);
    const std::string reason = expected.substr(at + marker.size(),
                                               expected.rfind(')') - at - marker.size());
    std::string error;
    EXPECT_FALSE(readColorArchive(bytes, &error));
    EXPECT_NE(error.find(reason), std::string::npos) << "error: " << error;
}

TEST(ColorArchiveVectors, IndexListsEveryVector)
{
    const std::vector<IndexRow> rows = readIndex();
    ASSERT_EQ(rows.size(), 37u);
    int accepted = 0;
    for (const IndexRow& row : rows)
        accepted += row.accept ? 1 : 0;
    EXPECT_EQ(accepted, 27);
}

TEST(ColorArchiveVectors, BytesMatchTheirDescription)
{
    for (const IndexRow& row : readIndex()) {
        SCOPED_TRACE(row.file);
        const Bytes bytes = readFile(dataDir + row.file);
        EXPECT_EQ(bytes.size(), row.size);
        EXPECT_EQ(bytes, hex(readDescription(baseName(row.file) + ".txt").at("hex")));
    }
}

TEST(ColorArchiveVectors, AcceptsAndRejectsAsListed)
{
    for (const IndexRow& row : readIndex()) {
        SCOPED_TRACE(row.file);
        const Bytes bytes = readFile(dataDir + row.file);
        if (row.accept)
            expectAccepted(row, bytes);
        else
            expectRejected(row, bytes);
    }
}

TEST(ColorArchiveVectors, EveryTruncationIsRejected)
{
    for (const IndexRow& row : readIndex()) {
        if (!row.accept)
            continue;
        SCOPED_TRACE(row.file);
        const Bytes bytes = readFile(dataDir + row.file);
        for (std::size_t length = 0; length < bytes.size(); ++length) {
            std::string error;
            const Bytes prefix(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
            EXPECT_FALSE(readColorArchive(prefix, &error)) << "length " << length;
            EXPECT_FALSE(error.empty()) << "length " << length;
        }
    }
}

TEST(ColorArchiveVectors, DecodesTheNamedColourStrings)
{
    const auto color = readColorArchive(readFile(dataDir + "derived-named-system-textcolor.bin"));
    ASSERT_TRUE(color);
    EXPECT_EQ(color->catalog, "System");
    EXPECT_EQ(color->name, "textColor");
    ASSERT_TRUE(color->fallback);
    EXPECT_EQ(color->fallback->kind, ColorSpaceKind::CalibratedWhite);
    EXPECT_EQ(color->rgba(), (Rgba { 0.0f, 0.0f, 0.0f, 1.0f }));
}

TEST(ColorArchiveVectors, WideIntegerComponents)
{
    const auto color
        = readColorArchive(readFile(dataDir + "constructed-calibrated-rgb-wide-ints.bin"));
    ASSERT_TRUE(color);
    EXPECT_EQ(color->components[0], -1.0f);
    EXPECT_EQ(color->components[1], 300.0f);
    EXPECT_EQ(color->components[2], 0.25f);
    EXPECT_EQ(color->components[3], 70000.0f);
    EXPECT_EQ(color->rgba(), (Rgba { 0.0f, 1.0f, 0.25f, 1.0f }));
}

TEST(ColorArchiveWriter, WritesTheExpectedBytesForTheDefaultColour)
{
    const Bytes expected = readFile(dataDir + "constructed-calibrated-rgb-0.5-1-0-1.bin");
    ASSERT_EQ(expected.size(), 63u);
    EXPECT_EQ(writeColorArchive(ArchivedColor::calibratedRgb(0.5f, 1.0f, 0.0f, 1.0f)), expected);
}

TEST(ColorArchiveWriter, ReproducesEveryLittleEndianCalibratedVector)
{
    int reproduced = 0;
    for (const IndexRow& row : readIndex()) {
        const Bytes bytes = readFile(dataDir + row.file);
        auto fields = readDescription(baseName(row.file) + ".txt");
        const std::string kind = fields["kind"];
        if (!row.accept || fields["byte_order"] != "little" || (kind != "1" && kind != "3"))
            continue;
        SCOPED_TRACE(row.file);
        const auto color = readColorArchive(bytes);
        ASSERT_TRUE(color);
        EXPECT_EQ(writeColorArchive(*color), bytes);
        ++reproduced;
    }
    EXPECT_EQ(reproduced, 17);
}

TEST(ColorArchiveWriter, WritesWholeNumbersAsOneByteIntegersAndTheRestAsReals)
{
    const Bytes ints = writeColorArchive(ArchivedColor::calibratedRgb(0.0f, 1.0f, 0.0f, 1.0f));
    EXPECT_EQ(ints, colorPrefix + hex("840163 01 840466666666 00 01 00 01 86"));
    const Bytes reals = writeColorArchive(ArchivedColor::calibratedWhite(0.123f, 1.0f));
    const std::uint32_t bits = std::bit_cast<std::uint32_t>(0.123f);
    const Bytes realBytes { 0x83, static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(bits >> 8),
                            static_cast<std::uint8_t>(bits >> 16),
                            static_cast<std::uint8_t>(bits >> 24) };
    EXPECT_EQ(reals, colorPrefix + hex("840163 03 84026666") + realBytes + hex("01 86"));
}

TEST(ColorArchiveWriter, RoundTripsCalibratedColoursBitForBit)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::vector<ArchivedColor> colors {
        ArchivedColor::calibratedRgb(0.123f, 0.5f, 0.0f, 1.0f),
        ArchivedColor::calibratedRgb(0.0f, 1.0f, 0.0f, 1.0f),
        ArchivedColor::calibratedRgb(-1.0f, 300.0f, 70000.0f, -0.0f),
        ArchivedColor::calibratedRgb(-200.0f, 3e9f, 1e-30f, 0.999999f),
        ArchivedColor::calibratedWhite(0.123f, 0.5f),
        ArchivedColor::calibratedWhite(1.0f, 0.0f),
        ArchivedColor::calibratedRgb(nan, 0.0f, 0.0f, 1.0f),
    };
    for (const ArchivedColor& color : colors) {
        std::string error;
        const auto back = readColorArchive(writeColorArchive(color), &error);
        ASSERT_TRUE(back) << error;
        EXPECT_EQ(back->kind, color.kind);
        for (std::size_t i = 0; i < ArchivedColor::maxComponents; ++i) {
            EXPECT_EQ(std::bit_cast<std::uint32_t>(back->components[i]),
                      std::bit_cast<std::uint32_t>(color.components[i]));
        }
    }
}

TEST(ColorArchiveWriter, WritesOtherKindsAsCalibratedRgbOfTheirRgba)
{
    const std::vector<ArchivedColor> colors {
        ArchivedColor::deviceRgb(0.25f, 0.5f, 0.75f, 1.0f),
        ArchivedColor::deviceWhite(0.123f, 1.0f),
        ArchivedColor::deviceCmyk(0.1f, 0.2f, 0.3f, 0.4f, 0.5f),
        ArchivedColor::named("System", "textColor", ArchivedColor::calibratedWhite(0.25f, 1.0f)),
        ArchivedColor::named("System", "gridColor", std::nullopt),
    };
    for (const ArchivedColor& color : colors) {
        const auto back = readColorArchive(writeColorArchive(color));
        ASSERT_TRUE(back);
        EXPECT_EQ(back->kind, ColorSpaceKind::CalibratedRgb);
        EXPECT_EQ(back->rgba(), color.rgba());
    }
}

TEST(ArchivedColor, RgbaOfEveryKind)
{
    EXPECT_EQ(ArchivedColor::calibratedRgb(0.1f, 0.2f, 0.3f, 0.4f).rgba(),
              (Rgba { 0.1f, 0.2f, 0.3f, 0.4f }));
    EXPECT_EQ(ArchivedColor::deviceWhite(0.5f, 0.25f).rgba(), (Rgba { 0.5f, 0.5f, 0.5f, 0.25f }));
    const Rgba cmyk = ArchivedColor::deviceCmyk(0.5f, 0.0f, 1.0f, 0.5f, 1.0f).rgba();
    EXPECT_EQ(cmyk, (Rgba { 0.25f, 0.5f, 0.0f, 1.0f }));
    EXPECT_EQ(ArchivedColor::named("System", "x", ArchivedColor::calibratedWhite(1.0f, 0.5f)).rgba(),
              (Rgba { 1.0f, 1.0f, 1.0f, 0.5f }));
    EXPECT_EQ(ArchivedColor::named("System", "x", std::nullopt).rgba(),
              (Rgba { 0.0f, 0.0f, 0.0f, 1.0f }));
}

TEST(ArchivedColor, RgbaClampsAndTreatsNanAsZero)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(ArchivedColor::calibratedRgb(nan, -3.0f, 2.0f, 1.5f).rgba(),
              (Rgba { 0.0f, 0.0f, 1.0f, 1.0f }));
}

TEST(ArchivedColor, EqualityComparesFallbacksByValue)
{
    const auto a = ArchivedColor::named("System", "textColor", ArchivedColor::calibratedWhite(0, 1));
    const auto b = ArchivedColor::named("System", "textColor", ArchivedColor::calibratedWhite(0, 1));
    const auto c = ArchivedColor::named("System", "textColor", std::nullopt);
    EXPECT_EQ(a, b);
    EXPECT_NE(a, c);
    EXPECT_NE(a, ArchivedColor::named("System", "textColor", ArchivedColor::calibratedWhite(1, 1)));
    EXPECT_NE(ArchivedColor::calibratedRgb(1, 0, 0, 1), ArchivedColor::deviceRgb(1, 0, 0, 1));
}

std::string rejection(const Bytes& bytes)
{
    std::string error;
    EXPECT_FALSE(readColorArchive(bytes, &error));
    return error;
}

// A named colour whose fallback is named again, levels deep; the innermost has none.
Bytes nestedNamedColour(int levels)
{
    // Shared strings 3 "c" and 4 "@@@"; object 1 is the NSColor class.
    Bytes bytes = colorPrefix + hex("840163 06 8403404040 85 85");
    for (int i = 0; i < levels; ++i)
        bytes = bytes + hex("84 93 95 06 96 85 85");
    bytes = bytes + hex("85");
    for (int i = 0; i <= levels; ++i)
        bytes = bytes + hex("86");
    return bytes;
}

TEST(ColorArchiveDamage, NestingIsLimited)
{
    const auto shallow = readColorArchive(nestedNamedColour(3));
    ASSERT_TRUE(shallow);
    EXPECT_EQ(shallow->kind, ColorSpaceKind::Named);
    ASSERT_TRUE(shallow->fallback);
    EXPECT_EQ(shallow->fallback->kind, ColorSpaceKind::Named);
    EXPECT_EQ(shallow->rgba(), (Rgba { 0.0f, 0.0f, 0.0f, 1.0f }));
    EXPECT_NE(rejection(nestedNamedColour(40)).find("nested too deeply"), std::string::npos);
}

TEST(ColorArchiveDamage, AColourThatFallsBackOnItselfIsRefused)
{
    const Bytes bytes = colorPrefix + hex("840163 06 8403404040 85 85 92 86");
    EXPECT_NE(rejection(bytes).find("still being read"), std::string::npos);
}

TEST(ColorArchiveDamage, AClassInsteadOfAStringIsRefused)
{
    const Bytes bytes = colorPrefix + hex("840163 06 8403404040 93 85 85 86");
    EXPECT_NE(rejection(bytes).find("not a string"), std::string::npos);
}

TEST(ColorArchiveDamage, AClassThatIsItsOwnSuperclassEnds)
{
    const Bytes bytes = hex("040b73747265616d747970656481e803 840140 84 84 84") + text("Foo")
        + hex("00 93 840163 01 840466666666 00 00 00 00 86");
    const std::string error = rejection(bytes);
    EXPECT_NE(error.find("root is not a colour"), std::string::npos) << error;
}

TEST(ColorArchiveDamage, ComponentGroupsMustHaveTheKindsLayout)
{
    const Bytes bytes = colorPrefix + hex("840163 01 8403666666 00 00 00 86");
    EXPECT_NE(rejection(bytes).find("expected values of type 'ffff', found 'fff'"),
              std::string::npos);
}

TEST(ColorArchiveDamage, StringLengthsAreChecked)
{
    const Bytes colourStart = colorPrefix + hex("840163 06 8403404040 84 84 84") + text("NSString")
        + hex("01 94 84012b");
    EXPECT_NE(rejection(colourStart + hex("ff")).find("negative string length"), std::string::npos);
    // A length of 2^31-1 must be refused before anything is allocated for it.
    EXPECT_NE(rejection(colourStart + hex("82ffffff7f 41")).find("truncated"), std::string::npos);
}

TEST(ColorArchiveDamage, ReservedTagsAreNotIntegers)
{
    const Bytes bytes = colorPrefix + hex("840163 8f 86");
    EXPECT_NE(rejection(bytes).find("unexpected tag"), std::string::npos);
}

TEST(ColorArchiveDamage, NilRootIsRefused)
{
    const Bytes bytes = hex("040b73747265616d747970656481e803 840140 85");
    EXPECT_NE(rejection(bytes).find("root is not a colour"), std::string::npos);
}

TEST(ColorArchiveDamage, ErrorPointerIsOptional)
{
    EXPECT_FALSE(readColorArchive(Bytes {}));
    EXPECT_FALSE(readColorArchive(hex("04")));
}

} // namespace
} // namespace plyra
