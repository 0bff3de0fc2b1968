#include "Platform/Foundation/NSString.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>

namespace veyra {
namespace {

double read(std::string_view text) {
    return NSString(text).doubleValue();
}

TEST(NSStringNumber, ReadsTheLongestDecimalPrefix) {
    EXPECT_EQ(read("5"), 5);
    EXPECT_EQ(read("48.2082"), 48.2082);
    EXPECT_EQ(read("-16.37 east"), -16.37);
    EXPECT_EQ(read("+5"), 5);
    EXPECT_EQ(read(".5"), .5);
    EXPECT_EQ(read("-.5"), -.5);
    EXPECT_EQ(read("5."), 5);
    EXPECT_EQ(read("1.2.3"), 1.2);
    EXPECT_EQ(read("007"), 7);
    EXPECT_EQ(read("1,5"), 1);
}

TEST(NSStringNumber, TakesAnExponentOnlyWhenItHasDigits) {
    EXPECT_EQ(read("1e3"), 1000);
    EXPECT_EQ(read("1E+3"), 1000);
    EXPECT_EQ(read("25e-1"), 2.5);
    EXPECT_EQ(read("1.e2"), 100);
    EXPECT_EQ(read("3e"), 3);
    EXPECT_EQ(read("3e+"), 3);
    EXPECT_EQ(read("3e-x"), 3);
    EXPECT_EQ(read("e5"), 0);
    EXPECT_EQ(read(".e5"), 0);
}

TEST(NSStringNumber, SkipsLeadingWhiteSpaceOnly) {
    EXPECT_EQ(read(" \t\r\n\v\f12"), 12);
    EXPECT_EQ(read("\xe2\x80\x83\xe3\x80\x80"
                   "12"),
              12);
    EXPECT_EQ(read("- 12"), 0);
    EXPECT_EQ(read("1 2"), 1);
}

TEST(NSStringNumber, GivesZeroWhereThereIsNoNumber) {
    for (const char* text : {"", " ", "-", "+", ".", "-.", "abc", "inf", "-Infinity", "nan", "NaN", "x1"})
        EXPECT_EQ(read(text), 0) << text;
    EXPECT_EQ(read("0x1F"), 0);
    EXPECT_EQ(read(std::string_view("\0001", 2)), 0);
    EXPECT_EQ(read("\xd9\xa3"), 0); // a digit of another script
}

TEST(NSStringNumber, KeepsTheSignOfZero) {
    EXPECT_TRUE(std::signbit(read("-0")));
    EXPECT_TRUE(std::signbit(read("-1e-999")));
    EXPECT_FALSE(std::signbit(read("0")));
}

TEST(NSStringNumber, GoesToInfinityAndToZeroBeyondTheRange) {
    EXPECT_EQ(read("1e309"), HUGE_VAL);
    EXPECT_EQ(read("-1e309"), -HUGE_VAL);
    EXPECT_EQ(read("1.7976931348623159e308"), HUGE_VAL);
    EXPECT_EQ(read("1.7976931348623157e308"), std::numeric_limits<double>::max());
    EXPECT_EQ(read("1e99999999999999999999999"), HUGE_VAL);
    EXPECT_EQ(read("1e-99999999999999999999999"), 0);
    EXPECT_EQ(read("0e99999999999999999999999"), 0);
    EXPECT_EQ(read("5e-324"), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(read("2.5e-324"), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(read("2.4e-324"), 0);
    EXPECT_EQ(read("2.2250738585072011e-308"), 2.2250738585072011e-308);
}

TEST(NSStringNumber, RoundsToTheNearestDouble) {
    EXPECT_EQ(read("9007199254740993"), 9007199254740992);
    EXPECT_EQ(read("9007199254740993.000000000000000000000000000001"), 9007199254740994);
    // Just above the middle between two doubles, by a digit far behind those that fit.
    EXPECT_EQ(read("9007199254740993." + std::string(2000, '0') + "1"), 9007199254740994);
    EXPECT_EQ(read("0.1"), 0.1);
    EXPECT_EQ(read("-1.5066267848297628"), -1.5066267848297628);
}

TEST(NSStringNumber, WeighsManyZerosAgainstAHugeExponent) {
    EXPECT_EQ(read("0." + std::string(100000, '0') + "1e100001"), 1);
    EXPECT_EQ(read("1" + std::string(100000, '0') + "e-100000"), 1);
    EXPECT_EQ(read(std::string(100000, '0') + "7"), 7);
}

TEST(NSStringNumber, ReadsAMillionDigitsInLinearTime) {
    const NSString digits{std::string_view(std::string(1'000'000, '7'))};
    const NSString fraction{std::string_view("0." + std::string(1'000'000, '3'))};
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(digits.doubleValue(), HUGE_VAL);
    EXPECT_EQ(fraction.doubleValue(), 1.0 / 3);
    EXPECT_EQ(digits.intValue(), 2147483647);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

TEST(NSStringNumber, NarrowsToSinglePrecision) {
    EXPECT_EQ(static_cast<double>(NSString("37.123456789").floatValue()), 37.12345504760742);
    EXPECT_EQ(NSString("1e39").floatValue(), HUGE_VALF);
    EXPECT_EQ(NSString("-1e39").floatValue(), -HUGE_VALF);
    EXPECT_EQ(NSString("none").floatValue(), 0.F);
}

} // namespace
} // namespace veyra
