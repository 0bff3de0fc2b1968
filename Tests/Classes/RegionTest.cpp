// The region and the centre: what is read, what reaches the map, and what is reported.
#include "Tests/Classes/ViewFixture.h"
#include "Tests/Platform/Foundation/CapturedLog.h"

namespace veyra {

// Before its first layout the map keeps what it is asked for as it stands.
class RegionBeforeLayout : public MapFixture {
protected:
    void expectAsked(const std::string& script, double latitude, double longitude, double latitudeDelta,
                     double longitudeDelta) {
        run(script);
        runMain();
        EXPECT_EQ(mapView().region().center.latitude, latitude) << script;
        EXPECT_EQ(mapView().region().center.longitude, longitude) << script;
        EXPECT_EQ(mapView().region().span.latitudeDelta, latitudeDelta) << script;
        EXPECT_EQ(mapView().region().span.longitudeDelta, longitudeDelta) << script;
    }
};

class Region : public ShownMapFixture {
protected:
    void expectShown(double latitude, double longitude) {
        EXPECT_NEAR(mapView().region().center.latitude, latitude, 1e-9);
        EXPECT_NEAR(mapView().region().center.longitude, longitude, 1e-9);
    }
};

namespace {

constexpr const char* vienna = "{ latitude: 48.2, longitude: 16.4, latitudeDelta: 2, longitudeDelta: 2 }";
constexpr const char* lima = "{ latitude: -12, longitude: -77, latitudeDelta: 2, longitudeDelta: 2 }";

} // namespace

TEST_F(RegionBeforeLayout, ReadsAreZeroUntilTheMapHasReported) {
    EXPECT_EQ(run("JSON.stringify(map.region)"),
              R"({"latitude":0,"longitude":0,"latitudeDelta":0,"longitudeDelta":0})");
    EXPECT_EQ(run("JSON.stringify(map.centerCoordinate)"), R"({"latitude":0,"longitude":0})");
    run("map.setRegion(" + std::string(vienna) + ")");
    settle();
    EXPECT_EQ(run("map.region.latitude"), "0");
}

TEST_F(RegionBeforeLayout, RegionsAreClampedBeforeTheyReachTheMap) {
    expectAsked("map.setRegion({ latitude: 1, longitude: 2, latitudeDelta: 500, longitudeDelta: 4 })", 1, 2, 180, 4);
    expectAsked("map.setRegion({ latitude: 95, longitude: -200, latitudeDelta: -3, longitudeDelta: 400 })", 90, -180, 0,
                360);
    expectAsked("map.region = { latitude: -95, longitude: 200, latitudeDelta: 3, longitudeDelta: NaN }", -90, 180, 3,
                360);
}

TEST_F(RegionBeforeLayout, CentresReachTheMapUnchanged) {
    run("map.setRegion({ latitude: 1, longitude: 2, latitudeDelta: 3, longitudeDelta: 4 })");
    expectAsked("map.setCenterCoordinate({ latitude: 100, longitude: 500 })", 100, 500, 3, 4);
    expectAsked("map.setCenterCoordinate({ latitude: -100, longitude: -1e6 }, true)", -100, -1e6, 3, 4);
    expectAsked("map.centerCoordinate = { latitude: '12.5 N', longitude: 'east' }", 12.5, 0, 3, 4);
}

TEST_F(RegionBeforeLayout, StringsConvertByTheirLeadingNumber) {
    expectAsked("map.setRegion({ latitude: '48.5N', longitude: '\\t16e0', latitudeDelta: '', longitudeDelta: '0x10' })",
                48.5, 16, 0, 0);
}

TEST_F(RegionBeforeLayout, WhatWasSetIsShownByTheFirstLayoutAndReportedOnce) {
    record();
    run("map.setRegion(" + std::string(vienna) + ")");
    settle();
    EXPECT_EQ(recorded(), "");
    layOut();
    settle();
    EXPECT_EQ(run("events.map(e => e.split(' ')[0]).join()"), "mapRegionWillChange,mapRegionDidChange");
    EXPECT_NEAR(mapView().region().center.latitude, 48.2, 1e-9);
}

TEST_F(RegionBeforeLayout, KeysAreReadForTheCheckInOrderAndThenForTheirValues) {
    evaluate("reads = []; proxy = new Proxy({}, { get(target, key) { reads.push(key); return 1 } })");
    run("map.setRegion(proxy)");
    EXPECT_EQ(run("reads.splice(0).join()"), "latitude,longitude,latitudeDelta,longitudeDelta,"
                                             "latitudeDelta,longitudeDelta,latitude,longitude");
    run("map.setCenterCoordinate(proxy)");
    EXPECT_EQ(run("reads.splice(0).join()"), "latitude,longitude,latitude,longitude");
}

TEST_F(Region, AValueObjectIsTakenWithoutLookingForItsKeys) {
    run("r = map.region; delete r.latitudeDelta; r.latitude = 10; r.longitude = 20; r.longitudeDelta = 1; "
        "map.setRegion(r)");
    runMain();
    expectShown(10, 20);
}

TEST_F(Region, SettersReturnNothingBeforeTheMapIsTouched) {
    const auto before = mapView().region();
    EXPECT_EQ(run("String(map.setRegion(" + std::string(vienna) + "))"), "undefined");
    EXPECT_EQ(degrees(mapView().region().center), degrees(before.center));
    runMain();
    expectShown(48.2, 16.4);
    EXPECT_EQ(run("String(map.setCenterCoordinate({ latitude: 1, longitude: 2 }))"), "undefined");
    expectShown(48.2, 16.4);
    runMain();
    expectShown(1, 2);
}

TEST_F(Region, AssigningThePropertiesSetsTheMap) {
    run("map.region = " + std::string(vienna));
    runMain();
    expectShown(48.2, 16.4);
    run("map.centerCoordinate = { latitude: -33, longitude: 151 }");
    runMain();
    expectShown(-33, 151);
}

TEST_F(Region, ReadsGiveTheOldRegionUntilTheMapHasReportedTheNewOne) {
    const std::string before = run("JSON.stringify([map.region, map.centerCoordinate])");
    run("map.setRegion(" + std::string(vienna) + ")");
    EXPECT_EQ(run("JSON.stringify([map.region, map.centerCoordinate])"), before);
    runMain();
    EXPECT_NE(run("JSON.stringify([map.region, map.centerCoordinate])"), before);
    EXPECT_EQ(run("map.region.latitude === map.centerCoordinate.latitude"), "true");
    EXPECT_EQ(run("Math.abs(map.region.latitude - 48.2) < 1e-9"), "true");
}

TEST_F(Region, WillChangeComesBeforeDidChangeWhoseArgumentIsTheRegion) {
    record();
    run("map.setRegion(" + std::string(vienna) + ")");
    settle();
    EXPECT_EQ(recorded(), "mapRegionWillChange\nmapRegionDidChange " + run("JSON.stringify(map.region)"));
    EXPECT_NEAR(view().coordinateRegion().center.latitude, 48.2, 1e-9);
}

TEST_F(Region, TwoSetsAreCarriedOutAndReportedInTheirOrder) {
    run("seen = []; map.listener = { mapRegionDidChange(region) { seen.push(Math.round(region.latitude)) } }");
    run("map.setRegion(" + std::string(vienna) + "); map.setRegion(" + lima + ")");
    settle();
    EXPECT_EQ(run("seen.join()"), "48,-12");
    expectShown(-12, -77);
}

TEST_F(Region, ASetThatChangesNothingIsReportedToo) {
    run("map.setRegion(" + std::string(vienna) + ")");
    settle();
    record();
    run("map.setRegion(" + std::string(vienna) + "); map.setRegion(" + vienna + ")");
    settle();
    EXPECT_EQ(run("events.filter(e => e.startsWith('mapRegionDidChange')).length"), "2");
    EXPECT_EQ(run("events[1] === events[3]"), "true");
}

TEST_F(Region, TheAnimatedFlagIsTheScriptsTruthiness) {
    for (const char* animated : {"true", "1", "'no'", "{}"}) {
        record();
        run("map.setRegion(" + std::string(vienna) + ", " + animated + ")");
        settle();
        EXPECT_EQ(recorded(), "mapRegionWillChange") << "the movement is under way: " << animated;
        run("map.setRegion(" + std::string(lima) + ")");
        settle();
        recorded();
    }
    for (const char* animated : {"false", "0", "''", "null", "undefined"}) {
        record();
        run("map.setCenterCoordinate({ latitude: 1, longitude: 2 }, " + std::string(animated) + ")");
        settle();
        EXPECT_EQ(run("events.length"), "2") << animated;
        expectShown(1, 2);
    }
}

TEST_F(Region, AnAnimatedSetMovesFromWhereTheMapIs) {
    record();
    run("map.setCenterCoordinate({ latitude: 1, longitude: 2 }, true)");
    runMain();
    expectShown(0, 0);
    run("map.setCenterCoordinate({ latitude: 3, longitude: 4 })");
    settle();
    expectShown(3, 4);
    EXPECT_EQ(run("events.map(e => e.split(' ')[0]).join()"),
              "mapRegionWillChange,mapRegionDidChange,mapRegionWillChange,mapRegionDidChange");
}

TEST_F(Region, ACentreThatIsNotFiniteIsLoggedAndIgnored) {
    record();
    const CapturedLog log;
    run("map.setCenterCoordinate({ latitude: NaN, longitude: 0 })");
    run("map.centerCoordinate = { latitude: 0, longitude: Infinity }");
    settle();
    EXPECT_EQ(log.lines(),
              std::vector<std::string>(2, "message: MKMapView: a centre with a value that is not finite is ignored"));
    EXPECT_EQ(recorded(), "");
    expectShown(0, 0);
}

TEST_F(Region, EveryCallbackOfTheMapIsOneEventEvenWithTheSameRegion) {
    record();
    onMain([&] {
        view().mapViewRegionDidChangeAnimated(mapView(), false);
        view().mapViewRegionDidChangeAnimated(mapView(), true);
    });
    runWeb();
    EXPECT_EQ(run("events.length + ' ' + (events[0] === events[1])"), "2 true");
}

TEST_F(Region, ACallbackRefreshesTheCacheWithoutAListenerToo) {
    onMain([&] {
        const auto other = UIView::make<MKMapView>({{0, 0}, {100, 100}});
        other->layoutIfNeeded();
        other->setRegion({{10, 20}, {5, 5}});
        view().mapViewRegionDidChangeAnimated(*other, false);
        EXPECT_EQ(degrees(view().coordinateRegion().center), degrees(other->region().center));
        EXPECT_EQ(view().coordinateRegion().span, other->region().span);
        EXPECT_EQ(view().visibleMapRect(), other->visibleMapRect());
        EXPECT_EQ(view().userLocationVisible(), mapView().isUserLocationVisible());
    });
    EXPECT_EQ(run("Math.round(map.region.longitude)"), "20");
}

TEST_F(Region, AnEventCarriesTheRegionOfItsOwnMomentAndIsNotChangedByTheNext) {
    run("kept = []; map.listener = { mapRegionDidChange(region) { kept.push(region) } }");
    run("map.setRegion(" + std::string(vienna) + ")");
    runMain();
    run("map.setRegion(" + std::string(lima) + ")");
    runMain();
    runWeb();
    EXPECT_EQ(run("kept.map(region => Math.round(region.latitude)).join()"), "48,-12");
    EXPECT_EQ(run("kept[0] !== kept[1] && JSON.stringify(kept[1]) === JSON.stringify(map.region)"), "true");
}

TEST_F(Region, BlocksForTheMapKeepTheViewAliveUntilTheyHaveRun) {
    run("map.setRegion(" + std::string(vienna) + "); map.mapType = 1");
    instance().stop();
    EXPECT_EQ(VeyraView::liveViews(), 1u);
    runMain();
    EXPECT_EQ(VeyraView::liveViews(), 0u);
}

} // namespace veyra
