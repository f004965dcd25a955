// SPDX-License-Identifier: MIT
#include "platform/error/string_table.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace plyra {
namespace {

TEST(StringTable, ParsesEntriesCommentsAndEscapes)
{
    std::string error;
    const auto table = StringTable::parse(R"(
/* block
   comment */
"a" = "first";   // trailing comment
"b.-5.Description"="quote \" backslash \\ line\nbreak\ttab";
"ü" = "ünïcode";
"a" = "replaced";
)", &error);
    ASSERT_TRUE(table) << error;
    EXPECT_EQ(table->size(), 3u);
    EXPECT_EQ(table->lookup("a"), "replaced");
    EXPECT_EQ(table->lookup("b.-5.Description"), "quote \" backslash \\ line\nbreak\ttab");
    EXPECT_EQ(table->lookup("ü"), "ünïcode");
    EXPECT_EQ(table->lookup("missing"), "missing");
    EXPECT_FALSE(table->contains("missing"));
    EXPECT_TRUE(StringTable::parse("  // only a comment"));
}

TEST(StringTable, DamagedTextNamesTheLine)
{
    for (const char* text : {"\"a\" = \"x\"\n\"b\" = \"y\";", "\"a\" = \"unterminated;\n", "\"a\" \"b\";", "a = \"b\";",
                             "/* open comment", "\"a\" = \"b\"; \"c\" ="}) {
        std::string error;
        EXPECT_FALSE(StringTable::parse(text, &error)) << text;
        EXPECT_EQ(error.rfind("line ", 0), 0u) << error;
    }
    std::string error;
    StringTable::parse("\n\n\"a\" = \"x\" \"b\"", &error);
    EXPECT_EQ(error, "line 3: expected ';'");
}

TEST(StringTable, LoadsFilesAndReportsUnreadableOnes)
{
    const auto folder = std::filesystem::temp_directory_path() / "plyra_strings_test";
    std::filesystem::create_directories(folder);
    const auto path = (folder / "Errors.strings").string();
    std::ofstream(path) << "\"k\" = \"v\";\n";
    std::string error;
    const auto table = StringTable::load(path, &error);
    ASSERT_TRUE(table) << error;
    EXPECT_EQ(table->lookup("k"), "v");
    EXPECT_FALSE(StringTable::load((folder / "absent.strings").string(), &error));
    EXPECT_NE(error.find("absent.strings"), std::string::npos);
    EXPECT_FALSE(StringTable::load(folder.string(), &error));
    std::ofstream(path) << "\"k\" = ";
    EXPECT_FALSE(StringTable::load(path, &error));
    EXPECT_NE(error.find("Errors.strings"), std::string::npos);
    std::filesystem::remove_all(folder);
}

TEST(StringTable, ShippedErrorsTableIsFoundAndReadable)
{
    // The tests run from the build tree, whose resources/ holds the shipped table.
    const std::shared_ptr<const StringTable> table = errorsTable();
    EXPECT_TRUE(table->contains("NSOSStatusErrorDomain.-50.Description"));
    setErrorsTable(nullptr);
    EXPECT_EQ(errorsTable()->lookup("NSOSStatusErrorDomain.-50.Description"), "NSOSStatusErrorDomain.-50.Description");
    setErrorsTable(table);
}

} // namespace
} // namespace plyra
