// The simple settings, and the loading callbacks.
#include "Tests/Classes/ViewFixture.h"

namespace veyra {

class Settings : public MapFixture {
protected:
    size_t longPressRecognizers() {
        size_t count = 0;
        for (const auto& recognizer : mapView().gestureRecognizers())
            count += std::dynamic_pointer_cast<UILongPressGestureRecognizer>(recognizer) ? 1 : 0;
        return count;
    }
};

TEST_F(Settings, TheirDefaults) {
    EXPECT_EQ(run("[map.mapType, map.zoomEnabled, map.scrollEnabled, map.longPressDropsPin, map.droppedPinIdentifier, "
                  "map.droppedPinTitle, map.showsUserLocation, map.userLocationVisible].join()"),
              "0,true,true,false,dropped-pin-id,dropped-pin-id,false,false");
}

TEST_F(Settings, ReadBackAtOnceAndReachTheMapWithTheMainQueue) {
    run("map.mapType = 2; map.zoomEnabled = false; map.scrollEnabled = false");
    EXPECT_EQ(run("[map.mapType, map.zoomEnabled, map.scrollEnabled].join()"), "2,false,false");
    EXPECT_EQ(mapView().mapType(), MKMapTypeStandard);
    EXPECT_TRUE(mapView().isZoomEnabled());
    EXPECT_TRUE(mapView().isScrollEnabled());
    runMain();
    EXPECT_EQ(mapView().mapType(), MKMapTypeHybrid);
    EXPECT_FALSE(mapView().isZoomEnabled());
    EXPECT_FALSE(mapView().isScrollEnabled());
}

TEST_F(Settings, TwoWritesReachTheMapInTheirOrder) {
    run("map.mapType = 2; map.mapType = 1; map.zoomEnabled = false; map.zoomEnabled = true");
    runMain();
    EXPECT_EQ(mapView().mapType(), MKMapTypeSatellite);
    EXPECT_TRUE(mapView().isZoomEnabled());
}

TEST_F(Settings, AWriteOfTheSameValueIsForwardedToo) {
    onMain([&] { mapView().setZoomEnabled(false); });
    run("map.zoomEnabled = true");
    runMain();
    EXPECT_TRUE(mapView().isZoomEnabled());
}

TEST_F(Settings, MapTypesAboveTwoAndBelowZeroAreIgnored) {
    for (const char* type : {"3", "-1", "2147483648", "-2147483649", "Infinity", "-Infinity", "1e300"}) {
        EXPECT_EQ(run("map.mapType = 1; map.mapType = " + std::string(type) + "; map.mapType"), "1") << type;
        runMain();
        EXPECT_EQ(mapView().mapType(), MKMapTypeSatellite) << type;
    }
}

TEST_F(Settings, MapTypesTruncate) {
    EXPECT_EQ(run("map.mapType = 1.5; map.mapType"), "1");
    EXPECT_EQ(run("map.mapType = 2.99; map.mapType"), "2");
    EXPECT_EQ(run("map.mapType = -0.9; map.mapType"), "0");
}

TEST_F(Settings, AMapTypeThatIsNotANumberTruncatesToTheStandardMap) {
    EXPECT_EQ(run("map.mapType = 2; map.mapType = NaN; map.mapType"), "0");
}

TEST_F(Settings, ABooleanMapTypeCountsAsANumber) {
    EXPECT_EQ(run("map.mapType = true; map.mapType"), "1");
    EXPECT_EQ(run("map.mapType = false; map.mapType"), "0");
}

TEST_F(Settings, WhatIsNoNumberObjectShowsTheStandardMap) {
    for (const char* type : {"'1'", "'hybrid'", "{}", "{ valueOf() { return 1 } }", "[1]", "null", "undefined",
                             "map.region", "Symbol()", "1n"}) {
        EXPECT_EQ(run("map.mapType = 2; map.mapType = " + std::string(type) + "; map.mapType"), "0") << type;
        runMain();
        EXPECT_EQ(mapView().mapType(), MKMapTypeStandard) << type;
    }
}

TEST_F(Settings, TheInternalMapTypeIsRefusedAboveTwo) {
    view().setInternalMapType(2);
    view().setInternalMapType(3);
    EXPECT_EQ(view().internalMapType(), 2u);
    EXPECT_EQ(view().mapType().doubleValue(), 2);
    EXPECT_FALSE(view().mapType().isBoolean());
}

TEST_F(Settings, SwitchesTakeTheTruthinessOfWhatIsAssigned) {
    for (const char* name : {"zoomEnabled", "scrollEnabled", "longPressDropsPin"}) {
        const std::string key = "map." + std::string(name);
        for (const char* value : {"0", "''", "null", "undefined", "NaN", "false"})
            EXPECT_EQ(run(key + " = " + value + "; " + key), "false") << value;
        for (const char* value : {"1", "'false'", "{}", "[]", "-1", "true"})
            EXPECT_EQ(run(key + " = " + value + "; " + key), "true") << value;
    }
}

TEST_F(Settings, TurningLongPressOnTwiceAddsOneRecognizer) {
    run("map.longPressDropsPin = true");
    EXPECT_EQ(longPressRecognizers(), 0u);
    runMain();
    EXPECT_EQ(longPressRecognizers(), 1u);
    const auto recognizer = view().longPressGestureRecognizer();
    ASSERT_NE(recognizer, nullptr);
    EXPECT_EQ(recognizer->view(), view().mapView());
    EXPECT_EQ(recognizer->numberOfTouchesRequired(), 1u);
    EXPECT_EQ(recognizer->minimumPressDuration(), 0.75);
    run("map.longPressDropsPin = true");
    runMain();
    EXPECT_EQ(longPressRecognizers(), 1u);
    EXPECT_EQ(view().longPressGestureRecognizer(), recognizer);
}

TEST_F(Settings, TurningLongPressOffTwiceRemovesTheRecognizerOnce) {
    run("map.longPressDropsPin = true; map.longPressDropsPin = false; map.longPressDropsPin = false");
    runMain();
    EXPECT_EQ(longPressRecognizers(), 0u);
    EXPECT_EQ(view().longPressGestureRecognizer(), nullptr);
    EXPECT_EQ(run("map.longPressDropsPin"), "false");
}

TEST_F(Settings, TurningLongPressOffAtFirstDoesNothing) {
    run("map.longPressDropsPin = false");
    runMain();
    EXPECT_EQ(view().longPressGestureRecognizer(), nullptr);
}

TEST_F(Settings, TheDroppedPinsIdentifierReadsBackUnitForUnit) {
    EXPECT_EQ(run("map.droppedPinIdentifier = 'pin \\ud800 ü'; map.droppedPinIdentifier === 'pin \\ud800 ü'"), "true");
}

TEST_F(Settings, TheDroppedPinsTitleReadsAsItsIdentifier) {
    EXPECT_EQ(run("map.droppedPinTitle = 'A title'; map.droppedPinTitle"), "dropped-pin-id");
    EXPECT_EQ(run("map.droppedPinIdentifier = 'mine'; map.droppedPinTitle = 'Other'; map.droppedPinTitle"), "mine");
    EXPECT_EQ(run("map.droppedPinIdentifier"), "mine");
}

TEST_F(Settings, DroppedPinNamesThatAreNoStringsAreKeptAsGiven) {
    EXPECT_EQ(run("map.droppedPinIdentifier = 5; map.droppedPinIdentifier === 5"), "true");
    EXPECT_EQ(run("map.droppedPinIdentifier = null; map.droppedPinIdentifier === null"), "true");
    EXPECT_EQ(run("o = {}; map.droppedPinIdentifier = o; map.droppedPinIdentifier === o"), "true");
}

TEST_F(Settings, LoadingCallbacksAreEventsWithoutArguments) {
    record();
    onMain([&] {
        view().mapViewWillStartLoadingMap(mapView());
        view().mapViewDidFailLoadingMapWithError(mapView(),
                                                 std::make_shared<NSError>("domain", 5, NSDictionary::Map{}));
        view().mapViewDidFailLoadingMapWithError(mapView(), nullptr);
        view().mapViewDidFinishLoadingMap(mapView());
        view().mapViewRegionWillChangeAnimated(mapView(), true);
        view().mapViewRegionWillChangeAnimated(mapView(), false);
    });
    runWeb();
    EXPECT_EQ(recorded(), "mapWillStartLoadingMap\nmapDidFailLoadingMap\nmapDidFailLoadingMap\n"
                          "mapDidFinishLoadingMap\nmapRegionWillChange\nmapRegionWillChange");
}

} // namespace veyra
