#include "Tests/Platform/MapKit/MapFixture.h"

#include "Tests/Platform/Foundation/CapturedLog.h"

#include <glib.h>

#include <limits>

namespace veyra {

namespace {

class MKMapViewRegion : public MapTest {};

const MKCoordinateRegion vienna{{48.2, 16.4}, {2, 2}};
const MKCoordinateRegion nearVienna{{48.3, 16.6}, {2, 2}};
const MKCoordinateRegion sydney{{-33.9, 151.2}, {0.5, 0.5}};

void expectCenter(const MKMapView& map, double latitude, double longitude) {
    EXPECT_NEAR(map.region().center.latitude, latitude, 1e-9);
    EXPECT_NEAR(map.region().center.longitude, longitude, 1e-9);
}

} // namespace

TEST_F(MKMapViewRegion, ReportsNothingAndDrawsNothingAtItsCreationSize) {
    frames(3);
    EXPECT_EQ(delegate->calls, Calls{});
    EXPECT_EQ(source->drawn, 0);
}

TEST_F(MKMapViewRegion, FirstLayoutSendsOnePairAfterTheHostHasStoredItsSize) {
    CGSize stored;
    delegate->onWill = [&](MKMapView&) { stored = host->storedSize; };
    window->setSize({400, 300}, 1);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did"}));
    EXPECT_EQ(stored, (CGSize{400, 300}));
    expectCenter(*map, 0, 0);
    EXPECT_NEAR(map->region().span.longitudeDelta, 360, 1e-9);
    EXPECT_NEAR(map->visibleMapRect().size.width, MKWorldSide, 1e-3);
    EXPECT_NEAR(map->visibleMapRect().size.height, MKWorldSide * 0.75, 1e-3);
}

TEST_F(MKMapViewRegion, WhatIsSetBeforeTheFirstLayoutIsShownThere) {
    map->setRegion(vienna);
    map->setCenterCoordinateAnimated({47, 15}, true);
    EXPECT_EQ(delegate->calls, Calls{});
    window->setSize({400, 300}, 1);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did"}));
    expectCenter(*map, 47, 15);
    EXPECT_NEAR(MKCoordinateForMapPoint(map->visibleMapRect().origin).latitude, 48, 1e-9);
}

TEST_F(MKMapViewRegion, ASetSendsOnePairAlsoWhenNothingChanges) {
    show();
    map->setRegion(vienna);
    map->setRegion(vienna);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did", "will", "did"}));
    map->setCenterCoordinate(vienna.center);
    EXPECT_EQ(delegate->regionCalls().size(), 6u);
    expectCenter(*map, 48.2, 16.4);
}

TEST_F(MKMapViewRegion, SettingTheRegionThatIsShownChangesNothing) {
    show();
    map->setRegion({{61, 100}, {20, 3}});
    const MKMapRect before = map->visibleMapRect();
    for (int i = 0; i < 100; ++i) {
        map->setRegion(map->region());
    }
    EXPECT_NEAR(map->visibleMapRect().size.width / before.size.width, 1, 1e-9);
    EXPECT_NEAR(map->visibleMapRect().origin.y, before.origin.y, 1);
}

TEST_F(MKMapViewRegion, SettingTheCenterKeepsTheScale) {
    show();
    map->setRegion(vienna);
    const double width = map->visibleMapRect().size.width;
    map->setCenterCoordinate({10, -20});
    EXPECT_DOUBLE_EQ(map->visibleMapRect().size.width, width);
    expectCenter(*map, 10, -20);
}

TEST_F(MKMapViewRegion, ShowsWhatRegionThatFitsSays) {
    show();
    const MKCoordinateRegion fit = MKMapView::regionThatFitsMapTypeViewSizeRegion(MKMapTypeHybrid, {400, 300}, sydney);
    map->setRegion(sydney);
    EXPECT_EQ(map->region().center.latitude, fit.center.latitude);
    EXPECT_EQ(map->region().center.longitude, fit.center.longitude);
    EXPECT_EQ(map->region().span, fit.span);
}

TEST_F(MKMapViewRegion, CentersBeyondTheProjectionAreClamped) {
    show();
    map->setRegion(vienna);
    map->setCenterCoordinate({100, 16.4});
    EXPECT_NEAR(map->visibleMapRect().origin.y, 0, 1e-3);
    map->setCenterCoordinate({0, 200});
    expectCenter(*map, 0, -160);
}

TEST_F(MKMapViewRegion, ValuesThatAreNotFiniteAreIgnoredWithOneLogLine) {
    show();
    map->setRegion(vienna);
    delegate->calls.clear();
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    const double infinite = std::numeric_limits<double>::infinity();
    {
        const CapturedLog log;
        map->setCenterCoordinate({notANumber, 0});
        EXPECT_EQ(log.lines().size(), 1u);
        map->setCenterCoordinateAnimated({0, infinite}, true);
        EXPECT_EQ(log.lines().size(), 2u);
        map->setRegion({{0, 0}, {notANumber, 1}});
        EXPECT_EQ(log.lines().size(), 3u);
    }
    EXPECT_EQ(delegate->calls, Calls{});
    expectCenter(*map, 48.2, 16.4);
}

TEST_F(MKMapViewRegion, ASizeChangeKeepsCenterAndScaleAndSendsOnePair) {
    show();
    map->setRegion(vienna);
    const double mapPointsPerPoint = map->visibleMapRect().size.width / 400;
    delegate->calls.clear();
    window->setSize({640, 200}, 1);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did"}));
    expectCenter(*map, 48.2, 16.4);
    EXPECT_NEAR(map->visibleMapRect().size.width, 640 * mapPointsPerPoint, 1e-3);
    EXPECT_NEAR(map->visibleMapRect().size.height, 200 * mapPointsPerPoint, 1e-3);
}

TEST_F(MKMapViewRegion, ALayoutWithoutAChangeOfSizeSendsNothing) {
    show();
    map->setNeedsLayout();
    frames(2);
    window->setSize({400, 300}, 2);
    EXPECT_EQ(delegate->regionCalls(), Calls{});
}

TEST_F(MKMapViewRegion, ComingBackFromAnEmptySizeSendsAPair) {
    show();
    window->setSize({0, 0}, 1);
    EXPECT_EQ(delegate->regionCalls(), Calls{});
    EXPECT_GT(map->visibleMapRect().size.width, 0);
    window->setSize({400, 300}, 1);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did"}));
}

TEST_F(MKMapViewRegion, AnAnimatedSetEndsWhereItShouldWithItsDid) {
    show();
    map->setRegion(vienna);
    settle();
    delegate->calls.clear();
    map->setRegionAnimated(nearVienna, true);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will~"}));
    frames(4);
    EXPECT_GT(map->region().center.longitude, 16.4);
    EXPECT_LT(map->region().center.longitude, 16.6);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will~"}));
    frames(20); // 0.35 s from the first frame
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will~", "did~"}));
    expectCenter(*map, 48.3, 16.6);
}

TEST_F(MKMapViewRegion, AnAnimatedSetOfWhatIsShownSendsItsPairAtOnce) {
    show();
    map->setCenterCoordinate({10, 20});
    settle();
    delegate->calls.clear();
    map->setRegionAnimated(map->region(), true);
    frames(30);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will~", "did~"}));
}

TEST_F(MKMapViewRegion, AFlightTakesAtMostOneAndAHalfSeconds) {
    show();
    map->setRegion(vienna);
    map->setRegionAnimated(sydney, true);
    frames(92);
    expectCenter(*map, -33.9, 151.2);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did", "will~", "did~"}));
}

TEST_F(MKMapViewRegion, ANewRequestEndsAnAnimationWhereItIs) {
    show();
    map->setRegion(vienna);
    map->setRegionAnimated(nearVienna, true);
    frames(4);
    delegate->calls.clear();
    delegate->reported.clear();
    map->setCenterCoordinate({0, 0});
    EXPECT_EQ(delegate->regionCalls(), (Calls{"did~", "will", "did"}));
    EXPECT_GT(delegate->reported[0].center.longitude, 16.4);
    EXPECT_LT(delegate->reported[0].center.longitude, 16.6);
    frames(30);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"did~", "will", "did"}));
    expectCenter(*map, 0, 0);
}

