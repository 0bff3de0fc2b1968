#include "Platform/Foundation/NSJSONSerialization.h"

#include <gtest/gtest.h>

#include <limits>

namespace veyra {
namespace {

std::string textOf(const id& value) {
    return value.description().utf8();
}

TEST(IdDescription, NamesNothingAndUndefined) {
    EXPECT_EQ(textOf(nullptr), "(null)");
    EXPECT_EQ(textOf(WebUndefined{}), "undefined");
}

TEST(IdDescription, WritesIntegersPlain) {
    EXPECT_EQ(textOf(5), "5");
    EXPECT_EQ(textOf(-1), "-1");
    EXPECT_EQ(textOf(0.0), "0");
    EXPECT_EQ(textOf(-0.0), "-0");
    EXPECT_EQ(textOf(1000000), "1000000");
    EXPECT_EQ(textOf(9007199254740991.0), "9007199254740991");
    EXPECT_EQ(textOf(true), "1");
    EXPECT_EQ(textOf(false), "0");
}

TEST(IdDescription, WritesOtherNumbersWithSixteenDigits) {
    EXPECT_EQ(textOf(0.1), "0.1");
    EXPECT_EQ(textOf(-2.5), "-2.5");
    EXPECT_EQ(textOf(1.0 / 3), "0.3333333333333333");
    EXPECT_EQ(textOf(2.0 / 3), "0.6666666666666666");
    EXPECT_EQ(textOf(1e20), "1e+20");
    EXPECT_EQ(textOf(1.5e-7), "1.5e-07");
    EXPECT_EQ(textOf(std::numeric_limits<double>::max()), "1.797693134862316e+308");
    EXPECT_EQ(textOf(std::numeric_limits<double>::quiet_NaN()), "nan");
    EXPECT_EQ(textOf(-std::numeric_limits<double>::quiet_NaN()), "nan");
    EXPECT_EQ(textOf(std::numeric_limits<double>::infinity()), "inf");
    EXPECT_EQ(textOf(-std::numeric_limits<double>::infinity()), "-inf");
}

TEST(IdDescription, GivesStringsAsTheyAre) {
    EXPECT_EQ(textOf("a \"b\"\n"), "a \"b\"\n");
    EXPECT_EQ(textOf(""), "");
}

TEST(IdDescription, GivesObjectsTheirClassName) {
    EXPECT_EQ(textOf(std::make_shared<NSNull>()), "NSNull");
}

TEST(IdDescription, WritesAnArrayWithAnElementALine) {
    EXPECT_EQ(textOf(NSArray{"latitude", "longitude"}), "(\n    latitude,\n    longitude\n)");
    EXPECT_EQ(textOf(NSArray{"identifier"}), "(\n    identifier\n)");
    EXPECT_EQ(textOf(NSArray()), "(\n)");
    EXPECT_EQ(textOf(NSArray{1, true, 25}), "(\n    1,\n    1,\n    25\n)");
}

TEST(IdDescription, QuotesElementsThatAreNotAlphanumeric) {
    EXPECT_EQ(textOf(NSArray{"two words", "", "a-b", -1, 1.5, nullptr}),
              "(\n    \"two words\",\n    \"\",\n    \"a-b\",\n    \"-1\",\n    \"1.5\",\n    \"(null)\"\n)");
}

TEST(IdDescription, EscapesInsideQuotes) {
    EXPECT_EQ(textOf(NSArray{"a\"b"}), "(\n    \"a\\\"b\"\n)");
    EXPECT_EQ(textOf(NSArray{"a\\b"}), "(\n    \"a\\\\b\"\n)");
    EXPECT_EQ(textOf(NSArray{"a\nb"}), "(\n    \"a\\nb\"\n)");
    EXPECT_EQ(textOf(NSArray{"\xc3\xa9t\xc3\xa9"}), "(\n    \"\\U00e9t\\U00e9\"\n)");
    EXPECT_EQ(textOf(NSArray{"\xf0\x9f\x97\xba"}), "(\n    \"\\Ud83d\\Uddfa\"\n)");
    EXPECT_EQ(textOf(NSArray{"\t"}), "(\n    \"\\U0009\"\n)");
}

TEST(IdDescription, IndentsNestedArrays) {
    EXPECT_EQ(textOf(NSArray{"a", NSArray{"b", NSArray()}, "c"}),
              "(\n    a,\n    (\n        b,\n        (\n        )\n    ),\n    c\n)");
}

} // namespace
} // namespace veyra
