// Vertices with their importance: what is left out at a scale, what it costs.
#include "Platform/MapKit/MKVertexList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace veyra {

namespace {

/// Every vertex is drawn or near the one drawn before it.
void expectWithin(const MKVertexList& list, double tolerance) {
    const uint8_t least = MKVertexList::leastImportance(tolerance);
    MKMapPoint drawn = list.points()[0];
    double farthest = 0;
    for (size_t i = 0; i < list.size(); ++i) {
        const MKMapPoint point = list.points()[i];
        if (list.importances()[i] >= least) {
            drawn = point;
        }
        farthest = std::max({farthest, std::abs(point.x - drawn.x), std::abs(point.y - drawn.y)});
    }
    EXPECT_LT(farthest, tolerance);
}

size_t drawnAt(const MKVertexList& list, double tolerance) {
    const uint8_t least = MKVertexList::leastImportance(tolerance);
    const auto all = list.importances();
    return static_cast<size_t>(std::count_if(all.begin(), all.end(), [=](uint8_t one) { return one >= least; }));
}

MKVertexList randomWalk(size_t count, double step) {
    std::mt19937 random(3);
    std::normal_distribution<double> move(0, step);
    MKVertexList list;
    double latitude = 0, longitude = 0;
    for (size_t i = 0; i < count; ++i) {
        latitude += move(random);
        longitude += move(random);
        list.append({latitude, longitude});
    }
    list.complete();
    return list;
}

} // namespace

TEST(MKVertexList, WhatIsLeftOutIsNearWhatIsDrawnAtEveryScale) {
    for (const double step : {1e-6, 1e-4, 1e-2}) {
        const MKVertexList list = randomWalk(20000, step);
        for (double tolerance = 1.0 / 64; tolerance < 1e6; tolerance *= 3) {
            expectWithin(list, tolerance);
        }
    }
}

// Runs are ranked at the same time.
TEST(MKVertexList, ALongListIsRankedAsAShortOneIs) {
    const size_t count = 5 * MKVertexList::runSize + 77;
    const MKVertexList list = randomWalk(count, 1e-3);
    for (double tolerance = 1.0 / 64; tolerance < 1e8; tolerance *= 10) {
        expectWithin(list, tolerance);
    }
    EXPECT_LE(drawnAt(list, 1e9), 7u); // the first of each run and the last of all
    ASSERT_EQ(list.size(), count);
    const MKMapRect bounds = list.bounds();
    double west = INFINITY, south = -INFINITY;
    for (const MKMapPoint& point : list.points()) {
        west = std::min(west, point.x);
        south = std::max(south, point.y);
    }
    EXPECT_EQ(MKMapRectGetMinX(bounds), west);
    EXPECT_EQ(MKMapRectGetMaxY(bounds), south);
    EXPECT_EQ(list.importances().front(), 255);
    EXPECT_EQ(list.importances().back(), 255);
}

TEST(MKVertexList, NoiseBelowTheToleranceCostsNothing) {
    std::mt19937 random(3);
    std::normal_distribution<double> noise(0, 1e-5);
    MKVertexList list;
    for (int i = 0; i < 100000; ++i) {
        list.append({noise(random), i * 1e-5 + noise(random)});
    }
    list.complete();
    const double degree = MKWorldSide / 360;
    EXPECT_LT(drawnAt(list, degree / 100), 300u); // a line of one degree, drawn every half or whole hundredth of it
    EXPECT_GT(drawnAt(list, degree / 100), 100u);
    expectWithin(list, degree / 100);
}

TEST(MKVertexList, CornersOfARingAreDrawnAtEveryScaleThatShowsIt) {
    const CLLocationCoordinate2D corners[] = {{10, 10}, {10, 20}, {-10, 20}, {-10, 10}};
    const MKVertexList list{corners};
    EXPECT_EQ(drawnAt(list, 1e6), 4u);
    EXPECT_EQ(drawnAt(list, 1e-9), 4u);
}

