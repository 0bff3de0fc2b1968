#include "Tests/Platform/MapKit/MapFixture.h"

namespace veyra {

namespace {

class MKMapViewGestures : public MapTest {
protected:
    void SetUp() override {
        show();
        map->setRegion({{40, 10}, {4, 4}});
        settle();
        delegate->calls.clear();
        delegate->reported.clear();
    }

    /// A drag of one finger in steps of `step` points, one a frame, `count` times.
    void drag(CGPoint from, CGPoint step, int count) {
        touch(1, UITouchPhase::Began, from);
        for (int i = 1; i <= count; ++i) {
            frame();
            touch(1, UITouchPhase::Moved, {from.x + i * step.x, from.y + i * step.y});
        }
    }
    double zoom() const { return std::log2(400 / map->visibleMapRect().size.width * MKWorldSide); }
    void expectUnder(CGPoint point, MKMapPoint place) const {
        const double pointsPerMapPoint = 400 / map->visibleMapRect().size.width;
        EXPECT_NEAR((mapPointAt(point).x - place.x) * pointsPerMapPoint, 0, 1e-6);
        EXPECT_NEAR((mapPointAt(point).y - place.y) * pointsPerMapPoint, 0, 1e-6);
    }
};

} // namespace

TEST_F(MKMapViewGestures, PublishesWhatItUses) {
    EXPECT_EQ(window->inputPolicy(), (UIInputPolicy{true, true, true, true, true}));
    map->setZoomEnabled(false);
    EXPECT_EQ(window->inputPolicy(), (UIInputPolicy{true, false, false, true, false}));
    map->setScrollEnabled(false);
    EXPECT_EQ(window->inputPolicy(), UIInputPolicy{});
    map->setZoomEnabled(true);
    EXPECT_EQ(window->inputPolicy(), (UIInputPolicy{false, true, true, false, true}));
}

TEST_F(MKMapViewGestures, PublishesWhatItUsesToTheWindowThatItIsAddedTo) {
    map->setZoomEnabled(false);
    const auto other = UIWindow::make();
    other->setSize({100, 100}, 1);
    host->removeFromSuperview();
    other->addSubview(host);
    other->drawFrame(now);
    EXPECT_EQ(other->inputPolicy(), (UIInputPolicy{true, false, false, true, false}));
}

TEST_F(MKMapViewGestures, ADragMovesTheMapWithTheFingerAndSendsOnePair) {
    drag({200, 150}, {5, 3}, 20);
    const MKMapPoint place = mapPointAt({300, 210});
    touch(1, UITouchPhase::Moved, {260, 180});
    expectUnder({260, 180}, place);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will"}));
    now += 1; // held still: no inertia
    touch(1, UITouchPhase::Ended, {260, 180});
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did"}));
}

TEST_F(MKMapViewGestures, AFlickGoesOnAndSlowsDownWithinOnePair) {
    drag({100, 150}, {12, 0}, 10);
    touch(1, UITouchPhase::Ended, {220, 150});
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will"}));
    std::vector<double> steps;
    double last = map->visibleMapRect().origin.x;
    for (int i = 0; i < 20; ++i) {
        frame();
        steps.push_back(last - map->visibleMapRect().origin.x);
        last = map->visibleMapRect().origin.x;
    }
    EXPECT_GT(steps[2], 0);
    for (size_t i = 2; i + 1 < steps.size(); ++i) {
        EXPECT_NEAR(steps[i + 1] / steps[i], std::exp(-1.0 / 60 / 0.325), 1e-6);
    }
    frames(120);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did"}));
    settle(); // the tiles come from other threads
}

TEST_F(MKMapViewGestures, ATouchStopsTheInertia) {
    drag({100, 150}, {12, 0}, 10);
    touch(1, UITouchPhase::Ended, {220, 150});
    frames(5);
    touch(2, UITouchPhase::Began, {200, 150});
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did"}));
    const MKMapRect stopped = map->visibleMapRect();
    frames(20);
    EXPECT_EQ(map->visibleMapRect(), stopped);
    touch(2, UITouchPhase::Ended, {200, 150});
}

TEST_F(MKMapViewGestures, ARequestDuringADragEndsItUntilTheFingerMovesAgain) {
    drag({100, 150}, {5, 0}, 10);
    map->setCenterCoordinate({0, 0});
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did", "will", "did"}));
    touch(1, UITouchPhase::Moved, {160, 150});
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did", "will", "did", "will"}));
    now += 1;
    touch(1, UITouchPhase::Ended, {160, 150});
    EXPECT_EQ(delegate->regionCalls().size(), 6u);
}

TEST_F(MKMapViewGestures, APinchZoomsAboutTheFingersMiddleWithOnePair) {
    touch(1, UITouchPhase::Began, {150, 150});
    touch(2, UITouchPhase::Began, {250, 150});
    for (int i = 1; i <= 20; ++i) {
        frame();
        touch(1, UITouchPhase::Moved, {150.0 - i, 150});
        touch(2, UITouchPhase::Moved, {250.0 + i, 150});
    }
    const double before = zoom();
    const MKMapPoint place = mapPointAt({200, 150});
    frame();
    touch(1, UITouchPhase::Moved, {60, 150});
    touch(2, UITouchPhase::Moved, {340, 150});
    EXPECT_NEAR(zoom() - before, std::log2(280.0 / 140), 1e-6);
    expectUnder({200, 150}, place);
    now += 1;
    touch(1, UITouchPhase::Ended, {60, 150});
    touch(2, UITouchPhase::Ended, {340, 150});
    frames(60);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did"}));
}

TEST_F(MKMapViewGestures, ADragThatFollowsAPinchGoesOnByInertia) {
    touch(1, UITouchPhase::Began, {150, 150});
    touch(2, UITouchPhase::Began, {250, 150});
    touch(2, UITouchPhase::Moved, {290, 150});
    frame();
    touch(1, UITouchPhase::Ended, {150, 150});
    for (int i = 1; i <= 10; ++i) {
        frame();
        touch(2, UITouchPhase::Moved, {290.0 - 12 * i, 150});
    }
    touch(2, UITouchPhase::Ended, {170, 150});
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will"}));
    const MKMapRect released = map->visibleMapRect();
    frames(120);
    const double moved = (map->visibleMapRect().origin.x - released.origin.x) / released.size.width * 400;
    EXPECT_NEAR(moved, 12 * 60 * 0.325, 10); // the speed by the time in which it decays
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did"}));
}

TEST_F(MKMapViewGestures, FingersLiftedFromAPinchInTurnThrowNothing) {
    touch(1, UITouchPhase::Began, {150, 150});
    touch(2, UITouchPhase::Began, {250, 150});
    for (int i = 1; i <= 10; ++i) {
        frame();
        touch(2, UITouchPhase::Moved, {250.0 + 12 * i, 150});
    }
    touch(1, UITouchPhase::Ended, {150, 150});
    frame();
    touch(2, UITouchPhase::Moved, {382, 150});
    touch(2, UITouchPhase::Ended, {382, 150});
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did"}));
}

TEST_F(MKMapViewGestures, FingersThatChangeDuringAPinchMoveNothing) {
    const auto expectStill = [&](const std::function<void()>& change) {
        const MKMapRect before = map->visibleMapRect();
        change();
        EXPECT_EQ(map->visibleMapRect(), before);
    };
    touch(1, UITouchPhase::Began, {150, 150});
    touch(2, UITouchPhase::Began, {250, 150});
    touch(2, UITouchPhase::Moved, {290, 150});
    touch(1, UITouchPhase::Moved, {140, 150});
    // A third finger takes the place of the first.
    expectStill([&] { touch(3, UITouchPhase::Began, {200, 280}); });
    expectStill([&] { touch(1, UITouchPhase::Ended, {140, 150}); });
    MKMapPoint place = mapPointAt({245, 215});
    touch(3, UITouchPhase::Moved, {201, 281});
    expectUnder({245.5, 215.5}, place);
    // One finger goes and another comes elsewhere.
    expectStill([&] { touch(3, UITouchPhase::Ended, {201, 281}); });
    expectStill([&] { touch(4, UITouchPhase::Began, {30, 30}); });
    place = mapPointAt({160, 90});
    touch(4, UITouchPhase::Moved, {31, 30});
    expectUnder({160.5, 90}, place);
    now += 1;
    touch(2, UITouchPhase::Ended, {290, 150});
    touch(4, UITouchPhase::Ended, {31, 30});
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did"}));
}

TEST_F(MKMapViewGestures, AWheelZoomsAboutThePointer) {
    const CGPoint pointer{310, 40};
    const MKMapPoint place = mapPointAt(pointer);
    const double before = zoom();
    scroll(pointer, -110);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will"}));
    for (int i = 0; i < 30; ++i) {
        frame();
        expectUnder(pointer, place);
    }
    EXPECT_NEAR(zoom() - before, 0.4, 1e-9);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did"}));
}

TEST_F(MKMapViewGestures, TurnsOfTheWheelInARowAreOneGesture) {
    const double before = zoom();
    for (int i = 0; i < 5; ++i) {
        scroll({200, 150}, 110);
        frames(6);
    }
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will"}));
    frames(13); // 0.2 s after the last one
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did"}));
    EXPECT_NEAR(zoom() - before, -2, 1e-9);
}

TEST_F(MKMapViewGestures, ATouchpadPinchZoomsByItsSmallDeltas) {
    const double before = zoom();
    for (int i = 0; i < 10; ++i) {
        scroll({200, 150}, -5, true);
        frame();
    }
    frames(40);
    EXPECT_NEAR(zoom() - before, 0.5 / std::log(2), 1e-9);
}

TEST_F(MKMapViewGestures, ADoubleTapZoomsInAboutItsPlace) {
    const CGPoint at{100, 80};
    const MKMapPoint place = mapPointAt(at);
    const double before = zoom();
    for (int i = 0; i < 2; ++i) {
        touch(1, UITouchPhase::Began, at);
        now += 0.05;
        touch(1, UITouchPhase::Ended, at);
        now += 0.05;
    }
    frames(21);
    EXPECT_NEAR(zoom() - before, 1, 1e-9);
    expectUnder(at, place);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will~", "did~"}));
}

TEST_F(MKMapViewGestures, ATapWithTwoFingersZoomsOut) {
    const double before = zoom();
    touch(1, UITouchPhase::Began, {180, 150});
    touch(2, UITouchPhase::Began, {220, 150});
    now += 0.05;
    touch(1, UITouchPhase::Ended, {180, 150});
    touch(2, UITouchPhase::Ended, {220, 150});
    frames(21);
    EXPECT_NEAR(zoom() - before, -1, 1e-9);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will~", "did~"}));
}

TEST_F(MKMapViewGestures, ArrowsPanByAQuarterOfASmallView) {
    const MKMapPoint place = mapPointAt({200, 150});
    EXPECT_TRUE(key("ArrowRight"));
    frames(25);
    expectUnder({100, 150}, place);
    EXPECT_TRUE(key("ArrowDown"));
    frames(25);
    expectUnder({100, 75}, place);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will~", "did~", "will~", "did~"}));
}

TEST_F(MKMapViewGestures, KeysInARowAddUp) {
    const MKMapPoint place = mapPointAt({200, 150});
    key("ArrowLeft");
    frames(3);
    key("ArrowLeft");
    frames(25);
    expectUnder({400, 150}, place);
}

TEST_F(MKMapViewGestures, PlusAndMinusZoomAndHomeShowsTheWorld) {
    const double before = zoom();
    EXPECT_TRUE(key("+"));
    frames(25);
    EXPECT_NEAR(zoom() - before, 1, 1e-9);
    EXPECT_TRUE(key("="));
    EXPECT_TRUE(key("-"));
    frames(25);
    EXPECT_NEAR(zoom() - before, 1, 1e-9);
    EXPECT_TRUE(key("Home"));
    frames(60);
    EXPECT_NEAR(map->visibleMapRect().size.width, MKWorldSide, 1e-3);
}

TEST_F(MKMapViewGestures, OtherKeysAndKeysWithControlAreLeftAlone) {
    EXPECT_FALSE(key("a"));
    UIKeyEvent event;
    event.key = "+";
    event.control = true;
    EXPECT_FALSE(map->handleKey(event));
    EXPECT_EQ(delegate->calls, Calls{});
}

TEST_F(MKMapViewGestures, WithoutZoomNothingZooms) {
    map->setZoomEnabled(false);
    const double before = zoom();
    EXPECT_FALSE(
        map->handleScroll({.location = {200, 150}, .deltaX = 0, .deltaY = -100, .pinches = false, .timestamp = now}));
    EXPECT_FALSE(key("+"));
    EXPECT_FALSE(key("Home"));
    touch(1, UITouchPhase::Began, {100, 100});
    touch(1, UITouchPhase::Ended, {100, 100});
    touch(1, UITouchPhase::Began, {100, 100});
    touch(1, UITouchPhase::Ended, {100, 100});
    frames(30);
    EXPECT_EQ(zoom(), before);
    EXPECT_EQ(delegate->calls, Calls{});
    EXPECT_TRUE(key("ArrowLeft"));
}

TEST_F(MKMapViewGestures, WithoutScrollNothingPans) {
    map->setScrollEnabled(false);
    const MKMapRect before = map->visibleMapRect();
    drag({100, 150}, {12, 0}, 10);
    touch(1, UITouchPhase::Ended, {220, 150});
    EXPECT_FALSE(key("ArrowLeft"));
    frames(30);
    EXPECT_EQ(map->visibleMapRect(), before);
    EXPECT_EQ(delegate->calls, Calls{});
    map->setRegion({{0, 0}, {1, 1}}); // requests are not gestures
    EXPECT_NEAR(map->region().center.latitude, 0, 1e-9);
}

TEST_F(MKMapViewGestures, TurningScrollOffStopsTheInertia) {
    drag({100, 150}, {12, 0}, 10);
    touch(1, UITouchPhase::Ended, {220, 150});
    frames(5);
    map->setZoomEnabled(false);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will"}));
    map->setScrollEnabled(false);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did"}));
    const MKMapRect stopped = map->visibleMapRect();
    frames(10);
    EXPECT_EQ(map->visibleMapRect(), stopped);
}

TEST_F(MKMapViewGestures, TurningZoomOffStopsTheWheel) {
    scroll({200, 150}, -110);
    frame();
    map->setScrollEnabled(false);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will"}));
    map->setZoomEnabled(false);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did"}));
    const MKMapRect stopped = map->visibleMapRect();
    frames(10);
    EXPECT_EQ(map->visibleMapRect(), stopped);
}

TEST_F(MKMapViewGestures, SettingsLeaveWhatAScriptHasSetInMotion) {
    map->setCenterCoordinateAnimated({40, 11}, true);
    frame();
    map->setScrollEnabled(false);
    map->setZoomEnabled(false);
    frames(30);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will~", "did~"}));
    EXPECT_NEAR(map->region().center.longitude, 11, 1e-9);
}

TEST_F(MKMapViewGestures, ACancelledTouchEndsTheDragWithoutInertia) {
    drag({100, 150}, {12, 0}, 10);
    touch(1, UITouchPhase::Cancelled, {220, 150});
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did"}));
    const MKMapRect stopped = map->visibleMapRect();
    frames(10);
    EXPECT_EQ(map->visibleMapRect(), stopped);
    touch(1, UITouchPhase::Moved, {300, 150});
    touch(1, UITouchPhase::Ended, {300, 150});
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did"}));
}

TEST_F(MKMapViewGestures, AWheelDuringADragEndsItUntilTheFingerMovesAgain) {
    drag({100, 150}, {5, 0}, 10);
    scroll({200, 150}, -110);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did", "will"}));
    touch(1, UITouchPhase::Moved, {160, 150});
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did", "will", "did", "will"}));
    now += 1;
    touch(1, UITouchPhase::Ended, {160, 150});
    frames(30);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did", "will", "did", "will", "did"}));
}

TEST_F(MKMapViewGestures, AKeyDuringInertiaAndAWheelDuringAKeysMoveEndThem) {
    drag({100, 150}, {12, 0}, 10);
    touch(1, UITouchPhase::Ended, {220, 150});
    frames(3);
    key("+");
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did", "will~"}));
    frames(3);
    scroll({200, 150}, 50);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did", "will~", "did~", "will"}));
    frames(60);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did", "will~", "did~", "will", "did"}));
    settle();
}

TEST_F(MKMapViewGestures, DeltasAndPlacesThatAreNoNumbersMoveNothing) {
    const double infinity = HUGE_VAL, nan = std::nan("");
    const MKMapRect before = map->visibleMapRect();
    for (const double delta : {nan, infinity, -infinity, 0.0, -0.0}) {
        scroll({200, 150}, delta);
        scroll({200, 150}, delta, true);
    }
    scroll({nan, 150}, 100);
    scroll({200, infinity}, 100);
    EXPECT_EQ(delegate->regionCalls(), Calls{});
    EXPECT_EQ(map->visibleMapRect(), before);
    scroll({200, 150}, 1e300); // as far as one turn goes
    frames(60);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did"}));
    EXPECT_NEAR(before.size.width / map->visibleMapRect().size.width, std::exp2(-1.5), 1e-9);
}

TEST_F(MKMapViewGestures, TurningScrollOffDuringADragEndsIt) {
    drag({100, 150}, {12, 0}, 10);
    map->setScrollEnabled(false);
    EXPECT_EQ(delegate->regionCalls(), (Calls{"will", "did"}));
}

} // namespace veyra
