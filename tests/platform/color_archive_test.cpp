// SPDX-License-Identifier: MIT
#include "platform/typedstream/color_archive.h"

#include <gtest/gtest.h>

#include <bit>
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

Bytes readFile(const std::string& name)
{
    std::ifstream in(dataDir + name, std::ios::binary);
    EXPECT_TRUE(in) << "cannot open " << name;
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

Bytes hex(std::string_view text)
{
    Bytes bytes; // pairs of digits, groups of them apart by spaces
    for (std::size_t i = 0; i + 1 < text.size(); i += text[i] == ' ' ? 1 : 2)
        if (text[i] != ' ')
            bytes.push_back(static_cast<std::uint8_t>(std::stoul(std::string(text.substr(i, 2)), nullptr, 16)));
    return bytes;
}

Bytes operator+(Bytes a, const Bytes& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

// Header, the "@" group and a new NSColor : NSObject object. Objects: 0 the colour,
// 1 NSColor, 2 NSObject. Shared strings: 0 "@", 1 "NSColor", 2 "NSObject".
const Bytes colorPrefix = hex("040b73747265616d747970656481e803 840140"
                              "848484074e53436f6c6f7200 8484084e534f626a65637400 85");

/// A vector from INDEX.tsv with the "key: value" lines of its description.
struct Vector { std::string file; bool accept = false; std::map<std::string, std::string> fields; };

std::vector<Vector> readIndex()
{
    std::ifstream index(dataDir + "INDEX.tsv");
    std::vector<Vector> vectors;
    std::string line, origin, expected;
    std::getline(index, line); // column names
    while (std::getline(index, line)) {
        Vector vector;
        if (!(std::istringstream(line) >> vector.file >> origin >> expected))
            continue;
        vector.accept = expected == "accept";
        std::ifstream description(dataDir + vector.file.substr(0, vector.file.size() - 4) + ".txt");
        while (std::getline(description, line)) {
            const std::size_t colon = line.find(':');
            if (colon != std::string::npos)
                vector.fields[line.substr(0, colon)] = line.substr(std::min(colon + 2, line.size()));
        }
        vectors.push_back(vector);
    }
    return vectors;
}

void expectComponents(const ArchivedColor& color, const std::string& kind, const std::string& bitsText)
{
    EXPECT_EQ(static_cast<int>(color.kind), std::stoi(kind));
    std::istringstream words(bitsText);
    std::vector<std::uint32_t> bits;
    for (std::string word; words >> word;)
        bits.push_back(static_cast<std::uint32_t>(std::stoul(word, nullptr, 16)));
    ASSERT_EQ(color.componentCount(), bits.size());
    for (std::size_t i = 0; i < bits.size(); ++i)
        EXPECT_EQ(std::bit_cast<std::uint32_t>(color.components[i]), bits[i]) << "component " << i;
}

void expectAccepted(const Vector& vector, const Bytes& bytes)
{
    std::string error;
    const std::optional<ArchivedColor> color = readColorArchive(bytes, &error);
    ASSERT_TRUE(color) << error;
    if (vector.fields.at("kind") != "6")
        return expectComponents(*color, vector.fields.at("kind"), vector.fields.at("float32_bits"));
    EXPECT_EQ(color->kind, ColorSpaceKind::Named);
    EXPECT_EQ(color->catalog, vector.fields.at("catalog"));
    EXPECT_EQ(color->name, vector.fields.at("name"));
    ASSERT_TRUE(color->fallback);
    expectComponents(*color->fallback, vector.fields.at("fallback_kind"), vector.fields.at("fallback_float32_bits"));
}

TEST(ColorArchiveVectors, EachIsReadAsListedAndEveryTruncationIsRefused)
{
    int accepted = 0;
    const std::vector<Vector> vectors = readIndex();
    for (const Vector& vector : vectors) {
        SCOPED_TRACE(vector.file);
        const Bytes bytes = readFile(vector.file);
        if (!vector.accept) { // the reason is the part of "reject (our decoder: <reason>)"
            const std::string& expected = vector.fields.at("expected");
            const std::size_t at = expected.find("our decoder: ") + 13;
            std::string error;
            EXPECT_FALSE(readColorArchive(bytes, &error));
            ASSERT_GE(at, 13u);
            EXPECT_NE(error.find(expected.substr(at, expected.rfind(')') - at)), std::string::npos) << "error: " << error;
            continue;
        }
        ++accepted;
        expectAccepted(vector, bytes);
        for (std::size_t length = 0; length < bytes.size(); ++length) {
            std::string error;
            EXPECT_FALSE(readColorArchive(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)), &error));
            EXPECT_FALSE(error.empty()) << "length " << length;
        }
    }
    EXPECT_EQ(vectors.size(), 37u);
    EXPECT_EQ(accepted, 27);
}

TEST(ColorArchiveWriter, ReproducesEveryLittleEndianCalibratedVector)
{
    const Bytes expected = readFile("constructed-calibrated-rgb-0.5-1-0-1.bin");
    ASSERT_EQ(expected.size(), 63u);
    EXPECT_EQ(writeColorArchive(ArchivedColor::calibratedRgb(0.5f, 1.0f, 0.0f, 1.0f)), expected);
    int reproduced = 0;
    for (const Vector& vector : readIndex()) {
        const auto field = [&](const char* key) { return vector.fields.count(key) ? vector.fields.at(key) : ""; };
        if (!vector.accept || field("byte_order") != "little" || (field("kind") != "1" && field("kind") != "3"))
            continue;
        SCOPED_TRACE(vector.file);
        const Bytes bytes = readFile(vector.file);
        EXPECT_EQ(writeColorArchive(readColorArchive(bytes).value_or(ArchivedColor {})), bytes);
        ++reproduced;
    }
    EXPECT_EQ(reproduced, 17);
}

