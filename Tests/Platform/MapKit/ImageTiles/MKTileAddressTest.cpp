#include "Platform/MapKit/ImageTiles/MKTileAddress.h"

#include <gtest/gtest.h>

namespace veyra {

namespace {

std::string problemOf(const std::string& pattern) {
    try {
        const MKTileAddress address(pattern);
        return "";
    } catch (const MKTileAddressError& error) {
        return error.what();
    }
}

} // namespace

TEST(MKTileAddress, PutsInZoomColumnAndRow) {
    EXPECT_EQ(MKTileAddress("https://t.example/{z}/{x}/{y}.png?key=a%20b").url(3, 5, 2, false),
              "https://t.example/3/5/2.png?key=a%20b");
}

TEST(MKTileAddress, CountsRowsFromTheSouthWhenAskedTo) {
    EXPECT_EQ(MKTileAddress("http://t.example/{z}/{x}/{-y}").url(3, 5, 2, false), "http://t.example/3/5/5");
    EXPECT_EQ(MKTileAddress("http://t.example/{z}/{x}/{-y}").url(30, 0, 0, false), "http://t.example/30/0/1073741823");
}

TEST(MKTileAddress, SpreadsTilesOverSubdomainsTheSameWayEachTime) {
    const MKTileAddress address("http://{s}.example/{z}/{x}/{y}");
    EXPECT_EQ(address.host(4, 0, 0, false), "a.example");
    EXPECT_EQ(address.host(4, 1, 0, false), "b.example");
    EXPECT_EQ(address.host(4, 1, 1, false), "c.example");
    EXPECT_EQ(address.host(4, 2, 1, false), "a.example");
    EXPECT_EQ(MKTileAddress("http://{s}.example/{z}/{x}/{y}", {"one"}).host(4, 2, 1, false), "one.example");
}

TEST(MKTileAddress, AsksForDoubledImagesOnlyWhereThePatternHasThem) {
    const MKTileAddress address("http://t.example/{z}/{x}/{y}{r}.png");
    EXPECT_TRUE(address.hasDoubled());
    EXPECT_EQ(address.url(1, 0, 1, true), "http://t.example/1/0/1@2x.png");
    EXPECT_EQ(address.url(1, 0, 1, false), "http://t.example/1/0/1.png");
    const MKTileAddress always("http://t.example/{z}/{x}/{y}@2x.png");
    EXPECT_FALSE(always.hasDoubled());
    EXPECT_EQ(always.url(1, 0, 1, false), "http://t.example/1/0/1@2x.png");
}

TEST(MKTileAddress, KnowsTheHostWithItsPort) {
    EXPECT_EQ(MKTileAddress("HTTP://127.0.0.1:8080/{z}/{x}/{y}").host(0, 0, 0, false), "127.0.0.1:8080");
}

TEST(MKTileAddress, SaysWhatIsWrongWithAPattern) {
    const std::string start = "\" is no pattern for tiles: ";
    EXPECT_EQ(problemOf("tiles/{z}/{x}/{y}.png"),
              "\"tiles/{z}/{x}/{y}.png" + start + "it does not begin with http:// or https://");
    EXPECT_EQ(problemOf("file:///{z}/{x}/{y}"),
              "\"file:///{z}/{x}/{y}" + start + "it does not begin with http:// or https://");
    EXPECT_EQ(problemOf("http://t/{z}/{x}"), "\"http://t/{z}/{x}" + start + "it needs {z}, {x} and {y} or {-y}");
    EXPECT_EQ(problemOf("http://t/{z}/{x}/{y}/{q}"),
              "\"http://t/{z}/{x}/{y}/{q}" + start + "{q} is none of {z}, {x}, {y}, {-y}, {s} and {r}");
    EXPECT_EQ(problemOf("http://t/{z}/{x}/{y"),
              "\"http://t/{z}/{x}/{y" + start + "the brace at character 18 has no pair");
    EXPECT_EQ(problemOf("http://t/{z}}/{x}/{y}"),
              "\"http://t/{z}}/{x}/{y}" + start + "the brace at character 13 has no pair");
    EXPECT_EQ(problemOf("http:///{z}/{x}/{y}"), "\"http:///{z}/{x}/{y}" + start + "it names no host");
    EXPECT_EQ(problemOf("http://t t/{z}/{x}/{y}"),
              "\"http://t t/{z}/{x}/{y}" + start + "it has characters that no address has");
    EXPECT_NE(problemOf(""), "");
}

} // namespace veyra
