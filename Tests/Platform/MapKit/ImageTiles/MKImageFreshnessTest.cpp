#include "Platform/MapKit/ImageTiles/MKImageFreshness.h"

#include <gtest/gtest.h>

namespace veyra {

namespace {

constexpr double now = 1700000000; // Tue, 14 Nov 2023 22:13:20 GMT

MKImageFreshness freshness(const std::map<std::string, std::string>& fields) {
    NSURLResponse response;
    response.statusCode = 200;
    response.headerFields = fields;
    return freshnessOfResponse(response, now);
}

} // namespace

TEST(MKImageFreshness, LastsAsLongAsMaxAgeSays) {
    EXPECT_EQ(freshness({{"cache-control", "public, max-age=60"}}).freshUntil, now + 60);
    EXPECT_EQ(freshness({{"cache-control", "MAX-AGE=\"60\""}}).freshUntil, now + 60);
    EXPECT_EQ(freshness({{"cache-control", "max-age=60"}, {"age", "20"}}).freshUntil, now + 40);
    EXPECT_EQ(freshness({{"cache-control", "max-age=60"}, {"age", "90"}}).freshUntil, now);
    EXPECT_EQ(freshness({{"cache-control", "max-age=0"}}).freshUntil, now);
}

TEST(MKImageFreshness, MaxAgeIsStrongerThanExpires) {
    EXPECT_EQ(freshness({{"cache-control", "max-age=60"}, {"expires", "Tue, 14 Nov 2023 23:13:20 GMT"}}).freshUntil,
              now + 60);
}

TEST(MKImageFreshness, LastsUntilExpiresByTheServersClock) {
    EXPECT_EQ(freshness({{"expires", "Tue, 14 Nov 2023 23:13:20 GMT"}}).freshUntil, now + 3600);
    EXPECT_EQ(
        freshness({{"expires", "Tue, 14 Nov 2023 23:13:20 GMT"}, {"date", "Tue, 14 Nov 2023 23:03:20 GMT"}}).freshUntil,
        now + 600);
    EXPECT_EQ(freshness({{"expires", "0"}}).freshUntil, now) << "what is no date has passed";
    EXPECT_EQ(freshness({{"expires", "Tue, 14 Nov 2000 23:13:20 GMT"}}).freshUntil, now);
}

TEST(MKImageFreshness, WithoutAWordLastsADayOrATenthOfTheTimeSinceTheLastChange) {
    EXPECT_EQ(freshness({}).freshUntil, now + 86400);
    EXPECT_EQ(freshness({{"last-modified", "Tue, 14 Nov 2023 22:03:20 GMT"}}).freshUntil, now + 60);
    EXPECT_EQ(freshness({{"last-modified", "Tue, 14 Nov 2000 22:03:20 GMT"}}).freshUntil, now + 7 * 86400);
}

TEST(MKImageFreshness, NothingIsKeptOfWhatMustNotBeStored) {
    const MKImageFreshness found = freshness({{"cache-control", "no-store, max-age=60"}});
    EXPECT_FALSE(found.mayStore);
    EXPECT_FALSE(found.mayUseStale);
    EXPECT_EQ(found.freshUntil, 0);
}

TEST(MKImageFreshness, WhatIsNotToBeUsedUnaskedIsStoredButNeverFresh) {
    const MKImageFreshness found = freshness({{"cache-control", "no-cache, max-age=60"}});
    EXPECT_TRUE(found.mayStore);
    EXPECT_EQ(found.freshUntil, 0);
}

TEST(MKImageFreshness, WhatMustBeAskedForAgainIsNotUsedStale) {
    const MKImageFreshness found = freshness({{"cache-control", "max-age=60, must-revalidate"}});
    EXPECT_TRUE(found.mayStore);
    EXPECT_FALSE(found.mayUseStale);
    EXPECT_EQ(found.freshUntil, now + 60);
}

TEST(MKImageFreshness, NonsenseIsNotFresh) {
    EXPECT_EQ(freshness({{"cache-control", "max-age=soon"}}).freshUntil, now);
    EXPECT_EQ(freshness({{"cache-control", "max-age=-5"}}).freshUntil, now);
    EXPECT_EQ(freshness({{"cache-control", ",,=,max-age"}}).freshUntil, now);
    EXPECT_GT(freshness({{"cache-control", "max-age=99999999999999999999"}}).freshUntil, now + 1e9);
}

} // namespace veyra