TEST(ColorArchiveWriter, OtherKindsAreWrittenAsCalibratedRgb)
{
    for (const ArchivedColor& color : { ArchivedColor::deviceRgb(0.25f, 0.5f, 0.75f, 1.0f), ArchivedColor::deviceWhite(0.123f, 1.0f),
             ArchivedColor::deviceCmyk(0.1f, 0.2f, 0.3f, 0.4f, 0.5f), ArchivedColor::named("System", "textColor", ArchivedColor::calibratedWhite(0.25f, 1.0f)),
             ArchivedColor::named("System", "gridColor", std::nullopt) }) {
        const auto back = readColorArchive(writeColorArchive(color));
        EXPECT_TRUE(back && back->kind == ColorSpaceKind::CalibratedRgb && back->rgba() == color.rgba()) << color.name;
    }
}

TEST(ArchivedColor, RgbaOfEveryKindClampedWithNanAsZero)
{
    const std::vector<std::pair<ArchivedColor, Rgba>> rows = {
        { ArchivedColor::calibratedRgb(0.1f, 0.2f, 0.3f, 0.4f), { 0.1f, 0.2f, 0.3f, 0.4f } },
        { ArchivedColor::deviceWhite(0.5f, 0.25f), { 0.5f, 0.5f, 0.5f, 0.25f } },
        { ArchivedColor::deviceCmyk(0.5f, 0.0f, 1.0f, 0.5f, 1.0f), { 0.25f, 0.5f, 0.0f, 1.0f } },
        { ArchivedColor::named("System", "x", ArchivedColor::calibratedWhite(1.0f, 0.5f)), { 1.0f, 1.0f, 1.0f, 0.5f } },
        { ArchivedColor::named("System", "x", std::nullopt), { 0.0f, 0.0f, 0.0f, 1.0f } },
        { ArchivedColor::calibratedRgb(std::numeric_limits<float>::quiet_NaN(), -3.0f, 2.0f, 1.5f), { 0.0f, 0.0f, 1.0f, 1.0f } },
    };
    for (const auto& [color, rgba] : rows)
        EXPECT_EQ(color.rgba(), rgba) << color.name;
}

// A named colour whose fallback is named again, levels deep; the innermost has none.
// Shared strings 3 "c" and 4 "@@@"; object 1 is the NSColor class.
Bytes nestedNamedColour(int levels)
{
    Bytes bytes = colorPrefix + hex("840163 06 8403404040 85 85");
    for (int i = 0; i < levels; ++i)
        bytes = bytes + hex("84 93 95 06 96 85 85");
    bytes = bytes + hex("85");
    for (int i = 0; i <= levels; ++i)
        bytes = bytes + hex("86");
    return bytes;
}

TEST(ColorArchiveDamage, IsRefusedWithItsReasonAndNestedFallbacksUpToALimit)
{
    const auto shallow = readColorArchive(nestedNamedColour(3));
    ASSERT_TRUE(shallow && shallow->fallback);
    EXPECT_EQ(shallow->fallback->kind, ColorSpaceKind::Named);
    EXPECT_EQ(shallow->rgba(), (Rgba { 0.0f, 0.0f, 0.0f, 1.0f }));
    const Bytes header = hex("040b73747265616d747970656481e803 840140");
    // A named colour whose catalog is an object of class NSString, up to its string's length.
    const Bytes stringStart = colorPrefix + hex("840163 06 8403404040 84 84 84 084e53537472696e67 01 94 84012b");
    const std::vector<std::pair<Bytes, std::string>> rows = {
        { nestedNamedColour(40), "nested too deeply" },
        { colorPrefix + hex("840163 06 8403404040 85 85 92 86"), "still being read" }, // falls back on itself
        { colorPrefix + hex("840163 06 8403404040 93 85 85 86"), "not a string" }, // a class instead
        { header + hex("84 84 84 03466f6f 00 93 840163 01 840466666666 00 00 00 00 86"), "root is not a colour" }, // own superclass
        { colorPrefix + hex("840163 01 8403666666 00 00 00 86"), "expected values of type 'ffff', found 'fff'" },
        { stringStart + hex("ff"), "negative string length" },
        // A length of 2^31-1 must be refused before anything is allocated for it.
        { stringStart + hex("82ffffff7f 41"), "truncated" },
        { colorPrefix + hex("840163 8f 86"), "unexpected tag" }, // reserved, not an integer
        { header + hex("85"), "root is not a colour" }, // nil
        { Bytes {}, "" }, { hex("04"), "" },
    };
    for (const auto& [bytes, reason] : rows) {
        std::string error;
        EXPECT_FALSE(readColorArchive(bytes, &error));
        EXPECT_FALSE(readColorArchive(bytes));
        EXPECT_FALSE(error.empty());
        EXPECT_NE(error.find(reason), std::string::npos) << "error: " << error << ", expected: " << reason;
    }
}

} // namespace
} // namespace plyra