TEST_F(MKMapViewRegion, ATouchEndsAnAnimationWhereItIs) {
    show();
    map->setRegion(vienna);
    map->setRegionAnimated(nearVienna, true);
    frames(4);
    const MKMapRect before = map->visibleMapRect();
    touch(1, UITouchPhase::Began, {200, 150});
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did", "will~", "did~"}));
    frames(30);
    EXPECT_EQ(map->visibleMapRect(), before);
    touch(1, UITouchPhase::Ended, {200, 150});
}

TEST_F(MKMapViewRegion, ASizeChangeTakesAnAnimationToItsEnd) {
    show();
    map->setRegion(vienna);
    map->setCenterCoordinateAnimated({48.3, 16.6}, true);
    frames(4);
    delegate->calls.clear();
    window->setSize({500, 300}, 1);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"did~", "will", "did"}));
    expectCenter(*map, 48.3, 16.6);
}

TEST_F(MKMapViewRegion, AnAnimatedSetInAHiddenWindowIsDoneAtOnce) {
    show();
    window->setVisible(false);
    map->setRegionAnimated(vienna, true);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will~", "did~"}));
    expectCenter(*map, 48.2, 16.4);
}

TEST_F(MKMapViewRegion, AMovementThatNoFrameStepsAnyMoreComesToItsEnd) {
    show();
    map->setCenterCoordinateAnimated({1, 1}, true);
    frames(3);
    window->setVisible(false);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will~"}));
    while (delegate->regionCalls().size() < 2) {
        g_main_context_iteration(nullptr, TRUE);
    }
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will~", "did~"}));
    expectCenter(*map, 1, 1);
}

