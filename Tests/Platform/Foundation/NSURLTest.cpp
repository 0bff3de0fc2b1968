#include "Platform/Foundation/NSURL.h"

#include <gtest/gtest.h>

namespace veyra {

TEST(NSURL, KeepsTheStringItIsMadeOf) {
    for (const char* text : {"http://example.org/pin.png", "HTTPS://example.org:8080/a/../b?x=1&y=%20#part",
                             "data:image/png;base64,AA==", "file:///a%20b.png", "http://[::1]/", "about:blank"}) {
        const auto url = NSURL::URLWithString(id(text));
        ASSERT_NE(url, nullptr) << text;
        EXPECT_EQ(url->absoluteString().utf8(), text);
        EXPECT_EQ(url->description().utf8(), text);
    }
}

TEST(NSURL, HasItsSchemeInLowerCase) {
    EXPECT_EQ(NSURL::URLWithString(id("HtTpS://example.org"))->scheme(), "https");
    EXPECT_EQ(NSURL::URLWithString(id("data:,x"))->scheme(), "data");
}

TEST(NSURL, MayBeRelative) {
    for (const char* text : {"pin.png", "/pin.png", "//example.org/pin.png", "../a", "?x", "#x", ""}) {
        const auto url = NSURL::URLWithString(id(text));
        ASSERT_NE(url, nullptr) << text;
        EXPECT_EQ(url->scheme(), "") << text;
        EXPECT_EQ(url->absoluteString().utf8(), text);
    }
}

TEST(NSURL, IsNotMadeOfWhatIsNoLegalAddress) {
    for (const char* text :
         {"http://[broken", "http://example.org/a b", "http://example.org/\xc3\xa4.png", "a\nb", "%", "%1", "a%zz",
          "<svg>", "a\"b", "a\\b", "a^b", "a`b", "{a}", "a|b", "http://example.org:port/", "a#b#c"})
        EXPECT_EQ(NSURL::URLWithString(id(text)), nullptr) << text;
    EXPECT_EQ(NSURL::URLWithString(id(NSString(std::u16string_view(u"\0", 1)))), nullptr);
    EXPECT_EQ(NSURL::URLWithString(id(NSString(std::u16string_view(u"a\xd800", 2)))), nullptr);
}

TEST(NSURL, IsNotMadeOfOtherValues) {
    EXPECT_EQ(NSURL::URLWithString(id()), nullptr);
    EXPECT_EQ(NSURL::URLWithString(id(WebUndefined{})), nullptr);
    EXPECT_EQ(NSURL::URLWithString(id(5)), nullptr);
    EXPECT_EQ(NSURL::URLWithString(id(true)), nullptr);
    EXPECT_EQ(NSURL::URLWithString(id(id::Array{})), nullptr);
}

TEST(NSURL, EqualsAnotherOfTheSameText) {
    EXPECT_EQ(id(NSURL::URLWithString(id("http://a/"))), id(NSURL::URLWithString(id("http://a/"))));
    EXPECT_FALSE(id(NSURL::URLWithString(id("http://a/"))) == id(NSURL::URLWithString(id("http://a/b"))));
}

} // namespace veyra
