#include "TestView.h"

#include "Platform/UIKit/DamageList.h"

#include <gtest/gtest.h>

#include <random>

namespace veyra {

using Rects = std::vector<PixelRect>;

namespace {

Rects damageOf(const Rects& added) {
    DamageList list;
    for (const PixelRect& rect : added)
        list.add(rect);
    return list.take();
}

} // namespace

TEST(DamageListTest, NothingAddedIsNoDamage) {
    DamageList list;
    EXPECT_TRUE(list.isEmpty());
    list.add({5, 5, 0, 10});
    list.add({5, 5, 10, -1});
    EXPECT_TRUE(list.isEmpty());
    EXPECT_EQ(list.take(), Rects{});
}

TEST(DamageListTest, TakingEmptiesTheList) {
    DamageList list;
    list.add({1, 2, 3, 4});
    EXPECT_FALSE(list.isEmpty());
    EXPECT_EQ(list.take(), (Rects{{1, 2, 3, 4}}));
    EXPECT_TRUE(list.isEmpty());
}

TEST(DamageListTest, ContainedRectanglesVanish) {
    EXPECT_EQ(damageOf({{0, 0, 500, 500}, {100, 100, 50, 50}}), (Rects{{0, 0, 500, 500}}));
    EXPECT_EQ(damageOf({{100, 100, 50, 50}, {400, 400, 50, 50}, {0, 0, 500, 500}}), (Rects{{0, 0, 500, 500}}));
}

TEST(DamageListTest, NearSmallRectanglesAreMerged) {
    EXPECT_EQ(damageOf({{0, 0, 20, 20}, {30, 10, 20, 20}}), (Rects{{0, 0, 50, 30}}));
}

TEST(DamageListTest, FarRectanglesStayApartInOrderOfRows) {
    EXPECT_EQ(damageOf({{900, 600, 20, 20}, {500, 0, 20, 20}, {0, 0, 20, 20}}),
              (Rects{{0, 0, 20, 20}, {500, 0, 20, 20}, {900, 600, 20, 20}}));
}

TEST(DamageListTest, CrossingStripesBecomeDisjointPiecesOfTheSameArea) {
    EXPECT_EQ(damageOf({{0, 490, 1000, 20}, {490, 0, 20, 1000}}),
              (Rects{{490, 0, 20, 490}, {0, 490, 1000, 20}, {490, 510, 20, 490}}));
}

TEST(DamageListTest, AdjoiningRowsBecomeOneRectangle) {
    EXPECT_EQ(damageOf({{0, 0, 1000, 100}, {0, 100, 1000, 100}, {0, 200, 1000, 100}}), (Rects{{0, 0, 1000, 300}}));
}

TEST(DamageListTest, BeyondTheLimitTheClosestAreMerged) {
    Rects added;
    for (int i = 0; i < 8; ++i)
        added.push_back({i * 1000, 0, 100, 100});
    EXPECT_EQ(damageOf(added), added);
    added.push_back({7500, 0, 100, 100});
    Rects expected(added.begin(), added.begin() + 7);
    expected.push_back({7000, 0, 600, 100});
    EXPECT_EQ(damageOf(added), expected);
}

TEST(DamageListTest, AnySequenceIsCoveredByFewDisjointRectanglesInsideItsHull) {
    constexpr int side = 256;
    std::mt19937 random(7);
    const auto upTo = [&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    for (int round = 0; round < 300; ++round) {
        DamageList list;
        std::vector<char> wanted(side * side), covered(side * side);
        // Coordinates in steps, so that the small square stands for a large window with costly waste.
        constexpr int step = 16;
        const int count = 1 + upTo(30);
        for (int i = 0; i < count; ++i) {
            const int x = upTo(side), y = upTo(side);
            const PixelRect rect{x, y, 1 + upTo(side - x), 1 + upTo(i % 3 == 0 ? side - y : std::min(8, side - y))};
            list.add({rect.x * step, rect.y * step, rect.width * step, rect.height * step});
            for (int row = rect.y; row < rect.maxY(); ++row)
                std::fill_n(wanted.begin() + row * side + rect.x, rect.width, 1);
        }
        const Rects rects = list.take();
        ASSERT_LE(rects.size(), DamageList::maximumCount);
        for (const PixelRect& rect : rects)
            for (int row = rect.y / step; row < rect.maxY() / step; ++row)
                for (int column = rect.x / step; column < rect.maxX() / step; ++column)
                    ASSERT_EQ(covered[static_cast<size_t>(row * side + column)]++, 0) << "rectangles overlap";
        for (size_t i = 0; i < wanted.size(); ++i)
            ASSERT_LE(wanted[i], covered[i]) << "a damaged pixel is missing";
    }
}

} // namespace veyra