TEST_F(MKMapViewRegion, ARequestFromTheWillChangeReplacesTheOneThatCausedIt) {
    show();
    delegate->onWill = [&](MKMapView& changing) {
        delegate->onWill = nullptr;
        changing.setCenterCoordinate({10, 10});
    };
    map->setRegion(vienna);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did", "will", "did"}));
    expectCenter(*map, 10, 10);
}

TEST_F(MKMapViewRegion, ARequestFromTheDidChangeReplacesTheOneThatCausedIt) {
    show();
    map->setCenterCoordinateAnimated({1, 1}, true);
    frames(5);
    delegate->onDid = [&](MKMapView& changing) {
        delegate->onDid = nullptr;
        changing.setCenterCoordinateAnimated({10, 10}, true);
    };
    map->setRegion(vienna);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will~", "did~", "will~"}));
    frames(120);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will~", "did~", "will~", "did~"}));
    expectCenter(*map, 10, 10);
}

TEST_F(MKMapViewRegion, ADelegateMayDropTheMapInItsReport) {
    show();
    std::weak_ptr<MKMapView> dropped = map;
    const std::function<void()> changes[] = {
        [&] { dropped.lock()->setRegion(vienna); },
        [&] {
            dropped.lock()->setCenterCoordinateAnimated({1, 1}, true);
        },
        [&] {
            dropped.lock()->setFrame({{0, 0}, {50, 50}});
            window->layoutIfNeeded();
        },
        [&] {
            scroll({100, 100}, -50);
        },
        [&] {
            touch(1, UITouchPhase::Began, {100, 100});
            now += 0.1;
            touch(1, UITouchPhase::Moved, {200, 100});
            touch(1, UITouchPhase::Ended, {200, 100});
        },
        [&] {
            touch(1, UITouchPhase::Began, {100, 100});
            touch(2, UITouchPhase::Began, {150, 100});
            touch(2, UITouchPhase::Moved, {200, 100});
            touch(1, UITouchPhase::Ended, {100, 100});
            touch(2, UITouchPhase::Ended, {200, 100});
        },
        [&] {
            dropped.lock()->setCenterCoordinateAnimated({1, 1}, true);
            while (!dropped.expired()) { // no frame steps the movement
                g_main_context_iteration(nullptr, TRUE);
            }
        },
    };
    for (const auto report : {&RecordingDelegate::onWill, &RecordingDelegate::onDid}) {
        for (const auto& change : changes) {
            (*delegate).*report = [&](MKMapView& reporting) {
                map = nullptr;
                reporting.removeFromSuperview();
            };
            change();
            frames(120);
            EXPECT_TRUE(dropped.expired()) << &change - changes;
            (*delegate).*report = nullptr;
            map = UIView::make<MKMapView>(host->bounds());
            map->setTileSource(source);
            map->setDelegate(delegate);
            host->addSubview(map);
            settle();
            dropped = map;
        }
    }
}

TEST_F(MKMapViewRegion, ReportsCentersInsideTheWorld) {
    show();
    map->setRegion({{0, 179.9}, {1, 1}});
    for (int i = 0; i < 3; ++i) {
        key("ArrowRight");
        frames(30);
    }
    ASSERT_EQ(delegate->reported.size(), 4u);
    for (const MKCoordinateRegion& region : delegate->reported) {
        EXPECT_GE(region.center.longitude, -180);
        EXPECT_LT(region.center.longitude, 180);
    }
    EXPECT_LT(delegate->reported.back().center.longitude, -178);
}

TEST_F(MKMapViewRegion, AtRestAsksForNoFrames) {
    show();
    int requests = 0;
    window->setFrameRequestHandler([&] { ++requests; });
    for (int i = 0; i < 10; ++i) {
        runQueue();
    }
    EXPECT_EQ(requests, 0);
    EXPECT_FALSE(window->needsFrame());
    EXPECT_TRUE(map->isIdle());
}

} // namespace veyra
