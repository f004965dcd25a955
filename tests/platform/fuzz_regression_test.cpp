// SPDX-License-Identifier: MIT
// Every input that ever made a fuzz target fail lives in tests/data/fuzz/<parser>/. Each is
// fed to its parser again, with the same checks as the fuzz target: it may be accepted or
// refused, but a refusal says why and an accepted value survives being written back.
#include "platform/plist/openstep_plist.h"
#include "platform/plist/xml_plist.h"
#include "platform/typedstream/color_archive.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

namespace plyra {
namespace {

namespace fs = std::filesystem;

const fs::path fuzzData = fs::path(PLYRA_TEST_DATA) / "fuzz";

std::vector<std::uint8_t> readBytes(const fs::path& path)
{
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in) << path;
    return std::vector<std::uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::vector<fs::path> inputsOf(const std::string& parser)
{
    std::vector<fs::path> files;
    const fs::path dir = fuzzData / parser;
    if (fs::is_directory(dir)) {
        for (const auto& entry : fs::directory_iterator(dir))
            if (entry.is_regular_file())
                files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

TEST(FuzzRegression, EveryFolderHasAParser)
{
    const std::set<std::string> known = { "openstep_plist", "xml_plist", "typed_stream" };
    ASSERT_TRUE(fs::is_directory(fuzzData));
    for (const auto& entry : fs::directory_iterator(fuzzData))
        EXPECT_TRUE(!entry.is_directory() || known.count(entry.path().filename().string()))
            << "no parser is known for " << entry.path();
}

TEST(FuzzRegression, OpenStepPropertyListInputs)
{
    const auto files = inputsOf("openstep_plist");
    if (files.empty())
        GTEST_SKIP() << "no failing inputs recorded";
    for (const fs::path& file : files) {
        SCOPED_TRACE(file.string());
        const std::vector<std::uint8_t> bytes = readBytes(file);
        const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        std::string error;
        const auto value = parseOpenStepPropertyList(text, &error);
        if (!value) {
            EXPECT_FALSE(error.empty());
            continue;
        }
        EXPECT_EQ(parseOpenStepPropertyList(writeOpenStepPropertyList(*value)), value);
    }
}

TEST(FuzzRegression, XmlPropertyListInputs)
{
    const auto files = inputsOf("xml_plist");
    if (files.empty())
        GTEST_SKIP() << "no failing inputs recorded";
    for (const fs::path& file : files) {
        SCOPED_TRACE(file.string());
        std::string error;
        const auto value = parsePropertyListData(readBytes(file), &error);
        if (!value) {
            EXPECT_FALSE(error.empty());
            continue;
        }
        const std::string xml = writeXmlPropertyList(*value);
        const auto back = parsePropertyListData(std::vector<std::uint8_t>(xml.begin(), xml.end()), &error);
        ASSERT_TRUE(back) << error;
        EXPECT_EQ(writeXmlPropertyList(*back), xml);
    }
}

TEST(FuzzRegression, TypedStreamInputs)
{
    const auto files = inputsOf("typed_stream");
    if (files.empty())
        GTEST_SKIP() << "no failing inputs recorded";
    for (const fs::path& file : files) {
        SCOPED_TRACE(file.string());
        std::string error;
        const auto color = readColorArchive(readBytes(file), &error);
        if (!color) {
            EXPECT_FALSE(error.empty());
            continue;
        }
        const auto again = readColorArchive(writeColorArchive(*color));
        ASSERT_TRUE(again);
        EXPECT_EQ(again->rgba(), color->rgba());
    }
}

} // namespace
} // namespace plyra
