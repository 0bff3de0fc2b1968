#include "Platform/Foundation/NSString.h"

#include "Tests/Platform/Foundation/Raised.h"

#include <gtest/gtest.h>

#include <array>

namespace veyra {
namespace {

using namespace std::string_literals;

std::u16string unitsOf(std::string_view utf8) {
    return std::u16string(NSString(utf8).units());
}

TEST(NSString, StartsEmpty) {
    EXPECT_TRUE(NSString().isEmpty());
    EXPECT_EQ(NSString().length(), 0U);
    EXPECT_EQ(NSString(), NSString(""));
    EXPECT_EQ(NSString().hash(), NSString("").hash());
}

TEST(NSString, CountsUnits) {
    EXPECT_EQ(NSString("a\xc3\xa9\xe2\x82\xac").length(), 3U);
    EXPECT_EQ(unitsOf("\xf0\x9f\x97\xba"), u"\U0001F5FA");
    EXPECT_EQ(NSString("\xf0\x9f\x97\xba").length(), 2U);
}

TEST(NSString, KeepsEveryUnitItIsGivenSurrogatesAndZerosIncluded) {
    const std::u16string odd{u'a', char16_t{0xd800}, u'\0', char16_t{0xdc00}, char16_t{0xffff}};
    const NSString string{std::u16string_view(odd)};
    EXPECT_EQ(string.units(), odd);
    EXPECT_EQ(string, NSString(std::u16string_view(odd)));
    EXPECT_FALSE(string == NSString("a"));
}

TEST(NSString, GivesAReplacementCharacterForALoneSurrogateInUTF8) {
    const std::u16string reversed{char16_t{0xdc00}, char16_t{0xd83d}, u'b', char16_t{0xd83d}};
    EXPECT_EQ(NSString(std::u16string_view(reversed)).utf8(), "\xef\xbf\xbd\xef\xbf\xbd"
                                                              "b\xef\xbf\xbd");
}

TEST(NSString, RoundTripsWellFormedUTF8) {
    const std::string text = "\x01~\x7f \xc2\x80\xdf\xbf \xe0\xa0\x80\xed\x9f\xbf\xee\x80\x80\xef\xbf\xbf "
                             "\xf0\x90\x80\x80\xf4\x8f\xbf\xbf";
    EXPECT_EQ(NSString(std::string_view(text)).utf8(), text);
    EXPECT_EQ(NSString(std::string_view("a\0b", 3)).utf8(), "a\0b"s);
}

TEST(NSString, ReplacesEachMalformedSequenceOnce) {
    EXPECT_EQ(unitsOf("a\x80z"), u"a\xfffdz");
    EXPECT_EQ(unitsOf("\xc3"), u"\xfffd");
    EXPECT_EQ(unitsOf("\xe2\x82z"), u"\xfffdz");
    EXPECT_EQ(unitsOf("\xf0\x9f\x97"), u"\xfffd");
    EXPECT_EQ(unitsOf("\xc0\xaf"), u"\xfffd\xfffd");                     // overlong
    EXPECT_EQ(unitsOf("\xed\xa0\x80"), u"\xfffd\xfffd\xfffd");           // a surrogate
    EXPECT_EQ(unitsOf("\xf4\x90\x80\x80"), u"\xfffd\xfffd\xfffd\xfffd"); // beyond the last character
    EXPECT_EQ(unitsOf("\xff\xc3\xa9"), u"\xfffd\u00e9");
}

TEST(NSString, ComparesAndHashesByText) {
    const NSString a("identifier");
    const NSString copy = a;
    EXPECT_EQ(a, copy);
    EXPECT_EQ(a, NSString(u"identifier"));
    EXPECT_EQ(a.hash(), NSString(u"identifier").hash());
    EXPECT_FALSE(a == NSString("Identifier"));
    EXPECT_EQ(std::hash<NSString>()(a), a.hash());
}

TEST(NSString, TakesSubstrings) {
    const NSString color("ff8000");
    EXPECT_EQ(color.substringWithRange(2, 2), NSString("80"));
    EXPECT_EQ(color.substringWithRange(0, 6), color);
    EXPECT_EQ(color.substringWithRange(6, 0), NSString());
}

TEST(NSString, RaisesARangeExceptionForASubstringPastTheEnd) {
    EXPECT_EQ(raisedBy([] { NSString("ff800").substringWithRange(4, 2); }),
              "NSRangeException: -[NSString substringWithRange:]: Range {4, 2} out of bounds; string length 5");
    EXPECT_EQ(raisedBy([] { NSString("a").substringWithRange(2, 0); }),
              "NSRangeException: -[NSString substringWithRange:]: Range {2, 0} out of bounds; string length 1");
    EXPECT_EQ(
        raisedBy([] { NSString("abc").substringWithRange(2, SIZE_MAX); }),
        "NSRangeException: -[NSString substringWithRange:]: Range {2, 18446744073709551615} out of bounds; string "
        "length 3");
}

TEST(NSString, ReplacesEveryOccurrenceOfAUnit) {
    const NSString quoted("{'x':'y'}");
    EXPECT_EQ(quoted.stringByReplacingUnit(u'\'', u'"'), NSString("{\"x\":\"y\"}"));
    EXPECT_EQ(quoted, NSString("{'x':'y'}"));
    EXPECT_EQ(NSString("abc").stringByReplacingUnit(u'z', u'"'), NSString("abc"));
}

TEST(NSString, ReadsIntegers) {
    EXPECT_EQ(NSString("12.9").intValue(), 12);
    EXPECT_EQ(NSString(" \t\n-7up").intValue(), -7);
    EXPECT_EQ(NSString("+8").intValue(), 8);
    EXPECT_EQ(NSString("\xc2\xa0\x39").intValue(), 9);
    EXPECT_EQ(NSString("- 5").intValue(), 0);
    EXPECT_EQ(NSString("--5").intValue(), 0);
    EXPECT_EQ(NSString("0x10").intValue(), 0);
    EXPECT_EQ(NSString("x").intValue(), 0);
    EXPECT_EQ(NSString().intValue(), 0);
}

TEST(NSString, ClampsIntegersTo32Bits) {
    EXPECT_EQ(NSString("2147483647").intValue(), 2147483647);
    EXPECT_EQ(NSString("2147483648").intValue(), 2147483647);
    EXPECT_EQ(NSString("-2147483648").intValue(), -2147483647 - 1);
    EXPECT_EQ(NSString("-2147483649").intValue(), -2147483647 - 1);
    EXPECT_EQ(NSString("99999999999999999999999999").intValue(), 2147483647);
}

TEST(NSString, ReadsBooleans) {
    const std::array yes{"Y", "yes", "T", "true", "1", "9lives", "  +0001", "-3", "0y", "\n0007"};
    for (const char* text : yes)
        EXPECT_TRUE(NSString(text).boolValue()) << text;
    const std::array no{"", "N", "no", "F", "false", "0", "000", "-0", "on", "+ 1", "0.5", "0 1", "x1"};
    for (const char* text : no)
        EXPECT_FALSE(NSString(text).boolValue()) << text;
}

} // namespace
} // namespace veyra
