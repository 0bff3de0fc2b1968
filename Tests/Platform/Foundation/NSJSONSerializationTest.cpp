#include "Platform/Foundation/NSJSONSerialization.h"

#include <gtest/gtest.h>

namespace veyra {
namespace {

TEST(NSJSONSerialization, ReadsAnObject) {
    const id value = JSONObjectWithData(R"({"latitude":48.2,"name":"Wien","on":true,"off":false,"none":null,"n":-3})");
    const auto dictionary = value.as<NSDictionary>();
    ASSERT_NE(dictionary, nullptr);
    EXPECT_EQ(dictionary->entries().size(), 6U);
    EXPECT_EQ(dictionary->objectForKey("latitude"), id(48.2));
    EXPECT_EQ(dictionary->objectForKey("name"), id("Wien"));
    EXPECT_TRUE(dictionary->objectForKey("on").isBoolean());
    EXPECT_EQ(dictionary->objectForKey("on"), id(true));
    EXPECT_EQ(dictionary->objectForKey("off"), id(false));
    EXPECT_NE(dictionary->objectForKey("none").as<NSNull>(), nullptr);
    EXPECT_EQ(dictionary->objectForKey("n"), id(-3));
    EXPECT_TRUE(dictionary->objectForKey("absent").isNil());
}

TEST(NSJSONSerialization, ReadsNestedValues) {
    const id value = JSONObjectWithData(R"( [1, [], {"a": [2, {"b": "c"}]}] )");
    ASSERT_NE(value.array(), nullptr);
    ASSERT_EQ(value.array()->size(), 3U);
    EXPECT_EQ((*value.array())[0], id(1));
    EXPECT_EQ((*value.array())[1], id(NSArray()));
    const id inner = (*value.array())[2].valueForKey("a");
    ASSERT_NE(inner.array(), nullptr);
    EXPECT_EQ((*inner.array())[0], id(2));
    EXPECT_EQ((*inner.array())[1].valueForKey("b"), id("c"));
}

TEST(NSJSONSerialization, ReadsTheTextFormOfARegion) {
    const id value = JSONObjectWithData(
        NSString("{'latitude':1.000000,'longitude':-2.500000}").stringByReplacingUnit(u'\'', u'"').utf8());
    EXPECT_EQ(value.valueForKey("latitude"), id(1));
    EXPECT_EQ(value.valueForKey("longitude"), id(-2.5));
}

TEST(NSJSONSerialization, DecodesEscapes) {
    EXPECT_EQ(JSONObjectWithData(R"(["\u00e9\ud83d\uddfa\n\u0000"])"),
              id(NSArray{NSString(std::u16string_view(u"\u00e9\U0001F5FA\n\0", 5))}));
}

TEST(NSJSONSerialization, TakesTheLastOfEqualKeys) {
    EXPECT_EQ(JSONObjectWithData(R"({"a":1,"b":2,"a":3})").valueForKey("a"), id(3));
}

TEST(NSJSONSerialization, ReadsIntegersBeyond64BitsAsDoubles) {
    EXPECT_EQ(JSONObjectWithData("[18446744073709551616,-9223372036854775809,9007199254740993]"),
              id(NSArray{0x1p64, -0x1p63, 0x1p53}));
}

TEST(NSJSONSerialization, GivesNilForWhatIsNoJSON) {
    for (const char* text : {"", " ", "{", "{]", "{\"a\"}", "{\"a\":}", "[1,]", "[1] 2", "{'a':1}", "[01]", "[NaN]",
                             "// no\n[1]", "[1e999]", "[\"\\ud800\"]", "[\"\xff\"]", "[\"\n\"]", "nothing"})
        EXPECT_TRUE(JSONObjectWithData(text).isNil()) << text;
}

TEST(NSJSONSerialization, GivesNilForABareValue) {
    for (const char* text : {"5", "\"text\"", "true", "null"})
        EXPECT_TRUE(JSONObjectWithData(text).isNil()) << text;
}

TEST(NSJSONSerialization, TakesNestingUpTo512Levels) {
    const auto nested = [](size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
    EXPECT_TRUE(JSONObjectWithData(nested(512)).isArray());
    EXPECT_TRUE(JSONObjectWithData(nested(513)).isNil());
    EXPECT_TRUE(JSONObjectWithData(std::string(1'000'000, '[')).isNil());
}

TEST(NSNull, ConvertsToNothingAndIsOneObject) {
    const id first = (*JSONObjectWithData("[null]").array())[0];
    EXPECT_EQ(first.object()->isa()->name(), "NSNull");
    EXPECT_EQ(first, (*JSONObjectWithData("[null]").array())[0]);
}

} // namespace
} // namespace veyra
