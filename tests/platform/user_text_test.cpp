// SPDX-License-Identifier: MIT
#include "platform/user_text.h"

#include <gtest/gtest.h>

#include <cstring>

namespace plyra {
namespace {

TEST(UserText, FillsInMarkersInAnyOrder)
{
    struct Case { const char* text; std::initializer_list<std::string_view> values; const char* filled; };
    const Case cases[] = {
        {"the folder '%1' is not writable (%2)", {"/tmp/x", "denied"}, "the folder '/tmp/x' is not writable (denied)"},
        {"„%2“ vor „%1“", {"a", "b"}, "„b“ vor „a“"},
        {"100 % sure: %1", {"yes"}, "100 % sure: yes"},
        {"%1 and %3", {"one"}, "one and %3"}, // a marker without a value stays
        {"%1%1", {"%2"}, "%2%2"},            // values are not scanned again
    };
    for (const Case& c : cases)
        EXPECT_EQ(fillIn(c.text, c.values), c.filled) << c.text;
}

TEST(UserText, GoesThroughTheInstalledTranslator)
{
    EXPECT_EQ(userText("OutputPathGuard", "it is a folder"), "it is a folder");
    setUserTextTranslator([](const char* context, const char* text) {
        return std::strcmp(context, "OutputPathGuard") == 0 ? std::string("es ist ein Ordner") : std::string(text);
    });
    EXPECT_EQ(userText("OutputPathGuard", "it is a folder"), "es ist ein Ordner");
    EXPECT_EQ(userText("RegularFile", "it is a folder"), "it is a folder");
    setUserTextTranslator(nullptr);
    EXPECT_EQ(userText("OutputPathGuard", "it is a folder"), "it is a folder");
}

} // namespace
} // namespace plyra
