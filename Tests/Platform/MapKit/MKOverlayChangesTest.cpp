// What differs between two lists of figures, against what it is for: without the figures that are named, both lists are
// the same.
#include "Platform/MapKit/MKOverlayChanges.h"
#include "Platform/MapKit/MKVertexFigure.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

namespace veyra {

namespace {

std::shared_ptr<const MKOverlayFigure> figure() {
    return std::make_shared<MKVertexFigure>(MKPathStyle(), MKVertexFigure::Kind::Line,
                                            std::make_shared<const MKVertexList>());
}

MKOverlayFigures figures(size_t count) {
    MKOverlayFigures made(count);
    std::generate(made.begin(), made.end(), figure);
    return made;
}

/// A list without some figures.
MKOverlayFigures without(MKOverlayFigures all, const std::vector<const MKOverlayFigure*>& some) {
    const std::set<const MKOverlayFigure*> gone(some.begin(), some.end());
    std::erase_if(all, [&](const auto& one) { return gone.contains(one.get()); });
    return all;
}

} // namespace

TEST(MKOverlayChanges, TheSameListHasNone) {
    const auto list = figures(5);
    const auto changes = MKOverlayChanges::between(list, list);
    EXPECT_TRUE(changes.figures.empty());
    EXPECT_TRUE(changes.areOnTop);
}

TEST(MKOverlayChanges, WhatIsAppendedLiesOnTop) {
    const auto list = figures(5);
    const auto changes = MKOverlayChanges::between({list.begin(), list.begin() + 3}, list);
    EXPECT_TRUE(changes.areOnTop);
    EXPECT_EQ(changes.firstOnTop, 3u);
    EXPECT_EQ(changes.figures.size(), 2u);
}

TEST(MKOverlayChanges, OneThatIsReplacedIsBoth) {
    const auto list = figures(2000);
    auto other = list;
    other[700] = figure();
    const auto changes = MKOverlayChanges::between(list, other);
    EXPECT_FALSE(changes.areOnTop);
    EXPECT_EQ(changes.figures, (std::vector<const MKOverlayFigure*>{other[700].get(), list[700].get()}));
}

TEST(MKOverlayChanges, TwoThatChangePlacesAreTheOnlyOnes) {
    const auto list = figures(100);
    auto other = list;
    std::swap(other[10], other[90]);
    const auto changes = MKOverlayChanges::between(list, other).figures;
    EXPECT_EQ((std::set<const MKOverlayFigure*>(changes.begin(), changes.end())),
              (std::set<const MKOverlayFigure*>{list[10].get(), list[90].get()}));
}

TEST(MKOverlayChanges, WithoutThemBothListsAreTheSame) {
    std::mt19937 random(17);
    const auto below = [&](size_t bound) { return std::uniform_int_distribution<size_t>(0, bound - 1)(random); };
    for (int turn = 0; turn < 500; ++turn) {
        const auto before = figures(below(30));
        auto now = before;
        for (size_t change = below(6); change > 0; --change) {
            if (below(3) == 0 && !now.empty()) {
                now.erase(now.begin() + static_cast<ptrdiff_t>(below(now.size())));
            } else if (below(2) == 0 && !now.empty()) {
                std::swap(now[below(now.size())], now[below(now.size())]);
            } else {
                now.insert(now.begin() + static_cast<ptrdiff_t>(below(now.size() + 1)), figure());
            }
        }
        const auto changes = MKOverlayChanges::between(before, now);
        ASSERT_EQ(without(before, changes.figures), without(now, changes.figures)) << turn;
        const bool isPrefix = now.size() >= before.size() && std::equal(before.begin(), before.end(), now.begin());
        ASSERT_EQ(changes.areOnTop, isPrefix) << turn;
        if (isPrefix) {
            ASSERT_EQ(changes.firstOnTop, before.size());
        }
    }
}

} // namespace veyra
