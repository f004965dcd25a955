// SPDX-License-Identifier: MIT
#include "platform/plist/property_list.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace plyra {
namespace {

using Data = PropertyList::Data;
using Array = PropertyList::Array;

TEST(PropertyList, NumericReadings)
{
    const std::vector<std::pair<PropertyList, double>> rows = {
        { PropertyList("0.5"), 0.5 }, { PropertyList("  \t-2.25e1xyz"), -22.5 }, { PropertyList("+3"), 3.0 },
        { PropertyList("abc"), 0.0 }, { PropertyList(""), 0.0 }, { PropertyList("nan"), 0.0 },
        { PropertyList("-nan"), 0.0 }, { PropertyList("-inf"), 0.0 }, { PropertyList("+inf"), 0.0 },
        { PropertyList(" -Infinity"), 0.0 }, { PropertyList("+NaN"), 0.0 }, { PropertyList("-0.25"), -0.25 },
        { PropertyList(7), 7.0 }, { PropertyList(true), 1.0 }, { PropertyList(false), 0.0 },
        { PropertyList(Array { PropertyList(1) }), 0.0 }, { PropertyList(Data { 1 }), 0.0 },
    };
    for (const auto& [value, expected] : rows)
        EXPECT_DOUBLE_EQ(value.doubleValue(), expected) << static_cast<int>(value.type());
    EXPECT_FLOAT_EQ(PropertyList("0.8").floatValue(), 0.8f);
    EXPECT_FLOAT_EQ(PropertyList(0.8).floatValue(), 0.8f);
}

TEST(PropertyList, IntegerValueTruncatesAndClamps)
{
    const std::vector<std::pair<PropertyList, std::int64_t>> rows = {
        { PropertyList(640.7), 640 }, { PropertyList(-2.9), -2 }, { PropertyList("480.2"), 480 },
        { PropertyList(std::int64_t { 1 } << 60), std::int64_t { 1 } << 60 },
        { PropertyList(1e300), std::numeric_limits<std::int64_t>::max() },
        { PropertyList(-1e300), std::numeric_limits<std::int64_t>::min() }, { PropertyList(std::nan("")), 0 },
    };
    for (const auto& [value, expected] : rows)
        EXPECT_EQ(value.integerValue(), expected) << value.doubleValue();
}

TEST(PropertyList, BoolValue)
{
    const std::vector<std::pair<PropertyList, std::optional<bool>>> rows = {
        { PropertyList(true), true }, { PropertyList("YES"), true }, { PropertyList("no"), false },
        { PropertyList("1"), true }, { PropertyList("0"), false }, { PropertyList(0.0), false },
        { PropertyList(2), true }, { PropertyList("maybe"), std::nullopt }, { PropertyList(Data {}), std::nullopt },
    };
    for (const auto& [value, expected] : rows)
        EXPECT_EQ(value.boolValue(), expected);
}

TEST(PropertyList, FindAndDeepEquality)
{
    const PropertyList dict(PropertyList::Dictionary { { "a", PropertyList("1") }, { "b", PropertyList(2) } });
    EXPECT_EQ(*dict.find("a"), PropertyList("1"));
    EXPECT_EQ(dict.find("c"), nullptr);
    EXPECT_EQ(PropertyList("a").find("a"), nullptr);
    EXPECT_NE(PropertyList("1"), PropertyList(1));
    EXPECT_NE(PropertyList(1), PropertyList(1.0));
    const PropertyList a(Array { PropertyList("x"), PropertyList(PropertyList::Dictionary { { "k", PropertyList("v") } }) });
    PropertyList b = a;
    EXPECT_EQ(a, b);
    (*(*b.array())[1].dictionary())["k"] = PropertyList("w");
    EXPECT_NE(a, b);
}

} // namespace
} // namespace plyra
