#include "Platform/UIKit/UIColor.h"

#include <gtest/gtest.h>

namespace veyra {

TEST(UIColorTest, ComponentsAreKeptAsGiven) {
    const auto color = UIColor::initWithRedGreenBlueAlpha(0.1, 2.5, -1, 3);
    EXPECT_EQ(color->red(), 0.1);
    EXPECT_EQ(color->green(), 2.5);
    EXPECT_EQ(color->blue(), -1);
    EXPECT_EQ(color->alpha(), 3);
}

TEST(UIColorTest, WhiteSetsAllThreeComponents) {
    const auto color = UIColor::colorWithWhiteAlpha(0.25, 0.5);
    EXPECT_EQ(color->red(), 0.25);
    EXPECT_EQ(color->green(), 0.25);
    EXPECT_EQ(color->blue(), 0.25);
    EXPECT_EQ(color->alpha(), 0.5);
}

TEST(UIColorTest, EqualComponentsMakeEqualColors) {
    const auto color = UIColor::initWithRedGreenBlueAlpha(0, 0.5, 1, 1);
    const auto same = UIColor::initWithRedGreenBlueAlpha(-0.0, 0.5, 1, 1);
    EXPECT_TRUE(color->isEqual(*same));
    EXPECT_EQ(color->hash(), same->hash());
    EXPECT_FALSE(color->isEqual(*UIColor::initWithRedGreenBlueAlpha(0.01, 0.5, 1, 1)));
    EXPECT_FALSE(color->isEqual(*UIColor::initWithRedGreenBlueAlpha(0, 0.51, 1, 1)));
    EXPECT_FALSE(color->isEqual(*UIColor::initWithRedGreenBlueAlpha(0, 0.5, 0.99, 1)));
    EXPECT_FALSE(color->isEqual(*UIColor::initWithRedGreenBlueAlpha(0, 0.5, 1, 0.99)));
    EXPECT_FALSE(color->isEqual(NSObject()));
}

TEST(UIColorTest, TheClassIsFoundByName) {
    EXPECT_EQ(NSClassFromString("UIColor"), UIColor::classObject());
    EXPECT_EQ(UIColor::colorWithWhiteAlpha(0, 1)->isa(), UIColor::classObject());
}

} // namespace veyra
