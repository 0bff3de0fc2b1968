// Dragging of annotations, and pins that fall.
#include "Tests/Platform/MapKit/AnnotationFixture.h"

#include <chrono>
#include <thread>

namespace veyra {

namespace {

class Dragging : public AnnotationTest {
protected:
    std::shared_ptr<TestAnnotation> draggable(CLLocationCoordinate2D place) {
        auto made = add("a", place);
        map->viewForAnnotation(made)->setDraggable(true);
        settle();
        takeCalls();
        return made;
    }
    /// Half a second on the main queue.
    void hold(double seconds = 0.55) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
        while (std::chrono::steady_clock::now() < end) {
            runQueue();
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }
};

} // namespace

TEST_F(Dragging, LiftsAfterHalfASecondAndSetsDown) {
    showAround();
    const auto a = draggable({0, 0});
    touch(1, UITouchPhase::Began, {200, 130});
    hold(0.3);
    EXPECT_EQ(calls(), Calls());
    hold(0.3);
    EXPECT_EQ(takeCalls(), (Calls{"drag a 1<0", "drag a 2<1"}));
    touch(1, UITouchPhase::Moved, {250, 130});
    EXPECT_NEAR(a->position.longitude, 5, 1e-6);
    CLLocationCoordinate2D ended;
    delegate->onCall = [&](const std::string& call) {
        if (call == "drag a 4<2") {
            ended = a->position;
        }
    };
    touch(1, UITouchPhase::Ended, {260, 120});
    EXPECT_EQ(takeCalls(), (Calls{"drag a 4<2", "drag a 0<4"}));
    EXPECT_NEAR(ended.longitude, 6, 1e-6);
    EXPECT_GT(ended.latitude, 0.9);
    EXPECT_EQ(map->viewForAnnotation(a)->dragState(), MKAnnotationViewDragStateNone);
    EXPECT_NEAR(map->viewForAnnotation(a)->frame().center().x, 260, 1e-6);
    EXPECT_EQ(delegate->regionChanges, 0);
}

TEST_F(Dragging, ATouchOnAViewStopsAMapInMotion) {
    showAround();
    const auto a = draggable({0, 0});
    map->setCenterCoordinateAnimated({0, 3}, true);
    frames(3);
    const CGPoint place = pointOf(a);
    touch(1, UITouchPhase::Began, {place.x, place.y - 20});
    const MKMapRect stopped = map->visibleMapRect();
    frames(30);
    EXPECT_EQ(map->visibleMapRect(), stopped);
    EXPECT_LT(map->region().center.longitude, 2.9);
    touch(1, UITouchPhase::Ended, {place.x, place.y - 20});
    EXPECT_EQ(takeCalls(), Calls{"selected a"});
}

TEST_F(Dragging, IsNotForViewsThatAreNotDraggable) {
    showAround();
    add("a", {0, 0});
    settle();
    takeCalls();
    touch(1, UITouchPhase::Began, {200, 130});
    hold();
    touch(1, UITouchPhase::Moved, {250, 130});
    touch(1, UITouchPhase::Ended, {250, 130});
    EXPECT_EQ(calls(), Calls());
}

TEST_F(Dragging, IsCancelledByASecondFingerOnTheMap) {
    showAround();
    const auto a = draggable({0, 0});
    touch(1, UITouchPhase::Began, {200, 130});
    hold();
    touch(1, UITouchPhase::Moved, {250, 130});
    takeCalls();
    touch(2, UITouchPhase::Began, {30, 280});
    EXPECT_EQ(takeCalls(), (Calls{"drag a 3<2", "drag a 0<3"}));
    EXPECT_EQ(a->position.longitude, 0);
    touch(1, UITouchPhase::Moved, {300, 130});
    EXPECT_EQ(a->position.longitude, 0);
}

TEST_F(Dragging, IsCancelledByEscape) {
    showAround();
    const auto a = draggable({0, 0});
    touch(1, UITouchPhase::Began, {200, 130});
    hold();
    touch(1, UITouchPhase::Moved, {250, 130});
    takeCalls();
    UIKeyEvent escape;
    escape.key = "Escape";
    window->sendEvent(escape);
    EXPECT_EQ(takeCalls(), (Calls{"drag a 3<2", "drag a 0<3"}));
    EXPECT_EQ(a->position.longitude, 0);
}

TEST_F(Dragging, IsCancelledWhenTheViewMayNoLongerBeDragged) {
    showAround();
    const auto a = draggable({0, 0});
    touch(1, UITouchPhase::Began, {200, 130});
    hold();
    takeCalls();
    map->viewForAnnotation(a)->setDraggable(false);
    EXPECT_EQ(takeCalls(), (Calls{"drag a 3<2", "drag a 0<3"}));
}

TEST_F(Dragging, IsCancelledByTheRemovalOfTheAnnotation) {
    showAround();
    const auto a = draggable({0, 0});
    touch(1, UITouchPhase::Began, {200, 130});
    hold();
    takeCalls();
    map->removeAnnotation(a);
    EXPECT_EQ(takeCalls(), (Calls{"drag a 3<2", "drag a 0<3"}));
    touch(1, UITouchPhase::Ended, {200, 130});
    EXPECT_EQ(takeCalls(), Calls());
    EXPECT_TRUE(map->annotations().empty());
}

TEST_F(Dragging, LeavesTheWorldAtNoEdge) {
    showAround({83, 179});
    const auto a = draggable({83, 179});
    const CGPoint at = pointOf(a);
    touch(1, UITouchPhase::Began, {at.x, at.y - 20});
    hold();
    touch(1, UITouchPhase::Moved, {at.x + 40, -500});
    EXPECT_NEAR(a->position.longitude, -177, 1e-6);
    EXPECT_LE(a->position.latitude, 85.0511288);
    touch(1, UITouchPhase::Ended, {at.x + 40, -500});
}

TEST_F(Dragging, KeepsTheTipUnderTheFingersGripWhileLifted) {
    showAround();
    const auto a = draggable({0, 0});
    const double resting = map->viewForAnnotation(a)->frame().minY();
    touch(1, UITouchPhase::Began, {200, 130});
    hold();
    EXPECT_LT(map->viewForAnnotation(a)->frame().minY(), resting);
    EXPECT_EQ(a->position.latitude, 0);
    touch(1, UITouchPhase::Ended, {200, 130});
    EXPECT_NEAR(map->viewForAnnotation(a)->frame().minY(), resting, 1e-6);
    EXPECT_NEAR(a->position.latitude, 0, 1e-9);
}

TEST_F(Dragging, ThatBeginsOnAViewAtOnceMovesTheMap) {
    showAround();
    const auto a = draggable({0, 0});
    touch(1, UITouchPhase::Began, {200, 130});
    for (int x = 200; x >= 150; x -= 10) {
        touch(1, UITouchPhase::Moved, {static_cast<double>(x), 130});
        frame();
    }
    now += 1; // no inertia
    touch(1, UITouchPhase::Ended, {150, 130});
    settle();
    EXPECT_EQ(calls(), Calls());
    EXPECT_EQ(delegate->regionChanges, 1);
    EXPECT_NEAR(map->region().center.longitude, 5, 1.5);
    EXPECT_EQ(a->position.longitude, 0);
}

TEST_F(Dragging, ThatBeginsOnAViewLeavesAMapThatDoesNotScrollAlone) {
    showAround();
    map->setScrollEnabled(false);
    draggable({0, 0});
    touch(1, UITouchPhase::Began, {200, 130});
    touch(1, UITouchPhase::Moved, {100, 130});
    touch(1, UITouchPhase::Ended, {100, 130});
    settle();
    EXPECT_EQ(delegate->regionChanges, 0);
}

TEST_F(Dragging, PinchesOnViewsZoomTheMap) {
    showAround();
    add("a", {0, -2});
    add("b", {0, 2});
    settle();
    const double before = map->region().span.longitudeDelta;
    touch(1, UITouchPhase::Began, {180, 130});
    touch(2, UITouchPhase::Began, {220, 130});
    for (int step = 1; step <= 5; ++step) {
        touch(1, UITouchPhase::Moved, {180.0 - 10 * step, 130});
        touch(2, UITouchPhase::Moved, {220.0 + 10 * step, 130});
        frame();
    }
    touch(1, UITouchPhase::Ended, {130, 130});
    touch(2, UITouchPhase::Ended, {270, 130});
    settle();
    EXPECT_LT(map->region().span.longitudeDelta, before / 2);
    EXPECT_TRUE(map->selectedAnnotations().empty());
}

TEST_F(Dragging, PinchesWithOneFingerOnAViewZoomTheMapAboutTheirMiddle) {
    for (const bool firstOnView : {true, false}) {
        showAround();
        map->removeAnnotations(map->annotations());
        add("a", {0, 0});
        settle();
        takeCalls();
        const double before = map->region().span.longitudeDelta;
        const CLLocationCoordinate2D place = map->convertPointToCoordinateFromView({150, 130}, nullptr);
        const CGPoint first = firstOnView ? CGPoint{200, 130} : CGPoint{100, 130};
        const CGPoint second = firstOnView ? CGPoint{100, 130} : CGPoint{200, 130};
        const double outwards = firstOnView ? 1 : -1;
        touch(1, UITouchPhase::Began, first);
        touch(2, UITouchPhase::Began, second);
        for (int step = 1; step <= 10; ++step) {
            touch(1, UITouchPhase::Moved, {first.x + outwards * 5 * step, 130});
            touch(2, UITouchPhase::Moved, {second.x - outwards * 5 * step, 130});
            frame();
        }
        now += 1; // no inertia
        touch(1, UITouchPhase::Ended, {first.x + outwards * 50, 130});
        touch(2, UITouchPhase::Ended, {second.x - outwards * 50, 130});
        settle();
        EXPECT_NEAR(before / map->region().span.longitudeDelta, 2, 0.2) << firstOnView;
        EXPECT_NEAR(map->convertCoordinateToPointToView(place, nullptr).x, 150, 6) << firstOnView;
        EXPECT_EQ(calls(), Calls());
    }
}

TEST_F(Dragging, OneFingerOfAPinchMayBeLiftedFromAView) {
    showAround();
    add("a", {0, 0});
    settle();
    touch(1, UITouchPhase::Began, {200, 130});
    touch(2, UITouchPhase::Began, {100, 130});
    touch(2, UITouchPhase::Moved, {60, 130});
    touch(2, UITouchPhase::Moved, {50, 130});
    touch(1, UITouchPhase::Ended, {200, 130});
    const double longitude = map->region().center.longitude;
    for (int x = 50; x <= 150; x += 10) {
        touch(2, UITouchPhase::Moved, {static_cast<double>(x), 130});
    }
    EXPECT_LT(map->region().center.longitude, longitude - 2) << "the finger that is left moves the map";
    touch(2, UITouchPhase::Ended, {150, 130});
    settle();
    EXPECT_TRUE(map->selectedAnnotations().empty());
}

TEST_F(Dragging, ThatBeginsOnACalloutLeavesTheMapAlone) {
    showAround();
    const auto a = add("a", {0, 0});
    map->selectAnnotationAnimated(a, false);
    settle();
    delegate->regionChanges = 0;
    touch(1, UITouchPhase::Began, {200, 90});
    touch(2, UITouchPhase::Began, {190, 90});
    for (int x = 200; x <= 300; x += 10) {
        touch(1, UITouchPhase::Moved, {static_cast<double>(x), 90});
    }
    touch(1, UITouchPhase::Ended, {300, 90});
    touch(2, UITouchPhase::Ended, {190, 90});
    settle();
    EXPECT_EQ(delegate->regionChanges, 0);
    EXPECT_EQ(map->selectedAnnotations().size(), 1U);
}

namespace {

class Dropping : public AnnotationTest {
protected:
    Dropping() {
        delegate->makeView = [](MKMapView&, const std::shared_ptr<MKAnnotation>& annotation) {
            auto pin = MKPinAnnotationView::initWithAnnotationReuseIdentifier(annotation, "pin");
            pin->setAnimatesDrop(true);
            return pin;
        };
    }
    double top(const std::shared_ptr<TestAnnotation>& annotation) const {
        return map->viewForAnnotation(annotation)->frame().minY();
    }
};

} // namespace

TEST_F(Dropping, APinFallsFromAboveTheMapWithABounce) {
    showAround();
    const auto a = add("a", {0, 0});
    const double resting = 150 - 36;
    std::vector<double> tops;
    while (tops.empty() || !window->isIdle()) {
        frame();
        tops.push_back(top(a));
        ASSERT_LT(tops.size(), 60U);
    }
    EXPECT_LT(tops.front(), -35);
    EXPECT_EQ(tops.back(), resting);
    EXPECT_NEAR(static_cast<double>(tops.size()), 0.4 * 60, 3);
    size_t i = 1;
    for (; tops[i] > tops[i - 1]; ++i) {
    }
    EXPECT_NEAR(tops[i - 1], resting, 15); // has reached the ground, a frame before or after
    EXPECT_LT(*std::min_element(tops.begin() + static_cast<std::ptrdiff_t>(i), tops.end()), resting - 4);
    EXPECT_GT(*std::min_element(tops.begin() + static_cast<std::ptrdiff_t>(i), tops.end()), resting - 8);
}

TEST_F(Dropping, PinsOfABatchFallOneAfterTheOther) {
    showAround();
    const auto a = add("a", {0, 0}), b = add("b", {0, 1});
    frame();
    EXPECT_TRUE(map->viewForAnnotation(a)->frame().minY() < 0);
    for (int i = 0; i < 10; ++i) {
        frame();
        EXPECT_GT(top(a), top(b));
    }
    settle();
    EXPECT_EQ(top(a), top(b));
}

TEST_F(Dropping, ALargeBatchTakesNoLongerThanASecond) {
    showAround();
    for (int i = 0; i < 500; ++i) {
        add("a", {i / 100.0, i % 20 - 10.0});
    }
    const double start = now;
    settle();
    EXPECT_GT(now - start, 0.9);
    EXPECT_LT(now - start, 1.1);
}

TEST_F(Dropping, IsLeftOutForTheRestOfAVeryLargeBatch) {
    showAround();
    std::vector<std::shared_ptr<MKAnnotation>> batch;
    for (int i = 0; i < 100001; ++i) {
        batch.push_back(annotation("a", {0, i / 10000.0}));
    }
    map->addAnnotations(batch);
    runQueue();
    frame();
    const auto topOf = [&](const std::shared_ptr<MKAnnotation>& one) {
        return map->viewForAnnotation(one)->frame().minY();
    };
    EXPECT_LT(topOf(batch[99999]), 0);
    EXPECT_NEAR(topOf(batch[100000]), 150 - 36, 1e-6);
}

TEST_F(Dropping, HappensOnceForAnAnnotation) {
    showAround();
    const auto a = add("a", {0, 0});
    settle();
    map->setCenterCoordinate({0, 100});
    map->setCenterCoordinate({0, 0});
    frame();
    EXPECT_NEAR(top(a), 150 - 36, 1e-6);
}

TEST_F(Dropping, IsLeftOutInAHiddenWindow) {
    showAround();
    window->setVisible(false);
    const auto a = add("a", {0, 0});
    runQueue();
    EXPECT_NEAR(top(a), 150 - 36, 1e-6);
}

TEST_F(Dropping, EndsWhenThePinIsRemoved) {
    showAround();
    const auto a = add("a", {0, 0});
    frames(3);
    map->removeAnnotation(a);
    settle();
    EXPECT_EQ(pixelAt(200, 140), 0x00ff00U);
}

} // namespace veyra
