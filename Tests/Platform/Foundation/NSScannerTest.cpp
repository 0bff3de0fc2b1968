#include "Platform/Foundation/NSScanner.h"

#include <gtest/gtest.h>

namespace veyra {
namespace {

/// What the text scans as; 99 where the scan leaves its target untouched.
uint32_t scan(const char* text) {
    uint32_t value = 99;
    NSScanner::scannerWithString(text).scanHexInt(value);
    return value;
}

TEST(NSScanner, ReadsHexadecimalDigitsOfEitherCase) {
    EXPECT_EQ(scan("ff"), 255U);
    EXPECT_EQ(scan("0A"), 10U);
    EXPECT_EQ(scan("DeadBeef"), 0xdeadbeefU);
}

TEST(NSScanner, StopsAtTheFirstOtherUnit) {
    EXPECT_EQ(scan("a-"), 10U);
    EXPECT_EQ(scan("1 2"), 1U);
    EXPECT_EQ(scan("1g"), 1U);
}

TEST(NSScanner, SkipsWhiteSpaceAndAPrefix) {
    EXPECT_EQ(scan(" 7"), 7U);
    EXPECT_EQ(scan("\n\t 0x1F"), 31U);
    EXPECT_EQ(scan("0Xab"), 171U);
}

TEST(NSScanner, TakesAPrefixWithoutDigitsAsZero) {
    EXPECT_EQ(scan("0x"), 0U);
    EXPECT_EQ(scan("0xg"), 0U);
    EXPECT_EQ(scan("0x0x1"), 0U);
}

TEST(NSScanner, LeavesTheTargetUntouchedWithoutADigit) {
    for (const char* text : {"", " ", "g1", "#f", "-1", "x1", "\xef\xbc\x91"})
        EXPECT_EQ(scan(text), 99U) << text;
}

TEST(NSScanner, GivesTheLargestValueOnOverflow) {
    EXPECT_EQ(scan("ffffffff"), 0xffffffffU);
    EXPECT_EQ(scan("100000000"), 0xffffffffU);
    EXPECT_EQ(scan("1000000000000000000000000"), 0xffffffffU);
}

TEST(NSScanner, GoesOnWhereItStands) {
    NSScanner scanner = NSScanner::scannerWithString("  0x1f 2g");
    uint32_t value = 0;
    EXPECT_TRUE(scanner.scanHexInt(value));
    EXPECT_EQ(value, 31U);
    EXPECT_EQ(scanner.scanLocation(), 6U);
    EXPECT_TRUE(scanner.scanHexInt(value));
    EXPECT_EQ(value, 2U);
    EXPECT_FALSE(scanner.scanHexInt(value));
    EXPECT_EQ(value, 2U);
    EXPECT_EQ(scanner.scanLocation(), 8U);
    EXPECT_FALSE(scanner.isAtEnd());
}

} // namespace
} // namespace veyra
