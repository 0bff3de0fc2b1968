#include "TestView.h"

#include "Platform/UIKit/VelocityTracker.h"

#include <gtest/gtest.h>

namespace veyra {

TEST(VelocityTrackerTest, WithoutTimePassedThereIsNoVelocity) {
    VelocityTracker tracker;
    EXPECT_EQ(tracker.velocity(), (CGPoint{0, 0}));
    tracker.add(1, {10, 10});
    tracker.add(1, {20, 20});
    EXPECT_EQ(tracker.velocity(), (CGPoint{0, 0}));
}

TEST(VelocityTrackerTest, AShortHistoryCountsAsAWhole) {
    VelocityTracker tracker;
    tracker.add(0, {0, 0});
    tracker.add(0.015625, {1, -2});
    EXPECT_EQ(tracker.velocity(), (CGPoint{64, -128}));
}

TEST(VelocityTrackerTest, OnlyTheLastFiftyMillisecondsCount) {
    VelocityTracker tracker;
    for (int i = 0; i <= 10; ++i)
        tracker.add(i * 0.01, {i * 100.0, 0});
    for (int i = 1; i <= 5; ++i)
        tracker.add(0.1 + i * 0.01, {1000 + i * 1.0, 0});
    EXPECT_NEAR(tracker.velocity().x, 100, 1e-6);
}

TEST(VelocityTrackerTest, TheStartIsInterpolatedBetweenSparseSamples) {
    VelocityTracker tracker;
    tracker.add(0, {0, 0});
    tracker.add(0.1, {10, 0});
    EXPECT_NEAR(tracker.velocity().x, 100, 1e-9);
    tracker.add(0.13, {10, 0});
    EXPECT_NEAR(tracker.velocity().x, 2 / 0.05, 1e-9) << "moving for 20 of the 50 milliseconds";
}

TEST(VelocityTrackerTest, ARestOfFiftyMillisecondsIsAStop) {
    VelocityTracker tracker;
    tracker.add(0, {0, 0});
    tracker.add(0.01, {100, 0});
    tracker.add(0.07, {100, 0});
    EXPECT_EQ(tracker.velocity(), (CGPoint{0, 0}));
}

TEST(VelocityTrackerTest, TimeThatGoesBackCountsAsTheLastTime) {
    VelocityTracker tracker;
    tracker.add(1, {0, 0});
    tracker.add(1.03125, {1, 0});
    tracker.add(1.01, {2, 0});
    EXPECT_EQ(tracker.velocity(), (CGPoint{64, 0}));
    tracker.clear();
    EXPECT_EQ(tracker.velocity(), (CGPoint{0, 0}));
}

} // namespace veyra
