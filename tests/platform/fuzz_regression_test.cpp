// SPDX-License-Identifier: MIT
// Every input that ever made a fuzz target fail lives in tests/data/fuzz/<parser>/ and is fed
// to its parser again: it may be refused, with a reason, or accepted, and then it must
// survive being written back.
#include "platform/plist/openstep_plist.h"
#include "platform/plist/xml_plist.h"
#include "platform/typedstream/color_archive.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>

namespace plyra {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;
// Feeds one input to a parser, checks the write-back of what it accepted, and returns
// whether it accepted the input; a refusal leaves its reason in the string.
using Check = std::function<bool(const Bytes&, std::string&)>;

bool checkOpenStep(const Bytes& bytes, std::string& error)
{
    const auto value = parseOpenStepPropertyList(std::string(bytes.begin(), bytes.end()), &error);
    EXPECT_EQ(value ? parseOpenStepPropertyList(writeOpenStepPropertyList(*value)) : value, value);
    return value.has_value();
}

bool checkXml(const Bytes& bytes, std::string& error)
{
    const auto value = parsePropertyListData(bytes, &error);
    const std::string xml = value ? writeXmlPropertyList(*value) : "";
    const auto back = value ? parsePropertyListData(Bytes(xml.begin(), xml.end())) : std::nullopt;
    EXPECT_EQ(back.has_value(), value.has_value());
    EXPECT_EQ(back ? writeXmlPropertyList(*back) : xml, xml);
    return value.has_value();
}

bool checkTypedStream(const Bytes& bytes, std::string& error)
{
    const auto color = readColorArchive(bytes, &error);
    const auto again = color ? readColorArchive(writeColorArchive(*color)) : color;
    EXPECT_EQ(again.has_value(), color.has_value());
    EXPECT_TRUE(!again || again->rgba() == color->rgba());
    return color.has_value();
}

TEST(FuzzRegression, EveryRecordedInputIsRefusedWithAReasonOrSurvivesAWriteBack)
{
    const std::map<std::string, Check> checks = {
        { "openstep_plist", checkOpenStep }, { "xml_plist", checkXml }, { "typed_stream", checkTypedStream } };
    int replayed = 0;
    for (const auto& folder : fs::directory_iterator(fs::path(PLYRA_TEST_DATA) / "fuzz")) {
        if (!folder.is_directory())
            continue;
        // Packages need the document model: PackageFuzzRegression replays those.
        if (folder.path().filename() == "document_package")
            continue;
        const auto check = checks.find(folder.path().filename().string());
        ASSERT_NE(check, checks.end()) << "no parser is known for " << folder.path();
        for (const auto& file : fs::directory_iterator(folder.path())) {
            SCOPED_TRACE(file.path().string());
            std::ifstream in(file.path(), std::ios::binary);
            std::string error;
            const bool accepted = check->second(Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()), error);
            EXPECT_TRUE(accepted || !error.empty());
            ++replayed;
        }
    }
    EXPECT_GE(replayed, 6);
}

} // namespace
} // namespace plyra