TEST(MKVertexList, FirstAndLastAreAlwaysDrawn) {
    const CLLocationCoordinate2D same[] = {{1, 1}, {1, 1}, {1, 1}, {1, 1}};
    const MKVertexList list{same};
    EXPECT_EQ(drawnAt(list, 1e9), 2u);
    EXPECT_EQ(list.importances().front(), 255);
    EXPECT_EQ(list.importances().back(), 255);
}

TEST(MKVertexList, AVertexWithoutAPlaceIsNeverDrawn) {
    const double no = std::numeric_limits<double>::quiet_NaN();
    const CLLocationCoordinate2D coordinates[] = {{no, 0}, {1, 1}, {0, no}, {2, 2}, {no, no}};
    const MKVertexList list{coordinates};
    const uint8_t expected[] = {0, 255, 0, 255, 0};
    EXPECT_TRUE(std::equal(list.importances().begin(), list.importances().end(), std::begin(expected)));
    EXPECT_EQ(drawnAt(list, 1e-12), 2u);
}

TEST(MKVertexList, PlacesAsFarOffAsNumbersGoAreRanked) {
    const CLLocationCoordinate2D coordinates[] = {{0, 0}, {0, 1e300}, {0, -1e300}, {0, 1}, {0, 1.5}, {0, 2}};
    const MKVertexList list{coordinates};
    EXPECT_EQ(drawnAt(list, 1), 6u);
}

TEST(MKVertexList, SmallStepsAfterAFarOneAreNotLost) {
    MKVertexList list;
    for (int turn = 0; turn < 1000; ++turn) {
        list.append({0, turn % 2 == 0 ? 1e300 : -1e300});
    }
    for (int i = 0; i < 1000; ++i) {
        list.append({0, i * 0.001});
    }
    list.complete();
    EXPECT_EQ(drawnAt(list, 0.0005 * MKWorldSide / 360), 2000u);
}

TEST(MKVertexList, IsTheSameHoweverManyAreAppendedAtATime) {
    std::mt19937 random(23);
    std::vector<CLLocationCoordinate2D> coordinates(3000);
    for (auto& coordinate : coordinates) {
        const bool isNowhere = random() % 50 == 0;
        coordinate = {isNowhere ? NAN : static_cast<double>(random() % 1000) / 10, static_cast<double>(random() % 999)};
    }
    MKVertexList one, many;
    for (const auto& coordinate : coordinates) {
        one.append(coordinate);
    }
    for (size_t begin = 0, count; begin < coordinates.size(); begin += count) {
        count = std::min<size_t>(random() % 700, coordinates.size() - begin);
        many.append(std::span(coordinates).subspan(begin, count));
    }
    one.complete();
    many.complete();
    ASSERT_EQ(one.size(), many.size());
    EXPECT_TRUE(std::ranges::equal(one.importances(), many.importances()));
    EXPECT_EQ(one.bounds(), many.bounds());
    ASSERT_EQ(one.blocks().size(), many.blocks().size());
    for (size_t i = 0; i < one.size(); ++i) {
        const bool isNowhere = std::isnan(coordinates[i].latitude);
        EXPECT_TRUE(isNowhere || one.points()[i] == many.points()[i]) << i;
    }
}

TEST(MKVertexList, BlocksHoldTheirVertices) {
    const MKVertexList list = randomWalk(1000, 0.1);
    ASSERT_EQ(list.blocks().size(), 8u);
    for (size_t i = 0; i < list.size(); ++i) {
        const auto& block = list.blocks()[i / MKVertexList::blockSize];
        const MKMapPoint point = list.points()[i];
        EXPECT_TRUE(point.x >= block.minX && point.x <= block.maxX && point.y >= block.minY && point.y <= block.maxY);
    }
}

TEST(MKVertexList, TakesLessThan24BytesAVertexAndKeepsNoSpareMemory) {
    EXPECT_LT(randomWalk(100001, 0.01).byteSize(), 100001u * 18);
}

} // namespace veyra
