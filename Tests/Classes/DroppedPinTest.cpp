// The pin that a long press drops: real touches on the map's window.
#include "Tests/Classes/ViewFixture.h"
#include "Tests/Platform/Foundation/CapturedLog.h"

namespace veyra {

class DroppedPin : public ShownMapFixture {
protected:
    DroppedPin() {
        record();
        run("map.longPressDropsPin = true; map.droppedPinTitle = 'Here'");
        settle();
        recorded();
    }
    void touch(UITouchPhase phase, CGPoint at, int64_t finger = 1) {
        onMain([&] {
            instance().window()->sendEvent(UITouchEvent{finger, UITouchType::Direct, phase, at,
                                                        static_cast<double>(g_get_monotonic_time()) / 1e6});
        });
    }
    /// Holds a finger there until the press is recognised; whether it was.
    bool press(CGPoint at) {
        touch(UITouchPhase::Began, at);
        const auto recognizer = view().longPressGestureRecognizer();
        return runMainUntil([&] {
            return recognizer->state() == UIGestureRecognizerState::Began ||
                   recognizer->state() == UIGestureRecognizerState::Changed;
        });
    }
    void lift(CGPoint at) { touch(UITouchPhase::Ended, at); }
    std::string events() {
        settle();
        return recorded();
    }
    /// What a script reads as the coordinate of that point, as an event's argument has it.
    std::string coordinateAt(int x, int y) {
        return run("{ const c = map.convertPointToCoordinate({ x: " + std::to_string(x) + ", y: " + std::to_string(y) +
                   " }); JSON.stringify({ latitude: +c.latitude.toFixed(6), longitude: +c.longitude.toFixed(6) }) }");
    }
};

TEST_F(DroppedPin, IsReportedWithItsViewAndAsAFinishedDragWhileTheFingerIsDown) {
    run("seen = []; map.listener = new Proxy({}, { get: (target, name) => (...values) => { seen.push([name, "
        "...values.map(value => value.latitude === undefined ? value : "
        "{ latitude: +value.latitude.toFixed(6), longitude: +value.longitude.toFixed(6) })]) } }); 0");
    ASSERT_TRUE(press({100, 200}));
    settle();
    EXPECT_EQ(run("JSON.stringify(seen)"),
              "[[\"mapDidAddViewsForAnnotations\",[\"dropped-pin-id\"]],[\"mapAnnotationDidFinishDrag\","
              "\"dropped-pin-id\"," +
                  coordinateAt(100, 200) + "]]");
    EXPECT_EQ(run("map.annotations.join()"), "dropped-pin-id");
    lift({100, 200});
    settle();
    EXPECT_EQ(run("seen.length"), "2") << "the lift drops nothing";
}

TEST_F(DroppedPin, IsMovedByTheNextLongPress) {
    ASSERT_TRUE(press({100, 200}));
    lift({100, 200});
    events();
    const auto first = mapView().annotations().front();
    ASSERT_TRUE(press({220, 300}));
    const std::string heard = events();
    EXPECT_NE(heard.find("mapDidAddViewsForAnnotations [\"dropped-pin-id\"]\nmapAnnotationDidFinishDrag"), heard.npos)
        << heard;
    ASSERT_EQ(mapView().annotations().size(), 1u);
    EXPECT_NE(mapView().annotations().front(), first);
    EXPECT_EQ(run("map.annotations.join()"), "dropped-pin-id");
    const auto place = mapView().convertCoordinateToPointToView(mapView().annotations().front()->coordinate(), nullptr);
    EXPECT_NEAR(place.x, 220, 1e-6);
    EXPECT_NEAR(place.y, 300, 1e-6);
}

TEST_F(DroppedPin, HasTheTitleAndTheNameThatScriptsGave) {
    run("map.droppedPinIdentifier = 'mine'");
    settle();
    ASSERT_TRUE(press({100, 200}));
    settle();
    EXPECT_EQ(run("map.annotations.join()"), "mine");
    EXPECT_EQ(mapView().annotations().front()->title(), id("Here"));
    lift({100, 200});
    run("map.selectAnnotation('mine', false)");
    EXPECT_NE(events().find("mapDidSelectAnnotation \"mine\""), std::string::npos);
}

TEST_F(DroppedPin, TakesThePlaceOfAnAnnotationThatAScriptNamedLikeIt) {
    run("map.addAnnotation({ latitude: 0, longitude: 0, identifier: 'dropped-pin-id', title: 'of the script' })");
    events();
    ASSERT_TRUE(press({100, 200}));
    settle();
    ASSERT_EQ(mapView().annotations().size(), 1u);
    EXPECT_EQ(mapView().annotations().front()->title(), id("Here"));
}

TEST_F(DroppedPin, SaysInTheVerboseLogThatThereWasNoneBefore) {
    view().setVerboseDebugLoggingEnabled(true);
    const CapturedLog log;
    ASSERT_TRUE(press({100, 200}));
    EXPECT_EQ(log.lines(), std::vector<std::string>{
                               "message: Map does not have annotation with Id 'dropped-pin-id'; cannot remove"});
}

TEST_F(DroppedPin, IsNotDroppedByAShortPressOrAMovingFinger) {
    touch(UITouchPhase::Began, {100, 200});
    lift({100, 200});
    touch(UITouchPhase::Began, {100, 200});
    touch(UITouchPhase::Moved, {100, 240});
    EXPECT_EQ(view().longPressGestureRecognizer()->state(), UIGestureRecognizerState::Failed);
    lift({100, 240});
    settle();
    EXPECT_EQ(run("map.annotations.length"), "0");
}

TEST_F(DroppedPin, IsRemovedByItsNameLikeAnyOther) {
    ASSERT_TRUE(press({100, 200}));
    run("map.removeAnnotation('dropped-pin-id')");
    settle();
    EXPECT_TRUE(mapView().annotations().empty()) << "while the finger is down";
    lift({100, 200});
    settle();
    EXPECT_EQ(run("map.annotations.length"), "0");
}

TEST_F(DroppedPin, WithoutANameIsNotDropped) {
    run("map.droppedPinIdentifier = null");
    settle();
    ASSERT_TRUE(press({100, 200}));
    EXPECT_EQ(events(), "");
    EXPECT_TRUE(mapView().annotations().empty());
}

} // namespace veyra
