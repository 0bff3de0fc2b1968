#include "Platform/Foundation/NSLog.h"

#include "Platform/Foundation/NSJSONSerialization.h"
#include "Tests/Platform/Foundation/CapturedLog.h"

#include <gtest/gtest.h>

#include <limits>

namespace veyra {
namespace {

using namespace std::string_literals;

std::string textOf(const char* format, std::initializer_list<FormatArgument> arguments = {}) {
    return NSStringWithFormat(format, arguments).utf8();
}

TEST(NSStringWithFormat, FillsPlaceholdersInOrder) {
    EXPECT_EQ(textOf("%s Unable to create the GeoMap class: %@", {"-[VeyraView webPlugInInitialize]", "why"}),
              "-[VeyraView webPlugInInitialize] Unable to create the GeoMap class: why");
    EXPECT_EQ(textOf("Unable to set property named %@ with value %f", {NSString("kVeyraTypeHybrid"), 2.0}),
              "Unable to set property named kVeyraTypeHybrid with value 2.000000");
}

TEST(NSStringWithFormat, TakesEveryKindOfValue) {
    const id array = NSArray{"latitude", "longitude"};
    EXPECT_EQ(textOf("%@ %@ %@ %@", {5, true, 0.1, -3}), "5 1 0.1 -3");
    EXPECT_EQ(textOf("%@ %@", {id(), WebUndefined{}}), "(null) undefined");
    EXPECT_EQ(textOf("keys %@", {array}), "keys (\n    latitude,\n    longitude\n)");
    EXPECT_EQ(textOf("%@", {std::make_shared<NSNull>()}), "NSNull");
    EXPECT_EQ(textOf("%@", {nullptr}), "(null)");
}

TEST(NSStringWithFormat, WritesNumbersWithSixDecimalsAndNoExponent) {
    EXPECT_EQ(textOf("{'latitude':%f,'longitude':%f}", {1.0, -2.5}), "{'latitude':1.000000,'longitude':-2.500000}");
    EXPECT_EQ(textOf("%f", {1e22}), "10000000000000000000000.000000");
    EXPECT_EQ(textOf("%f %f", {0.0000005, 37.123456789}), "0.000000 37.123457");
    EXPECT_EQ(textOf("%f %f %f", {3, true, 0.5F}), "3.000000 1.000000 0.500000");
    EXPECT_EQ(textOf("%f", {"text"}), "0.000000");
    EXPECT_EQ(textOf("%f", {std::numeric_limits<double>::infinity()}), "inf");
    EXPECT_EQ(textOf("%f", {-std::numeric_limits<double>::quiet_NaN()}), "nan");
    EXPECT_EQ(textOf("%f", {-std::numeric_limits<double>::max()}).size(), 317U);
}

TEST(NSStringWithFormat, NamesMissingArguments) {
    EXPECT_EQ(textOf("%@ %s %f", {"one"}), "one (null) (null)");
}

TEST(NSStringWithFormat, LeavesOtherPercentSignsAlone) {
    EXPECT_EQ(textOf("100%% %d %"), "100% %d %");
    EXPECT_EQ(textOf("%%@", {"unused"}), "%@");
}

TEST(NSStringWithFormat, DoesNotReadArgumentsAsFormats) {
    EXPECT_EQ(textOf("%@ %@", {"%@%s%n", "%f"}), "%@%s%n %f");
}

TEST(NSStringWithFormat, KeepsLoneSurrogates) {
    const std::u16string lone{char16_t{0xd800}};
    EXPECT_EQ(NSStringWithFormat("%@", {NSString(std::u16string_view(lone))}).units(), lone);
}

TEST(NSLog, WritesOneMessage) {
    const CapturedLog log;
    NSLog("log: %@", {"hello"});
    NSLog("plain");
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"message: log: hello", "message: plain"}));
}

TEST(NSLog, WritesAnyContentAsItIs) {
    const CapturedLog log;
    NSLog("log: %@", {"%s%n%n 100%"});
    NSLog("%@", {NSString(std::string_view("a\0b", 3))});
    EXPECT_EQ(log.lines(), (std::vector<std::string>{"message: log: %s%n%n 100%", "message: a\0b"s}));
}

TEST(NSLog, CutsLongMessagesBetweenCharacters) {
    const CapturedLog log;
    const std::string fits(64 * 1024, 'a');
    std::string wide = "a";
    for (int i = 0; i < 40000; ++i)
        wide += "\xc3\xa9";
    NSLog("%@", {NSString(std::string_view(fits))});
    NSLog("%@b", {NSString(std::string_view(fits))});
    NSLog("%@", {NSString(std::string_view(wide))});
    const std::vector<std::string> lines = log.lines();
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_TRUE(lines[0] == "message: " + fits);
    EXPECT_TRUE(lines[1] == "message: " + fits);
    EXPECT_TRUE(lines[2] == "message: " + wide.substr(0, 64 * 1024 - 1));
}

TEST(NSLogDeathTest, SurvivesTheOrdinaryWriter) {
    EXPECT_EXIT(
        {
            NSLog("%@", {NSString(std::string_view("a\0%n\xff", 5))});
            std::exit(0);
        },
        testing::ExitedWithCode(0), "veyra-Message: .*a.u0000%n");
}

} // namespace
} // namespace veyra
