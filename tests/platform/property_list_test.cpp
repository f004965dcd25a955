// SPDX-License-Identifier: MIT
#include "platform/plist/property_list.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace plyra {
namespace {

TEST(PropertyList, DefaultIsEmptyString)
{
    const PropertyList value;
    EXPECT_EQ(value.type(), PropertyList::Type::String);
    ASSERT_NE(value.string(), nullptr);
    EXPECT_EQ(*value.string(), "");
}

TEST(PropertyList, EachConstructorGivesItsType)
{
    EXPECT_EQ(PropertyList("a").type(), PropertyList::Type::String);
    EXPECT_EQ(PropertyList(std::string("a")).type(), PropertyList::Type::String);
    EXPECT_EQ(PropertyList(3).type(), PropertyList::Type::Integer);
    EXPECT_EQ(PropertyList(std::int64_t { 3 }).type(), PropertyList::Type::Integer);
    EXPECT_EQ(PropertyList(0.5).type(), PropertyList::Type::Real);
    EXPECT_EQ(PropertyList(true).type(), PropertyList::Type::Boolean);
    EXPECT_EQ(PropertyList(PropertyList::Data { 1, 2 }).type(), PropertyList::Type::Data);
    EXPECT_EQ(PropertyList(PropertyList::Array {}).type(), PropertyList::Type::Array);
    EXPECT_EQ(PropertyList(PropertyList::Dictionary {}).type(), PropertyList::Type::Dictionary);
}

TEST(PropertyList, TypedAccessIsNullForOtherTypes)
{
    const PropertyList text("x");
    EXPECT_EQ(text.array(), nullptr);
    EXPECT_EQ(text.dictionary(), nullptr);
    EXPECT_EQ(text.data(), nullptr);
    const PropertyList number(2);
    EXPECT_EQ(number.string(), nullptr);
    EXPECT_TRUE(number.isNumber());
    EXPECT_FALSE(number.isString());
}

TEST(PropertyList, FindLooksUpDictionaryKeys)
{
    const PropertyList dict(PropertyList::Dictionary { { "a", PropertyList("1") }, { "b", PropertyList(2) } });
    ASSERT_NE(dict.find("a"), nullptr);
    EXPECT_EQ(*dict.find("a")->string(), "1");
    EXPECT_EQ(dict.find("b")->integerValue(), 2);
    EXPECT_EQ(dict.find("c"), nullptr);
    EXPECT_EQ(PropertyList("a").find("a"), nullptr);
}

TEST(PropertyList, DictionaryKeepsKeysSorted)
{
    PropertyList dict(PropertyList::Dictionary {});
    (*dict.dictionary())["b"] = PropertyList(1);
    (*dict.dictionary())["B"] = PropertyList(2);
    (*dict.dictionary())["a"] = PropertyList(3);
    std::string order;
    for (const auto& entry : *dict.dictionary())
        order += entry.first;
    EXPECT_EQ(order, "Bab");
}

TEST(PropertyList, NumericReadingOfStrings)
{
    EXPECT_DOUBLE_EQ(PropertyList("0.5").doubleValue(), 0.5);
    EXPECT_DOUBLE_EQ(PropertyList("  \t-2.25e1xyz").doubleValue(), -22.5);
    EXPECT_DOUBLE_EQ(PropertyList("+3").doubleValue(), 3.0);
    EXPECT_DOUBLE_EQ(PropertyList("abc").doubleValue(), 0.0);
    EXPECT_DOUBLE_EQ(PropertyList("").doubleValue(), 0.0);
    EXPECT_DOUBLE_EQ(PropertyList("nan").doubleValue(), 0.0);
    EXPECT_FLOAT_EQ(PropertyList("0.8").floatValue(), 0.8f);
}

TEST(PropertyList, NumericReadingOfOtherTypes)
{
    EXPECT_DOUBLE_EQ(PropertyList(7).doubleValue(), 7.0);
    EXPECT_DOUBLE_EQ(PropertyList(true).doubleValue(), 1.0);
    EXPECT_DOUBLE_EQ(PropertyList(false).doubleValue(), 0.0);
    EXPECT_DOUBLE_EQ(PropertyList(PropertyList::Array { PropertyList(1) }).doubleValue(), 0.0);
    EXPECT_DOUBLE_EQ(PropertyList(PropertyList::Data { 1 }).doubleValue(), 0.0);
}

TEST(PropertyList, IntegerValueTruncatesAndClamps)
{
    EXPECT_EQ(PropertyList(640.7).integerValue(), 640);
    EXPECT_EQ(PropertyList(-2.9).integerValue(), -2);
    EXPECT_EQ(PropertyList("480.2").integerValue(), 480);
    EXPECT_EQ(PropertyList(std::int64_t { 1 } << 60).integerValue(), std::int64_t { 1 } << 60);
    EXPECT_EQ(PropertyList(1e300).integerValue(), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(PropertyList(-1e300).integerValue(), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(PropertyList(std::nan("")).integerValue(), 0);
}

TEST(PropertyList, BoolValue)
{
    EXPECT_EQ(PropertyList(true).boolValue(), true);
    EXPECT_EQ(PropertyList("YES").boolValue(), true);
    EXPECT_EQ(PropertyList("no").boolValue(), false);
    EXPECT_EQ(PropertyList("1").boolValue(), true);
    EXPECT_EQ(PropertyList("0").boolValue(), false);
    EXPECT_EQ(PropertyList(0.0).boolValue(), false);
    EXPECT_EQ(PropertyList(2).boolValue(), true);
    EXPECT_EQ(PropertyList("maybe").boolValue(), std::nullopt);
    EXPECT_EQ(PropertyList(PropertyList::Data {}).boolValue(), std::nullopt);
}

TEST(PropertyList, EqualityComparesTypeAndContent)
{
    EXPECT_EQ(PropertyList("1"), PropertyList("1"));
    EXPECT_NE(PropertyList("1"), PropertyList(1));
    EXPECT_NE(PropertyList(1), PropertyList(1.0));
    const PropertyList a(PropertyList::Array { PropertyList("x"), PropertyList(PropertyList::Dictionary { { "k", PropertyList("v") } }) });
    PropertyList b = a;
    EXPECT_EQ(a, b);
    (*(*b.array())[1].dictionary())["k"] = PropertyList("w");
    EXPECT_NE(a, b);
}

} // namespace
} // namespace plyra
